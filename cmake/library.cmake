# quorvane_library(NAME [FOLDER dir] SOURCES ... [PUBLIC libs] [PRIVATE libs])
#
# A library of the house. Its headers are reached as "NAME/file.h" (FOLDER's last component, where given) by those that
# link it and by nobody else: each library has an include folder of its own that holds one link to its sources. So an
# include against the house's direction does not compile.
function(quorvane_library name)
  cmake_parse_arguments(arg "" "FOLDER" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  if(NOT arg_FOLDER)
    set(arg_FOLDER ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  get_filename_component(folder_name ${arg_FOLDER} NAME)
  set(include_root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${include_root})
  if(NOT EXISTS ${include_root}/${folder_name})
    file(CREATE_LINK ${arg_FOLDER} ${include_root}/${folder_name} SYMBOLIC)
  endif()
  add_library(quorvane_${name} STATIC ${arg_SOURCES})
  if(QUORVANE_FUZZ)
    # What the fuzzers steer by; nothing else of a build is slowed by it.
    target_compile_options(quorvane_${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  target_include_directories(quorvane_${name} PUBLIC ${include_root})
  target_link_libraries(quorvane_${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE} quorvane_options)
  quorvane_precompile(quorvane_${name})
endfunction()

# Leaks of libraries below us, for builds with the address sanitizer; nothing of ours is listed.
set(quorvane_leaks "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0")

# quorvane_test(NAME SOURCES ... LIBRARIES ...): one GoogleTest executable, each test known to CTest by its own name.
# Tests run under the offscreen platform with fixed dots per inch, in a locale with known separators. How long one may take
# is the runner's to say: five minutes in the test presets, more for the long form.
function(quorvane_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} quorvane_options GTest::gtest)
  target_compile_definitions(${name} PRIVATE QUORVANE_TEST)
  quorvane_precompile(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FONT_DPI=96;LC_ALL=C.UTF-8;QT_ENABLE_HIGHDPI_SCALING=0;${quorvane_leaks};${arg_ENVIRONMENT}")
endfunction()

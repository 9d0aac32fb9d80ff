# quorvane_precompile(TARGET): the toolkit's and the library's headers compiled once for a target of several sources,
# which is half of what such a build costs. Off where not asked for: sources include what they use, and only builds
# without it can tell.
option(QUORVANE_PRECOMPILE "Precompile the headers that most sources include" OFF)

function(quorvane_precompile target)
  get_target_property(sources ${target} SOURCES)
  list(LENGTH sources count)
  if(QUORVANE_PRECOMPILE AND count GREATER 2)
    target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled.h)
  endif()
endfunction()

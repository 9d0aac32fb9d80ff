# One place for what every target of ours is compiled with. Warnings are errors in the presets of developers
# (QUORVANE_WERROR), never in a user's build: a newer compiler warns of more.
add_library(quorvane_options INTERFACE)
target_compile_options(quorvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual $<$<BOOL:${QUORVANE_WERROR}>:-Werror>
  -fstack-protector-strong $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_compile_definitions(quorvane_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QUORVANE_VERSION="${PROJECT_VERSION}")
if(QUORVANE_SANITIZE)
  target_compile_options(quorvane_options INTERFACE -fsanitize=${QUORVANE_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(quorvane_options INTERFACE -fsanitize=${QUORVANE_SANITIZE})
endif()

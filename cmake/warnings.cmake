# The warnings that all of our own code is compiled with; MORLEN_WERROR makes them errors.
option(MORLEN_WERROR "Treat warnings as errors" OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)  # for clang-tidy

add_library(morlen_warnings INTERFACE)
target_compile_options(morlen_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference
  $<$<BOOL:${MORLEN_WERROR}>:-Werror>)

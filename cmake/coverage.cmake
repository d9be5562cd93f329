# MORLEN_COVERAGE counts which lines of the program the tests run; scripts/coverage.sh uses it.
option(MORLEN_COVERAGE "Count the lines that are run (GCC)" OFF)

add_library(morlen_coverage INTERFACE)
if(MORLEN_COVERAGE)
  target_compile_options(morlen_coverage INTERFACE --coverage -O0)
  target_link_options(morlen_coverage INTERFACE --coverage)
endif()

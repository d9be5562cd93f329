# Tests in Python: a test of ctest, PREFIX_x, for each file test_x.py of a folder. The further arguments are variables
# of the environment, NAME=VALUE. No test is made when the Python has no pytest.
function(morlen_add_pytests prefix python folder)
  execute_process(COMMAND ${python} -c "import pytest" RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
  if(failed)
    message(STATUS "Without the tests ${prefix}_*: pytest not found")
    return()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/test_*.py)
  foreach(source IN LISTS sources)
    get_filename_component(name ${source} NAME_WE)
    string(REPLACE "test_" "${prefix}_" name ${name})
    add_test(NAME ${name} COMMAND ${python} -m pytest -q --tb=short -p no:cacheprovider ${source})
    set_tests_properties(${name} PROPERTIES TIMEOUT 1200
      ENVIRONMENT "MORLEN_BUILD=${PROJECT_BINARY_DIR};PYTHONDONTWRITEBYTECODE=1;${ARGN}")
  endforeach()
endfunction()

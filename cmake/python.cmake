# MORLEN_PYTHON: whether the Python package morlen is built. AUTO builds it when Python, its headers,
# numpy and pybind11 are installed, and the companions are built: it contains their functions.
#
# The core library is then compiled as position-independent code with hidden symbols, as a part of
# the module. The programs are as fast with it.
set(MORLEN_PYTHON AUTO CACHE STRING "Build the Python package: ON, OFF, or AUTO when it can be")
if(MORLEN_PYTHON MATCHES "/")  # of an older build folder, where the tests had the name
  set_property(CACHE MORLEN_PYTHON PROPERTY VALUE AUTO)
endif()
set_property(CACHE MORLEN_PYTHON PROPERTY STRINGS AUTO ON OFF)
set(MORLEN_PYTHON_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python that the package is for")
mark_as_advanced(MORLEN_PYTHON_EXECUTABLE)

set(morlen_build_python OFF)
if(MORLEN_PYTHON)
  set(fault "")
  if(MORLEN_SANITIZE OR MORLEN_COVERAGE)
    set(fault "a sanitized library or one with counters cannot be a part of Python")
  elseif(NOT morlen_build_companions)
    set(fault "the companions are not built")
  else()
    # -I: pip hides the packages of the system by variables of the environment.
    execute_process(COMMAND ${MORLEN_PYTHON_EXECUTABLE} -I -c [==[import numpy, sysconfig
print(sysconfig.get_paths()["include"], sysconfig.get_config_var("EXT_SUFFIX"), sysconfig.get_python_version(), sep=",")]==]
      OUTPUT_VARIABLE python_facts OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
    string(REPLACE "," ";" python_facts "${python_facts}")
    find_path(MORLEN_PYBIND11_INCLUDE pybind11/pybind11.h)
    mark_as_advanced(MORLEN_PYBIND11_INCLUDE)
    if(failed)
      set(fault "${MORLEN_PYTHON_EXECUTABLE} with numpy (python3-numpy) not found")
    elseif(NOT MORLEN_PYBIND11_INCLUDE)
      set(fault "pybind11-dev not found")
    else()
      list(GET python_facts 0 morlen_python_include)
      list(GET python_facts 1 morlen_python_suffix)
      list(GET python_facts 2 morlen_python_version)
      if(NOT EXISTS ${morlen_python_include}/Python.h)
        set(fault "python3-dev not found")
      endif()
    endif()
  endif()
  if(NOT fault)
    set(morlen_build_python ON)
  elseif(MORLEN_PYTHON STREQUAL AUTO)
    message(STATUS "Without the Python package: ${fault}")
  else()
    message(FATAL_ERROR "The Python package: ${fault}; see docs/python.md")
  endif()
endif()

# For the libraries that become parts of the module.
function(morlen_make_shareable)
  if(morlen_build_python)
    set_target_properties(${ARGN} PROPERTIES POSITION_INDEPENDENT_CODE ON
      CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  endif()
endfunction()

# MORLEN_DIRECT: whether the program has the sparse direct solver, `Solver Direct`. AUTO builds it
# when its libraries are installed; the core library never needs them.
#
# MUMPS and BLAS are linked statically: a shared BLAS may turn out at run time to be one that is
# slow, or that starts threads.
set(MORLEN_DIRECT AUTO CACHE STRING "Build the sparse direct solver: ON, OFF, or AUTO when it can be")
set_property(CACHE MORLEN_DIRECT PROPERTY STRINGS AUTO ON OFF)

set(morlen_build_direct OFF)
if(MORLEN_DIRECT)
  find_path(MORLEN_MUMPS_INCLUDE dmumps_c.h)
  find_path(MORLEN_METIS_INCLUDE metis.h)
  find_library(MORLEN_MUMPS NAMES libdmumps_seq.a)
  find_library(MORLEN_MUMPS_COMMON NAMES libmumps_common_seq.a)
  find_library(MORLEN_MUMPS_MPI NAMES libmpiseq_seq.a)
  find_library(MORLEN_METIS NAMES libmetis.a metis)
  find_library(MORLEN_OPENBLAS NAMES libopenblas.a PATH_SUFFIXES openblas-serial
    PATHS ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES} NO_DEFAULT_PATH)
  # The runtime of the Fortran compiler with which MUMPS was built.
  find_library(MORLEN_GFORTRAN NAMES libgfortran.a libgfortran.so.5 gfortran
    PATHS ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES})
  # The static one cannot be a part of the Python module.
  find_library(MORLEN_GFORTRAN_SHARED NAMES libgfortran.so.5 gfortran
    PATHS ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES})
  mark_as_advanced(MORLEN_GFORTRAN_SHARED)
  find_library(MORLEN_QUADMATH NAMES libquadmath.a libquadmath.so.0 quadmath
    PATHS ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES})
  set(parts MUMPS_INCLUDE METIS_INCLUDE MUMPS MUMPS_COMMON MUMPS_MPI METIS OPENBLAS GFORTRAN QUADMATH)
  set(missing "")
  foreach(part IN LISTS parts)
    mark_as_advanced(MORLEN_${part})
    if(NOT MORLEN_${part})
      list(APPEND missing MORLEN_${part})
    endif()
  endforeach()
  if(NOT missing)
    set(morlen_build_direct ON)
  else()
    list(JOIN missing ", " missing)
    set(packages "libmumps-seq-dev libmetis-dev libopenblas-serial-dev")
    if(NOT MORLEN_DIRECT STREQUAL AUTO)
      message(FATAL_ERROR "Solver Direct needs ${packages}: ${missing} not found")
    endif()
    message(STATUS "Without Solver Direct (${packages}): ${missing} not found")
  endif()
endif()

# For the test of the packages.
if(morlen_build_direct)
  file(WRITE ${PROJECT_BINARY_DIR}/direct.txt "morlen_build_direct\n")
else()
  file(REMOVE ${PROJECT_BINARY_DIR}/direct.txt)
endif()

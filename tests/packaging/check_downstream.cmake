# Installs the build into an empty prefix, and builds and runs a program on what is there.
# Usage: cmake -DBUILD=<build folder> -DSOURCE=<source folder> -DWORK=<folder to use>
#        -DCOMPILER=<C++ compiler> -DCONFIG=<configuration> -P check_downstream.cmake
cmake_minimum_required(VERSION 3.22)
file(REMOVE_RECURSE ${WORK})

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}: ${status}\n${out}${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix --config ${CONFIG})
foreach(file bin/morlen share/doc/morlen/docs/manual.md include/morlen/run/project.h
    share/bash-completion/completions/morlen share/zsh/vendor-completions/_morlen
    share/fish/vendor_completions.d/morlen.fish)
  if(NOT EXISTS ${WORK}/prefix/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()
file(GLOB pages ${WORK}/prefix/share/man/man1/morlen.1*)
if(NOT pages)
  message(FATAL_ERROR "the manual page is not installed")
endif()

run(${CMAKE_COMMAND} -S ${SOURCE}/tests/packaging/downstream -B ${WORK}/build
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=${CONFIG}
  -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/sway ${SOURCE}/examples/portal_frame.dat 2)
# By an independent computation of this example: 9.123 mm.
if(NOT output MATCHES "^0\\.00912")
  message(FATAL_ERROR "sway: ${output}")
endif()
file(REMOVE_RECURSE ${WORK})

# What `cmake --install` puts where, in two components: `runtime` (programs, pages, examples) and
# `development` (the core library as the target morlen::core of find_package(morlen)).
include(CMakePackageConfigHelpers)

set(runtime COMPONENT runtime)
set(development COMPONENT development)

# Installs the manual page of a program, and the completions of its arguments where the packages of
# Debian have those for bash, zsh and fish.
function(morlen_install_pages name)
  set(page ${PROJECT_SOURCE_DIR}/man/${name}.1)
  if(MORLEN_GZIP)
    set(packed ${PROJECT_BINARY_DIR}/man/${name}.1.gz)
    execute_process(COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man)
    execute_process(COMMAND ${MORLEN_GZIP} -9nc ${page} OUTPUT_FILE ${packed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${page})
    set(page ${packed})
  endif()
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 ${runtime})
  install(FILES ${PROJECT_SOURCE_DIR}/completions/${name}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions ${runtime})
  install(FILES ${PROJECT_SOURCE_DIR}/completions/_${name}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions ${runtime})
  install(FILES ${PROJECT_SOURCE_DIR}/completions/${name}.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d ${runtime})
endfunction()

find_program(MORLEN_GZIP gzip)
mark_as_advanced(MORLEN_GZIP)
set(morlen_programs morlen)
if(morlen_build_companions)
  list(APPEND morlen_programs ${morlen_companion_programs})
endif()
foreach(program IN LISTS morlen_programs)
  install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ${runtime})
  morlen_install_pages(${program})
endforeach()
# A component of its own: the packages do not depend on MPI.
if(morlen_build_mpi)
  set(runtime COMPONENT mpi)
  install(TARGETS morlen-mpi RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ${runtime})
  morlen_install_pages(morlen-mpi)
  set(runtime COMPONENT runtime)
endif()
if(morlen_has_import)
  install(PROGRAMS ${morlen_import_installed}
    DESTINATION ${CMAKE_INSTALL_BINDIR} ${runtime})
  install(DIRECTORY python/morlen_import DESTINATION ${import_folder} ${runtime}
    FILES_MATCHING PATTERN "*.py")
  morlen_install_pages(morlen-import)
  list(APPEND morlen_programs morlen-import)
endif()

install(DIRECTORY examples docs DESTINATION ${CMAKE_INSTALL_DOCDIR} ${runtime})
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} ${runtime})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright ${runtime})
if(morlen_build_direct)
  install(FILES LICENSE.third-party DESTINATION ${CMAKE_INSTALL_DOCDIR} ${runtime})
  # The licences of what is linked into the program, as Debian has them.
  foreach(package libmumps-seq-dev libmetis-dev libopenblas-serial-dev)
    if(EXISTS /usr/share/doc/${package}/copyright)
      install(FILES /usr/share/doc/${package}/copyright RENAME ${package}
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences ${runtime})
    endif()
  endforeach()
endif()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libmorlen-dev RENAME copyright
  ${development})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/morlen)
set_target_properties(morlen_core PROPERTIES EXPORT_NAME core)
add_library(morlen::core ALIAS morlen_core)
install(TARGETS morlen_core EXPORT morlenTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} ${development})
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/morlen ${development}
  FILES_MATCHING PATTERN "*.h")
install(EXPORT morlenTargets NAMESPACE morlen:: DESTINATION ${package_dir} ${development})
configure_package_config_file(cmake/morlenConfig.cmake.in ${PROJECT_BINARY_DIR}/morlenConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/morlenConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/morlenConfig.cmake ${PROJECT_BINARY_DIR}/morlenConfigVersion.cmake
  DESTINATION ${package_dir} ${development})

# MORLEN_IMPORT: whether morlen-import is installed. It is written in Python: AUTO takes it when there is a Python of
# version 3.11 with numpy, Debian's before others.
set(MORLEN_IMPORT AUTO CACHE STRING "Install morlen-import: ON, OFF, or AUTO when it can run")
set_property(CACHE MORLEN_IMPORT PROPERTY STRINGS AUTO ON OFF)

find_program(MORLEN_IMPORT_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(MORLEN_IMPORT_PYTHON NAMES python3)
mark_as_advanced(MORLEN_IMPORT_PYTHON)

set(morlen_has_import OFF)
if(MORLEN_IMPORT)
  set(fault "Python 3 not found")
  if(MORLEN_IMPORT_PYTHON)
    execute_process(COMMAND ${MORLEN_IMPORT_PYTHON} -c "import tomllib, numpy"
      RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
    set(fault "${MORLEN_IMPORT_PYTHON} is not version 3.11 with numpy")
    if(NOT failed)
      set(morlen_has_import ON)
    endif()
  endif()
  if(NOT morlen_has_import)
    if(NOT MORLEN_IMPORT STREQUAL AUTO)
      message(FATAL_ERROR "morlen-import: ${fault}; see docs/import.md")
    endif()
    message(STATUS "Without morlen-import: ${fault}")
  endif()
endif()

# The launcher is beside the other companions, in the build and where they are installed.
if(morlen_has_import)
  set(import_folder ${CMAKE_INSTALL_DATADIR}/morlen/python)
  set(MORLEN_IMPORT_PACKAGE ${PROJECT_SOURCE_DIR}/python)
  set(morlen_import_launcher ${PROJECT_BINARY_DIR}/companions/morlen-import)
  configure_file(python/morlen-import.in ${morlen_import_launcher} @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  file(RELATIVE_PATH MORLEN_IMPORT_PACKAGE
    /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${import_folder})
  configure_file(python/morlen-import.in ${PROJECT_BINARY_DIR}/python/morlen-import @ONLY)
endif()

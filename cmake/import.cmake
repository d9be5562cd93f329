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

# In the build the launcher is beside the other companions, with a link to it in python/. The one that is installed finds
# its package from the folder of programs.
if(morlen_has_import)
  set(import_folder ${CMAKE_INSTALL_DATADIR}/morlen/python)
  set(executable FILE_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  set(MORLEN_IMPORT_PACKAGE ${PROJECT_SOURCE_DIR}/python)
  configure_file(python/morlen-import.in ${PROJECT_BINARY_DIR}/companions/morlen-import @ONLY ${executable})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/python)
  file(CREATE_LINK ../companions/morlen-import ${PROJECT_BINARY_DIR}/python/morlen-import SYMBOLIC)
  file(RELATIVE_PATH MORLEN_IMPORT_PACKAGE
    /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${import_folder})
  set(morlen_import_installed ${PROJECT_BINARY_DIR}/installed/morlen-import)
  configure_file(python/morlen-import.in ${morlen_import_installed} @ONLY ${executable})
endif()

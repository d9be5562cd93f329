# `cpack` makes Debian packages: morlen with the programs, libmorlen-dev with the library, and
# python3-morlen with the Python package where it is built.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME morlen)
set(CPACK_PACKAGE_VENDOR "The Morlen developers")
set(CPACK_PACKAGE_CONTACT "The Morlen developers <developers@morlen.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME morlen)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmorlen-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"Computes plane and space frames, flat and folded shells and solids under static
loads: displacements, forces and moments, stresses, reactions. Companions export
the results in the formats of other programs.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"The library that the programs of morlen stand on, its headers, and its package
for CMake: find_package(morlen), morlen::core.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(morlen_has_import)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "python3 (>= 3.11), python3-numpy")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "python3-meshio, python3-h5py")
endif()
if(morlen_build_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-morlen)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  string(REGEX REPLACE "^3\\.([0-9]+)$" "\\1" minor ${morlen_python_version})
  math(EXPR next "${minor} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= ${morlen_python_version}), python3 (<< 3.${next}), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas, python3-meshio, python3-matplotlib")
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION
"The analysis of morlen for Python: models are read, changed and solved, and
their results are arrays of numpy.")
endif()
include(CPack)

# Read by CPack for each kind of package: which layout goes into it.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_COMPONENTS_ALL system)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
else()
  set(CPACK_COMPONENTS_ALL portable)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_PACKAGE_FILE_NAME trakko-${CPACK_PACKAGE_VERSION})  # the archive's top folder
endif()

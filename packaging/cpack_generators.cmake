# Read by cpack before each kind of package. The archive is the installed bundle with what makes it portable on top.
if(CPACK_GENERATOR STREQUAL "TGZ")
    set(CPACK_PACKAGE_FILE_NAME "Prismo-${CPACK_PACKAGE_VERSION}-linux-x86_64")
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${build};Prismo;bundle;/;${build};Prismo;portable;/")
    set(CPACK_COMPONENTS_ALL)
else()
    set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
endif()

# The Debian packages, one for each component of the installation. scripts/package builds them in the layout that Debian
# wants.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zon-cfg-ini)
set(CPACK_PACKAGE_VENDOR "the Velmar developers")
set(CPACK_PACKAGE_CONTACT "The Velmar developers <developers@velmar.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tool)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What a program that is linked to the libraries will depend on.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzon-cfg-ini${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Configuration library of the Velmar design tools
 Internal variables from layered settings files, and user preferences, answered
 in-process. The default platform services come with it.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzon-cfg-ini-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Configuration library of the Velmar design tools: development files
 Headers, static libraries, the CMake package and the pkg-config file.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME velmar-cfg)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "Shows, explains, checks and edits the settings of the Velmar design tools
 A command-line host over the configuration library.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
if(ZON_TOOL_SHARED_SERVICES)
    set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
endif()
# Where libraries find each other while their dependencies are worked out: they are not installed yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

include(CPack)

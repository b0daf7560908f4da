# What cpack makes of the installation: Debian packages for the libraries, for those who build with them, and for the
# tool. Configure with the preset "package", which installs where Debian has such things.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qrmidom)
set(CPACK_PACKAGE_VENDOR "libQRMIDOM")
set(CPACK_PACKAGE_CONTACT "libQRMIDOM developers <qrmidom@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development tool)
set(CPACK_STRIP_FILES ON)

set(library_package libqrmidom${PROJECT_VERSION_MAJOR})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/QRMCore ${PROJECT_BINARY_DIR}/WQSStreams ${PROJECT_BINARY_DIR}/QRMUtils/XML/DOMInterface)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "XML as value handles\n Reads XML into trees, searches, changes and writes them, and streams events; in front of\n Xerces-C++. The shared libraries."
)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqrmidom-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION}), libxerces-c-dev (>= 3.2)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "XML as value handles, for building programs\n Headers, links, and what CMake and pkg-config find the libraries by.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME qrmxml)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION
    "read, check, search, change and write XML from the shell\n The command-line tool of libQRMIDOM, with its manual page and completions.")

foreach(package IN ITEMS runtime:${library_package} development:libqrmidom-dev tool:qrmxml)
    string(REPLACE ":" ";" package ${package})
    list(GET package 0 component)
    list(GET package 1 name)
    install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
            COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)

# What makes an installation usable: the package for find_package() and the files for pkg-config. Both find everything
# from where they stand, so that the prefix can be chosen at installation and moved afterwards.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QRMIDOM)
configure_package_config_file(cmake/QRMIDOMConfig.cmake.in ${PROJECT_BINARY_DIR}/package/QRMIDOMConfig.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/QRMIDOMConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/QRMIDOMConfig.cmake
              ${PROJECT_BINARY_DIR}/package/QRMIDOMConfigVersion.cmake DESTINATION ${package_dir}
        COMPONENT development)
install(
    EXPORT QRMIDOMTargets
    NAMESPACE QRM::
    DESTINATION ${package_dir}
    COMPONENT development)

# qrm_pkg_config(<name> DESCRIPTION <text> LIBS <flags> [REQUIRES <modules>])
function(qrm_pkg_config PC_NAME)
    cmake_parse_arguments(PARSE_ARGV 1 PC "" "DESCRIPTION;LIBS;REQUIRES" "")
    file(RELATIVE_PATH PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" PC_PREFIX ${PC_PREFIX})
    file(RELATIVE_PATH PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
    file(RELATIVE_PATH PC_INCLUDEDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
    configure_file(cmake/qrm.pc.in ${PROJECT_BINARY_DIR}/package/${PC_NAME}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/package/${PC_NAME}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
            COMPONENT development)
endfunction()

# Each file names all the libraries that its headers' callers use directly: the linker takes nothing from a library that
# only another library needs.
qrm_pkg_config(qrmcore DESCRIPTION "Unicode strings, converters, errors and buffers" LIBS "-lQRMCore")
qrm_pkg_config(wqsstreams DESCRIPTION "Input streams" LIBS "-lWQSStreamsDLL -lQRMCore")
qrm_pkg_config(qrmidom DESCRIPTION "${PROJECT_DESCRIPTION}" LIBS "-lQRMIDOM -lWQSStreamsDLL -lQRMCore"
               REQUIRES "xerces-c >= 3.2")

# Installs the libraries, the tool, the headers and a package for find_package(vltextstream).
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vltextstream)

install(TARGETS vltextstream vlthost vltext EXPORT vltextstream-targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT vltextstream-targets NAMESPACE vltextstream:: DESTINATION ${package_dir})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vltextstream-config.cmake.in
    ${PROJECT_BINARY_DIR}/vltextstream-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vltextstream-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/vltextstream-config.cmake
    ${PROJECT_BINARY_DIR}/vltextstream-config-version.cmake
    DESTINATION ${package_dir})

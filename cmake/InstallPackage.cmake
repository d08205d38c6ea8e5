# Installs the libraries, the headers, the tool if it is built, with its manual page and completions, and packages for
# find_package and pkg-config.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vltextstream)

install(TARGETS vltextstream vlthost EXPORT vltextstream-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vltextstream)
install(EXPORT vltextstream-targets NAMESPACE vltextstream:: DESTINATION ${package_dir})
if(VLTEXTSTREAM_BUILD_TOOL)
  install(TARGETS vltext RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  set(printed ${PROJECT_BINARY_DIR}/tool)
  install(FILES ${printed}/vltext.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${printed}/vltext.bash RENAME vltext
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${printed}/vltext.zsh RENAME _vltext
      DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES ${printed}/vltext.fish
      DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# --- find_package ------------------------------------------------------------------------------
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vltextstream-config.cmake.in
    ${PROJECT_BINARY_DIR}/vltextstream-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vltextstream-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/vltextstream-config.cmake
    ${PROJECT_BINARY_DIR}/vltextstream-config-version.cmake
    DESTINATION ${package_dir})

# --- pkg-config --------------------------------------------------------------------------------
# The files name the folders relative to their own, so that an installation can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
foreach(folder LIBDIR INCLUDEDIR)
  file(RELATIVE_PATH PKGCONFIG_TO_${folder} ${pkgconfig_dir} ${CMAKE_INSTALL_FULL_${folder}})
endforeach()
foreach(library vltextstream vlthost)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in
      ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

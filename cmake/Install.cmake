include(CMakePackageConfigHelpers)

install(TARGETS zelk_util zelk_host zelk_configuration EXPORT ZelkConfigurationTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/zelk/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zelk
  FILES_MATCHING PATTERN "*.h")

set(ZELK_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZelkConfiguration)
install(EXPORT ZelkConfigurationTargets NAMESPACE zelk:: DESTINATION ${ZELK_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZelkConfigurationConfig.cmake.in
  ${PROJECT_BINARY_DIR}/ZelkConfigurationConfig.cmake INSTALL_DESTINATION ${ZELK_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZelkConfigurationConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZelkConfigurationConfig.cmake
  ${PROJECT_BINARY_DIR}/ZelkConfigurationConfigVersion.cmake DESTINATION ${ZELK_CMAKE_DIR})

configure_file(${PROJECT_SOURCE_DIR}/cmake/zelkconfiguration.pc.in
  ${PROJECT_BINARY_DIR}/zelkconfiguration.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zelkconfiguration.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

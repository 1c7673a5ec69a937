# The host's compiled-in default directories, for the test that checks them.
if(TARGET host_HostTest)
  target_compile_definitions(host_HostTest PRIVATE
    ZELK_HOST_EXPECTED_DEFAULT_ETC_DIR="${CMAKE_INSTALL_FULL_SYSCONFDIR}/zelk")
endif()

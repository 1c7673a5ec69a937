# The entry-point test loads the configuration library itself, as the host does.
if(TARGET configuration_PluginEntryPointsTest)
  target_compile_definitions(configuration_PluginEntryPointsTest PRIVATE
    ZELK_CONFIGURATION_LIBRARY="$<TARGET_FILE:zelk_configuration>")
  target_link_libraries(configuration_PluginEntryPointsTest PRIVATE ${CMAKE_DL_LIBS})
endif()

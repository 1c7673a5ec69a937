# The example validator plug-in, built for the test that installs it into a temporary plug-ins
# directory (the examples reuse this target when they are built too).
if(NOT TARGET zelk_example_validator_plugin)
  add_subdirectory(${PROJECT_SOURCE_DIR}/examples/validator-plugin
                   ${CMAKE_CURRENT_BINARY_DIR}/validator-plugin)
endif()
if(TARGET configuration_impl_ValidatorPluginTest)
  add_dependencies(configuration_impl_ValidatorPluginTest zelk_example_validator_plugin)
  target_compile_definitions(configuration_impl_ValidatorPluginTest PRIVATE
    ZELK_EXAMPLE_VALIDATOR_PLUGIN="$<TARGET_FILE:zelk_example_validator_plugin>")
endif()

# Small plug-in libraries that the host tests copy into temporary plug-ins directories. They are
# built before any test (through zelk_test_support) and found through ZELK_TEST_PLUGIN_BUILD_DIR.
set(ZELK_TEST_PLUGIN_BUILD_DIR ${CMAKE_CURRENT_BINARY_DIR}/plugins)
foreach(plugin GoodPlugin OtherExtensionPlugin NoCreatePlugin NoNamePlugin ThrowingPlugin)
  add_library(zelk_test_${plugin} MODULE ${CMAKE_CURRENT_SOURCE_DIR}/plugins/${plugin}.cpp)
  set_target_properties(zelk_test_${plugin} PROPERTIES
    OUTPUT_NAME zelk_test_${plugin} PREFIX "lib" SUFFIX ".so"
    LIBRARY_OUTPUT_DIRECTORY ${ZELK_TEST_PLUGIN_BUILD_DIR})
  add_dependencies(zelk_test_support zelk_test_${plugin})
endforeach()
target_compile_definitions(zelk_test_support PUBLIC
  ZELK_TEST_PLUGIN_BUILD_DIR="${ZELK_TEST_PLUGIN_BUILD_DIR}")

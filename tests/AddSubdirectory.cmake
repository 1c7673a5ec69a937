# Our project added to a parent project with add_subdirectory (tests/tools/add-subdirectory.cmake).
add_test(NAME add-subdirectory
  COMMAND ${CMAKE_COMMAND}
    -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
    -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/add-subdirectory
    -DGENERATOR=${CMAKE_GENERATOR}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/tools/add-subdirectory.cmake)
set_tests_properties(add-subdirectory PROPERTIES LABELS package)

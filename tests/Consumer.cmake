# The installed package is tested, not assumed: install this build into a temporary prefix and
# build a separate project against it with find_package(ZelkConfiguration).
if(ZELK_INSTALL)
  set(ZELK_CONSUMER_SANITIZER_FLAGS "")
  if(ZELK_SANITIZE)
    set(ZELK_CONSUMER_SANITIZER_FLAGS "-fsanitize=address,undefined")
  endif()
  add_test(NAME package_consumer
    COMMAND ${CMAKE_COMMAND}
      -DZELK_BINARY_DIR=${PROJECT_BINARY_DIR}
      -DCONSUMER_SOURCE_DIR=${CMAKE_CURRENT_SOURCE_DIR}/consumer
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/consumer-test
      "-DGENERATOR=${CMAKE_GENERATOR}"
      "-DSANITIZER_FLAGS=${ZELK_CONSUMER_SANITIZER_FLAGS}"
      -P ${CMAKE_CURRENT_SOURCE_DIR}/consumer/RunConsumerTest.cmake)
  set_tests_properties(package_consumer PROPERTIES LABELS package
    PASS_REGULAR_EXPRESSION "consumer: 2 errors\n  \"abc\" is not a\n    valid int32\n    Unknown flag\n    -verbos\nconsumer: log entries 1")
endif()

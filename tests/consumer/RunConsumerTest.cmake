# Installs the build at ZELK_BINARY_DIR into a fresh prefix, then configures, builds and runs the
# consumer project against it. Run with cmake -P; every step must succeed.
foreach(variable ZELK_BINARY_DIR CONSUMER_SOURCE_DIR WORK_DIR GENERATOR)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "${variable} is not set")
  endif()
endforeach()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed (${result}): ${ARGN}\n${output}")
  endif()
  set(LAST_OUTPUT "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${ZELK_BINARY_DIR} --prefix ${prefix})
if(NOT EXISTS ${prefix}/include/zelk/configuration/ValidationErrors.h)
  message(FATAL_ERROR "The headers were not installed under ${prefix}/include/zelk")
endif()

set(configure_args -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
if(SANITIZER_FLAGS)
  list(APPEND configure_args "-DCMAKE_CXX_FLAGS=${SANITIZER_FLAGS}"
       "-DCMAKE_EXE_LINKER_FLAGS=${SANITIZER_FLAGS}")
endif()
run(${CMAKE_COMMAND} ${configure_args})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/zelk_consumer)
message("${LAST_OUTPUT}")

# Configures tests/consumer/add-subdirectory, a parent project that adds ours with
# add_subdirectory, and compiles its two files: one against our headers, one of its own that must
# see none of our settings. Run with cmake -P; every step must succeed.
cmake_minimum_required(VERSION 3.18)
foreach(variable SOURCE_DIR WORK_DIR GENERATOR)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "${variable} is not set")
  endif()
endforeach()

file(REMOVE_RECURSE ${WORK_DIR})
foreach(step
    "-S;${SOURCE_DIR}/tests/consumer/add-subdirectory;-B;${WORK_DIR};-G;${GENERATOR};-DZELK_SOURCE_DIR=${SOURCE_DIR}"
    "--build;${WORK_DIR};--target;parent_uses_zelk;parent_own")
  execute_process(COMMAND ${CMAKE_COMMAND} ${step} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Failed: cmake ${step}\n${output}")
  endif()
endforeach()
message("A parent project adds zelk configuration with add_subdirectory and keeps its settings.")

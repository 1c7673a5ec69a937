# Runs a program and checks its exit status and what it writes (standard output, then standard
# error), for the tests of the tools and examples:
#
#   cmake -DCOMMAND=<program>|<argument>|... -DSTATUS=<n>
#         [-DEXPECTED=<file>]                 the whole output, exactly
#         [-DMATCH_COUNT=<n> -DMATCH1=<regex> ... -DMATCH<n>=<regex>]   must each be found
#         [-DNO_MATCH=<regex>]                must not be found
#         [-DSOURCE_DIR=<dir>] [-DBINARY_DIR=<dir>]
#         -P check-output.cmake
#
# The words of COMMAND are separated by "|". Before comparing, SOURCE_DIR and BINARY_DIR in the
# output are replaced by @SOURCE_DIR@ and @BINARY_DIR@, so that expected files hold no paths of
# one machine.
cmake_minimum_required(VERSION 3.18)

string(REPLACE "|" ";" command "${COMMAND}")
execute_process(COMMAND ${command} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(output "${out}${err}")
if(BINARY_DIR)
  string(REPLACE "${BINARY_DIR}" "@BINARY_DIR@" output "${output}")
endif()
if(SOURCE_DIR)
  string(REPLACE "${SOURCE_DIR}" "@SOURCE_DIR@" output "${output}")
endif()

set(failures "")
if(NOT "${status}" STREQUAL "${STATUS}")
  string(APPEND failures "exit status ${status}, expected ${STATUS}\n")
endif()
if(EXPECTED)
  file(READ "${EXPECTED}" expected)
  if(NOT output STREQUAL expected)
    string(APPEND failures "the output differs from ${EXPECTED}\n")
  endif()
endif()
set(index 1)
while(DEFINED MATCH_COUNT AND index LESS_EQUAL MATCH_COUNT)
  if(NOT DEFINED MATCH${index})
    message(FATAL_ERROR "MATCH${index} is not set (MATCH_COUNT is ${MATCH_COUNT})")
  endif()
  if(NOT output MATCHES "${MATCH${index}}")
    string(APPEND failures "the output does not match: ${MATCH${index}}\n")
  endif()
  math(EXPR index "${index} + 1")
endwhile()
if(DEFINED NO_MATCH AND output MATCHES "${NO_MATCH}")
  string(APPEND failures "the output matches what it must not: ${NO_MATCH}\n")
endif()

if(failures)
  message(FATAL_ERROR "${failures}--- output ---\n${output}--- end of output ---")
endif()

# Runs a program and checks its exit status and what it writes (standard output, then standard
# error), for the tests of the tools and examples:
#
#   cmake -DCOMMAND=<program>|<argument>|... -DSTATUS=<n>
#         [-DEXPECTED=<file>]                 the whole output, exactly
#         [-DMATCH=<regex>] [-DMATCH2=<regex>] [-DMATCH3=<regex>]   must each be found
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
foreach(pattern MATCH MATCH2 MATCH3)
  if(DEFINED ${pattern} AND NOT output MATCHES "${${pattern}}")
    string(APPEND failures "the output does not match: ${${pattern}}\n")
  endif()
endforeach()
if(DEFINED NO_MATCH AND output MATCHES "${NO_MATCH}")
  string(APPEND failures "the output matches what it must not: ${NO_MATCH}\n")
endif()

if(failures)
  message(FATAL_ERROR "${failures}--- output ---\n${output}--- end of output ---")
endif()

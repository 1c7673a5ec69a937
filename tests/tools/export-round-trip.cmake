# -values -export: the exported file, read alone with the same specification, gives the same
# values (compared as JSON without the sources, which differ by design). The values come from
# a value file, the machine file and a command line with texts that need escaping.
#
#   cmake -DZELK_CONFIG=<zelk-config> -DSOURCE_DIR=<dir> -DWORK_DIR=<dir> -P export-round-trip.cmake
cmake_minimum_required(VERSION 3.18)

set(example -installation ${SOURCE_DIR}/examples/installation)
set(exported ${WORK_DIR}/exported.xml)
file(MAKE_DIRECTORY ${WORK_DIR})
file(REMOVE ${exported})

function(values result)
  execute_process(COMMAND ${ZELK_CONFIG} -values -json -specification zexport ${example} ${ARGN}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "zelk-config -values ${ARGN}: status ${status}\n${err}")
  endif()
  string(REGEX REPLACE "\n *\"sources\": [^\n]*" "" out "${out}")
  set(${result} "${out}" PARENT_SCOPE)
endfunction()

values(original -valueFile export-customers.xml -export ${exported}
  -- "-className" "Order & <Line> \"x\"" "-className" "Grüße €" "-where" "a\tb\nc")
values(readBack -noMachineConfig -valueFile ${exported})
if(NOT original STREQUAL readBack)
  file(READ ${exported} written)
  message(FATAL_ERROR "the exported values read back differently\n--- values ---\n${original}\n"
    "--- read back ---\n${readBack}\n--- exported file ---\n${written}")
endif()
foreach(expected "\"texts\": \\[\"Order & <Line> \\\\\"x\\\\\"\", \"Grüße €\", \"Customer\", \"Address\"\\]"
                 "\"texts\": \\[\"a\\\\tb\\\\nc\"\\]" "\"container\": \"lockServer\"")
  if(NOT original MATCHES "${expected}")
    message(FATAL_ERROR "the values lack ${expected}:\n${original}")
  endif()
endforeach()

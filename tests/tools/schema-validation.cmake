# The schemas zelk-config writes, checked with xmllint: every registry and value file of the
# example installation validates, and a wrong type or an unknown attribute is reported at its line.
#
#   cmake -DZELK_CONFIG=<zelk-config> -DSOURCE_DIR=<dir> -DWORK_DIR=<dir> -P schema-validation.cmake
cmake_minimum_required(VERSION 3.18)

find_program(XMLLINT xmllint REQUIRED)
set(example ${SOURCE_DIR}/examples/installation)
set(data ${SOURCE_DIR}/tests/tools/zelk-config/data)
file(MAKE_DIRECTORY ${WORK_DIR})

function(write_schema file)
  execute_process(COMMAND ${ZELK_CONFIG} -installation ${example} ${ARGN}
    OUTPUT_FILE ${WORK_DIR}/${file} RESULT_VARIABLE status ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "zelk-config ${ARGN} failed: ${err}")
  endif()
endfunction()

# validate(<schema> <0|1> <file>... [MATCH <regex>...])
function(validate schema expected)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "MATCH")
  execute_process(COMMAND ${XMLLINT} --noout --schema ${WORK_DIR}/${schema} ${arg_UNPARSED_ARGUMENTS}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if((expected EQUAL 0 AND NOT status EQUAL 0) OR (NOT expected EQUAL 0 AND status EQUAL 0))
    message(FATAL_ERROR "xmllint with ${schema}: status ${status}, expected ${expected}\n${err}")
  endif()
  foreach(pattern IN LISTS arg_MATCH)
    if(NOT err MATCHES "${pattern}")
      message(FATAL_ERROR "xmllint with ${schema} does not report: ${pattern}\n${err}")
    endif()
  endforeach()
endfunction()

write_schema(registry.xsd -schema registry)
file(GLOB_RECURSE registries ${example}/*.crg)
validate(registry.xsd 0 ${registries} ${SOURCE_DIR}/tools/zelk-config/zelk-config.crg)
validate(registry.xsd 1 ${data}/broken/plugins/extra/d-syntax.crg
  MATCH "d-syntax.crg:3: .*attribute 'colour': The attribute 'colour' is not allowed")

foreach(tool zbackup zexport zverify)
  write_schema(${tool}.xsd -schema values -specification ${tool})
  validate(${tool}.xsd 0 ${example}/config/machine.config)
endforeach()
validate(zbackup.xsd 0 ${example}/config/backup-nightly.xml)
validate(zexport.xsd 0 ${example}/config/export-customers.xml)
validate(zbackup.xsd 1 ${data}/bad-retries.xml ${data}/unknown-attribute.xml
  MATCH "bad-retries.xml:3: .*attribute 'retries': .*The value 'many' is not accepted"
  MATCH "unknown-attribute.xml:2: .*The attribute 'colour' is not allowed")

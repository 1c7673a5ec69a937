# zelk-config and the example tool, run on the example installation (and on broken ones) with
# their exit status and output checked by tools/check-output.cmake.
# The index of element positions is tested on its own, with the tool's source file.
if(TARGET tools_zelk-config_RegistryIndexTest)
  target_sources(tools_zelk-config_RegistryIndexTest PRIVATE
    ${PROJECT_SOURCE_DIR}/tools/zelk-config/RegistryIndex.cpp)
  target_include_directories(tools_zelk-config_RegistryIndexTest PRIVATE
    ${PROJECT_SOURCE_DIR}/tools/zelk-config)
endif()

if(NOT ZELK_BUILD_TOOLS)
  return()
endif()

# The command table against the tool's registry file and the README; it links the tool's pieces.
add_executable(tools_zelk-config_CommandTableChecks
  ${CMAKE_CURRENT_SOURCE_DIR}/tools/zelk-config/CommandTableChecks.cpp)
target_link_libraries(tools_zelk-config_CommandTableChecks PRIVATE zelk_config_tool zelk_test_support)
gtest_discover_tests(tools_zelk-config_CommandTableChecks DISCOVERY_MODE PRE_TEST
  DISCOVERY_TIMEOUT 60 PROPERTIES LABELS unit)

set(ZELK_TOOL_DATA ${CMAKE_CURRENT_SOURCE_DIR}/tools/zelk-config/data)
set(ZELK_TOOL_EXPECTED ${CMAKE_CURRENT_SOURCE_DIR}/tools/zelk-config/expected)
set(ZELK_EXAMPLE_INSTALLATION ${PROJECT_SOURCE_DIR}/examples/installation)

# zelk_output_test(<name> <status> COMMAND <word>... [EXPECTED <file>] [MATCH <regex>...]
#                  [NO_MATCH <regex>])
function(zelk_output_test name status)
  cmake_parse_arguments(PARSE_ARGV 2 test "" "EXPECTED;NO_MATCH" "COMMAND;MATCH")
  list(JOIN test_COMMAND "|" command)
  set(arguments -DCOMMAND=${command} -DSTATUS=${status}
    -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DBINARY_DIR=${PROJECT_BINARY_DIR})
  if(test_EXPECTED)
    list(APPEND arguments -DEXPECTED=${test_EXPECTED})
  endif()
  # Any number of patterns, numbered from 1.
  set(count 0)
  foreach(pattern IN LISTS test_MATCH)
    math(EXPR count "${count} + 1")
    list(APPEND arguments "-DMATCH${count}=${pattern}")
  endforeach()
  list(APPEND arguments -DMATCH_COUNT=${count})
  if(DEFINED test_NO_MATCH)
    list(APPEND arguments "-DNO_MATCH=${test_NO_MATCH}")
  endif()
  add_test(NAME ${name}
    COMMAND ${CMAKE_COMMAND} ${arguments} -P ${CMAKE_CURRENT_SOURCE_DIR}/tools/check-output.cmake
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(${name} PROPERTIES LABELS tools)
endfunction()

set(zc $<TARGET_FILE:zelk-config>)
set(example -installation ${ZELK_EXAMPLE_INSTALLATION})

# Its own command line, parsed by the library.
zelk_output_test(zelk-config.own-help 0 COMMAND ${zc} -help -width 80
  MATCH "Usage: zelk-config.*\\(-check \\| -list \\| -usage \\| -help \\| -show \\| -values \\| -readKey \\| -schema kind \\| -completion shell \\| -man\\)"
  MATCH "-registry file +A registry file to check")
zelk_output_test(zelk-config.ambiguous-flag 2 COMMAND ${zc} -value
  MATCH "The flag \"value\" is ambiguous, matching the following allowed flags: values, valueFile")
zelk_output_test(zelk-config.two-commands 2 COMMAND ${zc} -check -list
  MATCH "The \"check\" and \"list\" parameters are mutually exclusive")
zelk_output_test(zelk-config.narrow-width 2 COMMAND ${zc} -help -width 5
  MATCH "the width must be from 20 to 1000")

# The example installation: clean, listed, helped, shown.
zelk_output_test(zelk-config.check-example 0 COMMAND ${zc} -check ${example}
  EXPECTED ${ZELK_TOOL_EXPECTED}/check-example.txt)
zelk_output_test(zelk-config.list 0 COMMAND ${zc} -list ${example} -width 80
  EXPECTED ${ZELK_TOOL_EXPECTED}/list.txt)
zelk_output_test(zelk-config.usage 0 COMMAND ${zc} -usage -spec zbackup ${example}
  EXPECTED ${ZELK_TOOL_EXPECTED}/usage-zbackup.txt)
zelk_output_test(zelk-config.help 0 COMMAND ${zc} -help -spec zbackup ${example} -width 80
  MATCH "^zbackup - backs up a zelk object database"
  MATCH "-destination host::path +Where the backup is written"
  MATCH "-object oid +An object to back up, with everything it references\\."
  NO_MATCH "traceLocks")
zelk_output_test(zelk-config.show 0 COMMAND ${zc} -show -spec zexport ${example}
  MATCH "id: \"zexport\""
  MATCH "One Of")
zelk_output_test(zelk-config.unknown-specification 1 COMMAND ${zc} -help -spec nosuch ${example}
  MATCH "zelk-config: The \"nosuch\" specification was not found")

# Values: merged from the command line, a value file and the machine file, with their sources.
zelk_output_test(zelk-config.values 0
  COMMAND ${zc} -values -spec zbackup ${example} -valueFile backup-nightly.xml
          -- -destination backup2::/spare -verbose
  EXPECTED ${ZELK_TOOL_EXPECTED}/values-zbackup.txt)
# -explain: every source of each value with where it was written, in force or overridden; a
# value-file value over machine.config's, a command-line word over a file's, defaults from the
# registry, and the entries of an unbounded value from two sources.
zelk_output_test(zelk-config.values-explain 0
  COMMAND ${zc} -values -explain -spec zbackup ${example} -valueFile backup-nightly.xml
          -- -destination backup2::/spare -verbose -object 1-2-3-4
  EXPECTED ${ZELK_TOOL_EXPECTED}/values-explain-zbackup.txt)
# Words of the tool's command line are counted as the tool sees them, its own
# -loadConfiguration included; a value in an instance of an unbounded container is explained
# there.
zelk_output_test(zelk-config.values-explain-json 0
  COMMAND ${zc} -values -explain -json -spec zexport ${example} -noMachineConfig
          -- -loadConfiguration export-customers.xml -className Order
  MATCH "\"name\": \"className\",.*\"explain\": .\n *{\n *\"source\": \"command line\",\n *\"inForce\": true,\n *\"entries\": .\n *{\n *\"text\": \"Order\",\n *\"argument\": 3\n"
  MATCH "\"text\": \"Address\",\n *\"file\": \"@SOURCE_DIR@/examples/installation/config/export-customers.xml\",\n *\"line\": 9,\n *\"column\": 14\n"
  MATCH "\"name\": \"width\",.*\"texts\": .\"20\".,.*\"inForce\": true,.*\"column\": 28\n.*\"source\": \"default\",\n *\"inForce\": false,\n *\"entries\": .\n *{\n *\"text\": \"0\",\n *\"file\": \"@SOURCE_DIR@/examples/installation/etc/zelk.crg\",\n *\"line\": 162,")
zelk_output_test(zelk-config.explain-without-values 2 COMMAND ${zc} -list -explain
  MATCH "^zelk-config: -explain goes with -values\n")
zelk_output_test(zelk-config.values-unbounded-containers 0
  COMMAND ${zc} -values -spec zexport ${example} -valueFile export-customers.xml
          -- -className Order
  MATCH "className \\(string, unbounded\\) = Order \\[command line\\], Customer \\[export-customers.xml\\], Address \\[export-customers.xml\\]"
  MATCH "  column\n    attribute \\(string\\) = city  \\[export-customers.xml\\]\n    width \\(uint32\\) = 20"
  MATCH "timeout \\(double\\) = 30  \\[default\\]")
zelk_output_test(zelk-config.values-without-machine-file 0
  COMMAND ${zc} -values -spec zverify ${example} -noMachineConfig -- -database sales
  MATCH "maxErrors \\(int32\\) = -1  \\[default\\]")
zelk_output_test(zelk-config.values-flag-inside-container 0
  COMMAND ${zc} -values -spec zbackup ${example} -noMachineConfig
          -- -database a -destination b::c -mailTo x@y
  MATCH "\n  mailTo \\(string\\) = x@y  \\[command line\\]  \\(not read here: it belongs in \"notify\"\\)\n$"
  NO_MATCH "\n  notify\n")
zelk_output_test(zelk-config.values-missing 1
  COMMAND ${zc} -values -spec zbackup ${example} -- -verbose
  MATCH "^zelk-config: A required flag was not specified. You must provide one of the following flags: database, destination\n$")
zelk_output_test(zelk-config.values-validator 1
  COMMAND ${zc} -values -spec zbackup ${example} -- -database a -destination ::c
  MATCH "zelk-config: destination: \"::c\" is rejected by the \"storageLocation\" validator: Value is not properly formatted")
# Problems of a value file are placed where they stand in it, machine.config's too.
zelk_output_test(zelk-config.values-bad-number-in-file 1
  COMMAND ${zc} -values -spec zbackup ${example} -valueFile ${ZELK_TOOL_DATA}/bad-retries.xml
  MATCH "^zelk-config: @SOURCE_DIR@/tests/tools/zelk-config/data/bad-retries.xml:3:59: retries: \"many\" is not a valid UInt32\n$")
zelk_output_test(zelk-config.values-unknown-in-file 1
  COMMAND ${zc} -values -spec zbackup ${example} -valueFile ${ZELK_TOOL_DATA}/unknown-attribute.xml
  MATCH "^zelk-config: @SOURCE_DIR@/tests/tools/zelk-config/data/unknown-attribute.xml:2:59: \"colour\" is not a recognized parameter\n$")
zelk_output_test(zelk-config.values-twice-in-machine-file 1
  COMMAND ${zc} -values -spec zbackup ${example} -configDir ${ZELK_TOOL_DATA}/machine-file
          -- -database a -destination b::c
  MATCH "^zelk-config: @SOURCE_DIR@/tests/tools/zelk-config/data/machine-file/machine.config:4:28: The \"logLevel\" parameter cannot be provided more than once\n$")
zelk_output_test(zelk-config.values-malformed-file 1
  COMMAND ${zc} -values -spec zbackup ${example} -valueFile ${ZELK_TOOL_DATA}/malformed.xml
  MATCH "zelk-config: .*line 4, column 1")

# JSON for scripts: one object for each specification; each value with its type, texts, sources.
# (Square brackets are matched with ".": an unbalanced one would join the patterns' list.)
zelk_output_test(zelk-config.list-json 0 COMMAND ${zc} -list -json ${example}
  MATCH "^.\n  {\n    \"id\": \"zbackup\",\n    \"name\": \"zbackup\",\n    \"title\": \"zbackup - backs up a zelk object database\","
  MATCH "\"id\": \"zverify\".*\n  }\n.\n$")
zelk_output_test(zelk-config.values-json 0
  COMMAND ${zc} -values -json -spec zexport ${example} -valueFile export-customers.xml
          -- -className "Order \"1\""
  MATCH "\"name\": \"className\",\n *\"type\": \"string\",\n *\"unbounded\": true,\n *\"texts\": .\"Order \\\\\"1\\\\\"\", \"Customer\", \"Address\".,\n *\"sources\": .\"command line\", \"@SOURCE_DIR@/examples/installation/config/export-customers.xml\", \"@SOURCE_DIR@/examples/installation/config/export-customers.xml\"."
  MATCH "\"container\": \"column\",\n *\"values\": .\n *{\n *\"name\": \"attribute\",\n *\"type\": \"string\",\n *\"unbounded\": false,\n *\"texts\": .\"name\"."
  MATCH "\"name\": \"batchSize\",\n *\"type\": \"uint32\",\n *\"unbounded\": false,\n *\"texts\": .\"1000\".,\n *\"sources\": .\"@SOURCE_DIR@/examples/installation/config/machine.config\".")
zelk_output_test(zelk-config.json-without-list-or-values 2 COMMAND ${zc} -check -json
  MATCH "^zelk-config: -json goes with -list, -values or -readKey\n$")
zelk_output_test(zelk-config.format-json 0 COMMAND ${zc} -list -format json ${example}
  MATCH "^.\n  {\n    \"id\": \"zbackup\",")
zelk_output_test(zelk-config.format-not-taken 2 COMMAND ${zc} -show -spec zbackup -format json
  MATCH "^zelk-config: -format json goes with -list, -values or -readKey\n$")

# Schemas, checked with xmllint; bash completion, asked as bash asks it; export, read back.
add_test(NAME zelk-config.schema
  COMMAND ${CMAKE_COMMAND} -DZELK_CONFIG=${zc} -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
    -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/schema-validation
    -P ${CMAKE_CURRENT_SOURCE_DIR}/tools/schema-validation.cmake)
add_test(NAME zelk-config.completion-zsh-fish
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/completion-shells.sh ${zc} ${ZELK_EXAMPLE_INSTALLATION})
add_test(NAME zelk-config.man
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/man.sh ${zc} ${ZELK_EXAMPLE_INSTALLATION})
add_test(NAME zelk-config.completion
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/completion.sh ${zc} ${ZELK_EXAMPLE_INSTALLATION})
add_test(NAME zelk-config.export-round-trip
  COMMAND ${CMAKE_COMMAND} -DZELK_CONFIG=${zc} -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
    -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/export-round-trip
    -P ${CMAKE_CURRENT_SOURCE_DIR}/tools/export-round-trip.cmake)
add_test(NAME zelk-config.hostile-names
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/hostile-names.sh ${zc}
    ${ZELK_TOOL_DATA}/hostile/zelk.crg ${CMAKE_CURRENT_BINARY_DIR}/hostile-names)
set_tests_properties(zelk-config.schema zelk-config.completion zelk-config.completion-zsh-fish zelk-config.man zelk-config.export-round-trip
  zelk-config.hostile-names PROPERTIES LABELS tools)
# FIFOs in every place, a full disk, value files that give nothing, skipped plug-ins. Every run
# inside has its own time limit; the test's own is the last guard against a hang.
add_test(NAME zelk-config.files
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/files.sh ${zc} ${ZELK_EXAMPLE_INSTALLATION}
    $<TARGET_FILE:zelk_test_GoodPlugin> ${CMAKE_CURRENT_BINARY_DIR}/files)
set_tests_properties(zelk-config.files PROPERTIES LABELS tools TIMEOUT 600)

# Files over the size limit are refused before they are read.
zelk_output_test(zelk-config.values-file-too-large 1
  COMMAND ${zc} -values -spec zbackup ${example} -maxFileSize 600 -valueFile backup-nightly.xml
  MATCH "zelk-config: File \"[^\"]*/etc/zelk.crg\" is [0-9]+ bytes long, more than the limit of 600 bytes")
zelk_output_test(zelk-config.check-file-too-large 1
  COMMAND ${zc} -check ${example} -maxFileSize 600
  MATCH "zelk.crg\" is [0-9]+ bytes long, more than the limit of 600 bytes")

# Installations that are missing or broken.
zelk_output_test(zelk-config.missing-installation 1
  COMMAND ${zc} -list -installation ${ZELK_TOOL_DATA}/nosuch
  MATCH "^zelk-config: the installation directory \"@SOURCE_DIR@/tests/tools/zelk-config/data/nosuch\" was not found\n$")
zelk_output_test(zelk-config.no-main-registry 1
  COMMAND ${zc} -check -installation ${ZELK_TOOL_DATA}
  MATCH "Unable to find the zelk.crg file. Looked in the etc directory \"@SOURCE_DIR@/tests/tools/zelk-config/data/etc\"")
zelk_output_test(zelk-config.check-broken 1
  COMMAND ${zc} -check -installation tests/tools/zelk-config/data/broken
  EXPECTED ${ZELK_TOOL_EXPECTED}/check-broken.txt)
zelk_output_test(zelk-config.list-broken 1
  COMMAND ${zc} -list -installation ${ZELK_TOOL_DATA}/broken
  MATCH "zelk-config: the installation does not load"
  MATCH "run \"zelk-config -check\"")
zelk_output_test(zelk-config.check-named-files 1
  COMMAND ${zc} -check -registry examples/installation/plugins/zverify/zverify.crg
  MATCH "^examples/installation/plugins/zverify/zverify.crg:[0-9]+:7: Parameter \"help\" was not found\n1 problem found in 1 registry file\\.\n$")
# A flag that is a prefix of another visible flag is ambiguous however it is typed; a hidden
# flag is never abbreviated to, so its longer namesake does not shadow it.
zelk_output_test(zelk-config.check-prefix-flags 1
  COMMAND ${zc} -check -registry tests/tools/zelk-config/data/prefix.crg
  MATCH "^tests/tools/zelk-config/data/prefix.crg:12:7: the flag -cache can never be given on the command line: it is a prefix of -cacheBytes, so every -cache is ambiguous\n"
  MATCH "\ntests/tools/zelk-config/data/prefix.crg:15:9: the flag -port can never be given on the command line: it is a prefix of -portRangeEnd, so every -port is ambiguous\n2 problems found in 1 registry file\\.\n$")
zelk_output_test(zelk-config.check-unused-and-hidden 1
  COMMAND ${zc} -check -registry examples/installation/etc/zelk.crg
          -registry tests/tools/zelk-config/data/unused.crg
  MATCH "^tests/tools/zelk-config/data/unused.crg:7:5: parameter \"spare\" is not used by any specification\n"
  MATCH "\ntests/tools/zelk-config/data/unused.crg:12:7: hidden has no effect on a one-of: mark its members hidden instead\n2 problems found in 2 registry files\\.\n$")

# The example tool: every value type, help, a listener, and its errors.
set(zbackup $<TARGET_FILE:backup-tool>)
zelk_output_test(example.nightly-dry-run 0
  COMMAND ${zbackup} -loadConfiguration backup-nightly.xml -dryRun
  EXPECTED ${ZELK_TOOL_EXPECTED}/example-nightly.txt)
zelk_output_test(example.every-type 0
  COMMAND ${zbackup} -database sales -destination b1::/x -mode differential -compression none
          -object 3-2-5-1 -object 7 -sinceTransaction 77 -baseBackup b1::/base -priority 5
          -maxSize 1000 -timeout 2.5 -verbose -logLevel debug
  MATCH "mode: differential \\(2\\)\n  compression: none \\(level 0\\)\n  object: 3-2-5-1 \\(database 3, container 2, page 5, slot 1\\)\n  object: 7 \\(database 7, container 0, page 0, slot 0\\)"
  MATCH "changes since transaction 77, on top of b1::/base\n  retries: 4, priority: 5, maximum size: 1000 bytes, lock timeout: 2.5 s\n  dry run: no, verbose: yes, log level: debug"
  NO_MATCH "listener")
zelk_output_test(example.missing-values 2 COMMAND ${zbackup} -verbose
  MATCH "zbackup: A required flag was not specified. You must provide one of the following flags: database, destination\nUsage: zbackup")

# The installed package: zelk-config, the example installation and the example tool built on its
# own against find_package(ZelkConfiguration), and again with pkg-config's flags.
if(ZELK_INSTALL)
  set(ZELK_TOOLS_SANITIZER_FLAGS "")
  if(ZELK_SANITIZE)
    set(ZELK_TOOLS_SANITIZER_FLAGS "-fsanitize=address,undefined")
  endif()
  add_test(NAME installed-example
    COMMAND ${CMAKE_COMMAND}
      -DBINARY_DIR=${PROJECT_BINARY_DIR}
      -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/installed-example
      -DGENERATOR=${CMAKE_GENERATOR}
      -DCXX=${CMAKE_CXX_COMPILER}
      -DSANITIZER_FLAGS=${ZELK_TOOLS_SANITIZER_FLAGS}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/tools/installed-example.cmake)
  set_tests_properties(installed-example PROPERTIES LABELS "tools;package")
endif()

# -values -watch: a good and a bad save to a copy of the example installation, then SIGTERM.
add_test(NAME zelk-config.watch
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tools/watch.sh ${zc} ${ZELK_EXAMPLE_INSTALLATION}
    ${CMAKE_CURRENT_BINARY_DIR}/watch)
set_tests_properties(zelk-config.watch PROPERTIES LABELS tools)

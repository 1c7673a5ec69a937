# Installs the build at BINARY_DIR into a fresh prefix, then runs the installed zelk-config on the
# installed example installation and builds the example tool on its own against the installed
# package, and runs it. Run with cmake -P; every step must succeed.
cmake_minimum_required(VERSION 3.18)
foreach(variable BINARY_DIR SOURCE_DIR WORK_DIR GENERATOR CXX)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "${variable} is not set")
  endif()
endforeach()

# run(<expected status> <regex the output must match> <command>...)
function(run status pattern)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT "${result}" STREQUAL "${status}" OR NOT output MATCHES "${pattern}")
    message(FATAL_ERROR "Failed (status ${result}, expected ${status}; expected output "
                        "matching \"${pattern}\"): ${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
set(share ${prefix}/share/zelk)
run(0 "" ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix})
foreach(file bin/zelk-config share/zelk/zelk-config.crg share/zelk/schema/registry.xsd
             share/zelk/examples/installation/etc/zelk.crg
             share/zelk/examples/installation/config/machine.config
             share/zelk/examples/installation/plugins/zverify/zverify.crg
             share/zelk/examples/installation/plugins/validators/libzelkportvalidator.so
             share/zelk/examples/backup-tool/main.cpp)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "${file} was not installed under ${prefix}")
  endif()
endforeach()

# The installed tool finds its own registry file and works on the installed example.
set(zc ${prefix}/bin/zelk-config -installation ${share}/examples/installation)
run(0 "^No problems found in 2 registry files\\.\n$" ${zc} -check)
run(0 "zexport: zexport - exports objects to files" ${zc} -list)
run(0 "object \\(OID, unbounded\\) = 3-2-5-1, 3-7-1-12  \\[backup-nightly.xml\\]"
    ${zc} -values -specification zbackup -valueFile backup-nightly.xml)

# The example tool, built on its own with find_package(ZelkConfiguration).
set(configure_args -S ${share}/examples/backup-tool -B ${WORK_DIR}/build -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix} -DZBACKUP_INSTALLATION=${share}/examples/installation)
if(SANITIZER_FLAGS)
  list(APPEND configure_args "-DCMAKE_CXX_FLAGS=${SANITIZER_FLAGS}"
       "-DCMAKE_EXE_LINKER_FLAGS=${SANITIZER_FLAGS}")
endif()
run(0 "" ${CMAKE_COMMAND} ${configure_args})
run(0 "" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(0 "Backing up database \"sales\" to backup1::/backups/sales/nightly\n.*listener: retries changed from 4 to 0\n"
    ${WORK_DIR}/build/zbackup -loadConfiguration backup-nightly.xml -dryRun)
run(2 "You must provide one of the following flags: database, destination"
    ${WORK_DIR}/build/zbackup)

# The same tool compiled and linked with nothing but what pkg-config says of the package.
file(GLOB_RECURSE pc ${prefix}/*/zelkconfiguration.pc)
execute_process(COMMAND pkg-config --define-prefix --cflags --libs ${pc} RESULT_VARIABLE result
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0 OR NOT flags MATCHES "-L([^ ]+)")
  message(FATAL_ERROR "pkg-config does not read ${pc}: ${flags}")
endif()
set(libdir ${CMAKE_MATCH_1})
separate_arguments(flags UNIX_COMMAND "${flags} ${SANITIZER_FLAGS}")
run(0 "" ${CXX} -std=c++17 "-DZBACKUP_INSTALLATION=\"${share}/examples/installation\""
    ${share}/examples/backup-tool/main.cpp ${flags} -Wl,-rpath,${libdir}
    -o ${WORK_DIR}/zbackup-pkg-config)
run(2 "You must provide one of the following flags: database, destination"
    ${WORK_DIR}/zbackup-pkg-config)
message("The installed zelk-config and example tool work.")

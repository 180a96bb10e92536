# Installs the build tree BUILD into a new folder under WORK, builds the program EXAMPLE against it as a
# stranger would, runs it, and imports the file that it wrote with the installed plugin.
#     cmake -DBUILD= -DEXAMPLE= -DWORK= -DCONFIG= -DCOMPILER= -DFLAGS= -DGENERATOR= -P check.cmake

# step(TEXT COMMAND...): runs a command, with its output in `output`.
function(step text)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${text} failed (${status}):\n${out}\n${err}")
    endif()
    set(output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
unset(ENV{DESTDIR})
step("Installing" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first --config "${CONFIG}")
# What was installed may be moved.
file(RENAME ${WORK}/first ${WORK}/prefix)

step("Configuring the example" ${CMAKE_COMMAND} -G ${GENERATOR} -S ${EXAMPLE} -B ${WORK}/build
    -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_BUILD_TYPE=${CONFIG}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS})
step("Building the example" ${CMAKE_COMMAND} --build ${WORK}/build)

set(file ${WORK}/roundtrip.cdf)
step("The example" ${WORK}/build/roundtrip ${file})
string(CONCAT expected
    "Three scans of decane\n"
    "300 s, 3 points\n    57.1: 1000\n    71.1: 450\n    142.2: 60\n"
    "300.5 s, 3 points\n    57.1: 1001\n    71.1: 450\n    142.2: 60\n"
    "301 s, 3 points\n    57.1: 1002\n    71.1: 450\n    142.2: 60\n")
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "The example printed:\n${output}")
endif()

# As it is, and as a file of a newer kind, which goes through the installed program for the first look.
step("nccopy" nccopy -k nc4 ${file} ${WORK}/newer.cdf)
foreach(kind_of_file ${file} ${WORK}/newer.cdf)
    step("The installed aia-import" ${WORK}/prefix/bin/aia-import ${kind_of_file})
    foreach(line "Scans: +3\n" "Start: +5 minutes\n" "Masses: +3, from 57.1 to 142.2" "Points read: +9\n")
        if(NOT output MATCHES "${line}")
            message(FATAL_ERROR "aia-import printed no line \"${line}\":\n${output}")
        endif()
    endforeach()
endforeach()

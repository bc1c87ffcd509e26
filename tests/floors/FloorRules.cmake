# The build's include check refuses what breaks the floors and accepts what keeps them:
#   cmake -DCHECK=<cmake/CheckIncludes.cmake> -DWORK=<scratch folder> -P FloorRules.cmake
file(REMOVE_RECURSE ${WORK})
set(failures "")

# Writes one source line into a file of the folder and runs the check on it.
function(expect verdict folder line)
    string(MAKE_C_IDENTIFIER "${folder}${line}" name)
    set(file ${WORK}/${name}.cpp)
    file(WRITE ${file} "${line}\n")
    execute_process(COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} -DFILES=${file} -P ${CHECK}
                    RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
    if(verdict STREQUAL "refused" AND status EQUAL 0)
        set(failures "${failures}  src/${folder} may not: ${line}\n" PARENT_SCOPE)
    elseif(verdict STREQUAL "accepted" AND NOT status EQUAL 0)
        set(failures "${failures}  src/${folder} may: ${line}\n" PARENT_SCOPE)
    endif()
endfunction()

expect(refused micropause "#include \"shell/TarvoProgram.h\"")        # a floor above
expect(refused micropause "#include \"exercise/SchemeStore.h\"")      # a neighbour on the same floor
expect(refused platform/linux "#include \"platform/fake/FakeClock.h\"")
expect(refused settings "#include \"platform/fake/MemoryRegistryStore.h\"")
expect(refused micropause "#include \"platform/linux/LinuxPlatform.h\"") # forms do not build the platform
expect(refused shell "#include \"platform/linux/QtTimer.h\"")          # its private parts
expect(refused engine "#include <xcb/xcb.h>")
expect(refused engine "const auto now = QDateTime::currentDateTime();")
expect(refused micropause "QTimer timer;")
expect(accepted shell "#include \"platform/linux/LinuxPlatform.h\"")
expect(accepted shell "#include \"micropause/frmTarvo.h\"")
expect(accepted engine "#include \"settings/Options.h\"")
expect(accepted engine "#include \"engine/Scheduler.h\"")
expect(accepted platform/linux "#include \"platform/linux/QtTimer.h\"")
expect(accepted platform/linux "#include <xcb/xcb.h>")
expect(accepted micropause "QTimerEvent* event;")
expect(accepted video "QTimer timer;")                               # a program of its own, without seams

if(failures)
    message(FATAL_ERROR "The include check is wrong:\n${failures}")
endif()

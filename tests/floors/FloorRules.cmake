# The build's include check refuses what breaks the floors and accepts what keeps them, and the build
# fails for what would escape the checks:
#   cmake -DCHECK=<cmake/CheckIncludes.cmake> -DFLOORS=<cmake/TarvoFloors.cmake> -DWORK=<scratch folder>
#         -P FloorRules.cmake
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
expect(refused micropause "#include \"platform/linux/LinuxFiles.h\"")
expect(refused shell "#include \"platform/linux/LinuxFiles.h\"")
expect(accepted app "#include \"platform/linux/LinuxFiles.h\"")
expect(accepted video "QTimer timer;")                               # a program of its own, without seams

# A house in miniature: one library that keeps the rules, and what escapes them.
set(house ${WORK}/house)
file(WRITE ${house}/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)\nproject(house LANGUAGES NONE)\n"
     "include(${FLOORS})\nadd_subdirectory(src/core)\nadd_subdirectory(src/engine)\ntarvo_check_floors()\n")
file(WRITE ${house}/src/core/CMakeLists.txt "add_library(kept STATIC Kept.cpp Kept.h)\ntarvo_floor(kept core)\n"
     "add_library(late STATIC Late.cpp)\ntarvo_floor(late core)\ntarget_sources(late PRIVATE Later.h)\n"
     "add_library(nowhere STATIC Late.cpp)\ntarvo_floor(nowhere nowhere)\n")
file(WRITE ${house}/src/engine/CMakeLists.txt "add_library(unplaced STATIC Unplaced.cpp)\n"
     "add_executable(tool ../core/Late.cpp)\nadd_library(misplaced STATIC ../core/Late.cpp)\ntarvo_floor(misplaced core)\n")
foreach(file core/Kept.cpp core/Kept.h core/Late.cpp core/Later.h engine/Unplaced.cpp engine/Stray.h)
    file(WRITE ${house}/src/${file} "")
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${house} -B ${house}/build RESULT_VARIABLE status
                OUTPUT_VARIABLE output ERROR_VARIABLE output)
string(REGEX REPLACE "[ \n]+" " " output "${output}")
foreach(escape "unplaced (src/engine) has no floor" "tool (src/engine) has no floor"
               "misplaced is defined in src/engine but placed in src/core"
               "nowhere is placed in src/nowhere, which is no floor"
               "src/core/Later.h was added to late after its tarvo_floor()"
               "src/engine/Stray.h is a source of no target with a floor"
               "src/engine/Unplaced.cpp is a source of no target with a floor")
    string(FIND "${output}" "${escape}" at)
    if(status EQUAL 0 OR at EQUAL -1)
        string(APPEND failures "  the build does not fail for: ${escape}\n")
    endif()
endforeach()
if(output MATCHES "Kept|kept")
    string(APPEND failures "  the build refuses a library that keeps the rules: ${output}\n")
endif()

if(failures)
    message(FATAL_ERROR "The floor checks are wrong:\n${failures}")
endif()

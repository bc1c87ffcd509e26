# The include rules of the house, checked over one library's sources at build time:
#   cmake -DFOLDER=<folder below src> -DFILES=<a|b|...> [-DSTAMP=<file>] -P CheckIncludes.cmake
# It fails, naming each offending line, when a file
#   - includes a folder on its own floor or above (its own folder aside),
#   - includes the Linux platform from anywhere but the shell and the mains, or anything of it but
#     its public face, platform/linux/LinuxPlatform.h, and for the mains also its display-free part,
#     platform/linux/LinuxFiles.h (the Linux platform itself aside),
#   - includes the test doubles of platform/fake,
#   - reaches X11 or libcanberra directly, outside the Linux platform,
#   - reads the clock, starts a timer or a process directly, outside the Linux platform (and the video
#     helper, a program of its own).
include(${CMAKE_CURRENT_LIST_DIR}/TarvoFloorNumbers.cmake)

string(REPLACE "|" ";" FILES "${FILES}")
tarvo_floor_of(${FOLDER} own)
set(problems "")
foreach(file IN LISTS FILES)
    file(STRINGS ${file} lines)
    set(number 0)
    foreach(line IN LISTS lines)
        math(EXPR number "${number} + 1")
        set(where "${file}:${number}")
        if(line MATCHES "^[ \t]*#[ \t]*include[ \t]*\"([a-z]+)/([a-z]+/)?([^\"]*)\"")
            set(top ${CMAKE_MATCH_1})
            set(folder ${CMAKE_MATCH_1})
            if(top STREQUAL "platform")
                string(REGEX REPLACE "/$" "" sub "${CMAKE_MATCH_2}")
                set(folder platform/${sub})
            endif()
            tarvo_floor_of(${folder} theirs)
            if(NOT theirs STREQUAL "" AND NOT folder STREQUAL FOLDER)
                if(NOT theirs LESS own)
                    string(APPEND problems "${where}: ${FOLDER} (floor ${own}) includes ${folder} (floor ${theirs}), a floor at or above its own\n")
                elseif(folder STREQUAL "platform/fake")
                    string(APPEND problems "${where}: the test doubles of platform/fake belong to the tests only\n")
                elseif(folder STREQUAL "platform/linux")
                    if(NOT FOLDER MATCHES "^(shell|app)$")
                        string(APPEND problems "${where}: only the shell and the mains put the Linux platform together\n")
                    elseif(NOT line MATCHES "\"platform/linux/LinuxPlatform.h\""
                           AND NOT (FOLDER STREQUAL "app" AND line MATCHES "\"platform/linux/LinuxFiles.h\""))
                        string(APPEND problems "${where}: the Linux platform's public headers are platform/linux/LinuxPlatform.h and, for the mains, platform/linux/LinuxFiles.h\n")
                    endif()
                endif()
            endif()
        endif()
        if(NOT FOLDER STREQUAL "platform/linux")
            if(line MATCHES "^[ \t]*#[ \t]*include[ \t]*<(xcb/|X11/|canberra\\.h)")
                string(APPEND problems "${where}: X11 and libcanberra are reached only through the Linux platform\n")
            endif()
            # The video helper is a program of its own, with no seams to keep.
            if(NOT FOLDER STREQUAL "video" AND
               line MATCHES "QDateTime::current|QElapsedTimer|std::chrono::[a-z_]+::now|QTimer([^A-Za-z]|$)|QProcess([^A-Za-z]|$)")
                string(APPEND problems "${where}: clocks, timers and processes are reached only through the seams of src/core\n")
            endif()
        endif()
    endforeach()
endforeach()

if(problems)
    message(FATAL_ERROR "The floors of the house are broken:\n${problems}")
endif()
if(STAMP)
    file(TOUCH ${STAMP})
endif()

# What `cmake --install` puts where: the programs and the data files they read beside themselves
# share one folder (bin/ on Windows, lib/kalvo/ elsewhere, linked from bin/). Included last by the
# top-level CMakeLists.txt, when every program target exists.
# Installing and packaging build nothing themselves: `./kalvo.sh package` builds the programs it
# packs (and the tests' build folder is shared with it), so a package never waits for the tests.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
if(WIN32)
    set(KALVO_PROGRAM_DIR ${CMAKE_INSTALL_BINDIR} CACHE STRING "Folder of the programs and their data files")
else()
    set(KALVO_PROGRAM_DIR lib/kalvo CACHE STRING "Folder of the programs and their data files")
endif()

# Whichever of the programs this platform builds (kalvo-sim needs pseudo-terminals).
set(KALVO_PROGRAMS)
foreach(program kalvo kalvo-cli kalvo-sim)
    if(TARGET ${program})
        list(APPEND KALVO_PROGRAMS ${program})
    endif()
endforeach()
install(TARGETS ${KALVO_PROGRAMS} RUNTIME DESTINATION ${KALVO_PROGRAM_DIR})
install(FILES ${KALVO_DATA_FILES} DESTINATION ${KALVO_PROGRAM_DIR})

if(UNIX AND NOT APPLE)
    include(${CMAKE_CURRENT_LIST_DIR}/linux/Package.cmake)
endif()

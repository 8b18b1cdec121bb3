# Writes LIST, a line of size and name for every file of the game in FOLDER: from what git has
# recorded, so that a file that was lost or cut since then is noticed; without git from the folder
# as it is at the first build, for the same reason.
find_program(GIT git)
set(lines "")
if(GIT)
    execute_process(COMMAND ${GIT} ls-files "--format=%(objectsize) %(path)"
                    WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE lines ERROR_QUIET)
endif()
if(lines STREQUAL "" AND NOT EXISTS ${LIST})
    file(GLOB names RELATIVE ${FOLDER} ${FOLDER}/*.bmp ${FOLDER}/*.obj ${FOLDER}/*.txt)
    foreach(name IN LISTS names)
        file(SIZE ${FOLDER}/${name} size)
        string(APPEND lines "${size} ${name}\n")
    endforeach()
endif()
if(NOT lines STREQUAL "")
    file(WRITE ${LIST} "${lines}")
endif()

# Writes LIST, a line of size and name for every file of the game in FOLDER. With RECORDED as git
# has recorded them, so that a file that was lost or cut in a working tree is noticed; without git
# as they were at the first build, for the same reason. Otherwise as they are.
set(lines "")
if(RECORDED)
    find_program(GIT git)
    if(GIT AND EXISTS ${FOLDER}/../.git)
        # Whoever owns the folder: this is about to be played all the same.
        set(git ${GIT} -c safe.directory=*)
        execute_process(COMMAND ${git} ls-files "--format=%(objectname) %(path)"
                        COMMAND ${git} cat-file "--batch-check=%(objectsize) %(rest)"
                        WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE lines)
    endif()
    if(lines STREQUAL "" AND EXISTS ${LIST})
        return()
    endif()
endif()
if(lines STREQUAL "")
    file(GLOB names RELATIVE ${FOLDER} ${FOLDER}/*.bmp ${FOLDER}/*.obj ${FOLDER}/*.txt)
    foreach(name IN LISTS names)
        file(SIZE ${FOLDER}/${name} size)
        string(APPEND lines "${size} ${name}\n")
    endforeach()
endif()
file(WRITE ${LIST} "${lines}")

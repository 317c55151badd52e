# What the library tells of its own build, in a repository and outside one: cmake -D SCRIPT=... -D WORK=... -P <this>
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/sources)
foreach(variable IN ITEMS GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE)
    unset(ENV{${variable}})
endforeach()

# expect_build(<expected text>...): the header written now holds each text.
function(expect_build)
    execute_process(COMMAND ${CMAKE_COMMAND} -D SOURCE=${WORK}/sources -D OUTPUT=${WORK}/build.h
            -D QUORVANE_VERSION=1.2.3 -P ${SCRIPT} COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${WORK}/build.h header)
    foreach(text IN LISTS ARGN)
        if(NOT header MATCHES "${text}")
            message(SEND_ERROR "'${text}' is missing in\n${header}")
        endif()
    endforeach()
endfunction()

function(run_git)
    execute_process(COMMAND git -c user.name=t -c user.email=t@t -c commit.gpgsign=false ${ARGN}
        WORKING_DIRECTORY ${WORK}/sources OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

unset(ENV{SOURCE_DATE_EPOCH})
expect_build("VERSION = \"1[.]2[.]3\"" "DATE = \"N/A\"" "REF = \"\"" "COPYRIGHT = \"Copyright .+\"")
set(ENV{SOURCE_DATE_EPOCH} 86400)
expect_build("DATE = \"1970-01-02\"" "REF = \"\"")

find_program(git_program git)
if(NOT git_program)
    return()
endif()
unset(ENV{SOURCE_DATE_EPOCH})
file(WRITE ${WORK}/sources/file "one")
run_git(init --quiet)
expect_build("DATE = \"N/A\"" "REF = \"\"")
run_git(add file)
set(ENV{GIT_COMMITTER_DATE} "1700000000 +1200")    # 2023-11-15 in that zone, 2023-11-14 in UTC
run_git(commit --quiet --message one)
expect_build("DATE = \"2023-11-14\"" "REF = \"[0-9a-f]+\"")

file(TIMESTAMP ${WORK}/build.h before "%s")
execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 1.1)
expect_build()
file(TIMESTAMP ${WORK}/build.h after "%s")
if(NOT before EQUAL after)
    message(SEND_ERROR "an unchanged header was written again")
endif()

file(WRITE ${WORK}/sources/file "two")
set(ENV{SOURCE_DATE_EPOCH} 86400)
expect_build("DATE = \"1970-01-02\"" "REF = \"[0-9a-f]+-modified\"")

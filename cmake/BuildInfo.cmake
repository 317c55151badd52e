# What the library tells of its own build. Included, it makes the target `quorvane_build_info`: link it for
# <QuorvaneBuild.h>. The build runs this file as a script too, so that the header is that of the commit being built:
#
#   cmake -D SOURCE=... -D OUTPUT=... -D QUORVANE_VERSION=... -P BuildInfo.cmake
#
# A commit always builds the same: the reference is its hash, with "-modified" where tracked files differ from it; the
# date is SOURCE_DATE_EPOCH (seconds), else the commit's, in UTC. Outside a repository the reference is empty, and the
# date "N/A" without SOURCE_DATE_EPOCH.
set(QUORVANE_COPYRIGHT "Copyright (C) 2026 the Quorvane Common authors. All rights reserved.")

if(NOT CMAKE_SCRIPT_MODE_FILE)
    set(header ${PROJECT_BINARY_DIR}/generated/QuorvaneBuild.h)
    add_custom_target(quorvane_write_build_info
        COMMAND ${CMAKE_COMMAND} -D SOURCE=${PROJECT_SOURCE_DIR} -D OUTPUT=${header}
            -D QUORVANE_VERSION=${PROJECT_VERSION} -P ${CMAKE_CURRENT_LIST_FILE}
        BYPRODUCTS ${header}
        COMMENT "Build reference"
        VERBATIM)
    add_library(quorvane_build_info INTERFACE)
    target_include_directories(quorvane_build_info INTERFACE ${PROJECT_BINARY_DIR}/generated)
    add_dependencies(quorvane_build_info quorvane_write_build_info)
    return()
endif()

# git(<variable> <argument>...): what git answers for the sources, empty when it can't. A repository around the sources
# that is not their own says nothing about them.
find_program(git_program git)
function(git variable)
    set(answer "")
    if(git_program AND EXISTS ${SOURCE}/.git)
        execute_process(COMMAND ${git_program} --no-optional-locks ${ARGN} WORKING_DIRECTORY ${SOURCE}
            OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endif()
    set(${variable} "${answer}" PARENT_SCOPE)
endfunction()

git(QUORVANE_BUILD_REF log -1 --no-show-signature --format=%H)
if(QUORVANE_BUILD_REF)
    string(SUBSTRING ${QUORVANE_BUILD_REF} 0 12 QUORVANE_BUILD_REF)
    git(changes status --porcelain --untracked-files=no)
    if(changes)
        string(APPEND QUORVANE_BUILD_REF "-modified")
    endif()
endif()

if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
    git(commit_time log -1 --no-show-signature --format=%ct)
    set(ENV{SOURCE_DATE_EPOCH} "${commit_time}")
endif()
set(QUORVANE_BUILD_DATE "N/A")
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
    string(TIMESTAMP QUORVANE_BUILD_DATE "%Y-%m-%d" UTC)    # of SOURCE_DATE_EPOCH
endif()

# Only a header that changes is written.
configure_file(${CMAKE_CURRENT_LIST_DIR}/QuorvaneBuild.h.in ${OUTPUT} @ONLY)

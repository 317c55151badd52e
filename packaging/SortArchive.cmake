# Run by CPack behind packing: packs an archive anew with its files in the order of their names and without the builder's
# user number, since CPack takes them in the order in which the file system happens to list them.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "\\.zip$")
        continue()
    endif()
    cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH base)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${base} ${CPACK_TEMPORARY_DIRECTORY}/*)
    list(SORT files)
    list(JOIN files "\n" list)
    file(WRITE ${package}.list "${list}\n")
    file(REMOVE ${package})
    execute_process(
        COMMAND zip -q -9 -X -y -@ ${package}
        WORKING_DIRECTORY ${base}
        INPUT_FILE ${package}.list
        COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package}.list)
endforeach()

# Run by CPack between installing and packing: gives each file the date of the commit, SOURCE_DATE_EPOCH, so that two
# packages of one commit are the same bytes.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    message(STATUS "Without SOURCE_DATE_EPOCH the files keep their dates")
    return()
endif()
execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)

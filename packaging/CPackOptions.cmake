# Read by CPack for each kind of package: an archive holds all components, packages for Debian are one for each.
if(CPACK_GENERATOR STREQUAL "ZIP")
    set(CPACK_MONOLITHIC_INSTALL ON)
endif()

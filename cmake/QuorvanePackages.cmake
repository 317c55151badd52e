# What is installed beside programs, libraries and headers, and the packages: archives and, on Linux, packages for
# Debian. Three components: `runtime` (the library), `development` (what compiling and linking needs), `host` (the
# example host).
include(CMakePackageConfigHelpers)

# For CMake.
set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvane)
configure_package_config_file(cmake/QuorvaneConfig.cmake.in packaging/QuorvaneConfig.cmake
    INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/QuorvaneConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(EXPORT QuorvaneTargets NAMESPACE Quorvane:: DESTINATION ${config_dir} COMPONENT development)
install(FILES
    ${PROJECT_BINARY_DIR}/packaging/QuorvaneConfig.cmake
    ${PROJECT_BINARY_DIR}/packaging/QuorvaneConfigVersion.cmake
    DESTINATION ${config_dir} COMPONENT development)

# For pkg-config: found from where the file stands, so that a package may be unpacked anywhere.
file(RELATIVE_PATH up /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" up "${up}")
set(pc_files quorvane)
if(TARGET quorvane_host_modules)
    list(APPEND pc_files quorvane-host)
endif()
foreach(name IN LISTS pc_files)
    configure_file(packaging/templates/${name}.pc.in packaging/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/packaging/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# For checks of the packages: the JSON headers that this build uses, found in a cross build too.
set(json_includes "")
if(TARGET nlohmann_json::nlohmann_json)
    get_target_property(json_includes nlohmann_json::nlohmann_json INTERFACE_INCLUDE_DIRECTORIES)
endif()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packaging/json/nlohmann_jsonConfig.cmake @ONLY CONTENT [[
if(NOT TARGET nlohmann_json::nlohmann_json)
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
    set_target_properties(nlohmann_json::nlohmann_json PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "@json_includes@")
endif()
]])

# For readers of CPS files, whose own word for the place of a package is @prefix@.
set(prefix "@prefix@")
if(WIN32)
    set(kernel windows)
    set(library ${CMAKE_INSTALL_BINDIR}/libquorvane_common-${QUORVANE_ABI}.dll)
    set(link_location "\n            \"link_location\": \"@prefix@/${CMAKE_INSTALL_LIBDIR}/libquorvane_common.dll.a\",")
else()
    set(kernel linux)
    set(library ${CMAKE_INSTALL_LIBDIR}/libquorvane_common.so.${QUORVANE_ABI})
    set(link_location "")
endif()
set(host_modules "")
if(TARGET quorvane_host_modules)
    file(READ packaging/templates/host_modules.cps.in host_modules)
    string(CONFIGURE ",\n${host_modules}" host_modules @ONLY)
    string(STRIP "${host_modules}" host_modules)
endif()
configure_file(packaging/templates/quorvane.cps.in packaging/quorvane.cps @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/quorvane.cps
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cps COMPONENT development)

# The DLL needs the compiler's run-time, which Windows doesn't have.
if(MINGW)
    foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${path}")
            message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${dll}")
        endif()
        file(REAL_PATH ${path} path)
        install(FILES ${path} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    endforeach()
endif()

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

set(CPACK_PACKAGE_NAME quorvane-common)
set(CPACK_PACKAGE_VENDOR Quorvane)
set(CPACK_PACKAGE_CONTACT "Quorvane developers <developers@quorvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_COMPONENTS_ALL runtime development host)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/FixDates.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/SortArchive.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/packaging/CPackOptions.cmake)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR ZIP)
if(WIN32)
    set(CPACK_SYSTEM_NAME win64)
else()
    set(CPACK_SYSTEM_NAME linux-x86_64)
    set(CPACK_GENERATOR DEB ZIP)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/client/src/common)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libquorvane-common${QUORVANE_ABI})
set(runtime_package "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libquorvane-common-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package}, nlohmann-json3-dev")
set(CPACK_DEBIAN_HOST_PACKAGE_NAME quorvane-host)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "${runtime_package}")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared library.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, and what compilers and build tools need to use the library.")
set(CPACK_COMPONENT_HOST_DESCRIPTION "A small host: measures the machine that it runs on, with plugins and modules.")
include(CPack)

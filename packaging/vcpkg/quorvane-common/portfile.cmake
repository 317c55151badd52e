# An overlay port, built from the sources that it stands in: vcpkg install quorvane-common --overlay-ports=packaging/vcpkg
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../.." ABSOLUTE)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        -DQUORVANE_BUILD_TESTS=OFF
        -DQUORVANE_BUILD_EXAMPLES=OFF
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME Quorvane CONFIG_PATH lib/cmake/Quorvane)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
file(WRITE "${CURRENT_PACKAGES_DIR}/share/${PORT}/usage" "find_package(Quorvane CONFIG REQUIRED)\ntarget_link_libraries(main PRIVATE Quorvane::common)\n")

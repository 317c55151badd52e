# The target nlohmann_json::nlohmann_json, headers only: installed, or in a cross build those of the build machine.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(nlohmann_json REQUIRED GLOBAL)
    return()
endif()

set(QUORVANE_NLOHMANN_JSON_DIR /usr/include/nlohmann CACHE PATH "Headers of nlohmann JSON")
if(NOT EXISTS ${QUORVANE_NLOHMANN_JSON_DIR}/json.hpp)
    message(FATAL_ERROR "${QUORVANE_NLOHMANN_JSON_DIR} has no json.hpp: set QUORVANE_NLOHMANN_JSON_DIR")
endif()
# A folder of their own, so that the cross compiler sees no other header of the build machine.
file(COPY ${QUORVANE_NLOHMANN_JSON_DIR}/ DESTINATION ${PROJECT_BINARY_DIR}/nlohmann_json/nlohmann)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${PROJECT_BINARY_DIR}/nlohmann_json)

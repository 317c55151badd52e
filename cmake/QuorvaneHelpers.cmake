# Helper functions of the build. Every function skips a target that has no sources yet.

# Our warnings, for our own targets only.
function(quorvane_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    if(QUORVANE_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# Release builds of one commit are the same bytes wherever and whenever they are made.
macro(quorvane_reproducible)
    if(PROJECT_IS_TOP_LEVEL)
        add_compile_options($<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
        set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
        if(WIN32)
            add_link_options(-Wl,--no-insert-timestamp)
        endif()
    endif()
endmacro()

# What a target needs to see the library's headers, internal ones among them, and to take its symbols from the objects
# instead of the shared library. The objects themselves are linked by programs only, or they would come twice.
function(quorvane_use_objects target)
    target_include_directories(${target} PUBLIC $<TARGET_PROPERTY:quorvane_objects,INCLUDE_DIRECTORIES>)
    target_compile_definitions(${target} PUBLIC QUORVANE_STATIC_DEFINE)
    target_link_libraries(${target} PUBLIC nlohmann_json::nlohmann_json Threads::Threads ${CMAKE_DL_LIBS}
        $<$<PLATFORM_ID:Windows>:version> $<$<PLATFORM_ID:Windows>:tdh>)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:quorvane_objects>)
    endif()
endfunction()

# quorvane_test_support(SOURCES ... INTERNAL_SOURCES ...)
# Fixtures and fakes, compiled once for each flavour of test program: `quorvane_test_support` beside the shared library,
# `quorvane_test_support_internal` beside its objects. INTERNAL_SOURCES need internal classes and join the latter only.
function(quorvane_test_support)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "SOURCES;INTERNAL_SOURCES")
    # The extra source keeps an archive from being empty while the lists are.
    set(anchor ${CMAKE_CURRENT_BINARY_DIR}/SupportAnchor.cpp)
    file(CONFIGURE OUTPUT ${anchor} CONTENT "// Nothing to see: archives want a member.\n")

    add_library(quorvane_test_support STATIC ${anchor} ${arg_SOURCES})
    target_link_libraries(quorvane_test_support PUBLIC Quorvane::common)

    add_library(quorvane_test_support_internal STATIC ${anchor} ${arg_SOURCES} ${arg_INTERNAL_SOURCES})
    quorvane_use_objects(quorvane_test_support_internal)

    # Wine programs see the file system as drive Z.
    set(tests_dir ${CMAKE_CURRENT_SOURCE_DIR})
    if(WIN32 AND CMAKE_CROSSCOMPILING)
        set(tests_dir Z:${tests_dir})
    endif()
    foreach(support IN ITEMS quorvane_test_support quorvane_test_support_internal)
        quorvane_warnings(${support})
        target_include_directories(${support} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
        target_compile_definitions(${support} PUBLIC QUORVANE_TESTS_DIR="${tests_dir}")
        target_link_libraries(${support} PUBLIC GTest::gmock)
    endforeach()
endfunction()

# quorvane_test(<name> [INTERNAL] [SOURCES ...] [LIBRARIES ...])
# The program <name>_test with GoogleTest's main, one ctest test <name>, run in a work folder of its own. It links the
# shared library, or with INTERNAL the library's objects: never both. QUORVANE_TESTS_DIR names the folder of the tests.
function(quorvane_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "INTERNAL" "" "SOURCES;LIBRARIES")
    if(NOT arg_SOURCES)
        return()
    endif()
    add_executable(${name}_test ${arg_SOURCES})
    quorvane_warnings(${name}_test)
    if(arg_INTERNAL)
        quorvane_use_objects(${name}_test)
        target_link_libraries(${name}_test PRIVATE quorvane_test_support_internal)
    else()
        target_link_libraries(${name}_test PRIVATE quorvane_test_support)
    endif()
    target_link_libraries(${name}_test PRIVATE ${arg_LIBRARIES} GTest::gmock_main)

    set(work ${PROJECT_BINARY_DIR}/work/${name})
    file(MAKE_DIRECTORY ${work})
    add_test(NAME ${name} COMMAND ${name}_test WORKING_DIRECTORY ${work})
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

# quorvane_fuzzer(<Name> [LIBRARIES ...])
# The program <Name> made of <Name>.cpp, with its seed inputs in corpus/<Name>/. Where tests are built, one ctest test
# runs the seeds once. It links the library's objects, or with LIBRARIES only these.
function(quorvane_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES")
    add_executable(${name} ${name}.cpp)
    quorvane_warnings(${name})
    if(arg_LIBRARIES)
        target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    else()
        quorvane_use_objects(${name})
    endif()
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    if(QUORVANE_BUILD_TESTS)
        file(GLOB seeds CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}/*)
        if(NOT seeds)
            message(FATAL_ERROR "${name} has no seed inputs in ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
        endif()
        add_test(NAME fuzz_${name} COMMAND ${name} ${seeds})
        set_tests_properties(fuzz_${name} PROPERTIES TIMEOUT 300)
    endif()
endfunction()

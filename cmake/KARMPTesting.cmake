# Tests: one executable a module, made of its tests/*.cpp.

find_package(GTest REQUIRED)

# A check of GoogleTest is an if with an else, so that the compiler warns of each one below an if.
# Test code runs once, so that optimising it takes longer than it saves, with sanitizers most of all.
if(NOT TARGET karmp_test_settings)
    add_library(karmp_test_settings INTERFACE)
    target_compile_options(
        karmp_test_settings INTERFACE -Wno-dangling-else -O0
    )
    karmp_add_precompiled_headers(
        karmp_test_headers
        HEADERS <gtest/gtest.h> <gmock/gmock.h> ${karmp_standard_headers}
        LINKS karmp_test_settings GTest::gmock
    )
endif()

# karmp_add_test_program(<name> SOURCES <file>... [LINKS <target>...] [WITHOUT <suite>])
#
# Suites whose name ends in Process are left out of the plain run: each needs an environment or a
# process of its own and is started by karmp_process_test. So is a suite that a script runs.
function(karmp_add_test_program name)
    cmake_parse_arguments(arg "" "WITHOUT" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(
        ${name} PRIVATE karmp_settings karmp_test_settings KARMPTesting ${arg_LINKS} GTest::gmock_main
    )
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    karmp_precompile(${name} karmp_test_headers)
    set(left_out "*Process.*")
    if(arg_WITHOUT)
        string(APPEND left_out ":${arg_WITHOUT}.*")
    endif()
    add_test(NAME ${name} COMMAND ${name} --gtest_filter=-${left_out} --gtest_brief=1)
endfunction()

# karmp_process_test(<program> <Suite.Test> [VARIABLE=VALUE...])
#
# Runs one test of a program in a process of its own, with environment variables set.
function(karmp_process_test program test)
    string(REPLACE "/" "." name "${program}.${test}")
    add_test(NAME ${name} COMMAND ${program} --gtest_filter=${test} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${ARGN}")
endfunction()

# karmp_add_module_tests(<objects> MODULES <module>...)
#
# A module's tests link the objects of its library, so that they reach what is not exported. A file
# tests/processes.cmake lists the module's process tests.
function(karmp_add_module_tests objects)
    cmake_parse_arguments(arg "" "" "MODULES" ${ARGN})
    foreach(module IN LISTS arg_MODULES)
        set(folder "${CMAKE_CURRENT_SOURCE_DIR}/KARMPEntities/${module}")
        file(GLOB sources CONFIGURE_DEPENDS "${folder}/tests/*.cpp")
        if(NOT sources)
            continue()
        endif()
        string(REPLACE ".m" "" program "${module}")
        string(APPEND program "Tests")
        karmp_add_test_program(${program} SOURCES ${sources} LINKS ${objects})
        target_include_directories(${program} PRIVATE "${folder}/src")
        include("${folder}/tests/processes.cmake" OPTIONAL)
    endforeach()
endfunction()

# karmp_add_header_checks()
#
# The target karmp_header_checks compiles each public header alone, against the public headers of
# its own library and of those below it. It is no part of "all"; CI builds it.
function(karmp_add_header_checks)
    add_custom_target(karmp_header_checks)
    foreach(library IN ITEMS KARPlatform KARMPEntities KARMPDocuments KARMPModel)
        if(NOT TARGET ${library})
            continue()
        endif()
        get_target_property(headers ${library} KARMP_HEADERS)
        set(sources)
        foreach(header IN LISTS headers)
            cmake_path(GET header FILENAME header_name)
            set(source "${PROJECT_BINARY_DIR}/header_checks/${header_name}.cpp")
            file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"${header_name}\"\n")
            list(APPEND sources "${source}")
        endforeach()
        add_library(${library}HeaderChecks OBJECT EXCLUDE_FROM_ALL ${sources})
        target_link_libraries(${library}HeaderChecks PRIVATE karmp_settings ${library})
        set_target_properties(${library}HeaderChecks PROPERTIES CXX_EXTENSIONS OFF)
        add_dependencies(karmp_header_checks ${library}HeaderChecks)
    endforeach()
endfunction()

# karmp_add_package_test()
#
# Installs everything into a scratch folder and builds and runs a program against it.
function(karmp_add_package_test)
    if(KARMP_SANITIZE OR NOT KARMP_INSTALL)
        return()
    endif()
    add_test(
        NAME package.consumer
        COMMAND "${PROJECT_SOURCE_DIR}/tests/consumer/check" "${PROJECT_BINARY_DIR}"
                "${PROJECT_BINARY_DIR}/consumer" "${CMAKE_CXX_COMPILER}"
    )
endfunction()

# karmp_symbols_test(<name> OBJECTS <target>...)
#
# Looks at the objects of object libraries for functions that the linker would merge by mistake.
function(karmp_symbols_test name)
    cmake_parse_arguments(arg "" "" "OBJECTS" ${ARGN})
    set(objects)
    foreach(target IN LISTS arg_OBJECTS)
        if(TARGET ${target})
            list(APPEND objects "$<JOIN:$<TARGET_OBJECTS:${target}>,\n>\n")
        endif()
    endforeach()
    list(JOIN objects "" content)
    set(list "${PROJECT_BINARY_DIR}/symbols/${name}.txt")
    file(GENERATE OUTPUT "${list}" CONTENT "${content}")
    add_test(NAME ${name} COMMAND "${PROJECT_SOURCE_DIR}/tests/symbols/check" "${CMAKE_NM}" "${list}")
    set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77)
endfunction()

# karmp_add_symbols_tests()
#
# The libraries have no such functions; two sources that do are found. Only GCC makes them.
function(karmp_add_symbols_tests)
    karmp_symbols_test(
        symbols.libraries
        OBJECTS KARPlatformObjects KARMPEntitiesObjects KARMPDocumentsObjects KARMPModelObjects
    )
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    set(folder "${PROJECT_SOURCE_DIR}/tests/symbols")
    add_library(karmp_merged_samples OBJECT "${folder}/first.cpp" "${folder}/second.cpp")
    target_link_libraries(karmp_merged_samples PRIVATE karmp_settings)
    set_target_properties(karmp_merged_samples PROPERTIES CXX_EXTENSIONS OFF)
    karmp_symbols_test(symbols.samples OBJECTS karmp_merged_samples)
    set_tests_properties(
        symbols.samples
        PROPERTIES PASS_REGULAR_EXPRESSION "SampleShared::value" FAIL_REGULAR_EXPRESSION "SampleOf"
                   SKIP_REGULAR_EXPRESSION "skipped:"
    )
endfunction()

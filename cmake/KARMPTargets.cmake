# Libraries made of modules, and the compiler settings that every target shares.

add_library(karmp_settings INTERFACE)
target_compile_features(karmp_settings INTERFACE cxx_std_20)
target_compile_options(
    karmp_settings
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
              $<$<BOOL:${KARMP_WARNINGS_AS_ERRORS}>:-Werror>
)
# Optimised, this compiler warns about the standard library's own strings, and with precompiled
# headers more so. The sanitizers' build looks for the same faults.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(
        karmp_settings INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds
    )
endif()
# Calls of exported functions within their library are direct and may be inlined: nobody replaces
# single functions of these libraries by others of the same name.
target_compile_options(
    karmp_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>
)
if(KARMP_SANITIZE)
    target_compile_options(
        karmp_settings INTERFACE -fsanitize=${KARMP_SANITIZE} -fno-sanitize-recover=all
                                 -fno-omit-frame-pointer
    )
    target_link_options(karmp_settings INTERFACE -fsanitize=${KARMP_SANITIZE})
endif()
if(KARMP_BUILD_FUZZERS)
    target_compile_options(karmp_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The libraries' objects are compiled for shared libraries, the programs are not: two sets of headers.
# Of the objects scripts/abi reads the types of what is exported.
add_library(karmp_library_settings INTERFACE)
target_link_libraries(karmp_library_settings INTERFACE karmp_settings)
target_compile_options(
    karmp_library_settings INTERFACE $<$<BOOL:${KARMP_LIBRARY_DEBUG_INFO}>:-g>
)
karmp_add_precompiled_headers(
    karmp_library_headers HEADERS ${karmp_standard_headers} LINKS karmp_library_settings
)
set_target_properties(
    karmp_library_headers
    PROPERTIES POSITION_INDEPENDENT_CODE ON
               CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
)
karmp_add_precompiled_headers(karmp_program_headers HEADERS ${karmp_standard_headers})

# karmp_add_library(<name> MODULES <module>... EXPORT_MACRO <macro> [LINKS <target>...])
#
# Makes <name> a shared library of its modules' sources, and <name>Objects the same objects for
# tests that reach what the library does not export.
function(karmp_add_library name)
    cmake_parse_arguments(arg "" "EXPORT_MACRO" "MODULES;LINKS" ${ARGN})
    set(sources)
    set(public_folders)
    set(internal_folders)
    set(headers)
    foreach(module IN LISTS arg_MODULES)
        set(folder "${CMAKE_CURRENT_SOURCE_DIR}/KARMPEntities/${module}")
        file(GLOB module_sources CONFIGURE_DEPENDS "${folder}/src/*.cpp")
        file(GLOB module_headers CONFIGURE_DEPENDS "${folder}/include/*.h")
        list(APPEND sources ${module_sources})
        list(APPEND headers ${module_headers})
        if(IS_DIRECTORY "${folder}/include")
            list(APPEND public_folders "${folder}/include")
        endif()
        if(IS_DIRECTORY "${folder}/internal")
            list(APPEND internal_folders "${folder}/internal")
        endif()
    endforeach()

    add_library(${name}Objects OBJECT ${sources})
    target_link_libraries(${name}Objects PRIVATE karmp_library_settings PUBLIC ${arg_LINKS})
    target_include_directories(
        ${name}Objects PUBLIC "$<BUILD_INTERFACE:${public_folders}>"
                              "$<BUILD_INTERFACE:${internal_folders}>"
    )
    target_compile_definitions(${name}Objects PRIVATE ${arg_EXPORT_MACRO})
    set_target_properties(
        ${name}Objects
        PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF
                   CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    )

    karmp_precompile(${name}Objects karmp_library_headers)

    add_library(${name} SHARED $<TARGET_OBJECTS:${name}Objects>)
    add_library(KARMP::${name} ALIAS ${name})
    target_link_libraries(
        ${name} PRIVATE "$<BUILD_INTERFACE:karmp_settings>" PUBLIC ${arg_LINKS}
    )
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${public_folders}>")
    # The linker's part of the direct calls: those from one source to another.
    target_link_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:LINKER:-Bsymbolic-functions>)
    set_target_properties(
        ${name} PROPERTIES VERSION ${PROJECT_VERSION}
                           SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
                           LINKER_LANGUAGE CXX
    )
    set_property(TARGET ${name} PROPERTY KARMP_HEADERS "${headers}")
endfunction()

# Writes KARMPEntities.h, which includes every public header of both libraries.
function(karmp_umbrella_header)
    set(text "// Includes every public header of the library.\n#pragma once\n\n")
    get_target_property(platform KARPlatform KARMP_HEADERS)
    get_target_property(entities KARMPEntities KARMP_HEADERS)
    foreach(header IN LISTS platform entities)
        cmake_path(GET header FILENAME header_name)
        string(APPEND text "#include \"${header_name}\"\n")
    endforeach()
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/include")
    file(CONFIGURE OUTPUT "${folder}/KARMPEntities.h" CONTENT "${text}" @ONLY)
    target_include_directories(KARMPEntities PUBLIC "$<BUILD_INTERFACE:${folder}>")
    set_property(TARGET KARMPEntities APPEND PROPERTY KARMP_HEADERS "${folder}/KARMPEntities.h")
endfunction()

# Adds a part of the project, if the checkout holds it.
macro(karmp_add_folder folder)
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt")
        add_subdirectory(${folder})
    endif()
endmacro()

# What makes compiling faster: ccache, and headers that are compiled once for many sources.

# karmp_use_ccache()
#
# Compiles through ccache, unless there is none or a launcher was chosen already. A source that uses
# a precompiled header is found again only with this sloppiness, and in another build folder of the
# same settings only with paths that are relative and whatever folder debug information names.
macro(karmp_use_ccache)
    find_program(KARMP_CCACHE_PROGRAM ccache)
    mark_as_advanced(KARMP_CCACHE_PROGRAM)
    if(KARMP_CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        set(CMAKE_CXX_COMPILER_LAUNCHER
            "${CMAKE_COMMAND}" -E env
            CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_ctime,include_file_mtime
            "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}"
            CCACHE_NOHASHDIR=true
            "${KARMP_CCACHE_PROGRAM}"
        )
    endif()
endmacro()

# karmp_add_precompiled_headers(<name> HEADERS <header>... [LINKS <target>...])
#
# Adds a target that compiles the headers once. It has the settings that every target shares, and no
# definitions, so that targets with definitions of their own can use it.
function(karmp_add_precompiled_headers name)
    cmake_parse_arguments(arg "" "" "HEADERS;LINKS" ${ARGN})
    set(source "${PROJECT_BINARY_DIR}/precompiled/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "// Stands for the headers.\n")
    add_library(${name} OBJECT EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(${name} PRIVATE karmp_settings ${arg_LINKS})
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# karmp_precompile(<target> <name>): lets the target use the headers of <name>.
function(karmp_precompile target name)
    target_precompile_headers(${target} REUSE_FROM ${name})
    # By this GCC's preprocessed text names the header, which ccache needs.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fpch-preprocess)
    endif()
endfunction()

set(karmp_standard_headers
    <algorithm> <array> <atomic> <bit> <charconv> <cmath> <cstddef> <cstdint> <cstdlib> <cstring>
    <exception> <functional> <limits> <map> <memory> <mutex> <new> <optional> <span> <stdexcept>
    <string> <string_view> <tuple> <type_traits> <unordered_map> <utility> <vector>
)

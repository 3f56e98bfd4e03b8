# Installation: libraries, headers, tool, documentation, examples, and the files by which CMake and
# pkg-config find them. The components are those of the packages: libraries, development and tool.

include(CMakePackageConfigHelpers)

set(karmp_installed KARPlatform KARMPEntities)
set(KARMP_FIND_DEPENDENCIES)
if(TARGET KARMPDocuments)
    list(APPEND karmp_installed KARMPDocuments)
    get_target_property(type KARMPDocuments TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        set(KARMP_FIND_DEPENDENCIES "find_dependency(pugixml)")
    endif()
endif()

if(TARGET KARMPModel)
    list(APPEND karmp_installed KARMPModel)
endif()

# The libraries find one another beside themselves, wherever the folder is moved to.
set_target_properties(${karmp_installed} PROPERTIES INSTALL_RPATH "$ORIGIN")
install(
    TARGETS ${karmp_installed}
    EXPORT KARMPEntitiesTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT libraries
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KARMPEntities
)
foreach(library IN LISTS karmp_installed)
    get_target_property(headers ${library} KARMP_HEADERS)
    if(headers)
        install(
            FILES ${headers}
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KARMPEntities
            COMPONENT development
        )
    endif()
endforeach()

set(KARMP_ZSH_FUNCTIONS "zsh/site-functions" CACHE STRING "Folder of completions for zsh in share")
mark_as_advanced(KARMP_ZSH_FUNCTIONS)
if(TARGET karmp)
    file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(karmp PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    install(TARGETS karmp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)

    get_target_property(manual karmp KARMP_MANUAL)
    get_target_property(printed karmp KARMP_PRINTED)
    install(FILES "${manual}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
    foreach(file IN ITEMS
            "bash bash-completion/completions/karmp"
            "zsh ${KARMP_ZSH_FUNCTIONS}/_karmp"
            "fish fish/vendor_completions.d/karmp.fish"
    )
        string(REGEX MATCH "^([a-z]+) (.*)/(.*)$" parts "${file}")
        install(
            FILES "${printed}/karmp.${CMAKE_MATCH_1}"
            DESTINATION ${CMAKE_INSTALL_DATADIR}/${CMAKE_MATCH_2}
            RENAME ${CMAKE_MATCH_3}
            COMPONENT tool
        )
    endforeach()
endif()

if(TARGET karmp_python)
    # A wheel has the libraries in its module, a Debian package beside the other ones.
    set(KARMP_PYTHON_FOLDER "lib/python3/dist-packages" CACHE STRING "Folder of Python packages")
    mark_as_advanced(KARMP_PYTHON_FOLDER)
    if(KARMP_WHEEL)
        set(karmp_python_folder "karmp")
    else()
        set(karmp_python_folder "${KARMP_PYTHON_FOLDER}/karmp")
        file(RELATIVE_PATH path "${CMAKE_INSTALL_PREFIX}/${karmp_python_folder}"
             "${CMAKE_INSTALL_FULL_LIBDIR}"
        )
        set_target_properties(karmp_python PROPERTIES INSTALL_RPATH "$ORIGIN/${path}")
    endif()
    install(TARGETS karmp_python LIBRARY DESTINATION ${karmp_python_folder} COMPONENT python)
    get_target_property(files karmp_python KARMP_FILES)
    install(FILES ${files} DESTINATION ${karmp_python_folder} COMPONENT python)
endif()

# In the layout of the sources, so that links from page to page hold.
install(
    FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT development
)
if(NOT KARMP_DEBS) # a package of Debian's has a file "copyright"
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
endif()
install(
    DIRECTORY docs Examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT development
    PATTERN site EXCLUDE
)
install(
    DIRECTORY Python/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}/Python COMPONENT development
)
install(
    FILES cmake/valgrind.supp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/KARMPEntities
    COMPONENT development
)

set(karmp_package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/KARMPEntities")
install(
    EXPORT KARMPEntitiesTargets
    NAMESPACE KARMP::
    DESTINATION ${karmp_package_folder}
    COMPONENT development
)
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/KARMPEntitiesConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/package/KARMPEntitiesConfig.cmake"
    INSTALL_DESTINATION ${karmp_package_folder}
)
# Before version 1 a minor version may change the interface.
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/package/KARMPEntitiesConfigVersion.cmake" COMPATIBILITY SameMinorVersion
)
install(
    FILES "${PROJECT_BINARY_DIR}/package/KARMPEntitiesConfig.cmake"
          "${PROJECT_BINARY_DIR}/package/KARMPEntitiesConfigVersion.cmake"
    DESTINATION ${karmp_package_folder}
    COMPONENT development
)

# karmp_install_pkgconfig(<name> <description> LIBRARIES <library>... [REQUIRES <name>...])
function(karmp_install_pkgconfig name description)
    cmake_parse_arguments(arg "" "" "LIBRARIES;REQUIRES" ${ARGN})
    list(TRANSFORM arg_LIBRARIES PREPEND "-l")
    list(JOIN arg_LIBRARIES " " KARMP_PC_LIBRARIES)
    list(JOIN arg_REQUIRES " " KARMP_PC_REQUIRES)
    set(KARMP_PC_NAME "${name}")
    set(KARMP_PC_DESCRIPTION "${description}")
    file(RELATIVE_PATH up "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
    cmake_path(APPEND KARMP_PC_PREFIX "\${pcfiledir}" "${up}")
    cmake_path(APPEND KARMP_PC_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
    cmake_path(APPEND KARMP_PC_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
    set(file "${PROJECT_BINARY_DIR}/package/${name}.pc")
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/karmp.pc.in" "${file}" @ONLY)
    install(FILES "${file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

karmp_install_pkgconfig(
    karmpentities "${PROJECT_DESCRIPTION}" LIBRARIES KARMPEntities KARPlatform
)
if(TARGET KARMPDocuments)
    karmp_install_pkgconfig(
        karmpdocuments "Files of a multibody mechanism simulation's entity model"
        LIBRARIES KARMPDocuments
        REQUIRES karmpentities
    )
endif()
if(TARGET KARMPModel)
    karmp_install_pkgconfig(
        karmpmodel "Models of a multibody mechanism simulation, built and edited by single calls"
        LIBRARIES KARMPModel
        REQUIRES karmpdocuments
    )
endif()

# Installation: libraries, headers, tool, documentation, examples, and the files by which CMake and
# pkg-config find them.

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
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KARMPEntities
)
foreach(library IN LISTS karmp_installed)
    get_target_property(headers ${library} KARMP_HEADERS)
    if(headers)
        install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KARMPEntities)
    endif()
endforeach()

if(TARGET karmp)
    file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(karmp PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    install(TARGETS karmp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# In the layout of the sources, so that links from page to page hold.
install(
    FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
)
install(DIRECTORY docs Examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES cmake/valgrind.supp DESTINATION ${CMAKE_INSTALL_DATADIR}/KARMPEntities)

set(karmp_package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/KARMPEntities")
install(
    EXPORT KARMPEntitiesTargets
    NAMESPACE KARMP::
    DESTINATION ${karmp_package_folder}
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
    install(FILES "${file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
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

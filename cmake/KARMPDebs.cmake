# Debian packages by CPack: the libraries, what programs are built with, the tool, and the Python package.
# scripts/package makes them, by the preset "package".

# The address stands for one that whoever publishes packages gives.
set(KARMP_MAINTAINER "KARMPEntities maintainers <maintainers@karmpentities.invalid>"
    CACHE STRING "Who answers for the packages: a name and an address"
)
mark_as_advanced(KARMP_MAINTAINER)

# Packages of a version that CHANGELOG.md gives no date yet come before those of the version, and
# carry the date of the version before.
set(version "${PROJECT_VERSION}")
file(STRINGS "${PROJECT_SOURCE_DIR}/CHANGELOG.md" versions REGEX "^## \\[[0-9.]+\\] - ")
list(GET versions 0 newest)
if(NOT newest MATCHES "^## \\[(.+)\\] - (([0-9]+)-[0-9]+-[0-9]+)$")
    message(FATAL_ERROR "CHANGELOG.md has no version with a date")
endif()
set(KARMP_RELEASE_YEAR "${CMAKE_MATCH_3}")
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
    string(APPEND version "~dev")
endif()
execute_process(
    COMMAND date -u -R -d "${CMAKE_MATCH_2}"
    OUTPUT_VARIABLE KARMP_RELEASE_DATE
    OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY
)

set(revision 1)
set(soversion "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(libraries_package "libkarmpentities${soversion}")
set(same_version "${libraries_package} (= ${version}-${revision})")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL libraries development tool python)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/debs")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_DEBIAN_PACKAGE_SOURCE karmpentities)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${KARMP_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_VERSION "${version}")
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# Dependencies on Debian's libraries are found by dpkg-shlibdeps; on our own they are of one version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}" "${PROJECT_BINARY_DIR}/Documents" "${PROJECT_BINARY_DIR}/Model"
)

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME "${libraries_package}")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers")
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION
    "Entity model of a multibody mechanism simulation
Bodies, joints, constraints, actuators, sensors, force elements, geometry
and values of a mechanism in memory, their documents, and models that are
built and edited by single calls. A solver attaches to the entities; this
library solves nothing."
)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkarmpentities-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, pkg-config, karmp")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "Entity model of a multibody mechanism simulation (development files)
Headers, files for CMake and pkg-config, documentation and examples of the
entity model, its documents and its models, for programs in C++20."
)

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME karmp)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "graphviz")
set(CPACK_DEBIAN_TOOL_DESCRIPTION
    "Looks at, checks and converts documents of multibody mechanisms
Tells what a mechanism's document holds and what is wrong with it,
compares, converts and cuts documents, draws the graph of bodies and
joints, and writes a page that shows the mechanism in space."
)

# The module is of one version of the interpreter's.
get_target_property(minor karmp_python KARMP_PYTHON_MINOR)
math(EXPR next "${minor} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-karmp)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${same_version}, python3 (>= 3.${minor}), python3 (<< 3.${next}), python3-numpy"
)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    "${CMAKE_CURRENT_LIST_DIR}/debian/python/postinst"
    "${CMAKE_CURRENT_LIST_DIR}/debian/python/prerm"
)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
    "Models of multibody mechanisms in Python
Builds, edits, checks, loads and saves models of mechanisms: bodies, joints,
constraints, sensors and all that belongs to them, as objects with properties
and as columns of numpy. The types are there for editors and for mypy."
)

# The licence and the changes, for each package.
set(folder "${PROJECT_BINARY_DIR}/debian")
configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/copyright.in" "${folder}/copyright" @ONLY)
set(KARMP_DEBIAN_VERSION "${version}-${revision}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in" "${folder}/changelog.Debian" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${folder}/changelog" COPYONLY)
execute_process(
    COMMAND gzip -9nfk "${folder}/changelog" "${folder}/changelog.Debian" COMMAND_ERROR_IS_FATAL ANY
)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    install(
        FILES "${folder}/copyright" "${folder}/changelog.gz" "${folder}/changelog.Debian.gz"
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        COMPONENT ${component}
    )
endforeach()

include(CPack)

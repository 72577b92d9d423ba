# Debian packages, made by scripts/package: the libraries, what it takes to build against them, and the examples.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zdkvisionlib)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL Runtime Development)
if(ZDK_BUILD_EXAMPLES)
    list(APPEND CPACK_COMPONENTS_ALL Examples)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ZdkVisionLib developers <developers@zdkvisionlib.example>")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What follows from the sonames: other packages find the libraries' package by its shlibs file.
set(runtime libzdkvisionlib${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(package_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

# The first line of a description is the synopsis, unless the project's own is put before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(about "ZdkVisionLib measures parts in the height maps of line-scanning sensors:
regions of interest, filters, sums and differences, reference frames, and
fits of lines, circles, spheres, planes and polynomials.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "3-D machine-vision algorithms over 16-bit height maps
${about}

This package holds the two shared libraries: the algorithms, and the platform
layer below them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzdkvisionlib-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${package_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libopencv-core-dev, zdkvisionlib-examples")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "3-D machine-vision algorithms over height maps - development files
${about}

This package holds the headers, a CMake package and pkg-config files. The
headers with types of OpenCV need libopencv-core-dev.")

set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME zdkvisionlib-examples)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_SECTION science)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_DEPENDS "${runtime} (= ${package_version})")
set(CPACK_DEBIAN_EXAMPLES_DESCRIPTION "3-D machine-vision algorithms over height maps - examples
${about}

This package holds programs that measure simulated scans or height maps in
files, below ${CMAKE_INSTALL_FULL_LIBDIR}/zdkvisionlib, and their sources.")

# Each package has a copyright file, its own copy of the changelogs, and what lintian need not tell.
find_program(GZIP_PROGRAM gzip REQUIRED)
set(debian ${CMAKE_CURRENT_LIST_DIR}/debian)
set(made ${PROJECT_BINARY_DIR}/debian)
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${debian}/changelog.in ${made}/changelog @ONLY)
function(zdk_compress from to)
    execute_process(COMMAND ${GZIP_PROGRAM} --best --no-name --stdout ${from} OUTPUT_FILE ${to} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
zdk_compress(${made}/changelog ${made}/changelog.Debian.gz)
zdk_compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${made}/changelog.gz)
foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} variable)
    set(package ${CPACK_DEBIAN_${variable}_PACKAGE_NAME})
    install(FILES ${debian}/copyright ${made}/changelog.Debian.gz ${made}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
    install(FILES ${debian}/lintian-overrides-${component} RENAME ${package}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
endforeach()

include(CPack)

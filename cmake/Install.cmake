# What a host needs: headers, the two shared libraries, a CMake package and pkg-config files. The static twins are
# for the tests and stay behind. The components: Runtime, Development and, where they are built, Examples and Python.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZdkVisionLib)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Development)

set_target_properties(ZdkVisionLib PROPERTIES INSTALL_RPATH "$ORIGIN") # the platform lies beside it
# A set for each part that a host can ask for alone: the platform, the library on it, and OpenCV's headers with them.
foreach(part "ZdkVisionPlatform:Platform" "ZdkVisionLib:" "ZdkVisionOpenCV:OpenCV")
    string(REGEX MATCH "^([^:]*):(.*)$" part ${part})
    install(TARGETS ${CMAKE_MATCH_1} EXPORT ZdkVisionLib${CMAKE_MATCH_2}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development)
    install(EXPORT ZdkVisionLib${CMAKE_MATCH_2}Targets NAMESPACE ZdkVisionLib:: DESTINATION ${package_dir})
endforeach()
install(DIRECTORY include/ZdkVisionLib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)

if(ZDK_BUILD_PYTHON)
    # The extension finds the libraries of its own prefix, wherever that is moved.
    set(python_dir ${ZDK_PYTHON_DIR}/zdkvision)
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_PREFIX}/${python_dir} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(zdkvision_core PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    install(TARGETS zdkvision_core LIBRARY DESTINATION ${python_dir} COMPONENT Python)
    install(DIRECTORY python/zdkvision/ DESTINATION ${python_dir} COMPONENT Python
        FILES_MATCHING PATTERN *.py PATTERN *.pyi PATTERN py.typed PATTERN __pycache__ EXCLUDE)
endif()

install(FILES cmake/FindOpenCV.cmake DESTINATION ${package_dir})
configure_package_config_file(cmake/ZdkVisionLibConfig.cmake.in ${PROJECT_BINARY_DIR}/ZdkVisionLibConfig.cmake
    INSTALL_DESTINATION ${package_dir})
# Before version 1.0 a minor version may break what was there, as its soname says.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZdkVisionLibConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZdkVisionLibConfig.cmake ${PROJECT_BINARY_DIR}/ZdkVisionLibConfigVersion.cmake
    DESTINATION ${package_dir})

# The prefix is where the .pc file lies, so that an installed tree can be moved. Absolute directories, as some
# distributions set them, stand as they are.
file(RELATIVE_PATH pkgconfig_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pkgconfig_prefix "\${pcfiledir}/${pkgconfig_prefix}")
foreach(directory libdir includedir)
    string(TOUPPER ${directory} variable)
    cmake_path(IS_ABSOLUTE CMAKE_INSTALL_${variable} absolute)
    if(absolute)
        set(pkgconfig_${directory} ${CMAKE_INSTALL_${variable}})
    else()
        set(pkgconfig_${directory} "\${prefix}/${CMAKE_INSTALL_${variable}}")
    endif()
endforeach()
get_target_property(opencv_include_dirs opencv_core INTERFACE_INCLUDE_DIRECTORIES)
list(TRANSFORM opencv_include_dirs PREPEND -I OUTPUT_VARIABLE pkgconfig_opencv_cflags)
list(JOIN pkgconfig_opencv_cflags " " pkgconfig_opencv_cflags)
foreach(module zdkvisionlib zdkvisionplatform zdkvisionlib-opencv)
    configure_file(cmake/${module}.pc.in ${PROJECT_BINARY_DIR}/${module}.pc.configured @ONLY)
    file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/${module}.pc INPUT ${PROJECT_BINARY_DIR}/${module}.pc.configured)
    install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# The programs go where nothing else looks for programs: their names are too common for a directory of commands.
if(ZDK_BUILD_EXAMPLES)
    get_property(programs DIRECTORY examples PROPERTY BUILDSYSTEM_TARGETS)
    foreach(program ${programs})
        get_target_property(type ${program} TYPE)
        if(type STREQUAL "EXECUTABLE")
            set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/../..")
            install(TARGETS ${program}
                RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR}/zdkvisionlib/examples COMPONENT Examples)
        endif()
    endforeach()
    install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zdkvisionlib-examples COMPONENT Examples)
endif()

# Finds single OpenCV modules. A distribution may pack each module on its own and keep OpenCV's package file in a
# package that needs all of them; headers and libraries of the modules that we use are enough here.
#
# Defines a target opencv_<module> for each component asked for, and OpenCV_FOUND, as OpenCV's own package does.

find_package(OpenCV ${OpenCV_FIND_VERSION} QUIET CONFIG COMPONENTS ${OpenCV_FIND_COMPONENTS})
if(OpenCV_FOUND)
    return()
endif()

find_path(OpenCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
foreach(module ${OpenCV_FIND_COMPONENTS})
    find_library(OpenCV_${module}_LIBRARY opencv_${module})
    mark_as_advanced(OpenCV_${module}_LIBRARY)
    if(OpenCV_INCLUDE_DIR AND OpenCV_${module}_LIBRARY AND EXISTS ${OpenCV_INCLUDE_DIR}/opencv2/${module}.hpp)
        set(OpenCV_${module}_FOUND TRUE)
    endif()
endforeach()

if(EXISTS "${OpenCV_INCLUDE_DIR}/opencv2/core/version.hpp")
    file(STRINGS "${OpenCV_INCLUDE_DIR}/opencv2/core/version.hpp" version_lines
         REGEX "^#define CV_VERSION_(MAJOR|MINOR|REVISION)")
    string(REGEX REPLACE ".*MAJOR +([0-9]+).*MINOR +([0-9]+).*REVISION +([0-9]+).*" "\\1.\\2.\\3"
           OpenCV_VERSION "${version_lines}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCV
    REQUIRED_VARS OpenCV_INCLUDE_DIR VERSION_VAR OpenCV_VERSION HANDLE_COMPONENTS)
mark_as_advanced(OpenCV_INCLUDE_DIR)

if(OpenCV_FOUND)
    foreach(module ${OpenCV_FIND_COMPONENTS})
        if(NOT TARGET opencv_${module})
            add_library(opencv_${module} UNKNOWN IMPORTED)
            set_target_properties(opencv_${module} PROPERTIES
                IMPORTED_LOCATION ${OpenCV_${module}_LIBRARY}
                INTERFACE_INCLUDE_DIRECTORIES ${OpenCV_INCLUDE_DIR})
        endif()
    endforeach()
endif()

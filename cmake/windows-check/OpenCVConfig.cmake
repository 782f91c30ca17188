# Stands in for a Windows OpenCV: the host's headers, and nothing to link.
set(OpenCV_FOUND TRUE)
find_path(OPENCV_HEADERS opencv2/core.hpp PATHS /usr/include/opencv4 NO_CMAKE_FIND_ROOT_PATH
    NO_DEFAULT_PATH REQUIRED)
foreach(module ${OpenCV_FIND_COMPONENTS})
    if(NOT TARGET opencv_${module})
        add_library(opencv_${module} INTERFACE IMPORTED)
        target_include_directories(opencv_${module} SYSTEM INTERFACE ${OPENCV_HEADERS})
    endif()
endforeach()

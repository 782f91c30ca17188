# Compiles for Windows without a Windows build of the toolkit.
include(${CMAKE_CURRENT_LIST_DIR}/../mingw.cmake)
set(CMAKE_CXX_FLAGS_DEBUG "-O0")
set(Qt5_DIR ${CMAKE_CURRENT_LIST_DIR})
set(OpenCV_DIR ${CMAKE_CURRENT_LIST_DIR})

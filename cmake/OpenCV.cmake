# The few OpenCV modules that are used, from the module packages alone: the package with OpenCV's own CMake
# files pulls in the whole of it, with VTK and MPI.
find_path(OpenCV_INCLUDE_DIRS opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
foreach(module core imgproc imgcodecs videoio)
    if(NOT TARGET opencv_${module})
        find_library(OpenCV_${module}_LIBRARY opencv_${module} REQUIRED)
        add_library(opencv_${module} UNKNOWN IMPORTED GLOBAL)
        set_target_properties(opencv_${module} PROPERTIES
            IMPORTED_LOCATION ${OpenCV_${module}_LIBRARY}
            INTERFACE_INCLUDE_DIRECTORIES ${OpenCV_INCLUDE_DIRS}
            INTERFACE_SYSTEM_INCLUDE_DIRECTORIES ${OpenCV_INCLUDE_DIRS})
    endif()
endforeach()

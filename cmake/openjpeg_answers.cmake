# How OpenJPEG is built for Windows, given to CMake by -C: the library alone.
set(CMAKE_BUILD_TYPE Release CACHE STRING "")
# Files come from strangers.
set(CMAKE_C_FLAGS "-fstack-protector-strong -D_FORTIFY_SOURCE=2" CACHE STRING "")
set(BUILD_CODEC OFF CACHE BOOL "")
set(BUILD_TESTING OFF CACHE BOOL "")

# The libraries that the project builds on. GoogleTest and Google Benchmark are left out where they are not built yet
# (scripts/build_dependencies): the workbench needs neither.
if(MINGW)
    find_library(ZLIB_LIBRARY NAMES libz.a REQUIRED)  # static: no zlib1.dll beside the program
endif()
find_package(ZLIB REQUIRED)

# Header-only libraries stand below /usr/include, among headers of the C library that must not reach a compiler for
# Windows; so only the wanted folders are linked into a folder of the build.
set(kit_header_folder "${CMAKE_BINARY_DIR}/header_only")
add_library(header_only INTERFACE)
function(kit_header_only NAME HEADER)
    find_path(KIT_${NAME}_FOLDER "${HEADER}"
        PATHS /usr/include PATH_SUFFIXES eigen3 NO_CMAKE_FIND_ROOT_PATH
        DOC "The folder that has ${HEADER}")
    if(NOT KIT_${NAME}_FOLDER)
        message(FATAL_ERROR "The header ${HEADER} is missing; start scripts/install_packages run.")
    endif()
    cmake_path(GET HEADER PARENT_PATH folder)
    file(MAKE_DIRECTORY "${kit_header_folder}")
    file(CREATE_LINK "${KIT_${NAME}_FOLDER}/${folder}" "${kit_header_folder}/${folder}" COPY_ON_ERROR SYMBOLIC)
endfunction()
kit_header_only(EIGEN Eigen/Dense)
kit_header_only(STB stb/stb_image_write.h)
target_include_directories(header_only SYSTEM INTERFACE "${kit_header_folder}")

# DCMTK: cross-built by scripts/build_dependencies dcmtk, or the distribution's.
find_package(DCMTK QUIET)
if(DCMTK_FOUND)
    add_library(dicom_toolkit INTERFACE)
    target_include_directories(dicom_toolkit SYSTEM INTERFACE ${DCMTK_INCLUDE_DIRS})
    target_link_libraries(dicom_toolkit INTERFACE DCMTK::dcmdata ZLIB::ZLIB)
    if(WIN32)
        target_link_libraries(dicom_toolkit INTERFACE iphlpapi netapi32 ws2_32)
    endif()
else()
    message(STATUS "DCMTK is not there: DICOM files are not read (scripts/build_dependencies dcmtk)")
endif()

find_package(GTest QUIET)
if(NOT GTest_FOUND)
    message(STATUS "GoogleTest is not there: tests are left out (scripts/build_dependencies googletest)")
endif()
find_package(benchmark QUIET)
if(NOT benchmark_FOUND)
    message(STATUS "Google Benchmark is not there: benchmarks are left out (scripts/build_dependencies benchmark)")
endif()

# Off Windows, the sources that speak to Windows are compiled against Wine's declarations of it.
add_library(windows_headers INTERFACE)
if(NOT WIN32)
    find_path(WINE_WINDOWS_HEADERS windows.h PATH_SUFFIXES wine/wine/windows wine/windows
        DOC "Wine's folder of Windows headers")
    if(NOT WINE_WINDOWS_HEADERS)
        message(FATAL_ERROR "Wine's Windows headers are missing; start scripts/install_packages test.")
    endif()
    target_include_directories(windows_headers SYSTEM INTERFACE "${WINE_WINDOWS_HEADERS}")
endif()

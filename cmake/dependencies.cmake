# The libraries that the project builds on.
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
        message(FATAL_ERROR "The header ${HEADER} is missing: on Debian scripts/install_packages run brings it, elsewhere -D "
            "KIT_${NAME}_FOLDER=FOLDER names the folder that has it.")
    endif()
    if(CMAKE_HOST_WIN32)  # no links without the right to, and no headers of another system beside it
        target_include_directories(header_only SYSTEM INTERFACE "${KIT_${NAME}_FOLDER}")
        return()
    endif()
    cmake_path(GET HEADER PARENT_PATH folder)
    file(MAKE_DIRECTORY "${kit_header_folder}")
    file(CREATE_LINK "${KIT_${NAME}_FOLDER}/${folder}" "${kit_header_folder}/${folder}" COPY_ON_ERROR SYMBOLIC)
endfunction()
kit_header_only(EIGEN Eigen/Dense)
kit_header_only(STB stb/stb_image_write.h)
if(NOT CMAKE_HOST_WIN32)
    target_include_directories(header_only SYSTEM INTERFACE "${kit_header_folder}")
endif()

# What an option asks for and is not there ends the configuration with the command that brings it.
function(kit_find OPTION PACKAGE TITLE COMMAND)
    find_package(${PACKAGE} QUIET)
    if(NOT ${PACKAGE}_FOUND)
        message(FATAL_ERROR "${TITLE} is missing: ${COMMAND} brings it, -D ${OPTION}=OFF does without.")
    endif()
endfunction()

if(WIN32)
    set(kit_bring "scripts/build_dependencies")
else()
    set(kit_bring "scripts/install_packages test #")
endif()
if(KIT_DICOM)  # cross-built by scripts/build_dependencies dcmtk openjpeg, or the distribution's
    kit_find(KIT_DICOM DCMTK DCMTK "${kit_bring} dcmtk")
    find_package(DCMTK QUIET)
    if(NOT TARGET DCMTK::dcmjpls)
        message(FATAL_ERROR "This DCMTK has no codecs (dcmjpeg, dcmjpls): ${kit_bring} dcmtk brings them, -D KIT_DICOM=OFF does without.")
    endif()
    kit_find(KIT_DICOM OpenJPEG OpenJPEG "${kit_bring} openjpeg")
    find_package(OpenJPEG QUIET)
    if(MINGW)  # DCMTK's own search finds the import library first, and a program would want zlib1.dll beside it
        get_target_property(kit_libraries DCMTK::dcmdata INTERFACE_LINK_LIBRARIES)
        list(TRANSFORM kit_libraries REPLACE "^.*/libz\\.dll\\.a$" ZLIB::ZLIB)
        set_target_properties(DCMTK::dcmdata PROPERTIES INTERFACE_LINK_LIBRARIES "${kit_libraries}")
    endif()
    add_library(dicom_toolkit INTERFACE)
    target_include_directories(dicom_toolkit SYSTEM INTERFACE ${DCMTK_INCLUDE_DIRS})
    target_include_directories(dicom_toolkit SYSTEM INTERFACE ${OPENJPEG_INCLUDE_DIRS})
    target_link_libraries(dicom_toolkit INTERFACE DCMTK::dcmjpls DCMTK::dcmjpeg DCMTK::dcmdata ZLIB::ZLIB openjp2)
    if(WIN32)
        target_link_libraries(dicom_toolkit INTERFACE iphlpapi netapi32 ws2_32)
        target_compile_definitions(dicom_toolkit INTERFACE OPJ_STATIC)
    endif()
endif()
if(KIT_TESTS)
    kit_find(KIT_TESTS GTest GoogleTest "${kit_bring} googletest")
    find_package(GTest QUIET)
endif()
if(KIT_BENCHMARKS)
    kit_find(KIT_BENCHMARKS benchmark "Google Benchmark" "${kit_bring} benchmark")
    find_package(benchmark QUIET)
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

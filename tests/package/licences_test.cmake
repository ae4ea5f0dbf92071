# The texts that the libraries inside the programs demand are in the package, whole.
cmake_minimum_required(VERSION 3.25)
set(work "${BUILD}/licences_test")
file(REMOVE_RECURSE "${work}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --component documents --prefix "${work}"
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "installing failed (${status}): ${errors}")
endif()
# File, and words of each part that is in it.
set(demanded
    "zlib|Jean-loup Gailly|without any express or implied"
    "mingw_runtime|mingw-w64"
    "gcc_runtime|GCC"
    "eigen|MPL"
    "stb|Sean Barrett|Permission is hereby granted")
if(DICOM)
    list(APPEND demanded
        "dcmtk|OFFIS|Independent JPEG Group|log4cplus|Apache License|CharLS library"
        "openjpeg|Universite catholique de Louvain|Redistributions in binary form")
endif()
foreach(line IN LISTS demanded)
    string(REPLACE "|" ";" words "${line}")
    list(POP_FRONT words name)
    set(file "${work}/licences/${name}.txt")
    if(NOT EXISTS "${file}")
        message(FATAL_ERROR "the package has no licence of ${name}")
    endif()
    file(READ "${file}" text)
    foreach(word IN LISTS words)
        string(FIND "${text}" "${word}" place)
        if(place LESS 0)
            message(FATAL_ERROR "the licence of ${name} does not say: ${word}")
        endif()
    endforeach()
endforeach()
# Who asks for it is named where people read.
file(READ "${work}/docs/dicom.md" text)
string(FIND "${text}" "based in part on the work of the Independent JPEG Group" place)
if(DICOM AND place LESS 0)
    message(FATAL_ERROR "docs/dicom.md does not name the Independent JPEG Group")
endif()

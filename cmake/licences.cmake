# What the libraries inside the programs demand: their texts go along in licences/, one file for each.
set(kit_licence_folder "${CMAKE_BINARY_DIR}/licences")
file(REMOVE_RECURSE "${kit_licence_folder}")
file(MAKE_DIRECTORY "${kit_licence_folder}")

function(kit_licence NAME FILE)
    if(EXISTS "${FILE}")
        file(READ "${FILE}" text)
        file(WRITE "${kit_licence_folder}/${NAME}.txt" "${text}")
    else()
        message(WARNING "no licence of ${NAME} goes into the package: ${FILE} is missing")
    endif()
endfunction()

# A distribution keeps them by the names of its packages.
function(kit_licence_of_package NAME PACKAGE)
    find_file(KIT_LICENCE_${NAME} copyright PATHS "${KIT_LICENCE_TEXTS}/${PACKAGE}" NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    kit_licence(${NAME} "${KIT_LICENCE_${NAME}}")
endfunction()
set(KIT_LICENCE_TEXTS /usr/share/doc CACHE PATH "The folder that has PACKAGE/copyright for each of the distribution's packages")

if(MINGW)
    kit_licence_of_package(zlib libz-mingw-w64-dev)
    kit_licence_of_package(mingw_runtime mingw-w64-x86-64-dev)
    kit_licence_of_package(gcc_runtime gcc-mingw-w64-base)
    kit_licence_of_package(eigen libeigen3-dev)
    kit_licence_of_package(stb libstb-dev)
    if(KIT_DICOM)
        foreach(library dcmtk openjpeg)
            # Beside what scripts/build_dependencies built of them.
            find_file(KIT_LICENCE_${library} ${library}.txt NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
                PATHS "${DCMTK_DIR}/../share/licences" "${DCMTK_DIR}/../../../share/licences")
            kit_licence(${library} "${KIT_LICENCE_${library}}")
        endforeach()
    endif()
endif()
install(DIRECTORY "${kit_licence_folder}" DESTINATION . COMPONENT documents)

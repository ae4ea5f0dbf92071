# Read by CMake when DCMTK's project begins: the parts whose sources can be compiled a dozen at a time are. Reading the same
# headers for every source is half of the time that it takes to build them. Sources of dcmnet, dcmjpeg and oflog are not made for it.
function(unite_sources)
    foreach(part IN ITEMS ofstd dcmdata dcmimgle dcmimage)
        if(TARGET ${part})
            set_target_properties(${part} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
        endif()
    endforeach()
endfunction()
cmake_language(DEFER CALL unite_sources)

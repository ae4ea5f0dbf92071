# Read by CMake when DCMTK's project begins. Reading the same headers for every source is half of the time that it takes to
# build it: where the sources can be compiled a dozen at a time they are, and some others get their headers precompiled.
function(settle_targets)
    foreach(part IN ITEMS ofstd dcmdata dcmimgle dcmimage)
        set_target_properties(${part} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    endforeach()
    target_precompile_headers(oflog PRIVATE <dcmtk/oflog/oflog.h> <dcmtk/oflog/helpers/loglog.h> <dcmtk/oflog/helpers/strhelp.h>
        <dcmtk/oflog/spi/logimpl.h>)
    foreach(part IN ITEMS dcmjpeg dcmnet)
        target_precompile_headers(${part} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:dcmtk/config/osconfig.h$<SEMICOLON>dcmtk/dcmdata/dctk.h>")
    endforeach()
    target_precompile_headers(dcmnet PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:dcmtk/dcmnet/diutil.h>")
    # Their templates take a quarter of the time. The codecs link them for windows and palettes, which nobody here asks them for.
    foreach(part IN ITEMS dcmimgle dcmimage)
        target_compile_options(${part} PRIVATE -O1)
    endforeach()
    target_compile_options(dcmtkcharls PRIVATE -O3)
endfunction()
cmake_language(DEFER CALL settle_targets)

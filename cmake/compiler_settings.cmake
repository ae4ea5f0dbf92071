# What every target of the project is compiled with. Link kit_compiler_settings privately.
add_library(kit_compiler_settings INTERFACE)
target_compile_features(kit_compiler_settings INTERFACE cxx_std_20)

set(kit_no_warnings)
if(KIT_WARNINGS_AS_ERRORS)
    set(kit_no_warnings "$<IF:$<CXX_COMPILER_ID:MSVC>,/WX,-Werror>")
endif()
if(MSVC)
    target_compile_options(kit_compiler_settings INTERFACE /W4 /wd4251 ${kit_no_warnings} /permissive- /utf-8 /EHsc /fp:precise /Zc:__cplusplus)
    # /fp:precise lets clang-cl contract, which Visual Studio's own compiler does not.
    target_compile_options(kit_compiler_settings INTERFACE $<$<CXX_COMPILER_ID:Clang>:/clang:-ffp-contract=off>)
    target_compile_definitions(kit_compiler_settings INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
    # No contraction: numeric results are part of the behaviour and must not depend on the processor.
    target_compile_options(kit_compiler_settings INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow ${kit_no_warnings} -ffp-contract=off)
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
        # GCC's -Wconversion leaves these two out for C++; one set of rules for both compilers.
        target_compile_options(kit_compiler_settings INTERFACE -Wno-sign-conversion -Wno-implicit-int-float-conversion)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # A watch on the stack is linked from its panel and takes the link back when it ends (panels/protocol/panel_life.h);
        # the optimiser does not follow that.
        target_compile_options(kit_compiler_settings INTERFACE $<$<CONFIG:Release>:-Wno-dangling-pointer>)
    endif()
    # DWARF 4: Wine's back traces read no later one.
    target_compile_options(kit_compiler_settings INTERFACE
        "$<$<CONFIG:Debug>:-gdwarf-4;-fstack-protector-strong>"
        "$<$<CONFIG:Release>:-ffunction-sections;-fdata-sections>")
    target_compile_definitions(kit_compiler_settings INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endif()

if(WIN32)
    target_compile_definitions(kit_compiler_settings INTERFACE NOMINMAX WINVER=0x0A00 _WIN32_WINNT=0x0A00)
    if(MINGW)
        target_link_options(kit_compiler_settings INTERFACE "$<$<CONFIG:Release>:-s;-Wl,--gc-sections>")
        target_compile_options(kit_compiler_settings INTERFACE $<$<CONFIG:Debug>:-Wa,-mbig-obj>)
        target_link_options(kit_compiler_settings INTERFACE $<$<CONFIG:Debug>:-fstack-protector-strong>)
    endif()
endif()

# What reads files of strangers is compiled with the guards that Release goes without elsewhere; Debug has them throughout.
add_library(kit_untrusted_input INTERFACE)
if(NOT MSVC)
    target_compile_options(kit_untrusted_input INTERFACE "$<$<CONFIG:Release>:-fstack-protector-strong;-fcf-protection=full>")
    target_compile_definitions(kit_untrusted_input INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
    target_link_options(kit_untrusted_input INTERFACE $<$<CONFIG:Release>:-fstack-protector-strong>)
endif()

if(KIT_SANITIZE)
    set(kit_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(kit_compiler_settings INTERFACE ${kit_sanitizers})
    target_link_options(kit_compiler_settings INTERFACE ${kit_sanitizers})
endif()

if(KIT_TSAN)
    target_compile_options(kit_compiler_settings INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
    target_link_options(kit_compiler_settings INTERFACE -fsanitize=thread)
endif()

if(KIT_FUZZ)
    if(WIN32 OR NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
        message(FATAL_ERROR "Fuzz programs need clang and no Windows target.")
    endif()
    target_compile_options(kit_compiler_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(KIT_CCACHE)
    find_program(KIT_CCACHE_PROGRAM ccache)
    if(NOT KIT_CCACHE_PROGRAM)
        message(FATAL_ERROR "ccache is missing: scripts/install_packages run brings it, -D KIT_CCACHE=OFF does without.")
    endif()
    # Paths relative to the project: all build folders, and all clones, share what was compiled once.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros "${KIT_CCACHE_PROGRAM}")
endif()

# A program and all the DLLs that it loads stand in one folder, which can be copied and started as it is.
if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
    # Generators of several configurations would put a folder of each between.
    foreach(configuration IN LISTS CMAKE_CONFIGURATION_TYPES)
        string(TOUPPER "${configuration}" name)
        set(CMAKE_RUNTIME_OUTPUT_DIRECTORY_${name} "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    endforeach()
elseif(NOT CMAKE_RUNTIME_OUTPUT_DIRECTORY)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endif()

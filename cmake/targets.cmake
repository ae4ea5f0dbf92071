# The few kinds of target of the project. Every function takes explicit source lists.

# What an own source file is compiled with: the settings, and the headers that its folder may include.
function(kit_settings TARGET)
    kit_room_views(${TARGET})
    if(KIT_UNITY AND NOT CMAKE_CURRENT_SOURCE_DIR MATCHES "^${PROJECT_SOURCE_DIR}/tests")
        set_target_properties(${TARGET} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${KIT_UNITY_SOURCES})
    endif()
    target_link_libraries(${TARGET} PRIVATE kit_compiler_settings)
endfunction()

# What most sources of the application and its readers read of the standard library.
set(kit_standard_headers <algorithm> <cmath> <filesystem> <functional> <memory> <optional> <span> <string> <utility> <vector>)

# kit_apart(source ...)
# Sources that no others are compiled together with, where several are compiled as one (KIT_UNITY).
function(kit_apart)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# kit_precompile(TARGET header ...)
# Headers that most sources of TARGET read, compiled once for it. They come before each source's own, so these sources
# no longer show that their headers stand alone; the lint of headers is told.
function(kit_precompile TARGET)
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
        # By content, not by time: ccache may bring it.
        target_compile_options(${TARGET} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
    endif()
    target_precompile_headers(${TARGET} PRIVATE ${ARGN})
    get_target_property(sources ${TARGET} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source NORMALIZE)
        cmake_path(RELATIVE_PATH source BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
        set_property(GLOBAL APPEND PROPERTY kit_precompiled_sources "${source}")
    endforeach()
endfunction()

# kit_objects(NAME DEFINE macro SOURCES ... [WINDOWS_SOURCES ...] [LIBRARIES ...])
# Object files of one folder. DEFINE marks the module that they belong to; who links the objects gets it too, because
# for him the module's operations are not imported.
function(kit_objects NAME)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DEFINE" "SOURCES;WINDOWS_SOURCES;LIBRARIES")
    if(WIN32)
        list(APPEND arg_SOURCES ${arg_WINDOWS_SOURCES})
    endif()
    if(NOT arg_SOURCES)
        add_library(${NAME} INTERFACE)
        return()
    endif()
    add_library(${NAME} OBJECT ${arg_SOURCES})
    kit_settings(${NAME})
    target_compile_definitions(${NAME} PUBLIC ${arg_DEFINE})
    target_link_libraries(${NAME} PUBLIC host_contract ${arg_LIBRARIES})
endfunction()

# kit_module(NAME OBJECTS target ... [LIBRARIES ...])
# A module from object libraries: a DLL on Windows, a static library elsewhere.
function(kit_module NAME)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "OBJECTS;LIBRARIES")
    set(objects)
    foreach(target IN LISTS arg_OBJECTS)
        get_target_property(type ${target} TYPE)
        if(type STREQUAL OBJECT_LIBRARY)
            list(APPEND objects $<TARGET_OBJECTS:${target}>)
        endif()
    endforeach()
    if(NOT objects)
        add_library(${NAME} INTERFACE)
        return()
    endif()
    if(WIN32)
        add_library(${NAME} SHARED ${objects})
    else()
        add_library(${NAME} STATIC ${objects})
    endif()
    set_target_properties(${NAME} PROPERTIES PREFIX "" LINKER_LANGUAGE CXX)
    target_link_libraries(${NAME} PUBLIC host_contract ${arg_LIBRARIES} PRIVATE kit_compiler_settings)
endfunction()

# kit_library(NAME DEFINE macro SOURCES ... [WINDOWS_SOURCES ...] [LIBRARIES ...] [PRIVATE_LIBRARIES ...])
# A module of one folder, NAME, and its object files alone, NAME_Objects, for tests that look inside.
function(kit_library NAME)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DEFINE" "SOURCES;WINDOWS_SOURCES;LIBRARIES;PRIVATE_LIBRARIES")
    kit_objects(${NAME}_Objects DEFINE ${arg_DEFINE} SOURCES ${arg_SOURCES} WINDOWS_SOURCES ${arg_WINDOWS_SOURCES}
        LIBRARIES ${arg_LIBRARIES} ${arg_PRIVATE_LIBRARIES})
    kit_module(${NAME} OBJECTS ${NAME}_Objects LIBRARIES ${arg_LIBRARIES})
    get_target_property(type ${NAME} TYPE)
    if(NOT type STREQUAL INTERFACE_LIBRARY)
        target_link_libraries(${NAME} PRIVATE ${arg_PRIVATE_LIBRARIES})
    endif()
endfunction()

# Seconds after which a test counts as hanging, far beyond what any needs on a busy machine. Lints have no limit: they end.
set(kit_hang_seconds 3600)

# The own flags of what only tests are made of.
separate_arguments(kit_test_flags NATIVE_COMMAND "${KIT_TEST_FLAGS}")

# kit_panels_test(NAME x SOURCES ... [LIBRARIES ...] [NATIVE | NATIVE_ONLY] [DESKTOP] [FAIL_MEMORY] [LABEL kind])
# A GoogleTest program and its one CTest entry. NATIVE: also without Windows, under the sanitizers; NATIVE_ONLY: only
# there. DESKTOP: it uses the real cursor, keyboard or focus, so no other such test may run beside it.
# FAIL_MEMORY: its sources stand in for the C library's allocation (__wrap_malloc, ...) and let it fail.
# LIBRARIES: Kit_Panels for the module as a host sees it, painting_panels and the like for what it does not export.
function(kit_panels_test)
    cmake_parse_arguments(PARSE_ARGV 0 arg "NATIVE;NATIVE_ONLY;DESKTOP;FAIL_MEMORY" "NAME;LABEL" "SOURCES;LIBRARIES")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kit_panels_test ${arg_NAME}: unknown ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT KIT_TESTS OR (WIN32 AND arg_NATIVE_ONLY) OR NOT (WIN32 OR arg_NATIVE OR arg_NATIVE_ONLY))
        return()
    endif()
    add_executable(${arg_NAME} ${arg_SOURCES})
    kit_settings(${arg_NAME})
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main)
    target_compile_options(${arg_NAME} PRIVATE ${kit_test_flags})
    target_precompile_headers(${arg_NAME} REUSE_FROM test_headers)
    if(arg_FAIL_MEMORY)
        target_link_options(${arg_NAME} PRIVATE -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc)
    endif()
    add_test(NAME ${arg_NAME}
        COMMAND ${arg_NAME} --gtest_output=xml:../test_results/${arg_NAME}.xml
        WORKING_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    kit_test_properties(${arg_NAME} "${arg_LABEL}" ${arg_DESKTOP})
endfunction()

# kit_test_not_run(NAME WHAT): a CTest entry that is told as skipped and says in its name WHAT is missing, so that a test
# that a machine cannot run does not vanish.
function(kit_test_not_run NAME WHAT)
    if(KIT_TESTS)
        add_test(NAME ${NAME}_not_run_without_${WHAT} COMMAND "${CMAKE_COMMAND}" -E echo "not run: ${WHAT} is missing")
        set_tests_properties(${NAME}_not_run_without_${WHAT} PROPERTIES LABELS unit SKIP_REGULAR_EXPRESSION "not run")
    endif()
endfunction()

function(kit_test_properties NAME LABEL DESKTOP)
    if(NOT LABEL)
        set(LABEL unit)
    endif()
    set_tests_properties(${NAME} PROPERTIES LABELS ${LABEL} TIMEOUT ${kit_hang_seconds})
    if(DESKTOP)
        set_tests_properties(${NAME} PROPERTIES RESOURCE_LOCK desktop)
    endif()
    if(WIN32 AND TARGET guihold)
        add_dependencies(${NAME} guihold)
    endif()
endfunction()

# kit_panels_benchmark(NAME x SOURCES ... [LIBRARIES ...] [NATIVE])
# A Google Benchmark program, and a CTest entry that only sees it run: figures come from ./bench.
function(kit_panels_benchmark)
    cmake_parse_arguments(PARSE_ARGV 0 arg "NATIVE" "NAME" "SOURCES;LIBRARIES")
    if(NOT KIT_BENCHMARKS OR NOT (WIN32 OR arg_NATIVE))
        return()
    endif()
    add_executable(${arg_NAME} ${arg_SOURCES})
    kit_settings(${arg_NAME})
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} benchmark::benchmark benchmark::benchmark_main)
    add_test(NAME ${arg_NAME} COMMAND ${arg_NAME} --benchmark_min_time=0.001 WORKING_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    kit_test_properties(${arg_NAME} bench FALSE)
endfunction()

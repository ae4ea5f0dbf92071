# The lints of scripts/lints as CTest entries. Those that need a build look at the debug build for Windows.
function(kit_lint NAME)
    add_test(NAME lint_${NAME} COMMAND "${PROJECT_SOURCE_DIR}/scripts/lints/${NAME}" ${ARGN})
    set_tests_properties(lint_${NAME} PROPERTIES LABELS lint)
endfunction()

if(MINGW AND CMAKE_BUILD_TYPE STREQUAL Debug)
    # One source for each header, that has nothing but it.
    file(GLOB_RECURSE headers RELATIVE "${PROJECT_SOURCE_DIR}" CONFIGURE_DEPENDS
        host/*.h base/*.h kits/*.h panels/*.h histogram/*.h database/*.h workbench/*.h tests/*.h)
    set(sources)
    foreach(header IN LISTS headers)
        string(REPLACE "/" "__" name "${header}")
        set(source "${CMAKE_BINARY_DIR}/headers_alone/${name}.cpp")
        file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"${header}\"\n")
        list(APPEND sources "${source}")
    endforeach()
    add_library(headers_alone OBJECT EXCLUDE_FROM_ALL ${sources})
    kit_settings(headers_alone)
    # No debug information: nothing is kept of these objects but that they compile.
    target_compile_options(headers_alone PRIVATE -O0 -g0)
    target_compile_definitions(headers_alone PRIVATE KIT_SOURCE_ROOT="")  # what histogram/ gives its own sources
    target_link_libraries(headers_alone PRIVATE host_contract header_only ZLIB::ZLIB)
    if(GTest_FOUND)
        target_link_libraries(headers_alone PRIVATE GTest::gmock)
    endif()

    kit_lint(raw_gdi_lifetime)
    kit_lint(window_lookup)
    kit_lint(windows_in_pure)
    kit_lint(formatting)
    kit_lint(portable_text)
    kit_lint(file_size)
    kit_lint(file_names)
    kit_lint(reference)
    kit_lint(analysis "${CMAKE_BINARY_DIR}")
    kit_lint(headers_alone "${CMAKE_BINARY_DIR}")
    kit_lint(exports "${CMAKE_BINARY_DIR}")
endif()

if(KIT_SANITIZE)
    kit_lint(tidy "${CMAKE_BINARY_DIR}")
    set_tests_properties(lint_tidy PROPERTIES PROCESSORS 2)
endif()

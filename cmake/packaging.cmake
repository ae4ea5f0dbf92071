# What makers of hosts take away: `cmake --install BUILD --prefix FOLDER` gives headers, import libraries, DLLs, icons
# and a CMake package; `cpack` in the build folder gives a zip with the workbench. Windows only: elsewhere the modules are
# archives for the tests.
if(NOT WIN32)
    return()
endif()
include(CMakePackageConfigHelpers)

set(kit_modules Kit_Common Kit_Widgets Kit_Dataset Kit_Graph Kit_Panels)
set(kit_package_folder lib/cmake/Kit_Panels)
install(TARGETS ${kit_modules} host_contract windows_headers EXPORT Kit_Panels_Targets
    RUNTIME DESTINATION bin COMPONENT runtime
    ARCHIVE DESTINATION lib COMPONENT development)
install(TARGETS kit_panels_c RUNTIME DESTINATION bin COMPONENT runtime ARCHIVE DESTINATION lib COMPONENT development)
install(EXPORT Kit_Panels_Targets NAMESPACE Kit_Panels:: DESTINATION ${kit_package_folder} COMPONENT development)

# Every header that a host may include, with all that these include, in the folders that the sources have. So
# panels/label_widgets.h and panels/protocol/panel_life.h are here: members of the panels' classes are of their types.
set(kit_public_headers
    database/db_list.h
    database/editor_places.h
    database/tool_db_class.h
    database/tool_db_file.h
    database/tool_db_list.h
    histogram/histo_peak.h
    histogram/histo_peaks.h
    histogram/tool_histo.h
    host/kit_common.h
    host/kit_dataset.h
    host/kit_graph.h
    host/kit_names.h
    host/kit_widgets.h
    host/platform.h
    kits/common/contract.h
    kits/common/messages.h
    kits/dataset/dataset_host.h
    kits/dataset/panel_flags.h
    kits/dataset/variable_rules.h
    kits/widgets/panel_set.h
    kits/widgets/panel_window.h
    kits/widgets/shown_widgets.h
    kits/widgets/widgets_host.h
    panels/kit_panels.h
    panels/protocol/kit_panels.h
    panels/protocol/panel_life.h
    panels/label_widgets.h
    panels/protocol/tool_panel.h
    panels/tool_brush.h
    panels/tool_marker.h
    panels/tool_propagate.h
    panels/tool_tag.h
    panels/kit_version.h
    panels/version_export.h
    base/wheel_remainder.h)
foreach(header IN LISTS kit_public_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION include/kit_panels/${folder} COMPONENT development)
endforeach()

# The C interface: its header stands alone, and its import library is there in Microsoft's format too.
install(FILES "${PROJECT_SOURCE_DIR}/c_interface/kit_panels.h" "${PROJECT_SOURCE_DIR}/c_interface/abi.txt" DESTINATION include/kit_panels/c COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/c_interface/kit_panels_c.def" DESTINATION lib COMPONENT development)
if(KIT_MICROSOFT_LIBRARY)
    install(FILES "${KIT_MICROSOFT_LIBRARY}" DESTINATION lib COMPONENT development)
endif()
# Examples, as they stand in the sources: the projects among them find the installation by themselves or by
# CMAKE_PREFIX_PATH, with the toolchain file beside them.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/c_host" "${PROJECT_SOURCE_DIR}/examples/csharp"
    "${PROJECT_SOURCE_DIR}/examples/python" "${PROJECT_SOURCE_DIR}/examples/rust" DESTINATION share/kit_panels/examples
    COMPONENT development PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/external_host" "${PROJECT_SOURCE_DIR}/examples/full_host"
    DESTINATION share/kit_panels/examples COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/examples/minimal_host.cpp" DESTINATION share/kit_panels/examples COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/cmake/mingw_toolchain.cmake" DESTINATION share/kit_panels COMPONENT development)
# The guide, at the places that the README's links name.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION . COMPONENT documents PATTERN Doxyfile.in EXCLUDE)
# The reference is made while installing, in the build folder. Without doxygen there is none, which is told, and the start
# page does not promise it; scripts/reference is for a shell.
find_program(KIT_DOXYGEN doxygen)
if(KIT_DOXYGEN AND CMAKE_HOST_UNIX)
    set(kit_reference_promise ", and the reference (`share/kit_panels/reference/index.html`)")
    install(CODE "execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/scripts/reference\" \"${CMAKE_BINARY_DIR}/reference\"
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR \"scripts/reference failed (\${status})\\n\${output}\")
    endif()" COMPONENT development)
    install(DIRECTORY "${CMAKE_BINARY_DIR}/reference/html/" DESTINATION share/kit_panels/reference COMPONENT development)
else()
    set(kit_reference_promise "")
    install(CODE "message(WARNING \"no reference is installed: the package doxygen is missing (scripts/install_packages test), or the \"
        \"system that builds has no shell. The README that is installed does not name it.\")" COMPONENT development)
endif()

# What a host must share with the module: the compiler's C++ interface, and the C runtime whose heap both use.
include(CheckCXXSourceCompiles)
check_cxx_source_compiles("#include <stdlib.h>\n#ifndef _UCRT\n#error other\n#endif\nint main() { return 0; }" KIT_HAS_UCRT)
if(KIT_HAS_UCRT OR MSVC)
    set(kit_c_runtime ucrt)
else()
    set(kit_c_runtime msvcrt)
endif()
string(REGEX MATCH "^[0-9]+" kit_compiler_major "${CMAKE_CXX_COMPILER_VERSION}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/Kit_PanelsConfig.cmake.in"
    "${CMAKE_BINARY_DIR}/Kit_PanelsConfig.cmake" INSTALL_DESTINATION ${kit_package_folder})
write_basic_package_version_file("${CMAKE_BINARY_DIR}/Kit_PanelsConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/Kit_PanelsConfig.cmake" "${CMAKE_BINARY_DIR}/Kit_PanelsConfigVersion.cmake"
    DESTINATION ${kit_package_folder} COMPONENT development)

install(TARGETS workbench RUNTIME DESTINATION bin COMPONENT runtime)
install(DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/icons" DESTINATION bin COMPONENT runtime OPTIONAL)
# The README of a package is that of the sources, but for how to build them.
file(READ "${PROJECT_SOURCE_DIR}/README.md" kit_readme)
file(READ "${CMAKE_CURRENT_LIST_DIR}/package_start.md" kit_package_start)
string(REGEX REPLACE "## Two commands.*(## In the workbench)" "<start>\\1" kit_readme "${kit_readme}")
string(REGEX REPLACE "- `scripts/reference`.*" "" kit_readme "${kit_readme}")
string(REPLACE "; `./bench` measures again" "" kit_readme "${kit_readme}")
string(REPLACE " (`./fuzz`)" "" kit_readme "${kit_readme}")
string(REPLACE "<start>" "${kit_package_start}" kit_readme "${kit_readme}")
string(REPLACE "<reference>" "${kit_reference_promise}" kit_readme "${kit_readme}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/README.md" "${CMAKE_CURRENT_LIST_DIR}/package_start.md")
file(WRITE "${CMAKE_BINARY_DIR}/package/README.md" "${kit_readme}")
install(FILES "${CMAKE_BINARY_DIR}/package/README.md" DESTINATION . COMPONENT documents)
include("${CMAKE_CURRENT_LIST_DIR}/licences.cmake")

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME Kit_Panels)
set(CPACK_PACKAGE_FILE_NAME "Kit_Panels-${PROJECT_VERSION}-windows-x86_64")
set(CPACK_COMPONENTS_ALL runtime documents)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
include(CPack)
# A second zip, for makers of hosts: cpack --config BUILD/CPackSdkConfig.cmake
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/CPackSdkConfig.cmake" CONTENT [[
include("${CMAKE_CURRENT_LIST_DIR}/CPackConfig.cmake")
set(CPACK_PACKAGE_FILE_NAME "Kit_Panels-@PROJECT_VERSION@-sdk-windows-x86_64")
set(CPACK_COMPONENTS_ALL runtime documents development)
]] @ONLY)

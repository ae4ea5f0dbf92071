/** @file
 *  The version numbers: of the module, which hosts check, and of the package, which CMake checks. */
#pragma once

/** What a host hands to Get_Version_Quorel_Tools (panels/version_export.h) to be sure of the module that it was built
 *  for. */
inline constexpr char KIT_PANELS_MODULE_VERSION[] = "5.016b";
/** Version of headers, kits and module together, as find_package(Kit_Panels 1.0) asks for it. */
inline constexpr char KIT_PANELS_PACKAGE_VERSION[] = "1.0.0";

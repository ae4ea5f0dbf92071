/** @file
 *  The module's version. */
#pragma once

#include "panels/protocol/kit_panels.h"

/** Checks that the module fits the host, and describes it.
 *  @param version the version that the host was built for; null: no check
 *  @return one line such as "Kit_Panels.dll 5.0 (rev-16b)", made with the name that the module's file has now, in a
 *  buffer that the next call overwrites; null when `version` is another one than the module's. User-interface thread
 *  only.
 *  Contract: hosts that compare the memory of two versions find 260 bytes more after each call that is not refused. */
extern "C" KIT_PANELS_API char* Get_Version_Quorel_Tools(char* version);

/** @file
 *  Export of the module Kit_Panels. */
#pragma once

#include "host/platform.h"

/** Exported while the module itself is built, imported by everyone else. */
#if defined(KIT_PANELS_BUILD)
#define KIT_PANELS_API KIT_EXPORT
#else
#define KIT_PANELS_API KIT_IMPORT
#endif

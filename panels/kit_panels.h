/** Export of the module Kit_Panels. */
#pragma once

#include "host/platform.h"

#if defined(KIT_PANELS_BUILD)
#define KIT_PANELS_API KIT_EXPORT
#else
#define KIT_PANELS_API KIT_IMPORT
#endif

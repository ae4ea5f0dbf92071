/** Pen and touch input of the system. For the kit's own use. */
#pragma once

#include "kits/dataset/dataset_host.h"

inline constexpr int TOUCH_POINTS_MAX = 16;  ///< of one message

Pointer_System System_Pointer_System();

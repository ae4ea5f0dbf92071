/** Pen and touch input of the system. For the kit's own use. */
#pragma once

#include "kits/dataset/dataset_host.h"

Pointer_System System_Pointer_System();

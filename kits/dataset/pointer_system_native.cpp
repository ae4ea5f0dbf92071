// Without Windows there is neither pen nor touch, only what is injected.
#include "kits/dataset/pointer_system.h"

Pointer_System System_Pointer_System() {
    return {};
}

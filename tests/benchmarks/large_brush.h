/** The brush that benchmarks paint with. */
#pragma once

#include "workbench/model/painting.h"

namespace workbench {

inline constexpr int LARGE_BRUSH_RADIUS =
    25;  ///< of the mask, pixels; it reaches one less, as far as the largest brush

/** A disc. Its mask stays as long as the program runs. */
inline Brush_Footprint Large_Brush() {
    constexpr int mask_side = 2 * LARGE_BRUSH_RADIUS + 1;
    static unsigned char bytes[mask_side * mask_side] = {};
    static const unsigned char* rows[mask_side] = {};
    for (int y = 0; y < mask_side; ++y) {
        rows[y] = bytes + y * mask_side;
        for (int x = 0; x < mask_side; ++x) {
            const int dx = x - LARGE_BRUSH_RADIUS;
            const int dy = y - LARGE_BRUSH_RADIUS;
            bytes[y * mask_side + x] = dx * dx + dy * dy < LARGE_BRUSH_RADIUS * LARGE_BRUSH_RADIUS ? 1 : 0;
        }
    }
    return {rows, LARGE_BRUSH_RADIUS};
}

}  // namespace workbench

#include "workbench/model/scroll_thumb.h"

#include <algorithm>
#include <cstdint>

namespace workbench {

namespace {

/** a * b / c, rounded; c is not 0. */
int Share(int a, int b, int c) {
    return static_cast<int>((static_cast<std::int64_t>(a) * b + c / 2) / c);
}

}  // namespace

Scroll_Thumb Scroll_Thumb_Of(const Scroll_Extent& extent, int length_least) {
    if (!extent.Is_Needed()) {
        return {0, std::max(extent.view, 0)};
    }
    const int length =
        std::clamp(Share(extent.view, extent.view, extent.content), std::min(length_least, extent.view), extent.view);
    const int offset = std::clamp(extent.offset, 0, extent.Offset_Max());
    return {Share(offset, extent.view - length, extent.Offset_Max()), length};
}

int Scroll_Offset_Of(const Scroll_Extent& extent, int length_least, int thumb_top) {
    const int way = extent.view - Scroll_Thumb_Of(extent, length_least).length;
    return way > 0 ? Share(std::clamp(thumb_top, 0, way), extent.Offset_Max(), way) : 0;
}

int Scroll_Wheel::Pixels(int delta, int per_notch) {
    if (per_notch != pixels_per_notch) {
        pixels_per_notch = per_notch;
        rest = Wheel_Remainder(per_notch);
    }
    return rest.Add(delta);
}

}  // namespace workbench

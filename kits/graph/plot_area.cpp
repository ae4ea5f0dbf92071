#include <algorithm>

#include "host/kit_graph.h"
#include "kits/widgets/widgets_host.h"

namespace {
constexpr int MARGIN_PARTS = 50;  // m is this part of the smaller side
constexpr int LEFT_FIXED = 40;    // pixels besides 2m
constexpr int RIGHT_FIXED = 10;
constexpr int BOTTOM_FIXED = 20;         // besides 2m, without titles
constexpr int BOTTOM_FIXED_TITLES = 35;  // besides 3m, with a title
}  // namespace

Plot_Area Plot_Window_Area(const Boxs& box, const char* title_x, const char* title_y, int top_reserved) {
    const auto given = [](const char* title) { return title != nullptr && title[0] != 0; };
    const int m = std::min(box.width / MARGIN_PARTS, box.height / MARGIN_PARTS);
    const int bottom_margin = given(title_x) || given(title_y) ? 3 * m + BOTTOM_FIXED_TITLES : 2 * m + BOTTOM_FIXED;
    const int top_margin = 2 * m + std::max(0, top_reserved);
    Plot_Area area;
    area.left = box.x + 2 * m + LEFT_FIXED;
    area.width = box.width - (2 * m + LEFT_FIXED) - (2 * m + RIGHT_FIXED);
    area.height = box.height - bottom_margin - top_margin;
    // The larger margin stands at the visual bottom, where the numbers go: at the small y of an axis that points up, at
    // the large y of the other.
    area.bottom = box.y + (Window_Axis_Get(box.window) == Window_Axis::Up ? bottom_margin : top_margin);
    return area;
}

#include "workbench/model/window_beside.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr int WIDTH_LEAST = 320;  // pixels; narrower it is of no use

}  // namespace

Window_Place Window_Beside(const Window_Place& main, int tools, int width, int height, const Window_Place& area) {
    const int right = main.left + main.width;
    const int area_right = area.left + area.width;
    Window_Place place = {right, main.top, width, height, false};
    if (area_right - right < width) {
        if (main.left - area.left >= width) {
            place.left = main.left - width;
        } else {
            const int room = area_right - std::max(main.left + tools, area.left);
            place.width = std::min(width, std::max(room, WIDTH_LEAST));
            place.left = area_right - place.width;
            place.top = area.top + area.height - height;  // what is lowest of the image is missed least
        }
    }
    return Place_Inside(place, area);
}

}  // namespace workbench

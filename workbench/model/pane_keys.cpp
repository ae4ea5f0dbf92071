#include "workbench/model/pane_keys.h"

#include <algorithm>

#include "host/kit_widgets.h"

namespace workbench {

std::optional<int> Grid_Step(int current, int count, int columns, int key) {
    if (count <= 0 || columns <= 0) {
        return std::nullopt;
    }
    const int from = std::clamp(current, 0, count - 1);
    const auto inside = [&](int wanted) { return wanted >= 0 && wanted < count ? wanted : from; };
    switch (key) {
        case KEY_RIGHT:
            return inside(from + 1);
        case KEY_LEFT:
            return inside(from - 1);
        case KEY_UP:
            return inside(from + columns);
        case KEY_DOWN:
            return inside(from - columns);
        case KEY_HOME:
            return 0;
        case KEY_END:
            return count - 1;
        default:
            return std::nullopt;
    }
}

}  // namespace workbench

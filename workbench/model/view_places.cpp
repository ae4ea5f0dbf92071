#include "workbench/model/view_places.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr int LARGE_PERCENT = 60;  // of the longer side

struct Halves {
    Pixel_Rect first;
    Pixel_Rect second;
};

/** @param percent of the room that the first gets */
Halves Beside(const Pixel_Rect& room, int percent, int gap) {
    const int width = std::max(room.right - room.left, 0);
    const int middle = room.left + std::max(width - gap, 0) * percent / 100;
    return {{room.left, room.top, middle, room.bottom},
            {std::min(middle + gap, room.right), room.top, room.right, room.bottom}};
}

Halves Below(const Pixel_Rect& room, int percent, int gap) {
    const int height = std::max(room.bottom - room.top, 0);
    const int middle = room.top + std::max(height - gap, 0) * percent / 100;
    return {{room.left, room.top, room.right, middle},
            {room.left, std::min(middle + gap, room.bottom), room.right, room.bottom}};
}

}  // namespace

bool Views_Shown::Has(int view) const {
    switch (arrangement) {
        case View_Arrangement::One:
            return view == large;
        case View_Arrangement::Three:
            return view < PLANE_VIEW_NB;
        case View_Arrangement::Four:
            return true;
    }
    return false;
}

std::array<Pixel_Rect, ALL_VIEW_NB> View_Places(const Pixel_Rect& room, const Views_Shown& shown, int gap) {
    std::array<Pixel_Rect, ALL_VIEW_NB> places{};
    const auto large = static_cast<std::size_t>(std::clamp(shown.large, 0, PLANE_VIEW_NB - 1));
    const std::array<std::size_t, 2> others = {large == 0 ? std::size_t{1} : std::size_t{0},
                                               large == 2 ? std::size_t{1} : std::size_t{2}};
    if (shown.arrangement == View_Arrangement::One) {
        places[large] = room;
    } else if (shown.arrangement == View_Arrangement::Three) {
        // The others stand where there is more room: beside the large one, or below it.
        const bool is_wide = room.right - room.left >= room.bottom - room.top;
        const Halves halves = is_wide ? Beside(room, LARGE_PERCENT, gap) : Below(room, LARGE_PERCENT, gap);
        const Halves small = is_wide ? Below(halves.second, 50, gap) : Beside(halves.second, 50, gap);
        places[large] = halves.first;
        places[others[0]] = small.first;
        places[others[1]] = small.second;
    } else {
        const Halves rows = Below(room, 50, gap);
        const Halves upper = Beside(rows.first, 50, gap);
        const Halves lower = Beside(rows.second, 50, gap);
        places[large] = upper.first;
        places[others[0]] = upper.second;
        places[others[1]] = lower.first;
        places[TABLE_VIEW] = lower.second;
    }
    return places;
}

}  // namespace workbench

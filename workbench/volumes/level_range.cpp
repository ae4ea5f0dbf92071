#include "workbench/volumes/level_range.h"

#include <algorithm>
#include <limits>

namespace volumes {

void Level_Range_Find(Volume& volume) {
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    std::int32_t highest = std::numeric_limits<std::int32_t>::min();
    std::uint64_t outside_nb = 0;
    if (volume.color) {
        volume.levels.Visit([&](const auto& levels) {
            for (const std::int32_t level : levels) {
                for (const int bits : {0, 8, 16}) {
                    lowest = std::min(lowest, level >> bits & 0xFF);
                    highest = std::max(highest, level >> bits & 0xFF);
                }
            }
        });
    } else {
        // Without a branch, several levels are looked at in one instruction. Those outside are greater than all others.
        volume.levels.Visit([&](const auto& levels) {
            for (const std::int32_t level : levels) {
                lowest = std::min(lowest, level);
                highest = std::max(highest, level == LEVEL_OUTSIDE ? std::numeric_limits<std::int32_t>::min() : level);
                outside_nb += level == LEVEL_OUTSIDE ? 1 : 0;
            }
        });
        lowest = outside_nb == volume.levels.size() ? std::numeric_limits<std::int32_t>::max() : lowest;
    }
    volume.nonfinite_nb = outside_nb;
    volume.level_min = lowest <= highest ? lowest : 0;
    volume.level_max = lowest <= highest ? highest : 0;
}

void Joined_Range::Add(const Volume& slice) {
    outside_nb += slice.nonfinite_nb;
    if (slice.nonfinite_nb == slice.levels.size()) {
        return;  // no level has a value
    }
    lowest = is_found ? std::min(lowest, slice.level_min) : slice.level_min;
    highest = is_found ? std::max(highest, slice.level_max) : slice.level_max;
    is_found = true;
}

void Joined_Range::Put(Volume& volume) const {
    volume.nonfinite_nb = outside_nb;
    volume.level_min = lowest;
    volume.level_max = highest;
}

}  // namespace volumes

#include "workbench/volumes/level_range.h"

#include <algorithm>
#include <limits>

namespace volumes {

void Level_Range_Find(Volume& volume) {
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    std::int32_t highest = std::numeric_limits<std::int32_t>::min();
    volume.nonfinite_nb = 0;
    for (const std::int32_t level : volume.levels) {
        if (volume.color) {
            for (const int bits : {0, 8, 16}) {
                lowest = std::min(lowest, level >> bits & 0xFF);
                highest = std::max(highest, level >> bits & 0xFF);
            }
        } else if (level == LEVEL_OUTSIDE) {
            ++volume.nonfinite_nb;
        } else {
            lowest = std::min(lowest, level);
            highest = std::max(highest, level);
        }
    }
    volume.level_min = lowest <= highest ? lowest : 0;
    volume.level_max = lowest <= highest ? highest : 0;
}

}  // namespace volumes

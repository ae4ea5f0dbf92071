#include "workbench/volumes/slices_join.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "workbench/volumes/level_range.h"
#include "workbench/volumes/level_scale.h"

namespace volumes {

namespace {

Scaled_Part Scale_Of(const Volume& volume) {
    return {volume.slope, volume.intercept, volume.level_min, volume.level_max, volume.levels.size(), volume.max_error};
}

/** Brings a volume's levels to another scale. @return false: it is theirs */
bool Scale_Change(Volume& volume, const Level_Scale& scale) {
    const Level_Map map(Scale_Of(volume), scale);
    if (volume.color || (map.Is_Same() && !scale.Has_Outside())) {
        return false;
    }
    std::vector<std::int32_t> levels(volume.levels.size());
    std::ranges::transform(volume.levels, levels.begin(), [&](std::int32_t level) { return map.Level_Again(level); });
    volume.levels = std::move(levels);
    volume.slope = scale.slope;
    volume.intercept = scale.intercept;
    return true;
}

}  // namespace

Joined_Slices Slices_Join(std::span<Volume* const> slices) {
    std::vector<Scaled_Part> scales;
    for (const Volume* const slice : slices) {
        if (slice != nullptr) {
            scales.push_back(Scale_Of(*slice));
        }
    }
    const Level_Scale scale = Level_Scale_Choose(scales);
    const Volume& first = **std::ranges::find_if(slices, [](const Volume* slice) { return slice != nullptr; });
    const std::size_t plane = first.levels.size();
    Voxel_Levels levels;
    levels.reserve(plane * slices.size());
    Joined_Range range;
    bool is_range_known = true;
    for (Volume* const slice : slices) {
        if (slice == nullptr) {
            levels.Append(std::vector<std::int32_t>(plane, first.color ? 0 : LEVEL_OUTSIDE));
            is_range_known = false;
            continue;
        }
        is_range_known = !Scale_Change(*slice, scale) && slice->outlier_nb == 0 && is_range_known;
        range.Add(*slice);
        levels.Append(std::exchange(slice->levels, {}));
    }
    Joined_Slices joined;
    Volume& volume = joined.volume;
    volume = first;
    volume.nz = static_cast<std::int32_t>(slices.size());
    volume.levels = std::move(levels);
    joined.lost = volume.color ? std::string() : Level_Scale_Warning(scale, "slices");
    if (!volume.color) {
        volume.max_error = scale.max_error;
        Outside_Note(scale, volume);
    }
    if (is_range_known) {
        range.Put(volume);
    } else {
        Level_Range_Find(volume);
    }
    return joined;
}

}  // namespace volumes

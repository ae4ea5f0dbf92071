#include "workbench/segmentation/region_edits.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "workbench/segmentation/cancelling.h"

namespace workbench::segmentation {

namespace {

// A volume that was summed voxel by voxel is not smaller than the same volume written as one number.
constexpr double SIZE_ROUNDING = 1e-9;

bool Is_Crossed(const Edit_Input& input, const Flood& flood, std::int32_t level, std::size_t at) {
    return flood.levels.Has(level) && level <= volumes::LEVEL_LARGEST &&
           (input.May_Change(input.tags[at]) || input.tags[at] == flood.tag);
}

/** Gives the runs of regions for which `is_meant` another TAG. */
template <class Is_Meant>
Label_Edit Regions_Give(const Edit_Input& input, const Region_Map& map, std::uint8_t to, Is_Meant is_meant) {
    Edit_Builder builder(input);
    std::vector<std::uint8_t> after(input.grid.Slice_Size());
    const Voxel_Box& box = map.Box();
    for (int z = box.begin[2]; !box.Is_Empty() && z < box.end[2]; ++z) {
        input.Slice_Copy(z, after);
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const auto row = after.begin() + static_cast<std::ptrdiff_t>(input.grid.Index(0, y, 0));
            for (const Region_Run& run : map.Row(y, z)) {
                if (is_meant(run.region)) {
                    std::fill(row + run.begin, row + run.end, to);
                }
            }
        }
        builder.Slice_Set(z, after);
    }
    return builder.Take();
}

bool Is_Inside(const Edit_Input& input, const Voxel_Place& place) {
    const Voxel_Box box = Box_Of_Slices(input);
    return !box.Is_Empty() && box.Has(place.x, place.y, place.z);
}

/** Calls `visit` with each neighbour in a box. */
template <class Visit>
void Neighbours_Visit(const Voxel_Box& box, const Voxel_Place& place, Neighbours neighbours, Visit visit) {
    for (int dz = -1; dz <= 1; ++dz) {
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const int steps = dx * dx + dy * dy + dz * dz;
                if (steps != 0 && (steps == 1 || neighbours == Neighbours::Corners) &&
                    box.Has(place.x + dx, place.y + dy, place.z + dz)) {
                    visit(Voxel_Place{place.x + dx, place.y + dy, place.z + dz});
                }
            }
        }
    }
}

}  // namespace

Level_Band Level_Band_Around(std::int32_t level, std::int32_t tolerance) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    return {static_cast<std::int32_t>(std::max(std::int64_t{level} - tolerance, lowest)),
            static_cast<std::int32_t>(std::min(std::int64_t{level} + tolerance, std::int64_t{volumes::LEVEL_LARGEST}))};
}

std::optional<Label_Edit> Flood_Fill(const Edit_Input& input, const Flood& flood) {
    return Cancellable([&] {
        if (!Is_Inside(input, flood.seed) ||
            !Is_Crossed(input, flood, input.levels[input.grid.Index(flood.seed.x, flood.seed.y, flood.seed.z)],
                        input.grid.Index(flood.seed.x, flood.seed.y, flood.seed.z))) {
            return Label_Edit();
        }
        const Region_Map map = Regions_Find(
            Box_Of_Slices(input),
            [&](int y, int z, std::span<std::uint8_t> row) {
                const std::size_t begin = input.grid.Index(0, y, z);
                input.levels.Visit([&](const auto& levels) {
                    for (std::size_t x = 0; x < row.size(); ++x) {
                        row[x] = Is_Crossed(input, flood, levels[begin + x], begin + x) ? 1 : 0;
                    }
                });
            },
            flood.neighbours, Step_Progress(input.progress));
        const std::uint32_t region = map.At(flood.seed);
        return Regions_Give(input, map, flood.tag, [&](std::uint32_t one) { return one == region; });
    });
}

std::optional<Region_Growth> Region_Growth::Find(const Edit_Input& input, const Flood& flood,
                                                 std::int32_t tolerance_most) {
    return Cancellable([&] {
        Region_Growth growth;
        growth.tag = flood.tag;
        const std::size_t step_nb = static_cast<std::size_t>(std::max(tolerance_most, 0)) + 1;
        growth.voxel_nb.resize(step_nb);
        if (!Is_Inside(input, flood.seed)) {
            return growth;
        }
        const Voxel_Box box = Box_Of_Slices(input);
        const std::size_t seed = input.grid.Index(flood.seed.x, flood.seed.y, flood.seed.z);
        const std::int32_t level = input.levels[seed];
        Flood widest = flood;
        widest.levels = Level_Band_Around(level, tolerance_most);
        // A voxel waits in the list of the tolerance that it is reached with: its own, or a larger one on the way.
        std::vector<std::vector<std::size_t>> waiting(step_nb);
        std::vector<bool> is_seen(box.Voxel_Nb());
        const std::size_t origin = input.grid.Index(0, 0, box.begin[2]);
        const auto see = [&](std::size_t at, std::size_t step) {
            const std::int32_t own_level = input.levels[at];
            if (!is_seen[at - origin] && Is_Crossed(input, widest, own_level, at)) {
                is_seen[at - origin] = true;
                const auto own = static_cast<std::size_t>(std::abs(std::int64_t{own_level} - level));
                waiting[std::max(own, step)].push_back(at);
            }
        };
        const Step_Progress progress(input.progress);
        see(seed, 0);
        for (std::size_t step = 0; step < step_nb; ++step) {
            progress.Report(static_cast<std::int64_t>(step), static_cast<std::int64_t>(step_nb));
            for (std::size_t next = 0; next < waiting[step].size(); ++next) {
                const std::size_t at = waiting[step][next];
                growth.voxels.push_back(at);
                const std::size_t slice = at / input.grid.Slice_Size();
                const auto width = static_cast<std::size_t>(input.grid.width);
                const std::size_t in_slice = at % input.grid.Slice_Size();
                const Voxel_Place place = {static_cast<int>(in_slice % width), static_cast<int>(in_slice / width),
                                           static_cast<int>(slice)};
                Neighbours_Visit(box, place, flood.neighbours, [&](const Voxel_Place& other) {
                    see(input.grid.Index(other.x, other.y, other.z), step);
                });
            }
            growth.voxel_nb[step] = growth.voxels.size();
            waiting[step] = {};
        }
        return growth;
    });
}

std::uint64_t Region_Growth::Voxel_Nb(std::int32_t tolerance) const {
    return tolerance < 0 || voxel_nb.empty()
               ? 0
               : voxel_nb[std::min(static_cast<std::size_t>(tolerance), voxel_nb.size() - 1)];
}

Label_Edit Region_Growth::Edit(const Edit_Input& input, std::int32_t tolerance) const {
    const std::size_t size = input.grid.Slice_Size();
    std::vector<std::size_t> reached(voxels.begin(), voxels.begin() + static_cast<std::ptrdiff_t>(Voxel_Nb(tolerance)));
    std::ranges::sort(reached);
    Edit_Builder builder(input);
    std::vector<std::uint8_t> after(size);
    for (std::size_t at = 0; at < reached.size();) {
        const std::size_t slice = reached[at] / size;
        input.Slice_Copy(static_cast<int>(slice), after);
        for (; at < reached.size() && reached[at] / size == slice; ++at) {
            after[reached[at] % size] = tag;
        }
        builder.Slice_Set(static_cast<int>(slice), after);
    }
    return builder.Take();
}

std::optional<Label_Edit> Region_Keep_Largest(const Edit_Input& input, std::uint8_t tag, Neighbours neighbours) {
    return Cancellable([&] {
        const Region_Map map = Regions_Of_Tag(input, tag, neighbours, Step_Progress(input.progress));
        const std::uint32_t largest = map.Largest();
        return Regions_Give(input, map, 0, [&](std::uint32_t region) { return region != largest; });
    });
}

std::optional<Label_Edit> Regions_Drop_Below(const Edit_Input& input, std::uint8_t tag, double mm3,
                                             Neighbours neighbours) {
    return Cancellable([&] {
        const Region_Map map = Regions_Of_Tag(input, tag, neighbours, Step_Progress(input.progress));
        const double least = mm3 * (1.0 - SIZE_ROUNDING);
        return Regions_Give(input, map, 0, [&](std::uint32_t region) {
            return static_cast<double>(map.Regions()[region].voxel_nb) * input.grid.Voxel_Mm3() < least;
        });
    });
}

std::optional<Label_Edit> Region_Keep_At(const Edit_Input& input, std::uint8_t tag, const Voxel_Place& place,
                                         Neighbours neighbours) {
    return Cancellable([&] {
        const Region_Map map = Regions_Of_Tag(input, tag, neighbours, Step_Progress(input.progress));
        const std::uint32_t kept = map.Box().Is_Empty() ? Region_Map::NONE : map.At(place);
        return Regions_Give(input, map, 0,
                            [&](std::uint32_t region) { return kept != Region_Map::NONE && region != kept; });
    });
}

std::optional<Label_Edit> Region_Give(const Edit_Input& input, const Voxel_Place& place, std::uint8_t to,
                                      Neighbours neighbours) {
    return Cancellable([&] {
        if (!Is_Inside(input, place)) {
            return Label_Edit();
        }
        const std::uint8_t tag = input.tags[input.grid.Index(place.x, place.y, place.z)];
        const Region_Map map = Regions_Of_Tag(input, tag, neighbours, Step_Progress(input.progress));
        const std::uint32_t given = map.At(place);
        return Regions_Give(input, map, to, [&](std::uint32_t region) { return region == given; });
    });
}

}  // namespace workbench::segmentation

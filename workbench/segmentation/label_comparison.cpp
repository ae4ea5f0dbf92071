#include "workbench/segmentation/label_comparison.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/distance_map.h"
#include "workbench/segmentation/voxel_mask.h"

namespace workbench::segmentation {

namespace {

/** The surface of a mask whose box has a voxel of room around its set wherever the volume has. */
Voxel_Mask Surface_Of(const Voxel_Mask& mask, bool is_plane) {
    const Voxel_Box& box = mask.box;
    Voxel_Mask surface(box);
    const auto is_on = [&](int x, int y, int z) {
        return box.Has(x, y, z) && mask.Row(y, z)[static_cast<std::size_t>(x - box.begin[0])] != 0;
    };
    for (int z = box.begin[2]; z < box.end[2]; ++z) {
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const std::span<const std::uint8_t> row = mask.Row(y, z);
            const std::span<std::uint8_t> out = surface.Row(y, z);
            for (int x = box.begin[0]; x < box.end[0]; ++x) {
                const auto at = static_cast<std::size_t>(x - box.begin[0]);
                if (row[at] == 0) {
                    continue;
                }
                const bool is_shut = is_on(x - 1, y, z) && is_on(x + 1, y, z) && is_on(x, y - 1, z) &&
                                     is_on(x, y + 1, z) && (is_plane || (is_on(x, y, z - 1) && is_on(x, y, z + 1)));
                out[at] = is_shut ? 0 : 1;
            }
        }
    }
    return surface;
}

/** Distances from the voxels of one surface to the other, ascending. */
std::vector<double> Ways(const Voxel_Mask& from, const Voxel_Mask& to, const std::array<double, 3>& spacing,
                         const Step_Progress& progress) {
    const Distance_Map map = Distances_Find(to, 1, spacing, progress);
    std::vector<double> ways;
    for (std::size_t at = 0; at < from.on.size(); ++at) {
        if (from.on[at] != 0) {
            ways.push_back(std::sqrt(static_cast<double>(map.squared[at])));
        }
    }
    std::ranges::sort(ways);
    return ways;
}

double Percentile(std::span<const double> ascending, double share) {
    const double place = static_cast<double>(ascending.size() - 1) * share;
    const auto before = static_cast<std::size_t>(place);
    const std::size_t after = std::min(before + 1, ascending.size() - 1);
    return ascending[before] + (place - static_cast<double>(before)) * (ascending[after] - ascending[before]);
}

Voxel_Box Box_Union(const Voxel_Box& one, const Voxel_Box& other) {
    Voxel_Box both;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        both.begin[axis] = std::min(one.begin[axis], other.begin[axis]);
        both.end[axis] = std::max(one.end[axis], other.end[axis]);
    }
    return both;
}

}  // namespace

std::optional<Label_Agreement> Labels_Compare(const Edit_Input& input, std::uint8_t tag,
                                              std::span<const std::uint8_t> other, std::uint8_t other_tag) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        progress.Report(0, 1);
        Edit_Input second = input;
        second.tags = other;
        Label_Agreement agreement;
        const Slice_Range slices = input.Slices();
        for (int z = slices.first; z <= slices.last; ++z) {
            const std::span<const std::uint8_t> ones = input.Slice_Tags(z);
            const std::span<const std::uint8_t> others = second.Slice_Tags(z);
            for (std::size_t at = 0; at < ones.size(); ++at) {
                const bool is_one = ones[at] == tag;
                const bool is_other = others[at] == other_tag;
                agreement.one_nb += is_one ? 1 : 0;
                agreement.other_nb += is_other ? 1 : 0;
                agreement.common_nb += is_one && is_other ? 1 : 0;
            }
        }
        const auto one_nb = static_cast<double>(agreement.one_nb);
        const auto other_nb = static_cast<double>(agreement.other_nb);
        const auto common_nb = static_cast<double>(agreement.common_nb);
        if (agreement.one_nb + agreement.other_nb > 0) {
            agreement.dice = 2.0 * common_nb / (one_nb + other_nb);
            agreement.jaccard = common_nb / (one_nb + other_nb - common_nb);
        }
        agreement.volume_difference = (other_nb - one_nb) * input.grid.Voxel_Mm3() / 1000.0;
        if (agreement.one_nb == 0 || agreement.other_nb == 0) {
            return agreement;
        }
        const Voxel_Box box = Box_Grown(Box_Union(Box_Of_Tag(input, tag), Box_Of_Tag(second, other_tag)), 0.0,
                                        input.grid.spacing, Box_Of_Slices(input));
        const bool is_plane = slices.first == slices.last;
        const Voxel_Mask one = Surface_Of(Mask_Of_Tag(input, box, tag), is_plane);
        const Voxel_Mask two = Surface_Of(Mask_Of_Tag(second, box, other_tag), is_plane);
        const std::vector<double> there = Ways(one, two, input.grid.spacing, progress.Part(0.1, 0.5));
        const std::vector<double> back = Ways(two, one, input.grid.spacing, progress.Part(0.5, 0.9));
        Surface_Distances distances;
        distances.hausdorff = std::max(there.back(), back.back());
        distances.hausdorff_95 = std::max(Percentile(there, 0.95), Percentile(back, 0.95));
        double sum = 0.0;
        for (const std::vector<double>* ways : {&there, &back}) {
            for (const double way : *ways) {
                sum += way;
            }
        }
        distances.mean = sum / static_cast<double>(there.size() + back.size());
        agreement.distances = distances;
        progress.Report(1, 1);
        return agreement;
    });
}

}  // namespace workbench::segmentation

#include "workbench/segmentation/tag_shape.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/distance_map.h"
#include "workbench/segmentation/voxel_mask.h"
#include "workbench/segmentation/voxel_regions.h"

namespace workbench::segmentation {

namespace {

constexpr double DISTANCE_ROUNDING = 1e-6;  // of distances, as a share of them

/** Which regions touch the edge of their box. @param in_space also its first and last slice */
std::vector<bool> Edge_Regions(const Region_Map& map, bool in_space) {
    const Voxel_Box& box = map.Box();
    std::vector<bool> at_edge(map.Regions().size());
    for (int z = box.begin[2]; z < box.end[2]; ++z) {
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const bool is_edge =
                y == box.begin[1] || y == box.end[1] - 1 || (in_space && (z == box.begin[2] || z == box.end[2] - 1));
            for (const Region_Run& run : map.Row(y, z)) {
                if (is_edge || run.begin == box.begin[0] || run.end == box.end[0]) {
                    at_edge[run.region] = true;
                }
            }
        }
    }
    return at_edge;
}

/** Adds to a mask what its box does not have and what is shut off from the edge. */
void Holes_Close(Voxel_Mask& mask, const Voxel_Box& box, bool in_space, const Step_Progress& progress) {
    const auto first = static_cast<std::size_t>(box.begin[0] - mask.box.begin[0]);
    const Region_Map map = Regions_Find(
        box,
        [&](int y, int z, std::span<std::uint8_t> row) {
            const std::span<const std::uint8_t> marks = std::as_const(mask).Row(y, z).subspan(first, row.size());
            for (std::size_t x = 0; x < row.size(); ++x) {
                row[x] = marks[x] == 0 ? 1 : 0;
            }
        },
        Neighbours::Faces, progress);
    const std::vector<bool> at_edge = Edge_Regions(map, in_space);
    for (int z = box.begin[2]; z < box.end[2]; ++z) {
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const auto row = mask.Row(y, z).begin() - mask.box.begin[0];
            for (const Region_Run& run : map.Row(y, z)) {
                if (!at_edge[run.region]) {
                    std::fill(row + run.begin, row + run.end, std::uint8_t{1});
                }
            }
        }
    }
}

/** How many voxels of a mask lie before each place of a row, row after row; one more number than voxels of a row. */
std::vector<std::int32_t> Sums_Along_Rows(const Voxel_Mask& mask) {
    std::vector<std::int32_t> sums;
    sums.reserve(mask.on.size() + mask.box.Row_Nb());
    for (std::size_t at = 0; at < mask.on.size(); at += mask.Row_Size()) {
        std::int32_t sum = 0;
        sums.push_back(sum);
        for (std::size_t x = 0; x < mask.Row_Size(); ++x) {
            sum += mask.on[at + x];
            sums.push_back(sum);
        }
    }
    return sums;
}

/** Of each voxel of a row, how many more than half of the voxels of its ball are on, twice. */
class Ball_Majority {
  public:
    /** @param mask_all what the ball is cut to */
    Ball_Majority(const Voxel_Mask& counted, const std::vector<Ball_Row>& ball_rows, const Voxel_Box& mask_all)
        : mask(counted), ball(ball_rows), all(mask_all), sums(Sums_Along_Rows(counted)) {}

    void Row(int y, int z, std::span<std::int32_t> excess) const {
        std::ranges::fill(excess, 0);
        for (const Ball_Row& row : ball) {
            if (!all.Has(all.begin[0], y + row.y, z + row.z)) {
                continue;
            }
            const bool has_marks = mask.box.Has(mask.box.begin[0], y + row.y, z + row.z);
            for (int x = mask.box.begin[0]; x < mask.box.end[0]; ++x) {
                const int first = std::max(x - row.reach, all.begin[0]);
                const int end = std::min(x + row.reach + 1, all.end[0]);
                const std::int32_t on = has_marks ? Between(y + row.y, z + row.z, first, end) : 0;
                excess[static_cast<std::size_t>(x - mask.box.begin[0])] += 2 * on - (end - first);
            }
        }
    }

  private:
    std::int32_t Between(int y, int z, int first, int end) const {
        const std::size_t row = mask.Row_Begin(y, z) / mask.Row_Size() * (mask.Row_Size() + 1);
        const auto place = [&](int x) {
            return row +
                   static_cast<std::size_t>(std::clamp(x, mask.box.begin[0], mask.box.end[0]) - mask.box.begin[0]);
        };
        return sums[place(end)] - sums[place(first)];
    }

    const Voxel_Mask& mask;
    const std::vector<Ball_Row>& ball;
    const Voxel_Box& all;
    std::vector<std::int32_t> sums;
};

/** Distances to the outline of what one slice has of a TAG: negative inside. */
std::vector<double> Signed_Distances(const Edit_Input& input, Voxel_Box box, int slice, std::uint8_t tag) {
    box.begin[2] = slice;
    box.end[2] = slice + 1;
    const Voxel_Mask mask = Mask_Of_Tag(input, box, tag);
    const Edit_Progress silent;
    const Distance_Map inside = Distances_Find(mask, 0, input.grid.spacing, Step_Progress(silent));
    const Distance_Map outside = Distances_Find(mask, 1, input.grid.spacing, Step_Progress(silent));
    std::vector<double> distances(mask.on.size());
    for (std::size_t at = 0; at < distances.size(); ++at) {
        distances[at] = mask.on[at] != 0 ? -std::sqrt(static_cast<double>(inside.squared[at]))
                                         : std::sqrt(static_cast<double>(outside.squared[at]));
    }
    return distances;
}

}  // namespace

std::optional<Label_Edit> Holes_Fill(const Edit_Input& input, std::uint8_t tag, Hole_Kind kind) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        const Voxel_Box box = Box_Of_Tag(input, tag);
        if (box.Is_Empty()) {
            return Label_Edit();
        }
        Voxel_Mask mask = Mask_Of_Tag(input, box, tag);
        if (kind == Hole_Kind::In_Space) {
            Holes_Close(mask, box, true, progress.Part(0.0, 0.8));
        } else {
            const Edit_Progress silent;
            for (int z = box.begin[2]; z < box.end[2]; ++z) {
                progress.Part(0.0, 0.8).Report(z - box.begin[2], box.Depth());
                Voxel_Box slice = box;
                slice.begin[2] = z;
                slice.end[2] = z + 1;
                Holes_Close(mask, slice, false, Step_Progress(silent));
            }
        }
        return Edit_Of_Mask(input, mask, tag, Outside_Mask::Stays, progress.Part(0.8, 1.0));
    });
}

std::optional<Label_Edit> Tag_Smooth(const Edit_Input& input, std::uint8_t tag, double radius) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        const Voxel_Box all = Box_Of_Slices(input);
        Voxel_Box box = Box_Of_Tag(input, tag);
        if (box.Is_Empty()) {
            return Label_Edit();
        }
        box = Box_Grown(box, radius, input.grid.spacing, all);
        const Voxel_Mask mask = Mask_Of_Tag(input, box, tag);
        const int most = std::max({all.Width(), all.Height(), all.Depth()});
        const std::vector<Ball_Row> ball = Ball_Rows(radius, input.grid.spacing, most);
        const Ball_Majority majority(mask, ball, all);
        Voxel_Mask smooth(box);
        std::vector<std::int32_t> excess(mask.Row_Size());
        for (int z = box.begin[2]; z < box.end[2]; ++z) {
            progress.Part(0.0, 0.9).Report(z - box.begin[2], box.Depth());
            for (int y = box.begin[1]; y < box.end[1]; ++y) {
                majority.Row(y, z, excess);
                const std::span<const std::uint8_t> before = mask.Row(y, z);
                const std::span<std::uint8_t> after = smooth.Row(y, z);
                for (std::size_t x = 0; x < after.size(); ++x) {
                    const std::uint8_t majority_of_ball = excess[x] > 0 ? 1 : 0;
                    after[x] = excess[x] == 0 ? before[x] : majority_of_ball;
                }
            }
        }
        return Edit_Of_Mask(input, smooth, tag, Outside_Mask::Becomes_Background, progress.Part(0.9, 1.0));
    });
}

std::optional<Label_Edit> Tag_Grow(const Edit_Input& input, std::uint8_t tag, double distance) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        Voxel_Box box = Box_Of_Tag(input, tag);
        if (box.Is_Empty()) {
            return Label_Edit();
        }
        box = Box_Grown(box, distance, input.grid.spacing, Box_Of_Slices(input));
        const Voxel_Mask within =
            Mask_Within(Mask_Of_Tag(input, box, tag), 1, distance, input.grid.spacing, progress.Part(0.0, 0.9));
        return Edit_Of_Mask(input, within, tag, Outside_Mask::Stays, progress.Part(0.9, 1.0));
    });
}

std::optional<Label_Edit> Tag_Shrink(const Edit_Input& input, std::uint8_t tag, double distance) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        Voxel_Box box = Box_Of_Tag(input, tag);
        if (box.Is_Empty()) {
            return Label_Edit();
        }
        // Of what lies around the box, the voxels that touch it are nearest.
        box = Box_Grown(box, 0.0, input.grid.spacing, Box_Of_Slices(input));
        Voxel_Mask mask =
            Mask_Within(Mask_Of_Tag(input, box, tag), 0, distance, input.grid.spacing, progress.Part(0.0, 0.9));
        for (std::uint8_t& mark : mask.on) {
            mark = mark == 0 ? 1 : 0;
        }
        return Edit_Of_Mask(input, mask, tag, Outside_Mask::Becomes_Background, progress.Part(0.9, 1.0));
    });
}

std::optional<Label_Edit> Slices_Between_Fill(const Edit_Input& input, std::uint8_t tag) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        Voxel_Box box = Box_Of_Tag(input, tag);
        if (box.Is_Empty()) {
            return Label_Edit();
        }
        const int first = box.begin[2];
        const int end = box.end[2];
        box = Box_Grown(box, 0.0, input.grid.spacing, Box_Of_Slices(input));
        box.begin[2] = first;
        box.end[2] = end;
        Voxel_Mask mask = Mask_Of_Tag(input, box, tag);
        std::vector<double> before = Signed_Distances(input, box, first, tag);
        int before_slice = first;
        const std::size_t slice_size = before.size();
        for (int z = first + 1; z < end; ++z) {
            progress.Part(0.0, 0.9).Report(z - first, end - first);
            if (std::ranges::find(input.Slice_Tags(z), tag) == input.Slice_Tags(z).end()) {
                continue;
            }
            const std::vector<double> after = Signed_Distances(input, box, z, tag);
            for (int between = before_slice + 1; between < z; ++between) {
                const double share = static_cast<double>(between - before_slice) / (z - before_slice);
                std::uint8_t* const marks = &mask.on[static_cast<std::size_t>(between - first) * slice_size];
                for (std::size_t at = 0; at < slice_size; ++at) {
                    // Outlines often meet just halfway; which side that falls on is no matter of rounding.
                    const double sum = (1.0 - share) * before[at] + share * after[at];
                    marks[at] = sum <= DISTANCE_ROUNDING * (std::abs(before[at]) + std::abs(after[at])) ? 1 : 0;
                }
            }
            before = after;
            before_slice = z;
        }
        return Edit_Of_Mask(input, mask, tag, Outside_Mask::Stays, progress.Part(0.9, 1.0));
    });
}

}  // namespace workbench::segmentation

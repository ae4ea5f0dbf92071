#include "workbench/segmentation/voxel_mask.h"

#include <algorithm>
#include <cmath>

namespace workbench::segmentation {

Voxel_Box Box_Of_Slices(const Edit_Input& input) {
    const Slice_Range slices = input.Slices();
    return {{0, 0, slices.first}, {input.grid.width, input.grid.height, slices.last + 1}};
}

Voxel_Box Box_Of_Tag(const Edit_Input& input, std::uint8_t tag) {
    const Voxel_Box all = Box_Of_Slices(input);
    Voxel_Box box = {all.end, all.begin};
    const auto width = static_cast<std::size_t>(input.grid.width);
    for (int z = all.begin[2]; z < all.end[2]; ++z) {
        const std::span<const std::uint8_t> slice = input.Slice_Tags(z);
        for (int y = 0; y < input.grid.height; ++y) {
            const std::span<const std::uint8_t> row = slice.subspan(static_cast<std::size_t>(y) * width, width);
            const auto first = std::ranges::find(row, tag);
            if (first == row.end()) {
                continue;
            }
            const auto last = std::find(row.rbegin(), row.rend(), tag);
            box.begin = {std::min(box.begin[0], static_cast<int>(first - row.begin())), std::min(box.begin[1], y),
                         std::min(box.begin[2], z)};
            box.end = {std::max(box.end[0], static_cast<int>(row.rend() - last)), std::max(box.end[1], y + 1),
                       std::max(box.end[2], z + 1)};
        }
    }
    return box;
}

Voxel_Box Box_Grown(const Voxel_Box& box, double radius, const std::array<double, 3>& spacing, const Voxel_Box& limit) {
    Voxel_Box grown = box;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const int room = limit.end[axis] - limit.begin[axis];
        const int more = static_cast<int>(std::min<double>(std::ceil(radius / spacing[axis]) + 1.0, room));
        grown.begin[axis] = std::max(box.begin[axis] - more, limit.begin[axis]);
        grown.end[axis] = std::min(box.end[axis] + more, limit.end[axis]);
    }
    return grown;
}

Voxel_Mask Mask_Of_Tag(const Edit_Input& input, const Voxel_Box& box, std::uint8_t tag) {
    Voxel_Mask mask(box);
    for (int z = box.begin[2]; z < box.end[2]; ++z) {
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const std::span<std::uint8_t> row = mask.Row(y, z);
            const std::uint8_t* tags = &input.tags[input.grid.Index(box.begin[0], y, z)];
            for (std::size_t x = 0; x < row.size(); ++x) {
                row[x] = tags[x] == tag ? 1 : 0;
            }
        }
    }
    return mask;
}

Label_Edit Edit_Of_Mask(const Edit_Input& input, const Voxel_Mask& mask, std::uint8_t tag, Outside_Mask outside,
                        const Step_Progress& progress) {
    const Voxel_Box& box = mask.box;
    const bool clears = outside == Outside_Mask::Becomes_Background;
    Edit_Builder builder(input);
    std::vector<std::uint8_t> after(input.grid.Slice_Size());
    for (int z = box.begin[2]; z < box.end[2]; ++z) {
        progress.Report(z - box.begin[2], box.Depth());
        input.Slice_Copy(z, after);
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            const std::span<const std::uint8_t> row = mask.Row(y, z);
            std::uint8_t* tags = &after[input.grid.Index(box.begin[0], y, 0)];
            for (std::size_t x = 0; x < row.size(); ++x) {
                const std::uint8_t without = clears && tags[x] == tag ? std::uint8_t{0} : tags[x];
                tags[x] = row[x] != 0 ? tag : without;
            }
        }
        builder.Slice_Set(z, after);
    }
    progress.Report(1, 1);
    return builder.Take();
}

}  // namespace workbench::segmentation

/** Which voxels of a part of a volume are meant. Of the operations in this folder. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

/** A block of voxels, half-open; empty when it has no voxel. */
struct Voxel_Box {
    std::array<int, 3> begin{};
    std::array<int, 3> end{};

    bool Is_Empty() const { return end[0] <= begin[0] || end[1] <= begin[1] || end[2] <= begin[2]; }
    int Width() const { return end[0] - begin[0]; }
    int Height() const { return end[1] - begin[1]; }
    int Depth() const { return end[2] - begin[2]; }
    std::size_t Row_Nb() const { return static_cast<std::size_t>(Height()) * static_cast<std::size_t>(Depth()); }
    std::size_t Voxel_Nb() const { return Row_Nb() * static_cast<std::size_t>(Width()); }
    bool Has(int x, int y, int z) const {
        return x >= begin[0] && x < end[0] && y >= begin[1] && y < end[1] && z >= begin[2] && z < end[2];
    }
};

/** The whole of the slices that are worked on. */
Voxel_Box Box_Of_Slices(const Edit_Input& input);
/** The smallest box that holds a TAG's voxels of the slices that are worked on; empty: there are none. */
Voxel_Box Box_Of_Tag(const Edit_Input& input, std::uint8_t tag);
/** A box that reaches as far further as a ball of a radius in mm, and not beyond `limit`. */
Voxel_Box Box_Grown(const Voxel_Box& box, double radius, const std::array<double, 3>& spacing, const Voxel_Box& limit);

/** One byte per voxel of a box: 1 or 0. */
struct Voxel_Mask {
    explicit Voxel_Mask(const Voxel_Box& mask_box) : box(mask_box), on(mask_box.Voxel_Nb()) {}

    /** A row by its indices in the volume. */
    std::span<std::uint8_t> Row(int y, int z) { return std::span(on).subspan(Row_Begin(y, z), Row_Size()); }
    std::span<const std::uint8_t> Row(int y, int z) const { return std::span(on).subspan(Row_Begin(y, z), Row_Size()); }
    std::size_t Row_Size() const { return static_cast<std::size_t>(box.Width()); }
    std::size_t Row_Begin(int y, int z) const {
        return (static_cast<std::size_t>(z - box.begin[2]) * static_cast<std::size_t>(box.Height()) +
                static_cast<std::size_t>(y - box.begin[1])) *
               Row_Size();
    }

    Voxel_Box box;
    std::vector<std::uint8_t> on;
};

/** The voxels of a box that have a TAG. */
Voxel_Mask Mask_Of_Tag(const Edit_Input& input, const Voxel_Box& box, std::uint8_t tag);

/** What becomes of a TAG's voxels in the mask's box that the mask does not have. */
enum class Outside_Mask { Stays, Becomes_Background };
/** Gives the mask's voxels a TAG. @throw Edit_Cancelled */
Label_Edit Edit_Of_Mask(const Edit_Input& input, const Voxel_Mask& mask, std::uint8_t tag, Outside_Mask outside,
                        const Step_Progress& progress);

}  // namespace workbench::segmentation

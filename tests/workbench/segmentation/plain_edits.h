// What operations on labels are to give, voxel by voxel and as slowly as it comes: nothing here is shared with them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/level_bands.h"
#include "workbench/segmentation/tag_sets.h"

namespace workbench::segmentation {

using Plain_Tags = std::vector<std::uint8_t>;

/** The labels before an operation, and what of them it may change. Every operation gives the labels after it. */
struct Plain_Edits {
    Label_Grid grid;
    Plain_Tags tags;
    std::vector<std::int32_t> levels;
    Slice_Range slices;
    Tag_Flags locked{};
    std::optional<std::uint8_t> only_inside;

    Plain_Tags Bands(std::span<const Tag_Levels_Claim> claims) const;
    /** @param corners voxels that touch at corners hang together, here and below */
    Plain_Tags Fill(std::size_t seed, std::uint8_t tag, const Level_Band& band, bool corners) const;
    Plain_Tags Keep_Largest(std::uint8_t tag, bool corners) const;
    Plain_Tags Drop_Below(std::uint8_t tag, double mm3, bool corners) const;
    Plain_Tags Keep_At(std::uint8_t tag, std::size_t place, bool corners) const;
    Plain_Tags Give(std::size_t place, std::uint8_t to, bool corners) const;
    Plain_Tags Holes(std::uint8_t tag, bool in_space) const;
    Plain_Tags Smooth(std::uint8_t tag, double radius) const;
    Plain_Tags Grow(std::uint8_t tag, double distance) const;
    Plain_Tags Shrink(std::uint8_t tag, double distance) const;
    Plain_Tags Between(std::uint8_t tag) const;
    Plain_Tags Combine(std::uint8_t tag, Set_Operation operation, const Plain_Tags& others, std::uint8_t other) const;
    Plain_Tags Outline(int slice, std::span<const Outline_Point> outline, std::uint8_t tag) const;

    Voxel_Place Place(std::size_t at) const;
    /** In the slices that are worked on. */
    bool Is_Worked(std::size_t at) const;
    bool May_Change(std::size_t at) const;

  private:
    using Voxels = std::vector<bool>;
    Plain_Tags Changed(const std::function<std::uint8_t(std::size_t)>& wanted) const;
    /** What can be reached from seeds over voxels that fit. @param in_slice without leaving the slice */
    Voxels Reached(const Voxels& fits, const std::vector<std::size_t>& seeds, bool corners, bool in_slice) const;
    /** Regions of a TAG by their first voxels. */
    std::vector<Voxels> Regions(std::uint8_t tag, bool corners) const;
    Plain_Tags Without(const Voxels& gone, std::uint8_t to) const;
    /** Whether a voxel that has the TAG, or has not, lies within a distance. */
    bool Is_Near(std::size_t at, std::uint8_t tag, bool has_tag, double distance) const;
    double Squared_Way(std::size_t one, std::size_t other) const;
    /** To the nearest voxel of the slice that differs in having the TAG; negative inside. */
    double Signed_Way(std::size_t in_slice, int slice, std::uint8_t tag) const;
};

}  // namespace workbench::segmentation

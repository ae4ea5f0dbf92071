/** TAGs as sets of voxels, and outlines that become sets. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

enum class Set_Operation {
    Copy,       ///< the TAG has just the other set's voxels
    Add,        ///< and those of the other set
    Subtract,   ///< but not those of the other set
    Intersect,  ///< only where the other set has voxels, too
};

/** The voxels of a TAG, in the same labels or in others. */
struct Other_Set {
    std::span<const std::uint8_t> tags;  ///< one per voxel of the grid
    std::uint8_t tag = 0;
};

/** Joins a TAG with another set of voxels. What a TAG loses becomes background. @return nothing: cancelled */
std::optional<Label_Edit> Tag_Combine(const Edit_Input& input, std::uint8_t tag, Set_Operation operation,
                                      const Other_Set& other);

/** A corner of an outline in pixels of a slice: pixel x reaches from x to x + 1, and its centre is at x + 0.5. */
struct Outline_Point {
    double x = 0.0;
    double y = 0.0;
};

/** Gives a TAG to the pixels of a slice whose centre lies inside an outline, which is closed from the last corner to
 *  the first. Of an outline that crosses itself the parts inside an odd number of times count. Outlines that share a
 *  side share no pixel and leave none between them. No change for a slice that is not worked on, or corners that are no
 *  numbers. */
Label_Edit Outline_Fill(const Edit_Input& input, int slice, std::span<const Outline_Point> outline, std::uint8_t tag);

}  // namespace workbench::segmentation

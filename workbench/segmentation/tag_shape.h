/** Correcting the shape of a TAG: holes, edges, size, and slices that were left out. Distances are in millimetres and
 *  follow the true size of voxels. The slices that are worked on are treated as a volume of their own: beyond them, and
 *  beyond the edges of the image, there is neither TAG nor background, so a TAG at an edge does not shrink from it.
 *
 *  Every operation returns nothing when it is cancelled, and throws std::bad_alloc when memory is short: it takes up to
 *  six bytes per voxel of the box that its result lies in.
 */
#pragma once

#include <cstdint>
#include <optional>

#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

/** Where a hole must be closed: all around in its slice, or in space. */
enum class Hole_Kind { Per_Slice, In_Space };

/** Fills what a TAG encloses: what does not reach the edge of the image over the sides of voxels without crossing the
 *  TAG. Other TAGs inside are filled, too, where they may change. */
std::optional<Label_Edit> Holes_Fill(const Edit_Input& input, std::uint8_t tag, Hole_Kind kind);

/** Gives a voxel the TAG when it has more than half of the voxels within a radius, and background when less; of voxels
 *  with just half of them nothing changes. @param radius mm, 0 or more */
std::optional<Label_Edit> Tag_Smooth(const Edit_Input& input, std::uint8_t tag, double radius);

/** Gives the TAG to all voxels whose centre is within a distance of one of its own. @param distance mm, 0 or more */
std::optional<Label_Edit> Tag_Grow(const Edit_Input& input, std::uint8_t tag, double distance);
/** Takes the TAG from all voxels whose centre is within a distance of one without it. */
std::optional<Label_Edit> Tag_Shrink(const Edit_Input& input, std::uint8_t tag, double distance);

/** Fills the slices between those that have the TAG by shapes between theirs: of the distances to the outlines in the
 *  slices before and after, negative inside, the mean by nearness is not above 0. Slices that have the TAG stay. Shapes
 *  that lie apart give nothing in the middle. */
std::optional<Label_Edit> Slices_Between_Fill(const Edit_Input& input, std::uint8_t tag);

}  // namespace workbench::segmentation

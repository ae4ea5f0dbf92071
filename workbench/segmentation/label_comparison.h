/** How well a TAG of one volume of labels agrees with a TAG of another on the same grid. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

/** Distances between surfaces, in mm. The surface of a set is its voxels that have a side towards a voxel outside it,
 * or towards the outside of the image; a single slice has only the sides in it. Distances go from centre to centre,
 * from each voxel of one surface to the nearest of the other. */
struct Surface_Distances {
    double hausdorff = 0.0;     ///< the largest distance, either way
    double hausdorff_95 = 0.0;  ///< the larger of both ways' 95th percentiles, between two voxels in proportion
    double mean = 0.0;          ///< over the voxels of both surfaces
};

struct Label_Agreement {
    std::uint64_t one_nb = 0;                    ///< voxels of the first volume's TAG
    std::uint64_t other_nb = 0;                  ///< of the second's
    std::uint64_t common_nb = 0;                 ///< of both
    double dice = 1.0;                           ///< twice the common voxels by the sum of both; 1 when neither has any
    double jaccard = 1.0;                        ///< the common voxels by those of either; 1 when neither has any
    double volume_difference = 0.0;              ///< ml, the second less the first
    std::optional<Surface_Distances> distances;  ///< nothing when either has no voxel
};

/** A TAG of the labels against one of others, in the slices that are worked on.
 *  @param other one per voxel of the grid @return nothing: cancelled @throw std::bad_alloc */
std::optional<Label_Agreement> Labels_Compare(const Edit_Input& input, std::uint8_t tag,
                                              std::span<const std::uint8_t> other, std::uint8_t other_tag);

}  // namespace workbench::segmentation

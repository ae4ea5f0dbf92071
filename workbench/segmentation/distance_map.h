/** How far voxels lie from a set of voxels, in millimetres, with the true size of voxels along each axis. */
#pragma once

#include <array>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/voxel_mask.h"

namespace workbench::segmentation {

/** For each voxel of a box the square of the distance, in mm, of its centre to the nearest centre of the set; infinite
 *  when the set is empty. Right to seven digits. */
struct Distance_Map {
    Voxel_Box box;
    std::vector<float> squared;
};

/** @param value 1: distances to the mask's voxels, 0: to those of its box that it does not have
 *  @throw Edit_Cancelled, std::bad_alloc */
Distance_Map Distances_Find(const Voxel_Mask& mask, std::uint8_t value, const std::array<double, 3>& spacing,
                            const Step_Progress& progress);

/** The largest square of a distance that still counts as within a radius: sums of steps that are no binary fractions
 *  (three times 0.1 mm) reach the radius that they make. */
inline double Squared_Reach(double radius) {
    return radius * radius * (1.0 + 1e-6);
}

/** A row of the voxels within a radius: those from -reach to reach along x, at some steps along y and z. */
struct Ball_Row {
    int y = 0;
    int z = 0;
    int reach = 0;
};
/** The ball around a voxel. @param most steps along y and z that can matter at all */
std::vector<Ball_Row> Ball_Rows(double radius, const std::array<double, 3>& spacing, int most);

/** The voxels of the mask's box within a radius of one whose value it is; all voxels outside the box do not count.
 *  @param radius mm */
Voxel_Mask Mask_Within(const Voxel_Mask& mask, std::uint8_t value, double radius, const std::array<double, 3>& spacing,
                       const Step_Progress& progress);
/** The same by either of its ways: row by row over the ball, for small radii, or by distances. */
Voxel_Mask Mask_Within_By_Rows(const Voxel_Mask& mask, std::uint8_t value, const std::vector<Ball_Row>& ball,
                               const Step_Progress& progress);
Voxel_Mask Mask_Within_By_Distance(const Voxel_Mask& mask, std::uint8_t value, double radius,
                                   const std::array<double, 3>& spacing, const Step_Progress& progress);

}  // namespace workbench::segmentation

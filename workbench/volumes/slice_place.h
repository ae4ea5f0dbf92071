/** Where slices lie in the patient. */
#pragma once

#include <array>
#include <span>

#include "workbench/volumes/volume.h"

namespace volumes {

/** Where a slice lies in the patient. Millimetres to the patient's left, back and top. */
struct Slice_Place {
    bool is_known = false;              ///< false: the file does not say; the directions mean nothing
    bool has_corner = false;            ///< the corner is said, even where directions are not
    std::array<double, 3> corner{};     ///< centre of the first pixel
    std::array<double, 3> along_row{};  ///< unit vector of rising x
    std::array<double, 3> along_column{};
};

/** The vector that slices are stacked along: row times column. */
std::array<double, 3> Slice_Normal(const Slice_Place& place);
/** How far the slice lies along its normal, mm. */
double Slice_Depth(const Slice_Place& place);
/** Gives places that have corners but no directions the directions of axial, coronal or sagittal slices, whichever fits
 *  the line that the corners lie on. @return false: the corners lie on no line, and nothing was changed */
bool Directions_Assume(std::span<Slice_Place> places);
/** Voxel index to NIfTI's millimetres (right, front, top). @param step from one slice to the next, mm, in the
 *  coordinates of Slice_Place */
Affine Affine_Of(const Slice_Place& first, const std::array<double, 3>& spacing, const std::array<double, 3>& step);

}  // namespace volumes

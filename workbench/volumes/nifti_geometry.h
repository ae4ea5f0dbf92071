/** Where the voxels of a NIfTI file lie: sform, qform and voxel sizes, and which of them an image follows. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/volumes/volume.h"

namespace volumes {

/** Whether the header's sform gives each voxel a place. @param slice_nb of the image */
bool Is_Sform_Usable(const Stored_Geometry& geometry, std::int32_t slice_nb);

/** Voxel sizes, time step, affine and its source into `volume`: from the sform if it is usable, else the qform, else
 * the voxel sizes alone; voxel sizes that are no positive number follow from a usable sform. An image of one slice
 * (volume.nz) may have an sform without a step to the next. Lengths given in metres or micrometres become millimetres.
 * @param geometry present */
void Geometry_Apply(const Stored_Geometry& geometry, Volume& volume);

/** What a user has to know of a geometry that Geometry_Apply has put into `volume`, each to follow the file's name:
 *  nothing where the file's words agree. */
std::vector<std::string> Geometry_Warnings(const Stored_Geometry& geometry, const Volume& volume);

}  // namespace volumes

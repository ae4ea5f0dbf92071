/** Puts slices one upon the other. */
#pragma once

#include <span>
#include <string>

#include "workbench/volumes/volume.h"

namespace volumes {

struct Joined_Slices {
    Volume volume;     ///< what the first slice says, nz slices, levels on a scale that all have in common
    std::string lost;  ///< by that scale, as Level_Scale_Warning tells it; empty: nothing
};

/** @param slices one or more of one size and kind, each of one slice; null where one is missing: its voxels are outside
 *  the image, those of colour images black. At least one is there. Their levels are used up. Throws std::bad_alloc */
Joined_Slices Slices_Join(std::span<Volume* const> slices);

}  // namespace volumes

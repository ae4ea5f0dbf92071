/** What tools that fill regions share. */
#pragma once

#include <cstdint>
#include <optional>

#include "workbench/segmentation/region_edits.h"
#include "workbench/volumes/volume.h"

namespace workbench {

struct Fill_Settings {
    bool is_in_space = false;      ///< through the slices; false: in the picture that is clicked
    bool is_over_corners = false;  ///< 8 or 26 neighbours; false: 4 or 6
    bool is_by_tolerance = false;  ///< about the voxel that is clicked; false: the band of the current TAG
    double tolerance = 10.0;       ///< grey values

    segmentation::Neighbours Neighbours() const {
        return is_over_corners ? segmentation::Neighbours::Corners : segmentation::Neighbours::Faces;
    }
};

/** A distance of grey values in levels of a volume; one of whole levels reaches them. */
std::int32_t Levels_Of_Greys(double greys, const volumes::Volume& volume);

}  // namespace workbench

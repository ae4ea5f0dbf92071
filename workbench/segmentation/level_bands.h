/** From the grey levels that TAGs claim to labels. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "workbench/segmentation/label_edit.h"
#include "workbench/volumes/volume.h"

namespace workbench::segmentation {

/** Levels from low to high, both included; none when high < low. The level "outside the image" lies in no band. */
struct Level_Band {
    std::int32_t low = 0;
    std::int32_t high = -1;
    bool Is_Empty() const { return high < low; }
    bool Has(std::int32_t level) const { return level >= low && level <= high; }
};

/** A band of grey values, both ends included, as the panels and the histogram's file take it. */
struct Grey_Band {
    std::optional<float> low;   ///< nothing: no lower end
    std::optional<float> high;  ///< nothing: no upper end
};

/** The levels whose grey value (Volume::grey) lies in a band; an empty one for volumes of colours. */
Level_Band Level_Band_Of(const Grey_Band& band, const volumes::Volume& volume);

struct Tag_Levels_Claim {
    std::uint8_t tag = 0;
    Level_Band band;
};

/** Gives every voxel whose level lies in a band the band's TAG. Of bands that overlap the last one gets the level, as
 *  the histogram draws them. @param input with levels @return nothing: cancelled @throw std::bad_alloc */
std::optional<Label_Edit> Bands_Apply(const Edit_Input& input, std::span<const Tag_Levels_Claim> claims);

}  // namespace workbench::segmentation

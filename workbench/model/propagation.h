/** Carrying the TAGs of one frame to the next. */
#pragma once

#include <cstdint>
#include <span>

#include "workbench/model/label_map.h"
#include "workbench/volumes/voxel_levels.h"

namespace workbench {

/** Two frames of one size: the one that was shown, and the one that is shown now and is to receive the TAGs. */
struct Propagation_Frames {
    int width = 0;
    int height = 0;
    volumes::Level_View from_levels;  ///< width * height stored levels
    std::span<const std::uint8_t> from_tags;
    volumes::Level_View to_levels;
    std::span<std::uint8_t> to_tags;  ///< written
};
/** Which TAGs take part. */
struct Propagation_Tags {
    Tag_Flags carried{};  ///< not 0: the TAG is carried; the background never is
    Tag_Flags locked{};   ///< not 0: pixels of that TAG stay in the receiving frame
};

/** How "grow" treats the border of a TAG. */
struct Grow_Options {
    int band = 4;              ///< pixels on either side of the old border that are decided by grey level
    float deviations = 2.0F;   ///< a level fits when it is at most this many standard deviations from the TAG's mean
    float least_range = 1.0F;  ///< and never less than this many levels, for TAGs of one level
};

/** Writes the carried TAGs of the shown frame over the receiving one; all other pixels stay.
 *  @return the number of pixels carried; 0: nothing to carry */
std::size_t Propagate_Copy(const Propagation_Frames& frames, const Propagation_Tags& tags);

/** Carries the inside of every TAG as it is. In a band around the TAG's old border a pixel gets the TAG when its level
 *  in the receiving frame fits the mean and deviation that the TAG has in the shown frame and it is joined to the
 *  carried inside: so borders follow the image. Outside the old border only pixels are taken that do not fit in the
 *  shown frame, so that a border drawn through even tissue stays, and, unless they had a carried TAG there, only where
 *  the receiving frame shows background. Without an inside (a thin TAG) the fitting pixels of the old area are carried.
 *  @return the number of pixels carried; 0: nothing to carry */
std::size_t Propagate_Grow(const Propagation_Frames& frames, const Propagation_Tags& tags,
                           const Grow_Options& options = {});

/** How well two label slices agree for the TAGs that are carried: twice the common pixels by the sum of both areas,
 *  0 .. 1; 1 when both have none. */
double Overlap(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b, const Tag_Flags& carried);

}  // namespace workbench

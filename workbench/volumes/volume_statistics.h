/** Numbers that describe the values of a volume. */
#pragma once

#include <cstdint>
#include <span>

#include "workbench/volumes/level_tally.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** All in grey values; colour volumes: over all their components, 0 .. 255. */
struct Volume_Statistics {
    std::uint64_t count = 0;  ///< values counted; those outside are left out. 0: everything else is 0 but window_high
    double min = 0;
    double max = 0;
    double mean = 0;
    double sd = 0;           ///< of the values themselves: divided by count
    double window_low = 0;   ///< for display: 1st percentile
    double window_high = 1;  ///< for display: 99th percentile, greater than window_low
};

/** Share of the values below each end of the window for display. */
inline constexpr double WINDOW_TAIL = 0.01;

/** Statistics of a whole volume. The p-th percentile is the smallest value that at least p % of the values do not
 *  exceed. A volume that is nearly all of one value would have no window: it gets min .. max instead. One that is all
 *  of one value gets a window around it, in which it is mid grey.
 *  @param tally of the volume's levels, which then need not be looked at; null: they are counted. Not for colours */
Volume_Statistics Volume_Statistics_Compute(const Volume& volume, const Level_Tally* tally = nullptr);

}  // namespace volumes

/** Numbers that describe a histogram: what the status line shows of the selection. Pure code. */
#pragma once

#include <cstdint>
#include <span>

namespace workbench {

/** Grid of a histogram. */
struct Numbers_Grid {
    double origin = 0.0;     ///< GLI value of the lower edge of bin 0
    double bin_width = 1.0;  ///< GLI units
};

/** All in grey levels but `pixels`. Every pixel of a bin counts with the level at the bin's lower edge plus
 * `level_offset`. */
struct Histogram_Numbers {
    std::uint64_t pixels = 0;  ///< 0: nothing else means anything
    double mean = 0.0;
    double deviation = 0.0;  ///< divided by the number of pixels
    double mode = 0.0;       ///< the lowest of the fullest bins
    double minimum = 0.0;
    double maximum = 0.0;
    double percentile_1 = 0.0;
    double median = 0.0;
    double percentile_99 = 0.0;
};

/** @param level_offset where in a bin its level stands, in bins: 0 for histograms of one bin per stored level, 0.5 for
 * wider bins */
Histogram_Numbers Histogram_Numbers_Of(std::span<const std::uint32_t> counts, const Numbers_Grid& grid,
                                       double level_offset);

}  // namespace workbench

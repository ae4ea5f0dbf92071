/** The unit in which panels are told grey values. Pure code.
 *
 *  Contract: the histogram panel adds 1 to the range of its grey levels before it counts bins, thresholds are shown as
 *  whole numbers, and 100000 and more means that there is no upper threshold. Images whose grey values are small or
 *  huge are therefore told in another unit, a power of ten (of a thousand) finer or coarser.
 */
#pragma once

#include <cstdint>
#include <string>

#include "workbench/volumes/volume.h"

namespace workbench {

struct Panel_Scale {
    int exponent = 0;     ///< panels are told grey * 10^exponent; a multiple of 3
    double factor = 1.0;  ///< 10^exponent

    double To_Panel(double grey) const { return grey * factor; }
    double To_Grey(double told) const { return told / factor; }
    /** Empty, or what a grey value of the panels is to be multiplied by: "× 10⁻⁶". UTF-8 */
    std::string Text() const;
    bool operator==(const Panel_Scale&) const = default;
};

Panel_Scale Panel_Scale_Of(const volumes::Volume& volume);

}  // namespace workbench

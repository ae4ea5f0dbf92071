#include "workbench/model/panel_scale.h"

#include <algorithm>
#include <cmath>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr double TOLD_LEAST = 100.0;    // largest magnitude that is told, at least: three digits before the point
constexpr double TOLD_MOST = 100000.0;  // and less than this
constexpr int STEP = 3;                 // of the exponent
constexpr int EXPONENT_MOST = 30;       // single precision has no room for more

}  // namespace

std::string Panel_Scale::Text() const {
    return exponent == 0 ? std::string() : "\xC3\x97 " + Power_Text(-exponent);
}

Panel_Scale Panel_Scale_Of(const volumes::Volume& volume) {
    Panel_Scale scale;
    if (volume.color) {
        return scale;
    }
    const double low = volume.level_min * volume.slope + volume.intercept;
    const double high = volume.level_max * volume.slope + volume.intercept;
    const double largest = std::max(std::abs(low), std::abs(high));
    const bool is_coarse = std::abs(volume.slope) >= 1.0;  // whole levels, however few
    if (!std::isfinite(largest) || largest == 0.0 || volume.level_min == volume.level_max) {
        return scale;
    }
    const auto told = [&] { return largest * std::pow(10.0, scale.exponent); };
    while (told() >= TOLD_MOST && scale.exponent > -EXPONENT_MOST) {
        scale.exponent -= STEP;
    }
    while (!is_coarse && told() < TOLD_LEAST && scale.exponent < EXPONENT_MOST) {
        scale.exponent += STEP;
    }
    scale.factor = std::pow(10.0, scale.exponent);
    return scale;
}

}  // namespace workbench

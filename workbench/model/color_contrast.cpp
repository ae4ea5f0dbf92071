#include "workbench/model/color_contrast.h"

#include <algorithm>
#include <cmath>

namespace workbench {

double Linear_Of_Component(int component) {
    const double share = std::clamp(component, 0, 255) / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double Relative_Luminance(std::uint32_t color) {
    const auto light = [&](unsigned int shift) {
        return Linear_Of_Component(static_cast<int>((color >> shift) & 0xFFU));
    };
    return 0.2126 * light(16) + 0.7152 * light(8) + 0.0722 * light(0);
}

double Contrast_Ratio(std::uint32_t a, std::uint32_t b) {
    constexpr double flare = 0.05;  // light that every screen reflects
    const double of_a = Relative_Luminance(a) + flare;
    const double of_b = Relative_Luminance(b) + flare;
    return std::max(of_a, of_b) / std::min(of_a, of_b);
}

}  // namespace workbench

#include "kits/graph/ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double SLACK = 1e-9;  // of a step: a tick that lies on the range's edge belongs to it

Tick_Scale Scale_Of_Step(double from, double to, double step) {
    Tick_Scale scale;
    scale.step = step;
    scale.first = static_cast<std::int64_t>(std::ceil(from / step - SLACK));
    scale.last = static_cast<std::int64_t>(std::floor(to / step + SLACK));
    return scale;
}

/** Power of ten of the leading digit. */
int Decade(double value) {
    int decade = static_cast<int>(std::floor(std::log10(value)));
    // The logarithm of a power of ten may come out just below the whole number.
    while (std::pow(10.0, decade + 1) <= value * (1.0 + SLACK)) {
        decade++;
    }
    return decade;
}

}  // namespace

bool Is_Range_Valid(float from, float to) {
    return std::isfinite(from) && std::isfinite(to) && from < to;
}

Tick_Scale Tick_Scale_Make(double from, double to, double least) {
    // No more ticks than whole numbers can count, however small the wish.
    const double largest = std::max(std::abs(from), std::abs(to));
    const double floor_least = std::max(least, largest * 1e-12);
    const double decade = std::pow(10.0, Decade(floor_least));
    for (const double digit : {1.0, 2.0, 5.0}) {
        if (digit * decade >= floor_least * (1.0 - SLACK)) {
            return Scale_Of_Step(from, to, digit * decade);
        }
    }
    return Scale_Of_Step(from, to, 10.0 * decade);
}

Tick_Scale Tick_Scale_Coarser(double from, double to, const Tick_Scale& scale) {
    return Tick_Scale_Make(from, to, scale.step * 1.5);
}

Tick_Scale Tick_Scale_Finer(double from, double to, const Tick_Scale& scale) {
    return Tick_Scale_Make(from, to, scale.step * 0.4);
}

Tick_Format Tick_Format_Make(const Tick_Scale& scale, bool compact) {
    Tick_Format format;
    const double largest = std::max(std::abs(scale.Value(scale.first)), std::abs(scale.Value(scale.last)));
    constexpr double plain_end = 99999.5;
    constexpr double compact_end = 999.5;
    constexpr double plain_start = 0.001;
    if (largest >= (compact ? compact_end : plain_end) || (largest > 0.0 && largest < plain_start)) {
        format.exponent = static_cast<int>(std::floor(Decade(largest) / 3.0)) * 3;
    }
    format.decimals = std::max(0, format.exponent - Decade(scale.step));
    return format;
}

std::string Tick_Text(const Tick_Scale& scale, const Tick_Format& format, std::int64_t index) {
    if (index == 0) {
        return "0";
    }
    constexpr int text_max = 64;
    char text[text_max];
    std::snprintf(text, sizeof text, "%.*f", std::min(format.decimals, 17),
                  scale.Value(index) / std::pow(10.0, format.exponent));
    std::string made(text);
    switch (format.exponent) {
        case 0:
            return made;
        case 3:
            return made + "k";
        case 6:
            return made + "M";
        case 9:
            return made + "G";
        default:
            std::snprintf(text, sizeof text, "e%d", format.exponent);
            return made + text;
    }
}

#include "histogram/peak_shapes.h"

#include <algorithm>
#include <cmath>

#include "histogram/histo_peak.h"

namespace {

// Contract: fits are compared digit by digit with earlier ones, so ln 2 and 2 ln 2 keep their different precisions.
constexpr double LN_2 = 0.693147181;
constexpr double TWO_LN_2 = 1.386294;
constexpr double GAUSS_CUT_OFF = 10.0;    // widths
constexpr double LORENTZ_CUT_OFF = 50.0;  // widths

double Gauss_Unit(double distance, double width) {
    return std::exp(-(LN_2 / (width * width)) * (distance * distance));
}

double Lorentz_Value(double position, const Peak_Parameters& p) {
    const double distance = position - p.centre;
    if (std::abs(distance) > LORENTZ_CUT_OFF * p.width) {
        return 0.0;
    }
    if (p.width == 0.0) {
        return p.amplitude;
    }
    const double u = distance / p.width;
    return p.amplitude / (u * u + 1.0);
}

double Gauss_Value(double position, const Peak_Parameters& p) {
    const double distance = position - p.centre;
    if (std::abs(distance) > GAUSS_CUT_OFF * p.width) {
        return 0.0;
    }
    return p.width == 0.0 ? p.amplitude : p.amplitude * Gauss_Unit(distance, p.width);
}

double Lorentz_Derivative(std::uint8_t index, double position, const Peak_Parameters& p) {
    const double distance = position - p.centre;
    if (std::abs(distance) > LORENTZ_CUT_OFF * p.width) {
        return 0.0;
    }
    if (p.width == 0.0) {
        return index == PEAK_AMPLITUDE ? 1.0 : 0.0;
    }
    const double u = distance / p.width;
    const double base = u * u + 1.0;
    switch (index) {
        case PEAK_CENTRE:
            return ((2.0 * position - 2.0 * p.centre) / (p.width * p.width)) * p.amplitude / (base * base);
        case PEAK_AMPLITUDE:
            return 1.0 / base;
        case PEAK_WIDTH:
            return 2.0 * p.amplitude * (distance * distance) / (p.width * p.width * p.width) / (base * base);
        default:
            return 0.0;
    }
}

double Gauss_Derivative(std::uint8_t index, double position, const Peak_Parameters& p) {
    const double distance = position - p.centre;
    if (std::abs(distance) > GAUSS_CUT_OFF * p.width) {
        return 0.0;
    }
    if (p.width == 0.0) {
        return index == PEAK_AMPLITUDE ? 1.0 : 0.0;
    }
    const Gauss_Slopes slopes(p);
    const double unit = Gauss_Unit(distance, p.width);
    switch (index) {
        case PEAK_CENTRE:
            return slopes.By_Centre(position, unit);
        case PEAK_AMPLITUDE:
            return Gauss_Slopes::By_Amplitude(unit);
        case PEAK_WIDTH:
            return slopes.By_Width(position, unit);
        default:
            return 0.0;
    }
}

}  // namespace

double Shape_Value(std::uint8_t type, double position, const Peak_Parameters& parameters, double mix_ratio) {
    switch (type) {
        case PEAK_LORENTZ:
            return Lorentz_Value(position, parameters);
        case PEAK_GAUSS:
            return Gauss_Value(position, parameters);
        case PEAK_MIXED:
            return mix_ratio * Lorentz_Value(position, parameters) +
                   (1.0 - mix_ratio) * Gauss_Value(position, parameters);
        default:
            return 0.0;
    }
}

double Shape_Derivative(std::uint8_t type, std::uint8_t index, double position, const Peak_Parameters& parameters,
                        double mix_ratio) {
    switch (type) {
        case PEAK_LORENTZ:
            return Lorentz_Derivative(index, position, parameters);
        case PEAK_GAUSS:
            return Gauss_Derivative(index, position, parameters);
        case PEAK_MIXED:
            return mix_ratio * Lorentz_Derivative(index, position, parameters) +
                   (1.0 - mix_ratio) * Gauss_Derivative(index, position, parameters);
        default:
            return 0.0;
    }
}

Bin_Span Gauss_Support(const Peak_Parameters& parameters, int nb_bins) {
    const double reach = GAUSS_CUT_OFF * parameters.width;
    const double first = std::ceil(parameters.centre - reach);
    const double last = std::floor(parameters.centre + reach);
    if (!(first <= last) || nb_bins <= 0 || last < 0.0 || first > static_cast<double>(nb_bins - 1)) {
        return {};
    }
    Bin_Span support{static_cast<int>(std::max(first, 0.0)),
                     static_cast<int>(std::min(last, static_cast<double>(nb_bins - 1)))};
    // The cut-off is tested on the rounded distance: settle the two ends by that very test.
    const auto inside = [&](int bin) { return !(std::abs(static_cast<double>(bin) - parameters.centre) > reach); };
    while (support.first > 0 && inside(support.first - 1)) {
        --support.first;
    }
    while (support.first <= support.last && !inside(support.first)) {
        ++support.first;
    }
    while (support.last + 1 < nb_bins && inside(support.last + 1)) {
        ++support.last;
    }
    while (support.last >= support.first && !inside(support.last)) {
        --support.last;
    }
    return support;
}

void Gauss_Unit_Values(const Peak_Parameters& parameters, const Bin_Span& support, std::span<double> unit) {
    if (support.first > support.last) {
        return;
    }
    if (parameters.width == 0.0) {
        std::fill(unit.begin(), unit.end(), 1.0);  // a support of the centre bin alone
        return;
    }
    const double sharpness = LN_2 / (parameters.width * parameters.width);
    const int start = static_cast<int>(std::clamp(std::round(parameters.centre), static_cast<double>(support.first),
                                                  static_cast<double>(support.last)));
    const double distance = static_cast<double>(start) - parameters.centre;
    const double second = std::exp(-2.0 * sharpness);
    const double at_start = std::exp(-sharpness * (distance * distance));
    const auto slot = [&](int bin) -> double& { return unit[static_cast<std::size_t>(bin - support.first)]; };
    slot(start) = at_start;
    double value = at_start;
    double ratio = std::exp(-sharpness * (2.0 * distance + 1.0));
    for (int bin = start + 1; bin <= support.last; ++bin) {
        value *= ratio;
        ratio *= second;
        slot(bin) = value;
    }
    value = at_start;
    ratio = std::exp(-sharpness * (1.0 - 2.0 * distance));
    for (int bin = start - 1; bin >= support.first; --bin) {
        value *= ratio;
        ratio *= second;
        slot(bin) = value;
    }
}

Gauss_Slopes::Gauss_Slopes(const Peak_Parameters& parameters)
    : p(parameters),
      sharpness(LN_2 / (parameters.width * parameters.width)),
      widening(TWO_LN_2 / (parameters.width * parameters.width * parameters.width)) {}

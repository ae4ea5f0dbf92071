#include "histogram/peak_numbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>

#include "histogram/peak_fit_system.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_fit.h"

namespace {

constexpr double HALF_BIN = 0.5;

/** What the numbers of all peaks are made of. */
struct Analysed {
    double origin = 0.0;
    double bin_width = 1.0;
    std::span<const std::uint32_t> counts;  // empty: the component has none
    std::span<const double> filtered;

    double Level(double bin) const { return (bin + HALF_BIN) * bin_width + origin; }
    double Curve(std::size_t bin) const {
        return bin < filtered.size() ? filtered[bin] : bin < counts.size() ? static_cast<double>(counts[bin]) : 0.0;
    }
};

Analysed Analysed_Of(const Histo_Data& data, std::uint8_t component) {
    const Histo_Record& record = *data.record;
    Analysed analysed;
    analysed.origin = static_cast<double>(record.origin);
    analysed.bin_width = static_cast<double>(record.bin_width);
    if (const std::uint32_t* counts = Peak_Source_Counts(record, component)) {
        analysed.counts = {counts, record.nb_bins};
    }
    if (data.filtered != nullptr) {
        analysed.filtered = {data.filtered, static_cast<std::size_t>(std::min<int>(data.curve_nb, record.nb_bins))};
    }
    return analysed;
}

void Segment_Numbers(const Histo_Peak& peak, const Analysed& analysed, int nb_bins, Histo_Peak_Info& info) {
    info.first = static_cast<std::int32_t>((*peak.param)[SEGMENT_FIRST]);
    info.last = static_cast<std::int32_t>((*peak.param)[SEGMENT_LAST]);
    const int first = std::max(info.first, 0);
    const int last = std::min(info.last, nb_bins - 1);
    info.centre = analysed.Level((*peak.param)[PEAK_CENTRE]);
    for (int bin = first; bin <= last; ++bin) {
        const auto at = static_cast<std::size_t>(bin);
        info.area_pixels += at < analysed.counts.size() ? static_cast<double>(analysed.counts[at]) : 0.0;
        if (const double value = analysed.Curve(at); bin == first || value > info.height) {
            info.height = value;
            info.centre = analysed.Level(bin);
        }
    }
    info.full_width = static_cast<double>(info.last - info.first + 1) * analysed.bin_width;
}

void Shape_Numbers(const Histo_Peak& peak, const Analysed& analysed, Histo_Peak_Info& info) {
    const double width = (*peak.param)[PEAK_WIDTH];
    info.centre = analysed.Level((*peak.param)[PEAK_CENTRE]);
    info.height = (*peak.param)[PEAK_AMPLITUDE];
    info.full_width = 2.0 * width * analysed.bin_width;
    info.area_pixels = info.height * width * std::sqrt(std::numbers::pi / std::numbers::ln2);
}

/** The inverse of the normal matrix, and the variance of what the peaks leave of the curve. */
struct Covariance {
    Matrix_NxM inverse;
    double variance = 0.0;

    double Error(int parameter) const { return std::sqrt(std::max(variance * inverse[parameter][parameter], 0.0)); }
};

/** @return nothing where the errors cannot be known */
std::optional<Covariance> Covariance_Find(const Histo_Data& data, std::span<const double> filtered) {
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        if (peak->type == PEAK_SEGMENT || !((*peak->param)[PEAK_WIDTH] > 0.0)) {
            return std::nullopt;
        }
    }
    const Fit_System system = Fit_System_Make(data.peak_first, filtered);
    const double freedom = static_cast<double>(filtered.size()) - static_cast<double>(system.parameters.Size());
    if (!system.is_complete || freedom <= 0.0) {
        return std::nullopt;
    }
    Matrix_NxM inverse = !system.normal;
    if (!system.is_valid || inverse.Invalid(0) != 0 || inverse.Rows() != system.parameters.Size()) {
        return std::nullopt;
    }
    return Covariance{std::move(inverse), system.squared_error / freedom};
}

void Errors_Take(const Covariance& covariance, int parameter, double bin_width, Histo_Peak_Info& info) {
    info.has_errors = 1;
    info.centre_error = covariance.Error(parameter + PEAK_CENTRE) * bin_width;
    info.height_error = covariance.Error(parameter + PEAK_AMPLITUDE);
    info.full_width_error = 2.0 * covariance.Error(parameter + PEAK_WIDTH) * bin_width;
    const auto mark = [&info](bool is_doubtful, std::uint8_t bit) {
        info.doubt = static_cast<std::uint8_t>(info.doubt | (is_doubtful ? bit : 0));
    };
    mark(info.height_error > std::abs(info.height), HISTO_DOUBT_HEIGHT);
    mark(info.full_width_error > std::abs(info.full_width), HISTO_DOUBT_WIDTH);
    mark(info.centre_error > std::abs(info.full_width), HISTO_DOUBT_CENTRE);
}

}  // namespace

int Peak_Numbers(const Histo_Data& data, std::uint8_t component, Histo_Peak_Info* out, int most) {
    if (!data.Has_Counts() || data.peak_first == nullptr) {
        return 0;
    }
    const Analysed analysed = Analysed_Of(data, component);
    const int room = out != nullptr ? most : 0;
    const std::optional<Covariance> covariance = room > 0 ? Covariance_Find(data, analysed.filtered) : std::nullopt;
    int nb = 0;
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next, ++nb) {
        if (nb >= room) {
            continue;
        }
        Histo_Peak_Info info;
        info.kind = peak->type;
        if (peak->type == PEAK_SEGMENT) {
            Segment_Numbers(*peak, analysed, data.record->nb_bins, info);
        } else {
            Shape_Numbers(*peak, analysed, info);
        }
        info.area_levels = info.area_pixels * analysed.bin_width;
        if (covariance) {
            Errors_Take(*covariance, nb * PEAK_PARAM_NB, analysed.bin_width, info);
        }
        out[nb] = info;
    }
    return nb;
}

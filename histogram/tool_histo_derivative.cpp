// The derivative method: smooths the curve until few enough maxima are left and cuts it into one segment per maximum.
#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <span>

#include "histogram/peak_segments.h"
#include "histogram/peak_smoothing.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"
#include "histogram/tool_histo_peak.h"
#include "host/kit_common.h"

namespace {

constexpr int MAX_PASSES = 10000;
constexpr int LINE_RECORD = 48;  // hosts match these two
constexpr int LINE_CURVE = 280;
constexpr int TRACE_STEP = 11;

void Trace_Pass(void* /*context*/, int pass, int maxima) {
    Error_Fct(hwnd, TRACE_STEP, "loop:%03d nb peak:%d", pass, maxima);
}

/** T = S / (2000 x m x m), everything in single precision; infinite or not a number for m = 0. */
float Threshold_Of(std::span<const double> curve, std::uint8_t max_peak) {
    float sum = 0.0F;
    for (const double value : curve) {
        sum += static_cast<float>(value);
    }
    const auto m = static_cast<float>(max_peak);
    return sum / (2000.0F * m * m);
}

void Report_Memory(int line) {
    Error_Fct(hwnd, MESSAGE_MEMORY, HISTO_MESSAGE_NEW, line, TOOL_HISTO_DERIVATIVE_SOURCE);
}

void Curves_Make(Histo_Data& data) {
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        peak->curve = new (std::nothrow) float[static_cast<std::size_t>(data.curve_nb)]();
        if (peak->curve == nullptr) {
            Report_Memory(LINE_CURVE);
            return;
        }
        peak->nb_pts = data.curve_nb;
    }
}

/** A copy of the curve that the record's counts give; released with the pointer. */
std::unique_ptr<double[]> Source_Curve_Make(const Tool_Histo& panel) {
    std::unique_ptr<double[]> curve(new (std::nothrow) double[panel.data->record->nb_bins]());
    if (curve != nullptr) {
        Peak_Source_Curve(panel, curve.get());
    }
    return curve;
}

}  // namespace

Histo_Peak* Peak_Segment_Add(Tool_Histo& panel, Histo_Peak*& tail, std::int32_t centre, std::int32_t first,
                             std::int32_t last) {
    Histo_Peak* peak = Peak_Make(PEAK_SEGMENT, false);
    if (peak == nullptr) {
        Report_Memory(LINE_RECORD);
        return nullptr;
    }
    (*peak->param)[PEAK_CENTRE] = static_cast<double>(centre);
    (*peak->param)[SEGMENT_FIRST] = static_cast<double>(first);
    (*peak->param)[SEGMENT_LAST] = static_cast<double>(last);
    Peak_Append(panel, tail, peak);
    return peak;
}

void Peak_Find_Segments(Tool_Histo& panel, int n, const double* curve, std::uint8_t max_peak) {
    Histo_Data& data = *panel.data;
    data.Peaks_Free();
    data.Curves_Free();
    delete[] data.fit_spare;
    data.fit_spare = nullptr;

    const std::span<const double> source(curve, static_cast<std::size_t>(std::max(n, 0)));
    const float threshold = Threshold_Of(source, max_peak);
    data.filtered = new (std::nothrow) double[source.size()];
    data.derivative = new (std::nothrow) float[source.size()]();
    if (data.filtered == nullptr || data.derivative == nullptr) {
        data.Curves_Free();
        return;
    }
    data.curve_nb = n;
    std::copy(source.begin(), source.end(), data.filtered);
    if (n < 2) {
        return;  // nothing to smooth and no maximum
    }

    // The scratch curve only makes the smoothing faster; without it the plain path gives the same bits.
    const std::unique_ptr<double[]> scratch(new (std::nothrow) double[source.size()]);
    const std::span<double> filtered(data.filtered, source.size());
    const std::span<float> derivative(data.derivative, source.size());
    Smooth_To_Maxima(filtered, {scratch.get(), scratch != nullptr ? source.size() : 0},
                     {threshold, max_peak, MAX_PASSES}, Smoothing_Path_Best(), Trace_Pass, nullptr);
    Thresholded_Derivative(filtered, threshold, derivative);

    const Segment_List segments = Segments_Find(derivative);
    if (segments.nb > max_peak) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Unable to find less than \x01%d\x02 peaks", segments.nb);
    }
    Histo_Peak* tail = nullptr;
    for (int j = 0; j < segments.nb; ++j) {
        const Segment& segment = segments.segment[static_cast<std::size_t>(j)];
        Error_Fct(hwnd, TRACE_STEP, "Peak[%d] = %4d %4d/%-4d", j, segment.centre, segment.first, segment.last);
        Peak_Segment_Add(panel, tail, segment.centre, segment.first, segment.last);
    }
    Curves_Make(data);
}

void Peak_Source_Curve(const Tool_Histo& panel, double* curve) {
    const Histo_Record& record = *panel.data->record;
    const std::array<const std::uint32_t*, 5> by_component = {record.counts_component0, record.counts_red,
                                                              record.counts_green, record.counts_blue, record.counts};
    const std::uint32_t* counts = record.counts;
    if ((record.flags & HISTO_COLOR) != 0) {
        counts = panel.color_component < by_component.size() ? by_component[panel.color_component] : nullptr;
    }
    for (int bin = 0; bin < record.nb_bins; ++bin) {
        curve[bin] = counts != nullptr ? static_cast<double>(counts[bin]) : 0.0;
    }
}

int Tool_Histo::Fit_Derivative(unsigned char max_peak) {
    if (data == nullptr || !data->Has_Counts()) {
        return 0;
    }
    if (const std::unique_ptr<double[]> curve = Source_Curve_Make(*this)) {
        Peak_Find_Segments(*this, data->record->nb_bins, curve.get(), max_peak);
    }
    return 1;
}

int Tool_Histo::Fit_Gaussian() {
    if (data == nullptr || !data->Has_Counts()) {
        return 0;
    }
    if (const std::unique_ptr<double[]> curve = Source_Curve_Make(*this)) {
        Peak_Fit_Prepare(*this, data->record->nb_bins, curve.get());
    }
    return 1;
}

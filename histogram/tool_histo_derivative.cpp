// The derivative method: smooths the curve until few enough maxima are left and cuts it into one segment per maximum.
#include <algorithm>
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
constexpr int SEGMENT_LINE_RECORD = 48;  // hosts match these two
constexpr int SEGMENT_LINE_CURVE = 280;

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

}  // namespace

Histo_Peak* Peak_Segment_Add(Histo_Data& data, Histo_Peak*& tail, std::int32_t centre, std::int32_t first,
                             std::int32_t last) {
    Histo_Peak* peak = Peak_Make(PEAK_SEGMENT, false);
    if (peak == nullptr) {
        Histo_Report_New(SEGMENT_LINE_RECORD, TOOL_HISTO_DERIVATIVE_SOURCE);
        return nullptr;
    }
    (*peak->param)[PEAK_CENTRE] = static_cast<double>(centre);
    (*peak->param)[SEGMENT_FIRST] = static_cast<double>(first);
    (*peak->param)[SEGMENT_LAST] = static_cast<double>(last);
    Peak_Append(data, tail, peak);
    return peak;
}

void Peak_Find_Segments(Histo_Data& data, int n, const double* curve, std::uint8_t max_peak) {
    delete[] data.fit_spare;
    data.fit_spare = nullptr;
    if (!Peak_Analysis_Begin(data, n, {__LINE__, TOOL_HISTO_DERIVATIVE_SOURCE})) {
        return;
    }
    const std::span<const double> source(curve, static_cast<std::size_t>(std::max(n, 0)));
    const float threshold = Threshold_Of(source, max_peak);
    std::copy(source.begin(), source.end(), data.filtered);
    if (n < 2) {
        return;  // nothing to smooth and no maximum
    }

    // The scratch memory only makes the smoothing faster; without it the plain path gives the same bits.
    const std::size_t scratch_nb = Smoothing_Scratch_Nb(source.size());
    const std::unique_ptr<double[]> scratch(new (std::nothrow) double[scratch_nb]);
    if (scratch == nullptr) {
        Histo_Report_New(__LINE__, TOOL_HISTO_DERIVATIVE_SOURCE);
    }
    const std::span<double> filtered(data.filtered, source.size());
    const std::span<float> derivative(data.derivative, source.size());
    Smooth_To_Maxima(filtered, {scratch.get(), scratch != nullptr ? scratch_nb : 0}, {threshold, max_peak, MAX_PASSES},
                     Smoothing_Path_Best(), Trace_Pass, nullptr);
    Thresholded_Derivative(filtered, threshold, derivative);

    const Segment_List segments = Segments_Find(derivative);
    if (segments.nb > max_peak) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Unable to find less than \x01%d\x02 peaks", segments.nb);
    }
    Histo_Peak* tail = nullptr;
    for (int j = 0; j < segments.nb; ++j) {
        const Segment& segment = segments.segment[static_cast<std::size_t>(j)];
        Error_Fct(hwnd, TRACE_STEP, "Peak[%d] = %4d %4d/%-4d", j, segment.centre, segment.first, segment.last);
        Peak_Segment_Add(data, tail, segment.centre, segment.first, segment.last);
    }
    Peak_Curves_Make(data, {SEGMENT_LINE_CURVE, TOOL_HISTO_DERIVATIVE_SOURCE});
}

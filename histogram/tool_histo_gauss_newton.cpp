// The Gaussian fit: filters the curve, places a candidate at every clear maximum, and refines all of them together by
// Gauss-Newton least squares (linearised normal equations, undamped, with bounded parameters and pruning).
#include <algorithm>
#include <cmath>
#include <new>
#include <span>

#include "histogram/peak_fit_system.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"
#include "histogram/tool_histo_peak.h"
#include "host/kit_common.h"

namespace {

constexpr int FIT_LINE_RECORD = 69;  // hosts match these two
constexpr int FIT_LINE_CURVE = 321;
constexpr int FILTER_HALF = 10;          // bins on each side of the moving mean
constexpr int ZERO_GAP = 15;             // bins
constexpr float ZERO_SLOPE = 5.0F;       // counts per bin
constexpr float ZERO_AMPLITUDE = 1.0F;   // of the filtered value
constexpr float ZERO_WIDTH = 5.0F;       // bins
constexpr int DATA_HALF = 15;            // bins
constexpr float DATA_DROP = 2.0F;        // counts
constexpr float DATA_AMPLITUDE = 0.25F;  // of the filtered value
constexpr float DATA_WIDTH = 10.0F;      // bins
constexpr int DATA_SKIP = 5;             // bins
constexpr double STOP_CHANGE = 0.1;      // change of the squared error that ends the fit
constexpr int ITERATION_MAX = 10;
constexpr double RUNAWAY = 1000.0;      // times the larger bound
constexpr float NEIGHBOUR_MIN = 10.0F;  // bins between two centres

void Warn_Invalid_Matrix() {
    Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Gauss_Newton invalid matrix");
}

double Param(const Histo_Peak& peak, int index) {
    return (*peak.param)[index];
}

void Moving_Mean(std::span<const double> curve, double* filtered) {
    const auto n = static_cast<int>(curve.size());
    for (int i = 0; i < n; ++i) {
        const int first = std::max(i - FILTER_HALF, 0);
        const int last = std::min(i + FILTER_HALF, n - 1);
        double sum = 0.0;
        for (int j = first; j <= last; ++j) {
            sum += curve[static_cast<std::size_t>(j)];
        }
        filtered[i] = sum / (last - first + 1);
    }
}

float Largest(std::span<const double> curve) {
    float largest = 0.0F;
    for (const double value : curve) {
        largest = std::max(largest, static_cast<float>(value));
    }
    return largest;
}

void Candidates_Find(Histo_Data& data, int n) {
    Histo_Peak* tail = nullptr;
    for (int x = 1; x < n; ++x) {
        if (const int skip = Peak_Is_Zero_Peak(n, data.derivative, x, ZERO_GAP, ZERO_SLOPE); skip != 0) {
            Error_Fct(hwnd, TRACE_STEP, "Locate a peak with zero at x = %d", x);
            Peak_Gauss_Add(data, tail, x, ZERO_AMPLITUDE, ZERO_WIDTH);
            x += skip;
        } else if (Peak_Is_Data_Peak(n, data.filtered, x, DATA_HALF, DATA_DROP) != 0) {
            Error_Fct(hwnd, TRACE_STEP, "Locate a peak with data at x = %d", x);
            Peak_Gauss_Add(data, tail, x, DATA_AMPLITUDE, DATA_WIDTH);
            x += DATA_SKIP;
        }
    }
}

void Prune_Small_And_Wide(Histo_Data& data) {
    Histo_Peak* next = nullptr;
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = next) {
        next = peak->next;
        const double amplitude = Param(*peak, PEAK_AMPLITUDE);
        const double width = Param(*peak, PEAK_WIDTH);
        if (amplitude <= (*peak->param_min)[PEAK_AMPLITUDE] || width <= (*peak->param_min)[PEAK_WIDTH]) {
            Peak_Delete(data, peak, "Peak to small (amp=%.1f, width=%.1f)", amplitude, width);
        }
    }
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = next) {
        next = peak->next;
        const double width = Param(*peak, PEAK_WIDTH);
        if (width >= static_cast<double>(peak_width_max)) {
            Peak_Delete(data, peak, "Peak to wide (amp=%.1f, width=%.1f)", Param(*peak, PEAK_AMPLITUDE), width);
        }
    }
}

void Prune_Neighbours(Histo_Data& data) {
    Histo_Peak* after = nullptr;
    for (Histo_Peak* peak = data.peak_first; peak != nullptr && peak->next != nullptr; peak = after) {
        Histo_Peak* neighbour = peak->next;
        after = neighbour;
        const auto centre = static_cast<float>(Param(*peak, PEAK_CENTRE));
        const auto next_centre = static_cast<float>(Param(*neighbour, PEAK_CENTRE));
        if (!(std::abs(centre - next_centre) < NEIGHBOUR_MIN)) {
            continue;
        }
        // Both texts name this peak's centre first, whichever of the two goes.
        const auto first = static_cast<double>(centre);
        const auto second = static_cast<double>(next_centre);
        if (static_cast<float>(Param(*neighbour, PEAK_AMPLITUDE)) > static_cast<float>(Param(*peak, PEAK_AMPLITUDE))) {
            Peak_Delete(data, peak, "Peak to close a (%.1f /vs/ %.1f)", first, second);
        } else {
            // The walk goes on behind the deleted one: this peak is not compared with its new neighbour in this pass.
            after = neighbour->next;
            Peak_Delete(data, neighbour, "Peak to close b (%.1f /vs/ %.1f)", first, second);
        }
    }
}

enum class Step_Result { Taken, Runaway };

/** Adds the step to the parameters, clamped to their bounds; nothing changes when one component runs away. */
Step_Result Step_Take(Histo_Data& data, const Vector_N& step, Vector_N& parameters) {
    int index = 0;
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        for (int k = 0; k < peak->nb_param; ++k, ++index) {
            const double bound = std::max(std::abs((*peak->param_min)[k]), std::abs((*peak->param_max)[k]));
            if (std::abs(step[index]) > RUNAWAY * bound) {
                return Step_Result::Runaway;
            }
        }
    }
    parameters += step;
    index = 0;
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        for (int k = 0; k < peak->nb_param; ++k, ++index) {
            parameters[index] = std::min(std::max((*peak->param_min)[k], parameters[index]), (*peak->param_max)[k]);
            (*peak->param)[k] = parameters[index];
        }
    }
    return Step_Result::Taken;
}

void Start_Sum_Make(Histo_Data& data, std::uint16_t n) {
    delete[] data.fit_sum;
    data.fit_sum = new (std::nothrow) float[n]();
    if (data.fit_sum == nullptr) {
        Histo_Report_New(__LINE__, TOOL_HISTO_GAUSS_NEWTON_SOURCE);
        return;  // drawn only while tracing; the fit does not need it
    }
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        if (peak->fct_value == nullptr) {
            continue;
        }
        const Bin_Span support = Peak_Support(*peak, n);
        for (int i = support.first; i <= support.last; ++i) {
            data.fit_sum[i] =
                static_cast<float>(static_cast<double>(data.fit_sum[i]) + peak->fct_value(peak->type, i, *peak->param));
        }
    }
}

}  // namespace

Histo_Peak* Peak_Gauss_Add(Histo_Data& data, Histo_Peak*& tail, int x, float amplitude_factor, float width) {
    Histo_Peak* peak = Peak_Make(PEAK_GAUSS, true);
    if (peak == nullptr) {
        Histo_Report_New(FIT_LINE_RECORD, TOOL_HISTO_GAUSS_NEWTON_SOURCE);
        return nullptr;
    }
    const double height = data.filtered[x];
    (*peak->param)[PEAK_CENTRE] = x;
    (*peak->param)[PEAK_AMPLITUDE] = static_cast<double>(amplitude_factor) * height;
    (*peak->param)[PEAK_WIDTH] = static_cast<double>(width);
    (*peak->param_min)[PEAK_CENTRE] = static_cast<double>(static_cast<float>(x) - peak_centre_tol);
    (*peak->param_min)[PEAK_AMPLITUDE] = 0.0;
    (*peak->param_min)[PEAK_WIDTH] = 1.0;
    (*peak->param_max)[PEAK_CENTRE] = static_cast<double>(static_cast<float>(x) + peak_centre_tol);
    (*peak->param_max)[PEAK_AMPLITUDE] = 2.0 * height;
    (*peak->param_max)[PEAK_WIDTH] = static_cast<double>(peak_width_max);
    peak->fct_value = Peak_Value;
    peak->fct_deriv = Peak_Deriv;
    Peak_Append(data, tail, peak);
    return peak;
}

void Gauss_Newton(Histo_Data& peaks, std::uint16_t n, const double* data, double threshold) {
    Start_Sum_Make(peaks, n);
    double previous = 0.0;
    int iteration = 0;
    for (; iteration < ITERATION_MAX; ++iteration) {
        Fit_System system = Fit_System_Make(peaks.peak_first, {data, n});
        const double change = system.squared_error - previous;
        Error_Fct(hwnd, TRACE_STEP, "++ mse: %.4f%% delta mse = %10.2g", system.squared_error * 100.0 / n,
                  std::abs(change));
        if (system.is_complete && system.is_valid && std::abs(change) < threshold) {
            break;
        }
        previous = system.squared_error;
        Matrix_NxM inverse = !system.normal;
        const bool is_valid = system.is_complete && system.is_valid && inverse.Invalid(0) == 0;
        const Vector_N step = is_valid ? inverse * system.gradient : Vector_N(0, ELEMENT_SIZE);
        const unsigned int wanted = system.parameters.Size();
        // A matrix without an inverse still has its size: one without a size had no memory.
        if (!system.is_complete || inverse.Rows() != wanted || (is_valid && step.Size() != wanted)) {
            Histo_Report_New(__LINE__, TOOL_HISTO_GAUSS_NEWTON_SOURCE);
            Warn_Invalid_Matrix();
            return;
        }
        if (!is_valid) {
            Warn_Invalid_Matrix();
            return;
        }
        if (Step_Take(peaks, step, system.parameters) == Step_Result::Runaway) {
            Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Gauss_Newton failed!");
            return;
        }
        Prune_Small_And_Wide(peaks);
        Prune_Neighbours(peaks);
        int index = 0;
        for (const Histo_Peak* peak = peaks.peak_first; peak != nullptr; peak = peak->next, ++index) {
            Error_Fct(hwnd, TRACE_STEP, "Iteration[%d] peak[%d]: C=%10.2f  A=%10.2f W=%10.2f", iteration, index,
                      Param(*peak, PEAK_CENTRE), Param(*peak, PEAK_AMPLITUDE), Param(*peak, PEAK_WIDTH));
        }
    }
    // Contract: readers of traces know a full run of ten iterations by its 11; a fit that stopped earlier counts right.
    Error_Fct(hwnd, TRACE_STEP, "  -> Stop after \x01%d\x02 iterations", iteration + 1);
}

void Peak_Fit_Prepare(Histo_Data& data, int n, const double* curve) {
    if (!Peak_Analysis_Begin(data, n, {__LINE__, TOOL_HISTO_GAUSS_NEWTON_SOURCE})) {
        return;
    }
    const std::span<const double> source(curve, static_cast<std::size_t>(std::max(n, 0)));
    const float largest = Largest(source);
    Moving_Mean(source, data.filtered);
    Error_Fct(hwnd, TRACE_STEP, "nb pts:%d max val: %f", n, static_cast<double>(largest));
    for (int i = 0; i < n; ++i) {
        data.derivative[i] = i == 0 ? 0.0F : static_cast<float>(data.filtered[i] - data.filtered[i - 1]);
    }
    peak_centre_tol = 1.25F;
    peak_data_min = 10.0F;
    peak_width_max = static_cast<float>(n) / 5.0F;
    Candidates_Find(data, n);
    Error_Fct(hwnd, MESSAGE_STATUS, "Computing Peak Fit: \x01%d\x02 peaks ...", data.peak_nb);
    int index = 0;
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next, ++index) {
        Error_Fct(hwnd, TRACE_STEP, "before[%d]: C=%10.2f  A=%10.2f W=%10.2f", index, Param(*peak, PEAK_CENTRE),
                  Param(*peak, PEAK_AMPLITUDE), Param(*peak, PEAK_WIDTH));
    }
    Gauss_Newton(data, static_cast<std::uint16_t>(n), data.filtered, STOP_CHANGE);
    index = 0;
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next, ++index) {
        Error_Fct(hwnd, TRACE_STEP, "last peak[%d]: C=%10.2f  A=%10.2f W=%10.2f", index, Param(*peak, PEAK_CENTRE),
                  Param(*peak, PEAK_AMPLITUDE), Param(*peak, PEAK_WIDTH));
    }
    if (data.peak_nb != 0) {
        Peak_Curves_Make(data, {FIT_LINE_CURVE, TOOL_HISTO_GAUSS_NEWTON_SOURCE});
    }
}

// Peak records, their list in the panel, and the services of the fit on it.
#include "histogram/tool_histo_peak.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

#include "histogram/peak_candidates.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"

// Settings of the analysis. One analysis runs at a time, so they are the process's.
float peak_width_max = 0.0F;
float peak_centre_tol = 1.25F;
float peak_data_min = 10.0F;
float peak_mix_ratio = 0.5F;
// Contract: hosts that repeat a session get its peaks again only as the first crossing of a fit is measured against the
// last one of the fit before, of whichever panel: never reset, but by who asks for a fit as if it were the first.
std::int32_t last_zero = 0;

namespace {

constexpr int PEAK_LINE_CURVE = 96;  // hosts match it
constexpr int REASON_SIZE = 1024;
constexpr int TRACE_DELETE = 11;
constexpr int TRACE_DATA_PEAK = 12;

Peak_Parameters Parameters_Of(Vector_N& param) {
    return {param[PEAK_CENTRE], param[PEAK_AMPLITUDE], param[PEAK_WIDTH]};
}

Vector_N* Parameters_Make() {
    auto* vector = new (std::nothrow) Vector_N(PEAK_PARAM_NB, ELEMENT_SIZE);
    if (vector != nullptr && vector->Size() != PEAK_PARAM_NB) {
        delete vector;
        vector = nullptr;
    }
    return vector;
}

}  // namespace

Histo_Peak* Peak_Make(std::uint8_t type, bool with_bounds) {
    auto* peak = new (std::nothrow) Histo_Peak();
    if (peak == nullptr) {
        return nullptr;
    }
    peak->type = type;
    peak->param = Parameters_Make();
    bool complete = peak->param != nullptr;
    if (with_bounds) {
        peak->param_min = Parameters_Make();
        peak->param_max = Parameters_Make();
        complete = complete && peak->param_min != nullptr && peak->param_max != nullptr;
    }
    if (!complete) {
        Peak_Free(peak);
        return nullptr;
    }
    return peak;
}

void Peak_Free(Histo_Peak* peak) {
    if (peak == nullptr) {
        return;
    }
    delete peak->param;
    delete peak->param_min;
    delete peak->param_max;
    delete[] peak->curve;
    delete peak;
}

void Peak_Append(Histo_Data& data, Histo_Peak*& tail, Histo_Peak* peak) {
    if (tail == nullptr) {
        data.peak_first = peak;
    } else {
        peak->prev = tail;
        tail->next = peak;
    }
    tail = peak;
    ++data.peak_nb;
}

double Peak_Value(std::uint8_t type, double position, Vector_N& param) {
    return Shape_Value(type, position, Parameters_Of(param), static_cast<double>(peak_mix_ratio));
}

double Peak_Deriv(std::uint8_t type, std::uint8_t index, double position, Vector_N& param) {
    return Shape_Derivative(type, index, position, Parameters_Of(param), static_cast<double>(peak_mix_ratio));
}

double* Peak_Curve(std::uint8_t type, int n, Vector_N& param) {
    if (param[PEAK_CENTRE] == 0.0) {
        return nullptr;
    }
    auto* curve = new (std::nothrow) double[static_cast<std::size_t>(n > 0 ? n : 0)];
    if (curve == nullptr) {
        Histo_Report_New(PEAK_LINE_CURVE, TOOL_HISTO_PEAK_SOURCE);
        return nullptr;
    }
    for (int bin = 0; bin < n; ++bin) {
        curve[bin] = Peak_Value(type, static_cast<double>(bin), param);
    }
    return curve;
}

Bin_Span Peak_Support(const Histo_Peak& peak, int nb_bins) {
    if (peak.type != PEAK_GAUSS || peak.fct_value != Peak_Value) {
        return {0, nb_bins - 1};
    }
    return Gauss_Support(Parameters_Of(*peak.param), nb_bins);
}

int Peak_Is_Zero_Peak(int n, const float* derivative, int x, int gap, float slope) {
    return Zero_Peak_Test({derivative, static_cast<std::size_t>(n)}, x, gap, slope, last_zero);
}

int Peak_Is_Data_Peak(int n, const double* filtered, int x, int half, float min_drop) {
    const Data_Peak peak = Data_Peak_Test({filtered, static_cast<std::size_t>(n)}, x, half, peak_data_min);
    if (!peak.is_maximum) {
        return 0;
    }
    // "possile": hosts look for the word as it stands.
    Error_Fct(hwnd, TRACE_DATA_PEAK, "  -> possile data peak at %d -> max = %d", x - 1, peak.drop);
    return static_cast<float>(peak.drop) >= min_drop ? 1 : 0;
}

void Peak_Delete(Histo_Data& data, Histo_Peak* peak, const char* format, ...) {
    char reason[REASON_SIZE] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(reason, sizeof reason, format, arguments);
    va_end(arguments);
    Error_Fct(hwnd, TRACE_DELETE, "******* Delete peak at %.2f: %s", (*peak->param)[PEAK_CENTRE], reason);
    if (peak->prev == nullptr) {
        data.peak_first = peak->next;
    } else {
        peak->prev->next = peak->next;
    }
    if (peak->next != nullptr) {
        peak->next->prev = peak->prev;
    }
    Peak_Free(peak);
    --data.peak_nb;
}

bool Peak_Analysis_Begin(Histo_Data& data, int n, const Peak_Report& report) {
    data.Peaks_Free();
    data.Curves_Free();
    const auto bins = static_cast<std::size_t>(n > 0 ? n : 0);
    data.filtered = new (std::nothrow) double[bins];
    data.derivative = new (std::nothrow) float[bins]();
    if (data.filtered == nullptr || data.derivative == nullptr) {
        Histo_Report_New(report.line, report.source);
        data.Curves_Free();
        return false;
    }
    data.curve_nb = n;
    return true;
}

void Peak_Curves_Make(Histo_Data& data, const Peak_Report& report) {
    for (Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next) {
        peak->curve = new (std::nothrow) float[static_cast<std::size_t>(data.curve_nb)]();
        if (peak->curve == nullptr) {
            Histo_Report_New(report.line, report.source);
            return;
        }
        peak->nb_pts = data.curve_nb;
        if (peak->fct_value == nullptr) {
            continue;
        }
        const Bin_Span support = Peak_Support(*peak, data.curve_nb);
        for (int i = support.first; i <= support.last; ++i) {
            peak->curve[i] = static_cast<float>(peak->fct_value(peak->type, i, *peak->param));
        }
    }
}

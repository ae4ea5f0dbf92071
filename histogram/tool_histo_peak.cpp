// Peak records, their list in the panel, and the services of the fit on it.
#include "histogram/tool_histo_peak.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

#include "histogram/peak_candidates.h"
#include "histogram/peak_shapes.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"

// Settings of the analysis. One analysis runs at a time, so they are the process's.
float peak_width_max = 0.0F;
float peak_centre_tol = 1.25F;
float peak_data_min = 10.0F;
float peak_mix_ratio = 0.5F;
// Never reset, neither between fits nor between panels: the first crossing of a fit is measured against the last one of
// the fit before. Kept on purpose.
std::int32_t last_zero = 0;

namespace {

constexpr int LINE_CURVE = 96;  // hosts match it
constexpr unsigned char ELEMENT_SIZE = 8;
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

void Delete_Because(Histo_Data& data, Histo_Peak* peak, const char* format, va_list arguments) {
    char reason[REASON_SIZE] = {};
    std::vsnprintf(reason, sizeof reason, format, arguments);
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

void Peak_Append(Tool_Histo& panel, Histo_Peak*& tail, Histo_Peak* peak) {
    Peak_Append(*panel.data, tail, peak);
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
        Error_Fct(hwnd, MESSAGE_MEMORY, HISTO_MESSAGE_NEW, LINE_CURVE, TOOL_HISTO_PEAK_SOURCE);
        return nullptr;
    }
    for (int bin = 0; bin < n; ++bin) {
        curve[bin] = Peak_Value(type, static_cast<double>(bin), param);
    }
    return curve;
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

void Peak_Delete(Tool_Histo& panel, Histo_Peak* peak, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Delete_Because(*panel.data, peak, format, arguments);
    va_end(arguments);
}

void Peak_Delete(Histo_Data& data, Histo_Peak* peak, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Delete_Because(data, peak, format, arguments);
    va_end(arguments);
}

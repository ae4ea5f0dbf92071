// libFuzzer: the linear system of a fit from any peaks and any data, and one step of it. A step that cannot be solved
// must say so.
#include <cmath>
#include <vector>

#include "histogram/peak_fit_system.h"
#include "histogram/tool_histo_peak.h"
#include "tests/fuzzing/input_bytes.h"

namespace {

constexpr int PEAKS_MOST = 12;  // enough for a normal matrix that is mostly zeros

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input_Bytes input(data, size);
    std::vector<double> curve(static_cast<std::size_t>(2 + input.Below(100)));
    std::vector<Histo_Peak*> peaks;
    for (int left = input.Below(PEAKS_MOST + 1); left > 0; --left) {
        Histo_Peak* const peak = Peak_Make(static_cast<std::uint8_t>(1 + input.Below(3)), true);
        Require(peak != nullptr);
        for (int index = 0; index < PEAK_PARAM_NB; ++index) {
            (*peak->param)[index] =
                (input.Take<std::uint8_t>() & 1) != 0 ? input.Take<double>() : input.Take<std::int16_t>() * 0.25;
        }
        peak->fct_value = Peak_Value;
        peak->fct_deriv = Peak_Deriv;
        if (!peaks.empty()) {
            peaks.back()->next = peak;
            peak->prev = peaks.back();
        }
        peaks.push_back(peak);
    }
    for (double& value : curve) {
        value = input.Take<std::uint16_t>();
    }
    {
        Fit_System system = Fit_System_Make(peaks.empty() ? nullptr : peaks.front(), curve);
        Require(system.is_complete);
        Require(system.parameters.Size() == static_cast<unsigned int>(peaks.size()) * PEAK_PARAM_NB);
        Matrix_NxM inverse = !system.normal;
        if (system.is_valid && inverse.Invalid(0) == 0) {
            Require((inverse * system.gradient).Size() == system.parameters.Size());
            for (unsigned int row = 0; row < inverse.Rows(); ++row) {
                for (unsigned int column = 0; column < inverse.Columns(); ++column) {
                    Require(std::isfinite(inverse[static_cast<int>(row)][column]));
                }
            }
        }
    }
    for (Histo_Peak* peak : peaks) {
        Peak_Free(peak);
    }
    return 0;
}

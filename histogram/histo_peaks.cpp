#include "histogram/histo_peaks.h"

#include "histogram/peak_numbers.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_fit.h"

int Histo_Peaks(const Tool_Histo& panel, Histo_Peak_Info* out, int most) {
    return panel.data != nullptr ? Peak_Numbers(*panel.data, panel.color_component, out, most) : 0;
}

int Histo_Fit_Repeatable(Tool_Histo& panel) {
    return Histo_Fit_Gaussian_First(panel.data, panel.color_component);
}

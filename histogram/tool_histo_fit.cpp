#include "histogram/tool_histo_fit.h"

#include <array>
#include <new>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"
#include "histogram/tool_histo_peak.h"

namespace {

/** Settings and the last zero crossing belong to the process: one analysis at a time. */
class Analysis_Turn {
  public:
    Analysis_Turn() : taken(!runs) { runs = true; }
    ~Analysis_Turn() { runs = runs && !taken; }
    Analysis_Turn(const Analysis_Turn&) = delete;
    Analysis_Turn& operator=(const Analysis_Turn&) = delete;

    bool Is_Taken() const { return taken; }

  private:
    inline static bool runs = false;
    bool taken;
};

/** Runs a method on a copy of the curve that the record's counts give. */
template <class Method>
int Analyse(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component, Method method) {
    // A copy: the panel may end while a message is on its way to the host.
    const std::shared_ptr<Histo_Data> data = panel_data;  // NOLINT(performance-unnecessary-copy-initialization)
    const Analysis_Turn turn;
    if (!turn.Is_Taken() || data == nullptr || !data->Has_Counts()) {
        return 0;
    }
    const int nb_bins = data->record->nb_bins;
    const std::unique_ptr<double[]> curve(new (std::nothrow) double[static_cast<std::size_t>(nb_bins)]());
    if (curve == nullptr) {
        Histo_Report_New(__LINE__, TOOL_HISTO_SOURCE);
        return 1;
    }
    Peak_Source_Curve(*data->record, component, curve.get());
    method(*data, nb_bins, curve.get());
    return 1;
}

}  // namespace

const std::uint32_t* Peak_Source_Counts(const Histo_Record& record, std::uint8_t component) {
    const std::array<const std::uint32_t*, 5> by_component = {record.counts_component0, record.counts_red,
                                                              record.counts_green, record.counts_blue, record.counts};
    if ((record.flags & HISTO_COLOR) == 0) {
        return record.counts;
    }
    return component < by_component.size() ? by_component[component] : nullptr;
}

void Peak_Source_Curve(const Histo_Record& record, std::uint8_t component, double* curve) {
    const std::uint32_t* counts = Peak_Source_Counts(record, component);
    for (int bin = 0; bin < record.nb_bins; ++bin) {
        curve[bin] = counts != nullptr ? static_cast<double>(counts[bin]) : 0.0;
    }
}

int Histo_Fit_Derivative(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component, std::uint8_t max_peak) {
    return Analyse(panel_data, component, [max_peak](Histo_Data& data, int nb_bins, const double* curve) {
        Peak_Find_Segments(data, nb_bins, curve, max_peak);
    });
}

int Histo_Fit_Gaussian(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component) {
    return Analyse(panel_data, component, Peak_Fit_Prepare);
}

int Histo_Fit_Gaussian_First(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component) {
    return Analyse(panel_data, component, [](Histo_Data& data, int nb_bins, const double* curve) {
        last_zero = 0;
        Peak_Fit_Prepare(data, nb_bins, curve);
    });
}

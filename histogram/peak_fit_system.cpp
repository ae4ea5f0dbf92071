#include "histogram/peak_fit_system.h"

#include <new>
#include <vector>

#include "histogram/peak_shapes.h"
#include "histogram/tool_histo_peak.h"

namespace {

constexpr unsigned char ELEMENT_SIZE = 8;

unsigned int Parameter_Count(const Histo_Peak* first) {
    unsigned int count = 0;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        count += peak->nb_param;
    }
    return count;
}

/** One Gaussian's columns and its share of the residual. @param unit room for one value per bin */
void Add_Gauss(const Peak_Parameters& parameters, int column, Fit_System& system, std::span<double> unit) {
    const Bin_Span support = Gauss_Support(parameters, static_cast<int>(unit.size()));
    if (support.first > support.last) {
        return;
    }
    const std::span<double> values = unit.subspan(0, static_cast<std::size_t>(support.last - support.first + 1));
    Gauss_Unit_Values(parameters, support, values);
    for (int bin = support.first; bin <= support.last; ++bin) {
        const double value = values[static_cast<std::size_t>(bin - support.first)];
        const Gauss_Slopes slopes = Gauss_Slopes_At(parameters, static_cast<double>(bin), value);
        double* row = system.jacobian[bin] + column;
        row[PEAK_CENTRE] = slopes.by_centre;
        row[PEAK_AMPLITUDE] = slopes.by_amplitude;
        row[PEAK_WIDTH] = slopes.by_width;
        system.residual[bin] -= parameters.amplitude * value;
    }
}

/** True for a Gaussian that the module's own two functions evaluate: only then is its shape known here. */
bool Is_Own_Gauss(const Histo_Peak& peak) {
    return peak.type == PEAK_GAUSS && peak.fct_value == Peak_Value && peak.fct_deriv == Peak_Deriv;
}

/** Any other peak, by the record's own functions. A record without them adds nothing. */
void Add_Shape(const Histo_Peak& peak, int column, int nb_bins, Fit_System& system) {
    if (peak.fct_value == nullptr || peak.fct_deriv == nullptr) {
        return;
    }
    for (int bin = 0; bin < nb_bins; ++bin) {
        double* row = system.jacobian[bin] + column;
        for (std::uint8_t k = 0; k < peak.nb_param; ++k) {
            row[k] = peak.fct_deriv(peak.type, k, bin, *peak.param);
        }
        system.residual[bin] -= peak.fct_value(peak.type, bin, *peak.param);
    }
}

}  // namespace

Fit_System Fit_System_Make(const Histo_Peak* first, std::span<const double> data) {
    const unsigned int count = Parameter_Count(first);
    const auto rows = static_cast<unsigned int>(data.size());
    Fit_System system{Vector_N(count, ELEMENT_SIZE), Matrix_NxM(count, rows, ELEMENT_SIZE),
                      Vector_N(rows, ELEMENT_SIZE)};
    std::vector<double> unit;
    try {
        unit.resize(data.size());
    } catch (const std::bad_alloc&) {
        return system;
    }
    if (system.parameters.Size() != count || system.residual.Size() != rows || system.jacobian.Invalid(0) != 0) {
        return system;
    }
    int column = 0;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        for (int k = 0; k < peak->nb_param; ++k) {
            system.parameters[column + k] = (*peak->param)[k];
        }
        const Peak_Parameters parameters{(*peak->param)[PEAK_CENTRE], (*peak->param)[PEAK_AMPLITUDE],
                                         (*peak->param)[PEAK_WIDTH]};
        if (Is_Own_Gauss(*peak) && parameters.width > 0.0) {
            Add_Gauss(parameters, column, system, unit);
        } else {
            Add_Shape(*peak, column, static_cast<int>(rows), system);
        }
        column += peak->nb_param;
    }
    for (unsigned int bin = 0; bin < rows; ++bin) {
        const auto at = static_cast<int>(bin);
        system.residual[at] += data[bin];
        system.squared_error += system.residual[at] * system.residual[at];
    }
    system.is_complete = true;
    return system;
}

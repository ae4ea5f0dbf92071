#include "histogram/peak_fit_system.h"

#include <algorithm>
#include <new>

#include "histogram/tool_histo_peak.h"

namespace {

/** Bins of a part: half of what a peak reaches, so that little of a part is zero, but enough of them that multiplying
 * takes longer than asking for it. */
constexpr int PART_BINS_MIN = 128;
constexpr int PART_BINS_MAX = 2048;

/** Where the peaks of a part write. */
struct Part_Rows {
    Bin_Span bins;
    std::vector<double*> rows;     ///< of the Jacobian; empty when it has no columns
    std::vector<double> residual;  ///< per bin of the part
};

Bin_Span Common(const Bin_Span& a, const Bin_Span& b) {
    return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

bool Is_Empty(const Bin_Span& span) {
    return span.first > span.last;
}

Peak_Parameters Parameters_Of(const Histo_Peak& peak) {
    return {(*peak.param)[PEAK_CENTRE], (*peak.param)[PEAK_AMPLITUDE], (*peak.param)[PEAK_WIDTH]};
}

/** One Gaussian's columns and its share of the residual. @param column of the part @param unit room for one value per
 * bin */
void Add_Gauss(const Peak_Parameters& parameters, const Bin_Span& bins, int column, Part_Rows& part,
               std::span<double> unit) {
    const auto nb = static_cast<std::size_t>(bins.last - bins.first + 1);
    const auto offset = static_cast<std::size_t>(bins.first - part.bins.first);
    const std::span<double> values = unit.subspan(0, nb);
    Gauss_Unit_Values(parameters, bins, values);
    const Gauss_Slopes slopes(parameters);
    for (std::size_t i = 0; i < nb; ++i) {
        const double value = values[i];
        const double position = static_cast<double>(bins.first) + static_cast<double>(i);
        double* const row = part.rows[offset + i] + column;
        row[PEAK_CENTRE] = slopes.By_Centre(position, value);
        row[PEAK_AMPLITUDE] = Gauss_Slopes::By_Amplitude(value);
        row[PEAK_WIDTH] = slopes.By_Width(position, value);
        part.residual[offset + i] -= parameters.amplitude * value;
    }
}

/** Any other peak, by the record's own functions. */
void Add_Shape(const Histo_Peak& peak, const Bin_Span& bins, int column, Part_Rows& part) {
    for (int bin = bins.first; bin <= bins.last; ++bin) {
        const auto at = static_cast<std::size_t>(bin - part.bins.first);
        double* const row = part.rows[at] + column;
        for (std::uint8_t k = 0; k < peak.nb_param; ++k) {
            row[k] = peak.fct_deriv(peak.type, k, bin, *peak.param);
        }
        part.residual[at] -= peak.fct_value(peak.type, bin, *peak.param);
    }
}

/** Adds Jt J and Jt r of a part. @return false when memory ran out */
bool Add_Products(const Fit_Part& part, Fit_System& system) {
    const unsigned int columns = part.jacobian.Columns();
    const Matrix_NxM transposed = ~part.jacobian;
    Matrix_NxM product = transposed * part.jacobian;
    const Vector_N gradient = transposed * part.residual;
    if (product.Rows() != columns || gradient.Size() != columns) {
        return false;
    }
    system.is_valid = system.is_valid && product.Invalid(0) == 0;
    for (int row = 0; row < static_cast<int>(columns); ++row) {
        const double* const from = product[row];
        double* const to = system.normal[part.first_column + row] + part.first_column;
        for (unsigned int column = 0; column < columns; ++column) {
            to[column] += from[column];
        }
        system.gradient[part.first_column + row] += gradient[row];
    }
    return true;
}

int Part_Length(std::span<const Fit_Peak> peaks) {
    double reached = 0.0;
    for (const Fit_Peak& fitted : peaks) {
        reached += static_cast<double>(fitted.reach.last - fitted.reach.first + 1);
    }
    const double half = peaks.empty() ? 0.0 : reached / static_cast<double>(peaks.size()) / 2.0;
    return static_cast<int>(std::clamp(half, double{PART_BINS_MIN}, double{PART_BINS_MAX}));
}

/** Adds one run of bins. @return false when memory ran out @throws std::bad_alloc */
bool Add_Part(std::span<const Fit_Peak> peaks, std::span<const double> data, const Bin_Span& bins, Fit_System& system) {
    const auto rows = static_cast<std::size_t>(bins.last - bins.first + 1);
    if (std::all_of(peaks.begin(), peaks.end(),
                    [&](const Fit_Peak& fitted) { return Is_Empty(Common(fitted.reach, bins)); })) {
        for (const double value : data.subspan(static_cast<std::size_t>(bins.first), rows)) {
            system.squared_error += value * value;
        }
        return true;
    }
    const Fit_Part part = Fit_Part_Make(peaks, data, bins);
    if (!part.is_complete || !Add_Products(part, system)) {
        return false;
    }
    for (int row = 0; row < static_cast<int>(rows); ++row) {
        system.squared_error += part.residual[row] * part.residual[row];
    }
    return true;
}

/** @return false when memory ran out @throws std::bad_alloc */
bool Add_Parts(std::span<const Fit_Peak> peaks, std::span<const double> data, Fit_System& system) {
    const auto nb_bins = static_cast<int>(data.size());
    const int length = Part_Length(peaks);
    for (int first = 0; first < nb_bins; first += length) {
        if (!Add_Part(peaks, data, {first, std::min(first + length, nb_bins) - 1}, system)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<Fit_Peak> Fit_Peaks_Of(const Histo_Peak* first, int nb_bins) {
    std::vector<Fit_Peak> peaks;
    int column = 0;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        Fit_Peak fitted{peak, column, {0, nb_bins - 1}, false};
        const Peak_Parameters parameters = Parameters_Of(*peak);
        if (peak->type == PEAK_GAUSS && peak->fct_value == Peak_Value && peak->fct_deriv == Peak_Deriv &&
            parameters.width > 0.0) {
            fitted.is_own_gauss = true;
            fitted.reach = Gauss_Support(parameters, nb_bins);
        } else if (peak->fct_value == nullptr || peak->fct_deriv == nullptr) {
            fitted.reach = {};  // a record without functions adds nothing
        }
        peaks.push_back(fitted);
        column += peak->nb_param;
    }
    return peaks;
}

Fit_Part Fit_Part_Make(std::span<const Fit_Peak> peaks, std::span<const double> data, const Bin_Span& bins) {
    const auto rows = static_cast<unsigned int>(bins.last - bins.first + 1);
    int first_column = 0;
    int end_column = 0;
    for (const Fit_Peak& fitted : peaks) {
        if (!Is_Empty(Common(fitted.reach, bins))) {
            first_column = end_column == 0 ? fitted.column : first_column;
            end_column = fitted.column + fitted.peak->nb_param;
        }
    }
    const auto columns = static_cast<unsigned int>(end_column - first_column);
    Fit_Part part{bins, first_column, Matrix_NxM(columns, rows, ELEMENT_SIZE), Vector_N(rows, ELEMENT_SIZE), false};
    if (part.jacobian.Invalid(0) != 0 || part.residual.Size() != rows) {
        return part;
    }
    Part_Rows written{bins, std::vector<double*>(rows), std::vector<double>(rows)};
    for (unsigned int row = 0; row < rows && columns > 0; ++row) {
        written.rows[row] = part.jacobian[static_cast<int>(row)];
    }
    std::vector<double> unit(rows);
    for (const Fit_Peak& fitted : peaks) {
        const Bin_Span common = Common(fitted.reach, bins);
        if (Is_Empty(common)) {
            continue;
        }
        if (fitted.is_own_gauss) {
            Add_Gauss(Parameters_Of(*fitted.peak), common, fitted.column - first_column, written, unit);
        } else {
            Add_Shape(*fitted.peak, common, fitted.column - first_column, written);
        }
    }
    for (unsigned int row = 0; row < rows; ++row) {
        part.residual[static_cast<int>(row)] = written.residual[row] + data[static_cast<std::size_t>(bins.first) + row];
    }
    part.is_complete = true;
    return part;
}

Fit_System Fit_System_Make(const Histo_Peak* first, std::span<const double> data) {
    unsigned int count = 0;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        count += peak->nb_param;
    }
    Fit_System system{Vector_N(count, ELEMENT_SIZE), Matrix_NxM(count, count, ELEMENT_SIZE),
                      Vector_N(count, ELEMENT_SIZE)};
    if (system.parameters.Size() != count || system.gradient.Size() != count || system.normal.Invalid(0) != 0) {
        return system;
    }
    int index = 0;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        for (int k = 0; k < peak->nb_param; ++k, ++index) {
            system.parameters[index] = (*peak->param)[k];
        }
    }
    try {
        system.is_complete = Add_Parts(Fit_Peaks_Of(first, static_cast<int>(data.size())), data, system);
    } catch (const std::bad_alloc&) {
        system.is_complete = false;
    }
    return system;
}

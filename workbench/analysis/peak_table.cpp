#include "workbench/analysis/peak_table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "host/kit_common.h"

namespace {

constexpr int PARAMETERS = 3;
constexpr unsigned char ELEMENT_SIZE = 8;

double Gauss(const Found_Peak& peak, double bin) {
    const double u = (bin - peak.centre) / peak.width;
    return peak.amplitude * std::exp(-std::numbers::ln2 * u * u);
}

double Sum_At(std::span<const Found_Peak> peaks, std::size_t bin) {
    double sum = 0.0;
    for (const Found_Peak& peak : peaks) {
        sum += Gauss(peak, static_cast<double>(bin));
    }
    return sum;
}

double Total(std::span<const std::uint32_t> counts) {
    double total = 0.0;
    for (const std::uint32_t count : counts) {
        total += count;
    }
    return total;
}

Peak_Row Segment_Row(const Found_Peak& peak, const Analysed_Curve& curve) {
    Peak_Row row;
    const auto first = static_cast<std::size_t>(std::max(peak.amplitude, 0.0));
    const auto last = static_cast<std::size_t>(std::max(peak.width, 0.0));
    for (std::size_t bin = first; bin <= last && bin < curve.counts.size(); ++bin) {
        row.area += curve.counts[bin];
        row.height = std::max(row.height, static_cast<double>(curve.counts[bin]));
    }
    row.from = static_cast<double>(first) * curve.bin_width + curve.origin;
    row.to = static_cast<double>(last + 1) * curve.bin_width + curve.origin;
    row.full_width = row.to - row.from;
    return row;
}

Peak_Row Gauss_Row(const Found_Peak& peak, const Analysed_Curve& curve) {
    Peak_Row row;
    row.height = peak.amplitude;
    row.full_width = 2.0 * peak.width * curve.bin_width;
    row.area = peak.amplitude * peak.width * std::sqrt(std::numbers::pi / std::numbers::ln2);
    row.from = (peak.centre + 0.5 - peak.width) * curve.bin_width + curve.origin;
    row.to = (peak.centre + 0.5 + peak.width) * curve.bin_width + curve.origin;
    return row;
}

/** Neighbours meet at the middle of their overlap. */
void Overlaps_Split(std::vector<Peak_Row>& rows) {
    for (std::size_t k = 0; k + 1 < rows.size(); ++k) {
        if (rows[k].to > rows[k + 1].from) {
            const double middle = (rows[k].centre + rows[k + 1].centre) / 2.0;
            rows[k].to = std::min(rows[k].to, middle);
            rows[k + 1].from = std::max(rows[k + 1].from, middle);
        }
    }
}

/** 1 - residual variance / variance. */
template <class Value>
double R_Squared(std::span<const Value> values, std::span<const Found_Peak> peaks) {
    double mean = 0.0;
    for (const Value value : values) {
        mean += static_cast<double>(value);
    }
    mean /= static_cast<double>(values.size());
    double variance = 0.0;
    double residual = 0.0;
    for (std::size_t bin = 0; bin < values.size(); ++bin) {
        const auto value = static_cast<double>(values[bin]);
        variance += (value - mean) * (value - mean);
        residual += (value - Sum_At(peaks, bin)) * (value - Sum_At(peaks, bin));
    }
    return variance > 0.0 ? 1.0 - residual / variance : 0.0;
}

/** Standard errors of all parameters: the root of s^2 times the diagonal of the inverse normal matrix, s^2 = squared
 * residuals per degree of freedom of the filtered curve. @return false when the matrix is singular */
bool Errors_Find(std::span<const Found_Peak> peaks, std::span<const double> filtered, std::vector<double>& errors) {
    const auto columns = static_cast<unsigned int>(PARAMETERS * peaks.size());
    const auto n = static_cast<unsigned int>(filtered.size());
    if (columns == 0 || n <= columns) {
        return false;
    }
    Matrix_NxM jacobian(columns, n, ELEMENT_SIZE);
    if (jacobian.Invalid(0) != 0) {
        return false;
    }
    double squares = 0.0;
    for (unsigned int bin = 0; bin < n; ++bin) {
        double* row = jacobian[static_cast<int>(bin)];
        for (const Found_Peak& peak : peaks) {
            const double distance = static_cast<double>(bin) - peak.centre;
            const double value = Gauss(peak, static_cast<double>(bin));
            const double slope = 2.0 * std::numbers::ln2 * distance / (peak.width * peak.width);
            *row++ = value * slope;
            *row++ = peak.amplitude != 0.0 ? value / peak.amplitude : 0.0;
            *row++ = value * slope * distance / peak.width;
        }
        const double residual = filtered[bin] - Sum_At(peaks, bin);
        squares += residual * residual;
    }
    Matrix_NxM inverse = !(~jacobian * jacobian);
    if (inverse.Invalid(0) != 0) {
        return false;
    }
    const double variance = squares / static_cast<double>(n - columns);
    errors.resize(columns);
    for (unsigned int k = 0; k < columns; ++k) {
        errors[k] = std::sqrt(std::max(variance * inverse[static_cast<int>(k)][k], 0.0));
    }
    return true;
}

void Quality_Find(std::span<const Found_Peak> peaks, const Analysed_Curve& curve, Peak_Table& table) {
    std::vector<double> errors;
    if (!Errors_Find(peaks, curve.filtered, errors)) {
        return;
    }
    for (std::size_t k = 0; k < table.rows.size(); ++k) {
        table.rows[k].centre_error = errors[PARAMETERS * k] * curve.bin_width;
        table.rows[k].height_error = errors[PARAMETERS * k + 1];
        table.rows[k].full_width_error = 2.0 * errors[PARAMETERS * k + 2] * curve.bin_width;
    }
    table.quality.is_known = true;
    table.quality.r_squared_filtered = R_Squared(curve.filtered, peaks);
    table.quality.r_squared_counts = R_Squared(curve.counts, peaks);
    double chi_square = 0.0;
    for (std::size_t bin = 0; bin < curve.counts.size(); ++bin) {
        const double residual = curve.counts[bin] - Sum_At(peaks, bin);
        chi_square += residual * residual / std::max(static_cast<double>(curve.counts[bin]), 1.0);
    }
    const double freedom = static_cast<double>(curve.counts.size()) - static_cast<double>(PARAMETERS * peaks.size());
    table.quality.reduced_chi_square = freedom > 0.0 ? chi_square / freedom : 0.0;
}

}  // namespace

Peak_Table Peak_Table_Make(std::span<const Found_Peak> peaks, const Analysed_Curve& curve) {
    Peak_Table table;
    const double total = Total(curve.counts);
    bool gauss = true;
    for (const Found_Peak& peak : peaks) {
        const bool usable = peak.is_segment || peak.width > 0.0;
        Peak_Row row = peak.is_segment ? Segment_Row(peak, curve) : (usable ? Gauss_Row(peak, curve) : Peak_Row{});
        row.number = static_cast<int>(table.rows.size()) + 1;
        row.centre = (peak.centre + 0.5) * curve.bin_width + curve.origin;
        row.share = total > 0.0 ? row.area / total : 0.0;
        table.rows.push_back(row);
        gauss = gauss && usable && !peak.is_segment;
    }
    if (gauss && !peaks.empty()) {
        Overlaps_Split(table.rows);
        Quality_Find(peaks, curve, table);
    }
    return table;
}

std::string With_Error(double value, double error, int decimals) {
    constexpr double digits_max = 1e15;
    char text[96];
    if (!(error > 0.0) || !std::isfinite(error)) {
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        return text;
    }
    if (std::abs(value) >= digits_max || error >= digits_max) {
        std::snprintf(text, sizeof text, "%.2g \xC2\xB1 %.2g", value, error);
        return text;
    }
    // The decimal place of the second digit; rounding can carry into a new first one, 0.0996 is 0.10.
    int place = static_cast<int>(std::floor(std::log10(error))) - 1;
    if (std::round(error * std::pow(10.0, -place)) >= 100.0) {
        ++place;
    }
    const double unit = std::pow(10.0, place);
    const auto rounded = [&](double number) { return place > 0 ? std::round(number / unit) * unit : number; };
    const int shown = std::clamp(-place, 0, decimals);
    std::snprintf(text, sizeof text, "%.*f \xC2\xB1 %.*f", shown, rounded(value), shown, rounded(error));
    return text;
}

std::string Peak_Table_Text(const Peak_Table& table) {
    std::string text =
        "Peak\tCentre\tHeight\tFull width\tArea\tShare\tFrom\tTo\tCentre error\tHeight error\tWidth error\n";
    char line[512];
    for (const Peak_Row& row : table.rows) {
        std::snprintf(line, sizeof line, "%d\t%.2f\t%.1f\t%.2f\t%.0f\t%.4f\t%.2f\t%.2f\t%.3f\t%.2f\t%.3f\n", row.number,
                      row.centre, row.height, row.full_width, row.area, row.share, row.from, row.to, row.centre_error,
                      row.height_error, row.full_width_error);
        text += line;
    }
    if (table.quality.is_known) {
        std::snprintf(line, sizeof line, "R2 (filtered curve)\t%.5f\nR2 (counts)\t%.5f\nReduced chi-square\t%.3f\n",
                      table.quality.r_squared_filtered, table.quality.r_squared_counts,
                      table.quality.reduced_chi_square);
        text += line;
    }
    return text;
}

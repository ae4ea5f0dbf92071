#include "workbench/analysis/peak_table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <numbers>

#include "host/kit_common.h"
#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr int PARAMETERS = 3;
constexpr unsigned char ELEMENT_SIZE = 8;
constexpr int DIGITS = 4;       // of grey levels in the table
constexpr int DIGITS_TEXT = 6;  // of numbers that other programs read

/** All digits that tell a double from every other one. */
std::string Exact_Text(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

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
        const double height =
            bin < curve.filtered.size() ? curve.filtered[bin] : static_cast<double>(curve.counts[bin]);
        if (bin == first || height > row.height) {
            row.height = height;
            row.centre = (static_cast<double>(bin) + 0.5) * curve.bin_width + curve.origin;
        }
    }
    row.from = static_cast<double>(first) * curve.bin_width + curve.origin;
    row.to = static_cast<double>(last + 1) * curve.bin_width + curve.origin;
    row.full_width = row.to - row.from;
    return row;
}

Peak_Row Gauss_Row(const Found_Peak& peak, const Analysed_Curve& curve) {
    Peak_Row row;
    row.centre = (peak.centre + 0.5) * curve.bin_width + curve.origin;
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
        table.rows[k].is_doubtful = !Peak_Doubt_Text(table.rows[k]).empty();
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
    double area = 0.0;
    bool gauss = true;
    for (const Found_Peak& peak : peaks) {
        const bool usable = peak.is_segment || peak.width > 0.0;
        Peak_Row row = peak.is_segment ? Segment_Row(peak, curve) : (usable ? Gauss_Row(peak, curve) : Peak_Row{});
        row.number = static_cast<int>(table.rows.size()) + 1;
        area += std::max(row.area, 0.0);
        table.rows.push_back(row);
        gauss = gauss && usable && !peak.is_segment;
    }
    const double whole = std::max(total, area);
    for (Peak_Row& row : table.rows) {
        row.share = whole > 0.0 ? std::max(row.area, 0.0) / whole : 0.0;
    }
    if (gauss && !peaks.empty()) {
        Overlaps_Split(table.rows);
        Quality_Find(peaks, curve, table);
    }
    return table;
}

std::string Peak_Doubt_Text(const Peak_Row& row) {
    const auto sentence = [&](const char* what, double value, double error) {
        return "Peak " + std::to_string(row.number) + " is doubtful: " + what + " " + With_Error(value, error);
    };
    if (row.height_error > std::abs(row.height)) {
        return sentence("height", row.height, row.height_error);
    }
    if (row.full_width_error > std::abs(row.full_width)) {
        return sentence("full width", row.full_width, row.full_width_error);
    }
    // A centre may be near 0 and well known: it is measured by the peak's width.
    if (row.centre_error > std::abs(row.full_width)) {
        return sentence("centre", row.centre, row.centre_error) + ", more than its width";
    }
    return {};
}

std::array<std::string, PEAK_TITLES.size()> Peak_Cells(const Peak_Row& row) {
    return {std::to_string(row.number) + (row.is_doubtful ? " ?" : ""),
            With_Error(row.centre, row.centre_error),
            With_Error(row.height, row.height_error),
            With_Error(row.full_width, row.full_width_error),
            Number_Text(row.area),
            Number_Text(100.0 * row.share) + " %",
            Number_Text(row.from, DIGITS),
            Number_Text(row.to, DIGITS)};
}

std::string Peak_Row_Text(const Peak_Row& row, char separator) {
    std::string text = std::to_string(row.number);
    for (const double value : {row.centre, row.height, row.full_width, row.area, row.share}) {
        text += separator + Number_Text(value, DIGITS_TEXT);
    }
    return text;
}

std::string Peak_Table_Text(const Peak_Table& table) {
    std::string text =
        "Peak\tCentre\tHeight\tFull width\tArea\tShare\tFrom\tTo\tCentre error\tHeight error\tWidth "
        "error\tDoubtful\n";
    for (const Peak_Row& row : table.rows) {
        text += Peak_Row_Text(row, '\t');
        for (const double value : {row.from, row.to, row.centre_error, row.height_error, row.full_width_error}) {
            text += '\t' + Number_Text(value, DIGITS_TEXT);
        }
        text += row.is_doubtful ? "\tyes\n" : "\tno\n";
    }
    if (table.quality.is_known) {
        text += "R2 (filtered curve)\t" + Number_Text(table.quality.r_squared_filtered, DIGITS_TEXT) +
                "\nR2 (counts)\t" + Number_Text(table.quality.r_squared_counts, DIGITS_TEXT) +
                "\nReduced chi-square\t" + Number_Text(table.quality.reduced_chi_square, DIGITS_TEXT) + "\n";
    }
    return text;
}

std::string Analysis_Full_Text(const Peak_Table& table, const Analysed_Curve& curve, const std::string& source) {
    std::string text = source + "\n";
    const auto line = [&text](const std::string& name, std::initializer_list<double> values) {
        text += name;
        for (const double value : values) {
            text += '\t' + Exact_Text(value);
        }
        text += '\n';
    };
    line("Pixels", {Total(curve.counts)});
    line("Bins", {static_cast<double>(curve.counts.size())});
    line("Lowest edge", {curve.origin});
    line("Bin width", {curve.bin_width});
    if (table.quality.is_known) {
        line("R2 (filtered curve)", {table.quality.r_squared_filtered});
        line("R2 (counts)", {table.quality.r_squared_counts});
        line("Reduced chi-square", {table.quality.reduced_chi_square});
    }
    text +=
        "\nPeak\tCentre\tHeight\tFull width\tArea\tShare\tFrom\tTo\tCentre error\tHeight error\tWidth "
        "error\tDoubtful\n";
    for (const Peak_Row& row : table.rows) {
        line(std::to_string(row.number),
             {row.centre, row.height, row.full_width, row.area, row.share, row.from, row.to, row.centre_error,
              row.height_error, row.full_width_error, row.is_doubtful ? 1.0 : 0.0});
    }
    text += "\nBin\tFrom\tTo\tPixels\tFiltered\n";
    for (std::size_t bin = 0; bin < curve.counts.size(); ++bin) {
        const double from = static_cast<double>(bin) * curve.bin_width + curve.origin;
        const double to = static_cast<double>(bin + 1) * curve.bin_width + curve.origin;
        const double filtered = bin < curve.filtered.size() ? curve.filtered[bin] : 0.0;
        line(std::to_string(bin), {from, to, static_cast<double>(curve.counts[bin]), filtered});
    }
    return text;
}

}  // namespace workbench

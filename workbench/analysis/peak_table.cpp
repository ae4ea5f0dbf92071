#include "workbench/analysis/peak_table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <numbers>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr int PARAMETERS = 3;   // of a Gaussian
constexpr int DIGITS = 4;       // of grey levels in the table
constexpr int DIGITS_TEXT = 6;  // of numbers that other programs read

/** All digits that tell a double from every other one. */
std::string Exact_Text(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

double Level(const Analysed_Curve& curve, std::size_t bin) {
    return (static_cast<double>(bin) + 0.5) * curve.bin_width + curve.origin;
}

double Sum_At(std::span<const Histo_Peak_Info> peaks, double level) {
    double sum = 0.0;
    for (const Histo_Peak_Info& peak : peaks) {
        const double u = 2.0 * (level - peak.centre) / peak.full_width;
        sum += peak.height * std::exp(-std::numbers::ln2 * u * u);
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

Peak_Row Row_Of(const Histo_Peak_Info& peak, const Analysed_Curve& curve) {
    Peak_Row row;
    row.centre = peak.centre;
    row.height = peak.height;
    row.full_width = peak.full_width;
    row.area = peak.area_pixels;
    row.centre_error = peak.centre_error;
    row.height_error = peak.height_error;
    row.full_width_error = peak.full_width_error;
    row.doubt = peak.doubt;
    if (peak.kind == PEAK_SEGMENT) {
        row.from = static_cast<double>(peak.first) * curve.bin_width + curve.origin;
        row.to = static_cast<double>(peak.last + 1) * curve.bin_width + curve.origin;
    } else {
        row.from = peak.centre - peak.full_width / 2.0;
        row.to = peak.centre + peak.full_width / 2.0;
    }
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
double R_Squared(std::span<const Value> values, std::span<const Histo_Peak_Info> peaks, const Analysed_Curve& curve) {
    double mean = 0.0;
    for (const Value value : values) {
        mean += static_cast<double>(value);
    }
    mean /= static_cast<double>(values.size());
    double variance = 0.0;
    double residual = 0.0;
    for (std::size_t bin = 0; bin < values.size(); ++bin) {
        const auto value = static_cast<double>(values[bin]);
        const double left = value - Sum_At(peaks, Level(curve, bin));
        variance += (value - mean) * (value - mean);
        residual += left * left;
    }
    return variance > 0.0 ? 1.0 - residual / variance : 0.0;
}

Fit_Quality Quality_Of(std::span<const Histo_Peak_Info> peaks, const Analysed_Curve& curve) {
    Fit_Quality quality;
    quality.is_known = true;
    quality.r_squared_filtered = R_Squared(curve.filtered, peaks, curve);
    quality.r_squared_counts = R_Squared(curve.counts, peaks, curve);
    double chi_square = 0.0;
    for (std::size_t bin = 0; bin < curve.counts.size(); ++bin) {
        const double residual = curve.counts[bin] - Sum_At(peaks, Level(curve, bin));
        chi_square += residual * residual / std::max(static_cast<double>(curve.counts[bin]), 1.0);
    }
    const double freedom = static_cast<double>(curve.counts.size()) - static_cast<double>(PARAMETERS * peaks.size());
    quality.reduced_chi_square = freedom > 0.0 ? chi_square / freedom : 0.0;
    return quality;
}

}  // namespace

Peak_Table Peak_Table_Make(std::span<const Histo_Peak_Info> peaks, const Analysed_Curve& curve) {
    Peak_Table table;
    double area = 0.0;
    bool is_gauss = !peaks.empty();
    bool has_errors = true;
    for (const Histo_Peak_Info& peak : peaks) {
        Peak_Row row = Row_Of(peak, curve);
        row.number = static_cast<int>(table.rows.size()) + 1;
        area += std::max(row.area, 0.0);
        table.rows.push_back(row);
        is_gauss = is_gauss && peak.kind != PEAK_SEGMENT && peak.full_width > 0.0;
        has_errors = has_errors && peak.has_errors != 0;
    }
    const double whole = std::max(Total(curve.counts), area);
    for (Peak_Row& row : table.rows) {
        row.share = whole > 0.0 ? std::max(row.area, 0.0) / whole : 0.0;
    }
    if (is_gauss) {
        Overlaps_Split(table.rows);
        if (has_errors) {
            table.quality = Quality_Of(peaks, curve);
        }
    }
    return table;
}

std::string Peak_Doubt_Text(const Peak_Row& row) {
    const auto sentence = [&](const char* what, double value, double error) {
        return "Peak " + std::to_string(row.number) + " is doubtful: " + what + " " + With_Error(value, error);
    };
    if ((row.doubt & HISTO_DOUBT_HEIGHT) != 0) {
        return sentence("height", row.height, row.height_error);
    }
    if ((row.doubt & HISTO_DOUBT_WIDTH) != 0) {
        return sentence("full width", row.full_width, row.full_width_error);
    }
    if ((row.doubt & HISTO_DOUBT_CENTRE) != 0) {
        return sentence("centre", row.centre, row.centre_error) + ", more than its width";
    }
    return {};
}

std::array<std::string, PEAK_TITLES.size()> Peak_Cells(const Peak_Row& row) {
    return {std::to_string(row.number) + (row.Is_Doubtful() ? " ?" : ""),
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
        text += row.Is_Doubtful() ? "\tyes\n" : "\tno\n";
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
              row.height_error, row.full_width_error, row.Is_Doubtful() ? 1.0 : 0.0});
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

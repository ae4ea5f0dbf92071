#include "workbench/analysis/export_check.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "workbench/model/line_reader.h"

namespace workbench {

namespace {

constexpr double FILTERED_EXACT = 0.0000005;  // half of the last decimal
constexpr double PEAK_EXACT = 0.005;
constexpr double SINGLE_EXACT = 1e-6;  // share of a number that single precision may lose

/** Takes what stands before the separator, or all. */
std::string_view Cell_Take(std::string_view& line, char separator) {
    const std::size_t end = std::min(line.find(separator), line.size());
    const std::string_view cell = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return cell;
}

template <class Number>
std::optional<Number> Number_Of(std::string_view cell) {
    Number number{};
    const auto [end, code] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    const bool is_number = code == std::errc() && end == cell.data() + cell.size() && !cell.empty();
    return is_number ? std::optional(number) : std::nullopt;
}

std::string Quoted(std::string_view cell) {
    return "\"" + std::string(cell) + "\"";
}

class Checker {
  public:
    Checker(std::string_view of_text, const Export_Expected& what) : text(of_text), expected(what) {}

    Export_Check Run() {
        Equal(Line(), std::string("sep=") + expected.separator, "the separator");
        if (!Line().starts_with("=========== Histogram information (")) {
            Differ("the heading is missing");
        }
        Equal(Line(), "", "an empty line");
        Equal(Line(), Column_Names(), "the names of the columns");
        Bins();
        if (!expected.peaks.empty()) {
            Peaks();
        }
        while (!text.empty()) {
            Equal(Line(), "", "the end of the file");
        }
        return check;
    }

  private:
    std::string_view Line() {
        ++number;
        return Line_Take(text);
    }
    void Differ(const std::string& what) {
        if (check.difference_nb++ < EXPORT_DIFFERENCES_TOLD) {
            check.differences.push_back("line " + std::to_string(number) + ": " + what);
        }
    }
    void Equal(std::string_view is, std::string_view should_be, const char* what) {
        if (is != should_be) {
            Differ(std::string(what) + " should be " + Quoted(should_be) + " and is " + Quoted(is));
        }
    }
    void End(std::string_view rest, const std::string& name) {
        if (!rest.empty()) {
            Differ(name + "there is more than expected: " + Quoted(rest));
        }
    }
    /** @param most largest difference of two numbers that count as the same */
    void Near(std::string_view cell, double should_be, double most, const std::string& what) {
        const std::optional<double> is = Number_Of<double>(cell);
        if (!is || !(std::abs(*is - should_be) <= most)) {
            Differ(what + " should be " + std::to_string(should_be) + " and is " + Quoted(cell));
        }
    }

    bool Has_Filtered() const { return !expected.curve.filtered.empty(); }

    std::string Column_Names() const {
        std::string names = std::string("GLI Value") + expected.separator + "Nb of pixels";
        names += Has_Filtered() ? expected.separator + std::string("Filtered") : "";
        for (const Export_Column& column : expected.columns) {
            names += expected.separator + column.name;
        }
        return names;
    }

    void Bins() {
        const std::size_t nb = expected.curve.counts.size();
        for (std::size_t bin = 0; bin < nb; ++bin) {
            if (text.empty()) {
                Differ("the file ends after " + std::to_string(bin) + " of " + std::to_string(nb) + " bins");
                return;
            }
            Bin(bin, Line());
        }
        Equal(Line(), "", "an empty line");
    }

    void Bin(std::size_t bin, std::string_view line) {
        const std::string name = "bin " + std::to_string(bin) + ", ";
        const Analysed_Curve& curve = expected.curve;
        const double centre = curve.origin + (static_cast<double>(bin) + 0.5) * curve.bin_width;
        const double blur = SINGLE_EXACT * std::max(std::abs(centre), 1.0);
        // A centre that is a whole number may fall to either side of it in single precision.
        const std::string_view level = Cell_Take(line, expected.separator);
        const std::optional<int> is_level = Number_Of<int>(level);
        if (!is_level || (*is_level != std::trunc(centre - blur) && *is_level != std::trunc(centre + blur))) {
            Differ(name + "the grey level should be " + std::to_string(std::llround(std::trunc(centre))) + " and is " +
                   Quoted(level));
        }
        const std::string_view count = Cell_Take(line, expected.separator);
        // Written as a signed number: more than 2^31 - 1 pixels in a bin are negative there.
        const std::optional<std::int32_t> written = Number_Of<std::int32_t>(count);
        const auto pixel_nb = static_cast<std::uint32_t>(written.value_or(0));
        if (!written || pixel_nb != curve.counts[bin]) {
            Differ(name + "the count should be " + std::to_string(curve.counts[bin]) + " and is " + Quoted(count));
        }
        ++check.bin_nb;
        check.pixel_nb += pixel_nb;
        if (Has_Filtered()) {
            const double filtered = bin < curve.filtered.size() ? curve.filtered[bin] : 0.0;
            Near(Cell_Take(line, expected.separator), filtered, FILTERED_EXACT + 1e-12 * std::abs(filtered),
                 name + "the filtered count");
        }
        for (const Export_Column& column : expected.columns) {
            Claim(Cell_Take(line, expected.separator), column, centre, blur, name);
        }
        End(line, name);
    }

    void Claim(std::string_view cell, const Export_Column& column, double centre, double blur,
               const std::string& name) {
        const bool is_inside = column.low <= centre && centre <= column.high;
        const bool is_at_end = std::abs(centre - column.low) <= blur || std::abs(centre - column.high) <= blur;
        const bool is_claimed = cell == "1" && cell != expected.filler;
        const bool should_be = column.is_set && is_inside;
        if ((!is_claimed && cell != expected.filler) || (is_claimed != should_be && !(column.is_set && is_at_end))) {
            Differ(name + column.name + " should be " + Quoted(should_be ? "1" : expected.filler) + " and is " +
                   Quoted(cell));
        }
    }

    void Peaks() {
        Equal(Line(), "", "an empty line");
        Equal(Line(), "", "an empty line");
        Equal(Line(), "We found " + std::to_string(expected.peaks.size()) + " Gausian peaks ", "the number of peaks");
        std::string names;
        for (const char* name : {"Peak Number", "Peak Center", "Peak Height", "Peak Width"}) {
            names += name + std::string(1, expected.separator);
        }
        Equal(Line(), names, "the names of the columns");
        const Analysed_Curve& curve = expected.curve;
        for (const Found_Peak& peak : expected.peaks) {
            std::string_view line = Line();
            const std::string name = "peak " + std::to_string(check.peak_nb + 1) + ", ";
            Equal(Cell_Take(line, expected.separator), std::to_string(check.peak_nb + 1), "the peak's number");
            const auto near = [&](double should_be, const char* what) {
                Near(Cell_Take(line, expected.separator), should_be, PEAK_EXACT + SINGLE_EXACT * std::abs(should_be),
                     name + what);
            };
            near(peak.centre * curve.bin_width + curve.origin, "the centre");
            near(peak.amplitude, "the height");
            near(peak.width, "the width");
            End(line, name);
            ++check.peak_nb;
        }
    }

    std::string_view text;
    const Export_Expected& expected;
    Export_Check check;
    int number = 0;  // of the line that was taken last
};

}  // namespace

Export_Check Export_Check_Text(std::string_view text, const Export_Expected& expected) {
    return Checker(text, expected).Run();
}

std::string Export_Check_Report(const Export_Check& check, const std::string& name) {
    const std::string read = std::to_string(check.bin_nb) + " bins with " + std::to_string(check.pixel_nb) +
                             " pixels and " + std::to_string(check.peak_nb) + " peaks";
    if (check.difference_nb == 0) {
        return name + " agrees with the histogram: " + read + ".\n";
    }
    std::string report = name + " does not agree with the histogram. Read: " + read +
                         ".\nDifferences: " + std::to_string(check.difference_nb) + "\n\n";
    for (const std::string& difference : check.differences) {
        report += difference + "\n";
    }
    if (check.difference_nb > check.differences.size()) {
        report += "and " + std::to_string(check.difference_nb - check.differences.size()) + " more\n";
    }
    return report;
}

}  // namespace workbench

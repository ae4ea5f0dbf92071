/** Compares a histogram file (see docs/export_format.md) with the histogram that it should tell of. Pure code. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/analysis/peak_table.h"

namespace workbench {

/** The column of a TAG. */
struct Export_Column {
    std::string name;  ///< as the file names it
    bool is_set = false;
    float low = 0.0F;  ///< grey levels that the TAG claims, both ends included; nothing unless is_set
    float high = 0.0F;
};

/** A peak as the analysis leaves it and the file tells it, positions in bins. */
struct Found_Peak {
    bool is_segment = false;
    double centre = 0.0;
    double amplitude = 0.0;  ///< counts; segments: first bin
    double width = 0.0;      ///< half width at half height; segments: last bin
};

/** What the file should tell. */
struct Export_Expected {
    char separator = ',';
    std::string filler = "0";  ///< where a TAG does not claim a bin
    Analysed_Curve curve;      ///< `filtered` is empty when there is none; shorter than the counts: 0 from there on
    std::vector<Export_Column> columns;
    std::vector<Found_Peak> peaks;
};

struct Export_Check {
    std::size_t difference_nb = 0;
    std::vector<std::string> differences;  ///< the first ones, each with its line of the file
    std::size_t bin_nb = 0;                ///< bins, pixels and peaks that were read in the file
    std::uint64_t pixel_nb = 0;
    std::size_t peak_nb = 0;
};

inline constexpr std::size_t EXPORT_DIFFERENCES_TOLD = 20;

/** Reads the numbers of the file's text back and compares each with what it should be, as exactly as the file tells it.
 */
Export_Check Export_Check_Text(std::string_view text, const Export_Expected& expected);

/** The result for people, lines separated by \n. @param name of the file */
std::string Export_Check_Report(const Export_Check& check, const std::string& name);

}  // namespace workbench

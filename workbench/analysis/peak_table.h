/** The peaks of an analysis as a table for people, with the quality of the fit. Pure code. */
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "histogram/histo_peaks.h"

namespace workbench {

/** The curve that was analysed. */
struct Analysed_Curve {
    std::span<const std::uint32_t> counts;
    std::span<const double> filtered;  ///< what the fit was made on; may be shorter than counts
    double origin = 0.0;               ///< GLI value of the lower edge of bin 0
    double bin_width = 1.0;            ///< GLI units
};

struct Peak_Row {
    int number = 0;           ///< from 1
    double centre = 0.0;      ///< GLI, at the middle of a bin; segments: of their maximum
    double height = 0.0;      ///< counts; segments: the value of the analysed curve at the centre
    double full_width = 0.0;  ///< GLI: full width at half height; segments: the width of the segment
    double area = 0.0;        ///< pixels; segments: the pixels in it
    double share = 0.0;       ///< of all pixels, 0 .. 1; of all rows together at most 1
    double from = 0.0;        ///< GLI: lower end of the grey levels that the peak claims
    double to = 0.0;          ///< GLI: upper end
    // standard errors; 0 for segments and where they cannot be had
    double centre_error = 0.0;
    double height_error = 0.0;
    double full_width_error = 0.0;
    std::uint8_t doubt = 0;  ///< HISTO_DOUBT_ bits
    bool Is_Doubtful() const { return doubt != 0; }
};

struct Fit_Quality {
    bool is_known = false;            ///< false for segments, without peaks, and where errors cannot be had
    double r_squared_filtered = 0.0;  ///< share of the filtered curve's variance that the peaks explain
    double r_squared_counts = 0.0;    ///< the same of the counts
    double reduced_chi_square = 0.0;  ///< counts against the sum of the peaks, variance of a count = the count, at
                                      ///< least 1; per degree of freedom
};

struct Peak_Table {
    std::vector<Peak_Row> rows;
    Fit_Quality quality;
};

/** Rows in the order of the peaks, with the numbers that the panel gives of them (Histo_Peaks). A Gaussian claims its
 *  centre plus and minus its half width, but not beyond the middle to its neighbours. Gaussians that overlap may have
 *  more area together than there are pixels: shares are then those of the areas' sum.
 *  @param peaks centres, widths and their errors in the grey levels of `curve` */
Peak_Table Peak_Table_Make(std::span<const Histo_Peak_Info> peaks, const Analysed_Curve& curve);

/** Titles of a row's texts. */
inline constexpr std::array<const char*, 8> PEAK_TITLES = {
    "Peak", "Centre (GLI)", "Height", "Full width (GLI)", "Area (pixels)", "Share", "From", "To"};
/** A row as people read it, with errors; a doubtful peak's number has a question mark. UTF-8 */
std::array<std::string, PEAK_TITLES.size()> Peak_Cells(const Peak_Row& row);
/** What makes a peak doubtful, as a sentence; empty when it is not. */
std::string Peak_Doubt_Text(const Peak_Row& row);

/** Number, centre, height, full width, area and share, separated by `separator`, six significant digits. */
std::string Peak_Row_Text(const Peak_Row& row, char separator);
/** The table as text, columns separated by tabs, for the clipboard. Six significant digits. */
std::string Peak_Table_Text(const Peak_Table& table);
/** Everything that is known of an analysis, numbers as exact as they are: peaks, and every bin of the curve. Columns
 * are separated by tabs, lines end with \n. @param source lines that tell what was counted, UTF-8 */
std::string Analysis_Full_Text(const Peak_Table& table, const Analysed_Curve& curve, const std::string& source);

}  // namespace workbench

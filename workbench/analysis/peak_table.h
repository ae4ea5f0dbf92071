/** The peaks of an analysis as a table for people, with the quality of the fit. Pure code. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/** A peak as the analysis leaves it, positions in bins. */
struct Found_Peak {
    bool is_segment = false;
    double centre = 0.0;
    double amplitude = 0.0;  ///< counts; segments: first bin
    double width = 0.0;      ///< half width at half height; segments: last bin
};

/** The curve that was analysed. */
struct Analysed_Curve {
    std::span<const std::uint32_t> counts;
    std::span<const double> filtered;  ///< what the fit was made on; may be shorter than counts
    double origin = 0.0;               ///< GLI value of the lower edge of bin 0
    double bin_width = 1.0;            ///< GLI units
};

struct Peak_Row {
    int number = 0;           ///< from 1
    double centre = 0.0;      ///< GLI, at the middle of a bin
    double height = 0.0;      ///< counts
    double full_width = 0.0;  ///< GLI: full width at half height; segments: the width of the segment
    double area = 0.0;        ///< pixels; segments: the pixels in it
    double share = 0.0;       ///< of all pixels, 0 .. 1
    double from = 0.0;        ///< GLI: lower end of the grey levels that the peak claims
    double to = 0.0;          ///< GLI: upper end
    // standard errors, from the inverse of the normal matrix; 0 for segments and where they cannot be had
    double centre_error = 0.0;
    double height_error = 0.0;
    double full_width_error = 0.0;
};

struct Fit_Quality {
    bool is_known = false;            ///< false for segments, without peaks, and when the normal matrix is singular
    double r_squared_filtered = 0.0;  ///< share of the filtered curve's variance that the peaks explain
    double r_squared_counts = 0.0;    ///< the same of the counts
    double reduced_chi_square = 0.0;  ///< counts against the sum of the peaks, variance of a count = the count, at
                                      ///< least 1; per degree of freedom
};

struct Peak_Table {
    std::vector<Peak_Row> rows;
    Fit_Quality quality;
};

/** Rows in the order of the peaks. A Gaussian claims its centre plus and minus its half width, but not beyond the
 * middle to its neighbours. */
Peak_Table Peak_Table_Make(std::span<const Found_Peak> peaks, const Analysed_Curve& curve);

/** A value with its standard error for people: the error with two significant digits, the value as exactly as that,
 * both without an exponent (but beyond 15 digits). An error of 0 or one that is no number leaves the value alone.
 *  @param decimals of the value where it stands alone, and at most
 *  @return UTF-8 */
std::string With_Error(double value, double error, int decimals);

/** The table as text, columns separated by tabs, for the clipboard. */
std::string Peak_Table_Text(const Peak_Table& table);

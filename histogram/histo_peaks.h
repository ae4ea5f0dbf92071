/** @file
 *  The peaks of an analysis as numbers, and a fit that finds the same peaks again.
 */
#pragma once

#include <cstdint>

#include "histogram/histo_peak.h"
#include "panels/protocol/kit_panels.h"

class Tool_Histo;

///@{
/** What makes a fitted peak doubtful: a standard error larger than what it belongs to. A centre may be near 0 and well
 *  known, so it is measured by the peak's full width. */
inline constexpr std::uint8_t HISTO_DOUBT_HEIGHT = 1;
inline constexpr std::uint8_t HISTO_DOUBT_WIDTH = 2;
inline constexpr std::uint8_t HISTO_DOUBT_CENTRE = 4;
///@}

/** A peak in the units of the histogram: grey levels (GLI) and pixels. Bin k covers the grey levels from k *
 *  `bin_width` + `origin` to (k + 1) * `bin_width` + `origin` of the record; a position in bins is the middle of its
 *  bin. */
struct Histo_Peak_Info {
    std::uint8_t kind = PEAK_NONE;  ///< PEAK_GAUSS (Fit_Gaussian) or PEAK_SEGMENT (Fit_Derivative)
    std::uint8_t doubt = 0;         ///< HISTO_DOUBT_ bits; 0 for segments and where the errors are not known
    std::uint8_t has_errors = 0;    ///< 1 when the standard errors below are known
    std::int32_t first = -1;        ///< first bin of a segment; -1 for other kinds
    std::int32_t last = -1;         ///< last bin of a segment, inclusive; -1 for other kinds
    double centre = 0.0;            ///< GLI; of a segment the middle of its highest bin
    double height = 0.0;            ///< pixels per bin; of a segment the analysed curve's value at the centre
    double full_width = 0.0;        ///< GLI: at half height; of a segment all its bins
    double area_pixels = 0.0;       ///< pixels: under the whole curve of the peak; of a segment those counted in it
    double area_levels = 0.0;       ///< pixels times GLI: the same area with grey levels as the unit of the width
    ///@{
    /** Standard errors, from the inverse of the fit's normal matrix and what the peaks leave of the filtered curve; 0
     *  when they are not known: for segments, for fewer bins than parameters, and when the matrix has no inverse. */
    double centre_error = 0.0;      ///< GLI
    double height_error = 0.0;      ///< pixels per bin
    double full_width_error = 0.0;  ///< GLI
    ///@}
};

/** The peaks of the panel's last analysis, by ascending centre. Reads only: nothing is drawn, told or kept, and nobody
 *  is called. Ask after the analysis and before the next computation: the peaks stand in the bins that were analysed
 *  and are turned into grey levels by the record of now.
 *  @param panel whose analysis it was
 *  @param out receives the first `most` peaks; may be null when `most` is 0
 *  @param most room in `out`; below 0 counts as 0
 *  @return number of peaks that there are, which may be more than `most`; 0 without counts, without an analysis and
 *  when it found none */
KIT_PANELS_API int Histo_Peaks(const Tool_Histo& panel, Histo_Peak_Info* out, int most);

/** Tool_Histo::Fit_Gaussian as the first fit of a process: the same counts give the same peaks, whatever was fitted
 *  before. It tells what Fit_Gaussian tells and may let the host destroy the panel as that one does.
 *  @return as Tool_Histo::Fit_Gaussian */
KIT_PANELS_API int Histo_Fit_Repeatable(Tool_Histo& panel);

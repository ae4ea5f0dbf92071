/** @file
 *  The peaks that an analysis of a histogram leaves: what a host reads of them.
 */
#pragma once

#include <cstdint>

#include "host/kit_common.h"

///@{
/** Shape of a peak. An analysis makes PEAK_SEGMENT (Tool_Histo::Fit_Derivative) or PEAK_GAUSS
 * (Tool_Histo::Fit_Gaussian).
 */
inline constexpr std::uint8_t PEAK_NONE = 0;
inline constexpr std::uint8_t PEAK_LORENTZ = 1;
inline constexpr std::uint8_t PEAK_GAUSS = 2;
inline constexpr std::uint8_t PEAK_MIXED = 3;  ///< half Lorentzian, half Gaussian
inline constexpr std::uint8_t PEAK_SEGMENT = 4;
///@}

inline constexpr int PEAK_PARAM_NB = 3;  ///< parameters of every peak

///@{
/** Index of a parameter of a shape: the centre (bins, fractional), the amplitude (counts), the half width at half
 * height (bins). */
inline constexpr int PEAK_CENTRE = 0;
inline constexpr int PEAK_AMPLITUDE = 1;
inline constexpr int PEAK_WIDTH = 2;
///@}

///@{
/** Index of a parameter of a segment, besides PEAK_CENTRE (the bin of the maximum): its first and its last bin. Whole
 * numbers. */
inline constexpr int SEGMENT_FIRST = 1;
inline constexpr int SEGMENT_LAST = 2;
///@}

/** Value of a shape (counts) at a position (bins). */
using Peak_Value_Fct = double (*)(std::uint8_t type, double position, Vector_N& param);
/** Its partial derivative by the parameter `index`. */
using Peak_Deriv_Fct = double (*)(std::uint8_t type, std::uint8_t index, double position, Vector_N& param);

/** One peak of Histo_Data::peak_first, by ascending centre. Bins are those of the analysis, and a whole position is
 *  the middle of its bin: the grey level of a position is (position + 0.5) * `bin_width` + `origin` of the record that
 *  was analysed, as in Histo_Peak_Info.
 *  Contract: the exported file, and with it the labels of the enlarged window, name centres without that half bin.
 *
 *  The panel's data own the record, the record its vectors and its curve: all of it is read only for a host, and gone
 *  with the next analysis and with the last panel that shares the data. */
struct Histo_Peak {
    std::uint8_t type = PEAK_NONE;          ///< PEAK_GAUSS, PEAK_SEGMENT ...
    std::uint8_t nb_param = PEAK_PARAM_NB;  ///< always PEAK_PARAM_NB
    Vector_N* param = nullptr;              ///< PEAK_PARAM_NB values; never null in a list
    Vector_N* param_min = nullptr;          ///< lower bounds of the fit; null for segments
    Vector_N* param_max = nullptr;          ///< upper bounds of the fit; null for segments
    Peak_Value_Fct fct_value = nullptr;     ///< evaluates the shape, whatever `type` says; null for segments
    Peak_Deriv_Fct fct_deriv = nullptr;     ///< its derivatives; null for segments
    Histo_Peak* next = nullptr;             ///< null at the end
    Histo_Peak* prev = nullptr;             ///< null at the head
    std::int32_t nb_pts = 0;                ///< values of `curve`
    float* curve = nullptr;  ///< the peak's own curve at every bin, zeros for a segment; null when there was no memory
};

/** Peaks of a histogram analysis: the record, the shapes and the services on the panel's list. */
#pragma once

#include <cstdint>

#include "host/kit_common.h"
#include "panels/protocol/kit_panels.h"

struct Histo_Data;
class Tool_Histo;
struct Histo_Peak;

/** Shape codes. */
inline constexpr std::uint8_t PEAK_NONE = 0;
inline constexpr std::uint8_t PEAK_LORENTZ = 1;
inline constexpr std::uint8_t PEAK_GAUSS = 2;
inline constexpr std::uint8_t PEAK_MIXED = 3;
inline constexpr std::uint8_t PEAK_SEGMENT = 4;

inline constexpr int PEAK_PARAM_NB = 3;
/** Index of a parameter. Shapes: centre (bins, fractional), amplitude (counts), width (half width at half height,
 * bins). */
inline constexpr int PEAK_CENTRE = 0;
inline constexpr int PEAK_AMPLITUDE = 1;
inline constexpr int PEAK_WIDTH = 2;
/** Segments: centre bin, first bin, last bin. */
inline constexpr int SEGMENT_FIRST = 1;
inline constexpr int SEGMENT_LAST = 2;

using Peak_Value_Fct = double (*)(std::uint8_t type, double position, Vector_N& param);
using Peak_Deriv_Fct = double (*)(std::uint8_t type, std::uint8_t index, double position, Vector_N& param);

/** One peak. The record owns its vectors and its curve; the panel owns the record. */
struct Histo_Peak {
    std::uint8_t type = PEAK_NONE;
    std::uint8_t nb_param = PEAK_PARAM_NB;
    Vector_N* param = nullptr;           ///< PEAK_PARAM_NB values
    Vector_N* param_min = nullptr;       ///< lower bounds; null for segments
    Vector_N* param_max = nullptr;       ///< upper bounds; null for segments
    Peak_Value_Fct fct_value = nullptr;  ///< null for segments
    Peak_Deriv_Fct fct_deriv = nullptr;  ///< null for segments
    Histo_Peak* next = nullptr;
    Histo_Peak* prev = nullptr;
    std::int32_t nb_pts = 0;  ///< values of `curve`
    float* curve = nullptr;   ///< the peak's own curve at every bin, or null
};

/** A zero-filled record of a type with `param` and, for fits, bounds. @return null without memory */
Histo_Peak* Peak_Make(std::uint8_t type, bool with_bounds);
/** Frees a record with its vectors and its curve; it must be out of every list. */
void Peak_Free(Histo_Peak* peak);
/** Appends a record to the panel's list; an empty tail makes it the head. Moves the tail and counts the peak. */
void Peak_Append(Histo_Data& data, Histo_Peak*& tail, Histo_Peak* peak);
void Peak_Append(Tool_Histo& panel, Histo_Peak*& tail, Histo_Peak* peak);

// Settings of the analysis, process-wide: one analysis at a time.
extern float peak_width_max;    ///< widest peak that stays, bins; bin count / 5 of the last fit
extern float peak_centre_tol;   ///< how far a centre may drift, bins
extern float peak_data_min;     ///< smallest filtered value of a data peak, counts
extern float peak_mix_ratio;    ///< weight of the Lorentzian in the mixed shape
extern std::int32_t last_zero;  ///< bin of the last downward zero crossing seen; never reset

/** Shape value and partial derivative at a position (bins) for a parameter vector; see peak_shapes.h. */
double Peak_Value(std::uint8_t type, double position, Vector_N& param);
double Peak_Deriv(std::uint8_t type, std::uint8_t index, double position, Vector_N& param);
/** A new array (the caller frees it with delete[]) of the shape's values at 0 .. n - 1; null when the centre is exactly
 * 0 and on failure (reported). */
double* Peak_Curve(std::uint8_t type, int n, Vector_N& param);

/** Candidate by a zero crossing of the derivative. @return 0, or the bins to skip; see Zero_Peak_Test */
int Peak_Is_Zero_Peak(int n, const float* derivative, int x, int gap, float slope);
/** Candidate by the data: a maximum at x - 1 that stands at least min_drop above a neighbour. @return 1 or 0 */
int Peak_Is_Data_Peak(int n, const double* filtered, int x, int half, float min_drop);
/** Takes a peak out of the panel's list and frees it; the reason, made by printf rules (at most 1023 characters), is
 * traced. */
void Peak_Delete(Histo_Data& data, Histo_Peak* peak, const char* format, ...) KIT_PRINTF_FORMAT(3, 4);
void Peak_Delete(Tool_Histo& panel, Histo_Peak* peak, const char* format, ...) KIT_PRINTF_FORMAT(3, 4);

/** Fills `curve` (nb_bins values) from the record's counts as chosen by the colour component: 0 the fourth array, 1 to
 * 3 red, green, blue, 4 all. Any other component gives zeros. */
void Peak_Source_Curve(const Tool_Histo& panel, double* curve);
/** Derivative method over a curve of n bins. */
void Peak_Find_Segments(Tool_Histo& panel, int n, const double* curve, std::uint8_t max_peak);
/** A segment record at the tail. @return null without memory (reported) */
Histo_Peak* Peak_Segment_Add(Tool_Histo& panel, Histo_Peak*& tail, std::int32_t centre, std::int32_t first,
                             std::int32_t last);
/** Gaussian fit over a curve of n bins: filter, candidates, Gauss-Newton, curves. */
void Peak_Fit_Prepare(Histo_Data& data, int n, const double* curve);
void Peak_Fit_Prepare(Tool_Histo& panel, int n, const double* curve);
/** A Gaussian candidate at the tail: amplitude factor x filtered value, bounds by the settings. @return null without
 * memory (reported) */
Histo_Peak* Peak_Gauss_Add(Histo_Data& data, Histo_Peak*& tail, int x, float amplitude_factor, float width);
Histo_Peak* Peak_Gauss_Add(Tool_Histo& panel, Histo_Peak*& tail, int x, float amplitude_factor, float width);
/** Refines all peaks together by Gauss-Newton least squares with bounded parameters: at most ten undamped steps,
 * pruning after each. */
void Gauss_Newton(Histo_Data& peaks, std::uint16_t n, const double* data, double threshold);
void Gauss_Newton(Tool_Histo& panel, std::uint16_t n, const double* data, double threshold);

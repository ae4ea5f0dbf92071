/** The services of the peak analysis: records and their list, shapes, candidates, the two methods. */
#pragma once

#include <cstdint>

#include "histogram/histo_peak.h"
#include "histogram/peak_shapes.h"

struct Histo_Data;

inline constexpr unsigned char ELEMENT_SIZE = 8;  ///< bytes, of the host's vectors and matrices
inline constexpr int TRACE_STEP = 11;             ///< trace level that tells the steps of an analysis

/** A zero-filled record of a type with `param` and, for fits, bounds. @return null without memory */
Histo_Peak* Peak_Make(std::uint8_t type, bool with_bounds);
/** Frees a record with its vectors and its curve; it must be out of every list. */
void Peak_Free(Histo_Peak* peak);
/** Appends a record to the list; an empty tail makes it the head. Moves the tail and counts the peak. */
void Peak_Append(Histo_Data& data, Histo_Peak*& tail, Histo_Peak* peak);

// Settings of the analysis, process-wide: one analysis at a time.
extern float peak_width_max;    ///< widest peak that stays, bins; bin count / 5 of the last fit
extern float peak_centre_tol;   ///< how far a centre may drift, bins
extern float peak_data_min;     ///< smallest filtered value of a data peak, counts
extern float peak_mix_ratio;    ///< weight of the Lorentzian in the mixed shape
extern std::int32_t last_zero;  ///< bin of the last downward zero crossing seen; reset by Histo_Fit_Gaussian_First only

/** Shape value and partial derivative at a position (bins) for a parameter vector; see peak_shapes.h. */
double Peak_Value(std::uint8_t type, double position, Vector_N& param);
double Peak_Deriv(std::uint8_t type, std::uint8_t index, double position, Vector_N& param);
/** A new array (the caller frees it with delete[]) of the shape's values at 0 .. n - 1; null when the centre is exactly
 * 0 and on failure (reported). */
double* Peak_Curve(std::uint8_t type, int n, Vector_N& param);
/** The bins of 0 .. nb_bins - 1 in which a peak may differ from 0: the cut-off of a Gaussian that Peak_Value evaluates,
 * all of them for every other record. */
Bin_Span Peak_Support(const Histo_Peak& peak, int nb_bins);

/** Candidate by a zero crossing of the derivative. @return 0, or the bins to skip; see Zero_Peak_Test */
int Peak_Is_Zero_Peak(int n, const float* derivative, int x, int gap, float slope);
/** Candidate by the data: a maximum at x - 1 that stands at least min_drop above a neighbour. @return 1 or 0 */
int Peak_Is_Data_Peak(int n, const double* filtered, int x, int half, float min_drop);
/** Takes a peak out of the list and frees it; the reason, made by printf rules (at most 1023 characters), is traced. */
void Peak_Delete(Histo_Data& data, Histo_Peak* peak, const char* format, ...) KIT_PRINTF_FORMAT(3, 4);

/** Where a failed allocation is reported: under this line of this file. */
struct Peak_Report {
    int line = 0;
    const char* source = nullptr;
};
/** Clears what the last analysis left and makes `filtered` and `derivative` for n bins. @return false without memory
 * (reported): there are no curves then */
bool Peak_Analysis_Begin(Histo_Data& data, int n, const Peak_Report& report);
/** Gives every peak its own curve over the bins of the analysis: zeros for segments. Stops at the first one without
 * memory (reported): the rest keep none. */
void Peak_Curves_Make(Histo_Data& data, const Peak_Report& report);

/** Derivative method over a curve of n bins. */
void Peak_Find_Segments(Histo_Data& data, int n, const double* curve, std::uint8_t max_peak);
/** A segment record at the tail. @return null without memory (reported) */
Histo_Peak* Peak_Segment_Add(Histo_Data& data, Histo_Peak*& tail, std::int32_t centre, std::int32_t first,
                             std::int32_t last);
/** Gaussian fit over a curve of n bins: filter, candidates, Gauss-Newton, curves. */
void Peak_Fit_Prepare(Histo_Data& data, int n, const double* curve);
/** A Gaussian candidate at the tail: amplitude factor x filtered value, bounds by the settings. @return null without
 * memory (reported) */
Histo_Peak* Peak_Gauss_Add(Histo_Data& data, Histo_Peak*& tail, int x, float amplitude_factor, float width);
/** Refines all peaks together by Gauss-Newton least squares with bounded parameters: at most ten undamped steps,
 * pruning after each. */
void Gauss_Newton(Histo_Data& peaks, std::uint16_t n, const double* data, double threshold);

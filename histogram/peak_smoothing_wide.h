/** The AVX2 form of the smoothing loop; call it only where Processor_Has_Avx2() holds. */
#pragma once

#include "histogram/peak_smoothing_kernel.h"

inline constexpr int SMOOTHING_WIDE_LANES = 16;

/** `passes` (1 .. SMOOTHING_WIDE_LANES) passes over a curve of n >= 4 x SMOOTHING_WIDE_LANES bins. @param maxima
 * receives SMOOTHING_WIDE_LANES counts, one per pass; those that were not made are of no meaning */
void Smoothing_Group_Wide(double* curve, int n, float threshold, int passes, int* maxima);

/** See peak_smoothing_ring.h. */
using Smoothing_Wide_Lanes = Smoothing_Lanes<SMOOTHING_WIDE_LANES>;
void Smoothing_Ring_Begin_Wide(Smoothing_Wide_Lanes& lanes, const double* curve, int n, double* history,
                               float threshold);
void Smoothing_Ring_Turn_Wide(Smoothing_Wide_Lanes& lanes, int n, double* history, float threshold, bool is_first,
                              int* counts);

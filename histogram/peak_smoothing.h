/** Repeated smoothing of a curve until it has few enough maxima: the numeric core of the derivative peak finder. Pure
 *  code over spans.
 *
 *  One pass smooths in place, ascending: every bin becomes the weighted mean of itself (2), its already smoothed left
 *  neighbour (1; not for bin 1) and its right neighbour (1). Then bin 0 takes bin 1's value. Passes accumulate.
 *
 *  Contract: users of images with much background find its bin 0 apart from their peaks: it never enters a mean.
 *
 *  After every pass the maxima of the thresholded curve are counted: the bins i with d[i] >= 0 and d[i + 1] < 0 of the
 *  derivative below.
 */
#pragma once

#include <cstddef>
#include <span>

/** Receives the number of maxima after each pass, in order of the passes. */
using Smoothing_Pass_Sink = void (*)(void* context, int pass, int maxima);

struct Smoothing_Options {
    float threshold = 0.0F;  ///< counts below it are taken as it; infinite or not a number: no maxima at all
    int max_maxima = 0;      ///< smoothing stops after the first pass that leaves at most this many
    int max_passes = 1;      ///< and after this many passes in any case; at least 1
};

struct Smoothing_Result {
    int passes = 0;  ///< passes made
    int maxima = 0;  ///< maxima after the last one
};

/** Instruction sets of the smoothing loop. All give the same bits. */
enum class Smoothing_Path {
    Plain,     ///< one pass at a time
    Baseline,  ///< several passes in flight, two bins apart, SSE2
    Wide,      ///< the same with AVX2; only where the processor has it
};

/** The fastest path that this processor runs. */
Smoothing_Path Smoothing_Path_Best();

/** Numbers of scratch memory that a curve of `bins` bins is smoothed fastest with: for short curves more than bins, so
 * that no pass is made twice. */
std::size_t Smoothing_Scratch_Nb(std::size_t bins);

/** Smooths `curve` (2 bins or more) in place. Allocates nothing inside the loop.
 *  @param scratch Smoothing_Scratch_Nb numbers; with less, but as many as the curve has bins, a short curve takes
 *  longer; with less than that the plain path is taken
 *  @param sink    may be null
 */
Smoothing_Result Smooth_To_Maxima(std::span<double> curve, std::span<double> scratch, const Smoothing_Options& options,
                                  Smoothing_Path path, Smoothing_Pass_Sink sink, void* context);

/** The derivative of the thresholded curve, in single precision: d[i] = max(0, f[i + 1] - T) - max(0, f[i - 1] - T) for
 * i = 1 .. n - 2, d[0] = 0, d[n - 1] = d[n - 2]. Each f is rounded to single precision before T is subtracted. Both
 * spans have n >= 2 bins. */
void Thresholded_Derivative(std::span<const double> curve, float threshold, std::span<float> derivative);

/** The loop of peak_smoothing.cpp for short curves and one instruction set: LANES passes in flight, two bins apart, as
 *  in peak_smoothing_kernel.h, but a lane that has reached the end of the curve begins the next pass that nobody has at
 *  once, while the others still come to their ends. So no lane ever waits, where a group of passes that begins and ends
 *  by itself stands idle for 2 x LANES steps of each: much of a curve of 256 bins.
 *
 *  Time runs in turns of n steps; lane k works on bin t - 2k in step t of a turn. Every step leaves what all lanes made
 *  as a row of the history: from there lane 0 takes what the last lane made one turn ago, and there the last pass is
 *  found when the wanted number of maxima is met, whichever lane made it. Nothing is made twice.
 *
 *  Included once per instruction set, like the kernel, and calls nothing of the standard library.
 */
#pragma once

#include "histogram/peak_smoothing_kernel.h"

/** Numbers of the history for n bins. */
template <int LANES>
constexpr int Smoothing_History_Nb(int n) {
    return (n + 2 * LANES + 1) * LANES;
}

/** The history's row of step t, which may be -1. */
template <int LANES>
constexpr int Smoothing_History_Row(int t) {
    return (t + 1) * LANES;
}

/** The steps first .. last of a turn. Lane 0 takes its right neighbours from the rows of the steps behind + first ..
 *  behind + last. With EDGES every other step, beginning with the first, ends the pass of one lane and begins one of
 *  the lane before it; counts[k] receives the maxima of the pass that lane k ends. */
template <class Set, bool EDGES>
inline void Smoothing_Ring_Steps(Smoothing_Lanes<Set::LANES>& lanes, double* history, int first, int last, int behind,
                                 float threshold, int* counts) {
    typename Set::Double made[Set::DOUBLES];
    typename Set::Double waiting[Set::DOUBLES];
    typename Set::Float level_1[Set::FLOATS];
    typename Set::Float level_2[Set::FLOATS];
    typename Set::Float fell[Set::FLOATS];
    typename Set::Integer maxima[Set::FLOATS];
    constexpr int width = 2 * Set::WIDTH;  // of a vector of floats
    for (int v = 0; v < Set::DOUBLES; ++v) {
        made[v] = Set::Load(lanes.made + v * Set::WIDTH);
        waiting[v] = Set::Load(lanes.waiting + v * Set::WIDTH);
    }
    for (int v = 0; v < Set::FLOATS; ++v) {
        level_1[v] = Set::Load(lanes.level_1 + v * width);
        level_2[v] = Set::Load(lanes.level_2 + v * width);
        fell[v] = Set::Load_Mask(lanes.fell + v * width);
        maxima[v] = Set::Load_Counts(lanes.maxima + v * width);
    }
    // Read from LANES - k on, the mark stands in lane k.
    double marks[2 * Set::LANES + 1] = {};
    float float_marks[2 * Set::LANES + 1] = {};
    marks[Set::LANES] = 1.0;
    float_marks[Set::LANES] = 1.0F;
    const typename Set::Double nothing = Set::All(-0.0);  // added to anything it changes nothing, not even a sign
    const typename Set::Double quarter = Set::All(0.25);
    const typename Set::Float limit = Set::All(threshold);
    const double* before = history + Smoothing_History_Row<Set::LANES>(behind + first) + Set::LANES - 1;
    double* row = history + Smoothing_History_Row<Set::LANES>(first);
    for (int t = first; t <= last; ++t, before += Set::LANES, row += Set::LANES) {
        const bool turns = EDGES && (t - first) % 2 == 0;
        const int ending = (t - first) / 2;
        typename Set::Double right[Set::DOUBLES];
        for (int v = Set::DOUBLES - 1; v > 0; --v) {
            right[v] = Set::Shift(made[v - 1], made[v]);
        }
        right[0] = Set::Shift_In(*before, made[0]);
        for (int v = 0; v < Set::DOUBLES; ++v) {
            const typename Set::Double twice = Set::Add(waiting[v], waiting[v]);
            typename Set::Double mean = Set::Multiply(Set::Add(Set::Add(twice, made[v]), right[v]), quarter);
            if (turns) {
                const double* marked = marks + Set::LANES - ending + v * Set::WIDTH;
                const typename Set::Double ends = Set::Is_Less(Set::All(0.0), Set::Load(marked));
                const typename Set::Double starts = Set::Is_Less(Set::All(0.0), Set::Load(marked + 1));
                const typename Set::Double sum = Set::Add(Set::Add(twice, Set::Select(starts, nothing, made[v])),
                                                          Set::Select(ends, nothing, right[v]));
                mean = Set::Select(Set::Or(starts, ends), Set::Divide(sum, Set::All(3.0)), mean);
            }
            made[v] = mean;
            waiting[v] = right[v];
            Set::Store(row + v * Set::WIDTH, made[v]);
        }
        for (int v = 0; v < Set::FLOATS; ++v) {
            const typename Set::Float level = Set::Positive(Set::Subtract(Set::Narrow(made + 2 * v), limit));
            typename Set::Float falls = Set::Is_Less(level, level_2[v]);
            maxima[v] = Set::Count(maxima[v], fell[v], falls);
            level_2[v] = level_1[v];
            if (turns) {
                Set::Store_Counts(lanes.maxima + v * width, maxima[v]);
                const float* marked = float_marks + Set::LANES - ending + 1 + v * width;
                const typename Set::Float starts = Set::Is_Less(Set::All(0.0F), Set::Load(marked));
                falls = Set::Without(falls, starts);
                maxima[v] = Set::Without(maxima[v], starts);
                level_2[v] = Set::Select(starts, level, level_2[v]);
            }
            fell[v] = falls;
            level_1[v] = level;
        }
        if (turns && ending < Set::LANES) {
            counts[ending] = lanes.maxima[ending];
        }
    }
    for (int v = 0; v < Set::DOUBLES; ++v) {
        Set::Store(lanes.made + v * Set::WIDTH, made[v]);
        Set::Store(lanes.waiting + v * Set::WIDTH, waiting[v]);
    }
    for (int v = 0; v < Set::FLOATS; ++v) {
        Set::Store(lanes.level_1 + v * width, level_1[v]);
        Set::Store(lanes.level_2 + v * width, level_2[v]);
        Set::Store_Mask(lanes.fell + v * width, fell[v]);
        Set::Store_Counts(lanes.maxima + v * width, maxima[v]);
    }
}

/** One lane after the other begins its first pass over a curve of n >= 4 x LANES bins.
 *  @param history receives the curve too */
template <class Set>
inline void Smoothing_Ring_Begin(Smoothing_Lanes<Set::LANES>& lanes, const double* curve, int n, double* history,
                                 float threshold) {
    constexpr int behind = 2 * (Set::LANES - 1);
    for (int bin = 0; bin < n; ++bin) {
        history[Smoothing_History_Row<Set::LANES>(bin + behind) + Set::LANES - 1] = curve[bin];
    }
    int none[Set::LANES] = {};
    Smoothing_Ring_Steps<Set, true>(lanes, history, -1, 2 * Set::LANES - 1, behind + 1, threshold, none);
}

/** Ends LANES passes and begins the next.
 *  @param counts receives their maxima; bin b of the pass that lane k ended stands in column k of the history's row of
 *  step b + 2k until the next turn */
template <class Set>
inline void Smoothing_Ring_Turn(Smoothing_Lanes<Set::LANES>& lanes, int n, double* history, float threshold,
                                bool is_first, int* counts) {
    constexpr int behind = 2 * (Set::LANES - 1);
    constexpr int lapped = 2 * Set::LANES + 1;  // steps that belong to two turns
    if (!is_first) {
        const double* from = history + Smoothing_History_Row<Set::LANES>(n - 1);
        for (int i = 0; i < lapped * Set::LANES; i += Set::WIDTH) {
            Set::Store(history + i, Set::Load(from + i));
        }
    }
    Smoothing_Ring_Steps<Set, false>(lanes, history, 2 * Set::LANES, n - 2, behind + 1, threshold, counts);
    Smoothing_Ring_Steps<Set, true>(lanes, history, n - 1, n - 1 + 2 * Set::LANES, behind + 1 - n, threshold, counts);
}

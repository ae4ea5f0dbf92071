/** The loop of peak_smoothing.cpp for one instruction set: LANES passes in flight, two bins apart.
 *
 *  Pass p + 1 may treat a bin once pass p has treated the next one. So lane k works on bin s - 2k in step s: its right
 *  neighbour is what lane k - 1 made in the step before, its own old value what lane k - 1 made two steps before. One
 *  step costs the latency of two additions and one multiplication, whatever the number of lanes. x 0.25 equals / 4
 *  exactly.
 *
 *  Included once per instruction set. Calls nothing of the standard library: an inline function compiled here for a
 *  newer processor could be the copy that the linker keeps for everybody.
 */
#pragma once

/** State of all lanes between the scalar ends of the curve and the vector middle. */
template <int LANES>
struct Smoothing_Lanes {
    alignas(32) double made[LANES];     ///< what each lane made in the last step
    alignas(32) double waiting[LANES];  ///< the value of the pass before at the bin that each lane treats next
    alignas(32) float level_1[LANES];   ///< thresholded value one bin back
    alignas(32) float level_2[LANES];   ///< two bins back
    alignas(32) int fell[LANES];        ///< -1: the derivative one bin back was negative, else 0
    alignas(32) int maxima[LANES];
};

/** One lane, one bin, with the rules of both ends of the curve. `right` is the pass before at bin + 1 (not used at the
 * last bin). */
template <int LANES>
inline void Smoothing_Lane_Step(Smoothing_Lanes<LANES>& lanes, int lane, int bin, int n, double right,
                                float threshold) {
    const double own = lanes.waiting[lane];
    double sum = 2.0 * own;
    double weight = 2.0;
    if (bin > 1) {
        sum += lanes.made[lane];
        weight = 3.0;
    }
    if (bin < n - 1) {
        sum += right;
        weight += 1.0;
    }
    const double made = sum / weight;
    lanes.made[lane] = made;
    const float above = static_cast<float>(made) - threshold;
    const float level = above > 0.0F ? above : 0.0F;
    if (bin == 1) {
        lanes.level_1[lane] = level;
        lanes.level_2[lane] = level;  // bin 0 has bin 1's value
        lanes.fell[lane] = 0;
        lanes.maxima[lane] = 0;
        return;
    }
    const float slope = level - lanes.level_2[lane];
    const int falls = slope < 0.0F ? -1 : 0;
    lanes.maxima[lane] += (falls & ~lanes.fell[lane]) & 1;
    lanes.fell[lane] = falls;
    lanes.level_2[lane] = lanes.level_1[lane];
    lanes.level_1[lane] = level;
}

/** One step of all lanes near an end of the curve. */
template <int LANES>
inline void Smoothing_End_Step(Smoothing_Lanes<LANES>& lanes, double* curve, int step, int n, float threshold) {
    // From the last lane down: each lane reads what the lane before it made in the previous step.
    for (int lane = LANES - 1; lane >= 0; --lane) {
        const int bin = step - 2 * lane;
        if (bin < 0 || bin > n - 1) {
            continue;
        }
        double right = 0.0;
        if (bin < n - 1) {
            right = lane == 0 ? curve[bin + 1] : lanes.made[lane - 1];
        }
        if (bin > 0) {
            Smoothing_Lane_Step(lanes, lane, bin, n, right, threshold);
            if (lane == LANES - 1) {
                curve[bin] = lanes.made[lane];
            }
        }
        lanes.waiting[lane] = right;
    }
}

/** The steps first .. last, in which every lane is at least two bins away from the ends. */
template <class Set>
inline void Smoothing_Middle(Smoothing_Lanes<Set::LANES>& lanes, double* curve, int first, int last, float threshold) {
    typename Set::Double made[Set::DOUBLES];
    typename Set::Double waiting[Set::DOUBLES];
    typename Set::Float level_1[Set::FLOATS];
    typename Set::Float level_2[Set::FLOATS];
    typename Set::Float fell[Set::FLOATS];
    typename Set::Integer maxima[Set::FLOATS];
    for (int v = 0; v < Set::DOUBLES; ++v) {
        made[v] = Set::Load(lanes.made + v * Set::WIDTH);
        waiting[v] = Set::Load(lanes.waiting + v * Set::WIDTH);
    }
    for (int v = 0; v < Set::FLOATS; ++v) {
        level_1[v] = Set::Load(lanes.level_1 + v * 2 * Set::WIDTH);
        level_2[v] = Set::Load(lanes.level_2 + v * 2 * Set::WIDTH);
        fell[v] = Set::Load_Mask(lanes.fell + v * 2 * Set::WIDTH);
        maxima[v] = Set::Load_Counts(lanes.maxima + v * 2 * Set::WIDTH);
    }
    const typename Set::Double quarter = Set::All(0.25);
    const typename Set::Float limit = Set::All(threshold);
    for (int step = first; step <= last; ++step) {
        typename Set::Double right[Set::DOUBLES];
        for (int v = Set::DOUBLES - 1; v > 0; --v) {
            right[v] = Set::Shift(made[v - 1], made[v]);
        }
        right[0] = Set::Shift_In(curve[step + 1], made[0]);
        for (int v = 0; v < Set::DOUBLES; ++v) {
            const typename Set::Double sum = Set::Add(Set::Add(Set::Add(waiting[v], waiting[v]), made[v]), right[v]);
            made[v] = Set::Multiply(sum, quarter);
            waiting[v] = right[v];
        }
        curve[step - 2 * (Set::LANES - 1)] = Set::Last(made[Set::DOUBLES - 1]);
        for (int v = 0; v < Set::FLOATS; ++v) {
            const typename Set::Float level = Set::Positive(Set::Subtract(Set::Narrow(made + 2 * v), limit));
            const typename Set::Float falls = Set::Is_Less(level, level_2[v]);
            maxima[v] = Set::Count(maxima[v], fell[v], falls);
            fell[v] = falls;
            level_2[v] = level_1[v];
            level_1[v] = level;
        }
    }
    for (int v = 0; v < Set::DOUBLES; ++v) {
        Set::Store(lanes.made + v * Set::WIDTH, made[v]);
        Set::Store(lanes.waiting + v * Set::WIDTH, waiting[v]);
    }
    for (int v = 0; v < Set::FLOATS; ++v) {
        Set::Store(lanes.level_1 + v * 2 * Set::WIDTH, level_1[v]);
        Set::Store(lanes.level_2 + v * 2 * Set::WIDTH, level_2[v]);
        Set::Store_Mask(lanes.fell + v * 2 * Set::WIDTH, fell[v]);
        Set::Store_Counts(lanes.maxima + v * 2 * Set::WIDTH, maxima[v]);
    }
}

/** Counts the maxima of one step at the ends of the curve. @param bins of the lanes; moved on by one */
template <class Set>
inline void Smoothing_Edge_Count(Smoothing_Lanes<Set::LANES>& lanes, const typename Set::Double* made, float* bins,
                                 float n, float threshold) {
    constexpr int width = 2 * Set::WIDTH;
    for (int v = 0; v < Set::FLOATS; ++v) {
        const typename Set::Float bin = Set::Load(bins + v * width);
        const typename Set::Float level = Set::Positive(Set::Subtract(Set::Narrow(made + 2 * v), Set::All(threshold)));
        const typename Set::Float level_1 = Set::Load(lanes.level_1 + v * width);
        const typename Set::Float fell = Set::Load_Mask(lanes.fell + v * width);
        const typename Set::Float starts = Set::Is_Less(bin, Set::All(1.5F));
        const typename Set::Float is_over = Set::Is_Less(Set::All(n - 0.5F), bin);
        const typename Set::Float falls =
            Set::Without(Set::Is_Less(level, Set::Load(lanes.level_2 + v * width)), starts);
        // Behind the curve a lane has fallen for good; before it, it has counted nothing.
        const typename Set::Integer maxima =
            Set::Count(Set::Load_Counts(lanes.maxima + v * width), Set::Or(fell, is_over), falls);
        Set::Store_Counts(lanes.maxima + v * width, Set::Without(maxima, starts));
        Set::Store_Mask(lanes.fell + v * width, falls);
        Set::Store(lanes.level_2 + v * width, Set::Select(starts, level, level_1));
        Set::Store(lanes.level_1 + v * width, level);
        Set::Store(bins + v * width, Set::Subtract(bin, Set::All(-1.0F)));
    }
}

/** The steps first .. last wherever the lanes are: before the curve, at its ends, behind it. Lanes from `passes` on
 * hand their bins on as they are. Slower than the middle, but much faster than lane by lane. */
template <class Set>
inline void Smoothing_Edges(Smoothing_Lanes<Set::LANES>& lanes, double* curve, int n, int first, int last,
                            float threshold, int passes) {
    typename Set::Double made[Set::DOUBLES];
    typename Set::Double waiting[Set::DOUBLES];
    typename Set::Double bin[Set::DOUBLES];
    typename Set::Double is_idle[Set::DOUBLES];
    alignas(32) double bins[Set::LANES];
    alignas(32) float float_bins[Set::LANES];
    alignas(32) double lane_numbers[Set::LANES];
    for (int lane = 0; lane < Set::LANES; ++lane) {
        bins[lane] = static_cast<double>(first - 2 * lane);
        float_bins[lane] = static_cast<float>(bins[lane]);
        lane_numbers[lane] = static_cast<double>(lane);
    }
    for (int v = 0; v < Set::DOUBLES; ++v) {
        made[v] = Set::Load(lanes.made + v * Set::WIDTH);
        waiting[v] = Set::Load(lanes.waiting + v * Set::WIDTH);
        bin[v] = Set::Load(bins + v * Set::WIDTH);
        is_idle[v] =
            Set::Is_Less(Set::All(static_cast<double>(passes) - 0.5), Set::Load(lane_numbers + v * Set::WIDTH));
    }
    const typename Set::Double start = Set::All(1.5);
    const typename Set::Double end = Set::All(static_cast<double>(n) - 1.5);
    const typename Set::Double nothing = Set::All(-0.0);  // added to anything it changes nothing, not even a sign
    for (int step = first; step <= last; ++step) {
        typename Set::Double right[Set::DOUBLES];
        for (int v = Set::DOUBLES - 1; v > 0; --v) {
            right[v] = Set::Shift(made[v - 1], made[v]);
        }
        right[0] = Set::Shift_In(step + 1 < n ? curve[step + 1] : 0.0, made[0]);
        for (int v = 0; v < Set::DOUBLES; ++v) {
            const typename Set::Double starts = Set::Is_Less(bin[v], start);
            const typename Set::Double ends = Set::Is_Less(end, bin[v]);
            typename Set::Double sum = Set::Add(waiting[v], waiting[v]);
            sum = Set::Add(sum, Set::Select(starts, nothing, made[v]));
            sum = Set::Add(sum, Set::Select(ends, nothing, right[v]));
            const typename Set::Double mean =
                Set::Select(Set::Or(starts, ends), Set::Divide(sum, Set::All(3.0)), Set::Multiply(sum, Set::All(0.25)));
            made[v] = Set::Select(is_idle[v], waiting[v], mean);
            waiting[v] = right[v];
            bin[v] = Set::Add(bin[v], Set::All(1.0));
            Set::Store(lanes.made + v * Set::WIDTH, made[v]);
        }
        if (const int written = step - 2 * (Set::LANES - 1); written > 0) {
            curve[written] = lanes.made[Set::LANES - 1];
        }
        Smoothing_Edge_Count<Set>(lanes, made, float_bins, static_cast<float>(n), threshold);
    }
    for (int v = 0; v < Set::DOUBLES; ++v) {
        Set::Store(lanes.waiting + v * Set::WIDTH, waiting[v]);
    }
}

/** `passes` (1 .. Set::LANES) passes over a curve of n >= 4 x LANES bins. @param maxima receives LANES counts, in order
 * of the passes; those that were not made are of no meaning */
template <class Set>
inline void Smoothing_Group(double* curve, int n, float threshold, int passes, int* maxima) {
    Smoothing_Lanes<Set::LANES> lanes = {};
    lanes.waiting[0] = curve[1];
    constexpr int start = 2 * Set::LANES;
    const int last = n - 1 + 2 * (Set::LANES - 1);
    if (passes < Set::LANES) {
        Smoothing_Edges<Set>(lanes, curve, n, 1, last, threshold, passes);
    } else if constexpr (Set::WIDTH > 2) {
        Smoothing_Edges<Set>(lanes, curve, n, 1, start - 1, threshold, passes);
        Smoothing_Middle<Set>(lanes, curve, start, n - 2, threshold);
        Smoothing_Edges<Set>(lanes, curve, n, n - 1, last, threshold, passes);
    } else {
        // Vectors of two are no faster there than one lane after the other.
        for (int step = 1; step < start; ++step) {
            Smoothing_End_Step(lanes, curve, step, n, threshold);
        }
        Smoothing_Middle<Set>(lanes, curve, start, n - 2, threshold);
        for (int step = n - 1; step <= last; ++step) {
            Smoothing_End_Step(lanes, curve, step, n, threshold);
        }
    }
    curve[0] = curve[1];
    for (int lane = 0; lane < Set::LANES; ++lane) {
        maxima[lane] = lanes.maxima[lane];
    }
}

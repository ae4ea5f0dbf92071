#include "histogram/peak_smoothing.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>

#include "histogram/peak_smoothing_kernel.h"
#include "histogram/peak_smoothing_ring.h"
#include "histogram/peak_smoothing_wide.h"
#include "host/platform.h"

namespace {

/** SSE2: part of every x86-64 processor. */
struct Sse2 {
    using Double = __m128d;
    using Float = __m128;
    using Integer = __m128i;
    static constexpr int WIDTH = 2;
    static constexpr int LANES = 8;
    static constexpr int DOUBLES = LANES / WIDTH;
    static constexpr int FLOATS = DOUBLES / 2;

    static Double Load(const double* from) { return _mm_loadu_pd(from); }
    static Float Load(const float* from) { return _mm_loadu_ps(from); }
    static Float Load_Mask(const int* from) { return _mm_castsi128_ps(Load_Counts(from)); }
    static Integer Load_Counts(const int* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
    static void Store(double* to, Double value) { _mm_storeu_pd(to, value); }
    static void Store(float* to, Float value) { _mm_storeu_ps(to, value); }
    static void Store_Mask(int* to, Float value) { Store_Counts(to, _mm_castps_si128(value)); }
    static void Store_Counts(int* to, Integer value) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value); }
    static Double All(double value) { return _mm_set1_pd(value); }
    static Float All(float value) { return _mm_set1_ps(value); }
    static Double Add(Double a, Double b) { return _mm_add_pd(a, b); }
    static Double Multiply(Double a, Double b) { return _mm_mul_pd(a, b); }
    static Double Divide(Double a, Double b) { return _mm_div_pd(a, b); }
    static Double Is_Less(Double a, Double b) { return _mm_cmplt_pd(a, b); }
    static Double Or(Double a, Double b) { return _mm_or_pd(a, b); }
    static Float Or(Float a, Float b) { return _mm_or_ps(a, b); }
    static Double Select(Double mask, Double yes, Double no) {
        return _mm_or_pd(_mm_and_pd(mask, yes), _mm_andnot_pd(mask, no));
    }
    static Float Select(Float mask, Float yes, Float no) {
        return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
    }
    static Float Without(Float a, Float mask) { return _mm_andnot_ps(mask, a); }
    static Integer Without(Integer a, Float mask) { return _mm_andnot_si128(_mm_castps_si128(mask), a); }
    static Float Subtract(Float a, Float b) { return _mm_sub_ps(a, b); }
    static Float Positive(Float a) { return _mm_max_ps(a, _mm_setzero_ps()); }
    static Float Is_Less(Float a, Float b) { return _mm_cmplt_ps(a, b); }
    static Integer Count(Integer count, Float fell, Float falls) {
        return _mm_sub_epi32(count, _mm_castps_si128(_mm_andnot_ps(fell, falls)));
    }
    static Float Narrow(const Double* two) { return _mm_movelh_ps(_mm_cvtpd_ps(two[0]), _mm_cvtpd_ps(two[1])); }
    static Double Shift(Double before, Double here) { return _mm_shuffle_pd(before, here, 1); }
    static Double Shift_In(double first, Double here) { return _mm_shuffle_pd(_mm_set1_pd(first), here, 0); }
    static double Last(Double value) { return _mm_cvtsd_f64(_mm_unpackhi_pd(value, value)); }
};

constexpr int LANES_MAX = SMOOTHING_WIDE_LANES;
/** So few passes are made faster one by one than by a group of lanes that are mostly idle. */
constexpr int PLAIN_PASSES_MAX = 3;
/** Longer curves lose little at the ends of a group of passes, and their history would leave the processor's cache. */
constexpr int RING_BINS_MAX = 512;

/** One pass by the step of the kernel's scalar ends. @return maxima */
int Plain_Pass(std::span<double> curve, float threshold) {
    const auto n = static_cast<int>(curve.size());
    Smoothing_Lanes<1> lanes = {};
    lanes.waiting[0] = curve[1];
    for (int step = 1; step <= n - 1; ++step) {
        Smoothing_End_Step(lanes, curve.data(), step, n, threshold);
    }
    curve[0] = curve[1];
    return lanes.maxima[0];
}

int Lanes_Of(Smoothing_Path path, std::size_t n, std::size_t scratch) {
    const int lanes =
        path == Smoothing_Path::Wide ? SMOOTHING_WIDE_LANES : (path == Smoothing_Path::Baseline ? Sse2::LANES : 1);
    return lanes > 1 && scratch >= n && n >= static_cast<std::size_t>(4 * lanes) ? lanes : 1;
}

/** Passes by the ring. @param note receives the maxima of each pass and tells if more are wanted */
template <class Note>
void Smooth_By_Ring(std::span<double> curve, double* history, float threshold, int lane_nb, Note note) {
    const auto n = static_cast<int>(curve.size());
    const bool wide = lane_nb == SMOOTHING_WIDE_LANES;
    Smoothing_Wide_Lanes wide_lanes = {};
    Smoothing_Lanes<Sse2::LANES> lanes = {};
    if (wide) {
        Smoothing_Ring_Begin_Wide(wide_lanes, curve.data(), n, history, threshold);
    } else {
        Smoothing_Ring_Begin<Sse2>(lanes, curve.data(), n, history, threshold);
    }
    for (bool is_first = true;; is_first = false) {
        std::array<int, LANES_MAX> maxima{};
        if (wide) {
            Smoothing_Ring_Turn_Wide(wide_lanes, n, history, threshold, is_first, maxima.data());
        } else {
            Smoothing_Ring_Turn<Sse2>(lanes, n, history, threshold, is_first, maxima.data());
        }
        for (int lane = 0; lane < lane_nb; ++lane) {
            if (!note(maxima[static_cast<std::size_t>(lane)])) {
                for (int bin = 1; bin < n; ++bin) {
                    curve[static_cast<std::size_t>(bin)] = history[(bin + 2 * lane + 1) * lane_nb + lane];
                }
                curve[0] = curve[1];
                return;
            }
        }
    }
}

}  // namespace

std::size_t Smoothing_Scratch_Nb(std::size_t bins) {
    return bins <= RING_BINS_MAX
               ? static_cast<std::size_t>(Smoothing_History_Nb<SMOOTHING_WIDE_LANES>(static_cast<int>(bins)))
               : bins;
}

Smoothing_Path Smoothing_Path_Best() {
    return Processor_Has_Avx2() ? Smoothing_Path::Wide : Smoothing_Path::Baseline;
}

Smoothing_Result Smooth_To_Maxima(std::span<double> curve, std::span<double> scratch, const Smoothing_Options& options,
                                  Smoothing_Path path, Smoothing_Pass_Sink sink, void* context) {
    Smoothing_Result result;
    const auto n = static_cast<int>(curve.size());
    const int lanes = Lanes_Of(path, curve.size(), scratch.size());
    bool more = n >= 2;
    const auto note = [&](int maxima) {
        if (sink != nullptr) {
            sink(context, result.passes, maxima);
        }
        result.maxima = maxima;
        ++result.passes;
        more = maxima > options.max_maxima && result.passes < options.max_passes;
        return more;
    };
    if (more && lanes > 1 && n <= RING_BINS_MAX && scratch.size() >= Smoothing_Scratch_Nb(curve.size())) {
        Smooth_By_Ring(curve, scratch.data(), options.threshold, lanes, note);
        return result;
    }
    const auto group = [&](int passes, int* maxima) {
        if (lanes == SMOOTHING_WIDE_LANES) {
            Smoothing_Group_Wide(curve.data(), n, options.threshold, passes, maxima);
        } else {
            Smoothing_Group<Sse2>(curve.data(), n, options.threshold, passes, maxima);
        }
    };
    while (more && lanes > 1 && result.passes + lanes <= options.max_passes) {
        std::array<int, LANES_MAX> maxima{};
        std::copy(curve.begin(), curve.end(), scratch.begin());
        group(lanes, maxima.data());
        int made = 0;
        while (made < lanes && more) {
            note(maxima[static_cast<std::size_t>(made)]);
            ++made;
        }
        if (made < lanes) {
            // The limit was met inside the group: its first passes once more, from the group's input.
            std::copy(scratch.begin(), scratch.end(), curve.begin());
            if (made > PLAIN_PASSES_MAX) {
                group(made, maxima.data());
            } else {
                for (int pass = 0; pass < made; ++pass) {
                    Plain_Pass(curve, options.threshold);
                }
            }
        }
    }
    while (more) {
        note(Plain_Pass(curve, options.threshold));
    }
    return result;
}

void Thresholded_Derivative(std::span<const double> curve, float threshold, std::span<float> derivative) {
    const std::size_t n = curve.size();
    const auto level = [&](std::size_t i) {
        const float above = static_cast<float>(curve[i]) - threshold;
        return above > 0.0F ? above : 0.0F;
    };
    derivative[0] = 0.0F;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        derivative[i] = level(i + 1) - level(i - 1);
    }
    derivative[n - 1] = derivative[n - 2];
}

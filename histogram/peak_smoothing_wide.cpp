// Compiled for AVX2 (see CMakeLists.txt). No fused multiply-add: the bits must be those of the plain loop.
#include "histogram/peak_smoothing_wide.h"

#include <immintrin.h>

#include "histogram/peak_smoothing_kernel.h"
#include "histogram/peak_smoothing_ring.h"

namespace {

struct Avx2 {
    using Double = __m256d;
    using Float = __m256;
    using Integer = __m256i;
    static constexpr int WIDTH = 4;
    static constexpr int LANES = SMOOTHING_WIDE_LANES;
    static constexpr int DOUBLES = LANES / WIDTH;
    static constexpr int FLOATS = DOUBLES / 2;

    static Double Load(const double* from) { return _mm256_loadu_pd(from); }
    static Float Load(const float* from) { return _mm256_loadu_ps(from); }
    static Float Load_Mask(const int* from) { return _mm256_castsi256_ps(Load_Counts(from)); }
    static Integer Load_Counts(const int* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
    static void Store(double* to, Double value) { _mm256_storeu_pd(to, value); }
    static void Store(float* to, Float value) { _mm256_storeu_ps(to, value); }
    static void Store_Mask(int* to, Float value) { Store_Counts(to, _mm256_castps_si256(value)); }
    static void Store_Counts(int* to, Integer value) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), value); }
    static Double All(double value) { return _mm256_set1_pd(value); }
    static Float All(float value) { return _mm256_set1_ps(value); }
    static Double Add(Double a, Double b) { return _mm256_add_pd(a, b); }
    static Double Multiply(Double a, Double b) { return _mm256_mul_pd(a, b); }
    static Double Divide(Double a, Double b) { return _mm256_div_pd(a, b); }
    static Double Is_Less(Double a, Double b) { return _mm256_cmp_pd(a, b, _CMP_LT_OQ); }
    static Double Or(Double a, Double b) { return _mm256_or_pd(a, b); }
    static Float Or(Float a, Float b) { return _mm256_or_ps(a, b); }
    static Double Select(Double mask, Double yes, Double no) { return _mm256_blendv_pd(no, yes, mask); }
    static Float Select(Float mask, Float yes, Float no) { return _mm256_blendv_ps(no, yes, mask); }
    static Float Without(Float a, Float mask) { return _mm256_andnot_ps(mask, a); }
    static Integer Without(Integer a, Float mask) { return _mm256_andnot_si256(_mm256_castps_si256(mask), a); }
    static Float Subtract(Float a, Float b) { return _mm256_sub_ps(a, b); }
    static Float Positive(Float a) { return _mm256_max_ps(a, _mm256_setzero_ps()); }
    static Float Is_Less(Float a, Float b) { return _mm256_cmp_ps(a, b, _CMP_LT_OQ); }
    static Integer Count(Integer count, Float fell, Float falls) {
        return _mm256_sub_epi32(count, _mm256_castps_si256(_mm256_andnot_ps(fell, falls)));
    }
    static Float Narrow(const Double* two) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(two[0])), _mm256_cvtpd_ps(two[1]), 1);
    }
    /** The last lane of `before`, then the first three of `here`. */
    static Double Shift(Double before, Double here) {
        return _mm256_shuffle_pd(_mm256_permute2f128_pd(before, here, 0x21), here, 0x5);
    }
    static Double Shift_In(double first, Double here) {
        return _mm256_shuffle_pd(_mm256_permute2f128_pd(_mm256_set1_pd(first), here, 0x20), here, 0x4);
    }
    static double Last(Double value) {
        return _mm_cvtsd_f64(_mm_unpackhi_pd(_mm256_extractf128_pd(value, 1), _mm256_extractf128_pd(value, 1)));
    }
};

}  // namespace

void Smoothing_Group_Wide(double* curve, int n, float threshold, int passes, int* maxima) {
    Smoothing_Group<Avx2>(curve, n, threshold, passes, maxima);
}

void Smoothing_Ring_Begin_Wide(Smoothing_Wide_Lanes& lanes, const double* curve, int n, double* history,
                               float threshold) {
    Smoothing_Ring_Begin<Avx2>(lanes, curve, n, history, threshold);
}

void Smoothing_Ring_Turn_Wide(Smoothing_Wide_Lanes& lanes, int n, double* history, float threshold, bool is_first,
                              int* counts) {
    Smoothing_Ring_Turn<Avx2>(lanes, n, history, threshold, is_first, counts);
}

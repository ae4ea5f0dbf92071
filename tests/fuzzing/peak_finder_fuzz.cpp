// libFuzzer: the derivative peak finder on any curve: all smoothing paths give the same bits, segments share the bins
// without gap or overlap, and the candidate tests stay inside the curve.
#include <cstring>
#include <vector>

#include "histogram/peak_candidates.h"
#include "histogram/peak_segments.h"
#include "histogram/peak_smoothing.h"
#include "tests/fuzzing/input_bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input_Bytes input(data, size);
    const auto N = static_cast<std::size_t>(2 + input.Below(400));
    Smoothing_Options options;
    options.threshold = input.Take<float>();
    options.max_maxima = input.Below(20);
    options.max_passes = 1 + input.Below(300);
    const bool is_raw = (input.Take<std::uint8_t>() & 1) != 0;
    std::vector<double> curve(N);
    for (double& value : curve) {
        value = is_raw ? input.Take<double>() : static_cast<double>(input.Take<std::uint16_t>());
    }
    std::vector<double> plain = curve;
    std::vector<double> scratch(Smoothing_Scratch_Nb(N));
    const Smoothing_Result result = Smooth_To_Maxima(plain, scratch, options, Smoothing_Path::Plain, nullptr, nullptr);
    Require(result.passes >= 1 && result.passes <= options.max_passes);
    for (const Smoothing_Path path : {Smoothing_Path::Baseline, Smoothing_Path_Best()}) {
        std::vector<double> other = curve;
        const Smoothing_Result same = Smooth_To_Maxima(other, scratch, options, path, nullptr, nullptr);
        Require(same.passes == result.passes && same.maxima == result.maxima);
        Require(std::memcmp(other.data(), plain.data(), N * sizeof(double)) == 0);
        // With room for the curve alone passes come in groups.
        std::vector<double> grouped = curve;
        const Smoothing_Result third =
            Smooth_To_Maxima(grouped, std::span(scratch).first(N), options, path, nullptr, nullptr);
        Require(third.passes == result.passes && third.maxima == result.maxima);
        Require(std::memcmp(grouped.data(), plain.data(), N * sizeof(double)) == 0);
    }
    std::vector<float> derivative(N);
    Thresholded_Derivative(plain, options.threshold, derivative);
    const Segment_List segments = Segments_Find(derivative);
    Require(segments.nb >= 0 && segments.nb <= SEGMENT_MAX);
    for (int at = 1; at < segments.nb; ++at) {
        const Segment& before = segments.segment[static_cast<std::size_t>(at) - 1];
        Require(segments.segment[static_cast<std::size_t>(at)].first == before.last + 1);
    }
    int last_zero = input.Take<std::int16_t>();
    const int gap = input.Below(40);
    const float slope = input.Take<float>();
    for (int x = 1; x < static_cast<int>(N); ++x) {
        Require(Zero_Peak_Test(derivative, x, gap, slope, last_zero) >= 0);
        Data_Peak_Test(plain, x, gap, slope);
    }
    return 0;
}

// The derivative method's smoothing: the loop as it is said, one bin and one pass at a time, against the passes in
// flight.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "histogram/peak_smoothing.h"
#include "host/platform.h"
#include "tests/benchmarks/ratio.h"
#include "tests/benchmarks/sample_curve.h"

namespace {

constexpr int ROUNDS = 9;
constexpr int SHORT_ROUNDS = 199;
constexpr std::size_t SHORT_BINS = 512;
constexpr int PASSES_MAX = 10000;

/** The loop bin by bin and pass by pass. @param counts receives the number of maxima after each pass */
void Smooth_Plainly(std::vector<double>& f, std::vector<float>& d, const Smoothing_Options& options,
                    std::vector<int>& counts) {
    const int n = static_cast<int>(f.size());
    const auto at = [](int i) { return static_cast<std::size_t>(i); };
    counts.clear();
    for (int pass = 0; pass < options.max_passes; ++pass) {
        for (int i = 1; i <= n - 1; ++i) {
            double sum = 2 * f[at(i)];
            int weight = 2;
            if (i > 1) {
                sum += f[at(i - 1)];
                weight = 3;
            }
            if (i < n - 1) {
                sum += f[at(i + 1)];
                ++weight;
            }
            f[at(i)] = sum / weight;
        }
        f[0] = f[1];
        for (int i = 1; i <= n - 2; ++i) {
            const float right = static_cast<float>(f[at(i + 1)]) - options.threshold;
            const float left = static_cast<float>(f[at(i - 1)]) - options.threshold;
            d[at(i)] = (right > 0 ? right : 0.0F) - (left > 0 ? left : 0.0F);
        }
        d[0] = 0;
        d[at(n - 1)] = d[at(n - 2)];
        int maxima = 0;
        for (int i = 0; i <= n - 2; ++i) {
            maxima += d[at(i)] >= 0 && d[at(i + 1)] < 0 ? 1 : 0;
        }
        counts.push_back(maxima);
        if (maxima <= options.max_maxima) {
            return;
        }
    }
}

void Count_Take(void* context, int /*pass*/, int maxima) {
    static_cast<std::vector<int>*>(context)->push_back(maxima);
}

/** Measures both, and compares every smoothed value, every pass's count and the number of passes. */
void Compare(benchmark::State& state, Smoothing_Path path, const std::vector<double>& curve,
             const Smoothing_Options& options) {
    if (path == Smoothing_Path::Wide && !Processor_Has_Avx2()) {
        state.SkipWithError("this processor has no AVX2");
        return;
    }
    const std::size_t n = curve.size();
    std::vector<double> plain;
    std::vector<double> ours;
    std::vector<double> scratch(Smoothing_Scratch_Nb(n));
    std::vector<float> derivative(n);
    std::vector<int> plain_counts;
    std::vector<int> our_counts;
    Paired_Times times;
    for (auto _ : state) {
        const bool is_short = n <= SHORT_BINS && options.max_maxima > 0;  // to its own end: microseconds
        times = Pair_Time(
            is_short ? SHORT_ROUNDS : ROUNDS,
            [&] {
                plain = curve;
                Smooth_Plainly(plain, derivative, options, plain_counts);
            },
            [&] {
                ours = curve;
                our_counts.clear();
                Smooth_To_Maxima(ours, scratch, options, path, Count_Take, &our_counts);
            },
            is_short ? Of_Rounds::Least : Of_Rounds::Median);
    }
    const auto steps = static_cast<double>(n * plain_counts.size());
    state.counters["bins"] = static_cast<double>(n);
    state.counters["passes"] = static_cast<double>(plain_counts.size());
    state.counters["plain_ns_per_bin"] = times.plain * 1e9 / steps;
    state.counters["ours_ns_per_bin"] = times.ours * 1e9 / steps;
    state.counters["ratio"] = times.Ratio();
    if (plain_counts != our_counts || std::memcmp(plain.data(), ours.data(), n * sizeof(double)) != 0) {
        state.SkipWithError("the two ways differ");
    }
}

void Bench_Smoothing(benchmark::State& state, Smoothing_Path path) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const int passes = static_cast<int>(4000000 / n / 16 + 1) * 16;  // whole groups, as in a fit of thousands of passes
    std::mt19937 random(1);
    std::vector<double> curve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double away = (static_cast<double>(i) - static_cast<double>(n) / 3) / (static_cast<double>(n) / 9);
        curve[i] = std::floor(3000.0 * std::exp(-away * away)) + static_cast<double>(random() % 50);
    }
    Compare(state, path, curve, {1.0F, -1, passes});
}

/** A whole analysis of a real histogram, to its own stop. */
void Bench_Sample(benchmark::State& state, Smoothing_Path path, const char* name) {
    const std::vector<double> curve = Sample_Curve(name);
    if (curve.empty()) {
        state.SkipWithError("its curve is not there: scripts/sample_curves out/curves");
        return;
    }
    const auto wanted = static_cast<int>(state.range(0));
    float sum = 0.0F;
    for (const double value : curve) {
        sum += static_cast<float>(value);
    }
    const auto peaks = static_cast<float>(wanted);
    Compare(state, path, curve, {sum / (2000.0F * peaks * peaks), wanted, PASSES_MAX});
}

}  // namespace

BENCHMARK_CAPTURE(Bench_Smoothing, baseline, Smoothing_Path::Baseline)
    ->Arg(256)
    ->Arg(1024)
    ->Arg(4096)
    ->Arg(65535)
    ->Iterations(1);
BENCHMARK_CAPTURE(Bench_Smoothing, wide, Smoothing_Path::Wide)
    ->Arg(256)
    ->Arg(1024)
    ->Arg(4096)
    ->Arg(65535)
    ->Iterations(1);
// The number of peaks wanted.
BENCHMARK_CAPTURE(Bench_Sample, ct_baseline, Smoothing_Path::Baseline, "ct")->Arg(4)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Sample, ct_wide, Smoothing_Path::Wide, "ct")->Arg(4)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Sample, brain_baseline, Smoothing_Path::Baseline, "brain_fine")->Arg(4)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Sample, brain_wide, Smoothing_Path::Wide, "brain_fine")->Arg(4)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Sample, small_baseline, Smoothing_Path::Baseline, "brain")->Arg(2)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Sample, small_wide, Smoothing_Path::Wide, "brain")->Arg(2)->Iterations(1);

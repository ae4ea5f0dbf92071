// The derivative method's smoothing: the loop as it is said, one bin and one pass at a time, against the passes in
// flight.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "bench/ratio.h"
#include "histogram/peak_smoothing.h"
#include "host/platform.h"

namespace {

constexpr int ROUNDS = 5;
constexpr float THRESHOLD = 1.0F;

int Smooth_Plainly(std::vector<double>& f, std::vector<float>& d, int passes) {
    const int n = static_cast<int>(f.size());
    const auto at = [](int i) { return static_cast<std::size_t>(i); };
    int maxima = 0;
    for (int pass = 0; pass < passes; ++pass) {
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
            const float right = static_cast<float>(f[at(i + 1)]) - THRESHOLD;
            const float left = static_cast<float>(f[at(i - 1)]) - THRESHOLD;
            d[at(i)] = (right > 0 ? right : 0.0F) - (left > 0 ? left : 0.0F);
        }
        d[0] = 0;
        d[at(n - 1)] = d[at(n - 2)];
        maxima = 0;
        for (int i = 0; i <= n - 2; ++i) {
            maxima += d[at(i)] >= 0 && d[at(i + 1)] < 0 ? 1 : 0;
        }
    }
    return maxima;
}

void Bench_Smoothing(benchmark::State& state, Smoothing_Path path) {
    if (path == Smoothing_Path::Wide && !Processor_Has_Avx2()) {
        state.SkipWithError("this processor has no AVX2");
        return;
    }
    const auto n = static_cast<std::size_t>(state.range(0));
    const int passes = static_cast<int>(4000000 / n / 16 + 1) * 16;  // whole groups, as in a fit of thousands of passes
    std::mt19937 random(1);
    std::vector<double> curve(n);
    for (std::size_t i = 0; i < n; ++i) {
        curve[i] =
            std::floor(3000.0 *
                       std::exp(-std::pow(
                           (static_cast<double>(i) - static_cast<double>(n) / 3) / (static_cast<double>(n) / 9), 2))) +
            static_cast<double>(random() % 50);
    }
    std::vector<double> plain;
    std::vector<double> ours;
    std::vector<double> scratch(n);
    std::vector<float> derivative(n);
    Paired_Times times;
    for (auto _ : state) {
        times = Pair_Time(
            ROUNDS,
            [&] {
                plain = curve;
                benchmark::DoNotOptimize(Smooth_Plainly(plain, derivative, passes));
            },
            [&] {
                ours = curve;
                Smooth_To_Maxima(ours, scratch, {THRESHOLD, -1, passes}, path, nullptr, nullptr);
            });
    }
    state.counters["plain_ns_per_bin"] = times.plain * 1e9 / static_cast<double>(n) / passes;
    state.counters["ours_ns_per_bin"] = times.ours * 1e9 / static_cast<double>(n) / passes;
    state.counters["ratio"] = times.Ratio();
    if (std::memcmp(plain.data(), ours.data(), n * sizeof(double)) != 0) {
        state.SkipWithError("the two ways differ");
    }
}

}  // namespace

BENCHMARK_CAPTURE(Bench_Smoothing, baseline, Smoothing_Path::Baseline)->Arg(1024)->Arg(4096)->Arg(65535)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Smoothing, wide, Smoothing_Path::Wide)->Arg(1024)->Arg(4096)->Arg(65535)->Iterations(1);

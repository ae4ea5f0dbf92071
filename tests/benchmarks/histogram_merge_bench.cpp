// Merging 1,000 frame histograms of 4,096 bins: the rule bin by bin against Histogram_Merger, and against merely
// summing the arrays.
#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <memory>
#include <random>
#include <vector>

#include "histogram/histogram_merge.h"
#include "tests/benchmarks/ratio.h"

namespace {

constexpr int FRAME_NB = 1000;
constexpr int BIN_NB = 4096;
constexpr int ROUNDS = 7;

struct Frames {
    std::vector<std::vector<std::uint32_t>> counts;
    std::vector<Histo_Record> records;

    explicit Frames(bool one_grid) {
        std::mt19937 random(1);
        counts.resize(FRAME_NB);
        records.resize(FRAME_NB);
        for (std::size_t f = 0; f < FRAME_NB; ++f) {
            counts[f].resize(BIN_NB);
            for (auto& count : counts[f]) {
                count = static_cast<std::uint32_t>(random() % 1000);
            }
            records[f].nb_bins = BIN_NB;
            records[f].bin_width = one_grid ? 1.0F : 1.0F + static_cast<float>(f % 97) * 0.01F;
            records[f].origin = one_grid ? 0.0F : static_cast<float>(f % 89) * 0.25F;
            records[f].counts = counts[f].data();
        }
    }
};

struct Merged {
    std::vector<std::uint32_t> counts;
    Histo_Record record;

    explicit Merged(const Frames& frames) {
        Histogram_Extent extent;
        for (const Histo_Record& frame : frames.records) {
            extent.Add(frame);
        }
        const Histogram_Grid grid = Histogram_Grid_Choose(extent, 65535);
        counts.resize(grid.nb_bins);
        record.nb_bins = grid.nb_bins;
        record.origin = grid.origin;
        record.bin_width = grid.bin_width;
        record.counts = counts.data();
    }
};

void Merge_Plainly(Histo_Record& record, const Frames& frames) {
    for (const Histo_Record& frame : frames.records) {
        for (int i = 0; i < frame.nb_bins; ++i) {
            const int target = static_cast<int>(
                ((static_cast<float>(i) + 0.5F) * frame.bin_width + frame.origin - record.origin) / record.bin_width);
            if (target < 0 || target >= frame.nb_bins || target >= record.nb_bins) {
                continue;
            }
            record.counts[target] += frame.counts[i];
        }
    }
}

void Merge_Ours(Histo_Record& record, const Frames& frames) {
    Histogram_Merger merger(record);
    for (const Histo_Record& frame : frames.records) {
        merger.Add(frame);
    }
}

/** The least that must be done: four counts at a time, whatever the compiler makes of loops. */
void Sum_Only(std::vector<std::uint32_t>& sums, const Frames& frames) {
    for (const Histo_Record& frame : frames.records) {
        for (std::size_t i = 0; i < BIN_NB; i += 4) {
            auto* sum = reinterpret_cast<__m128i*>(sums.data() + i);
            const __m128i more = _mm_loadu_si128(reinterpret_cast<const __m128i*>(frame.counts + i));
            _mm_storeu_si128(sum, _mm_add_epi32(_mm_loadu_si128(sum), more));
        }
        benchmark::DoNotOptimize(sums.data());
        benchmark::ClobberMemory();
    }
}

void Bench_Merge(benchmark::State& state, bool one_grid) {
    const Frames frames(one_grid);
    Merged plain(frames);
    Merged ours(frames);
    std::vector<std::uint32_t> sums(BIN_NB);
    Paired_Times merge;
    Paired_Times sum;
    for (auto _ : state) {
        merge = Pair_Time(
            ROUNDS, [&] { Merge_Plainly(plain.record, frames); }, [&] { Merge_Ours(ours.record, frames); });
        sum = Pair_Time(
            ROUNDS, [&] { Merge_Ours(ours.record, frames); }, [&] { Sum_Only(sums, frames); });
    }
    // Both were merged into more than once, ours twice as often.
    bool same = true;
    for (std::size_t bin = 0; bin < plain.counts.size(); ++bin) {
        same = same && plain.counts[bin] * 2 == ours.counts[bin];
    }
    state.counters["plain_ms"] = merge.plain * 1e3;
    state.counters["ours_ms"] = merge.ours * 1e3;
    state.counters["ratio"] = merge.Ratio();
    state.counters["to_summing"] = sum.Ratio();
    if (!same) {
        state.SkipWithError("the two ways differ");
    }
}

}  // namespace

BENCHMARK_CAPTURE(Bench_Merge, frames_of_one_grid, true)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Merge, frames_of_grids_of_their_own, false)->Iterations(1);

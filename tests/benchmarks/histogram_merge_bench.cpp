// Merging frame histograms of 4,096 bins: the rule bin by bin against Histogram_Merger, and against merely summing and
// merely reading the arrays.
#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <memory>
#include <random>
#include <vector>

#include "histogram/histogram_merge.h"
#include "tests/benchmarks/ratio.h"

namespace {

constexpr std::size_t FRAME_NB = 1000;       // 16 MB: they come from memory
constexpr std::size_t CACHED_FRAME_NB = 50;  // 0.8 MB: they stay in the processor
constexpr int BIN_NB = 4096;
constexpr int ROUNDS = 21;

struct Frames {
    std::vector<std::vector<std::uint32_t>> counts;
    std::vector<Histo_Record> records;

    Frames(std::size_t frame_nb, bool one_grid) {
        std::mt19937 random(1);
        counts.resize(frame_nb);
        records.resize(frame_nb);
        for (std::size_t f = 0; f < frame_nb; ++f) {
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

/** What no way of merging can do without: every count is looked at once. */
void Read_Only(const Frames& frames) {
    __m128i even = _mm_setzero_si128();
    __m128i odd = _mm_setzero_si128();
    for (const Histo_Record& frame : frames.records) {
        const auto* counts = reinterpret_cast<const __m128i*>(frame.counts);
        for (std::size_t i = 0; i < BIN_NB / 4; i += 2) {
            even = _mm_or_si128(even, _mm_loadu_si128(counts + i));
            odd = _mm_or_si128(odd, _mm_loadu_si128(counts + i + 1));
        }
    }
    benchmark::DoNotOptimize(_mm_or_si128(even, odd));
}

void Bench_Merge(benchmark::State& state, std::size_t frame_nb, bool one_grid) {
    const Frames frames(frame_nb, one_grid);
    Merged plain(frames);
    Merged ours(frames);
    std::vector<std::uint32_t> sums(BIN_NB);
    Paired_Times merge;
    Paired_Times sum;
    Paired_Times read;
    for (auto _ : state) {
        merge = Pair_Time(
            ROUNDS, [&] { Merge_Plainly(plain.record, frames); }, [&] { Merge_Ours(ours.record, frames); });
        sum = Pair_Time(
            ROUNDS, [&] { Merge_Ours(ours.record, frames); }, [&] { Sum_Only(sums, frames); });
        read = Pair_Time(
            ROUNDS, [&] { Merge_Ours(ours.record, frames); }, [&] { Read_Only(frames); });
    }
    // Both were merged into more than once, ours three times as often.
    bool same = true;
    for (std::size_t bin = 0; bin < plain.counts.size(); ++bin) {
        same = same && plain.counts[bin] * 3 == ours.counts[bin];
    }
    state.counters["plain_ms"] = merge.plain * 1e3;
    state.counters["ours_ms"] = merge.ours * 1e3;
    state.counters["ratio"] = merge.Ratio();
    state.counters["to_summing"] = sum.Ratio();
    state.counters["to_reading"] = read.Ratio();
    if (!same) {
        state.SkipWithError("the two ways differ");
    }
}

}  // namespace

BENCHMARK_CAPTURE(Bench_Merge, cached_frames_of_one_grid, CACHED_FRAME_NB, true)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Merge, cached_frames_of_grids_of_their_own, CACHED_FRAME_NB, false)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Merge, frames_of_one_grid, FRAME_NB, true)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Merge, frames_of_grids_of_their_own, FRAME_NB, false)->Iterations(1);

// Operations on labels, beside the plain way of doing the same.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tests/benchmarks/ratio.h"
#include "workbench/segmentation/level_bands.h"

using namespace workbench::segmentation;

namespace {

constexpr int SIDE = 256;
constexpr int SLICES = 200;

/** A head of three tissues with noise, in air. */
std::vector<std::int32_t> Head_Levels(const Label_Grid& grid) {
    std::vector<std::int32_t> levels(grid.Voxel_Nb());
    std::uint32_t noise = 1;
    std::size_t at = 0;
    for (int z = 0; z < grid.slices; ++z) {
        for (int y = 0; y < grid.height; ++y) {
            for (int x = 0; x < grid.width; ++x) {
                const double dx = (x - grid.width / 2) / (0.45 * grid.width);
                const double dy = (y - grid.height / 2) / (0.45 * grid.height);
                const double dz = (z - grid.slices / 2) / (0.45 * grid.slices);
                const double radius = dx * dx + dy * dy + dz * dz;
                noise = noise * 1664525U + 1013904223U;
                const int tissue = radius > 1.0 ? 0 : radius > 0.5 ? 600 : radius > 0.1 ? 900 : 300;
                levels[at++] = tissue + static_cast<std::int32_t>(noise >> 26U);
            }
        }
    }
    return levels;
}

/** @param claim_nb bands, one for each TAG */
void Apply_Bands(benchmark::State& state) {
    const Label_Grid grid = {SIDE, SIDE, SLICES, {1.0, 1.0, 1.0}};
    const std::vector<std::int32_t> levels = Head_Levels(grid);
    std::vector<std::int32_t> copy(levels.size());
    const std::vector<std::uint8_t> before(levels.size());
    std::vector<std::uint8_t> tags = before;
    std::vector<Tag_Levels_Claim> claims = {{1, {600, 680}}};
    if (state.range(0) > 1) {
        claims.push_back({2, {900, 980}});
        claims.push_back({3, {300, 380}});
    }
    Edit_Input input;
    input.grid = grid;
    input.tags = before;
    input.levels = levels;
    input.slices = {0, SLICES - 1};
    input.locked[9] = 1;
    for (auto _ : state) {
        const Paired_Times times = Pair_Time(
            15,
            [&] {
                std::ranges::copy(levels, copy.begin());
                benchmark::DoNotOptimize(copy.data());
            },
            [&] {
                Edit_Apply(*Bands_Apply(input, claims), true, grid, tags);
                benchmark::DoNotOptimize(tags.data());
            });
        state.counters["plain_ms"] = times.plain * 1e3;
        state.counters["ours_ms"] = times.ours * 1e3;
        state.counters["ratio"] = times.Ratio();
    }
}
BENCHMARK(Apply_Bands)->Arg(1)->Arg(3)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

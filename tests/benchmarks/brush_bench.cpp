// Building the masks of 8 brushes of radius 255 through the brush panel, against the definition pixel by pixel; and a
// notification that changes nothing.
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "panels/brush_mask.h"
#include "panels/tool_brush.h"
#include "tests/benchmarks/ratio.h"

namespace {

constexpr int BRUSH_NB = 8;
constexpr int RADIUS = 255;
constexpr std::size_t SIDE = 2 * RADIUS + 1;
constexpr int ROUNDS = 21;
constexpr std::array<unsigned short, BRUSH_NB> SIZES = {1, 3, 9, 27, 60, 100, 140, 181};

/** A host's brush table. */
struct Brush_Table {
    Brush_Table() : bytes(BRUSH_NB * SIDE * SIDE), row(BRUSH_NB * SIDE) {
        for (std::size_t i = 0; i < row.size(); i++) {
            row[i] = bytes.data() + i * SIDE;
        }
        for (std::size_t i = 0; i < BRUSH_NB; i++) {
            table[i] = row.data() + i * SIDE;
        }
        Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, BRUSH_NB);
        Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, RADIUS);
        Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
        Variable_Define_Array_At("$BRUSH_PT", VARIABLE_POINTER, BRUSH_NB, table.data());
        size = static_cast<unsigned short*>(Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, BRUSH_NB));
        std::copy(SIZES.begin(), SIZES.end(), size);
    }
    std::vector<unsigned char> bytes;
    std::vector<unsigned char*> row;
    std::array<unsigned char**, BRUSH_NB> table = {};
    unsigned short* size = nullptr;
};

void Plain_Masks(Brush_Table& host) {
    for (std::size_t i = 0; i < BRUSH_NB; i++) {
        const int square = Brush_Mask_Square(host.size[i]);
        for (int y = 0; y < static_cast<int>(SIDE); y++) {
            unsigned char* row = host.table[i][y];
            for (int x = 0; x < static_cast<int>(SIDE); x++) {
                const int distance = (x - RADIUS) * (x - RADIUS) + (y - RADIUS) * (y - RADIUS);
                row[x] = (host.size[i] < BRUSH_DISC_MIN ? distance == 0 : distance < square) ? 1 : 0;
            }
        }
    }
    benchmark::ClobberMemory();
}

void Masks_Against_Definition(benchmark::State& state) {
    Brush_Table host;
    Tool_Brush panel;  // without a window: what remains of a notification is the masks
    Paired_Times times;
    for ([[maybe_unused]] auto one : state) {
        times = Pair_Time(
            ROUNDS, [&] { Plain_Masks(host); },
            [&] {
                host.size[BRUSH_NB - 1] ^= 1;
                panel.Update(UPDATE_BRUSH);
            });
    }
    state.counters["plain_ms"] = times.plain * 1e3;
    state.counters["panel_ms"] = times.ours * 1e3;
    state.counters["ratio"] = times.Ratio();
}

void Unchanged_Brushes(benchmark::State& state) {
    const Brush_Table host;
    Tool_Brush panel;
    panel.Update(UPDATE_BRUSH);
    for ([[maybe_unused]] auto one : state) {
        panel.Update(UPDATE_BRUSH);
    }
}

}  // namespace

BENCHMARK(Masks_Against_Definition)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Unchanged_Brushes);

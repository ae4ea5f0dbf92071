// Painting 4,096 bins with 32 TAG bands in the histogram panel, and moving its cursor: times, not ratios, because a
// repaint must fit into one picture of a screen.
#include "base/gdi_handles.h"

#include <benchmark/benchmark.h>

#include <random>

#include "base/drawing_dc.h"
#include "histogram/tool_histo_paint.h"
#include "tests/benchmarks/ratio.h"
#include "tests/histogram/histo_scene.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int BIN_NB = 4096;
constexpr int BAND_NB = 32;
constexpr int ROUNDS = 50;

struct Painted_Panel {
    Histo_Scene scene;
    Panel_Stage stage;
    Tool_Histo panel;

    explicit Painted_Panel(int width) : stage(width, 220, Window_Axis::Down) {
        std::mt19937 random(1);
        std::vector<std::uint32_t> counts(BIN_NB);
        for (auto& count : counts) {
            count = static_cast<std::uint32_t>(random() % 1000);
        }
        Boxs box = stage.Host_Box(2, 2, width - 4, 216);
        box.border = 2;
        panel.Resize(&box);
        Histo_Record_Give(panel, {}, counts);
        scene.Tags(BAND_NB);
        panel.range_nb = BAND_NB;
        for (int band = 0; band < BAND_NB; ++band) {
            scene.Tag_Color(band, 80 + band * 5, 255 - band * 7, 40);
            // Each covers two thirds of the grid: every pixel is painted many times over.
            panel.range_tag[band] = static_cast<std::uint16_t>(band);
            panel.range_min[band] = static_cast<float>(band * 40);
            panel.range_max[band] = static_cast<float>(band * 40 + 2700);
        }
        panel.Draw();
    }
};

/** Until the window system is through with it, not only until it was asked. */
void Finish(const Painted_Panel& painted) {
    painted.stage.Read();
}

/** What the window system takes of a paint: pixels that are ready, shown in parts as the panel shows its own. */
void Show_Alone(const Painted_Panel& painted) {
    constexpr int columns = 140;
    static const std::vector<std::uint32_t> pixels(static_cast<std::size_t>(columns) * 216, 0x203040);
    const Drawing_DC dc(painted.stage.Window(), "bench");
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = columns;
    info.bmiHeader.biHeight = -216;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    for (int left = 2; left < painted.stage.width - 2; left += columns) {
        ::SetDIBitsToDevice(dc.Get(), left, 2, columns, 216, 0, 0, 0, 216, pixels.data(), &info, DIB_RGB_COLORS);
    }
}

void Bench_Paint(benchmark::State& state) {
    Painted_Panel painted(static_cast<int>(state.range(0)));
    Paired_Times times;
    Paired_Times alone;
    for (auto _ : state) {
        times = Pair_Time(
            ROUNDS, [&] { Finish(painted); },
            [&] {
                Histo_Paint(painted.panel);
                Finish(painted);
            },
            Of_Rounds::Least);
        alone = Pair_Time(
            ROUNDS, [&] { Finish(painted); },
            [&] {
                Show_Alone(painted);
                Finish(painted);
            },
            Of_Rounds::Least);
    }
    state.counters["paint_ms"] = (times.ours - times.plain) * 1e3;
    state.counters["alone_ms"] = (alone.ours - alone.plain) * 1e3;
}

void Bench_Cursor(benchmark::State& state) {
    Painted_Panel painted(static_cast<int>(state.range(0)));
    Scene_Object& frame = painted.scene.Add_Frame();
    int level = 0;
    constexpr int moves = 20;
    Paired_Times times;
    for (auto _ : state) {
        times = Pair_Time(
            ROUNDS, [&] { Finish(painted); },
            [&] {
                for (int move = 0; move < moves; ++move) {
                    level = (level + 317) % BIN_NB;
                    painted.scene.Mouse_Over(frame, level);
                    Histo_Cursor(painted.panel);
                }
                Finish(painted);
            },
            Of_Rounds::Least);
    }
    state.counters["move_ms"] = (times.ours - times.plain) * 1e3 / moves;
}

}  // namespace

BENCHMARK(Bench_Paint)->Arg(300)->Arg(900)->Iterations(1);
BENCHMARK(Bench_Cursor)->Arg(300)->Arg(900)->Iterations(1);

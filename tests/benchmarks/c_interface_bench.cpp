// What a forwarded event costs more through the C interface than by the panel's own call.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "c_interface/kit_panels.h"
#include "panels/tool_tag.h"
#include "tests/benchmarks/ratio.h"
#include "tests/support/panel_window.h"

namespace {

constexpr int ROUNDS = 301;
constexpr int EVENTS = 2000;  // a round; one is shorter than the clock's step
constexpr int PLACE = 40;

/** The pointer leaves a panel that it was not over: no window is asked and nothing drawn, so that what is measured is
 * the way to the panel. A motion costs some 90 microseconds by either way under Wine. */
void Forwarded_Event(benchmark::State& state) {
    const Panel_Window window(Window_Axis::Down, 400, 120);
    kit_settings settings = {};
    settings.size = sizeof settings;
    settings.abi_version = KIT_ABI_VERSION;
    kit_start(&settings);
    kit_panel_settings wanted = {};
    wanted.size = sizeof wanted;
    wanted.kind = KIT_PANEL_TAG;
    wanted.window = window.Get();
    wanted.width = 400;
    wanted.height = 120;
    kit_handle panel = 0;
    kit_panel_create(&wanted, &panel);
    Tool_Tag plain_panel;
    Boxs box = window.Host_Box(0, 0, 400, 120);
    plain_panel.Resize(&box);
    window.Point_At(PLACE, PLACE);
    const kit_input input = {sizeof(kit_input), KIT_INPUT_LEAVE, YCursor_X, YCursor_Y, 0, 0};
    std::int64_t taken = 0;
    for (auto _ : state) {
        const Paired_Times times = Pair_Time(
            ROUNDS,
            [&] {
                for (int event = 0; event < EVENTS; ++event) {
                    YCursor_X = input.x;
                    YCursor_Y = input.y;
                    plain_panel.Leave();
                    ++taken;
                }
            },
            [&] {
                for (int event = 0; event < EVENTS; ++event) {
                    std::int32_t used = 0;
                    kit_panel_input(panel, &input, &used);
                    taken += used;
                }
            });
        state.counters["plain_ns"] = times.plain / EVENTS * 1e9;
        state.counters["c_ns"] = times.ours / EVENTS * 1e9;
        state.counters["more_ns"] = (times.ours - times.plain) / EVENTS * 1e9;
    }
    benchmark::DoNotOptimize(taken);
    kit_stop();
}
BENCHMARK(Forwarded_Event)->Iterations(1);

}  // namespace

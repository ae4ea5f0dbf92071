// The TAG panel's promises of speed: an update without a change draws nothing, another current TAG repaints marks only,
// 256 TAGs in view are drawn well within a frame, and TAGs out of view cost an event a look at their position only.
#include "base/gdi_handles.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>

#include "panels/tool_tag.h"
#include "tests/benchmarks/ratio.h"
#include "tests/support/import_hook.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int WINDOW_WIDTH = 900;
constexpr int WINDOW_HEIGHT = 700;  // pixels
constexpr int ROW = 20;
constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr const char* WIDGETS = "Kit_Widgets.dll";

/** A laid out panel in a window of its own. */
class Tag_Bench {
  public:
    /** @param tag_nb TAGs in the table; @param row_nb rows in view */
    Tag_Bench(int tag_nb, int row_nb) : window(Panel_Window_Make(WINDOW_WIDTH, WINDOW_HEIGHT)) {
        Window_Axis_Set(window, Window_Axis::Down);
        const std::pair<const char*, int> dimensions[] = {{"$INTERFACE_BORDER_DIM", 2},
                                                          {"$INTERFACE_BUTTON_DIM_SML", ROW - 2},
                                                          {"$INTERFACE_CURSOR_DIM", 14},
                                                          {"$INTERFACE_SPACE_DIM", 4}};
        for (const auto& [name, pixels] : dimensions) {
            Variable_Define_Scalar(name, VARIABLE_SIGNED_16, pixels);
        }
        Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, tag_nb);
        Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
        for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK"}) {
            Variable_Define_Array(name, VARIABLE_UNSIGNED_8, tag_nb);
        }
        Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, tag_nb);
        for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
            auto* component = static_cast<std::uint16_t*>(Variable_Define_Array(name, VARIABLE_UNSIGNED_16, tag_nb));
            for (int tag = 0; tag < tag_nb; tag++) {
                component[tag] = static_cast<std::uint16_t>((tag * 7919 + name[5] * 4001) & 0xFFFF);
            }
        }
        for (int tag = 0; tag < tag_nb; tag++) {
            Variable_Set_Array_Text("$TAG_LABEL", tag, ("Segment " + std::to_string(tag)).c_str());
        }
        Boxs box;
        box.width = WINDOW_WIDTH;
        box.height = static_cast<short>(row_nb * ROW + 6);
        box.border = 1;
        box.Set_Color(90, 100, 110);
        box.window = window;
        panel.Resize(&box);
        panel.Update(~0ULL);
        panel.Draw();
    }
    ~Tag_Bench() {
        Window_Forget(window);
        Panel_Window_End(window);
    }
    Tag_Bench(const Tag_Bench&) = delete;
    Tag_Bench& operator=(const Tag_Bench&) = delete;

    void Point_At(int x, int y) const {
        Panel_Window_To_Screen(window, &x, &y);
        YCursor_X = x;
        YCursor_Y = y;
    }

    HWND window;
    Tool_Tag panel{static_cast<unsigned short>(TAG_CHECK_SELECT | TAG_GREY_DISABLED)};
};

constexpr unsigned __int64 EVERYTHING =
    UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR | UPDATE_TAG_LABEL;

void Update_Unchanged(benchmark::State& state) {
    Tag_Bench bench(256, 8);
    std::uint64_t calls = 0;
    {
        const Import_Counter gdi(WIDGETS, "gdi32.dll");
        const Import_Counter user(WIDGETS, "user32.dll");
        bench.panel.Update(EVERYTHING);
        calls = gdi.Calls() + user.Calls();
    }
    for (auto _ : state) {
        bench.panel.Update(EVERYTHING);
    }
    state.counters["gdi_calls"] = static_cast<double>(calls);
    if (calls != 0) {
        state.SkipWithError("an update without a change drew");
    }
}
BENCHMARK(Update_Unchanged)->Unit(benchmark::kMicrosecond);

/** Visible TAGs as argument. */
void Update_Current(benchmark::State& state) {
    Tag_Bench bench(256, static_cast<int>(state.range(0)) / 4);
    int tag = 0;
    Widget_Counters_Reset();
    for (auto _ : state) {
        tag ^= 1;
        Variable_Set("$TAG_CUR", tag);
        bench.panel.Update(UPDATE_TAG_CUR);
    }
    if (Widget_Counters_Get().draws != 0) {
        state.SkipWithError("another current TAG drew whole buttons");
    }
}
BENCHMARK(Update_Current)->Arg(32)->Arg(128)->Unit(benchmark::kMicrosecond);

/** The least of many: other programs on the same core only make it longer. */
template <class Operation>
double Least_Milliseconds(Operation operation) {
    constexpr int rounds = 200;
    const Paired_Times times = Pair_Time(
        rounds, [] {}, operation, Of_Rounds::Least);
    return times.ours * 1e3;
}

/** What the window system takes of a drawing at least: 256 captions into a picture, and the picture to the screen. */
void Texts_And_Copy_Alone(HWND window) {
    static const Dib_Picture picture(nullptr, WINDOW_WIDTH, WINDOW_HEIGHT);
    static const Gdi_Font font(
        ::CreateFontA(-13, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, CLEARTYPE_QUALITY, 0, "Arial"));
    const Selected_Object selected(picture.Get_DC(), font.Get());
    ::SetBkMode(picture.Get_DC(), TRANSPARENT);
    for (int tag = 0; tag < 256; tag++) {
        const std::wstring text = L"Segment " + std::to_wstring(tag);
        const int x = tag % 4 * 220;
        const int y = tag / 4 * 10;
        const RECT cut = {x, y, x + 200, y + 10};
        ::ExtTextOutW(picture.Get_DC(), x + 80, y - 2, ETO_CLIPPED, &cut, text.c_str(), static_cast<UINT>(text.size()),
                      nullptr);
    }
    const Window_DC dc(window);
    ::BitBlt(dc.Get(), 0, 0, WINDOW_WIDTH, WINDOW_HEIGHT, picture.Get_DC(), 0, 0, SRCCOPY);
}

/** All 256 TAGs in view: rows of half the height. */
void Draw_All(benchmark::State& state) {
    Tag_Bench bench(256, 8);
    Variable_Set("$INTERFACE_BUTTON_DIM_SML", 9);
    Variable_Set("$INTERFACE_BORDER_DIM", 1);
    Boxs box;
    box.width = WINDOW_WIDTH;
    box.height = WINDOW_HEIGHT;
    box.border = 1;
    box.window = bench.window;
    bench.panel.Resize(&box);
    Widget_Counters_Reset();
    bench.panel.Draw();
    state.counters["widgets"] = Widget_Counters_Get().draws;
    if (Widget_Counters_Get().draws < 256) {
        state.SkipWithError("not all TAGs are in view");
    }
    const double alone = Least_Milliseconds([&bench] { Texts_And_Copy_Alone(bench.window); });
    state.counters["alone_ms"] = alone;
    state.counters["least_ms"] = Least_Milliseconds([&bench] { bench.panel.Draw(); });
    for (auto _ : state) {
        bench.panel.Draw();
    }
}
BENCHMARK(Draw_All)->Unit(benchmark::kMillisecond);

/** The same, collected in the window's back buffer as a host paints. */
void Draw_All_Buffered(benchmark::State& state) {
    Tag_Bench bench(256, 8);
    Variable_Set("$INTERFACE_BUTTON_DIM_SML", 9);
    Variable_Set("$INTERFACE_BORDER_DIM", 1);
    Boxs box;
    box.width = WINDOW_WIDTH;
    box.height = WINDOW_HEIGHT;
    box.border = 1;
    box.window = bench.window;
    bench.panel.Resize(&box);
    for (auto _ : state) {
        Window_Buffer_Begin(bench.window);
        bench.panel.Draw();
        Window_Buffer_End(bench.window);
    }
}
BENCHMARK(Draw_All_Buffered)->Unit(benchmark::kMillisecond);

/** 32 TAGs in view, of as many as the argument says; no button under the pointer. */
void Motion_Over(benchmark::State& state) {
    Tag_Bench bench(static_cast<int>(state.range(0)), 8);
    bench.Point_At(WINDOW_WIDTH - 1, WINDOW_HEIGHT - 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(bench.panel.Motion(0));
    }
}
BENCHMARK(Motion_Over)->Arg(32)->Arg(256)->Unit(benchmark::kMicrosecond);

void Click_Beside(benchmark::State& state) {
    Tag_Bench bench(static_cast<int>(state.range(0)), 8);
    bench.Point_At(WINDOW_WIDTH - 1, WINDOW_HEIGHT - 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(bench.panel.Click(PRESS));
    }
}
BENCHMARK(Click_Beside)->Arg(32)->Arg(256)->Unit(benchmark::kMicrosecond);

}  // namespace

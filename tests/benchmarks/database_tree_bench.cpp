// The tree of the database panel with 60,000 rows and a million: redraw, scroll step, click and range selection. Times,
// not ratios, because a redraw must fit into one picture of a screen; and the calls to GDI, which do not depend on the
// machine.
#include "base/gdi_handles.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "database/tool_db_fct.h"
#include "tests/benchmarks/ratio.h"
#include "tests/database/tree_scene.h"
#include "tests/support/import_hook.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int RECORD_NB = 60000;
constexpr int LEAVES = 199;  // of each branch
constexpr int ROUNDS = 50;
constexpr int WIDTH = 460;
constexpr int HEIGHT = 760;

struct Shown_Tree {
    Tree_Scene tree;
    Panel_Stage stage{WIDTH, HEIGHT, Window_Axis::Up};
    Boxs box = stage.Host_Box(4, 24, WIDTH - 28, HEIGHT - 30);
    Sliders vertical;
    Sliders horizontal;

    explicit Shown_Tree(int record_nb) {
        char path[MAX_PATH] = {};
        ::GetModuleFileNameA(nullptr, path, MAX_PATH - 1);
        const std::string program = path;
        Variable_Define_Text("$DEFAULT_ICON_PATH",
                             (program.substr(0, program.find_last_of("/\\") + 1) + "icons").c_str());
        for (int i = 0; i < record_nb; ++i) {
            const bool branch = i % (LEAVES + 1) == 0;
            const std::string name = "text of record " + std::to_string(i);
            tree.Add(branch ? 0 : 1, branch ? "File" : "Frame", name.c_str());
        }
        tree.Finish();
        for (DB_List& record : tree.rows) {
            record.state = DB_STATE_CHECKED;  // each row with both its icons
        }
        Place(vertical, WIDTH - 20, 24, 16, HEIGHT - 30, STYLE_SLIDER_VERTICAL);
        Place(horizontal, 4, 4, WIDTH - 28, 16, STYLE_SCROLL_BAR);
        Draw();
    }
    ~Shown_Tree() { DB_List_Forget(tree.Pt()); }
    void Place(Sliders& slider, int x, int y, int width, int height, unsigned int style) const {
        slider.style = style;
        slider.x = static_cast<short>(x);
        slider.y = static_cast<short>(y);
        slider.width = static_cast<short>(width);
        slider.height = static_cast<short>(height);
        slider.Init(stage.Window());
    }
    void Draw() { DB_List_Draw(&box, tree.Nb(), tree.Pt(), &horizontal, &vertical); }
    /** Until the window system is through with it, not only until it was asked. */
    void Finish() const { benchmark::DoNotOptimize(stage.Read()); }
    void Click(int row) {
        stage.Point_At(box.x + 100, box.y + box.height + Tree_Pixels(vertical.value) - Tree_Row_Middle(row));
        DB_List_Click(&box, MOUSE_PRESS | MOUSE_LEFT, tree.Nb(), tree.Pt(), &horizontal, &vertical);
    }
};

Shown_Tree& Shown() {
    static const auto shown = std::make_unique<Shown_Tree>(RECORD_NB);
    return *shown;
}

template <class Operation>
double Milliseconds(const Shown_Tree& shown, int rounds, Operation operation) {
    const Paired_Times times = Pair_Time(
        rounds, [&shown] { shown.Finish(); },
        [&] {
            operation();
            shown.Finish();
        },
        Of_Rounds::Least);
    return (times.ours - times.plain) * 1e3;
}
template <class Operation>
double Milliseconds(Operation operation) {
    return Milliseconds(Shown(), ROUNDS, operation);
}

void Bench_Redraw(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    shown.vertical.value = static_cast<float>(state.range(0)) * DB_ROW_HEIGHT;
    double time = 0.0;
    for (auto _ : state) {
        time = Milliseconds([&] { shown.Draw(); });
    }
    const Import_Counter counter("", "gdi32.dll");
    shown.Draw();
    state.counters["redraw_ms"] = time;
    state.counters["gdi_calls"] = static_cast<double>(counter.Calls());
    state.counters["measured_texts"] = static_cast<double>(counter.Calls("GetTextExtentPoint32A"));
}

void Bench_Scroll_Step(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    shown.vertical.value = 0.0F;
    for (auto _ : state) {
        state.counters["step_ms"] = Milliseconds([&] {
            shown.vertical.value += 3 * DB_ROW_HEIGHT;
            shown.vertical.Adjust();
            shown.Draw();
        });
    }
}

/** A click that begins a drag: no drawing. */
void Bench_Click(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    const int row = static_cast<int>(state.range(0));
    shown.vertical.value = static_cast<float>((row - 5) * DB_ROW_HEIGHT);
    shown.Draw();
    for (auto _ : state) {
        shown.Click(row);
    }
    db_drag = {};
}

/** Rows 1 to 59,999, marks of the branches and the drawing included. */
void Bench_Range(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    shown.vertical.value = 0.0F;
    db_drag.anchor_row = 1;
    db_drag.end_row = RECORD_NB - 1;
    for (auto _ : state) {
        state.counters["range_ms"] = Milliseconds([&] {
            DB_List_Select_Range(&shown.box, 2, shown.tree.Nb(), shown.tree.Pt(), &shown.horizontal, &shown.vertical);
        });
    }
    db_drag = {};
}

/** One row near the end, as with a click: what the range costs without its rows. */
void Bench_Range_Of_One_Row(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    db_drag.anchor_row = db_drag.end_row = RECORD_NB - 2;
    for (auto _ : state) {
        state.counters["range_ms"] = Milliseconds([&] {
            DB_List_Select_Range(&shown.box, 2, shown.tree.Nb(), shown.tree.Pt(), &shown.horizontal, &shown.vertical);
        });
    }
    db_drag = {};
}

void Bench_Toggle(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    shown.vertical.value = 0.0F;
    for (auto _ : state) {
        state.counters["toggle_ms"] = Milliseconds([&] {
            shown.tree[0].flag ^= DB_FLAG_EXPANDED;
            shown.Draw();
        });
    }
}

/** A million rows, all in sight of the slider or, with `collapsed`, in branches that are not. */
void Bench_Million(benchmark::State& state, bool collapsed) {
    constexpr int million = 1000000;
    constexpr int few_rounds = 15;
    Shown_Tree shown(million);
    if (collapsed) {
        for (DB_List& record : shown.tree.rows) {
            record.flag = static_cast<std::uint16_t>(record.flag & ~DB_FLAG_EXPANDED);
        }
        shown.Draw();
    }
    const int middle = collapsed ? million / (LEAVES + 1) / 2 : million / 2;
    for (auto _ : state) {
        shown.vertical.value = static_cast<float>(middle * DB_ROW_HEIGHT);
        state.counters["redraw_ms"] = Milliseconds(shown, few_rounds, [&shown] { shown.Draw(); });
        state.counters["click_ms"] = Milliseconds(shown, few_rounds, [&shown, middle] { shown.Click(middle + 5); });
        db_drag = {};
        shown.vertical.value = 0.0F;
        db_drag.anchor_row = 0;
        db_drag.end_row = million - 1;
        state.counters["all_ms"] = Milliseconds(shown, few_rounds, [&shown] {
            DB_List_Select_Range(&shown.box, 2, shown.tree.Nb(), shown.tree.Pt(), &shown.horizontal, &shown.vertical);
        });
        db_drag = {};
    }
}

/** Every text is measured: the first drawing. */
void Bench_First_Drawing(benchmark::State& state) {
    Shown_Tree& shown = Shown();
    for (auto _ : state) {
        DB_List_Forget(shown.tree.Pt());
        shown.Draw();
    }
}

}  // namespace

BENCHMARK(Bench_Redraw)->Arg(0)->Arg(30000)->Arg(59900)->Iterations(1);
BENCHMARK(Bench_Scroll_Step)->Iterations(1);
BENCHMARK(Bench_Click)->Arg(10)->Arg(59900);
BENCHMARK(Bench_Range)->Iterations(1);
BENCHMARK(Bench_Range_Of_One_Row)->Iterations(1);
BENCHMARK(Bench_Toggle)->Iterations(1);
BENCHMARK(Bench_First_Drawing)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(Bench_Million, expanded, false)->Iterations(1);
BENCHMARK_CAPTURE(Bench_Million, collapsed, true)->Iterations(1);

// The class tree editor with 5,000 classes: drawing the diagram within a picture of the screen, hovering by redrawing
// only what changed, and drag feedback for one node and for thousands.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_edit.h"
#include "database/tool_db_fct.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int CLASS_NB = 5000;
constexpr int WIDTH = 1000;
constexpr int HEIGHT = 700;  // pixels
constexpr int MARGIN = 10;
constexpr int SPACE = 6;
constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr int DRAG = MOUSE_DRAG | MOUSE_LEFT;

/** A random hierarchy and its diagram; with `flat` all classes below the root. */
class Diagram {
  public:
    explicit Diagram(bool flat) : stage(WIDTH, HEIGHT, Window_Axis::Up), view(2 | DB_MODE_EDIT) {
        Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, SPACE);
        std::mt19937 random(1);
        for (int i = 0; i < CLASS_NB; ++i) {
            classes.push_back(std::make_unique<Quorel_2D>());
            Quorel_2D& made = *classes.back();
            made.Title_Set(("class " + std::to_string(i)).c_str());
            made.Name_Set("a name of the usual length");
            if (i > 0) {
                classes[flat ? 0 : random() % static_cast<std::size_t>(i)]->Child_Add(&made);
            }
        }
        Variable_Define_Pointer("$DB_2D_ROOT_PT", classes[0].get());
        view.List_Create_From_DB(&nb, &list_pt, 0, 0, nullptr);
        box = stage.Host_Box(MARGIN, MARGIN, WIDTH - 2 * MARGIN, HEIGHT - 2 * MARGIN);
        box.border = 1;
        box.Set_Color(90, 100, 110);
        vertical.style = STYLE_SLIDER_VERTICAL;
        horizontal.style = STYLE_SCROLL_BAR;
        Draw();
        const DB_Tree_Point middle = Edit_Cell(list_pt[nb / 2]);
        vertical.value = static_cast<float>(middle.y - HEIGHT / 2);
        horizontal.value = static_cast<float>(flat ? 0 : middle.x - EDIT_CELL_WIDTH);
        Draw();
    }
    ~Diagram() {
        DB_List_Forget(list_pt);
        DB_Edit_Forget(list_pt);
        DB_List_Array_Free(&nb, &list_pt);
        db_drag = {};
    }
    Diagram(const Diagram&) = delete;
    Diagram& operator=(const Diagram&) = delete;

    void Draw() { DB_Edit_Draw(2, &box, nb, list_pt, &horizontal, &vertical); }
    void Motion(int up_down) { DB_Edit_Motion_DB(2, &box, up_down, nb, list_pt, &horizontal, &vertical); }
    void Point_At(const DB_Tree_Point& at) const {
        stage.Point_At(box.x + SPACE - static_cast<int>(horizontal.value) + at.x,
                       box.y + box.height + static_cast<int>(vertical.value) - at.y);
    }
    /** Bodies in the middle of the view, with a pointer position in each. */
    std::vector<DB_Tree_Point> Bodies() const {
        std::vector<DB_Tree_Point> bodies;
        for (int i = 1; i < nb; ++i) {
            const DB_Tree_Point cell = Edit_Cell(list_pt[i]);
            const int x = cell.x - static_cast<int>(horizontal.value);
            const int y = cell.y - static_cast<int>(vertical.value);
            if (list_pt[i].row != DB_ROW_NONE && x >= -SPACE && x < WIDTH - 400 && y > 0 && y < HEIGHT - 100) {
                bodies.push_back({cell.x + 100, cell.y + 40});
            }
        }
        return bodies;
    }

    Panel_Stage stage;
    std::vector<std::unique_ptr<Quorel_2D>> classes;
    Tool_DB_Class view;
    int nb = 0;
    DB_List* list_pt = nullptr;
    Boxs box;
    Sliders horizontal;
    Sliders vertical;
};

void Draw_Diagram(benchmark::State& state) {
    Diagram diagram(state.range(0) != 0);
    Widget_Counters_Reset();
    diagram.Draw();
    state.counters["widgets"] = Widget_Counters_Get().draws;
    for (auto _ : state) {
        diagram.Draw();
    }
}
BENCHMARK(Draw_Diagram)->ArgName("flat")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void Hover_From_Node_To_Node(benchmark::State& state) {
    Diagram diagram(false);
    const std::vector<DB_Tree_Point> bodies = diagram.Bodies();
    if (bodies.size() < 2) {
        state.SkipWithError("no nodes in view");
        return;
    }
    std::size_t at = 0;
    Widget_Counters_Reset();
    for (auto _ : state) {
        diagram.Point_At(bodies[at++ % bodies.size()]);
        diagram.Motion(0);
    }
    state.counters["widgets_per_event"] =
        static_cast<double>(Widget_Counters_Get().draws) / static_cast<double>(state.iterations());
}
BENCHMARK(Hover_From_Node_To_Node)->Unit(benchmark::kMicrosecond);

void Hover_Within_A_Node(benchmark::State& state) {
    Diagram diagram(false);
    const DB_Tree_Point body = diagram.Bodies().back();
    int shift = 0;
    diagram.Point_At(body);
    diagram.Motion(0);
    Widget_Counters_Reset();
    for (auto _ : state) {
        shift ^= 1;
        diagram.Point_At({body.x + shift, body.y});
        diagram.Motion(0);
    }
    if (Widget_Counters_Get().draws != 0) {
        state.SkipWithError("a motion without a change drew");
    }
}
BENCHMARK(Hover_Within_A_Node)->Unit(benchmark::kMicrosecond);

/** With `all` every child of the root is dragged. */
void Drag_Feedback(benchmark::State& state) {
    const bool all = state.range(0) != 0;
    Diagram diagram(true);
    diagram.vertical.value = 0.0F;
    diagram.Draw();
    diagram.Point_At(
        Edit_Zone_Point(diagram.list_pt[all ? 0 : 1], all ? Edit_Zone::Children_Handle : Edit_Zone::Parent_Handle));
    DB_Edit_Click_DB(2, &diagram.box, PRESS, diagram.nb, diagram.list_pt, &diagram.horizontal, &diagram.vertical);
    if (!db_drag.active) {
        state.SkipWithError("no drag began");
        return;
    }
    int step = 0;
    for (auto _ : state) {
        ++step;
        diagram.Point_At({100 + step % 400, 300 + step % 200});
        diagram.Motion(DRAG);
    }
}
BENCHMARK(Drag_Feedback)->ArgName("all")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void Press_That_Drags_All(benchmark::State& state) {
    Diagram diagram(true);
    diagram.vertical.value = 0.0F;
    diagram.Draw();
    diagram.Point_At(Edit_Zone_Point(diagram.list_pt[0], Edit_Zone::Children_Handle));
    for (auto _ : state) {
        DB_Edit_Click_DB(2, &diagram.box, PRESS, diagram.nb, diagram.list_pt, &diagram.horizontal, &diagram.vertical);
    }
}
BENCHMARK(Press_That_Drags_All)->Unit(benchmark::kMillisecond);

}  // namespace

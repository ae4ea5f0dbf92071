/** The propagate panel of a laid out window with five frames, and a propagation function that keeps its calls. */
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "kits/widgets/select_drop_list.h"
#include "panels/protocol/widget_place.h"
#include "panels/tool_propagate.h"
#include "panels/tool_propagate_geometry.h"
#include "tests/panels/propagate_scene.h"

inline constexpr int PRESS = 0x12;
inline constexpr int RESULT = 4711;

/** What the propagation function was called with, and what it does meanwhile. */
struct Run {
    void* shown;
    void* target;
    double lock;
    bool wait_cursor;
};
inline std::vector<Run> runs;
inline std::function<int()> during;

inline int Function(void* shown, void* target) {
    runs.push_back({shown, target, Variable_Number("$INTERFACE_LOCK_FOCUS", -1), Wait_Cursor_Shown(true)});
    return during ? during() : RESULT;
}

inline int picked_item = DROP_LIST_NONE;
inline int Pick_Item(const Drop_List_Request&) {
    return picked_item;
}

inline std::vector<std::string> Lines_Of(const std::vector<Panel_Message>& messages) {
    std::vector<std::string> lines;
    for (const Panel_Message& one : messages) {
        lines.push_back(std::to_string(one.level) + " " + one.text);
    }
    return lines;
}

class Propagate_Panel : public testing::Test {
  protected:
    Propagate_Panel() {
        runs.clear();
        during = nullptr;
        Flag_Trace = 0;
        Drop_List_Runner_Set(Pick_Item);
        stage.Point_At(0, 0);
        Lay_Out();
    }
    ~Propagate_Panel() override {
        Drop_List_Runner_Set(nullptr);
        Flag_Trace = 0;
        during = nullptr;
        Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    }

    void Lay_Out() {
        Boxs box = stage.Host_Box(HOST.x, HOST.y, HOST.width, HOST.height);
        EXPECT_EQ(panel.Resize(&box), 1);
    }
    /** The window shows a frame of the volume, the function is set, and the panel knows. */
    void Show(int item) {
        Window_Frame_Set(&host.window, volume.At(item));
        panel.Set(Function);
        panel.Update(UPDATE_FRAME_CUR);
        Quiet();
    }
    void Quiet() {
        stage.Take_Messages();
        stage.Take_Changes();
        Widget_Counters_Reset();
        Variable_Look_Ups_Reset();
    }
    /** The host answers every change of frame with an Update before Fct_Change_Child returns. */
    void Answer_At_Once() {
        stage.on_change = [this] { panel.Update(UPDATE_FRAME_CUR); };
    }
    static unsigned int Painted() {
        const Widget_Counters counters = Widget_Counters_Get();
        return counters.draws + counters.adjusts + counters.clears;
    }
    Propagate_Layout Layout() const { return Propagate_Layout_Make(HOST, PROPAGATE_SPACE, PROPAGATE_LIST_DIM); }
    void Point_At_Middle(const Pixel_Rectangle& place) const {
        stage.Point_At(place.x + place.width / 2, place.y + place.height / 2);
    }
    void Point_At_Arrow(bool next) const {
        const Pixel_Rectangle list = Layout().list;
        stage.Point_At(list.x + list.width - (next ? 1 : 3) * PROPAGATE_ARROW_DIM / 2, list.y + list.height / 2);
    }
    int Shown_Item() const { return volume.object.Child_Get_Cur(const_cast<Quorel_Window*>(&host.window)); }

    /** What the window shows when the panel's widgets are as described. Leaves it there. */
    std::vector<std::uint32_t> Picture(int frame_nb, int item, unsigned int list_style, unsigned int up_style,
                                       unsigned int down_style) const {
        const Boxs box = stage.Host_Box(HOST.x, HOST.y, HOST.width, HOST.height);
        Boxs frame;
        Selects list;
        Buttons up;
        Buttons down;
        frame.style = 66;
        list.style = list_style;
        up.style = up_style;
        down.style = down_style;
        frame.Set_Name("Propagate");
        list.Set_Name(" Frame: ");
        up.Set_Name("Up");
        down.Set_Name("Down");
        const auto place = [&](Tools& widget, const Pixel_Rectangle& at) {
            widget.Take_Look(box);
            Widget_Place(widget, at);
        };
        place(frame, HOST);
        place(list, Layout().list);
        place(up, Layout().up);
        place(down, Layout().down);
        list.arrow = PROPAGATE_ARROW_DIM;
        list.Grow(frame_nb, 0);
        for (int i = 0; i < frame_nb; i++) {
            std::snprintf(list.item[i].text, sizeof list.item[i].text, "%d", i + 1);
        }
        list.current = static_cast<short>(item);
        frame.Init(stage.Window());
        list.Init(stage.Window());
        up.Init(stage.Window());
        down.Init(stage.Window());
        stage.Wipe();
        frame.Draw();
        list.Draw();
        up.Draw();
        down.Draw();
        return stage.Read();
    }
    void Expect_Picture(int frame_nb, int item, unsigned int list_style, unsigned int up_style, unsigned int down_style,
                        const char* when) const {
        const auto shown = stage.Read();
        EXPECT_TRUE(shown == Picture(frame_nb, item, list_style, up_style, down_style)) << when;
    }

    static constexpr Pixel_Rectangle HOST = {6, 8, 296, 48};
    Panel_Stage stage{310, 64, Window_Axis::Up};
    Propagate_Host host;
    Stage_Volume volume{5};
    Tool_Propagate panel;
};

inline constexpr const char* WARNING_TEXT = "2 \xF1\x05WARNING:\x02 No function associated with propagate";
inline constexpr const char* FAILURE_TEXT = "2 \xF1\x05WARNING:\x02 The propagation ended by an error";
inline constexpr unsigned int OFF = 35;
inline constexpr unsigned int LIST_ON = 0x2100;
inline constexpr unsigned int LIST_OFF = 0x2123;

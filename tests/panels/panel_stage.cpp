#include "tests/panels/panel_stage.h"

#include <new>
#include <utility>

namespace {
constexpr std::uint32_t WIPE_COLOR = 0x123456;
}

Panel_Stage::Panel_Stage(int in_width, int in_height, Window_Axis in_axis)
    : width(in_width), height(in_height), window(Stage_Window_Make(in_width, in_height)), axis(in_axis) {
    Window_Axis_Set(window, axis);
    Wipe();
    Message_Receiver_Add(Receive, this);
    Request_Listener listener;
    listener.change_child = Change;
    listener.context = this;
    Request_Listener_Set(listener);
    Widget_Counters_Reset();
}

Panel_Stage::~Panel_Stage() {
    Request_Listener_Set({});
    Message_Receiver_Remove(Receive, this);
    Window_Forget(window);
    Stage_Window_End(window);
}

Boxs Panel_Stage::Host_Box(int x, int y, int box_width, int box_height) const {
    Boxs box;
    box.x = static_cast<short>(x);
    box.y = static_cast<short>(y);
    box.width = static_cast<short>(box_width);
    box.height = static_cast<short>(box_height);
    box.Set_Color(90, 100, 110);
    box.window = window;
    return box;
}

std::vector<std::uint32_t> Panel_Stage::Read() const {
    return Stage_Window_Read(window, width, height);
}

void Panel_Stage::Wipe() const {
    Stage_Window_Fill(window, width, height, WIPE_COLOR);
}

void Panel_Stage::Point_At(int x, int y) const {
    int row = axis == Window_Axis::Up ? height - 1 - y : y;
    Stage_Window_To_Screen(window, &x, &row);
    YCursor_X = x;
    YCursor_Y = row;
}

std::size_t Panel_Stage::Index(int x, int y) const {
    return static_cast<std::size_t>(axis == Window_Axis::Up ? height - 1 - y : y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
}

std::vector<Stage_Message> Panel_Stage::Take_Messages() {
    return std::exchange(messages, {});
}

std::vector<Stage_Change> Panel_Stage::Take_Changes() {
    return std::exchange(changes, {});
}

void Panel_Stage::Receive(void* context, HWND, int level, const char* text) {
    try {
        static_cast<Panel_Stage*>(context)->messages.push_back({level, text});
    } catch (const std::bad_alloc&) {  // a test makes allocations fail: the message is lost, not the panel
    }
}

void Panel_Stage::Change(void* context, Quorel_Window* at, Quorel_2D* to, Quorel_2D* from) {
    auto* stage = static_cast<Panel_Stage*>(context);
    try {
        stage->changes.push_back({at, to, from});
    } catch (const std::bad_alloc&) {
    }
    if (stage->on_change) {
        stage->on_change();
    }
}

#include "tests/support/panel_stage.h"

Panel_Stage::Panel_Stage(int in_width, int in_height, Window_Axis axis)
    : width(in_width), height(in_height), window(axis, in_width, in_height) {
    requests.on_change_child = [this](const Panel_Request&) {
        if (on_change) {
            on_change();
        }
    };
    Widget_Counters_Reset();
}

std::size_t Panel_Stage::Index(int x, int y) const {
    return static_cast<std::size_t>(window.Row(y)) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
}

std::vector<Frame_Change> Panel_Stage::Take_Changes() {
    std::vector<Frame_Change> changes;
    for (const Panel_Request& request : requests.Take()) {
        if (request.kind == Panel_Request::Kind::Change_Child) {
            changes.push_back({static_cast<Quorel_Window*>(request.a), static_cast<Quorel_2D*>(request.b),
                               static_cast<Quorel_2D*>(request.c)});
        }
    }
    return changes;
}

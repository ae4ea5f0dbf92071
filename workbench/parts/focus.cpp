#include "workbench/parts/focus.h"

#include <array>
#include <string>

namespace workbench {

namespace {

constexpr std::array<const char*, 7> NAMES = {"Image", "TAG", "Brush", "Frames", "Markers", "Histogram", "Database"};

}  // namespace

void Focus::Set(Pane wanted) {
    pane = wanted;
    host.mark(pane);
    if (pane != Pane::None) {
        host.tell((std::string(NAMES[static_cast<std::size_t>(pane)]) + " has the keyboard; Tab goes on").c_str());
    }
}

void Focus::Focus_Step(int step) {
    const int count = static_cast<int>(Pane::Database) + (host.is_database() ? 1 : 0);
    const int start = pane == Pane::None ? (step > 0 ? -1 : 0) : static_cast<int>(pane);
    host.cursor_end();
    Set(static_cast<Pane>(((start + step) % count + count) % count));
}

void Focus::Panel_Fold() {
    if (Is_Tool_Pane(pane)) {
        host.fold(Tool_Of(pane));
    } else {
        host.tell("Tab marks a panel, X folds it");
    }
}

}  // namespace workbench

#include "workbench/keyboard_control.h"

#include <algorithm>
#include <cmath>

#include "workbench/database_control.h"
#include "workbench/model/pane_keys.h"
#include "workbench/parts/layout_control.h"
#include "workbench/parts/tag_control.h"
#include "workbench/tools/tool_box.h"

namespace workbench {

namespace {

constexpr int COLUMNS = 4;      // of the label panels
constexpr int LARGE_STEP = 10;  // pixels, with Shift

bool Is_Shift() {
    return ::GetKeyState(VK_SHIFT) < 0;
}

}  // namespace

Focus_Host Keyboard_Control::Focus_Services() {
    Focus_Host services;
    services.is_database = [this] { return of.database.Is_Database(); };
    services.mark = [this](Pane pane) { Mark(pane); };
    services.cursor_end = [this] { of.image.Slices().Cursor_Set(false); };
    services.fold = [this](int tool) { of.panels.Area().Fold_Toggle(tool); };
    services.tell = [this](const char* text) { of.dialogs.Tell(text); };
    return services;
}

void Keyboard_Control::Mark(Pane pane) {
    of.image.Focus_Set(pane == Pane::Image);
    of.panels.Area().Focus_Set(Is_Tool_Pane(pane) ? Tool_Of(pane) : -1);
    of.database.Column().Focus_Set(pane == Pane::Database);
    of.dialogs.Log("focus " + std::to_string(static_cast<int>(pane)));
    if (pane == Pane::None) {
        return;
    }
    HWND const place = pane == Pane::Image      ? of.image.Handle()
                       : pane == Pane::Database ? of.database.Column().Panel_Window()
                                                : of.panels.Host(pane).Handle();
    ::NotifyWinEvent(EVENT_OBJECT_FOCUS, place, OBJID_CLIENT, CHILDID_SELF);
}

void Keyboard_Control::Cursor_Set(bool on) {
    if (on) {
        of.layouts.Slices_Show();
    }
    of.image.Slices().Cursor_Set(on);
    if (of.image.Slices().Is_Cursor()) {
        of.focus.Set(Pane::Image);
        of.dialogs.Tell(
            "Arrows move the cursor, Shift+arrows by ten; Space paints, Backspace erases, Enter holds the pen");
    } else {
        of.dialogs.Tell(of.work.session.Has_Volume() ? "The keyboard cursor is off" : "Open an image volume first");
    }
}

bool Keyboard_Control::Has_Cursor() {
    if (!of.image.Slices().Is_Cursor()) {
        of.dialogs.Tell("I starts the keyboard cursor in the image");
    }
    return of.image.Slices().Is_Cursor();
}

void Keyboard_Control::Cursor_Act(bool erase) {
    if (erase && of.tools.Step_Back()) {
        return;
    }
    if (Has_Cursor()) {
        of.image.Slices().Cursor_Act(erase);
    }
}

void Keyboard_Control::Cursor_Pen_Set(bool down) {
    if (of.tools.Accept()) {
        return;
    }
    if (Has_Cursor()) {
        of.image.Slices().Pen_Set(down);
        of.dialogs.Tell(of.image.Slices().Is_Pen_Down() ? "The pen is down: arrows draw, Enter lifts it"
                                                        : "The pen is lifted");
    }
}

void Keyboard_Control::Cursor_Pick() {
    if (Has_Cursor()) {
        of.image.Slices().Cursor_Pick();
    }
}

void Keyboard_Control::Cross_To_Cursor() {
    if (Has_Cursor()) {
        of.planes.Cross_Set({of.image.Slices().Cursor_X(), of.image.Slices().Cursor_Y(), of.work.slice});
    }
}

void Keyboard_Control::Key(int key) {
    POINT pointer = {};
    ::GetCursorPos(&pointer);
    Panel_Host* const tool = of.panels.Area().Panel_At(pointer);
    if ((tool != nullptr && tool->Key(key)) || Pane_Key(key)) {
        return;
    }
    if (Panel_Host* host = of.database.Column().Panel_At(pointer); host != nullptr && host->Key(key)) {
        return;
    }
    const bool is_class_undo = of.database.Is_Class_Undo() && tool == nullptr;
    const Key_Context context = is_class_undo ? Key_Context::Class_Editor : Key_Context::Window;
    if (const auto call = Command_Of_Key(key, context, Is_Shift())) {
        of.execute(*call);
    }
}

bool Keyboard_Control::Pane_Key(int key) {
    if (key == KEY_ESCAPE && of.tools.Cancel()) {
        return true;
    }
    if (key == KEY_ESCAPE && (of.focus.Now() != Pane::None || of.image.Slices().Is_Cursor())) {
        of.image.Slices().Cursor_Set(false);
        of.focus.Set(Pane::None);
        return false;  // closes the banner too
    }
    switch (of.focus.Now()) {
        case Pane::Image:
            return Cursor_Key(key);
        case Pane::Tag:
            if (const auto tag = Grid_Step(of.variables.Tag_Cur(), of.variables.Tag_Nb(), COLUMNS, key)) {
                of.tags.Tag_Set(*tag, true);
                return true;
            }
            return Pane_Command(key);
        case Pane::Brush:
            if (const auto brush = Grid_Step(of.variables.Brush_Cur(), BRUSH_NB, 1, key)) {
                of.tags.Brush_Set(*brush);
                return true;
            }
            return false;
        case Pane::Frames:
            return Pane_Command(key);
        case Pane::Marker:
            if (const auto marker = Grid_Step(of.variables.Marker_Cur(), MARKER_NB, COLUMNS, key)) {
                of.tags.Marker_Set(*marker);
                return true;
            }
            return Pane_Command(key);
        case Pane::Histogram:
            return Pane_Command(key);
        case Pane::Database:
            return of.database.Is_Database() && of.database.Column().Key(key);
        default:
            return false;
    }
}

bool Keyboard_Control::Pane_Command(int key) {
    const std::optional<Command_Call> call = Command_In_Context(key, Context_Of(of.focus.Now()));
    if (call) {
        of.execute(*call);
    }
    return call.has_value();
}

bool Keyboard_Control::Cursor_Key(int key) {
    if (!of.image.Slices().Is_Cursor()) {
        return false;
    }
    const int step = Is_Shift() ? LARGE_STEP : 1;
    switch (key) {
        case KEY_LEFT:
            of.image.Slices().Cursor_Move(-step, 0);
            return true;
        case KEY_RIGHT:
            of.image.Slices().Cursor_Move(step, 0);
            return true;
        case KEY_UP:
            of.image.Slices().Cursor_Move(0, -step);
            return true;
        case KEY_DOWN:
            of.image.Slices().Cursor_Move(0, step);
            return true;
        default:
            return false;
    }
}

}  // namespace workbench

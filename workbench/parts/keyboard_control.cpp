#include "workbench/parts/keyboard_control.h"

#include <optional>

#include "host/kit_widgets.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/pane_keys.h"

namespace workbench {

namespace {

constexpr int COLUMNS = 4;      // of the label panels
constexpr int LARGE_STEP = 10;  // pixels, with Shift

}  // namespace

void Keyboard_Control::Cursor_Set(bool on) {
    if (on) {
        host.slices_show();
    }
    cursor.Cursor_Set(on);
    if (cursor.Is_Cursor()) {
        host.focus_set(Pane::Image);
        dialogs.Tell(
            "Arrows move the cursor, Shift+arrows by ten; Space paints, Backspace erases, Enter holds the pen");
    } else {
        dialogs.Tell(work.session.Has_Volume() ? "The keyboard cursor is off" : "Open an image volume first");
    }
}

bool Keyboard_Control::Has_Cursor() {
    if (!cursor.Is_Cursor()) {
        dialogs.Tell("I starts the keyboard cursor in the image");
    }
    return cursor.Is_Cursor();
}

void Keyboard_Control::Cursor_Act(bool erase) {
    if (erase && host.tool_step_back()) {
        return;
    }
    if (Has_Cursor()) {
        cursor.Cursor_Act(erase);
    }
}

void Keyboard_Control::Cursor_Pen_Set(bool down) {
    if (host.tool_accept()) {
        return;
    }
    if (Has_Cursor()) {
        cursor.Pen_Set(down);
        dialogs.Tell(cursor.Is_Pen_Down() ? "The pen is down: arrows draw, Enter lifts it" : "The pen is lifted");
    }
}

void Keyboard_Control::Cursor_Pick() {
    if (Has_Cursor()) {
        cursor.Cursor_Pick();
    }
}

void Keyboard_Control::Cross_To_Cursor() {
    if (Has_Cursor()) {
        host.cross_set({cursor.Cursor_X(), cursor.Cursor_Y(), work.slice});
    }
}

void Keyboard_Control::Key(int key) {
    if (host.tool_key(key) || Pane_Key(key) || host.database_panel_key(key)) {
        return;
    }
    const bool is_class_undo = host.is_class_undo() && !host.is_over_tool();
    const Key_Context context = is_class_undo ? Key_Context::Class_Editor : Key_Context::Window;
    if (const auto call = Command_Of_Key(key, context, host.is_shift())) {
        host.execute(*call);
    }
}

bool Keyboard_Control::Pane_Key(int key) {
    if (key == KEY_ESCAPE && host.tool_cancel()) {
        return true;
    }
    if (key == KEY_ESCAPE && (host.focus() != Pane::None || cursor.Is_Cursor())) {
        cursor.Cursor_Set(false);
        host.focus_set(Pane::None);
        return false;  // closes the banner too
    }
    switch (host.focus()) {
        case Pane::Image:
            return Cursor_Key(key);
        case Pane::Tag:
            if (const auto tag = Grid_Step(values.Tag_Cur(), values.Tag_Nb(), COLUMNS, key)) {
                host.tag_set(*tag);
                return true;
            }
            return Pane_Command(key);
        case Pane::Brush:
            if (const auto brush = Grid_Step(values.Brush_Cur(), host.brush_nb, 1, key)) {
                host.brush_set(*brush);
                return true;
            }
            return false;
        case Pane::Frames:
            return Pane_Command(key);
        case Pane::Marker:
            if (const auto marker = Grid_Step(values.Marker_Cur(), MARKER_NB, COLUMNS, key)) {
                host.marker_set(*marker);
                return true;
            }
            return Pane_Command(key);
        case Pane::Histogram:
            return Pane_Command(key);
        case Pane::Database:
            return host.database_key(key);
        default:
            return false;
    }
}

bool Keyboard_Control::Pane_Command(int key) {
    const std::optional<Command_Call> call = Command_In_Context(key, Context_Of(host.focus()));
    if (call) {
        host.execute(*call);
    }
    return call.has_value();
}

bool Keyboard_Control::Cursor_Key(int key) {
    if (!cursor.Is_Cursor()) {
        return false;
    }
    const int step = host.is_shift() ? LARGE_STEP : 1;
    switch (key) {
        case KEY_LEFT:
            cursor.Cursor_Move(-step, 0);
            return true;
        case KEY_RIGHT:
            cursor.Cursor_Move(step, 0);
            return true;
        case KEY_UP:
            cursor.Cursor_Move(0, -step);
            return true;
        case KEY_DOWN:
            cursor.Cursor_Move(0, step);
            return true;
        default:
            return false;
    }
}

}  // namespace workbench

// Everything without a mouse: which part of the window the keys act on, and what they do there.
#include <algorithm>
#include <cmath>

#include "workbench/application.h"
#include "workbench/enlarged_icon.h"
#include "workbench/model/pane_keys.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int COLUMNS = 4;          // of the label panels
constexpr int LARGE_STEP = 10;      // pixels, with Shift
constexpr float DRAG_STEP = 0.05F;  // share of the view that one key moves window or level by

bool Is_Shift() {
    return ::GetKeyState(VK_SHIFT) < 0;
}

}  // namespace

Focus_Host Application::Focus_Services() {
    Focus_Host services;
    services.is_database = [this] { return database.Is_Shown(); };
    services.mark = [this](Pane pane) { Focus_Mark(pane); };
    services.cursor_end = [this] { image.Slices().Cursor_Set(false); };
    services.fold = [this](int tool) { tool_area.Fold_Toggle(tool); };
    services.tell = [this](const char* text) { Status(Wide_Of_Utf8(text)); };
    return services;
}

void Application::Focus_Mark(Pane pane) {
    image.Slices().Focus_Set(pane == Pane::Image);
    tool_area.Focus_Set(Is_Tool_Pane(pane) ? Tool_Of(pane) : -1);
    database.Focus_Set(pane == Pane::Database);
    report.Line("focus " + std::to_string(static_cast<int>(pane)));
    if (pane == Pane::None) {
        return;
    }
    Panel_Host* const hosts[] = {tag_host, brush_host, propagate_host, marker_host, histogram_host};
    HWND const place = pane == Pane::Image      ? image.Handle()
                       : pane == Pane::Database ? database.Panel_Window()
                                                : hosts[Tool_Of(pane)]->Handle();
    ::NotifyWinEvent(EVENT_OBJECT_FOCUS, place, OBJID_CLIENT, CHILDID_SELF);
}

void Application::Level_Step(int step) {
    Window_Drag(0.0F, static_cast<float>(step) * DRAG_STEP);
}

void Application::Window_Width_Step(int step) {
    Window_Drag(static_cast<float>(step) * DRAG_STEP, 0.0F);
}

void Application::Tag_Rename_Ask() {
    Label_Ask(Text_Table::Tag_Labels);
}

void Application::Marker_Rename_Ask() {
    Label_Ask(Text_Table::Marker_Labels);
}

void Application::Cursor_Set(bool on) {
    image.Slices().Cursor_Set(on);
    if (image.Slices().Is_Cursor()) {
        focus.Set(Pane::Image);
        Status(L"Arrows move the cursor, Shift+arrows by ten; Space paints, Backspace erases, Enter holds the pen");
    } else {
        Status(session.Has_Volume() ? L"The keyboard cursor is off" : L"Open an image volume first");
    }
}

bool Application::Has_Cursor() {
    if (!image.Slices().Is_Cursor()) {
        Status(L"I starts the keyboard cursor in the image");
    }
    return image.Slices().Is_Cursor();
}

void Application::Cursor_Act(bool erase) {
    if (erase && tools.Step_Back()) {
        return;
    }
    if (Has_Cursor()) {
        image.Slices().Cursor_Act(erase);
    }
}

void Application::Cursor_Pen_Set(bool down) {
    if (tools.Accept()) {
        return;
    }
    if (Has_Cursor()) {
        image.Slices().Pen_Set(down);
        Status(image.Slices().Is_Pen_Down() ? L"The pen is down: arrows draw, Enter lifts it" : L"The pen is lifted");
    }
}

void Application::Cursor_Pick() {
    if (Has_Cursor()) {
        image.Slices().Cursor_Pick();
    }
}

bool Application::Pane_Key(int key) {
    if (key == KEY_ESCAPE && tools.Cancel()) {
        return true;
    }
    if (key == KEY_ESCAPE && (focus.Now() != Pane::None || image.Slices().Is_Cursor())) {
        image.Slices().Cursor_Set(false);
        focus.Set(Pane::None);
        return false;  // closes the banner too
    }
    switch (focus.Now()) {
        case Pane::Image:
            return Cursor_Key(key);
        case Pane::Tag:
            if (const auto tag = Grid_Step(variables.Tag_Cur(), variables.Tag_Nb(), COLUMNS, key)) {
                Tag_Set(*tag, true);
                return true;
            }
            return Pane_Command(key);
        case Pane::Brush:
            if (const auto brush = Grid_Step(variables.Brush_Cur(), BRUSH_NB, 1, key)) {
                Brush_Set(*brush);
                return true;
            }
            return false;
        case Pane::Frames:
            return Pane_Command(key);
        case Pane::Marker:
            if (const auto marker = Grid_Step(variables.Marker_Cur(), MARKER_NB, COLUMNS, key)) {
                Marker_Set(*marker);
                return true;
            }
            return Pane_Command(key);
        case Pane::Histogram:
            return Pane_Command(key);
        case Pane::Database:
            return database.Is_Shown() && database.Key(key);
        default:
            return false;
    }
}

bool Application::Pane_Command(int key) {
    const std::optional<Command_Call> call = Command_In_Context(key, Context_Of(focus.Now()));
    if (call) {
        Execute(*call);
    }
    return call.has_value();
}

bool Application::Cursor_Key(int key) {
    if (!image.Slices().Is_Cursor()) {
        return false;
    }
    const int step = Is_Shift() ? LARGE_STEP : 1;
    switch (key) {
        case KEY_LEFT:
            image.Slices().Cursor_Move(-step, 0);
            return true;
        case KEY_RIGHT:
            image.Slices().Cursor_Move(step, 0);
            return true;
        case KEY_UP:
            image.Slices().Cursor_Move(0, -step);
            return true;
        case KEY_DOWN:
            image.Slices().Cursor_Move(0, step);
            return true;
        default:
            return false;
    }
}

void Application::Label_Ask(Text_Table table) {
    const bool is_tag = table == Text_Table::Tag_Labels;
    const int index = is_tag ? variables.Tag_Cur() : variables.Marker_Cur();
    const std::wstring now = Wide_Of_Panel((is_tag ? variables.Tag_Name(index) : variables.Marker_Name(index)).c_str());
    const auto answer = Prompt(
        window.Handle(), is_tag ? L"Name of a TAG" : L"Name of a marker",
        (is_tag ? L"Name of TAG " + std::to_wstring(index) : L"Name of marker " + std::to_wstring(index + 1)) + L":",
        now);
    if (!answer || answer->empty() || *answer == now) {
        return;
    }
    const std::string label = Panel_Of_Wide(*answer);
    if (is_tag) {
        variables.Tag_Label_Set(index, label.c_str());
    } else {
        variables.Marker_Label_Set(index, label.c_str());
    }
    labels.Note();
}

void Application::Histogram_Enlarge() {
    const Buttons& button = histogram_panel.blow_button;
    POINT middle = {button.x + button.width / 2, button.y + button.height / 2};
    ::ClientToScreen(histogram_host->Handle(), &middle);
    YCursor_X = middle.x;
    YCursor_Y = middle.y;
    histogram_host->Buffered([&] {
        histogram_panel.Click(MOUSE_PRESS | MOUSE_LEFT);
        histogram_panel.Click(0);
        histogram_panel.Leave();
    });
    Enlarged_Icon_Give();
}

}  // namespace workbench

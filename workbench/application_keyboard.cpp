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

// The parts in the order of the Tab key; the tool area's panels stand in the order in which they were added.
constexpr int pane_none = -1;
constexpr int pane_image = 0;
constexpr int pane_tag = 1;
constexpr int pane_brush = 2;
constexpr int pane_frames = 3;
constexpr int pane_marker = 4;
constexpr int pane_histogram = 5;
constexpr int pane_database = 6;
constexpr int columns = 4;            // of the label panels
constexpr int large_step = 10;        // pixels, with Shift
constexpr float drag_step = 0.05F;    // share of the view that one key moves window or level by
constexpr float scale_factor = 1.6F;  // of the histogram's magnification
constexpr int width_step = 40;        // of the database column, pixels at 96 dots per inch

constexpr const wchar_t* pane_name[] = {L"Image", L"TAG", L"Brush", L"Frames", L"Markers", L"Histogram", L"Database"};

bool Is_Shift() {
    return ::GetKeyState(VK_SHIFT) < 0;
}

}  // namespace

void Application::Execute_Keyboard(Command command) {
    switch (command) {
        case Command::FOCUS_NEXT:
        case Command::FOCUS_PREVIOUS:
            return Focus_Step(command == Command::FOCUS_NEXT && !Is_Shift() ? 1 : -1);
        case Command::PANEL_FOLD:
            return focus_pane >= pane_tag && focus_pane <= pane_histogram ? tool_area.Fold_Toggle(focus_pane - pane_tag)
                                                                          : Status(L"Tab marks a panel, X folds it");
        case Command::LEVEL_UP:
        case Command::LEVEL_DOWN:
            return Window_Drag(0.0F, command == Command::LEVEL_UP ? drag_step : -drag_step);
        case Command::WINDOW_WIDER:
        case Command::WINDOW_NARROWER:
            return Window_Drag(command == Command::WINDOW_WIDER ? drag_step : -drag_step, 0.0F);
        case Command::ZOOM_IN:
        case Command::ZOOM_OUT:
            return image.Zoom_By(command == Command::ZOOM_IN ? 1 : -1);
        case Command::TAG_RENAME:
            return focus_pane == pane_marker ? Label_Ask(Text_Table::MARKER_LABELS) : Label_Ask(Text_Table::TAG_LABELS);
        case Command::MARKER_RENAME:
            return Label_Ask(Text_Table::MARKER_LABELS);
        case Command::TAG_THRESHOLD_MIN:
            return Threshold_Ask(false);
        case Command::TAG_COLORS:
            return Colors_Check();
        case Command::HISTOGRAM_HIGHER:
        case Command::HISTOGRAM_LOWER:
            hosted_histogram.Scale_Set(command == Command::HISTOGRAM_HIGHER ? histogram_panel.scale / scale_factor
                                                                            : histogram_panel.scale * scale_factor);
            histogram_host->Refresh();
            return;
        case Command::HISTOGRAM_ENLARGE:
            return Histogram_Enlarge();
        case Command::DATABASE_WIDER:
        case Command::DATABASE_NARROWER:
            Database_Show(true);
            database_width = std::max<int>(static_cast<int>(database.Client().right) +
                                               look.Px(command == Command::DATABASE_WIDER ? width_step : -width_step),
                                           look.Px(DATABASE_WIDTH_LEAST));
            return Lay_Out();
        default:
            return command >= Command::DATABASE_FILES && command <= Command::DATABASE_1D ? Database_Tab(command)
                                                                                         : Execute_Cursor(command);
    }
}

void Application::Database_Tab(Command command) {
    Database_Show(true);
    database.View_Set(
        static_cast<Database_View>(static_cast<int>(command) - static_cast<int>(Command::DATABASE_FILES)));
}

void Application::Execute_Cursor(Command command) {
    if (command == Command::CURSOR_SHOW) {
        image.Cursor_Set(!image.Is_Cursor());
        if (image.Is_Cursor()) {
            Focus_Set(pane_image);
            Status(L"Arrows move the cursor, Shift+arrows by ten; Space paints, Backspace erases, Enter holds the pen");
        } else {
            Status(session.Has_Volume() ? L"The keyboard cursor is off" : L"Open an image volume first");
        }
        return;
    }
    if (!image.Is_Cursor()) {
        return Status(L"I starts the keyboard cursor in the image");
    }
    switch (command) {
        case Command::CURSOR_PAINT:
        case Command::CURSOR_ERASE:
            return image.Cursor_Act(command == Command::CURSOR_ERASE);
        case Command::CURSOR_PEN:
            image.Pen_Set(!image.Is_Pen_Down());
            return Status(image.Is_Pen_Down() ? L"The pen is down: arrows draw, Enter lifts it" : L"The pen is lifted");
        case Command::CURSOR_PICK:
            return image.Cursor_Pick();
        default:
            return;
    }
}

void Application::Focus_Set(int pane) {
    focus_pane = pane;
    image.Focus_Set(pane == pane_image);
    tool_area.Focus_Set(pane >= pane_tag && pane <= pane_histogram ? pane - pane_tag : -1);
    database.Focus_Set(pane == pane_database);
    report.Line("focus " + std::to_string(pane));
    if (pane != pane_none) {
        Status(std::wstring(pane_name[pane]) + L" has the keyboard; Tab goes on");
        Accessible_Focus();
    }
}

void Application::Focus_Step(int direction) {
    const int count = database.Is_Shown() ? pane_database + 1 : pane_database;
    const int start = focus_pane == pane_none ? (direction > 0 ? -1 : 0) : focus_pane;
    image.Cursor_Set(false);
    Focus_Set(((start + direction) % count + count) % count);
}

void Application::Accessible_Focus() {
    Panel_Host* const hosts[] = {tag_host, brush_host, propagate_host, marker_host, histogram_host};
    HWND const place = focus_pane == pane_image      ? image.Handle()
                       : focus_pane == pane_database ? database.Panel_Window()
                                                     : hosts[focus_pane - pane_tag]->Handle();
    ::NotifyWinEvent(EVENT_OBJECT_FOCUS, place, OBJID_CLIENT, CHILDID_SELF);
}

bool Application::Pane_Key(int key) {
    if (key == KEY_ESCAPE && (focus_pane != pane_none || image.Is_Cursor())) {
        image.Cursor_Set(false);
        Focus_Set(pane_none);
        return false;  // closes the banner too
    }
    switch (focus_pane) {
        case pane_image:
            return Cursor_Key(key);
        case pane_tag:
            if (const auto tag = Grid_Step(variables.Tag_Cur(), variables.Tag_Nb(), columns, key)) {
                Tag_Set(*tag, true);
                return true;
            }
            return Pane_Command(key, Command::TAG_ENABLE, Command::TAG_RENAME);
        case pane_brush:
            if (const auto brush = Grid_Step(variables.Brush_Cur(), BRUSH_NB, 1, key)) {
                Brush_Set(*brush);
                return true;
            }
            return false;
        case pane_frames:
            if (key == KEY_BACKSPACE) {
                Execute(Command::PROPAGATE_PREVIOUS);
                return true;
            }
            return Pane_Command(key, Command::NONE, Command::PROPAGATE_NEXT);
        case pane_marker:
            if (const auto marker = Grid_Step(variables.Marker_Cur(), MARKER_NB, columns, key)) {
                Marker_Set(*marker);
                return true;
            }
            return Pane_Command(key, Command::NONE, Command::MARKER_RENAME);
        case pane_histogram:
            if (key == KEY_UP || key == KEY_DOWN) {
                Execute(key == KEY_UP ? Command::HISTOGRAM_HIGHER : Command::HISTOGRAM_LOWER);
                return true;
            }
            return Pane_Command(key, Command::NONE, Command::HISTOGRAM_ENLARGE);
        case pane_database:
            return database.Is_Shown() && database.Key(key);
        default:
            return false;
    }
}

bool Application::Pane_Command(int key, Command of_space, Command of_enter) {
    const Command command = key == ' ' ? of_space : key == KEY_ENTER ? of_enter : Command::NONE;
    if (command != Command::NONE) {
        Execute(command);
    }
    return command != Command::NONE;
}

bool Application::Cursor_Key(int key) {
    if (!image.Is_Cursor()) {
        return false;
    }
    const int step = Is_Shift() ? large_step : 1;
    switch (key) {
        case KEY_LEFT:
            image.Cursor_Move(-step, 0);
            return true;
        case KEY_RIGHT:
            image.Cursor_Move(step, 0);
            return true;
        case KEY_UP:
            image.Cursor_Move(0, -step);
            return true;
        case KEY_DOWN:
            image.Cursor_Move(0, step);
            return true;
        default:
            return false;
    }
}

void Application::Label_Ask(Text_Table table) {
    const bool is_tag = table == Text_Table::TAG_LABELS;
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
    On_Panel_Request(UPDATE_TAG_LABEL);
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

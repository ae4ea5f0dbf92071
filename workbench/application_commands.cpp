// What menu entries and keys do.
#include <algorithm>

#include "workbench/application.h"
#include "workbench/crash_report.h"
#include "workbench/keys_text.h"
#include "workbench/model/tag_table.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

void Check(HMENU menu, Command command, bool is_checked) {
    ::CheckMenuItem(menu, static_cast<UINT>(command),
                    static_cast<UINT>(MF_BYCOMMAND | (is_checked ? MF_CHECKED : MF_UNCHECKED)));
}

void Name(HMENU menu, Command command, const std::wstring& text, bool is_enabled) {
    const auto id = static_cast<UINT>(command);
    ::ModifyMenuW(menu, id, static_cast<UINT>(MF_BYCOMMAND | MF_STRING | (is_enabled ? MF_ENABLED : MF_GRAYED)), id,
                  text.c_str());
}

bool Has_Entry(HMENU menu, Command command) {
    return ::GetMenuState(menu, static_cast<UINT>(command), MF_BYCOMMAND) != static_cast<UINT>(-1);
}

}  // namespace

void Application::Menu_Refresh(HMENU menu) {
    const auto tag = static_cast<std::size_t>(variables.Tag_Cur());
    Check(menu, Command::TAG_ENABLE, variables.Tag_Enable()[tag] != 0);
    Check(menu, Command::TAG_SELECT, variables.Tag_Select()[tag] != 0);
    Check(menu, Command::TAG_LOCK, variables.Tag_Lock()[tag] != 0);
    Check(menu, Command::TAG_THRESHOLDS, is_threshold_mode);
    Check(menu, Command::CHECK_SHOWS_ENABLE, check_option == TAG_CHECK_ENABLE);
    Check(menu, Command::CHECK_SHOWS_SELECT, check_option == TAG_CHECK_SELECT);
    Check(menu, Command::CHECK_SHOWS_LOCK, check_option == TAG_CHECK_LOCK);
    Check(menu, Command::MARKER_MODE, is_marker_mode);
    Check(menu, Command::OVERLAY, is_overlay_shown);
    const bool is_all = histogram_first == 0 && histogram_last == session.Slice_Nb() - 1;
    const bool is_range = !is_histogram_of_shown && !is_histogram_of_checked;
    Check(menu, Command::HISTOGRAM_ALL, is_range && is_all);
    Check(menu, Command::HISTOGRAM_SHOWN, is_histogram_of_shown);
    Check(menu, Command::HISTOGRAM_RANGE, is_range && !is_all);
    Check(menu, Command::HISTOGRAM_OF_TAG, is_histogram_of_tag);
    Check(menu, Command::HISTOGRAM_SMOOTHED, is_histogram_smoothed);
    Check(menu, Command::BACKGROUND_LEAVE_OUT, is_background_left_out);
    Check(menu, Command::RANGE_OVERLAY, is_range_shown);
    Check(menu, Command::WHEEL_TURNED, settings.is_wheel_turned);
    Check(menu, Command::TRACE_VIEW, trace.Is_Shown());
    Check(menu, Command::DATABASE, database.Is_Shown());
    Check(menu, Command::DATABASE_EDIT, database.Is_Shown() && database.Is_Editor());
    Check(menu, Command::CURSOR_SHOW, image.Is_Cursor());
    Check(menu, Command::CURSOR_PEN, image.Is_Pen_Down());
    if (Has_Entry(menu, Command::OPEN) && !Has_Entry(menu, Command::UNDO)) {
        Recent_Menu(menu);
    }
    if (Has_Entry(menu, Command::CURSOR_SHOW)) {
        Window_Menu(menu);
    }
    Check(menu, Command::THEME, look.Theme() == Library_Theme::Light);
    Check(menu, Command::FUNCTION_COPY, propagation_kind == Propagation_Kind::COPY);
    Check(menu, Command::FUNCTION_GROW, propagation_kind == Propagation_Kind::GROW);
    Class_Menu_Refresh(menu);
    if (Has_Entry(menu, Command::UNDO)) {
        const Undo_Step* undo = session.Journal().Next_Undo();
        const Undo_Step* redo = session.Journal().Next_Redo();
        Name(menu, Command::UNDO, L"&Undo" + (undo != nullptr ? L": " + Wide_Of_Utf8(undo->title) : L"") + L"\tCtrl+Z",
             undo != nullptr);
        Name(menu, Command::REDO, L"&Redo" + (redo != nullptr ? L": " + Wide_Of_Utf8(redo->title) : L"") + L"\tCtrl+Y",
             redo != nullptr);
    }
}

void Application::Execute(Command command) {
    if (command != Command::NONE) {
        Activity_Note("command: " + Command_Name(command));
    }
    const auto digit = static_cast<int>(command) - static_cast<int>(Command::TAG_DIGIT_0);
    if (digit >= 0 && digit <= 9) {
        Tag_Set(digit, true);
        return;
    }
    if (command >= Command::OPEN && command <= Command::QUIT) {
        Execute_File(command);
    } else if (command >= Command::UNDO && command <= Command::MARKER_PREVIOUS) {
        Execute_Edit(command);
    } else if (command >= Command::FOCUS_NEXT && command <= Command::DATABASE_NARROWER) {
        Execute_Keyboard(command);
    } else if (command >= Command::WINDOW_0) {
        Window_Choose(static_cast<int>(command) - static_cast<int>(Command::WINDOW_0));
    } else if (command >= Command::RECENT_0) {
        Recent_Open(static_cast<int>(command) - static_cast<int>(Command::RECENT_0));
    } else if (command >= Command::HISTOGRAM_ALL && command <= Command::PEAKS_TO_BANDS) {
        Execute_Histogram(command);
    } else if (command >= Command::DATABASE && command <= Command::CLASS_REDO) {
        Execute_Database(command);
    } else {
        Execute_View(command);
    }
}

void Application::Execute_Edit(Command command) {
    switch (command) {
        case Command::UNDO:
        case Command::REDO:
            return Undo_Or_Redo(command == Command::REDO);
        case Command::HISTORY:
            return History_Ask();
        case Command::REMOVE_MARKER:
            return Marker_Place(variables.Marker_Cur(), Marker{});
        case Command::TAG_NEXT:
        case Command::TAG_PREVIOUS:
            return Tag_Set(Tag_Step(variables.Tag_Cur(), command == Command::TAG_NEXT ? 1 : -1, variables.Tag_Nb()),
                           true);
        case Command::TAG_GO_TO:
            return Tag_Go_To();
        case Command::TAG_ENABLE:
        case Command::TAG_SELECT:
        case Command::TAG_LOCK:
            return Tag_Toggle(command);
        case Command::TAG_THRESHOLDS:
            return Threshold_Mode_Set(!is_threshold_mode);
        case Command::TAG_THRESHOLD_MAX:
            return Threshold_Ask(true);
        case Command::TAG_MORE:
            return Tag_Nb_Grow(variables.Tag_Nb());
        case Command::CHECK_SHOWS_ENABLE:
            return Check_Mark_Set(TAG_CHECK_ENABLE);
        case Command::CHECK_SHOWS_SELECT:
            return Check_Mark_Set(TAG_CHECK_SELECT);
        case Command::CHECK_SHOWS_LOCK:
            return Check_Mark_Set(TAG_CHECK_LOCK);
        case Command::BRUSH_LARGER:
        case Command::BRUSH_SMALLER:
            return Brush_Set(variables.Brush_Cur() + (command == Command::BRUSH_LARGER ? 1 : -1));
        case Command::MARKER_MODE:
            return Marker_Mode_Set(!is_marker_mode);
        case Command::MARKER_NEXT:
        case Command::MARKER_PREVIOUS:
            return Marker_Set(variables.Marker_Cur() + (command == Command::MARKER_NEXT ? 1 : -1));
        default:
            return;
    }
}

void Application::Execute_View(Command command) {
    switch (command) {
        case Command::SLICE_NEXT:
            return Slice_Go(slice + 1);
        case Command::SLICE_PREVIOUS:
            return Slice_Go(slice - 1);
        case Command::SLICE_FIRST:
            return Slice_Go(0);
        case Command::SLICE_LAST:
            return Slice_Go(session.Slice_Nb() - 1);
        case Command::VOLUME_NEXT:
            return Volume_Go(volumes.Current() + 1);
        case Command::VOLUME_PREVIOUS:
            return Volume_Go(volumes.Current() - 1);
        case Command::ZOOM_100:
            return image.Zoom_Set(1.0);
        case Command::ZOOM_200:
            return image.Zoom_Set(2.0);
        case Command::ZOOM_TO_FIT:
            return image.Zoom_Set(ZOOM_FIT);
        case Command::WINDOW_RESET:
            return Window_Reset();
        case Command::OVERLAY:
            is_overlay_shown = !is_overlay_shown;
            return image.Refresh();
        case Command::TRACE_VIEW:
            trace.Show(!trace.Is_Shown());
            return Lay_Out();
        case Command::THEME:
            look.Theme_Set(look.Theme() == Library_Theme::Dark ? Library_Theme::Light : Library_Theme::Dark);
            return Look_Changed();
        case Command::PROPAGATE_NEXT:
        case Command::PROPAGATE_PREVIOUS:
            propagate_host->Buffered([&] { propagate_panel.Propagate(command == Command::PROPAGATE_NEXT ? 1 : -1); });
            return;
        case Command::PROPAGATE_REPEAT:
        case Command::PROPAGATE_REPEAT_BACK:
            return Propagate_Repeat(command == Command::PROPAGATE_REPEAT ? 1 : -1);
        case Command::FUNCTION_COPY:
        case Command::FUNCTION_GROW:
            return Propagation_Kind_Set(command == Command::FUNCTION_COPY ? Propagation_Kind::COPY
                                                                          : Propagation_Kind::GROW);
        case Command::KEYS_HELP:
            Text_Show(window.Handle(), L"Keys and mouse", Keys_Text(), look.Fixed());
            return;
        case Command::ABOUT:
            ::MessageBoxW(window.Handle(),
                          L"Workbench\n\nShows image volumes and edits their TAGs with the panels of Kit_Panels.dll.",
                          L"About", MB_OK);
            return;
        case Command::CLOSE_BANNER:
            return banner.Close();
        case Command::REPORT_STATE:
            return Report_State(true);
        default:
            return;
    }
}

}  // namespace workbench

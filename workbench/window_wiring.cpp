#include "workbench/window_wiring.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "workbench/application_parts.h"
#include "workbench/enlarged_window.h"

namespace workbench {

namespace {

constexpr int BESIDE_IMAGE = TOOL_AREA_WIDTH + 18;  // the tools and the frame, at most

POINT Pointer() {
    POINT pointer = {};
    ::GetCursorPos(&pointer);
    return pointer;
}

/** Draws the frame of the part that the keyboard acts on, and tells of it those who read the screen aloud. */
void Focus_Mark(Application_Parts& parts, Pane pane) {
    Database_Pane& column = parts.database.Column();
    parts.image.Focus_Set(pane == Pane::Image);
    parts.panels.Area().Focus_Set(Is_Tool_Pane(pane) ? Tool_Of(pane) : -1);
    column.Focus_Set(pane == Pane::Database);
    parts.dialogs.Log("focus " + std::to_string(static_cast<int>(pane)));
    if (pane == Pane::None) {
        return;
    }
    HWND const place = pane == Pane::Image      ? parts.image.Handle()
                       : pane == Pane::Database ? column.Panel_Window()
                                                : parts.panels.Host(pane).Handle();
    ::NotifyWinEvent(EVENT_OBJECT_FOCUS, place, OBJID_CLIENT, CHILDID_SELF);
}

/** The list and the text windows share a way to come back. */
template <class Window>
Kept_Window Kept(Application_Parts& parts, Window_Place Settings::*kept, Window& window) {
    return {kept, [&](const Window_Place& place) { window.Place_Set(place, parts.look.Px(BESIDE_IMAGE)); },
            [&] { return window.Place_Now(); }};
}

}  // namespace

Keyboard_Host Keyboard_Wires(Application_Parts& parts, std::function<void(const Command_Call&)> execute) {
    Keyboard_Host host;
    host.is_shift = [] { return ::GetKeyState(VK_SHIFT) < 0; };
    host.is_over_tool = [&parts] { return parts.panels.Area().Panel_At(Pointer()) != nullptr; };
    host.tool_key = [&parts](int key) {
        Panel_Host* const tool = parts.panels.Area().Panel_At(Pointer());
        return tool != nullptr && tool->Key(key);
    };
    host.database_panel_key = [&parts](int key) {
        Panel_Host* const panel = parts.database.Column().Panel_At(Pointer());
        return panel != nullptr && panel->Key(key);
    };
    host.is_class_undo = [&parts] { return parts.database.Is_Class_Undo(); };
    host.focus = [&parts] { return parts.focus.Now(); };
    host.focus_set = [&parts](Pane pane) { parts.focus.Set(pane); };
    host.database_key = [&parts](int key) { return parts.database.Is_Database() && parts.database.Column().Key(key); };
    host.tool_accept = [&parts] { return parts.tools.Accept(); };
    host.tool_cancel = [&parts] { return parts.tools.Cancel(); };
    host.tool_step_back = [&parts] { return parts.tools.Step_Back(); };
    host.tag_set = [&parts](int tag) { parts.tags.Tag_Set(tag, true); };
    host.brush_set = [&parts](int brush) { parts.tags.Brush_Set(brush); };
    host.marker_set = [&parts](int marker) { parts.tags.Marker_Set(marker); };
    host.slices_show = [&parts] { parts.layouts.Slices_Show(); };
    host.cross_set = [&parts](const Shown_Voxel& voxel) { parts.planes.Cross_Set(voxel); };
    host.execute = std::move(execute);
    host.brush_nb = BRUSH_NB;
    return host;
}

Focus_Host Focus_Wires(Application_Parts& parts) {
    Focus_Host host;
    host.is_database = [&parts] { return parts.database.Is_Database(); };
    host.mark = [&parts](Pane pane) { Focus_Mark(parts, pane); };
    host.cursor_end = [&parts] { parts.image.Slices().Cursor_Set(false); };
    host.fold = [&parts](int tool) { parts.panels.Area().Fold_Toggle(tool); };
    host.tell = [&parts](const char* text) { parts.dialogs.Tell(text); };
    return host;
}

Window_Parts Window_Wires(Application_Parts& parts, std::function<void()> lay_out) {
    const auto window = [&parts] { return parts.window.Handle(); };
    return {parts.options,
            parts.look,
            parts.settings,
            parts.variables,
            parts.labels,
            parts.dialogs,
            window,
            std::move(lay_out),
            [&parts, window]() -> std::vector<Kept_Window> {
                return {Kept(parts, &Settings::peaks_window, parts.histogram.Analysis()),
                        {&Settings::enlarged_window,
                         [&parts, window](const Window_Place& place) {
                             Enlarged_Place_Set(window(), parts.look.Px(BESIDE_IMAGE), place);
                         },
                         [] { return Enlarged_Place_Now(); }},
                        Kept(parts, &Settings::list_window, parts.opener.Not_Opened_List()),
                        Kept(parts, &Settings::facts_window, parts.opener.Read_List()),
                        Kept(parts, &Settings::statistics_window, parts.segmentation_services.Statistics_Window())};
            },
            [&parts](const Settings& kept) {
                parts.panels.Area().Folded_Set(kept.folded);
                parts.image.Arrange(kept.views);
                parts.trace.Show(parts.options.trace || kept.is_trace_shown);
                parts.database.Column().View_Set(static_cast<Database_View>(kept.database_view));
                parts.database.Database_Show(kept.is_database_shown);
            },
            [&parts](Settings& kept) {
                const float width = static_cast<float>(parts.database.Width_Chosen()) / parts.look.Scale();
                kept.is_trace_shown = parts.trace.Is_Shown() && !parts.options.trace;
                kept.is_database_shown = parts.database.Is_Database();
                kept.database_view = static_cast<int>(parts.database.Column().View());
                kept.database_width = std::min(static_cast<int>(std::lround(width)), DATABASE_WIDTH_MAX);
                kept.folded = parts.panels.Area().Folded();
            },
            [&parts](int pixels) { parts.database.Width_Choose(pixels); },
            [&parts] {
                parts.panels.Lay_Out();
                parts.database.Column().Lay_Out();
                parts.histogram.Analysis().Look_Changed();
            },
            [&parts](bool shown) { parts.trace.Show(shown); },
            [&parts] { return parts.trace.Is_Shown(); },
            [&parts] { parts.state_report.Write(); }};
}

Opener_Parts Opener_Wires(Application_Parts& parts, std::function<void()> deliver) {
    return {parts.look,
            parts.work,
            parts.labels,
            parts.objects,
            parts.dialogs,
            parts.report,
            parts.settings.Now(),
            [&parts] { return parts.label_files.May_Leave(); },
            [&parts] { return parts.database.May_Leave(); },
            [&parts] { parts.database.Images_Leave(); },
            [&parts](const std::filesystem::path& file) { parts.label_files.Load(file); },
            [&parts](Quorel_2D* root, const std::filesystem::path& first) { return parts.database.Open(root, first); },
            [&parts](const std::string& problem) { parts.database.Opened_Tell(problem); },
            [&parts](volumes::Image_Folder& folder, std::vector<volumes::Volume_Statistics>& numbers) {
                return parts.levels.First_Read(folder, numbers);
            },
            [&parts](int volume) { return parts.levels.Make_Ready(volume); },
            [&parts] { return parts.levels.Room_Keep(); },
            [&parts] { return parts.levels.Memory_Most(); },
            [&parts](int slice_nb, std::optional<double> background) {
                parts.histogram.Control().Volume_Follow(slice_nb, background);
            },
            [&parts] { return parts.histogram.Control().Background(); },
            [&parts] { parts.histogram.Images_Take(); },
            [&parts] { parts.histogram.Volume_Leave(); },
            [&parts] { parts.histogram.All_Select(); },
            [&parts] { parts.counting.Cancel(); },
            [&parts](const std::string& text) { parts.counting.Begin(text); },
            [&parts] { parts.tools.Settle(); },
            [&parts](int slice) { parts.view.Slice_Show(slice); },
            [&parts] { return parts.window.Handle(); },
            std::move(deliver),
            [&parts] { parts.window_control.Settings_Keep(); }};
}

}  // namespace workbench

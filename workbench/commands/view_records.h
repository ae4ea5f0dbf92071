/** Commands of the menus View, Image, Tools and Propagate. In the order of Command; only for command_records.cpp. */
#pragma once

#include "workbench/commands/command_entry.h"
#include "workbench/model/session.h"
#include "workbench/model/view_geometry.h"
#include "workbench/model/view_places.h"

namespace workbench::records {

template <Tool_Kind kind>
bool Is_Tool(const Parts& of) {
    return of.tool.Tool_Now() == kind;
}

/** Takes a tool into the hand; the one that is there gives way to the brush. */
template <Tool_Kind kind>
void Tool_Toggle(const Parts& on, int) {
    on.tool.Tool_Choose(Is_Tool<kind>(on) ? Tool_Kind::Paint : kind);
}

template <View_Arrangement arrangement>
bool Is_Arrangement(const Parts& of) {
    return of.layout.Arrangement_Now() == arrangement;
}

/** Divides the room of the image; what it is divided into already gives way to one view. */
template <View_Arrangement arrangement>
void Arrangement_Toggle(const Parts& on, int) {
    on.layout.Arrangement_Set(Is_Arrangement<arrangement>(on) ? View_Arrangement::One : arrangement);
}

inline constexpr Command_Record VIEW_RECORDS[] = {
    Entry(Command::Slice_Next, "slice_next", Menu::View, "&Next slice", {{KEY_PAGE_UP}, {KEY_UP}, {KEY_RIGHT}},
          [](const Parts& on, int) { on.view.Slice_Step(1); }),
    Entry(Command::Slice_Previous, "slice_previous", Menu::View, "&Previous slice",
          {{KEY_PAGE_DOWN}, {KEY_DOWN}, {KEY_LEFT}}, [](const Parts& on, int) { on.view.Slice_Step(-1); }),
    Entry(Command::Slice_First, "slice_first", Menu::View, "F&irst slice", {{KEY_HOME}},
          [](const Parts& on, int) { on.view.Slice_To_End(false); }),
    Entry(Command::Slice_Last, "slice_last", Menu::View, "L&ast slice", {{KEY_END}},
          [](const Parts& on, int) { on.view.Slice_To_End(true); }),
    Entry(Command::Volume_Next, "volume_next", Menu::View, "Next vol&ume", {{Control('N')}},
          [](const Parts& on, int) { on.view.Volume_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Volume_Previous, "volume_previous", Menu::View, "Previous volu&me", {{Control('P')}},
          [](const Parts& on, int) { on.view.Volume_Step(-1); }),
    Entry(Command::Zoom_100, "zoom_100", Menu::View, "&100 %", {{Function_Key(5)}},
          [](const Parts& on, int) { on.view.Zoom_To(1.0); }, {.is_group_begin = true}),
    Entry(Command::Zoom_200, "zoom_200", Menu::View, "&200 %", {{Function_Key(6)}},
          [](const Parts& on, int) { on.view.Zoom_To(2.0); }),
    Entry(Command::Zoom_To_Fit, "zoom_to_fit", Menu::View, "&Fit", {{Function_Key(7)}},
          [](const Parts& on, int) { on.view.Zoom_To(ZOOM_FIT); }),
    Entry(Command::Window_Reset, "window_reset", Menu::View, "&Reset window and level", {{'r'}},
          [](const Parts& on, int) { on.view.Window_Reset(); }),
    Entry(Command::Overlay, "overlay", Menu::View, "Show TAG &colours", {{'o'}},
          [](const Parts& on, int) { on.view.Overlay_Set(!on.view.Is_Overlay()); },
          {.is_checked = [](const Parts& of) { return of.view.Is_Overlay(); }}),
    Entry(Command::Overlay_Opacity, "overlay_opacity", Menu::View, "&Opacity of TAG colours...", {},
          [](const Parts& on, int) { on.view.Overlay_Opacity_Ask(); }),
    Entry(Command::Range_Overlay, "range_overlay", Menu::View, "Threshold o&verlay", {{'v'}},
          [](const Parts& on, int) { on.view.Range_Overlay_Set(!on.view.Is_Range_Overlay()); },
          {.is_checked = [](const Parts& of) { return of.view.Is_Range_Overlay(); }, .is_group_begin = true}),
    Entry(Command::Differences, "differences", Menu::View, "Diff&erences to compared labels", {{Control('G')}},
          [](const Parts& on, int) { on.segmentation.Differences_Show(!on.segmentation.Is_Differences()); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Is_Differences(); }}),
    Entry(Command::Planes, "planes", Menu::View, "T&hree planes", {{'y'}}, &Arrangement_Toggle<View_Arrangement::Three>,
          {.is_checked = &Is_Arrangement<View_Arrangement::Three>, .is_group_begin = true}),
    Entry(Command::Four_Views, "four_views", Menu::View, "Four vie&ws with statistics", {{'&'}},
          &Arrangement_Toggle<View_Arrangement::Four>, {.is_checked = &Is_Arrangement<View_Arrangement::Four>}),
    Entry(Command::Large_Plane, "large_plane", Menu::View, "Another plane lar&ge", {{'~'}},
          [](const Parts& on, int) { on.layout.Large_Plane_Next(); }),
    Entry(Command::Views_Link, "views_link", Menu::View, "Lin&k zoom and centre of views", {{'`'}},
          [](const Parts& on, int) { on.layout.Views_Link(!on.layout.Is_Linked()); },
          {.is_checked = [](const Parts& of) { return of.layout.Is_Linked(); }}),
    Entry(Command::Linear, "linear", Menu::View, "&Show image interpolated (linear)", {{'^'}},
          [](const Parts& on, int) { on.layout.Linear_Set(!on.layout.Is_Linear()); },
          {.is_checked = [](const Parts& of) { return of.layout.Is_Linear(); }}),
    Entry(Command::Focus_Next, "focus_next", Menu::View, "Ne&xt panel by keyboard", {{KEY_TAB}},
          [](const Parts& on, int) { on.focus.Focus_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Focus_Previous, "focus_previous", Menu::View, "Previous panel &by keyboard",
          {{KEY_TAB, Window, true}}, [](const Parts& on, int) { on.focus.Focus_Step(-1); }),
    Entry(Command::Panel_Fold, "panel_fold", Menu::View, "Fol&d the panel", {{'x'}},
          [](const Parts& on, int) { on.focus.Panel_Fold(); }),
    Entry(Command::Trace_View, "trace_view", Menu::View, "&Trace view", {{Function_Key(9)}},
          [](const Parts& on, int) { on.window.Trace_Show(!on.window.Is_Trace()); },
          {.is_checked = [](const Parts& of) { return of.window.Is_Trace(); }, .is_group_begin = true}),
    Entry(Command::Theme, "theme", Menu::View, "&Light theme", {{Function_Key(8)}},
          [](const Parts& on, int) { on.window.Theme_Set(!on.window.Is_Light()); },
          {.is_checked = [](const Parts& of) { return of.window.Is_Light(); }}),
    Entry(Command::Cursor_Show, "cursor_show", Menu::Image, "&Keyboard cursor", {{'i'}},
          [](const Parts& on, int) { on.cursor.Cursor_Set(!on.cursor.Is_Cursor()); },
          {.is_checked = [](const Parts& of) { return of.cursor.Is_Cursor(); }}),
    Entry(Command::Cursor_Paint, "cursor_paint", Menu::Image, "&Paint at the cursor", {{' '}},
          [](const Parts& on, int) { on.cursor.Cursor_Act(false); }),
    Entry(Command::Cursor_Erase, "cursor_erase", Menu::Image, "&Erase at the cursor", {{KEY_BACKSPACE}},
          [](const Parts& on, int) { on.cursor.Cursor_Act(true); }),
    Entry(Command::Cursor_Pen, "cursor_pen", Menu::Image, "Hold the pe&n down", {{KEY_ENTER}},
          [](const Parts& on, int) { on.cursor.Cursor_Pen_Set(!on.cursor.Is_Pen_Down()); },
          {.is_checked = [](const Parts& of) { return of.cursor.Is_Pen_Down(); }}),
    Entry(Command::Cursor_Pick, "cursor_pick", Menu::Image, "Pick the &TAG at the cursor", {{'a'}},
          [](const Parts& on, int) { on.cursor.Cursor_Pick(); }),
    Entry(Command::Cursor_Cross, "cursor_cross", Menu::Image, "Cross-&hair to the cursor", {{'j'}},
          [](const Parts& on, int) { on.cursor.Cross_To_Cursor(); }),
    Entry(Command::Zoom_In, "zoom_in", Menu::Image, "Zoom &in", {{'*'}},
          [](const Parts& on, int) { on.view.Zoom_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Zoom_Out, "zoom_out", Menu::Image, "Zoom &out", {{'/'}},
          [](const Parts& on, int) { on.view.Zoom_Step(-1); }),
    Entry(Command::Level_Up, "level_up", Menu::Image, "&Darker (level up)", {{')'}},
          [](const Parts& on, int) { on.view.Level_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Level_Down, "level_down", Menu::Image, "&Brighter (level down)", {{'('}},
          [](const Parts& on, int) { on.view.Level_Step(-1); }),
    Entry(Command::Window_Wider, "window_wider", Menu::Image, "&Less contrast (wider window)", {{'}'}},
          [](const Parts& on, int) { on.view.Window_Width_Step(1); }),
    Entry(Command::Window_Narrower, "window_narrower", Menu::Image, "&More contrast (narrower window)", {{'{'}},
          [](const Parts& on, int) { on.view.Window_Width_Step(-1); }),
    Entry(Command::Window_Choose, "window_choose", Menu::Image, "", {},
          [](const Parts& on, int number) { on.view.Window_Choose(number); },
          {.entries = [](const Parts& of) { return of.view.Window_Entries(); }, .is_group_begin = true}),
    Entry(Command::Tool_Brush, "tool_brush", Menu::Tools, "&Brush", {{'!'}},
          [](const Parts& on, int) { on.tool.Tool_Choose(Tool_Kind::Paint); },
          {.is_checked = &Is_Tool<Tool_Kind::Paint>}),
    Entry(Command::Marker_Mode, "marker_mode", Menu::Tools, "Place &markers", {{'m'}}, &Tool_Toggle<Tool_Kind::Markers>,
          {.is_checked = &Is_Tool<Tool_Kind::Markers>}),
    Entry(Command::Tool_Fill, "tool_fill", Menu::Tools, "&Fill by a click", {{'@'}}, &Tool_Toggle<Tool_Kind::Fill>,
          {.is_checked = &Is_Tool<Tool_Kind::Fill>}),
    Entry(Command::Tool_Growth, "tool_growth", Menu::Tools, "&Grow a region", {{'#'}}, &Tool_Toggle<Tool_Kind::Growth>,
          {.is_checked = &Is_Tool<Tool_Kind::Growth>}),
    Entry(Command::Tool_Polygon, "tool_polygon", Menu::Tools, "&Polygon", {{'$'}}, &Tool_Toggle<Tool_Kind::Polygon>,
          {.is_checked = &Is_Tool<Tool_Kind::Polygon>}),
    Entry(Command::Tool_Lasso, "tool_lasso", Menu::Tools, "&Lasso", {{'%'}}, &Tool_Toggle<Tool_Kind::Lasso>,
          {.is_checked = &Is_Tool<Tool_Kind::Lasso>}),
    Entry(Command::Tool_Distance, "tool_distance", Menu::Tools, "Measure a &distance", {{'"'}},
          &Tool_Toggle<Tool_Kind::Distance>, {.is_checked = &Is_Tool<Tool_Kind::Distance>}),
    Entry(Command::Tool_Angle, "tool_angle", Menu::Tools, "Measure an a&ngle", {{'\''}}, &Tool_Toggle<Tool_Kind::Angle>,
          {.is_checked = &Is_Tool<Tool_Kind::Angle>}),
    Entry(Command::Tool_Accept, "tool_accept", Menu::Tools, "&Take over what is begun", {},
          [](const Parts& on, int) { on.tool.Tool_Accept(); }, {.is_group_begin = true}),
    Entry(Command::Tool_Cancel, "tool_cancel", Menu::Tools, "D&rop what is begun", {},
          [](const Parts& on, int) { on.tool.Tool_Cancel(); }),
    Entry(Command::Measurements_Remove, "measurements_remove", Menu::Tools, "R&emove all measurements", {},
          [](const Parts& on, int) { on.tool.Measurements_Remove(); }),
    Entry(Command::Brush_In_Band, "brush_in_band", Menu::Tools, "Brush only &within the band", {{'\\'}},
          [](const Parts& on, int) { on.tool.Band_Only_Set(!on.tool.Is_Band_Only()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Band_Only(); }, .is_group_begin = true}),
    Entry(Command::Brush_Ball, "brush_ball", Menu::Tools, "B&all instead of disc", {{'|'}},
          [](const Parts& on, int) { on.tool.Ball_Set(!on.tool.Is_Ball()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Ball(); }}),
    Entry(Command::Brush_Mm, "brush_mm", Menu::Tools, "Brush in m&illimetres", {{'='}},
          [](const Parts& on, int) { on.tool.Brush_Mm_Set(!on.tool.Is_Brush_Mm()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Brush_Mm(); }}),
    Entry(Command::Fill_In_Space, "fill_in_space", Menu::Tools, "Fill in &space", {{'?'}},
          [](const Parts& on, int) { on.tool.Fill_In_Space_Set(!on.tool.Is_Fill_In_Space()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Fill_In_Space(); }, .is_group_begin = true}),
    Entry(Command::Fill_Corners, "fill_corners", Menu::Tools, "Fill over &corners", {{':'}},
          [](const Parts& on, int) { on.tool.Fill_Corners_Set(!on.tool.Is_Fill_Corners()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Fill_Corners(); }}),
    Entry(Command::Fill_By_Tolerance, "fill_by_tolerance", Menu::Tools, "Fill b&y a tolerance", {{'_'}},
          [](const Parts& on, int) { on.tool.Fill_By_Tolerance_Set(!on.tool.Is_Fill_By_Tolerance()); },
          {.is_checked = [](const Parts& of) { return of.tool.Is_Fill_By_Tolerance(); }}),
    Entry(Command::Fill_Tolerance, "fill_tolerance", Menu::Tools, "T&olerance of fills...", {},
          [](const Parts& on, int) { on.tool.Fill_Tolerance_Ask(); }),
    Entry(Command::Propagate_Next, "propagate_next", Menu::Propagate, "To the &next frame",
          {{'u'}, {KEY_ENTER, Frames_Panel}}, [](const Parts& on, int) { on.propagation.Propagate_Step(1); }),
    Entry(Command::Propagate_Previous, "propagate_previous", Menu::Propagate, "To the &previous frame",
          {{'d'}, {KEY_BACKSPACE, Frames_Panel}}, [](const Parts& on, int) { on.propagation.Propagate_Step(-1); }),
    Entry(Command::Propagate_Repeat, "propagate_repeat", Menu::Propagate, "&Repeat upwards...", {{Control('R')}},
          [](const Parts& on, int) { on.propagation.Propagate_Repeat(1); }),
    Entry(Command::Propagate_Repeat_Back, "propagate_repeat_back", Menu::Propagate, "Repeat &downwards...", {},
          [](const Parts& on, int) { on.propagation.Propagate_Repeat(-1); }),
    Entry(
        Command::Function_Copy, "function_copy", Menu::Propagate, "Function: &copy", {{'c'}},
        [](const Parts& on, int) { on.propagation.Propagation_Kind_Set(Propagation_Kind::Copy); },
        {.is_checked = [](const Parts& of) { return of.propagation.Propagation_Kind_Now() == Propagation_Kind::Copy; },
         .is_group_begin = true}),
    Entry(Command::Function_Grow, "function_grow", Menu::Propagate, "Function: &grow", {{'w'}},
          [](const Parts& on, int) { on.propagation.Propagation_Kind_Set(Propagation_Kind::Grow); },
          {.is_checked =
               [](const Parts& of) { return of.propagation.Propagation_Kind_Now() == Propagation_Kind::Grow; }}),
};

}  // namespace workbench::records

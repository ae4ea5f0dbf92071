// One record for each command, in the order of Command.
#include <initializer_list>
#include <iterator>

#include "host/kit_widgets.h"
#include "workbench/commands/command_table.h"
#include "workbench/model/session.h"
#include "workbench/model/view_geometry.h"
#include "workbench/model/view_places.h"

namespace workbench {

namespace {

using Parts = Command_Parts;
using enum Key_Context;

/** A build without the network has no entries for it. */
constexpr Menu ARCHIVE_MENU = KIT_HAS_ARCHIVES != 0 ? Menu::File : Menu::None;

constexpr int VIRTUAL_KEY_F1 = 0x70;  // of the window system

constexpr int Control(char letter) {
    return letter - 'A' + 1;
}
constexpr int Function_Key(int number) {
    return KEY_SPECIAL + VIRTUAL_KEY_F1 + number - 1;
}

/** What only some records say. */
struct More {
    bool (*is_checked)(const Parts& of) = nullptr;
    std::optional<std::string> (*detail)(const Parts& of) = nullptr;
    std::vector<Numbered_Entry> (*entries)(const Parts& of) = nullptr;
    int key_nb = 1;
    bool is_group_begin = false;
};

constexpr Command_Record Entry(Command command, const char* name, Menu menu, const char* text,
                               std::initializer_list<Command_Key> keys, void (*run)(const Parts& on, int number),
                               const More& more = {}) {
    Command_Record record = {command,
                             name,
                             menu,
                             text,
                             {},
                             run,
                             more.is_checked,
                             more.detail,
                             more.entries,
                             more.key_nb,
                             more.is_group_begin};
    std::size_t at = 0;
    for (const Command_Key& key : keys) {
        record.keys[at++] = key;
    }
    return record;
}

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

constexpr Command_Record RECORDS[] = {
    Entry(Command::Open, "open", Menu::File, "&Open image...", {{Control('O')}},
          [](const Parts& on, int) { on.file.Open_Ask(); }),
    Entry(Command::Open_Folder, "open_folder", Menu::File, "Open &folder...", {{Control('D')}},
          [](const Parts& on, int) { on.file.Open_Folder_Ask(); }),
    Entry(Command::Archive_Open, "archive_open", ARCHIVE_MENU, "Open from an arc&hive...", {},
          [](const Parts& on, int) { on.archive.Archive_Open(); }),
    Entry(Command::Not_Opened, "not_opened", Menu::File, "Files &not opened...", {},
          [](const Parts& on, int) { on.file.Not_Opened_Show(); }),
    Entry(Command::What_Was_Read, "what_was_read", Menu::File, "&What was read...", {},
          [](const Parts& on, int) { on.file.Read_Facts_Show(); }),
    Entry(Command::Orientation, "orientation", Menu::File, "O&rientation of the image...", {},
          [](const Parts& on, int) { on.file.Orientation_Ask(); }),
    Entry(Command::Load_Labels, "load_labels", Menu::File, "&Load labels...", {{Control('L')}},
          [](const Parts& on, int) { on.label_file.Load_Labels_Ask(); }, {.is_group_begin = true}),
    Entry(Command::Save_Labels, "save_labels", Menu::File, "&Save labels", {{Control('S')}},
          [](const Parts& on, int) { on.label_file.Save_Labels(false); }),
    Entry(Command::Save_Labels_As, "save_labels_as", Menu::File, "Save labels &as...", {},
          [](const Parts& on, int) { on.label_file.Save_Labels(true); }),
    Entry(Command::Save_Image_As, "save_image_as", Menu::File, "Save ima&ge as...", {},
          [](const Parts& on, int) { on.image_file.Image_Save_As(); }),
    Entry(Command::Object_Save, "object_save", Menu::File, "Save as &DICOM segmentation...", {},
          [](const Parts& on, int) { on.object.Object_Save(); }),
    Entry(Command::Labels_Send, "labels_send", ARCHIVE_MENU, "Send labels &to an archive...", {},
          [](const Parts& on, int) { on.archive.Labels_Send(); }),
    Entry(Command::Images_Send, "images_send", ARCHIVE_MENU, "Send &images to an archive...", {},
          [](const Parts& on, int) { on.archive.Images_Send(); }),
    Entry(Command::Export_Histogram, "export_histogram", Menu::File, "&Export histogram...", {{Control('E')}},
          [](const Parts& on, int) { on.exports.Export_Histogram(); }, {.is_group_begin = true}),
    Entry(Command::Verify_Export, "verify_export", Menu::File, "&Verify export...", {},
          [](const Parts& on, int) { on.exports.Export_Verify_Ask(); }),
    Entry(Command::Picture_Save, "picture_save", Menu::File, "Save &picture...", {},
          [](const Parts& on, int) { on.picture.Picture_Save(); }, {.is_group_begin = true}),
    Entry(Command::Sheet_Save, "sheet_save", Menu::File, "Save &contact sheet...", {},
          [](const Parts& on, int) { on.picture.Sheet_Save(); }),
    Entry(Command::Quit, "quit", Menu::File, "&Quit", {{Control('Q')}}, [](const Parts& on, int) { on.window.Quit(); },
          {.is_group_begin = true}),
    Entry(Command::Recent, "recent", Menu::File, "", {},
          [](const Parts& on, int number) { on.file.Recent_Open(number); },
          {.entries = [](const Parts& of) { return of.file.Recent_Entries(); }, .is_group_begin = true}),
    Entry(Command::Undo, "undo", Menu::Edit, "&Undo", {{Control('Z')}},
          [](const Parts& on, int) { on.history.Undo_Or_Redo(false); },
          {.detail = [](const Parts& of) { return of.history.Next_Step(false); }}),
    Entry(Command::Redo, "redo", Menu::Edit, "&Redo", {{Control('Y')}},
          [](const Parts& on, int) { on.history.Undo_Or_Redo(true); },
          {.detail = [](const Parts& of) { return of.history.Next_Step(true); }}),
    Entry(Command::History, "history", Menu::Edit, "&History...", {},
          [](const Parts& on, int) { on.history.History_Ask(); }),
    Entry(Command::Brush_Larger, "brush_larger", Menu::Edit, "Lar&ger brush", {{']'}, {'+'}},
          [](const Parts& on, int) { on.label.Brush_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Brush_Smaller, "brush_smaller", Menu::Edit, "&Smaller brush", {{'['}, {'-'}},
          [](const Parts& on, int) { on.label.Brush_Step(-1); }),
    Entry(Command::Marker_Next, "marker_next", Menu::Edit, "&Next marker", {{'.'}},
          [](const Parts& on, int) { on.label.Marker_Step(1); }, {.is_group_begin = true}),
    Entry(Command::Marker_Previous, "marker_previous", Menu::Edit, "Pre&vious marker", {{','}},
          [](const Parts& on, int) { on.label.Marker_Step(-1); }),
    Entry(Command::Marker_Rename, "marker_rename", Menu::Edit, "Name o&f the marker...",
          {{KEY_ENTER, Marker_Panel}, {Function_Key(2), Marker_Panel}},
          [](const Parts& on, int) { on.label.Marker_Rename_Ask(); }),
    Entry(Command::Marker_Remove, "marker_remove", Menu::Edit, "Remove &current marker", {{KEY_DELETE}},
          [](const Parts& on, int) { on.label.Marker_Remove(); }),
    Entry(Command::Tag_Next, "tag_next", Menu::Tag, "&Next TAG", {{'n'}},
          [](const Parts& on, int) { on.label.Tag_Step_By(1); }),
    Entry(Command::Tag_Previous, "tag_previous", Menu::Tag, "&Previous TAG", {{'p'}},
          [](const Parts& on, int) { on.label.Tag_Step_By(-1); }),
    Entry(Command::Tag_Go_To, "tag_go_to", Menu::Tag, "&Go to TAG...", {{'g'}},
          [](const Parts& on, int) { on.label.Tag_Go_To(); }),
    Entry(Command::Tag_Rename, "tag_rename", Menu::Tag, "Na&me...", {{Function_Key(2)}, {KEY_ENTER, Tag_Panel}},
          [](const Parts& on, int) { on.label.Tag_Rename_Ask(); }, {.is_group_begin = true}),
    Entry(Command::Tag_Meaning, "tag_meaning", Menu::Tag, "Name by an&atomy...", {},
          [](const Parts& on, int) { on.object.Tag_Meaning_Ask(); }),
    Entry(Command::Tag_Colors, "tag_colors", Menu::Tag, "Check TAG &colours...", {},
          [](const Parts& on, int) { on.color.Colors_Check(); }),
    Entry(Command::Tag_Enable, "tag_enable", Menu::Tag, "&Enabled (shown)", {{'e'}, {' ', Tag_Panel}},
          [](const Parts& on, int) { on.label.Tag_Toggle(Tag_Mark::Enable); },
          {.is_checked = [](const Parts& of) { return of.label.Has_Tag_Mark(Tag_Mark::Enable); },
           .is_group_begin = true}),
    Entry(Command::Tag_Select, "tag_select", Menu::Tag, "&Selected (propagated)", {{'s'}},
          [](const Parts& on, int) { on.label.Tag_Toggle(Tag_Mark::Select); },
          {.is_checked = [](const Parts& of) { return of.label.Has_Tag_Mark(Tag_Mark::Select); }}),
    Entry(Command::Tag_Lock, "tag_lock", Menu::Tag, "&Locked (not overwritten)", {{'l'}},
          [](const Parts& on, int) { on.label.Tag_Toggle(Tag_Mark::Lock); },
          {.is_checked = [](const Parts& of) { return of.label.Has_Tag_Mark(Tag_Mark::Lock); }}),
    Entry(Command::Threshold_Mode, "threshold_mode", Menu::Tag, "&Threshold mode", {{'t'}},
          [](const Parts& on, int) { on.label.Threshold_Mode_Set(!on.label.Is_Threshold_Mode()); },
          {.is_checked = [](const Parts& of) { return of.label.Is_Threshold_Mode(); }, .is_group_begin = true}),
    Entry(Command::Threshold_Lower, "threshold_lower", Menu::Tag, "Lo&wer threshold...", {},
          [](const Parts& on, int) { on.label.Threshold_Ask(false); }),
    Entry(Command::Threshold_Upper, "threshold_upper", Menu::Tag, "&Upper threshold...", {},
          [](const Parts& on, int) { on.label.Threshold_Ask(true); }),
    Entry(Command::Tag_More, "tag_more", Menu::Tag, "&Four more TAGs", {},
          [](const Parts& on, int) { on.label.Tag_More(); }),
    Entry(Command::Check_Shows_Enable, "check_shows_enable", Menu::Tag, "Check mark shows ena&bled", {},
          [](const Parts& on, int) { on.label.Check_Mark_Set(Tag_Mark::Enable); },
          {.is_checked = [](const Parts& of) { return of.label.Is_Check_Mark(Tag_Mark::Enable); },
           .is_group_begin = true}),
    Entry(Command::Check_Shows_Select, "check_shows_select", Menu::Tag, "Check mark shows selecte&d", {},
          [](const Parts& on, int) { on.label.Check_Mark_Set(Tag_Mark::Select); },
          {.is_checked = [](const Parts& of) { return of.label.Is_Check_Mark(Tag_Mark::Select); }}),
    Entry(Command::Check_Shows_Lock, "check_shows_lock", Menu::Tag, "Chec&k mark shows locked", {},
          [](const Parts& on, int) { on.label.Check_Mark_Set(Tag_Mark::Lock); },
          {.is_checked = [](const Parts& of) { return of.label.Is_Check_Mark(Tag_Mark::Lock); }}),
    Entry(Command::Labels_Share, "labels_share", Menu::Tag, "Names and colours for all &open volumes", {},
          [](const Parts& on, int) { on.label.Labels_Share(!on.label.Are_Labels_Shared()); },
          {.is_checked = [](const Parts& of) { return of.label.Are_Labels_Shared(); }, .is_group_begin = true}),
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
    Entry(Command::Bands_Of_Tag, "bands_of_tag", Menu::Segment, "Apply the &band of the TAG", {{Control('B')}},
          [](const Parts& on, int) { on.segmentation.Bands_Apply(false); }),
    Entry(Command::Bands_Of_All, "bands_of_all", Menu::Segment, "Apply &all bands", {{Control('A')}},
          [](const Parts& on, int) { on.segmentation.Bands_Apply(true); }),
    Entry(Command::Bands_Preview, "bands_preview", Menu::Segment, "Sho&w all bands", {{';'}},
          [](const Parts& on, int) { on.segmentation.Bands_Preview_Set(!on.segmentation.Is_Bands_Preview()); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Is_Bands_Preview(); }}),
    Entry(Command::Flood_Band, "flood_band", Menu::Segment, "&Fill from the cursor in the band", {{'f'}},
          [](const Parts& on, int) { on.segmentation.Flood(false); }, {.is_group_begin = true}),
    Entry(Command::Flood_Tolerance, "flood_tolerance", Menu::Segment, "Fill from the cursor by &tolerance...",
          {{Control('K')}}, [](const Parts& on, int) { on.segmentation.Flood(true); }),
    Entry(Command::Region_Largest, "region_largest", Menu::Segment, "Keep the &largest region", {},
          [](const Parts& on, int) { on.segmentation.Region_Keep_Largest(); }, {.is_group_begin = true}),
    Entry(Command::Region_Small, "region_small", Menu::Segment, "&Drop small regions...", {},
          [](const Parts& on, int) { on.segmentation.Regions_Drop_Small(); }),
    Entry(Command::Region_At_Cursor, "region_at_cursor", Menu::Segment, "&Keep the region at the cursor",
          {{Control('U')}}, [](const Parts& on, int) { on.segmentation.Region_Keep_At_Cursor(); }),
    Entry(Command::Region_Take, "region_take", Menu::Segment, "Take over the region at the c&ursor", {{'q'}},
          [](const Parts& on, int) { on.segmentation.Region_Take_At_Cursor(); }),
    Entry(Command::Holes_Slice, "holes_slice", Menu::Segment, "Fill &holes in slices", {},
          [](const Parts& on, int) { on.segmentation.Holes_Fill(false); }, {.is_group_begin = true}),
    Entry(Command::Holes_Space, "holes_space", Menu::Segment, "Fill holes &in space", {},
          [](const Parts& on, int) { on.segmentation.Holes_Fill(true); }),
    Entry(Command::Tag_Smooth, "tag_smooth", Menu::Segment, "S&mooth...", {},
          [](const Parts& on, int) { on.segmentation.Tag_Smooth(); }),
    Entry(Command::Tag_Grow, "tag_grow", Menu::Segment, "&Grow...", {},
          [](const Parts& on, int) { on.segmentation.Tag_Resize(1); }),
    Entry(Command::Tag_Shrink, "tag_shrink", Menu::Segment, "&Shrink...", {},
          [](const Parts& on, int) { on.segmentation.Tag_Resize(-1); }),
    Entry(Command::Slices_Between, "slices_between", Menu::Segment, "Fill between &painted slices", {},
          [](const Parts& on, int) { on.segmentation.Slices_Between_Fill(); }),
    Entry(Command::Tag_Merge, "tag_merge", Menu::Segment, "Take &over another TAG...", {},
          [](const Parts& on, int) { on.segmentation.Tag_Merge(); }, {.is_group_begin = true}),
    Entry(Command::Tag_Join_File, "tag_join_file", Menu::Segment, "&Join with a TAG of a file...", {},
          [](const Parts& on, int) { on.segmentation.Tag_Join_File(); }),
    Entry(Command::Scope_Slice, "scope_slice", Menu::Segment, "Work on the show&n slice", {},
          [](const Parts& on, int) { on.segmentation.Scope_Set(Edit_Scope::Shown_Slice); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Scope_Now() == Edit_Scope::Shown_Slice; },
           .is_group_begin = true}),
    Entry(Command::Scope_Range, "scope_range", Menu::Segment, "Work on a &range of slices...", {},
          [](const Parts& on, int) { on.segmentation.Scope_Set(Edit_Scope::Range); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Scope_Now() == Edit_Scope::Range; }}),
    Entry(Command::Scope_Volume, "scope_volume", Menu::Segment, "Work on the whole &volume", {},
          [](const Parts& on, int) { on.segmentation.Scope_Set(Edit_Scope::Volume); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Scope_Now() == Edit_Scope::Volume; }}),
    Entry(Command::Only_Inside, "only_inside", Menu::Segment, "Onl&y inside", {},
          [](const Parts& on, int) { on.segmentation.Only_Inside_Ask(); },
          {.is_checked = [](const Parts& of) { return of.segmentation.Only_Inside_Name().has_value(); },
           .detail =
               [](const Parts& of) { return std::optional(of.segmentation.Only_Inside_Name().value_or("all TAGs")); }}),
    Entry(Command::Statistics, "statistics", Menu::Segment, "Statisti&cs", {{Control('T')}},
          [](const Parts& on, int) { on.segmentation.Statistics_Show(); }, {.is_group_begin = true}),
    Entry(Command::Statistics_Save, "statistics_save", Menu::Segment, "E&xport statistics...", {},
          [](const Parts& on, int) { on.segmentation.Statistics_Save(); }),
    Entry(Command::Labels_Compare, "labels_compare", Menu::Segment, "Compar&e with a label file...", {},
          [](const Parts& on, int) { on.segmentation.Labels_Compare_Ask(); }),
    Entry(Command::Histogram_All, "histogram_all", Menu::Analyze, "Histogram of &all frames", {},
          [](const Parts& on, int) { on.histogram.Histogram_Of_All(); },
          {.is_checked = [](const Parts& of) { return of.histogram.Histogram_Frames_Now() == Histogram_Frames::All; }}),
    Entry(
        Command::Histogram_Shown, "histogram_shown", Menu::Analyze, "Histogram of the &shown frame", {{'h'}},
        [](const Parts& on, int) { on.histogram.Histogram_Of_Shown(); },
        {.is_checked = [](const Parts& of) { return of.histogram.Histogram_Frames_Now() == Histogram_Frames::Shown; }}),
    Entry(
        Command::Histogram_Range, "histogram_range", Menu::Analyze, "Histogram of a &range of frames...", {},
        [](const Parts& on, int) { on.histogram.Histogram_Range_Ask(); },
        {.is_checked = [](const Parts& of) { return of.histogram.Histogram_Frames_Now() == Histogram_Frames::Range; }}),
    Entry(Command::Histogram_Of_Tag, "histogram_of_tag", Menu::Analyze, "Only pixels of the current &TAG", {{'b'}},
          [](const Parts& on, int) { on.histogram.Histogram_Of_Tag_Set(!on.histogram.Is_Histogram_Of_Tag()); },
          {.is_checked = [](const Parts& of) { return of.histogram.Is_Histogram_Of_Tag(); }}),
    Entry(Command::Histogram_Smoothed, "histogram_smoothed", Menu::Analyze, "S&moothed pixels (3 \xC3\x97 3)", {},
          [](const Parts& on, int) { on.histogram.Histogram_Smoothed_Set(!on.histogram.Is_Histogram_Smoothed()); },
          {.is_checked = [](const Parts& of) { return of.histogram.Is_Histogram_Smoothed(); }}),
    Entry(Command::Background_Leave_Out, "background_leave_out", Menu::Analyze, "&Leave out the background", {},
          [](const Parts& on, int) { on.histogram.Background_Leave_Out(!on.histogram.Is_Background_Left_Out()); },
          {.is_checked = [](const Parts& of) { return of.histogram.Is_Background_Left_Out(); }}),
    Entry(Command::Background_Threshold, "background_threshold", Menu::Analyze, "Background t&hreshold...", {},
          [](const Parts& on, int) { on.histogram.Background_Ask(); }),
    Entry(Command::Histogram_Bins, "histogram_bins", Menu::Analyze, "Most &bins...", {},
          [](const Parts& on, int) { on.histogram.Histogram_Bins_Ask(); }),
    Entry(Command::Histogram_Component, "histogram_component", Menu::Analyze, "Next colour &component", {{'k'}},
          [](const Parts& on, int) { on.histogram.Histogram_Component_Next(); }),
    Entry(Command::Histogram_Higher, "histogram_higher", Menu::Analyze, "Magnif&y the counts",
          {{'>'}, {KEY_UP, Histogram_Panel}}, [](const Parts& on, int) { on.histogram.Histogram_Scale_Step(1); }),
    Entry(Command::Histogram_Lower, "histogram_lower", Menu::Analyze, "Red&uce the counts",
          {{'<'}, {KEY_DOWN, Histogram_Panel}}, [](const Parts& on, int) { on.histogram.Histogram_Scale_Step(-1); }),
    Entry(Command::Histogram_Enlarge, "histogram_enlarge", Menu::Analyze, "&Enlarged histogram",
          {{'z'}, {KEY_ENTER, Histogram_Panel}}, [](const Parts& on, int) { on.histogram.Histogram_Enlarge(); }),
    Entry(Command::Wheel_Turned, "wheel_turned", Menu::Analyze, "Enlarged histogram: &wheel forward zooms in", {},
          [](const Parts& on, int) { on.histogram.Wheel_Turned_Set(!on.histogram.Is_Wheel_Turned()); },
          {.is_checked = [](const Parts& of) { return of.histogram.Is_Wheel_Turned(); }}),
    Entry(Command::Peak_Analysis, "peak_analysis", Menu::Analyze, "&Peak analysis...", {{Function_Key(4)}},
          [](const Parts& on, int) { on.histogram.Peaks_Show(); }, {.is_group_begin = true}),
    Entry(Command::Fit_Gaussian, "fit_gaussian", Menu::Analyze, "Fit &Gaussians", {},
          [](const Parts& on, int) { on.histogram.Peaks_Fit_Gaussian(); }),
    Entry(Command::Fit_Derivative, "fit_derivative", Menu::Analyze, "&Derivative method...", {},
          [](const Parts& on, int) { on.histogram.Peaks_Fit_Derivative_Ask(); }),
    Entry(Command::Peaks_To_Bands, "peaks_to_bands", Menu::Analyze, "Peaks to TAG ba&nds", {},
          [](const Parts& on, int) { on.histogram.Peaks_To_Bands(); }),
    Entry(Command::Database, "database", Menu::Database, "&Show the database", {{Function_Key(3)}},
          [](const Parts& on, int) { on.database.Database_Show(!on.database.Is_Database()); },
          {.is_checked = [](const Parts& of) { return of.database.Is_Database(); }}),
    Entry(Command::Database_Find, "database_find", Menu::Database, "&Find...", {{Control('F')}},
          [](const Parts& on, int) { on.database.Database_Find(); }),
    Entry(Command::Database_Files, "database_files", Menu::Database, "F&iles", {},
          [](const Parts& on, int) { on.database.Database_View_Set(0); }, {.is_group_begin = true}),
    Entry(Command::Database_Patients, "database_patients", Menu::Database, "&Patients", {},
          [](const Parts& on, int) { on.database.Database_View_Set(4); }),
    Entry(Command::Database_2D, "database_2d", Menu::Database, "&2D classes", {},
          [](const Parts& on, int) { on.database.Database_View_Set(1); }),
    Entry(Command::Database_3D, "database_3d", Menu::Database, "&3D classes", {},
          [](const Parts& on, int) { on.database.Database_View_Set(2); }),
    Entry(Command::Database_1D, "database_1d", Menu::Database, "&1D classes", {},
          [](const Parts& on, int) { on.database.Database_View_Set(3); }),
    Entry(Command::Database_Wider, "database_wider", Menu::Database, "&Wider", {},
          [](const Parts& on, int) { on.database.Database_Width_Step(1); }),
    Entry(Command::Database_Narrower, "database_narrower", Menu::Database, "&Narrower", {},
          [](const Parts& on, int) { on.database.Database_Width_Step(-1); }),
    Entry(Command::Database_Expand, "database_expand", Menu::Database, "E&xpand all", {},
          [](const Parts& on, int) { on.database.Database_Expand_All(true); }, {.is_group_begin = true}),
    Entry(Command::Database_Collapse, "database_collapse", Menu::Database, "&Collapse all", {},
          [](const Parts& on, int) { on.database.Database_Expand_All(false); }),
    Entry(Command::Database_Edit, "database_edit", Menu::Database, "&Edit the class tree", {{Function_Key(11)}},
          [](const Parts& on, int) { on.database.Database_Editor_Set(!on.database.Is_Database_Editor()); },
          {.is_checked = [](const Parts& of) { return of.database.Is_Database_Editor(); }, .is_group_begin = true}),
    Entry(Command::Class_Undo, "class_undo", Menu::Database, "&Undo in the class trees", {{Control('Z'), Class_Editor}},
          [](const Parts& on, int) { on.database.Class_Undo_Or_Redo(false); },
          {.detail = [](const Parts& of) { return of.database.Next_Class_Step(false); }}),
    Entry(Command::Class_Redo, "class_redo", Menu::Database, "&Redo in the class trees", {{Control('Y'), Class_Editor}},
          [](const Parts& on, int) { on.database.Class_Undo_Or_Redo(true); },
          {.detail = [](const Parts& of) { return of.database.Next_Class_Step(true); }}),
    Entry(Command::Keys_Help, "keys_help", Menu::Help, "&Keys and mouse", {{Function_Key(1)}},
          [](const Parts& on, int) { on.window.Keys_Show(); }),
    Entry(Command::About, "about", Menu::Help, "&About", {}, [](const Parts& on, int) { on.window.About_Show(); }),
    Entry(Command::Tag_By_Number, "tag_by_number", Menu::None, "", {{'0'}},
          [](const Parts& on, int number) { on.label.Tag_Pick(number); }, {.key_nb = 10}),
    Entry(Command::Banner_Close, "banner_close", Menu::None, "", {{KEY_ESCAPE}},
          [](const Parts& on, int) { on.window.Banner_Close(); }),
    Entry(Command::Report_State, "report_state", Menu::None, "", {{Function_Key(12)}},
          [](const Parts& on, int) { on.window.Report_State(); }),
};

/** In the order of Command, and each with somebody who carries it out. */
constexpr bool Is_Complete() {
    if (std::size(RECORDS) != COMMAND_NB) {
        return false;
    }
    for (std::size_t at = 0; at < std::size(RECORDS); ++at) {
        if (static_cast<std::size_t>(RECORDS[at].command) != at || RECORDS[at].run == nullptr) {
            return false;
        }
    }
    return true;
}
static_assert(Is_Complete(), "a command has no record, or the records stand in another order than the commands");

}  // namespace

std::span<const Command_Record> Command_Records() {
    return RECORDS;
}

}  // namespace workbench

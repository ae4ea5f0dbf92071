/** Everything that can be asked of the application by menu or key. */
#pragma once

namespace workbench {

/** In the order of the menus and their entries; what stands in no menu comes last. The records of command_table.cpp
 *  stand in the same order, which the compiler checks. */
enum class Command {
    // File
    Open,
    Open_Folder,
    Not_Opened,
    What_Was_Read,
    Orientation,
    Load_Labels,
    Save_Labels,
    Save_Labels_As,
    Export_Histogram,
    Verify_Export,
    Quit,
    Recent,  ///< numbered: files opened lately
    // Edit
    Undo,
    Redo,
    History,
    Brush_Larger,
    Brush_Smaller,
    Marker_Next,
    Marker_Previous,
    Marker_Rename,
    Marker_Remove,
    // TAG
    Tag_Next,
    Tag_Previous,
    Tag_Go_To,
    Tag_Rename,
    Tag_Colors,
    Tag_Enable,
    Tag_Select,
    Tag_Lock,
    Threshold_Mode,
    Threshold_Lower,
    Threshold_Upper,
    Tag_More,
    Check_Shows_Enable,
    Check_Shows_Select,
    Check_Shows_Lock,
    // View
    Slice_Next,
    Slice_Previous,
    Slice_First,
    Slice_Last,
    Volume_Next,
    Volume_Previous,
    Zoom_100,
    Zoom_200,
    Zoom_To_Fit,
    Window_Reset,
    Overlay,
    Overlay_Opacity,
    Range_Overlay,
    Planes,
    Focus_Next,
    Focus_Previous,
    Panel_Fold,
    Trace_View,
    Theme,
    // Image
    Cursor_Show,
    Cursor_Paint,
    Cursor_Erase,
    Cursor_Pen,
    Cursor_Pick,
    Cursor_Cross,
    Zoom_In,
    Zoom_Out,
    Level_Up,
    Level_Down,
    Window_Wider,
    Window_Narrower,
    Window_Choose,  ///< numbered: windows of the image
    // Tools
    Tool_Brush,
    Marker_Mode,
    Brush_In_Band,
    Brush_Ball,
    Brush_Mm,
    // Propagate
    Propagate_Next,
    Propagate_Previous,
    Propagate_Repeat,
    Propagate_Repeat_Back,
    Function_Copy,
    Function_Grow,
    // Segment
    Bands_Of_Tag,
    Bands_Of_All,
    Bands_Preview,
    Flood_Band,
    Flood_Tolerance,
    Region_Largest,
    Region_Small,
    Region_At_Cursor,
    Region_Take,
    Holes_Slice,
    Holes_Space,
    Tag_Smooth,
    Tag_Grow,
    Tag_Shrink,
    Slices_Between,
    Tag_Merge,
    Tag_Join_File,
    Scope_Slice,
    Scope_Range,
    Scope_Volume,
    Only_Inside,
    Statistics,
    Statistics_Save,
    Labels_Compare,
    // Analyze
    Histogram_All,
    Histogram_Shown,
    Histogram_Range,
    Histogram_Of_Tag,
    Histogram_Smoothed,
    Background_Leave_Out,
    Background_Threshold,
    Histogram_Bins,
    Histogram_Component,
    Histogram_Higher,
    Histogram_Lower,
    Histogram_Enlarge,
    Wheel_Turned,
    Peak_Analysis,
    Fit_Gaussian,
    Fit_Derivative,
    Peaks_To_Bands,
    // Database
    Database,
    Database_Find,
    Database_Files,
    Database_2D,
    Database_3D,
    Database_1D,
    Database_Wider,
    Database_Narrower,
    Database_Expand,
    Database_Collapse,
    Database_Edit,
    Class_Undo,
    Class_Redo,
    // Help
    Keys_Help,
    About,
    // by key only
    Tag_By_Number,  ///< numbered: TAG 0 to 9
    Banner_Close,
    Report_State,
};
inline constexpr int COMMAND_NB = static_cast<int>(Command::Report_State) + 1;

/** A command and, where it is numbered, which of them: from 0 on. */
struct Command_Call {
    Command command = Command::Open;
    int number = 0;

    bool operator==(const Command_Call&) const = default;
};

}  // namespace workbench

/** What commands ask of the application, one interface per subject; whoever looks after the subject implements it.
 *
 *  Steps are +1 or -1. Texts are UTF-8. Every call may open a dialog, and so run a message loop.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/model/histogram_control.h"

namespace workbench {

enum class Propagation_Kind;
enum class View_Arrangement;

/** One of the entries that a numbered command has now. */
struct Numbered_Entry {
    std::string text;
    bool is_checked = false;
};

/** Images in files. */
class Volume_File_Actions {
  public:
    virtual ~Volume_File_Actions() = default;
    virtual void Open_Ask() = 0;
    virtual void Open_Folder_Ask() = 0;
    virtual void Not_Opened_Show() = 0;
    /** How the volume that is shown was read. */
    virtual void Read_Facts_Show() = 0;
    /** How the patient lies in an image that does not say it; only the letters beside the picture change. */
    virtual void Orientation_Ask() = 0;
    virtual std::vector<Numbered_Entry> Recent_Entries() const = 0;
    virtual void Recent_Open(int number) = 0;
};

/** Labels in files. */
class Label_File_Actions {
  public:
    virtual ~Label_File_Actions() = default;
    virtual void Load_Labels_Ask() = 0;
    virtual bool Save_Labels(bool ask_for_name) = 0;
};

/** The histogram as a file. */
class Export_Actions {
  public:
    virtual ~Export_Actions() = default;
    virtual void Export_Histogram() = 0;
    virtual void Export_Verify_Ask() = 0;
};

/** Labels as DICOM keeps them. */
class Object_Actions {
  public:
    virtual ~Object_Actions() = default;
    /** Saves the labels as a segmentation object of the images. */
    virtual void Object_Save() = 0;
    /** Names the current TAG from a table of what has a code. */
    virtual void Tag_Meaning_Ask() = 0;
};

/** Archives of images in the network. */
class Archive_Actions {
  public:
    virtual ~Archive_Actions() = default;
    /** Searches an archive, fetches a series and opens it. */
    virtual void Archive_Open() = 0;
    /** Sends the labels as a segmentation object of the images. */
    virtual void Labels_Send() = 0;
    /** Sends the images of the volume in hand as they lie on the disk. */
    virtual void Images_Send() = 0;
};

class History_Actions {
  public:
    virtual ~History_Actions() = default;
    virtual void Undo_Or_Redo(bool redo) = 0;
    /** Title of the step that Undo_Or_Redo would take; no value: none is left. */
    virtual std::optional<std::string> Next_Step(bool redo) const = 0;
    /** Lists the steps and goes to the one that is chosen. */
    virtual void History_Ask() = 0;
};

/** The marks that a TAG carries, of which one is shown as the check mark of its button. */
enum class Tag_Mark { Enable, Select, Lock };

/** TAGs, brushes and markers. */
class Label_Actions {
  public:
    virtual ~Label_Actions() = default;
    virtual void Tag_Step_By(int step) = 0;
    virtual void Tag_Pick(int tag) = 0;
    virtual void Tag_Go_To() = 0;
    virtual void Tag_Rename_Ask() = 0;
    virtual void Tag_Toggle(Tag_Mark mark) = 0;
    /** Of the current TAG. */
    virtual bool Has_Tag_Mark(Tag_Mark mark) const = 0;
    virtual void Threshold_Mode_Set(bool on) = 0;
    virtual bool Is_Threshold_Mode() const = 0;
    virtual void Threshold_Ask(bool is_upper) = 0;
    virtual void Tag_More() = 0;
    virtual void Check_Mark_Set(Tag_Mark mark) = 0;
    virtual bool Is_Check_Mark(Tag_Mark mark) const = 0;
    /** All open volumes have the names, colours, thresholds and states of the current one, or each its own. */
    virtual void Labels_Share(bool on) = 0;
    virtual bool Are_Labels_Shared() const = 0;
    virtual void Brush_Step(int step) = 0;
    virtual void Marker_Step(int step) = 0;
    virtual void Marker_Rename_Ask() = 0;
    virtual void Marker_Remove() = 0;
};

/** Colours of TAGs that are hard to tell apart. */
class Color_Actions {
  public:
    virtual ~Color_Actions() = default;
    virtual void Colors_Check() = 0;
};

/** What of the image is shown, and how. */
class View_Actions {
  public:
    virtual ~View_Actions() = default;
    virtual void Slice_Step(int step) = 0;
    virtual void Slice_To_End(bool is_last) = 0;
    virtual void Volume_Step(int step) = 0;
    /** @param factor screen pixels per slice pixel; 0: as large as there is room */
    virtual void Zoom_To(double factor) = 0;
    virtual void Zoom_Step(int step) = 0;
    virtual void Window_Reset() = 0;
    virtual void Level_Step(int step) = 0;
    virtual void Window_Width_Step(int step) = 0;
    virtual std::vector<Numbered_Entry> Window_Entries() const = 0;
    virtual void Window_Choose(int number) = 0;
    virtual void Overlay_Set(bool on) = 0;
    virtual bool Is_Overlay() const = 0;
    virtual void Overlay_Opacity_Ask() = 0;
    virtual void Range_Overlay_Set(bool on) = 0;
    virtual bool Is_Range_Overlay() const = 0;
};

/** Which views of the image there are. */
class Layout_Actions {
  public:
    virtual ~Layout_Actions() = default;
    virtual void Arrangement_Set(View_Arrangement wanted) = 0;
    virtual View_Arrangement Arrangement_Now() const = 0;
    /** Another plane is the large view. */
    virtual void Large_Plane_Next() = 0;
    /** Zoom and centre of one view are those of all. */
    virtual void Views_Link(bool on) = 0;
    virtual bool Is_Linked() const = 0;
    /** Grey values run in straight lines from voxel to voxel. */
    virtual void Linear_Set(bool on) = 0;
    virtual bool Is_Linear() const = 0;
};

/** Pictures of what is shown, as files. */
class Picture_Actions {
  public:
    virtual ~Picture_Actions() = default;
    virtual void Picture_Save() = 0;
    /** Every n-th slice, in one picture. */
    virtual void Sheet_Save() = 0;
};

/** The image as a file of another format. */
class Image_File_Actions {
  public:
    virtual ~Image_File_Actions() = default;
    virtual void Image_Save_As() = 0;
};

/** The keyboard's cursor in the image. */
class Cursor_Actions {
  public:
    virtual ~Cursor_Actions() = default;
    virtual void Cursor_Set(bool on) = 0;
    virtual bool Is_Cursor() const = 0;
    virtual void Cursor_Act(bool erase) = 0;
    virtual void Cursor_Pen_Set(bool down) = 0;
    virtual bool Is_Pen_Down() const = 0;
    virtual void Cursor_Pick() = 0;
    /** Takes the cross-hair of the three planes to the cursor. */
    virtual void Cross_To_Cursor() = 0;
};

class Propagation_Actions {
  public:
    virtual ~Propagation_Actions() = default;
    virtual void Propagate_Step(int direction) = 0;
    virtual void Propagate_Repeat(int direction) = 0;
    virtual void Propagation_Kind_Set(Propagation_Kind kind) = 0;
    virtual Propagation_Kind Propagation_Kind_Now() const = 0;
};

/** What the buttons do in the pictures of the image. */
enum class Tool_Kind { Paint, Markers, Fill, Growth, Polygon, Lasso, Distance, Angle };

class Tool_Actions {
  public:
    virtual ~Tool_Actions() = default;
    virtual void Tool_Choose(Tool_Kind kind) = 0;
    virtual Tool_Kind Tool_Now() const = 0;
    /** The brush takes only voxels of the current TAG's band. */
    virtual void Band_Only_Set(bool on) = 0;
    virtual bool Is_Band_Only() const = 0;
    /** The brush reaches into the pictures before and behind. */
    virtual void Ball_Set(bool on) = 0;
    virtual bool Is_Ball() const = 0;
    /** The brush's radius counts as millimetres. */
    virtual void Brush_Mm_Set(bool on) = 0;
    virtual bool Is_Brush_Mm() const = 0;
    // What fills and growing regions go by.
    virtual void Fill_In_Space_Set(bool on) = 0;
    virtual bool Is_Fill_In_Space() const = 0;
    virtual void Fill_Corners_Set(bool on) = 0;
    virtual bool Is_Fill_Corners() const = 0;
    virtual void Fill_By_Tolerance_Set(bool on) = 0;
    virtual bool Is_Fill_By_Tolerance() const = 0;
    virtual void Fill_Tolerance_Ask() = 0;
    /** What a tool has begun is taken over, or dropped. */
    virtual void Tool_Accept() = 0;
    virtual void Tool_Cancel() = 0;
    /** Of the volume in hand. */
    virtual void Measurements_Remove() = 0;
};

/** Which slices operations on labels work on. */
enum class Edit_Scope { Shown_Slice, Range, Volume };

/** From bands to labels, correcting labels, measuring them. "The TAG" is the current one, "the cursor" the voxel that
 * is pointed at. */
class Segmentation_Actions {
  public:
    virtual ~Segmentation_Actions() = default;
    virtual void Bands_Apply(bool of_all_tags) = 0;
    /** Tints what the bands of all TAGs claim. */
    virtual void Bands_Preview_Set(bool on) = 0;
    virtual bool Is_Bands_Preview() const = 0;
    /** Gives the TAG to what hangs together with the voxel at the cursor. */
    virtual void Flood(bool by_tolerance) = 0;
    virtual void Region_Keep_Largest() = 0;
    virtual void Regions_Drop_Small() = 0;
    virtual void Region_Keep_At_Cursor() = 0;
    /** Gives the TAG to the region at the cursor, whatever TAG it has. */
    virtual void Region_Take_At_Cursor() = 0;
    virtual void Holes_Fill(bool in_space) = 0;
    virtual void Tag_Smooth() = 0;
    /** @param direction +1 grows, -1 shrinks */
    virtual void Tag_Resize(int direction) = 0;
    virtual void Slices_Between_Fill() = 0;
    /** Gives the TAG to the voxels of another one. */
    virtual void Tag_Merge() = 0;
    /** Copies, adds, subtracts or intersects a TAG of a label file. */
    virtual void Tag_Join_File() = 0;
    virtual void Scope_Set(Edit_Scope scope) = 0;
    virtual Edit_Scope Scope_Now() const = 0;
    /** Asks for the TAG whose voxels alone may change. */
    virtual void Only_Inside_Ask() = 0;
    /** No value: voxels of all TAGs may change. */
    virtual std::optional<std::string> Only_Inside_Name() const = 0;
    virtual void Statistics_Show() = 0;
    virtual void Statistics_Save() = 0;
    virtual void Labels_Compare_Ask() = 0;
    /** Tints where the labels differ from those that they were compared with last. */
    virtual void Differences_Show(bool on) = 0;
    virtual bool Is_Differences() const = 0;
};

class Histogram_Actions {
  public:
    virtual ~Histogram_Actions() = default;
    virtual void Histogram_Of_All() = 0;
    virtual void Histogram_Of_Shown() = 0;
    virtual void Histogram_Range_Ask() = 0;
    virtual Histogram_Frames Histogram_Frames_Now() const = 0;
    virtual void Histogram_Of_Tag_Set(bool on) = 0;
    virtual bool Is_Histogram_Of_Tag() const = 0;
    virtual void Histogram_Smoothed_Set(bool on) = 0;
    virtual bool Is_Histogram_Smoothed() const = 0;
    virtual void Background_Leave_Out(bool on) = 0;
    virtual bool Is_Background_Left_Out() const = 0;
    virtual void Background_Ask() = 0;
    virtual void Histogram_Bins_Ask() = 0;
    virtual void Histogram_Component_Next() = 0;
    /** +1 magnifies the counts. */
    virtual void Histogram_Scale_Step(int step) = 0;
    virtual void Histogram_Enlarge() = 0;
    virtual void Wheel_Turned_Set(bool on) = 0;
    virtual bool Is_Wheel_Turned() const = 0;
    virtual void Peaks_Show() = 0;
    virtual void Peaks_Fit_Gaussian() = 0;
    virtual void Peaks_Fit_Derivative_Ask() = 0;
    virtual void Peaks_To_Bands() = 0;
};

class Database_Actions {
  public:
    virtual ~Database_Actions() = default;
    virtual void Database_Show(bool shown) = 0;
    virtual bool Is_Database() const = 0;
    virtual void Database_Find() = 0;
    /** @param view number of the tab, from the left */
    virtual void Database_View_Set(int view) = 0;
    virtual void Database_Width_Step(int step) = 0;
    virtual void Database_Expand_All(bool open) = 0;
    virtual void Database_Editor_Set(bool on) = 0;
    virtual bool Is_Database_Editor() const = 0;
    virtual void Class_Undo_Or_Redo(bool redo) = 0;
    /** As History_Actions::Next_Step, of the class trees. */
    virtual std::optional<std::string> Next_Class_Step(bool redo) const = 0;
};

/** What the keys act on. */
class Focus_Actions {
  public:
    virtual ~Focus_Actions() = default;
    virtual void Focus_Step(int step) = 0;
    virtual void Panel_Fold() = 0;
};

/** The window itself: its parts, its looks, its help. */
class Window_Actions {
  public:
    virtual ~Window_Actions() = default;
    virtual void Trace_Show(bool shown) = 0;
    virtual bool Is_Trace() const = 0;
    virtual void Theme_Set(bool is_light) = 0;
    virtual bool Is_Light() const = 0;
    virtual void Keys_Show() = 0;
    virtual void About_Show() = 0;
    virtual void Banner_Close() = 0;
    virtual void Report_State() = 0;
    virtual void Quit() = 0;
};

/** Who answers the commands. */
struct Command_Parts {
    Volume_File_Actions& file;
    Label_File_Actions& label_file;
    Export_Actions& exports;
    Object_Actions& object;
    Archive_Actions& archive;
    History_Actions& history;
    Label_Actions& label;
    Tool_Actions& tool;
    Color_Actions& color;
    View_Actions& view;
    Layout_Actions& layout;
    Picture_Actions& picture;
    Image_File_Actions& image_file;
    Cursor_Actions& cursor;
    Propagation_Actions& propagation;
    Segmentation_Actions& segmentation;
    Histogram_Actions& histogram;
    Database_Actions& database;
    Focus_Actions& focus;
    Window_Actions& window;
};

}  // namespace workbench

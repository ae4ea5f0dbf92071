/** The application: the open volumes, panels and views, and everything that can be done with them. */
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "histogram/tool_histo.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "workbench/analysis/analysis_window.h"
#include "workbench/analysis/band_plan.h"
#include "workbench/analysis/export_check.h"
#include "workbench/commands/command_table.h"
#include "workbench/database/class_history.h"
#include "workbench/database/class_objects.h"
#include "workbench/database/database_pane.h"
#include "workbench/edits/label_objects.h"
#include "workbench/edits/segmentation_control.h"
#include "workbench/host_variables.h"
#include "workbench/hosted_histogram.h"
#include "workbench/image_area.h"
#include "workbench/label_object_services.h"
#include "workbench/list_window.h"
#include "workbench/main_window.h"
#include "workbench/menu_bar.h"
#include "workbench/model/change_hub.h"
#include "workbench/model/command_line.h"
#include "workbench/model/display_window.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/label_description_file.h"
#include "workbench/model/open_volumes.h"
#include "workbench/model/panel_scale.h"
#include "workbench/model/session.h"
#include "workbench/model/workspace.h"
#include "workbench/parts/color_advisor.h"
#include "workbench/parts/focus.h"
#include "workbench/parts/histogram_control.h"
#include "workbench/parts/picture_control.h"
#include "workbench/parts/recovery_control.h"
#include "workbench/parts/settings_keeper.h"
#include "workbench/report.h"
#include "workbench/report_questions.h"
#include "workbench/segmentation_services.h"
#include "workbench/status_line.h"
#include "workbench/tool_area.h"
#include "workbench/tools/tool_box.h"
#include "workbench/trace_view.h"
#include "workbench/volume_objects.h"
#include "workbench/volumes/volume_statistics.h"
#include "workbench/warning_banner.h"
#include "workbench/window_dialogs.h"

namespace workbench {

class Json_Text;

/** Lives from start to end of the program; there is one. */
class Application : public Image_User,
                    public Main_Window_User,
                    public File_Actions,
                    public History_Actions,
                    public Label_Actions,
                    public View_Actions,
                    public Cursor_Actions,
                    public Propagation_Actions,
                    public Histogram_Actions,
                    public Database_Actions,
                    public Window_Actions {
  public:
    explicit Application(const Command_Line& command_line);
    ~Application() override;
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /** Makes the windows. @return false when the system refuses */
    bool Start(int show);
    /** Handles messages until the window is closed. @return the program's status */
    int Run();

    // What the main window tells (Main_Window_User).
    void Lay_Out() override;
    void Execute(const Command_Call& call) override;
    void Key(int key) override;
    void Wheel(POINT screen, int delta, bool is_control) override;
    void Menu_Refresh(HMENU menu) override;
    bool May_Close() override;
    void Dpi_Changed(int dpi) override;
    void Files_Dropped(const std::wstring& path) override;
    void Deliver() override;

    // What the image view tells (Image_User).
    Image_Content Content() const override;
    void Slice_Go(int slice) override;
    Pixel_Rect Tool_Press(const Slice_Point& at, Tool_Hand hand) override;
    Pixel_Rect Tool_Move(const Slice_Point& at) override;
    void Tool_Release() override { tools.Release(); }
    Brush_Footprint Tool_Outline(const Slice_Point& at) const override;
    std::vector<Shown_Path> Tool_Paths() const override;
    void Pick(int x, int y) override;
    void Hover(int x, int y) override;
    void Hover_End() override;
    void Cross_Move(int x, int y) override;
    void Window_Drag(float dx, float dy) override;

    // What commands ask for.
    void Open_Ask() override;
    void Open_Folder_Ask() override;
    void Not_Opened_Show() override;
    void Read_Facts_Show() override;
    void Orientation_Ask() override;
    void Load_Labels_Ask() override;
    bool Save_Labels(bool ask_for_name) override;
    void Export_Histogram() override;
    void Export_Verify_Ask() override;
    void Quit() override;
    std::vector<Numbered_Entry> Recent_Entries() const override;
    void Recent_Open(int number) override;

    void Undo_Or_Redo(bool redo) override;
    std::optional<std::string> Next_Step(bool redo) const override;
    void History_Ask() override;

    void Tag_Step_By(int step) override;
    void Tag_Pick(int tag) override;
    void Tag_Go_To() override;
    void Tag_Rename_Ask() override;
    void Tag_Toggle(Tag_Mark mark) override;
    bool Has_Tag_Mark(Tag_Mark mark) const override;
    void Threshold_Mode_Set(bool on) override;
    bool Is_Threshold_Mode() const override { return is_threshold_mode; }
    void Threshold_Ask(bool is_upper) override;
    void Tag_More() override;
    void Check_Mark_Set(Tag_Mark mark) override;
    bool Is_Check_Mark(Tag_Mark mark) const override { return mark == check_mark; }
    void Brush_Step(int step) override;
    void Marker_Step(int step) override;
    void Marker_Rename_Ask() override;
    void Marker_Remove() override;

    void Slice_Step(int step) override;
    void Slice_To_End(bool is_last) override;
    void Volume_Step(int step) override;
    void Zoom_To(double factor) override;
    void Zoom_Step(int step) override;
    void Window_Reset() override;
    void Level_Step(int step) override;
    void Window_Width_Step(int step) override;
    std::vector<Numbered_Entry> Window_Entries() const override;
    void Window_Choose(int number) override;
    void Overlay_Set(bool on) override;
    bool Is_Overlay() const override { return is_overlay_shown; }
    void Range_Overlay_Set(bool on) override;
    bool Is_Range_Overlay() const override { return is_range_shown; }
    void Overlay_Opacity_Ask() override;
    void Planes_Show(bool shown) override;
    bool Is_Planes() const override { return image.Is_Planes(); }
    void Cross_To_Cursor() override;

    void Cursor_Set(bool on) override;
    bool Is_Cursor() const override { return image.Slices().Is_Cursor(); }
    void Cursor_Act(bool erase) override;
    void Cursor_Pen_Set(bool down) override;
    bool Is_Pen_Down() const override { return image.Slices().Is_Pen_Down(); }
    void Cursor_Pick() override;

    void Propagate_Step(int direction) override;
    void Propagate_Repeat(int direction) override;
    void Propagation_Kind_Set(Propagation_Kind kind) override;
    Propagation_Kind Propagation_Kind_Now() const override { return propagation_kind; }

    void Histogram_Of_All() override;
    void Histogram_Of_Shown() override;
    void Histogram_Range_Ask() override;
    Histogram_Frames Histogram_Frames_Now() const override { return histogram.Source_Now(); }
    void Histogram_Of_Tag_Set(bool on) override;
    bool Is_Histogram_Of_Tag() const override { return histogram.Is_Of_Tag(); }
    void Histogram_Smoothed_Set(bool on) override;
    bool Is_Histogram_Smoothed() const override { return histogram.Is_Smoothed(); }
    void Background_Leave_Out(bool on) override;
    bool Is_Background_Left_Out() const override { return histogram.Is_Background_Left_Out(); }
    void Background_Ask() override;
    void Histogram_Bins_Ask() override;
    void Histogram_Component_Next() override;
    void Histogram_Scale_Step(int step) override;
    void Histogram_Enlarge() override;
    void Wheel_Turned_Set(bool on) override;
    bool Is_Wheel_Turned() const override { return settings.Now().is_wheel_turned; }
    void Peaks_Show() override;
    void Peaks_Fit_Gaussian() override;
    void Peaks_Fit_Derivative_Ask() override;
    void Peaks_To_Bands() override;

    void Database_Show(bool shown) override;
    bool Is_Database() const override { return database.Is_Shown(); }
    void Database_Find() override;
    void Database_View_Set(int view) override;
    void Database_Width_Step(int step) override;
    void Database_Expand_All(bool open) override;
    void Database_Editor_Set(bool on) override;
    bool Is_Database_Editor() const override;
    void Class_Undo_Or_Redo(bool redo) override;
    std::optional<std::string> Next_Class_Step(bool redo) const override;

    void Trace_Show(bool shown) override;
    bool Is_Trace() const override { return trace.Is_Shown(); }
    void Theme_Set(bool is_light) override;
    bool Is_Light() const override;
    void Keys_Show() override;
    void About_Show() override;
    void Banner_Close() override;
    void Report_State() override;

  private:
    // application.cpp
    void Add_Panels();
    void Contract_Check();
    /** Who is told of changes, in which order. */
    void Listen();
    /** Makes data anew that are made of what has changed. */
    void Derive(Told_Changes& told);
    void Show_Changes(Changes changes);
    void On_Panel_Request(unsigned __int64 flags);
    void On_Change_Child(Quorel_2D* new_frame);
    void On_Redraw();
    void On_Message(int level, const char* text);
    void Status(const std::wstring& text);
    void Warn(std::string_view utf8, Warning_Subject subject = Warning_Subject::Other);
    void Notes_Show();
    void Title_Show();
    void Look_Changed();

    // application_report.cpp
    void Report_Places(Json_Text& out) const;
    void Report_View(Json_Text& out) const;
    void Report_Tags(Json_Text& out) const;
    void Report_Volume(Json_Text& out) const;
    void Report_Database(Json_Text& out);
    void Report_Histogram(Json_Text& out);

    // application_keyboard.cpp
    Focus_Host Focus_Services();
    /** Draws the frame of the part that the keyboard acts on, and tells of it. */
    void Focus_Mark(Pane pane);
    /** @return true when the marked part used the key */
    bool Pane_Key(int key);
    bool Pane_Command(int key);
    bool Cursor_Key(int key);
    /** The keyboard's cursor is there; otherwise the user is told how it begins. */
    bool Has_Cursor();
    void Label_Ask(Text_Table table);

    // application_accessible.cpp
    /** Names of all parts of the window for screen readers. */
    void Accessible_Names();

    // application_settings.cpp
    /** Reads what was kept; before the windows are laid out. */
    void Settings_Open();
    void Settings_Apply();
    void Settings_Keep();
    void Recent_Opened(const std::filesystem::path& path);

    // application_colors.cpp
    Color_Host Color_Services();

    // application_files.cpp
    std::optional<volumes::Load_Result> Load_With_Progress(const std::filesystem::path& path);
    enum class Save_Outcome { Saved, Not_Saved, Load_Theirs };
    /** Asks where there is doubt about the file. LOAD_THEIRS: the user prefers what another program has written. */
    Save_Outcome Save_Labels_Asking(bool ask_for_name);
    /** @param is_chosen the user has just agreed that the file is replaced @return no value: save under another name */
    std::optional<Save_Outcome> Save_Doubts_Ask(const std::filesystem::path& path, bool is_chosen);
    /** About the work on all open volumes. @return false: the user wants to go on working */
    bool Ask_Unsaved();

    // application_recovery.cpp
    Recovery_Host Recovery_Services();

    // application_export.cpp
    /** What the file of the histogram should tell; only with counts. */
    Export_Expected Export_Wanted() const;
    /** What the table of the peak analysis was made of, as lines: volume, file, frames. */
    std::string Table_Source() const;
    void Table_Save(const std::string& text);
    /** Reads a histogram's file back and tells what differs from the panel. @param is_new it was just written: then
     *  only differences are worth a window */
    void Export_Verify(const std::filesystem::path& path, bool is_new);

    // application_labels.cpp
    /** Takes over what was loaded, without a step. */
    void Labels_Adopt(const Label_Description& description);
    void Load_Labels(const std::filesystem::path& path);
    /** Labels of a file, whatever its kind, and what describes them. */
    struct Labels_File {
        volumes::Volume volume;
        Label_Description_Loading described;
        bool is_object = false;  ///< labels are never saved into a segmentation object of somebody's
    };
    std::optional<Labels_File> Labels_File_Read(const std::filesystem::path& path);
    /** What to do with labels that lie elsewhere than the image; no value: the user gave up. */
    std::optional<Grid_Choice> Labels_Place_Ask(const volumes::Volume& loaded, const std::filesystem::path& path);
    /** What is to be told about labels that lie on the image otherwise than by equal voxels; may be empty. */
    std::string Labels_Place_Text(const volumes::Volume& loaded, const std::filesystem::path& path,
                                  Grid_Choice choice) const;

    // application_volumes.cpp
    /** Opens files and folders, all together, in place of what is open. */
    void Open_Paths(std::span<const std::filesystem::path> paths);
    /** Tells which files were not opened, and why. */
    void Problems_Tell(const volumes::Image_Folder& opened, const std::filesystem::path& first);
    /** @param first of the paths that were opened: the class changes are kept beside it */
    void Show_Volumes(const std::filesystem::path& first, volumes::Image_Folder&& opened,
                      std::vector<volumes::Volume_Statistics>&& numbers, std::vector<Slice_Frames>&& frames);
    /** Name and size of the current volume. */
    std::wstring Volume_Text() const;
    /** Takes over what belongs to the volume that became the current one. */
    void Volume_Adopt();
    /** Makes another volume the current one. @return false: it is so already, or there is none */
    bool Volume_Set(int wanted);
    /** Goes to another volume and makes the histogram of all its frames. */
    void Volume_Go(int wanted);
    /** Shows a frame of whatever volume. */
    void Frame_Follow(const Quorel_2D* frame);

    // application_tags.cpp
    void Tag_Set(int tag, bool scroll_to_it);
    void Tag_Scroll_To(int tag);
    /** Another number of TAGs is offered. */
    void Tag_Rows_Show();
    std::span<std::uint8_t> Tag_Flags_Of(Tag_Mark mark) const;
    void Brush_Set(int brush);
    void Marker_Set(int marker);
    void Marker_Place(int marker, const Marker& place);
    void Markers_Enable_Refresh();

    // application_history.cpp
    /** Takes steps back, or does them again, until so many are in force. @return title of the last; empty: none */
    std::string Steps_Walk(std::size_t wanted);
    /** Writes what a step holds besides voxels and markers where the panels read it.
     *  @param slice_of_step receives where the step is seen */
    void Step_Show(const Undo_Step& done, bool redo, int& slice_of_step);

    // application_histogram.cpp
    void Histogram_Ranges_Refresh();
    void Histogram_Select();
    /** Counts the frames that were chosen. */
    void Histogram_Chosen();
    std::wstring Histogram_Text() const;
    /** Magnifies so that one overfull bin, as the air around a head makes, does not flatten the rest; not when the user
     *  has chosen a magnification. */
    void Histogram_Scale_Suggest();
    /** What the histogram counts: "frames 3, 5 to 9, smoothed". */
    std::string Histogram_Source() const;
    Counted_Pixels Histogram_Counted() const;
    void Peaks_Changed();
    void Bands_Take(const std::vector<Peak_Row>& peaks);

    // application_database.cpp
    Database_Host Database_Services();
    /** Runs an event of a database panel. A panel asks for one thing per checked row; all is done once, afterwards. */
    void Database_Run(const std::function<void()>& event);
    bool May_Remove_Class(const std::string& class_name);
    /** Tells of the class trees of data that were just opened. @param problem of reading their changes; may be empty */
    void Class_Changes_Opened(const std::string& problem);
    /** Makes a step of what the editor has changed, and saves it. */
    void Class_Changes_Note();
    void Class_Changes_Save();
    /** The keyboard's Ctrl+Z and Ctrl+Y are for the class trees. */
    bool Is_Class_Undo(POINT pointer) const;
    /** @return false: changes of the class trees would be lost, and the user wants to go on working */
    bool Ask_Class_Changes();
    /** The user has checked other frames: they make up the histogram. */
    void Selection_Taken();

    // application_image.cpp
    void Slice_Show(int wanted);
    Segmentation_Wiring Segmentation_Wires();
    Label_Object_Wiring Label_Object_Wires();
    /** What the image is tinted with: the band of the current TAG, or the bands of all. */
    std::vector<Range_Overlay> Ranges_Now() const;
    Image_Content Slice_Content(int of) const;
    Picture_Host Picture_Services();
    std::vector<volumes::Display_Window> Windows() const;
    Tag_Overlay Overlay_Now() const;
    Plane_Host Plane_Services();
    std::vector<Placed_Marker> Placed_Markers() const;
    // What the mouse does in whatever view.
    void Voxel_Pick(const Shown_Voxel& voxel);
    void Voxel_Hover(const Image_User& by, const Shown_Voxel& voxel);
    void View_Left(const Image_User& by);
    /** Tells of the pixel under the mouse as it is now. */
    void Voxel_Show();

    // application_tools.cpp
    Tool_Host Tool_Services();
    /** A point of the shown slice. */
    Tool_Spot Spot(const Slice_Point& at) const { return {{session.Slice_Pictures(), slice}, at}; }

    // application_propagation.cpp
    /** The application that runs; null: none. */
    static Application* The();
    static int Propagation_Function(void* from, void* to);
    int Propagate(int from, int to);

    Claimed_Levels Claimed(int tag) const;
    double Grey_Of_Panel(float told) const { return labels.Grey_Of(told); }
    float Panel_Of_Grey(double grey) const { return labels.Told_Of(grey); }

    Settings_Keeper settings;
    Histogram_Control histogram;
    Color_Advisor color_advisor{Color_Services()};
    Focus focus{Focus_Services()};
    Picture_Control pictures{Picture_Services()};
    Command_Table commands{{*this, label_objects, *this, *this, tools, color_advisor, *this, pictures, *this, *this,
                            segmentation_control, *this, *this, focus, *this}};
    Command_Line options;
    Look look;
    Report report;
    Report_Questions report_questions;
    mutable Host_Variables variables;
    Workspace work{[this] { window.Deliver_Soon(); }};
    Session& session = work.session;
    Open_Volumes& volumes = work.volumes;
    Change_Hub& hub = work.hub;
    Label_Attributes labels{work, variables};
    Volume_Objects objects;
    std::optional<Class_Objects> classes;
    Class_History class_history;
    std::string class_problem;  // why the journal was not saved, as the user was told
    int rounds_told = 0;        // but for what follows the mouse

    Tool_Tag tag_panel;
    Tool_Marker marker_panel;
    Tool_Brush brush_panel;
    Tool_Propagate propagate_panel;
    Tool_Histo histogram_panel;
    Panel_Of<Tool_Tag> hosted_tag;
    Panel_Of<Tool_Marker> hosted_marker;
    Panel_Of<Tool_Brush> hosted_brush;
    Panel_Of<Tool_Propagate> hosted_propagate;
    Hosted_Histogram hosted_histogram;

    Main_Window window;
    Tool_Area tool_area;
    Plane_Views planes{session, Plane_Services()};
    Image_Area image;
    Status_Line status_line;
    Warning_Banner banner;
    Window_Dialogs dialogs{look, status_line, banner, report, [this] { return window.Handle(); }};
    Recovery_Control recovery{work, labels, dialogs, Recovery_Services()};
    Trace_View trace;
    Analysis_Window analysis;
    Database_Pane database;
    List_Window not_opened_list;
    List_Window read_list;
    Segmentation_Services segmentation_services;
    Segmentation_Control segmentation_control{segmentation_services};
    Tool_Box tools{Tool_Services()};
    Label_Object_Services label_object_services{Label_Object_Wires()};
    Label_Objects label_objects{label_object_services};
    Panel_Host* tag_host = nullptr;  // owned by the tool area
    Panel_Host* marker_host = nullptr;
    Panel_Host* brush_host = nullptr;
    Panel_Host* propagate_host = nullptr;
    Panel_Host* histogram_host = nullptr;

    std::string not_opened;                              // files, and why; UTF-8, one per line
    std::vector<volumes::Folder_Problem> read_warnings;  // of files that are open
    volumes::Volume_Statistics& statistics = work.statistics;
    Grey_Window& grey_window = work.grey_window;
    Panel_Scale& panel_scale = work.panel_scale;
    int& slice = work.slice;
    int tag_rows_shown = 0;                  // by how many TAGs the panel was laid out
    std::optional<Shown_Voxel> hovered;      // under the mouse
    const Image_User* hovered_by = nullptr;  // the view that has told it
    bool is_overlay_shown = true;
    bool is_threshold_mode = false;
    bool is_range_shown = false;
    Tag_Mark check_mark = Tag_Mark::Enable;
    Propagation_Kind propagation_kind = Propagation_Kind::Grow;
    int report_nb = 0;
    int database_width = 0;               // pixels; 0: not chosen yet
    int database_events = 0;              // running events of database panels
    unsigned __int64 database_flags = 0;  // what they have asked for
    Quorel_2D* database_frame = nullptr;
};

}  // namespace workbench

/** Stands for all parts of the application: notes what it is asked for, and answers with what was set before. */
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/model/session.h"
#include "workbench/model/view_places.h"

namespace workbench {

struct Command_Double : Volume_File_Actions,
                        Label_File_Actions,
                        Export_Actions,
                        Object_Actions,
                        Archive_Actions,
                        History_Actions,
                        Label_Actions,
                        Tool_Actions,
                        Color_Actions,
                        View_Actions,
                        Layout_Actions,
                        Picture_Actions,
                        Image_File_Actions,
                        Cursor_Actions,
                        Propagation_Actions,
                        Segmentation_Actions,
                        Histogram_Actions,
                        Database_Actions,
                        Focus_Actions,
                        Window_Actions {
    void Open_Ask() override { Note("Open_Ask"); }
    void Open_Folder_Ask() override { Note("Open_Folder_Ask"); }
    void Not_Opened_Show() override { Note("Not_Opened_Show"); }
    void Read_Facts_Show() override { Note("Read_Facts_Show"); }
    void Orientation_Ask() override { Note("Orientation_Ask"); }
    void Load_Labels_Ask() override { Note("Load_Labels_Ask"); }
    bool Save_Labels(bool ask_for_name) override { return Note("Save_Labels", Number(ask_for_name)); }
    void Object_Save() override { Note("Object_Save"); }
    void Archive_Open() override { Note("Archive_Open"); }
    void Labels_Send() override { Note("Labels_Send"); }
    void Images_Send() override { Note("Images_Send"); }
    void Tag_Meaning_Ask() override { Note("Tag_Meaning_Ask"); }
    void Export_Histogram() override { Note("Export_Histogram"); }
    void Export_Verify_Ask() override { Note("Export_Verify_Ask"); }
    void Quit() override { Note("Quit"); }
    std::vector<Numbered_Entry> Recent_Entries() const override { return recent; }
    void Recent_Open(int number) override { Note("Recent_Open", Number(number)); }
    void Undo_Or_Redo(bool redo) override { Note("Undo_Or_Redo", Number(redo)); }
    std::optional<std::string> Next_Step(bool redo) const override { return redo ? redo_title : undo_title; }
    void History_Ask() override { Note("History_Ask"); }
    void Tag_Step_By(int step) override { Note("Tag_Step_By", Number(step)); }
    void Tag_Pick(int tag) override { Note("Tag_Pick", Number(tag)); }
    void Tag_Go_To() override { Note("Tag_Go_To"); }
    void Tag_Rename_Ask() override { Note("Tag_Rename_Ask"); }
    void Colors_Check() override { Note("Colors_Check"); }
    void Labels_Share(bool on) override { Note("Labels_Share", Number(on)); }
    bool Are_Labels_Shared() const override { return Is("Are_Labels_Shared"); }
    void Tag_Toggle(Tag_Mark mark) override { Note("Tag_Toggle", Number(mark)); }
    bool Has_Tag_Mark(Tag_Mark mark) const override {
        return Is(std::string("Has_Tag_Mark ") + std::to_string(Number(mark)));
    }
    void Threshold_Mode_Set(bool on) override { Note("Threshold_Mode_Set", Number(on)); }
    bool Is_Threshold_Mode() const override { return Is("Is_Threshold_Mode"); }
    void Threshold_Ask(bool is_upper) override { Note("Threshold_Ask", Number(is_upper)); }
    void Tag_More() override { Note("Tag_More"); }
    void Check_Mark_Set(Tag_Mark mark) override { Note("Check_Mark_Set", Number(mark)); }
    bool Is_Check_Mark(Tag_Mark mark) const override {
        return Is(std::string("Is_Check_Mark ") + std::to_string(Number(mark)));
    }
    void Brush_Step(int step) override { Note("Brush_Step", Number(step)); }
    void Tool_Choose(Tool_Kind kind) override { Note("Tool_Choose", Number(kind)); }
    Tool_Kind Tool_Now() const override { return tool_now; }
    void Band_Only_Set(bool on) override { Note("Band_Only_Set", Number(on)); }
    bool Is_Band_Only() const override { return Is("Is_Band_Only"); }
    void Ball_Set(bool on) override { Note("Ball_Set", Number(on)); }
    bool Is_Ball() const override { return Is("Is_Ball"); }
    void Brush_Mm_Set(bool on) override { Note("Brush_Mm_Set", Number(on)); }
    bool Is_Brush_Mm() const override { return Is("Is_Brush_Mm"); }
    void Fill_In_Space_Set(bool on) override { Note("Fill_In_Space_Set", Number(on)); }
    bool Is_Fill_In_Space() const override { return Is("Is_Fill_In_Space"); }
    void Fill_Corners_Set(bool on) override { Note("Fill_Corners_Set", Number(on)); }
    bool Is_Fill_Corners() const override { return Is("Is_Fill_Corners"); }
    void Fill_By_Tolerance_Set(bool on) override { Note("Fill_By_Tolerance_Set", Number(on)); }
    bool Is_Fill_By_Tolerance() const override { return Is("Is_Fill_By_Tolerance"); }
    void Fill_Tolerance_Ask() override { Note("Fill_Tolerance_Ask"); }
    void Tool_Accept() override { Note("Tool_Accept"); }
    void Tool_Cancel() override { Note("Tool_Cancel"); }
    void Measurements_Remove() override { Note("Measurements_Remove"); }
    void Marker_Step(int step) override { Note("Marker_Step", Number(step)); }
    void Marker_Rename_Ask() override { Note("Marker_Rename_Ask"); }
    void Marker_Remove() override { Note("Marker_Remove"); }
    void Slice_Step(int step) override { Note("Slice_Step", Number(step)); }
    void Slice_To_End(bool is_last) override { Note("Slice_To_End", Number(is_last)); }
    void Volume_Step(int step) override { Note("Volume_Step", Number(step)); }
    void Zoom_To(double factor) override { Note("Zoom_To", Number(factor)); }
    void Zoom_Step(int step) override { Note("Zoom_Step", Number(step)); }
    void Window_Reset() override { Note("Window_Reset"); }
    void Level_Step(int step) override { Note("Level_Step", Number(step)); }
    void Window_Width_Step(int step) override { Note("Window_Width_Step", Number(step)); }
    std::vector<Numbered_Entry> Window_Entries() const override { return windows; }
    void Window_Choose(int number) override { Note("Window_Choose", Number(number)); }
    void Picture_Save() override { Note("Picture_Save"); }
    void Image_Save_As() override { Note("Image_Save_As"); }
    void Sheet_Save() override { Note("Sheet_Save"); }
    void Overlay_Set(bool on) override { Note("Overlay_Set", Number(on)); }
    bool Is_Overlay() const override { return Is("Is_Overlay"); }
    void Overlay_Opacity_Ask() override { Note("Overlay_Opacity_Ask"); }
    void Range_Overlay_Set(bool on) override { Note("Range_Overlay_Set", Number(on)); }
    bool Is_Range_Overlay() const override { return Is("Is_Range_Overlay"); }
    void Arrangement_Set(View_Arrangement wanted) override { Note("Arrangement_Set", Number(wanted)); }
    View_Arrangement Arrangement_Now() const override { return arrangement_now; }
    void Large_Plane_Next() override { Note("Large_Plane_Next"); }
    void Views_Link(bool on) override { Note("Views_Link", Number(on)); }
    bool Is_Linked() const override { return Is("Is_Linked"); }
    void Linear_Set(bool on) override { Note("Linear_Set", Number(on)); }
    bool Is_Linear() const override { return Is("Is_Linear"); }
    void Cursor_Set(bool on) override { Note("Cursor_Set", Number(on)); }
    bool Is_Cursor() const override { return Is("Is_Cursor"); }
    void Cursor_Act(bool erase) override { Note("Cursor_Act", Number(erase)); }
    void Cursor_Pen_Set(bool down) override { Note("Cursor_Pen_Set", Number(down)); }
    bool Is_Pen_Down() const override { return Is("Is_Pen_Down"); }
    void Cursor_Pick() override { Note("Cursor_Pick"); }
    void Cross_To_Cursor() override { Note("Cross_To_Cursor"); }
    void Propagate_Step(int direction) override { Note("Propagate_Step", Number(direction)); }
    void Propagate_Repeat(int direction) override { Note("Propagate_Repeat", Number(direction)); }
    void Propagation_Kind_Set(Propagation_Kind kind) override { Note("Propagation_Kind_Set", Number(kind)); }
    Propagation_Kind Propagation_Kind_Now() const override { return kind_now; }
    void Bands_Apply(bool of_all_tags) override { Note("Bands_Apply", Number(of_all_tags)); }
    void Bands_Preview_Set(bool on) override { Note("Bands_Preview_Set", Number(on)); }
    bool Is_Bands_Preview() const override { return Is("Is_Bands_Preview"); }
    void Flood(bool by_tolerance) override { Note("Flood", Number(by_tolerance)); }
    void Region_Keep_Largest() override { Note("Region_Keep_Largest"); }
    void Regions_Drop_Small() override { Note("Regions_Drop_Small"); }
    void Region_Keep_At_Cursor() override { Note("Region_Keep_At_Cursor"); }
    void Region_Take_At_Cursor() override { Note("Region_Take_At_Cursor"); }
    void Holes_Fill(bool in_space) override { Note("Holes_Fill", Number(in_space)); }
    void Tag_Smooth() override { Note("Tag_Smooth"); }
    void Tag_Resize(int direction) override { Note("Tag_Resize", Number(direction)); }
    void Slices_Between_Fill() override { Note("Slices_Between_Fill"); }
    void Tag_Merge() override { Note("Tag_Merge"); }
    void Tag_Join_File() override { Note("Tag_Join_File"); }
    void Scope_Set(Edit_Scope scope) override { Note("Scope_Set", Number(scope)); }
    Edit_Scope Scope_Now() const override { return scope_now; }
    void Only_Inside_Ask() override { Note("Only_Inside_Ask"); }
    std::optional<std::string> Only_Inside_Name() const override { return only_inside; }
    void Statistics_Show() override { Note("Statistics_Show"); }
    void Statistics_Save() override { Note("Statistics_Save"); }
    void Labels_Compare_Ask() override { Note("Labels_Compare_Ask"); }
    void Differences_Show(bool on) override { Note("Differences_Show", Number(on)); }
    bool Is_Differences() const override { return Is("Is_Differences"); }
    void Histogram_Of_All() override { Note("Histogram_Of_All"); }
    void Histogram_Of_Shown() override { Note("Histogram_Of_Shown"); }
    void Histogram_Range_Ask() override { Note("Histogram_Range_Ask"); }
    Histogram_Frames Histogram_Frames_Now() const override { return frames_now; }
    void Histogram_Of_Tag_Set(bool on) override { Note("Histogram_Of_Tag_Set", Number(on)); }
    bool Is_Histogram_Of_Tag() const override { return Is("Is_Histogram_Of_Tag"); }
    void Histogram_Smoothed_Set(bool on) override { Note("Histogram_Smoothed_Set", Number(on)); }
    bool Is_Histogram_Smoothed() const override { return Is("Is_Histogram_Smoothed"); }
    void Background_Leave_Out(bool on) override { Note("Background_Leave_Out", Number(on)); }
    bool Is_Background_Left_Out() const override { return Is("Is_Background_Left_Out"); }
    void Background_Ask() override { Note("Background_Ask"); }
    void Histogram_Bins_Ask() override { Note("Histogram_Bins_Ask"); }
    void Histogram_Component_Next() override { Note("Histogram_Component_Next"); }
    void Histogram_Scale_Step(int step) override { Note("Histogram_Scale_Step", Number(step)); }
    void Histogram_Enlarge() override { Note("Histogram_Enlarge"); }
    void Wheel_Turned_Set(bool on) override { Note("Wheel_Turned_Set", Number(on)); }
    bool Is_Wheel_Turned() const override { return Is("Is_Wheel_Turned"); }
    void Peaks_Show() override { Note("Peaks_Show"); }
    void Peaks_Fit_Gaussian() override { Note("Peaks_Fit_Gaussian"); }
    void Peaks_Fit_Derivative_Ask() override { Note("Peaks_Fit_Derivative_Ask"); }
    void Peaks_To_Bands() override { Note("Peaks_To_Bands"); }
    void Database_Show(bool shown) override { Note("Database_Show", Number(shown)); }
    bool Is_Database() const override { return Is("Is_Database"); }
    void Database_Find() override { Note("Database_Find"); }
    void Database_View_Set(int view) override { Note("Database_View_Set", Number(view)); }
    void Database_Width_Step(int step) override { Note("Database_Width_Step", Number(step)); }
    void Database_Expand_All(bool open) override { Note("Database_Expand_All", Number(open)); }
    void Database_Editor_Set(bool on) override { Note("Database_Editor_Set", Number(on)); }
    bool Is_Database_Editor() const override { return Is("Is_Database_Editor"); }
    void Class_Undo_Or_Redo(bool redo) override { Note("Class_Undo_Or_Redo", Number(redo)); }
    std::optional<std::string> Next_Class_Step(bool redo) const override {
        return redo ? class_redo_title : class_undo_title;
    }
    void Focus_Step(int step) override { Note("Focus_Step", Number(step)); }
    void Panel_Fold() override { Note("Panel_Fold"); }
    void Trace_Show(bool shown) override { Note("Trace_Show", Number(shown)); }
    bool Is_Trace() const override { return Is("Is_Trace"); }
    void Theme_Set(bool is_light) override { Note("Theme_Set", Number(is_light)); }
    bool Is_Light() const override { return Is("Is_Light"); }
    void Keys_Show() override { Note("Keys_Show"); }
    void About_Show() override { Note("About_Show"); }
    void Banner_Close() override { Note("Banner_Close"); }
    void Report_State() override { Note("Report_State"); }

    Command_Parts Parts() {
        return {*this, *this, *this, *this, *this, *this, *this, *this, *this, *this,
                *this, *this, *this, *this, *this, *this, *this, *this, *this, *this};
    }

    std::vector<std::string> asked;      // "Slice_Step 1"
    std::map<std::string, bool> is_set;  // answers of the questions, by their names; not there: no
    std::optional<std::string> undo_title, redo_title, class_undo_title, class_redo_title;
    std::vector<Numbered_Entry> recent, windows;
    std::optional<std::string> only_inside;
    Tool_Kind tool_now = Tool_Kind::Paint;
    Edit_Scope scope_now = Edit_Scope::Volume;
    Propagation_Kind kind_now = Propagation_Kind::Copy;
    View_Arrangement arrangement_now = View_Arrangement::One;
    Histogram_Frames frames_now = Histogram_Frames::All;

  private:
    template <class Value>
    static int Number(Value value) {
        return static_cast<int>(value);
    }
    template <class... Values>
    bool Note(const char* what, Values... values) {
        std::string text = what;
        ((text += " " + std::to_string(values)), ...);
        asked.push_back(text);
        return true;
    }
    bool Is(const std::string& question) const {
        const auto found = is_set.find(question);
        return found != is_set.end() && found->second;
    }
};

}  // namespace workbench

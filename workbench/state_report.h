/** What programs that drive the application are told about its state. */
#pragma once

#include <functional>
#include <string>

#include "workbench/commands/command_table.h"
#include "workbench/image_area.h"
#include "workbench/look.h"
#include "workbench/model/workspace.h"
#include "workbench/panel_set.h"
#include "workbench/report.h"
#include "workbench/report_questions.h"
#include "workbench/status_line.h"

namespace workbench {

class Class_History;
class Color_Advisor;
class Database_Pane;
class Histogram_Counting;
class Histogram_Desk;
class Json_Text;
class Settings_Keeper;
class Tag_Control;
class Tool_Box;
class Trace_View;
class Volume_Opener;
class Warning_Banner;

/** Whom the report asks. All outlive it. */
struct Reported_Parts {
    const Look& look;
    Workspace& work;
    Host_Variables& variables;
    Panel_Set& panels;
    Image_Area& image;
    const Plane_Views& planes;
    const Status_Line& status_line;
    const Warning_Banner& banner;
    const Trace_View& trace;
    Database_Pane& database;
    const Class_History& class_history;
    Histogram_Desk& histogram;
    const Histogram_Counting& counting;
    const Command_Table& commands;
    const Color_Advisor& color_advisor;
    const Focus& focus;
    const Tag_Control& tags;
    const Tool_Box& tools;
    const Settings_Keeper& settings;
    const Volume_Opener& opener;
    std::function<HWND()> window;             ///< the main one
    std::function<void(HMENU)> menu_refresh;  ///< as when it opens
};

class State_Report {
  public:
    State_Report(Reported_Parts parts, Report& lines) : of(std::move(parts)), report(lines) {}

    /** From now on questions are answered. @param file the report's, UTF-8 */
    void Begin(const std::string& file);
    /** Writes the state as it is. */
    void Write();
    /** Everybody was told of changes that are more than what follows the mouse. */
    void Round_Count() { ++rounds_told; }

  private:
    void Places(Json_Text& out) const;
    /** Which views there are, and what is seen in them. */
    void Views(Json_Text& out) const;
    void View(Json_Text& out) const;
    void Tags(Json_Text& out) const;
    void Volume(Json_Text& out) const;
    void Database(Json_Text& out) const;
    void Histogram(Json_Text& out) const;

    Reported_Parts of;
    Report& report;
    Report_Questions questions;
    int number = 0;
    int rounds_told = 0;
};

}  // namespace workbench

/** The window itself: its looks, its help, the places of its parts from one start to the next. */
#pragma once

#include <filesystem>
#include <functional>

#include "workbench/commands/command_actions.h"
#include "workbench/host_variables.h"
#include "workbench/look.h"
#include "workbench/model/command_line.h"
#include "workbench/model/dialogs.h"
#include "workbench/parts/settings_keeper.h"

namespace workbench {

class Database_Control;
class Histogram_Desk;
class Image_Area;
class Label_Attributes;
class Panel_Set;
class Segmentation_Services;
class State_Report;
class Trace_View;
class Volume_Opener;

/** What it works on, and what it asks of the application. All outlive it. */
struct Window_Parts {
    const Command_Line& options;
    Look& look;
    Settings_Keeper& settings;
    Host_Variables& variables;
    Label_Attributes& labels;
    Dialogs& dialogs;
    Panel_Set& panels;
    Image_Area& image;
    Trace_View& trace;
    Database_Control& database;
    Histogram_Desk& histogram;
    Volume_Opener& opener;
    Segmentation_Services& segmentation_services;
    State_Report& state_report;
    std::function<HWND()> window;   ///< the main one
    std::function<void()> lay_out;  ///< some part of the window wants other room
};

class Window_Control : public Window_Actions {
  public:
    explicit Window_Control(Window_Parts parts) : of(std::move(parts)) {}

    void Trace_Show(bool shown) override;
    bool Is_Trace() const override;
    void Theme_Set(bool is_light) override;
    bool Is_Light() const override { return of.look.Theme() == Library_Theme::Light; }
    void Keys_Show() override;
    void About_Show() override;
    void Banner_Close() override { of.dialogs.Warnings_Close({}); }
    void Report_State() override;
    void Quit() override;

    /** Another scale. @param dpi dots per inch */
    void Dpi_Set(int dpi);
    /** Reads what was kept; before the windows are laid out. */
    void Settings_Open();
    /** Puts everything where it was kept to be. */
    void Settings_Apply();
    /** Keeps how everything is now. */
    void Settings_Keep();

  private:
    /** Other colours or another scale: everything is laid out and drawn anew. */
    void Look_Changed();

    Window_Parts of;
};

}  // namespace workbench

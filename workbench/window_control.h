/** The window itself: its looks, its help, the places of its parts from one start to the next. */
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/host_variables.h"
#include "workbench/look.h"
#include "workbench/model/command_line.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/settings_keeper.h"

namespace workbench {

/** A window beside the main one that comes back where it was. */
struct Kept_Window {
    Window_Place Settings::*kept;
    std::function<void(const Window_Place& place)> place_set;
    std::function<Window_Place()> place_now;
};

/** What it works on, and what it asks of the application. All outlive it. */
struct Window_Parts {
    const Command_Line& options;
    Look& look;
    Settings_Keeper& settings;
    Host_Variables& variables;
    Label_Attributes& labels;
    Dialogs& dialogs;
    std::function<HWND()> window;                           ///< the main one
    std::function<void()> lay_out;                          ///< some part of the window wants other room
    std::function<std::vector<Kept_Window>()> windows;      ///< the others
    std::function<void(const Settings& kept)> arrange;      ///< the parts of the main window are as they were kept
    std::function<void(Settings& kept)> arrangement_take;   ///< the parts' arrangement becomes what is kept
    std::function<void(int pixels)> database_width_choose;  ///< before the windows are laid out
    std::function<void()> look_changed;                     ///< the parts take over colours and scale
    std::function<void(bool)> trace_show;
    std::function<bool()> is_trace;
    std::function<void()> state_report;
};

class Window_Control : public Window_Actions {
  public:
    explicit Window_Control(Window_Parts parts) : of(std::move(parts)) {}

    void Trace_Show(bool shown) override;
    bool Is_Trace() const override { return of.is_trace(); }
    void Theme_Set(bool is_light) override;
    bool Is_Light() const override { return of.look.Theme() == Library_Theme::Light; }
    void Keys_Show() override;
    void About_Show() override;
    void Banner_Close() override { of.dialogs.Warnings_Close({}); }
    void Report_State() override { of.state_report(); }
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

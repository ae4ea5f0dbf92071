/** The application: makes its parts and its windows, and handles messages. */
#pragma once

#include <string>

#include "workbench/application_parts.h"
#include "workbench/change_views.h"

namespace workbench {

/** Lives from start to end of the program; there is one. */
class Application : public Main_Window_User {
  public:
    explicit Application(const Command_Line& command_line);
    ~Application() override;
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /** Makes the windows. @return false when the system refuses */
    bool Start(int show);
    /** Handles messages until the window is closed. @return the program's status */
    int Run();

    // What the main window tells.
    void Lay_Out() override;
    void Execute(const Command_Call& call) override;
    void Key(int key) override { parts.keyboard.Key(key); }
    void Wheel(POINT screen, int delta, bool is_control) override;
    void Menu_Refresh(HMENU menu) override;
    bool May_Close() override;
    void Dpi_Changed(int dpi) override { parts.window_control.Dpi_Set(dpi); }
    void Files_Dropped(const std::wstring& path) override;
    void Deliver() override;

  private:
    /** Hears of what panels and the library ask for and tell. */
    void Library_Listen();
    void On_Message(int level, const char* text);
    void On_Change_Child(Quorel_2D* new_frame);
    /** Looks for unsaved work of a run that has died, or opens what the command line names. */
    void Work_Begin();
    /** Does what a message means to the application itself. @return true: it is used up */
    bool Take_Message(const MSG& message);

    Application_Parts parts;
    Change_Views views{parts};
};

}  // namespace workbench

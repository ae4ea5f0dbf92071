/** The application's frame window: menu, keys, wheel, and the places of the views. */
#pragma once

#include <string>

#include "workbench/commands/command.h"
#include "workbench/window_base.h"

namespace workbench {

/** Who answers the window. */
class Main_Window_User {
  public:
    virtual ~Main_Window_User() = default;
    virtual void Lay_Out() = 0;
    virtual void Execute(const Command_Call& call) = 0;
    /** @param key code as panels take it */
    virtual void Key(int key) = 0;
    virtual void Wheel(POINT screen, int delta, bool is_control) = 0;
    /** Sets marks and texts before a menu opens. */
    virtual void Menu_Refresh(HMENU menu) = 0;
    /** @return false: the window stays open */
    virtual bool May_Close() = 0;
    virtual void Dpi_Changed(int dpi) = 0;
    virtual void Files_Dropped(const std::wstring& path) = 0;
    /** What Deliver_Soon was called for. */
    virtual void Deliver() = 0;
};

class Main_Window : public Window_Base {
  public:
    explicit Main_Window(Main_Window_User& window_user) : user(window_user) {}
    bool Make();
    /** Has Deliver called by the next message loop that runs, whichever that is. */
    void Deliver_Soon() const;

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    void Drop(WPARAM handle);
    Main_Window_User& user;
    bool is_made = false;
};

}  // namespace workbench

/** A window that shows how far a long action is, with a button to give it up. */
#pragma once

#include <string>

#include "workbench/look.h"
#include "workbench/window_base.h"

namespace workbench {

/** Appears only when the action takes a while; from then on its owner takes no input. Until then the program answers
 *  nothing. Keys go on afterwards to where they went before. */
class Progress_Window : public Window_Base {
  public:
    Progress_Window(const Look& shared_look, HWND owner, const std::wstring& what);
    ~Progress_Window() override;
    /** Shows a share, 0 .. 1, and a text below the bar; answers the messages that wait. @return false: give up */
    bool Step(double share, const std::wstring& detail);
    bool Is_Cancelled() const { return is_cancelled; }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    void Paint();
    RECT Button_Box() const;

    const Look& look;
    HWND owner;
    HWND had_keys = nullptr;  // before the window appeared
    std::wstring what;
    std::wstring detail;
    double share = 0.0;
    DWORD start = 0;
    bool is_cancelled = false;
};

}  // namespace workbench

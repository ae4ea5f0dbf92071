/** A window that programs which read the screen are asked about. */
#pragma once

#include "workbench/window_base.h"

class Told_Window : public workbench::Window_Base {
  public:
    bool Make() { return Create(nullptr, WS_POPUP | WS_VISIBLE, L"plain"); }
    int presses = 0;  ///< of the left mouse button

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override {
        presses += message == WM_LBUTTONDOWN ? 1 : 0;
        return workbench::Window_Base::On_Message(message, wparam, lparam);
    }
};

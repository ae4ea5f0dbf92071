/** The device context of a widget's window, got and given back by the widget library. */
#pragma once

#include "host/kit_widgets.h"

/** Y_setup until the end of the scope. Whatever is selected or cut in it is to be brought back before. */
class Drawing_DC {
  public:
    /** @param of_window null: the screen; @param label the operation that draws, for the message when there is none */
    Drawing_DC(HWND of_window, const char* label) : window(of_window), dc(Y_setup(of_window, label)) {}
    ~Drawing_DC() {
        if (dc != nullptr) {
            Y_release(window, dc);
        }
    }
    Drawing_DC(const Drawing_DC&) = delete;
    Drawing_DC& operator=(const Drawing_DC&) = delete;
    ///@{
    /** Null and false when the system gave none. */
    HDC Get() const { return dc; }
    explicit operator bool() const { return dc != nullptr; }
    ///@}

  private:
    HWND window;
    HDC dc;
};

/** A test window in which widgets are placed by what a person sees. All positions are client pixels, y down. */
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "tests/kits/widgets/test_window.h"

class Shown_Window {
  public:
    Shown_Window(int window_width, int window_height, Window_Axis window_axis)
        : window(window_width, window_height, window_axis), height(window_height), axis(window_axis) {}

    HWND Handle() const { return window.Get(); }

    /** Places a widget by its visual top left pixel. */
    void Place(Tools& widget, int left, int top, int widget_width, int widget_height) const {
        widget.x = static_cast<short>(left);
        widget.y = static_cast<short>(axis == Window_Axis::Up ? height - top - widget_height : top);
        widget.width = static_cast<short>(widget_width);
        widget.height = static_cast<short>(widget_height);
    }
    void Pointer(int x, int y) const { window.Point_At(x, y); }
    Window_Picture Shown() const { return window.Read(); }
    std::vector<std::uint32_t> Pixels() const { return window.Read().pixels; }
    Rgb Pixel(int x, int y) const { return window.Read().At(x, y); }

  private:
    Test_Window window;
    int height;
    Window_Axis axis;
};

/** Tests that must hold in windows of both axes. */
class Both_Axes : public testing::TestWithParam<Window_Axis> {};

inline const char* Axis_Name(const testing::TestParamInfo<Window_Axis>& info) {
    return info.param == Window_Axis::Up ? "y_up" : "y_down";
}

inline constexpr int LEFT_PRESS = MOUSE_PRESS | MOUSE_LEFT;
inline constexpr int LEFT_DRAG = MOUSE_DRAG | MOUSE_LEFT;

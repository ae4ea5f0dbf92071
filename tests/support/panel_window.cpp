#include "tests/support/panel_window.h"

Panel_Window::Panel_Window(Window_Axis of_axis, int of_width, int of_height)
    : window(Panel_Window_Make(of_width, of_height)), axis(of_axis), width(of_width), height(of_height) {
    Window_Axis_Set(window, axis);
    Wipe();
}

Panel_Window::~Panel_Window() {
    Window_Forget(window);
    Panel_Window_End(window);
}

void Panel_Window::Point_At(int x, int y) const {
    int row = Row(y);
    Panel_Window_To_Screen(window, &x, &row);
    YCursor_X = x;
    YCursor_Y = row;
}

Boxs Panel_Window::Host_Box(int x, int y, int box_width, int box_height) const {
    Boxs box;
    box.style = STYLE_FRAMED_BOX;
    box.x = static_cast<short>(x);
    box.y = static_cast<short>(y);
    box.width = static_cast<short>(box_width);
    box.height = static_cast<short>(box_height);
    box.Set_Color(90, 100, 110);
    box.window = window;
    return box;
}

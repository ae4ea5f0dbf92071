#include "base/gdi_handles.h"

#include "tests/kits/widgets/test_window.h"

Test_Window::Test_Window(int of_width, int of_height, Window_Axis axis) : width(of_width), height(of_height) {
    window = ::CreateWindowExA(0, "STATIC", "test", WS_POPUP | WS_VISIBLE, 40, 30, width, height, nullptr, nullptr,
                               ::GetModuleHandleA(nullptr), nullptr);
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        ::DispatchMessageA(&message);
    }
    Window_Axis_Set(window, axis);
    Wipe();
}

Test_Window::~Test_Window() {
    Window_Forget(window);
    ::DestroyWindow(window);
}

Window_Picture Test_Window::Read() const {
    const Window_DC dc(window);
    const Dib_Picture copy(nullptr, width, height);
    ::BitBlt(copy.Get_DC(), 0, 0, width, height, dc.Get(), 0, 0, SRCCOPY);
    Dib_Picture::Flush();
    Window_Picture picture{width, height, {}};
    for (int i = 0; i < width * height; i++) {
        picture.pixels.push_back(copy.Pixels()[i] & 0xFFFFFFU);
    }
    return picture;
}

void Test_Window::Wipe() const {
    const Window_DC dc(window);
    const Gdi_Brush brush(::CreateSolidBrush(RGB(MARKER >> 16U, (MARKER >> 8U) & 0xFFU, MARKER & 0xFFU)));
    const RECT all = {0, 0, width, height};
    ::FillRect(dc.Get(), &all, brush.Get());
}

void Test_Window::Resize(int new_width, int new_height) {
    width = new_width;
    height = new_height;
    ::SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Wipe();
}

void Test_Window::Point_At(int x, int y) const {
    POINT point = {x, y};
    ::ClientToScreen(window, &point);
    YCursor_X = point.x;
    YCursor_Y = point.y;
}

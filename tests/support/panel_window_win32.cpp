#include "base/gdi_handles.h"
#include "tests/support/panel_window.h"

HWND Panel_Window_Make(int width, int height) {
    return ::CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 40, 30, width, height, nullptr, nullptr,
                             ::GetModuleHandleA(nullptr), nullptr);
}

void Panel_Window_End(HWND window) {
    ::DestroyWindow(window);
}

void Panel_Window_Fill(HWND window, int width, int height, std::uint32_t color) {
    const Window_DC dc(window);
    const Gdi_Brush brush(::CreateSolidBrush(RGB(color >> 16U, (color >> 8U) & 0xFFU, color & 0xFFU)));
    const RECT all = {0, 0, width, height};
    ::FillRect(dc.Get(), &all, brush.Get());
}

std::vector<std::uint32_t> Panel_Window_Read(HWND window, int width, int height) {
    const Window_DC dc(window);
    const Dib_Picture copy(nullptr, width, height);
    ::BitBlt(copy.Get_DC(), 0, 0, width, height, dc.Get(), 0, 0, SRCCOPY);
    Dib_Picture::Flush();
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < width * height; i++) {
        pixels.push_back(copy.Pixels()[i] & 0xFFFFFFU);
    }
    return pixels;
}

void Panel_Window_To_Screen(HWND window, int* x, int* y) {
    POINT point = {*x, *y};
    ::ClientToScreen(window, &point);
    *x = point.x;
    *y = point.y;
}

bool Wait_Cursor_Shown(bool /*otherwise*/) {
    return ::GetCursor() == ::LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT));
}

#include "kits/widgets/device.h"
#include "kits/widgets/headless_windows.h"
#include "tests/support/panel_window.h"

namespace {
constexpr Point SCREEN_PLACE = {40, 30};
}

HWND Panel_Window_Make(int width, int height) {
    HWND window = Headless_Window_Create(width, height);
    Headless_Window_Move(window, SCREEN_PLACE);
    return window;
}

void Panel_Window_End(HWND window) {
    Headless_Window_Destroy(window);
}

void Panel_Window_Fill(HWND window, int width, int height, std::uint32_t color) {
    Memory_Picture fill;
    fill.Reserve(width, height);
    Surface view = fill.View(width, height);
    view.Fill(view.Area(), color);
    const Rect all = view.Area();
    Screen_Show(window, {0, 0}, view, {&all, 1});
}

std::vector<std::uint32_t> Panel_Window_Read(HWND window, int width, int height) {
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            pixels.push_back(Headless_Window_Pixel(window, x, y));
        }
    }
    return pixels;
}

void Panel_Window_To_Screen(HWND, int* x, int* y) {
    *x += SCREEN_PLACE.x;
    *y += SCREEN_PLACE.y;
}

bool Wait_Cursor_Shown(bool otherwise) {
    return otherwise;
}

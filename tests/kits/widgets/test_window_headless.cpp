#include "kits/widgets/device.h"
#include "kits/widgets/headless_windows.h"
#include "tests/kits/widgets/test_window.h"

Test_Window::Test_Window(int of_width, int of_height, Window_Axis axis) : width(of_width), height(of_height) {
    window = Headless_Window_Create(width, height);
    Headless_Window_Move(window, {40, 30});
    Window_Axis_Set(window, axis);
    Wipe();
}

Test_Window::~Test_Window() {
    Window_Forget(window);
    Headless_Window_Destroy(window);
}

Window_Picture Test_Window::Read() const {
    Window_Picture picture{width, height, {}};
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            picture.pixels.push_back(Headless_Window_Pixel(window, x, y));
        }
    }
    return picture;
}

void Test_Window::Wipe() const {
    Memory_Picture fill;
    fill.Reserve(width, height);
    Surface view = fill.View(width, height);
    view.Fill(view.Area(), MARKER);
    const Rect all = view.Area();
    Screen_Show(window, {0, 0}, view, {&all, 1});
}

void Test_Window::Resize(int new_width, int new_height) {
    width = new_width;
    height = new_height;
    Headless_Window_Resize(window, width, height);
    Wipe();
}

void Test_Window::Point_At(int x, int y) const {
    Point screen;
    Window_To_Screen(window, {x, y}, &screen);
    YCursor_X = screen.x;
    YCursor_Y = screen.y;
}

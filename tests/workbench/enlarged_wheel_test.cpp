#include "workbench/enlarged_wheel.h"

#include <gtest/gtest.h>

#include <vector>

using namespace workbench;

namespace {

struct Turn {
    int delta = 0;
    WORD keys = 0;
    LPARAM place = 0;
    friend bool operator==(const Turn&, const Turn&) = default;
};
std::vector<Turn> turns;

LRESULT CALLBACK Note_Turns(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_MOUSEWHEEL) {
        turns.push_back({GET_WHEEL_DELTA_WPARAM(wparam), GET_KEYSTATE_WPARAM(wparam), lparam});
        return 0;
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

/** A window of a class that notes the turns of the wheel. */
class Wheel_Window {
  public:
    explicit Wheel_Window(const wchar_t* name) : class_name(name) {
        WNDCLASSW window_class = {};
        window_class.lpfnWndProc = Note_Turns;
        window_class.hInstance = ::GetModuleHandleW(nullptr);
        window_class.lpszClassName = class_name;
        ::RegisterClassW(&window_class);
        window = ::CreateWindowExW(0, class_name, L"", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr, window_class.hInstance,
                                   nullptr);
        turns.clear();
    }
    ~Wheel_Window() {
        ::DestroyWindow(window);
        ::UnregisterClassW(class_name, ::GetModuleHandleW(nullptr));
    }
    Wheel_Window(const Wheel_Window&) = delete;
    Wheel_Window& operator=(const Wheel_Window&) = delete;

    MSG Message(int delta, UINT message = WM_MOUSEWHEEL) const {
        MSG made = {};
        made.hwnd = window;
        made.message = message;
        made.wParam = MAKEWPARAM(MK_SHIFT, static_cast<WORD>(delta));
        made.lParam = MAKELPARAM(30, 40);
        return made;
    }

  private:
    const wchar_t* class_name;
    HWND window = nullptr;
};

Turn With(int delta) {
    return {delta, MK_SHIFT, MAKELPARAM(30, 40)};
}

TEST(Enlarged_Wheel, many_notches_arrive_one_by_one_with_keys_and_place) {
    const Wheel_Window enlarged(L"Histogram");
    EXPECT_TRUE(Enlarged_Wheel_Dispatch(enlarged.Message(-300), false));
    EXPECT_EQ(turns, (std::vector<Turn>{With(-120), With(-120), With(-60)}));
}

TEST(Enlarged_Wheel, turned_the_opposite_arrives) {
    const Wheel_Window enlarged(L"Histogram");
    EXPECT_TRUE(Enlarged_Wheel_Dispatch(enlarged.Message(240), true));
    EXPECT_EQ(turns, (std::vector<Turn>{With(-120), With(-120)}));
}

TEST(Enlarged_Wheel, other_windows_and_messages_are_left_alone) {
    {
        const Wheel_Window other(L"Histogram_Of_Others");
        EXPECT_FALSE(Enlarged_Wheel_Dispatch(other.Message(240), true));
    }
    const Wheel_Window enlarged(L"Histogram");
    EXPECT_FALSE(Enlarged_Wheel_Dispatch(enlarged.Message(240, WM_MOUSEHWHEEL), true));
    EXPECT_FALSE(Enlarged_Wheel_Dispatch(MSG{}, true));
    EXPECT_TRUE(turns.empty());
}

}  // namespace

// The drop list's own window: what events of the system do to it, while Select waits for it.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>

#include "base/gdi_handles.h"
#include "kits/widgets/select_drop_list.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/shown_window.h"
#include "tests/support/own_window.h"

namespace {

constexpr wchar_t POP_UP_CLASS[] = L"Kit_Widgets_Drop_List";
constexpr UINT TICK = 20;  // milliseconds

HWND Pop_Up() {
    return Own_Window(POP_UP_CLASS);
}

using Act = void (*)(HWND pop_up);
Act act = nullptr;
int ticks = 0;
int acted = 0;
HWND owner = nullptr;
Selects* selects = nullptr;
int nested_result = -1;
std::set<std::uint32_t> shown_colors;

/** Runs inside the drop list's message loop: acts once the list is up, and closes it when the act did not. */
void CALLBACK On_Tick(HWND, UINT, UINT_PTR, DWORD) {
    const HWND pop_up = Pop_Up();
    if (pop_up == nullptr) {
        return;
    }
    ++ticks;
    if (ticks == 3) {
        ++acted;
        act(pop_up);
    } else if (ticks == 100) {
        ADD_FAILURE() << "the drop list stayed open";
        ::DestroyWindow(pop_up);
    }
}

void Click_At(HWND pop_up, int x, int y) {
    ::PostMessageW(pop_up, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
}

int Row_Height(HWND pop_up) {
    RECT client = {};
    ::GetClientRect(pop_up, &client);
    return (static_cast<int>(client.bottom) - 2) / 4;
}

/** Notes the colours along the left of the list and closes it. */
void Colors_Note(HWND pop_up) {
    RECT client = {};
    ::GetClientRect(pop_up, &client);
    const Window_DC dc(pop_up);
    const int height = static_cast<int>(client.bottom);
    for (int y = 0; y < height; ++y) {
        const COLORREF color = ::GetPixel(dc.Get(), 3, y);
        shown_colors.insert(Rgb_Make(GetRValue(color), GetGValue(color), GetBValue(color)));
    }
    Click_At(pop_up, -5, -5);
}

class Drop_Window_Test : public testing::Test {
  protected:
    Drop_Window_Test() {
        window = std::make_unique<Shown_Window>(240, 120, Window_Axis::Up);
        window->Place(list, 20, 10, 160, 24);
        list.style = STYLE_FLAT;
        list.arrow = 20;
        list.Grow(4, 0);
        for (int k = 0; k < 4; ++k) {
            std::snprintf(list.item[k].text, sizeof(list.item[k].text), "%d", k + 1);
        }
        list.current = 1;
        list.Init(window->Handle());
        owner = window->Handle();
        selects = &list;
        ticks = acted = 0;
        shown_colors.clear();
        timer = ::SetTimer(nullptr, 0, TICK, On_Tick);
    }
    ~Drop_Window_Test() override { ::KillTimer(nullptr, timer); }

    /** Opens the list by a press on its field and lets `what` happen. @return the picked item */
    int Open(Act what) {
        act = what;
        window->Pointer(40, 20);
        EXPECT_NE(0, list.Select(LEFT_PRESS));
        EXPECT_EQ(1, acted);
        EXPECT_EQ(nullptr, Pop_Up());
        EXPECT_EQ(nullptr, ::GetCapture());
        return list.Read();
    }
    std::unique_ptr<Shown_Window> window;
    Selects list;
    UINT_PTR timer = 0;
};

}  // namespace

TEST_F(Drop_Window_Test, press_on_a_row_picks_its_item) {
    EXPECT_EQ(2, Open([](HWND pop_up) { Click_At(pop_up, 10, 1 + 2 * Row_Height(pop_up) + 3); }));
}

TEST_F(Drop_Window_Test, it_stands_below_the_field_and_captures_the_mouse) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND pop_up) {
                  RECT place = {};
                  ::GetWindowRect(pop_up, &place);
                  POINT below = {20, 10 + 24};
                  ::ClientToScreen(owner, &below);
                  EXPECT_EQ(below.x, place.left);
                  EXPECT_EQ(below.y, place.top);
                  EXPECT_EQ(160 - 40, place.right - place.left);
                  EXPECT_EQ(pop_up, ::GetCapture());
                  EXPECT_NE(0, ::IsWindowVisible(pop_up));
                  ::PostMessageW(owner, WM_KEYDOWN, VK_ESCAPE, 0);
              }));
}

TEST_F(Drop_Window_Test, it_shows_its_rows) {
    Open(Colors_Note);
    EXPECT_TRUE(shown_colors.contains(Theme_Now().accent));  // the current row
    EXPECT_TRUE(shown_colors.contains(Theme_Now().field));
}

TEST_F(Drop_Window_Test, on_the_ground_of_the_other_theme_it_has_that_ones_colours) {
    const Rgb field_of_dark = Theme_Now().field;
    Library_Theme_Set(Library_Theme::Light);
    list.Set_Color(0, 0, 0);
    Open(Colors_Note);
    EXPECT_TRUE(shown_colors.contains(field_of_dark));
    EXPECT_FALSE(shown_colors.contains(Theme_Now().field));
    Library_Theme_Set(Library_Theme::Dark);
}

TEST_F(Drop_Window_Test, press_outside_closes_without_a_pick) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND pop_up) { Click_At(pop_up, -30, 5); }));
}

TEST_F(Drop_Window_Test, keys_of_the_focused_window_belong_to_the_list) {
    EXPECT_EQ(3, Open([](HWND) {
                  ::PostMessageW(owner, WM_KEYDOWN, VK_DOWN, 0);
                  ::PostMessageW(owner, WM_KEYDOWN, VK_DOWN, 0);
                  ::PostMessageW(owner, WM_CHAR, '\r', 0);
              }));
}

TEST_F(Drop_Window_Test, wheel_over_a_short_list_changes_nothing) {
    EXPECT_EQ(0, Open([](HWND pop_up) {
                  ::PostMessageW(owner, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-240)), 0);
                  Click_At(pop_up, 10, 3);
              }));
}

TEST_F(Drop_Window_Test, losing_the_mouse_capture_closes) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND) { ::ReleaseCapture(); }));
}

TEST_F(Drop_Window_Test, hidden_owner_closes) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND) { ::ShowWindow(owner, SW_HIDE); }));
}

TEST_F(Drop_Window_Test, owner_that_is_destroyed_takes_the_list_down) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND) { ::DestroyWindow(owner); }));
    list.Draw();  // without a living window: nothing
}

TEST_F(Drop_Window_Test, end_of_the_application_is_handed_on) {
    EXPECT_EQ(DROP_LIST_NONE, Open([](HWND) { ::PostQuitMessage(7); }));
    MSG message = {};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0 && message.message != WM_QUIT) {
    }
    EXPECT_EQ(static_cast<UINT>(WM_QUIT), message.message);
    EXPECT_EQ(7U, message.wParam);
}

TEST_F(Drop_Window_Test, second_list_does_not_open_over_the_first) {
    EXPECT_EQ(1, Open([](HWND pop_up) {
                  Selects other(*selects);
                  nested_result = other.Select(LEFT_PRESS);
                  EXPECT_EQ(DROP_LIST_NONE, other.Read());
                  EXPECT_EQ(pop_up, Pop_Up());
                  Click_At(pop_up, 10, 1 + Row_Height(pop_up) + 3);
              }));
    EXPECT_NE(0, nested_result);
}

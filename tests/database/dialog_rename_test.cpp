// The modal dialog itself, driven by messages: what it answers, and what becomes of the text.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/database/dialog_scene.h"

namespace {

using Dialog_Rename_Test = Dialog_Scene;

TEST_F(Dialog_Rename_Test, save_returns_one_and_what_was_typed) {
    Put("Old");
    EXPECT_EQ(Run({[](HWND dialog) { ::UpdateWindow(dialog); }, [](HWND dialog) { Type_Keys(dialog, "neu"); }, Save}),
              1);
    EXPECT_STREQ(buffer, "neu");  // the old text was selected
}

TEST_F(Dialog_Rename_Test, cancel_returns_two_and_the_buffer_holds_what_was_typed_all_the_same) {
    Put("Old");
    EXPECT_EQ(Run({[](HWND dialog) { ::UpdateWindow(dialog); }, [](HWND dialog) { Type_Keys(dialog, "x"); },
                   [](HWND dialog) { Click(dialog, On_Cancel(dialog)); }}),
              2);
    EXPECT_STREQ(buffer, "x");
}

TEST_F(Dialog_Rename_Test, closing_returns_neither_and_the_owner_works_again) {
    const HWND owner = ::CreateWindowExA(0, "STATIC", "owner", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                         nullptr, nullptr);
    ::SetActiveWindow(owner);
    ASSERT_EQ(::GetActiveWindow(), owner);
    const auto is_owner_off = [owner](HWND) { EXPECT_FALSE(::IsWindowEnabled(owner)); };
    EXPECT_EQ(Run({is_owner_off, [](HWND dialog) { ::SendMessageA(dialog, WM_CLOSE, 0, 0); }}), 0);
    EXPECT_TRUE(::IsWindowEnabled(owner));
    ::SetActiveWindow(owner);
    EXPECT_EQ(Run({is_owner_off, Save}), 1);
    EXPECT_TRUE(::IsWindowEnabled(owner));
    ::DestroyWindow(owner);
}

TEST_F(Dialog_Rename_Test, enter_and_escape_do_nothing) {
    Put("Old");
    EXPECT_EQ(Run({[](HWND dialog) { ::PostMessageA(dialog, WM_KEYDOWN, VK_RETURN, 1); },
                   [](HWND dialog) { ::PostMessageA(dialog, WM_KEYDOWN, VK_ESCAPE, 1); }, [](HWND) {}, Save}),
              1);
    EXPECT_STREQ(buffer, "Old");
}

TEST_F(Dialog_Rename_Test, escape_enter_and_tab_do_nothing_whatever_key_makes_them) {
    Put("Old");
    const auto control_key = [](WPARAM key, WPARAM character) {
        return [key, character](HWND dialog) {
            ::PostMessageW(dialog, WM_CHAR, character, 1);  // as the system has made it of the key
            ::SendMessageA(dialog, WM_KEYDOWN, key, 1);
        };
    };
    EXPECT_EQ(Run({Show, control_key(VK_OEM_4, 27), control_key('M', 13), control_key('I', 9),
                   [](HWND dialog) { ::SendMessageA(dialog, WM_KEYDOWN, VK_ESCAPE, 1); },
                   [](HWND dialog) { ::SendMessageA(dialog, WM_KEYDOWN, VK_RETURN, 1); }, Save}),
              1);
    EXPECT_STREQ(buffer, "Old");
}

TEST_F(Dialog_Rename_Test, a_part_of_a_notch_is_kept_for_the_next_dialog) {
    const auto half_notch = [](HWND dialog) { ::SendMessageA(dialog, WM_MOUSEWHEEL, MAKEWPARAM(0, 60), 0); };
    const auto traces = [this] {
        return std::ranges::count(messages.Take(),
                                  Panel_Message{TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_MOUSEWHEEL)"});
    };
    Run({half_notch, Save});
    EXPECT_EQ(traces(), 0);
    Run({half_notch, Save});
    EXPECT_EQ(traces(), 1);
}

TEST_F(Dialog_Rename_Test, a_release_over_a_button_counts_without_a_press_on_it) {
    EXPECT_EQ(Run({[](HWND dialog) { ::SendMessageA(dialog, WM_LBUTTONUP, 0, On_Cancel(dialog)); }}), 2);
}

TEST_F(Dialog_Rename_Test, a_press_alone_ends_nothing) {
    EXPECT_EQ(Run({[](HWND dialog) { ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Save(dialog)); },
                   [](HWND dialog) { ::SendMessageA(dialog, WM_LBUTTONUP, 0, Point(dialog, 1, 1)); },
                   [](HWND dialog) { ::SendMessageA(dialog, WM_LBUTTONUP, 0, On_Cancel(dialog)); }}),
              2);
}

TEST_F(Dialog_Rename_Test, a_moving_pointer_does_not_end_typing) {
    Put("Old");
    EXPECT_EQ(Run({[](HWND dialog) { ::UpdateWindow(dialog); }, [](HWND dialog) { Type_Keys(dialog, "a"); },
                   [](HWND dialog) { ::SendMessageA(dialog, WM_MOUSEMOVE, 0, On_Cancel(dialog)); },
                   [](HWND dialog) { Type_Keys(dialog, "b"); }, Save}),
              1);
    EXPECT_STREQ(buffer, "ab");
}

TEST_F(Dialog_Rename_Test, a_repaint_loses_nothing) {
    Put("Old");
    const auto repaint = [](HWND dialog) {
        ::InvalidateRect(dialog, nullptr, FALSE);
        ::UpdateWindow(dialog);
    };
    EXPECT_EQ(Run({repaint, [](HWND dialog) { Type_Keys(dialog, "ab"); }, repaint,
                   [](HWND dialog) { Type_Keys(dialog, "c"); }, repaint, Save}),
              1);
    EXPECT_STREQ(buffer, "abc");
}

TEST_F(Dialog_Rename_Test, the_text_never_leaves_the_buffer) {
    Put(std::string(DIALOG_RENAME_SIZE - 1, 'a'));
    std::memset(buffer + DIALOG_RENAME_SIZE, 0x55, 8);
    EXPECT_EQ(Run({[](HWND dialog) { ::UpdateWindow(dialog); },
                   [](HWND dialog) {
                       ::SendMessageA(dialog, WM_KEYDOWN, VK_END, 1);
                       Type_Keys(dialog, "bcdef");
                   },
                   Save}),
              1);
    EXPECT_EQ(std::strlen(buffer), static_cast<std::size_t>(DIALOG_RENAME_SIZE - 1));
    EXPECT_EQ(std::string(buffer), std::string(DIALOG_RENAME_SIZE - 1, 'a'));
    for (int at = 0; at < 8; ++at) {
        EXPECT_EQ(buffer[DIALOG_RENAME_SIZE + at], 0x55);
    }
}

TEST_F(Dialog_Rename_Test, whole_notches_of_the_wheel_are_dropped_and_parts_add_up) {
    const auto wheel = [](int delta) {
        return
            [delta](HWND dialog) { ::SendMessageA(dialog, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)), 0); };
    };
    const auto traces = [this] {
        int nb = 0;
        for (const Panel_Message& message : messages.Take()) {
            nb += message == Panel_Message{TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_MOUSEWHEEL)"} ? 1 : 0;
        }
        return nb;
    };
    EXPECT_EQ(Run({wheel(40), wheel(40), [&](HWND) { EXPECT_EQ(traces(), 0); }, wheel(40),
                   [&](HWND) { EXPECT_EQ(traces(), 1); }, wheel(-250), [&](HWND) { EXPECT_EQ(traces(), 1); }, wheel(15),
                   [&](HWND) { EXPECT_EQ(traces(), 0); }, wheel(-125), [&](HWND) { EXPECT_EQ(traces(), 1); }, Save}),
              1);
}

TEST_F(Dialog_Rename_Test, traces_of_mouse_messages) {
    Run({[this](HWND dialog) {
             messages.Take();
             ::SendMessageA(dialog, WM_MOUSEMOVE, 0, Point(dialog, 3, 3));
             ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, Point(dialog, 3, 3));
             EXPECT_EQ(messages.Take(),
                       (std::vector<Panel_Message>{{TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_MOUSEMOVE)"},
                                                   {TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_LBUTTONx)"}}));
         },
         Save});
}

TEST_F(Dialog_Rename_Test, the_window_is_a_framed_topmost_pop_up_of_the_stated_size) {
    Run({[](HWND dialog) {
             const auto style = static_cast<DWORD>(::GetWindowLongA(dialog, GWL_STYLE));
             EXPECT_EQ(style & 0x80C80000U, 0x80C80000U);
             EXPECT_NE(::GetWindowLongA(dialog, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
             EXPECT_NEAR(Client(dialog).width, 480, 16);
             EXPECT_NEAR(Client(dialog).height, 150, 16);
         },
         Save});
}

TEST_F(Dialog_Rename_Test, a_new_size_moves_every_element) {
    EXPECT_EQ(Run({[](HWND dialog) {
                       ::SetWindowPos(dialog, nullptr, 0, 0, 300, 240, SWP_NOMOVE | SWP_NOZORDER);
                       ::UpdateWindow(dialog);
                       EXPECT_LT(Client(dialog).width, 320);
                   },
                   [](HWND dialog) { Click(dialog, On_Cancel(dialog)); }}),
              2);
    EXPECT_EQ(Run({[](HWND dialog) {
                       ::SetWindowPos(dialog, nullptr, 0, 0, 700, 400, SWP_NOMOVE | SWP_NOZORDER);
                       ::UpdateWindow(dialog);
                   },
                   Save}),
              1);
}

TEST_F(Dialog_Rename_Test, one_dialog_at_a_time) {
    EXPECT_EQ(Run({[](HWND) {
                       char other[DIALOG_RENAME_SIZE] = "other";
                       EXPECT_EQ(Dialog_Rename(other), -1);
                   },
                   Save}),
              1);
    EXPECT_EQ(Dialog_Rename(nullptr), -1);
}

TEST_F(Dialog_Rename_Test, objects_of_the_window_system_are_given_back) {
    Run({[](HWND dialog) { ::UpdateWindow(dialog); }, Save});
    const DWORD before = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    for (int round = 0; round < 5; ++round) {
        Run({[](HWND dialog) { ::UpdateWindow(dialog); }, [](HWND dialog) { Type_Keys(dialog, "a"); }, Save});
    }
    EXPECT_LE(::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS), before + 2);
}

}  // namespace

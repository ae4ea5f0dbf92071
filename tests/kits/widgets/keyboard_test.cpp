#if defined(_WIN32)
#include <windows.h>
#endif

#include <gtest/gtest.h>

#include "host/kit_widgets.h"
#include "tests/kits/widgets/other_code_page.h"

namespace {
constexpr unsigned int MESSAGE_KEY_DOWN = 0x100;
constexpr unsigned int MESSAGE_KEY_UP = 0x101;
constexpr unsigned int MESSAGE_CHARACTER = 0x102;
constexpr unsigned int MESSAGE_SYSTEM_KEY_DOWN = 0x104;
}  // namespace

TEST(Parse_Keyboard, characters_come_from_character_messages) {
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 'a', 0), 'a');
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 27, 0), KEY_ESCAPE);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 13, 0), KEY_ENTER);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 0xE9, 0), 0xE9);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 0x7F, 0), KEY_BACKSPACE);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_CHARACTER, 0x821, 0), 0);  // would be taken for Page Up
}

TEST(Parse_Keyboard, keys_without_a_character_come_from_key_down) {
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 0x21, 0), KEY_PAGE_UP);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 0x28, 0), KEY_DOWN);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 0x2D, 0), KEY_INSERT);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 0x2E, 0), KEY_DELETE);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_SYSTEM_KEY_DOWN, 0x79, 0), KEY_SPECIAL + 0x79);
}

TEST(Parse_Keyboard, no_key_is_reported_twice_and_releases_are_nothing) {
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 'A', 0), 0);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 13, 0), 0);
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_DOWN, 0x10, 0), 0);  // Shift alone
    EXPECT_EQ(Parse_Keyboard(nullptr, MESSAGE_KEY_UP, 0x21, 0), 0);
    EXPECT_EQ(Parse_Keyboard(nullptr, 0x200, 0x21, 0), 0);  // a mouse message
}

TEST(Parse_Dialog, translates_the_key_itself) {
    EXPECT_EQ(Parse_Dialog(nullptr, MESSAGE_KEY_DOWN, 0x2E, 0), KEY_DELETE);
    EXPECT_EQ(Parse_Dialog(nullptr, MESSAGE_KEY_DOWN, '5', 0x60001), '5');
    EXPECT_EQ(Parse_Dialog(nullptr, MESSAGE_CHARACTER, 'a', 0), 0);
    EXPECT_EQ(Parse_Dialog(nullptr, MESSAGE_KEY_UP, '5', 0), 0);
    EXPECT_EQ(Parse_Dialog(nullptr, MESSAGE_KEY_DOWN, 0x10, 0), 0);
}

#if defined(_WIN32)
TEST(Parse_Keyboard, characters_of_a_unicode_window_become_bytes_of_the_code_page) {
    const HWND wide = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 'a', 0), 'a');
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xE9, 0), 0xE9);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x2013, 0), 0x96);  // a dash
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x20AC, 0), 0x80);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x4E00, 0), 0);  // not in the Western page
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x821, 0), 0);   // would be taken for Page Up
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x96, 0), 0);    // a control character there
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x7F, 0), KEY_BACKSPACE);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xD83D, 0), 0);  // no page but UTF-8 has pairs
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xDE00, 0), 0);
    ::DestroyWindow(wide);
}

TEST(Parse_Keyboard, characters_of_a_unicode_window_without_a_single_byte_keep_their_numbers) {
    const HWND wide = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(wide, nullptr);
    {
        const Other_Code_Page japanese(PAGE_JAPANESE);
        EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x4E00, 0), 0x4E00);
        EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xFF71, 0), 0xB1);  // half width: a single byte
        EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xD83D, 0), 0);
    }
    const Other_Code_Page utf8(PAGE_UTF8);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xE9, 0), 0xE9);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0x4E00, 0), 0x4E00);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xD83D, 0), 0xD83D);
    EXPECT_EQ(Parse_Keyboard(wide, MESSAGE_CHARACTER, 0xDE00, 0), 0xDE00);
    ::DestroyWindow(wide);
}
#endif

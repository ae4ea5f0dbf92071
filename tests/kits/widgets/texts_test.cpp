// Editable text fields: keys, mouse, clipboard, the end of an edit, and what is painted.
#include <array>
#include <cstring>
#include <string>

#include "kits/widgets/painter.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/other_code_page.h"
#include "tests/kits/widgets/shown_window.h"

namespace {

constexpr int LEFT = 10;
constexpr int TOP = 40;
constexpr int WIDTH = 120;
constexpr int HEIGHT = 24;

constexpr int SHIFT_KEY = 0x10;
constexpr int CONTROL_KEY = 0x11;

bool shift_held = false;
bool control_held = false;
std::string clipboard;
bool clipboard_works = true;

int Key_Held(int virtual_key) {
    return (virtual_key == SHIFT_KEY && shift_held) || (virtual_key == CONTROL_KEY && control_held) ? 1 : 0;
}
int Clipboard_Get(char* out, int size) {
    const std::size_t count = std::min(clipboard.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(out, clipboard.data(), count);
    out[count] = 0;
    return static_cast<int>(count);
}
int Clipboard_Set(const char* text) {
    if (clipboard_works) {
        clipboard = text;
    }
    return clipboard_works ? 1 : 0;
}

class Texts_Test : public Both_Axes {
  protected:
    Texts_Test() {
        shift_held = control_held = false;
        clipboard_works = true;
        clipboard = "none";
        Input_Source_Set({nullptr, Key_Held, Clipboard_Get, Clipboard_Set});
        window.Place(field, LEFT, TOP, WIDTH, HEIGHT);
        field.style = STYLE_EDIT_OPEN;
        field.Init(window.Handle());
    }
    ~Texts_Test() override { Input_Source_Set({}); }

    void Type(const char* keys) {
        for (; *keys != 0; ++keys) {
            field.Input(static_cast<unsigned char>(*keys));
        }
    }
    void Shifted(int key) {
        shift_held = true;
        field.Input(key);
        shift_held = false;
    }
    /** The text, by ending the edit. */
    std::string Finished() {
        field.Input(KEY_ENTER);
        const char* text = field.Update();
        return text == nullptr ? "(none)" : text;
    }
    /** Column of the caret from the field's left edge; -1 when none is painted. */
    int Caret_Column() const {
        const Window_Picture shown = window.Shown();
        for (int x = 2; x < WIDTH - 2; ++x) {  // the border has the caret's colour too
            bool all = true;
            for (int y = 4; y < HEIGHT - 4; ++y) {
                all = all && shown.At(LEFT + x, TOP + y) == Theme_Now().line_strong;
            }
            if (all) {
                return x;
            }
        }
        return -1;
    }
    int Character_Width() const { return Text_Width("m", Widget_Font(field)); }
    Shown_Window window{200, 100, GetParam()};
    Texts field;
};

INSTANTIATE_TEST_SUITE_P(All, Texts_Test, testing::Values(Window_Axis::Up, Window_Axis::Down), Axis_Name);

}  // namespace

TEST_P(Texts_Test, loaded_text_is_selected_so_that_typing_replaces_it) {
    field.Read("%s %d", "TAG", 7);
    Type("ab");
    EXPECT_EQ("ab", Finished());
}

TEST_P(Texts_Test, edit_in_the_middle_with_arrows_home_end_backspace_delete) {
    field.Read("brain");
    field.Input(KEY_END);
    field.Input(KEY_LEFT);
    field.Input(KEY_LEFT);
    Type("XY");                  // braXYin
    field.Input(KEY_BACKSPACE);  // braXin
    field.Input(KEY_DELETE);     // braXn
    field.Input(KEY_HOME);
    field.Input(KEY_DELETE);  // raXn
    field.Input(KEY_RIGHT);
    Type("_");
    EXPECT_EQ("r_aXn", Finished());
}

TEST_P(Texts_Test, shift_selects_and_typing_replaces_the_selection) {
    field.Read("cerebellum");
    field.Input(KEY_HOME);
    Shifted(KEY_RIGHT);
    Shifted(KEY_RIGHT);
    Type("C");
    Shifted(KEY_END);
    field.Input(KEY_BACKSPACE);
    Type("!");
    Shifted(KEY_HOME);
    field.Input(KEY_DELETE);
    Type("z");
    EXPECT_EQ("z", Finished());
}

TEST_P(Texts_Test, control_with_arrows_goes_by_words) {
    field.Read("left brain stem");
    field.Input(KEY_END);
    control_held = true;
    field.Input(KEY_LEFT);
    control_held = false;
    Type("-");
    EXPECT_EQ("left brain -stem", Finished());
}

TEST_P(Texts_Test, clipboard_keys_copy_cut_and_paste) {
    field.Read("hippocampus");
    field.Input(1);
    field.Input(3);
    EXPECT_EQ("hippocampus", clipboard);
    field.Input(KEY_END);
    Shifted(KEY_LEFT);
    Shifted(KEY_LEFT);
    field.Input(24);
    EXPECT_EQ("us", clipboard);
    field.Input(KEY_HOME);
    field.Input(22);
    field.Input(22);
    EXPECT_EQ("ushippocamp", std::string(Finished()).substr(2));
    EXPECT_EQ("us", clipboard);
}

TEST_P(Texts_Test, copy_without_selection_leaves_the_clipboard_and_a_failed_cut_the_text) {
    field.Read("abc");
    field.Input(KEY_END);
    field.Input(3);
    EXPECT_EQ("none", clipboard);
    field.Input(1);
    clipboard_works = false;
    field.Input(24);
    EXPECT_EQ("abc", Finished());
}

TEST_P(Texts_Test, empty_clipboard_pastes_nothing_over_a_selection) {
    field.Read("abc");
    clipboard.clear();
    field.Input(22);
    EXPECT_EQ("abc", Finished());
}

TEST_P(Texts_Test, enter_and_tab_finish_with_the_text_and_other_keys_do_not) {
    for (const int key : {KEY_ENTER, KEY_TAB}) {
        field.Init(nullptr);
        field.Read("label");
        field.Input('x');
        EXPECT_EQ(nullptr, field.Update());
        field.Input(key);
        EXPECT_STREQ("x", field.Update());
    }
}

TEST_P(Texts_Test, escape_finishes_with_an_empty_text) {
    field.Read("label");
    field.Input(KEY_ESCAPE);
    ASSERT_NE(nullptr, field.Update());
    EXPECT_STREQ("", field.Update());
}

TEST_P(Texts_Test, cancelled_edit_is_forgotten_by_init_and_by_read) {
    field.Read("one");
    field.Input(KEY_ESCAPE);
    field.Init(nullptr);
    EXPECT_EQ(nullptr, field.Update());
    field.Input(KEY_ESCAPE);
    field.Read("two");
    EXPECT_EQ(nullptr, field.Update());
    field.Input(KEY_END);
    EXPECT_EQ(nullptr, field.Update());
    EXPECT_EQ("two", Finished());
}

TEST_P(Texts_Test, keys_after_the_end_of_an_edit_change_nothing) {
    field.Read("one");
    field.Input(KEY_ENTER);
    Type("xyz");
    EXPECT_STREQ("one", field.Update());
}

TEST_P(Texts_Test, finished_text_may_be_cut_in_place) {
    field.Read("%s", std::string(60, 'w').c_str());
    field.Input(KEY_ENTER);
    char* text = field.Update();
    ASSERT_NE(nullptr, text);
    text[39] = 0;
    field.Read("%s", text);  // from its own buffer
    field.Input(KEY_END);
    field.Input('v');
    EXPECT_EQ(std::string(39, 'w') + "v", Finished());
}

TEST_P(Texts_Test, has_the_keyboard_only_while_open) {
    EXPECT_NE(0, field.Select(1, 0, 0));
    field.style = STYLE_EDIT_LIVE;
    EXPECT_NE(0, field.Select(1, 0, 0));
    field.style = STYLE_EDIT_IDLE;
    EXPECT_EQ(0, field.Select(1, 0, 0));
    field.style = 0;
    EXPECT_EQ(0, field.Select(1, 0, 0));
}

TEST_P(Texts_Test, idle_field_takes_no_key_and_paints_nothing) {
    field.Read("kept");
    const auto before = window.Pixels();
    field.style = STYLE_EDIT_IDLE;
    Type("xyz");
    field.Input(KEY_ESCAPE);
    field.Draw();
    field.Adjust();
    EXPECT_EQ(nullptr, field.Update());
    EXPECT_EQ(before, window.Pixels());
    field.style = STYLE_EDIT_OPEN;
    EXPECT_EQ("kept", Finished());
}

TEST_P(Texts_Test, live_field_yields_its_text_after_every_key) {
    field.style = STYLE_EDIT_LIVE;
    field.Init(nullptr);
    field.Read("old");
    EXPECT_EQ(nullptr, field.Update());
    field.Input('n');
    EXPECT_STREQ("n", field.Update());
    field.Input('e');
    EXPECT_STREQ("ne", field.Update());
    field.Read("ne");
    EXPECT_EQ(nullptr, field.Update());
}

TEST_P(Texts_Test, live_field_keeps_its_caret_when_its_own_text_is_handed_back) {
    field.style = STYLE_EDIT_LIVE;
    field.Init(nullptr);
    field.Read("brain");
    field.Input(KEY_HOME);
    for (const char key : std::string("the ")) {
        field.Input(key);
        const char* text = field.Update();
        ASSERT_NE(nullptr, text);
        field.Read("%s", text);
        field.Draw();
    }
    EXPECT_EQ("the brain", Finished());
}

TEST_P(Texts_Test, live_field_goes_on_when_its_text_is_handed_back_cut) {
    field.style = STYLE_EDIT_LIVE;
    field.Init(nullptr);
    field.Read("1234567");
    field.Input(KEY_END);
    field.Input('8');
    field.Read("%.4s", field.Update());
    field.Input('x');
    EXPECT_EQ("1234x", Finished());
}

TEST_P(Texts_Test, live_field_that_is_opened_anew_is_selected_again) {
    field.style = STYLE_EDIT_LIVE;
    field.Init(nullptr);
    field.Read("same");
    field.Input(KEY_END);
    field.Init(nullptr);
    field.Read("same");
    field.Input('x');
    EXPECT_EQ("x", Finished());
}

TEST_P(Texts_Test, long_texts_are_cut_at_the_fields_size) {
    const std::string many(5000, 'k');
    field.Read("%s", many.c_str());
    field.Input(KEY_END);
    Type("more");
    EXPECT_EQ(std::string(TEXTS_SIZE - 1, 'k'), Finished());
    std::string accents = "k";
    for (int i = 0; i < 600; ++i) {
        accents += "\xC3\xA9";  // one letter in UTF-8, two in a Western page
    }
    field.Read("%s", accents.c_str());
    EXPECT_EQ(accents.substr(0, TEXTS_SIZE - 1), Finished());
    field.Read("k%s", accents.c_str());
    const std::size_t half = Character_Length("\xC3\xA9", 0) == 2 ? 1 : 0;
    EXPECT_EQ("k" + accents.substr(0, TEXTS_SIZE - 2 - half), Finished());  // no half character
    clipboard = many;
    field.Read("ab");
    field.Input(22);
    EXPECT_EQ(std::string(TEXTS_SIZE - 1, 'k'), Finished());
}

TEST_P(Texts_Test, null_format_loads_an_empty_text) {
    const char* nothing = nullptr;
    field.Read("abc");
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#endif
    field.Read(nothing);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    EXPECT_EQ("", Finished());
}

TEST_P(Texts_Test, special_keys_without_a_meaning_are_ignored) {
    field.Read("abc");
    field.Input(KEY_END);
    for (const int key : {0, KEY_UP, KEY_DOWN, KEY_INSERT, KEY_PAGE_UP, 0x870, 2, 127, 0x10000}) {
        field.Input(key);
    }
    EXPECT_EQ("abc", Finished());
}

TEST_P(Texts_Test, characters_beyond_ascii_are_deleted_whole) {
    field.Read("x");
    field.Input(KEY_END);
    field.Input(0xE9);    // a byte of a Western page, and the number of the same letter elsewhere
    field.Input(0x20AC);  // a number
    Type("y");
    field.Input(KEY_BACKSPACE);
    field.Input(KEY_BACKSPACE);
#if defined(_WIN32)
    EXPECT_EQ("x\xE9", Finished());
#else
    EXPECT_EQ("x\xC3\xA9", Finished());
#endif
}

#if defined(_WIN32)
TEST_P(Texts_Test, neighbours_that_look_like_utf8_are_deleted_one_by_one) {
    field.Read("x\xDF\x96");
    field.Input(KEY_END);
    field.Input(KEY_BACKSPACE);
    EXPECT_EQ("x\xDF", Finished());
}

TEST_P(Texts_Test, letters_of_a_double_byte_page_are_typed_passed_and_deleted_whole) {
    const Other_Code_Page japanese(PAGE_JAPANESE);
    field.Read("a\x83\x5C\x88\xEA");  // the second byte of the first letter is a backslash elsewhere
    field.Input(KEY_END);
    field.Input(KEY_BACKSPACE);
    field.Input(KEY_LEFT);
    field.Input('b');
    Type("\x83\x83");     // two key codes, one letter; both bytes begin letters elsewhere
    field.Input(0x4E00);  // a letter by its number
    field.Input(KEY_DELETE);
    EXPECT_EQ("ab\x83\x83\x88\xEA", Finished());
}

TEST_P(Texts_Test, first_byte_of_a_letter_is_forgotten_when_another_key_comes) {
    const Other_Code_Page japanese(PAGE_JAPANESE);
    field.Read("%s", "");
    field.Input(0x83);
    field.Input(KEY_HOME);
    field.Input('\\');
    EXPECT_EQ("\\", Finished());
}

TEST_P(Texts_Test, text_in_a_double_byte_page_that_is_too_long_is_cut_between_letters) {
    const Other_Code_Page japanese(PAGE_JAPANESE);
    std::string letters;
    for (int i = 0; i < TEXTS_SIZE; ++i) {
        letters += "\x83\x5C";
    }
    field.Read("%s", letters.c_str());
    EXPECT_EQ(letters.substr(0, TEXTS_SIZE - 2), Finished());
}
#endif

TEST_P(Texts_Test, halves_of_a_pair_become_one_letter) {
#if defined(_WIN32)
    const Other_Code_Page utf8(PAGE_UTF8);
#endif
    field.Read("%s", "");
    field.Input(0xDE00);  // no first half before it
    field.Input(0xD83D);  // no second half after it
    field.Input('a');
    field.Input(0xD83D);
    field.Input(0xD83D);
    field.Input(0xDE00);
    field.Input(0xDE00);
    field.Input(0xE9);
    field.Input(0xD83D);
    field.Input(KEY_HOME);
    field.Input(0xDE00);
    EXPECT_EQ("a\xF0\x9F\x98\x80\xC3\xA9", Finished());
}

TEST_P(Texts_Test, caret_is_painted_behind_the_text_and_follows_the_keys) {
    field.Read("mmm");
    field.Input(KEY_HOME);
    const int start = Caret_Column();
    ASSERT_GT(start, 0);
    field.Input(KEY_RIGHT);
    EXPECT_EQ(start + Character_Width(), Caret_Column());
    field.Input(KEY_END);
    EXPECT_EQ(start + 3 * Character_Width(), Caret_Column());
    field.style = STYLE_EDIT_OPEN | STYLE_INACTIVE;
    field.Draw();
    EXPECT_EQ(-1, Caret_Column());
}

TEST_P(Texts_Test, selection_is_painted_on_the_accent_and_only_over_its_characters) {
    field.Read("mmmm");
    field.Input(KEY_HOME);
    const int start = Caret_Column();
    field.Input(KEY_RIGHT);
    Shifted(KEY_RIGHT);
    Shifted(KEY_RIGHT);
    int first = WIDTH;
    int last = -1;
    const int y = TOP + 3;  // above the characters
    const Window_Picture shown = window.Shown();
    for (int x = 0; x < WIDTH; ++x) {
        if (shown.At(LEFT + x, y) == Theme_Now().accent) {
            first = std::min(first, x);
            last = std::max(last, x);
        }
    }
    EXPECT_EQ(start + Character_Width(), first);
    EXPECT_EQ(start + 3 * Character_Width() - 1, last);
}

TEST_P(Texts_Test, long_text_scrolls_so_that_the_caret_stays_in_view) {
    field.Read("%s", std::string(200, 'm').c_str());
    field.Draw();
    EXPECT_GT(field.position, 0);
    EXPECT_GE(Caret_Column(), 0);
    field.Input(KEY_HOME);
    EXPECT_EQ(0, field.position);
    EXPECT_GE(Caret_Column(), 0);
    for (int i = 0; i < 60; ++i) {
        field.Input(KEY_RIGHT);
        ASSERT_GE(Caret_Column(), 0) << i;
    }
    EXPECT_GT(field.position, 0);
}

TEST_P(Texts_Test, press_places_the_caret_and_drag_selects) {
    field.Read("mmmmmm");
    field.Input(KEY_HOME);
    const int start = Caret_Column();
    const int wide = Character_Width();
    window.Pointer(LEFT + start + 2 * wide + 1, TOP + HEIGHT / 2);
    EXPECT_NE(0, field.Select(LEFT_PRESS, 0, 0));
    EXPECT_EQ(start + 2 * wide, Caret_Column());
    window.Pointer(LEFT + start + 5 * wide - 1, TOP - 30);  // the drag may leave the field
    EXPECT_NE(0, field.Select(LEFT_DRAG, 0, 0));
    EXPECT_EQ(0, field.Select(0, 0, 0));
    EXPECT_EQ(0, field.Select(LEFT_DRAG, 0, 0));
    field.Input('-');
    EXPECT_EQ("mm-m", Finished());
}

TEST_P(Texts_Test, shift_with_a_press_extends_the_selection) {
    field.Read("mmmmmm");
    field.Input(KEY_HOME);
    shift_held = true;
    window.Pointer(LEFT + Caret_Column() + 4 * Character_Width(), TOP + HEIGHT / 2);
    field.Select(LEFT_PRESS, 0, 0);
    shift_held = false;
    field.Input('-');
    EXPECT_EQ("-mm", Finished());
}

TEST_P(Texts_Test, press_beside_the_field_and_motion_without_press_change_nothing) {
    field.Read("abc");
    window.Pointer(LEFT + WIDTH, TOP);
    EXPECT_EQ(0, field.Select(LEFT_PRESS, 0, 0));
    window.Pointer(LEFT + 5, TOP + 5);
    EXPECT_EQ(0, field.Select(LEFT_DRAG, 0, 0));
    EXPECT_EQ(0, field.Select(0, 0, 0));
    EXPECT_NE(0, field.Select(MOUSE_ASK, 0, 0));
    field.Input('x');
    EXPECT_EQ("x", Finished());  // still all selected
}

TEST_P(Texts_Test, prompt_is_shown_without_its_leading_style_byte_and_without_a_caret) {
    field.style = 0;
    field.Set_Color(20, 30, 40);
    field.Init(nullptr);
    field.Write("%c Enter", 2);
    const auto with_style = window.Pixels();
    EXPECT_EQ(-1, Caret_Column());
    EXPECT_EQ(0x141E28U, window.Pixel(LEFT, TOP));
    field.Write(" Enter");
    EXPECT_EQ(with_style, window.Pixels());
    field.Write("Other");
    EXPECT_NE(with_style, window.Pixels());
}

TEST_P(Texts_Test, cleanup_fills_the_area_with_its_own_colour) {
    field.Set_Color(200, 100, 50);
    field.Cleanup();
    const Window_Picture shown = window.Shown();
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(0xC86432U, shown.At(LEFT + x, TOP + y));
        }
    }
}

TEST_P(Texts_Test, without_window_or_area_keys_still_edit_and_nothing_is_painted) {
    Texts other;
    other.style = STYLE_EDIT_OPEN;
    other.Init(nullptr);
    other.Read("abc");
    other.Input('x');
    other.Draw();
    EXPECT_EQ(0, other.Select(LEFT_PRESS, 0, 0));
    other.Input(KEY_TAB);
    EXPECT_STREQ("x", other.Update());
    field.width = -4;
    field.height = 0;
    field.Init(nullptr);
    field.Read("abc");
    field.Draw();
    field.Cleanup();
    field.width = 3;  // an area without room for text
    field.height = 3;
    field.Draw();
    field.Input('y');
    EXPECT_EQ("y", Finished());
}

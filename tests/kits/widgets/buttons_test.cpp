#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/other_code_page.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int WINDOW_WIDTH = 100;
constexpr int WINDOW_HEIGHT = 60;
constexpr int RELEASE = MOUSE_LEFT;  // a release with another button still held
constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;

Buttons Grid_Button(HWND window) {
    Buttons button;
    button.style = STYLE_GRID_BUTTON;
    button.x = 11;
    button.y = 8;
    button.width = 60;
    button.height = 24;
    button.border = 1;
    button.Set_Color(180, 60, 60);
    button.Init(window);
    return button;
}

Rect Device(const Buttons& button) {
    return {button.x, WINDOW_HEIGHT - button.y - button.height, button.width, button.height};
}

class Buttons_Test : public testing::Test {
  protected:
    Test_Window window{WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Up};
    Buttons button = Grid_Button(window.Get());

    void Point_Inside() const { window.Point_At_Logical(button.x + 5, button.y + 5); }
    void Point_Outside() const { window.Point_At_Logical(button.x - 1, button.y + 5); }
    static unsigned int Draws() { return Widget_Counters_Get().draws; }
    void SetUp() override {
        button.Draw();
        Widget_Counters_Reset();
    }
};

}  // namespace

// ---------------- images

TEST(Button_Images, backgrounds_are_four_distinct_colours_and_never_black) {
    for (int red = 0; red <= 255; red += 15) {
        for (int green = 0; green <= 255; green += 15) {
            for (int blue = 0; blue <= 255; blue += 15) {
                Buttons button;
                button.width = 2;
                button.height = 1;
                button.Set_Color(static_cast<unsigned char>(red), static_cast<unsigned char>(green),
                                 static_cast<unsigned char>(blue));
                button.Init(nullptr);
                std::set<unsigned int> colors;
                for (const unsigned int* image : button.image) {
                    ASSERT_NE(image, nullptr);
                    EXPECT_EQ(image[0], image[1]);
                    EXPECT_LE(image[0], 0xFFFFFFU);
                    colors.insert(image[0]);
                }
                EXPECT_EQ(colors.size(), 4U) << red << " " << green << " " << blue;
                EXPECT_FALSE(colors.contains(0U)) << red << " " << green << " " << blue;
            }
        }
    }
}

TEST(Button_Images, init_refills_without_a_new_allocation_while_the_size_stays) {
    Buttons button = Grid_Button(nullptr);
    unsigned int* const before = button.image[0];
    const unsigned int plain = before[0];
    std::fill_n(before, 60 * 24, 0U);
    button.Init(nullptr);
    EXPECT_EQ(button.image[0], before);
    EXPECT_EQ(before[60 * 24 - 1], plain);
    button.Set_Color(1, 2, 200);
    button.Init(nullptr);
    EXPECT_EQ(button.image[0], before);
    EXPECT_EQ(before[0], 0x0102C8U);
}

TEST(Button_Images, init_makes_room_for_a_new_size) {
    Buttons button = Grid_Button(nullptr);
    button.width = 200;
    button.height = 3;
    button.Init(nullptr);
    for (unsigned int* image : button.image) {
        image[200 * 3 - 1] = 5;  // the sanitizer watches
    }
    button.height = 0;
    button.Init(nullptr);
    for (const unsigned int* image : button.image) {
        EXPECT_EQ(image, nullptr);
    }
    button.height = -4;
    EXPECT_EQ(button.Init(nullptr), 1);
    EXPECT_EQ(button.image[0], nullptr);
}

TEST(Button_Images, huge_buttons_have_none_and_are_still_usable) {
    const Test_Window window(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Down);
    Buttons button = Grid_Button(nullptr);
    button.width = 32767;
    button.height = 32767;
    EXPECT_EQ(button.Init(nullptr), 1);
    EXPECT_EQ(button.image[0], nullptr);
    button.Deselect();
    EXPECT_EQ(button.Select(0), 0);
}

TEST(Button_Images, copies_own_their_images) {
    Buttons original = Grid_Button(nullptr);
    original.image[2][7] = 0xABCDEF;
    Buttons copy(original);
    EXPECT_NE(copy.image[0], original.image[0]);
    EXPECT_EQ(copy.image[2][7], 0xABCDEFU);
    Buttons assigned;
    assigned = original;
    EXPECT_EQ(assigned.image[2][7], 0xABCDEFU);
    original.image[2][7] = 1;
    EXPECT_EQ(copy.image[2][7], 0xABCDEFU);
    const Buttons& self = copy;
    copy = self;
    EXPECT_EQ(copy.image[2][7], 0xABCDEFU);
    assigned = Buttons();
    EXPECT_EQ(assigned.image[0], nullptr);
}

TEST(Button_Layout, state_follows_the_checked_mark_directly) {
    const Buttons button;
    EXPECT_EQ(reinterpret_cast<const char*>(&button.state) - reinterpret_cast<const char*>(&button.checked), 2);
}

// ---------------- caption

TEST(Button_Caption, is_cut_at_39_characters) {
    Buttons button;
    button.Set_Name("%s", std::string(50, 'x').c_str());
    EXPECT_EQ(std::string(button.name), std::string(39, 'x'));
    button.Set_Name("%s", std::string(39, 'y').c_str());
    EXPECT_EQ(std::string(button.name), std::string(39, 'y'));
}

TEST(Button_Caption, cut_never_splits_a_character) {
#if defined(_WIN32)
    const Other_Code_Page utf8(PAGE_UTF8);
#endif
    Buttons button;
    button.Set_Name("%s\xC3\xA9", std::string(38, 'x').c_str());
    EXPECT_EQ(std::string(button.name), std::string(38, 'x'));
    button.Set_Name("%s\xC3\xA9", std::string(37, 'x').c_str());
    EXPECT_EQ(std::string(button.name), std::string(37, 'x') + "\xC3\xA9");
}

#if defined(_WIN32)
TEST(Button_Caption, of_a_double_byte_page_is_cut_between_letters) {
    const Other_Code_Page japanese(PAGE_JAPANESE);
    std::string letters;
    for (int i = 0; i < 60; i++) {
        letters += "\x83\x5C";  // the second byte is a letter of its own elsewhere
    }
    Buttons button;
    button.Set_Name("%s", letters.c_str());
    EXPECT_EQ(std::string(button.name), letters.substr(0, 38));
    button.Set_Name("a%s", letters.c_str());
    EXPECT_EQ(std::string(button.name), "a" + letters.substr(0, 38));
    Tools tool;
    tool.Set_Name("%s", letters.c_str());
    EXPECT_EQ(std::string(tool.name), letters);
    tool.Set_Name("%s%s", letters.c_str(), letters.c_str());
    EXPECT_EQ(std::string(tool.name), (letters + letters).substr(0, TOOLS_NAME_SIZE - 2));
}

TEST(Button_Caption, of_a_double_byte_page_is_shortened_between_letters_where_room_is_short) {
    const Other_Code_Page japanese(PAGE_JAPANESE);
    const std::string letters = "\x83\x5C\x83\x5C\x83\x5C";
    const int whole = Text_Width(letters, {});
    for (int room = 0; room < whole; room++) {
        EXPECT_EQ(Text_Fit(letters, {}, room) % 2, 0U) << room;
    }
    EXPECT_EQ(Character_Before(letters, 6), 4U);
    EXPECT_EQ(Character_Before(letters, 5), 4U);
}
#endif

TEST(Button_Caption, stays_cut_in_copies) {
    Buttons original;
    Buttons copy(original);
    copy.Set_Name("%s", std::string(60, 'x').c_str());
    EXPECT_EQ(std::string(copy.name).size(), 39U);
}

// ---------------- drawing

TEST_F(Buttons_Test, paints_its_rectangle_and_nothing_else) {
    const Window_Picture picture = window.Read();
    const Rect outer = Device(button);
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            if (outer.Inner(1).Has_Point({x, y})) {
                ASSERT_EQ(picture.At(x, y), button.image[0][0]);
            } else if (outer.Has_Point({x, y})) {
                ASSERT_NE(picture.At(x, y), button.image[0][0]);
                ASSERT_NE(picture.At(x, y), Test_Window::MARKER);
            } else {
                ASSERT_EQ(picture.At(x, y), Test_Window::MARKER);
            }
        }
    }
}

TEST_F(Buttons_Test, shows_the_image_of_its_state_row_by_row) {
    for (unsigned short state = 0; state < 3; state++) {
        for (int y = 0; y < button.height; y++) {
            for (int x = 0; x < button.width; x++) {
                button.image[state][y * button.width + x] = static_cast<unsigned int>((state << 16) + (y << 8) + x);
            }
        }
        button.state = state;
        button.Draw();
        const Window_Picture picture = window.Read();
        const Rect outer = Device(button);
        for (int y = 1; y < button.height - 1; y++) {
            for (int x = 1; x < button.width - 1; x++) {
                ASSERT_EQ(picture.At(outer.left + x, outer.top + y),
                          static_cast<unsigned int>((state << 16) + (y << 8) + x));
            }
        }
    }
}

TEST_F(Buttons_Test, current_mark_is_a_two_pixel_frame_inside_the_border_from_the_fourth_image) {
    button.current = 1;
    button.Draw();
    const Window_Picture picture = window.Read();
    const Rect mark = Device(button).Inner(1);
    for (int y = mark.top; y < mark.Bottom(); y++) {
        for (int x = mark.left; x < mark.Right(); x++) {
            const bool inside = mark.Inner(2).Has_Point({x, y});
            ASSERT_EQ(picture.At(x, y), inside ? button.image[0][0] : button.image[3][0]);
        }
    }
    const int contrast = Brightness(button.image[0][0]) - Brightness(button.image[3][0]);
    EXPECT_GT(std::abs(contrast), 80);
}

TEST_F(Buttons_Test, check_mark_stands_in_the_left_quarter_only_with_its_style) {
    const Window_Picture plain = window.Read();
    button.checked = 1;
    button.Draw();
    EXPECT_EQ(window.Read(), plain);
    button.style |= STYLE_SHOW_CHECK;
    button.Draw();
    const Window_Picture shown = window.Read();
    EXPECT_NE(shown, plain);
    const Rect outer = Device(button);
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            if (shown.At(x, y) != plain.At(x, y)) {
                ASSERT_TRUE((Rect{outer.left, outer.top, button.width / 4 + 3, outer.height}.Has_Point({x, y})));
            }
        }
    }
}

TEST_F(Buttons_Test, adjust_leaves_the_picture_that_draw_would_paint) {
    button.style |= STYLE_SHOW_CHECK;
    button.Set_Name("Liver");
    for (const unsigned int style : {STYLE_GRID_BUTTON, STYLE_GRID_BUTTON | STYLE_INACTIVE}) {
        button.style = style | STYLE_SHOW_CHECK;
        for (unsigned short from = 0; from < 4; from++) {
            for (unsigned short to = 0; to < 4; to++) {
                button.current = from & 1U;
                button.checked = from >> 1U;
                button.Draw();
                button.current = to & 1U;
                button.checked = to >> 1U;
                button.Adjust();
                const Window_Picture adjusted = window.Read();
                button.Draw();
                ASSERT_EQ(window.Read(), adjusted) << from << " to " << to;
            }
        }
    }
}

TEST_F(Buttons_Test, draw_twice_shows_the_same) {
    button.Set_Name("Kidney");
    button.current = 1;
    button.Draw();
    const Window_Picture once = window.Read();
    button.Draw();
    EXPECT_EQ(window.Read(), once);
}

TEST_F(Buttons_Test, looks_the_same_in_both_axes) {
    button.Set_Name("Kidney");
    button.current = button.checked = 1;
    button.style |= STYLE_SHOW_CHECK;
    button.Draw();
    const Test_Window down(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Down);
    button.y = static_cast<short>(WINDOW_HEIGHT - button.y - button.height);
    button.Init(down.Get());
    button.Draw();
    EXPECT_EQ(window.Read(), down.Read());
}

TEST_F(Buttons_Test, every_look_is_different) {
    button.style |= STYLE_SHOW_CHECK;
    std::vector<Window_Picture> looks;
    for (const unsigned int extra : {0U, STYLE_INACTIVE}) {
        for (unsigned short current = 0; current < 2; current++) {
            for (unsigned short checked = 0; checked < 2; checked++) {
                for (unsigned short state = 0; state < (extra == 0 ? 3 : 1); state++) {
                    button.style = STYLE_GRID_BUTTON | STYLE_SHOW_CHECK | extra;
                    button.current = current;
                    button.checked = checked;
                    button.state = state;
                    button.Draw();
                    looks.push_back(window.Read());
                }
            }
        }
    }
    for (std::size_t i = 0; i < looks.size(); i++) {
        EXPECT_EQ(std::count(looks.begin(), looks.end(), looks[i]), 1) << i;
    }
}

TEST_F(Buttons_Test, inactive_face_is_half_mixed_with_the_panel) {
    button.style |= STYLE_INACTIVE;
    button.Draw();
    const Rect outer = Device(button);
    const Rgb expected = Mix(button.image[0][0], Theme_Now().panel, 50);
    const Rgb seen = window.Read().At(outer.left + 30, outer.top + 12);
    for (const unsigned int shift : {0U, 8U, 16U}) {
        EXPECT_NEAR(static_cast<int>((seen >> shift) & 0xFFU), static_cast<int>((expected >> shift) & 0xFFU), 1);
    }
}

TEST_F(Buttons_Test, edited_button_is_not_drawn) {
    button.style |= STYLE_EDITED;
    window.Wipe();
    button.Draw();
    button.Adjust();
    button.Deselect();
    EXPECT_EQ(Draws(), 0U);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 0U);
    for (const std::uint32_t pixel : window.Read().pixels) {
        ASSERT_EQ(pixel, Test_Window::MARKER);
    }
}

TEST_F(Buttons_Test, smallest_buttons_draw_without_harm) {
    for (short width = 1; width < 12; width++) {
        for (short height = 1; height < 12; height++) {
            button.width = width;
            button.height = height;
            button.border = 3;
            button.style |= STYLE_SHOW_CHECK;
            button.current = button.checked = 1;
            button.Set_Name("name");
            button.Init(nullptr);
            button.Draw();
            button.Adjust();
        }
    }
    EXPECT_EQ(Draws(), 121U);
}

// ---------------- events

TEST_F(Buttons_Test, hit_test_covers_exactly_the_painted_pixels) {
    const Window_Picture picture = window.Read();
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            window.Point_At(x, y);
            ASSERT_EQ(button.Select(MOUSE_ASK) != 0, picture.At(x, y) != Test_Window::MARKER) << x << "," << y;
        }
    }
    EXPECT_EQ(Draws(), 0U);
    EXPECT_EQ(button.state, 0);
}

TEST_F(Buttons_Test, hover_and_press_and_leave_draw_once_each) {
    Point_Inside();
    EXPECT_NE(button.Select(0), 0);
    EXPECT_EQ(button.state, 1);
    EXPECT_EQ(Draws(), 1U);
    EXPECT_NE(button.Select(0), 0);
    EXPECT_EQ(Draws(), 1U);
    EXPECT_NE(button.Select(PRESS), 0);
    EXPECT_EQ(button.state, 2);
    EXPECT_EQ(Draws(), 2U);
    EXPECT_NE(button.Select(RELEASE), 0);
    EXPECT_EQ(button.state, 1);
    EXPECT_EQ(Draws(), 3U);
    Point_Outside();
    EXPECT_EQ(button.Select(0), 0);
    EXPECT_EQ(button.state, 0);
    EXPECT_EQ(Draws(), 4U);
    button.Deselect();
    EXPECT_EQ(Draws(), 4U);
}

TEST_F(Buttons_Test, deselect_draws_only_when_the_look_changes) {
    Point_Inside();
    button.Select(PRESS);
    button.Deselect();
    EXPECT_EQ(button.state, 0);
    EXPECT_EQ(Draws(), 2U);
    button.Deselect();
    EXPECT_EQ(Draws(), 2U);
}

TEST_F(Buttons_Test, select_of_zero_refreshes_what_a_panel_painted_into_the_images) {
    button.image[0][button.width * 5 + 20] = 0x00FF00;
    Point_Outside();
    EXPECT_EQ(button.Select(0), 0);
    EXPECT_EQ(Draws(), 1U);
    const Rect outer = Device(button);
    EXPECT_EQ(window.Read().At(outer.left + 20, outer.top + 5), 0x00FF00U);
    EXPECT_EQ(button.Select(0), 0);
    EXPECT_EQ(Draws(), 1U);
}

TEST_F(Buttons_Test, select_of_zero_refreshes_a_state_that_a_panel_reset) {
    Point_Inside();
    button.Select(PRESS);
    button.state = 0;
    EXPECT_NE(button.Select(0), 0);
    EXPECT_EQ(button.state, 0);
    EXPECT_EQ(Draws(), 2U);
    EXPECT_EQ(window.Read().At(Device(button).left + 20, Device(button).top + 5), button.image[0][0]);
}

TEST_F(Buttons_Test, inactive_or_edited_buttons_are_never_hit) {
    Point_Inside();
    for (const unsigned int bits : {STYLE_INACTIVE, STYLE_EDITED}) {
        button.style = STYLE_GRID_BUTTON | bits;
        for (const int code : {0, MOUSE_ASK, PRESS, RELEASE, 66}) {
            EXPECT_EQ(button.Select(code), 0);
        }
    }
    EXPECT_EQ(Draws(), 0U);
    EXPECT_EQ(button.state, 0);
}

TEST_F(Buttons_Test, a_look_that_was_shown_when_it_was_hidden_or_greyed_is_gone_when_it_comes_back) {
    const Window_Picture plain = window.Read();
    for (const unsigned int bits : {STYLE_EDITED, STYLE_INACTIVE}) {
        Point_Inside();
        button.Select(PRESS);
        button.style |= bits;
        Point_Outside();
        button.Select(0);
        button.style &= ~bits;
        button.Draw();
        EXPECT_EQ(window.Read(), plain) << bits;
    }
}

TEST_F(Buttons_Test, frame_bit_alone_does_not_disable) {
    button.style = STYLE_FRAMED_BOX;
    Point_Inside();
    EXPECT_NE(button.Select(PRESS), 0);
}

#if defined(_WIN32)
TEST(Button_Caption, a_tall_narrow_buttons_caption_reads_upwards) {
    const Test_Window window{40, 120, Window_Axis::Down};
    Buttons button;
    button.style = STYLE_BUTTON;
    button.width = 16;
    button.height = 120;
    button.Set_Color(60, 60, 60);
    button.Init(window.Get());
    button.Draw();
    const Window_Picture bare = window.Read();
    button.Set_Name("Blow");
    button.Draw();
    const Window_Picture captioned = window.Read();
    int first_row = 120;
    int last_row = -1;
    for (int y = 0; y < 120; ++y) {
        for (int x = 0; x < 16; ++x) {
            if (bare.At(x, y) != captioned.At(x, y)) {
                first_row = std::min(first_row, y);
                last_row = std::max(last_row, y);
            }
        }
    }
    EXPECT_GT(last_row - first_row, 20) << "four letters side by side, turned";
    EXPECT_LT(last_row - first_row, 80);
}
#endif

TEST(Button_Captions, adjust_leaves_a_caption_that_reads_upwards_whole) {
    const Test_Window window(WINDOW_WIDTH, WINDOW_HEIGHT, Window_Axis::Down);
    Buttons button = Grid_Button(window.Get());
    button.width = 16;
    button.height = 50;
    button.y = 5;
    button.Set_Name("123456");
    button.Init(window.Get());
    for (const unsigned short current : {std::uint16_t{0}, std::uint16_t{1}}) {
        button.current = current;
        button.Draw();
        const Window_Picture drawn = window.Read();
        button.Adjust();
        EXPECT_EQ(window.Read(), drawn) << current;
    }
}

TEST_F(Buttons_Test, an_image_that_is_not_shown_is_read_when_it_comes_into_sight) {
    button.image[1][button.width * 5 + 20] = 0x00FF00;
    Point_Outside();
    EXPECT_EQ(button.Select(0), 0);
    EXPECT_EQ(Draws(), 0U) << "nothing that is seen has changed";
    Point_Inside();
    EXPECT_NE(button.Select(0), 0);
    const Rect outer = Device(button);
    EXPECT_EQ(window.Read().At(outer.left + 20, outer.top + 5), 0x00FF00U);
    button.image[3][0] ^= 0xFFU;  // seen in the frame of a current button only
    EXPECT_NE(button.Select(0), 0);
    EXPECT_EQ(Draws(), 1U);
    button.current = 1;
    button.Draw();
    button.image[3][0] ^= 0xFFU;
    EXPECT_NE(button.Select(0), 0);
    EXPECT_EQ(Draws(), 3U);
}

#include "kits/widgets/surface.h"
#include "kits/common/text_conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

constexpr Rgb GROUND = 0x101010;
constexpr Rgb INK = 0x00FF00;

/** A picture of 20 x 12 inside a larger memory, so that writing beside it is seen. */
class Surface_Test : public testing::Test {
  protected:
    static constexpr int WIDTH = 20;
    static constexpr int HEIGHT = 12;
    static constexpr int STRIDE = 24;
    std::vector<std::uint32_t> memory = std::vector<std::uint32_t>(STRIDE * (HEIGHT + 4), GROUND);
    Surface picture{memory.data() + 2 * STRIDE + 2, WIDTH, HEIGHT, STRIDE, nullptr};

    int Ink_Inside() const {
        int nb = 0;
        for (int y = 0; y < HEIGHT; y++) {
            for (int x = 0; x < WIDTH; x++) {
                nb += picture.Pixel(x, y) == INK ? 1 : 0;
            }
        }
        return nb;
    }
    int Ink_All() const { return static_cast<int>(std::count(memory.begin(), memory.end(), INK)); }
};

}  // namespace

TEST_F(Surface_Test, fill_is_cut_at_the_picture) {
    picture.Fill({-5, -5, 100, 100}, INK);
    EXPECT_EQ(Ink_Inside(), WIDTH * HEIGHT);
    EXPECT_EQ(Ink_All(), WIDTH * HEIGHT);
}

TEST_F(Surface_Test, fill_is_cut_at_the_clip_rectangle_until_it_is_restored) {
    const Rect before = picture.Clip_Set({3, 4, 5, 2});
    picture.Fill(picture.Area(), INK);
    EXPECT_EQ(Ink_All(), 10);
    EXPECT_EQ(picture.Pixel(3, 4), INK);
    EXPECT_EQ(picture.Pixel(7, 5), INK);
    picture.Clip_Set(before);
    picture.Fill(picture.Area(), INK);
    EXPECT_EQ(Ink_All(), WIDTH * HEIGHT);
}

TEST_F(Surface_Test, frame_covers_exactly_its_border) {
    picture.Frame({2, 3, 10, 6}, 2, INK);
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) {
            const bool in_outer = Rect{2, 3, 10, 6}.Has_Point({x, y});
            const bool in_inner = Rect{4, 5, 6, 2}.Has_Point({x, y});
            EXPECT_EQ(picture.Pixel(x, y) == INK, in_outer && !in_inner) << x << "," << y;
        }
    }
}

TEST_F(Surface_Test, frame_thicker_than_its_rectangle_fills_it) {
    picture.Frame({2, 3, 3, 5}, 9, INK);
    EXPECT_EQ(Ink_All(), 15);
}

TEST_F(Surface_Test, line_includes_both_ends) {
    picture.Line({2, 2}, {9, 5}, INK);
    EXPECT_EQ(picture.Pixel(2, 2), INK);
    EXPECT_EQ(picture.Pixel(9, 5), INK);
    EXPECT_EQ(Ink_All(), 8);
    picture.Line({-50, 30}, {70, -20}, INK);  // from outside to outside
    EXPECT_EQ(Ink_All(), Ink_Inside());
}

TEST_F(Surface_Test, polygon_of_a_rectangle_fills_that_rectangle) {
    const std::array<Point, 4> corners = {{{2, 3}, {8, 3}, {8, 7}, {2, 7}}};
    picture.Polygon(corners, INK);
    EXPECT_EQ(Ink_All(), 24);
    EXPECT_EQ(picture.Pixel(2, 3), INK);
    EXPECT_EQ(picture.Pixel(7, 6), INK);
    EXPECT_NE(picture.Pixel(8, 7), INK);
}

TEST_F(Surface_Test, invert_twice_restores) {
    const std::vector<std::uint32_t> before = memory;
    picture.Invert({1, 1, 30, 4});
    EXPECT_NE(memory, before);
    picture.Invert({1, 1, 30, 4});
    EXPECT_EQ(memory, before);
}

TEST_F(Surface_Test, blit_cuts_the_source_with_the_target) {
    std::vector<std::uint32_t> source(6 * 4);
    for (std::size_t i = 0; i < source.size(); i++) {
        source[i] = static_cast<std::uint32_t>(i + 1);
    }
    picture.Blit({-2, -1, 6, 4}, source.data(), 6);
    EXPECT_EQ(picture.Pixel(0, 0), 9U);  // row 1, column 2
    EXPECT_EQ(picture.Pixel(3, 2), 24U);
    EXPECT_EQ(picture.Pixel(4, 0), GROUND);
    EXPECT_EQ(memory[static_cast<std::size_t>(2 * STRIDE + 1)], GROUND);
}

TEST_F(Surface_Test, alpha_mixes_by_opacity) {
    const std::array<std::uint32_t, 3> source = {0x00FFFFFFU, 0xFF00FF00U, 0x80FFFFFFU};
    picture.Blit_Alpha({0, 0, 3, 1}, source.data(), 3);
    EXPECT_EQ(picture.Pixel(0, 0), GROUND);
    EXPECT_EQ(picture.Pixel(1, 0), INK);
    EXPECT_NEAR(static_cast<int>(picture.Pixel(2, 0) & 0xFFU), (0x10 + 0xFF) / 2, 2);
}

TEST_F(Surface_Test, tint_of_100_percent_is_the_colour) {
    picture.Tint({0, 0, 2, 2}, INK, 100);
    EXPECT_EQ(Ink_All(), 4);
    picture.Tint({0, 0, 2, 2}, 0xFFFFFF, 0);
    EXPECT_EQ(Ink_All(), 4);
}

TEST(Rect_Test, common_and_around) {
    EXPECT_EQ(Rect_Common({0, 0, 10, 10}, {5, 6, 10, 10}), (Rect{5, 6, 5, 4}));
    EXPECT_TRUE(Rect_Common({0, 0, 5, 5}, {5, 0, 5, 5}).Is_Empty());
    EXPECT_EQ(Rect_Around({0, 0, 2, 2}, {5, 6, 1, 1}), (Rect{0, 0, 6, 7}));
    EXPECT_EQ(Rect_Around({}, {5, 6, 1, 1}), (Rect{5, 6, 1, 1}));
}

#if defined(_WIN32)

TEST(Text_Test, every_byte_of_the_western_code_page_is_a_character) {
    ASSERT_FALSE(Code_Page_Is_Utf8());
    for (const std::string text : {"\xDF\x96", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {  // UTF-8, if it were
        for (std::size_t i = 0; i < text.size(); i++) {
            EXPECT_EQ(Character_Length(text, i), 1U);
            EXPECT_EQ(Character_Before(text, i + 1), i);
        }
        int width = 0;
        for (const char letter : text) {
            width += Text_Width({&letter, 1}, {});
        }
        EXPECT_EQ(Text_Width(text, {}), width) << "as many letters as bytes";
    }
}

#else

TEST(Text_Test, characters_of_utf_8_and_of_other_bytes) {
    const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
    EXPECT_EQ(Character_Length(text, 0), 1U);
    EXPECT_EQ(Character_Length(text, 1), 2U);
    EXPECT_EQ(Character_Length(text, 3), 3U);
    EXPECT_EQ(Character_Length(text, 6), 4U);
    EXPECT_EQ(Character_Length(text, text.size()), 0U);
    EXPECT_EQ(Character_Length("\xE9t\xE9", 0), 1U);  // not UTF-8
    EXPECT_EQ(Character_Length("\xE2\x82", 0), 1U);   // cut short
    EXPECT_EQ(Character_Before(text, 10), 6U);
    EXPECT_EQ(Character_Before(text, 6), 3U);
    EXPECT_EQ(Character_Before(text, 3), 1U);
    EXPECT_EQ(Character_Before(text, 1), 0U);
    EXPECT_EQ(Character_Before(text, 0), 0U);
}

#endif

TEST(Text_Test, fit_keeps_whole_characters_within_the_room) {
    const Font_Choice font;
    const std::string text = "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9";
    for (int room = 0; room < Text_Width(text, font) + 3; room++) {
        const std::size_t kept = Text_Fit(text, font, room);
        EXPECT_EQ(kept % Character_Length(text, 0), 0U);
        EXPECT_LE(Text_Width(text.substr(0, kept), font), room);
        if (kept < text.size()) {
            EXPECT_GT(Text_Width(text.substr(0, kept + Character_Length(text, 0)), font), room);
        }
    }
}

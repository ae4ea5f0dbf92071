#include "panels/brush_disc.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <tuple>
#include <vector>

namespace {

constexpr std::array<unsigned int, 4> GROUND = {0x404040, 0x505050, 0x303030, 0x406080};
constexpr unsigned int COLOR = 0x00C0FFEE & 0xFFFFFF;

/** Four pictures with their grounds, and the pictures that the rules ask for. */
struct Pictures {
    Pictures(int in_width, int in_height) : width(in_width), height(in_height) {
        for (std::size_t i = 0; i < 4; i++) {
            painted[i].assign(static_cast<std::size_t>(width * height), GROUND[i]);
        }
        expected = painted;
    }
    Button_Pictures View() {
        return {{painted[0].data(), painted[1].data(), painted[2].data(), painted[3].data()}, width, height};
    }
    std::size_t At(int x, int y) const { return static_cast<std::size_t>(y * width + x); }

    /** Every pixel on its own: is it one of the four images of a point of the quarter disc? */
    bool In_Disc(int x, int y, int square) const {
        const int dx = std::abs(x - width / 2);
        const int dy = std::abs(y - height / 2);
        return dx < width / 2 && dy < height / 2 && dx * dx + dy * dy <= square;
    }
    void Expect_Disc(int square, unsigned int color) {
        for (int y = 0; y < height; y++) {
            for (int x = 0; x < width; x++) {
                for (auto& picture : expected) {
                    picture[At(x, y)] = In_Disc(x, y, square) ? color : picture[At(x, y)];
                }
            }
        }
    }
    void Expect_Outline(int square, int margin) {
        const float inner = static_cast<float>((width < height ? width : height) - margin);
        const int x0 = static_cast<int>(std::trunc((static_cast<float>(width) - inner) / 2));
        const int y0 = static_cast<int>(std::trunc((static_cast<float>(height) - inner) / 2));
        for (int y = y0 - 1; y <= height - y0; y++) {
            for (int x = x0 - 1; x <= width - x0; x++) {
                int touching = 0;
                for (int step = 0; step < 9; step++) {
                    touching += In_Disc(x + step % 3 - 1, y + step / 3 - 1, square) ? 1 : 0;
                }
                if (!In_Disc(x, y, square) && touching > 0) {
                    for (auto& picture : expected) {
                        picture[At(x, y)] = 0;
                    }
                }
            }
        }
    }
    int width;
    int height;
    std::array<std::vector<unsigned int>, 4> painted;
    std::array<std::vector<unsigned int>, 4> expected;
};

}  // namespace

/** Width, height, border of the library, largest size. */
using Disc_Case = std::tuple<int, int, int, int>;
class Every_Disc_Of_A_Button : public testing::TestWithParam<Disc_Case> {};

TEST_P(Every_Disc_Of_A_Button, and_its_outline_stand_in_all_four_pictures_by_the_rule) {
    const auto [width, height, border, largest] = GetParam();
    const int margin = Brush_Disc_Margin(border);
    const float scale = Brush_Disc_Scale(width, height, margin, static_cast<std::uint16_t>(largest));
    ASSERT_GT(scale, 0.0F);
    for (int size = 0; size <= largest; size += 1 + largest / 40) {
        Pictures pictures(width, height);
        const std::int16_t square = Brush_Disc_Square(static_cast<std::uint16_t>(size), scale);
        Brush_Disc_Paint(pictures.View(), square, COLOR);
        pictures.Expect_Disc(square, COLOR);
        ASSERT_EQ(pictures.painted, pictures.expected) << "disc of size " << size;
        Brush_Outline_Paint(pictures.View(), Brush_Outline_Range(width, height, margin));
        pictures.Expect_Outline(square, margin);
        ASSERT_EQ(pictures.painted, pictures.expected) << "outline of size " << size;
    }
}
INSTANTIATE_TEST_SUITE_P(Cases, Every_Disc_Of_A_Button,
                         testing::Values(Disc_Case{40, 40, 1, 5}, Disc_Case{41, 33, 1, 12}, Disc_Case{30, 57, 2, 25},
                                         Disc_Case{7, 9, 0, 3}, Disc_Case{6, 6, 0, 1}, Disc_Case{24, 24, 1, 255},
                                         Disc_Case{64, 31, 3, 65535}, Disc_Case{5, 200, 0, 9},
                                         Disc_Case{20, 20, 1, 0}));

TEST(Brush_Disc, the_scale_follows_the_shorter_side_less_the_margin) {
    EXPECT_EQ(Brush_Disc_Margin(1), 6);
    EXPECT_EQ(Brush_Disc_Scale(40, 90, 6, 5), 11.0F / 34.0F);
    EXPECT_EQ(Brush_Disc_Scale(90, 40, 6, 5), 11.0F / 34.0F);
    EXPECT_EQ(Brush_Disc_Scale(40, 40, 6, 0), 1.0F / 34.0F);
}

TEST(Brush_Disc, without_room_beyond_the_margin_there_is_no_scale) {
    EXPECT_EQ(Brush_Disc_Scale(6, 40, 6, 5), 0.0F);
    EXPECT_EQ(Brush_Disc_Scale(40, 6, 6, 5), 0.0F);
    EXPECT_EQ(Brush_Disc_Scale(-3, 40, 6, 5), 0.0F);
    EXPECT_GT(Brush_Disc_Scale(7, 7, 6, 5), 0.0F);
}

TEST(Brush_Disc, size_1_has_radius_0_only_while_a_screen_pixel_shows_more_than_one_mask_pixel) {
    EXPECT_EQ(Brush_Disc_Square(1, 1.5F), 0);
    EXPECT_EQ(Brush_Disc_Square(1, 1.0F), 1);
    EXPECT_EQ(Brush_Disc_Square(1, Brush_Disc_Scale(40, 40, 6, 5)), 9);
    EXPECT_EQ(Brush_Disc_Square(0, Brush_Disc_Scale(40, 40, 6, 5)), 0);
}

TEST(Brush_Disc, the_square_is_cut_in_single_precision_and_wraps_at_16_bits) {
    EXPECT_EQ(Brush_Disc_Square(10, 3.0F), 11);  // 3.33... squared
    EXPECT_EQ(Brush_Disc_Square(181, 1.0F), 32761);
    EXPECT_EQ(Brush_Disc_Square(182, 1.0F), 33124 - 65536);
    EXPECT_EQ(Brush_Disc_Square(257, 1.0F), 66049 - 65536);
    int different = 0;
    for (int size = 1; size < 2000; size++) {
        for (int room = 7; room < 60; room++) {
            const float scale = Brush_Disc_Scale(room + 6, room + 6, 6, static_cast<std::uint16_t>(size));
            const volatile float quotient = static_cast<float>(size) / scale;
            const volatile float product = quotient * quotient;
            ASSERT_EQ(Brush_Disc_Square(static_cast<std::uint16_t>(size), scale), static_cast<std::int16_t>(product));
            const double exact = static_cast<double>(size) * room / (2.0 * size + 1.0);
            different += static_cast<int>(exact * exact) != static_cast<int>(product) ? 1 : 0;
        }
    }
    EXPECT_GT(different, 0) << "double precision would give the same everywhere";
}

TEST(Brush_Disc, the_largest_brush_fills_the_shorter_side_less_the_margin) {
    for (int side = 12; side < 80; side++) {
        for (int largest : {5, 20, 255}) {
            const float scale = Brush_Disc_Scale(side, side + 9, 6, static_cast<std::uint16_t>(largest));
            const int square = Brush_Disc_Square(static_cast<std::uint16_t>(largest), scale);
            const double diameter = 2 * std::floor(std::sqrt(square)) + 1;
            EXPECT_LE(diameter, side - 6 + 1) << side << " " << largest;
            EXPECT_GE(diameter, (side - 6) * (2.0 * largest / (2 * largest + 1)) - 2) << side << " " << largest;
        }
    }
}

TEST(Brush_Disc, a_disc_larger_than_its_button_is_cut_half_a_side_from_the_middle) {
    for (const auto& [width, height] : {std::pair{20, 14}, {21, 15}, {2, 2}, {1, 9}, {3, 1}}) {
        Pictures pictures(width, height);
        Brush_Disc_Paint(pictures.View(), 32767, COLOR);
        pictures.Expect_Disc(32767, COLOR);
        EXPECT_EQ(pictures.painted, pictures.expected) << width << " x " << height;
    }
    Pictures even(20, 14);
    Brush_Disc_Paint(even.View(), 32767, COLOR);
    EXPECT_EQ(even.painted[0][even.At(0, 7)], GROUND[0]);
    EXPECT_EQ(even.painted[0][even.At(10, 0)], GROUND[0]);
    EXPECT_EQ(even.painted[0][even.At(1, 1)], COLOR);
    EXPECT_EQ(even.painted[0][even.At(19, 13)], COLOR);
}

TEST(Brush_Disc, a_wrapped_square_paints_nothing) {
    Pictures pictures(20, 20);
    Brush_Disc_Paint(pictures.View(), -1, COLOR);
    EXPECT_EQ(pictures.painted, pictures.expected);
    Brush_Outline_Paint(pictures.View(), Brush_Outline_Range(20, 20, 6));
    EXPECT_EQ(pictures.painted, pictures.expected);
}

TEST(Brush_Disc, a_new_colour_changes_the_disc_and_keeps_the_outline) {
    Pictures pictures(32, 26);
    Brush_Disc_Paint(pictures.View(), 50, COLOR);
    Brush_Outline_Paint(pictures.View(), Brush_Outline_Range(32, 26, 6));
    Brush_Disc_Paint(pictures.View(), 50, 0x123456);
    pictures.Expect_Disc(50, 0x123456);
    pictures.Expect_Outline(50, 6);
    EXPECT_EQ(pictures.painted, pictures.expected);
}

TEST(Brush_Disc, a_black_disc_is_outlined_like_any_other) {
    Pictures pictures(32, 26);
    Brush_Disc_Paint(pictures.View(), 50, 0);
    Brush_Outline_Paint(pictures.View(), Brush_Outline_Range(32, 26, 6));
    pictures.Expect_Disc(50, 0);
    pictures.Expect_Outline(50, 6);
    EXPECT_EQ(pictures.painted, pictures.expected);
}

TEST(Brush_Disc, the_outline_range_never_reaches_the_edge_of_the_picture) {
    for (int border = -40; border <= 4; border++) {
        for (int width = 1; width < 30; width++) {
            for (int height = 1; height < 30; height++) {
                const Outline_Range range = Brush_Outline_Range(width, height, Brush_Disc_Margin(border));
                ASSERT_GE(range.first_x, 1);
                ASSERT_GE(range.first_y, 1);
                ASSERT_LE(range.last_x, width - 2);
                ASSERT_LE(range.last_y, height - 2);
                Pictures pictures(width, height);
                Brush_Disc_Paint(pictures.View(), 30, COLOR);
                Brush_Outline_Paint(pictures.View(), range);  // every neighbour inside the pictures
            }
        }
    }
    const Outline_Range usual = Brush_Outline_Range(50, 30, 6);
    EXPECT_EQ(usual.first_x, 12);
    EXPECT_EQ(usual.last_x, 37);
    EXPECT_EQ(usual.first_y, 2);
    EXPECT_EQ(usual.last_y, 27);
}

TEST(Brush_Disc, pictures_without_area_or_memory_are_not_complete) {
    Pictures pictures(4, 4);
    EXPECT_TRUE(pictures.View().Complete());
    for (std::size_t i = 0; i < 4; i++) {
        Button_Pictures view = pictures.View();
        view.image[i] = nullptr;
        EXPECT_FALSE(view.Complete());
    }
    Button_Pictures flat = pictures.View();
    flat.height = 0;
    EXPECT_FALSE(flat.Complete());
    EXPECT_FALSE(Button_Pictures{}.Complete());
}

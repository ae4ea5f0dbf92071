#include "workbench/model/slice_render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "workbench/model/label_difference.h"
#include "workbench/volumes/volume.h"

using namespace workbench;

namespace {

constexpr std::uint32_t MARKER = 0xDEADBEEF;

struct Picture {
    std::vector<std::int32_t> levels;
    std::vector<std::uint8_t> tags;
    std::vector<std::uint32_t> out;
    Slice_Source source;
    Tag_Overlay overlay;

    explicit Picture(std::vector<std::int32_t> of_levels) : levels(std::move(of_levels)) {
        tags.assign(levels.size(), 0);
        out.assign(levels.size(), MARKER);
        source = {static_cast<int>(levels.size()), 1, levels, false, 1.0F, 0.0F, tags};
        overlay.shown.fill(1);
        overlay.color.fill(0xFF0000);
    }
    void Render(const Grey_Window& window, std::span<const Range_Overlay> ranges = {}) {
        Slice_Render(source, window, overlay, ranges, {0, 0, source.width, source.height}, out);
    }
};

TEST(Slice_Render, maps_the_window_to_black_and_white) {
    Picture picture({-50, 0, 50, 100, 1000});
    picture.Render({0.0F, 100.0F});
    EXPECT_EQ(picture.out, (std::vector<std::uint32_t>{0, 0, 0x808080, 0xFFFFFF, 0xFFFFFF}));
}

TEST(Slice_Render, levels_of_either_width_give_the_same_picture) {
    Picture wide({-32768, -50, 0, 7, 100, 32766, volumes::LEVEL_OUTSIDE, 1000});
    const volumes::Voxel_Levels levels(wide.levels);
    ASSERT_TRUE(levels.Is_Narrow());
    Picture narrow(wide.levels);
    narrow.source.levels = levels;
    const std::vector<Range_Overlay> ranges = {{-32768, -40, 0x00FF00}, {90, 32766, 0x0000FF}};
    wide.Render({-20.0F, 100.0F}, ranges);
    narrow.Render({-20.0F, 100.0F}, ranges);
    EXPECT_EQ(narrow.out, wide.out);
}

TEST(Slice_Render, applies_slope_and_intercept) {
    Picture picture({10, 20});
    picture.source.slope = -2.0F;
    picture.source.intercept = 40.0F;  // grey 20 and 0
    picture.Render({0.0F, 20.0F});
    EXPECT_EQ(picture.out, (std::vector<std::uint32_t>{0xFFFFFF, 0}));
}

TEST(Slice_Render, shows_inverted_greys_with_small_ones_bright) {
    Picture picture({-50, 0, 25, 100, 1000});
    picture.source.is_inverted = true;
    picture.Render({0.0F, 100.0F});
    EXPECT_EQ(picture.out, (std::vector<std::uint32_t>{0xFFFFFF, 0xFFFFFF, 0xBFBFBF, 0, 0}));
}

TEST(Slice_Render, shows_colours_as_they_are) {
    Picture picture({0x332211});
    picture.source.color = true;
    picture.Render({0.0F, 1.0F});
    EXPECT_EQ(picture.out[0], 0x112233U);
}

TEST(Slice_Render, mixes_in_shown_tags_only) {
    Picture picture({0, 0, 0});
    picture.tags = {0, 1, 2};
    picture.source.tags = picture.tags;
    picture.overlay.shown[2] = 0;
    picture.overlay.opacity = 50;
    picture.Render({0.0F, 100.0F});
    EXPECT_EQ(picture.out[0], 0U);  // the background is never coloured
    EXPECT_NEAR(static_cast<double>(picture.out[1] >> 16U), 127.0, 1.0);
    EXPECT_EQ(picture.out[1] & 0xFFFFU, 0U);
    EXPECT_EQ(picture.out[2], 0U);
}

TEST(Slice_Render, tints_the_range_with_both_ends) {
    Picture picture({9, 10, 20, 21});
    const Range_Overlay range = {10, 20, 0x00FF00};
    picture.Render({0.0F, 1000.0F}, {&range, 1});
    const auto is_tinted = [](std::uint32_t pixel) { return ((pixel >> 8U) & 0xFFU) > 50U; };
    EXPECT_FALSE(is_tinted(picture.out[0]));
    EXPECT_TRUE(is_tinted(picture.out[1]));
    EXPECT_TRUE(is_tinted(picture.out[2]));
    EXPECT_FALSE(is_tinted(picture.out[3]));
}

TEST(Slice_Render, the_last_of_overlapping_ranges_tints) {
    Picture picture({5, 15, 25});
    const Range_Overlay ranges[] = {{0, 20, 0xFF0000}, {10, 30, 0x00FF00}};
    picture.Render({0.0F, 1000.0F}, ranges);
    EXPECT_GT(picture.out[0] >> 16U, 50U);
    EXPECT_LT(picture.out[1] >> 16U, 50U);
    EXPECT_GT((picture.out[1] >> 8U) & 0xFFU, 50U);
    EXPECT_GT((picture.out[2] >> 8U) & 0xFFU, 50U);
}

TEST(Slice_Render, draws_nothing_outside_the_part) {
    Picture picture({0, 0, 0, 0});
    picture.source.width = 2;
    picture.source.height = 2;
    Slice_Render(picture.source, {0.0F, 1.0F}, picture.overlay, {}, {1, 0, 9, 1}, picture.out);
    EXPECT_EQ(picture.out, (std::vector<std::uint32_t>{MARKER, 0, MARKER, MARKER}));
    Slice_Render(picture.source, {0.0F, 1.0F}, picture.overlay, {}, {5, 5, 3, 3}, picture.out);
    EXPECT_EQ(picture.out[3], MARKER);
}

TEST(Slice_Render, survives_a_window_without_width) {
    Picture picture({5, 6});
    picture.Render({5.0F, 5.0F});
    EXPECT_EQ(picture.out[0], 0U);
}

TEST(Grey_Window, a_drag_to_the_right_widens_and_down_darkens) {
    const Grey_Window window = {20.0F, 60.0F};
    const Grey_Window wider = window.Dragged(0.1F, 0.0F, 100.0F);
    EXPECT_FLOAT_EQ(wider.low, 15.0F);
    EXPECT_FLOAT_EQ(wider.high, 65.0F);
    const Grey_Window darker = window.Dragged(0.0F, 0.1F, 100.0F);
    EXPECT_FLOAT_EQ(darker.low, 30.0F);
    EXPECT_FLOAT_EQ(darker.high, 70.0F);
    const Grey_Window narrow = window.Dragged(-9.0F, 0.0F, 100.0F);
    EXPECT_GT(narrow.high, narrow.low);
}

/** A screen of a slice, every pixel of which is `scale` screen pixels wide and high, from the upper left. */
struct Linear_Screen {
    View_Layout layout;
    int width;
    int height;
    std::vector<std::uint32_t> pixels;

    Linear_Screen(const Slice_Source& source, double scale_x, double scale_y, int columns, int rows)
        : layout{scale_x, scale_y, 0.0, 0.0, source.width, source.height},
          width(columns),
          height(rows),
          pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), MARKER) {}
    void Draw(const Picture& of, const Grey_Window& window, std::span<const Range_Overlay> ranges = {}) {
        Draw_Part(of, window, ranges, {0, 0, width, height});
    }
    void Draw_Part(const Picture& of, const Grey_Window& window, std::span<const Range_Overlay> ranges,
                   const Pixel_Rect& part) {
        Slice_Draw_Linear(of.source, window, of.overlay, ranges, layout, {part, width, height, 7, pixels});
    }
    std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    std::vector<int> Row(int y) const {
        std::vector<int> greys;
        for (int x = 0; x < width; ++x) {
            EXPECT_EQ(At(x, y) & 0xFFU, At(x, y) >> 16U) << x;
            greys.push_back(static_cast<int>(At(x, y) & 0xFFU));
        }
        return greys;
    }
};
constexpr Grey_Window EIGHT_BITS = {0.0F, 255.0F};

TEST(Slice_Draw_Linear, runs_straight_from_middle_to_middle_and_level_beyond_them) {
    const Picture picture({0, 80, 40});
    Linear_Screen screen(picture.source, 4.0, 4.0, 12, 4);
    screen.Draw(picture, EIGHT_BITS);
    // Middles of screen pixels lie at eighths: 1/8, 3/8, 5/8 ... ; those of the slice's at 1/2, 3/2, 5/2.
    const std::vector<int> expected = {0, 0, 10, 30, 50, 70, 75, 65, 55, 45, 40, 40};
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(screen.Row(y), expected) << y;
    }
}

TEST(Slice_Draw_Linear, mixes_four_neighbours_whatever_the_shape_of_the_pixels) {
    Picture picture({0, 100, 200, 40});
    picture.source.width = picture.source.height = 2;
    Linear_Screen screen(picture.source, 2.0, 6.0, 4, 12);  // three times as high as wide
    screen.Draw(picture, EIGHT_BITS);
    // The screen's column 1 lies a quarter of the way from the left middle, row 4 a quarter down: 4.5 / 6 - 0.5.
    EXPECT_EQ(screen.At(1, 4) & 0xFFU, 59U) << "0 and 100, 200 and 40: 50 at the left, 85 at the right";
    EXPECT_EQ(screen.Row(0), (std::vector<int>{0, 25, 75, 100})) << "above the upper middles";
    EXPECT_EQ(screen.Row(11), (std::vector<int>{200, 160, 80, 40}));
}

TEST(Slice_Draw_Linear, is_the_picture_itself_where_a_screen_pixel_is_a_pixel) {
    Picture picture({3, 250, 17, 99, 0, 255});
    picture.source.width = 3;
    picture.source.height = 2;
    Linear_Screen screen(picture.source, 1.0, 1.0, 3, 2);
    screen.Draw(picture, EIGHT_BITS);
    picture.Render(EIGHT_BITS);
    EXPECT_EQ(screen.pixels, picture.out);
}

TEST(Slice_Draw_Linear, mixes_levels_before_the_window_cuts_them) {
    Picture picture({-100, 300});
    picture.source.slope = 2.0F;
    picture.source.intercept = 10.0F;  // -190 and 610
    Linear_Screen screen(picture.source, 4.0, 4.0, 8, 4);
    screen.Draw(picture, EIGHT_BITS);
    EXPECT_EQ(screen.Row(0), (std::vector<int>{0, 0, 0, 110, 255, 255, 255, 255}));
}

TEST(Slice_Draw_Linear, leaves_tags_and_ranges_at_the_sides_of_their_pixels) {
    Picture picture({0, 80, 40});
    picture.tags = {0, 1, 0};
    picture.source.tags = picture.tags;
    picture.overlay.opacity = 100;
    const Range_Overlay range = {40, 40, 0x00FF00};
    Linear_Screen screen(picture.source, 4.0, 4.0, 12, 4);
    screen.Draw(picture, EIGHT_BITS, {&range, 1});
    for (int x = 0; x < 12; ++x) {
        const std::uint32_t pixel = screen.At(x, 2);
        EXPECT_EQ(pixel == 0xFF0000U, x >= 4 && x < 8) << x;
        EXPECT_EQ((pixel >> 8U & 0xFFU) > 80U, x >= 8) << x;
    }
}

TEST(Slice_Draw_Linear, mixes_nothing_with_pixels_without_a_value) {
    const Picture picture({100, volumes::LEVEL_OUTSIDE, 200});
    Linear_Screen screen(picture.source, 4.0, 4.0, 12, 1);
    screen.Draw(picture, EIGHT_BITS);
    EXPECT_EQ(screen.Row(0), (std::vector<int>{100, 100, 100, 100, 0, 0, 0, 0, 200, 200, 200, 200}));
}

TEST(Slice_Draw_Linear, mixes_the_components_of_colours) {
    Picture picture({0x0000FF, 0x00FF00});  // red, green: red in the low byte
    picture.source.color = true;
    Linear_Screen screen(picture.source, 4.0, 4.0, 8, 1);
    screen.Draw(picture, EIGHT_BITS);
    EXPECT_EQ(screen.At(0, 0), 0xFF0000U);
    EXPECT_EQ(screen.At(3, 0), 0x9F6000U) << "three eighths of the way";
    EXPECT_EQ(screen.At(7, 0), 0x00FF00U);
}

TEST(Slice_Draw_Linear, draws_the_part_alone_and_the_ground_beside_the_slice) {
    const Picture picture({10, 20});
    Linear_Screen screen(picture.source, 2.0, 2.0, 6, 4);
    screen.Draw_Part(picture, EIGHT_BITS, {}, {1, 1, 99, 3});
    EXPECT_EQ(screen.At(0, 1), MARKER);
    EXPECT_EQ(screen.At(1, 0), MARKER);
    EXPECT_EQ(screen.At(4, 1), 7U);
    EXPECT_EQ(screen.At(1, 2), 7U) << "below the slice";
    EXPECT_EQ(screen.At(1, 1) & 0xFFU, 13U);
    EXPECT_EQ(screen.At(1, 3), MARKER);
}

TEST(Slice_Render, shows_differences_in_place_of_tags) {
    Picture picture({0, 0, 0, 0, 0});
    picture.tags = {0, 1, 0, 2, 3};
    const std::vector<std::uint8_t> compared = {0, 0, 4, 1, 3};
    picture.source.tags = picture.tags;
    picture.source.compared = compared;
    picture.overlay.is_difference = true;
    picture.Render({0.0F, 100.0F});
    const auto is = [&](std::size_t at, Label_Difference difference) {
        const std::uint32_t color = DIFFERENCE_COLOR[static_cast<std::size_t>(difference)];
        for (const unsigned int shift : {0U, 8U, 16U}) {
            EXPECT_NEAR(picture.out[at] >> shift & 0xFFU, (color >> shift & 0xFFU) * 0.6, 2.0) << at;
        }
    };
    is(0, Label_Difference::None);
    is(1, Label_Difference::Only_Here);
    is(2, Label_Difference::Only_There);
    is(3, Label_Difference::Other_Tag);
    is(4, Label_Difference::None);
    picture.overlay.is_difference = false;
    picture.Render({0.0F, 100.0F});
    EXPECT_EQ(picture.out[2], 0U) << "what is compared with is seen only on request";
    EXPECT_NE(picture.out[4], 0U);
}

TEST(Label_Difference, each_kind_is_counted_and_told) {
    const std::vector<std::uint8_t> here = {0, 1, 0, 2, 3, 1};
    const std::vector<std::uint8_t> there = {0, 0, 4, 1, 3, 0};
    const auto counts = Differences_Count(here, there);
    EXPECT_EQ(counts, (std::array<std::uint64_t, DIFFERENCE_NB>{2, 2, 1, 1}));
    EXPECT_EQ(Differences_Text(counts), "2 voxels only here, 1 only in the file, 1 of another TAG");
    EXPECT_EQ(Differences_Text(Differences_Count(here, here)), "the labels are the same");
}

TEST(Slice_Scale, every_screen_pixel_shows_the_slice_pixel_under_its_middle) {
    std::vector<std::uint32_t> slice = {1, 2, 3, 4, 5, 6};
    View_State state;
    state.slice_width = 3;
    state.slice_height = 2;
    state.view_width = 13;
    state.view_height = 9;
    for (const double zoom : {0.5, 1.0, 1.7, 2.0, 3.3, 4.0}) {
        state.zoom = zoom;
        const View_Layout layout = View_Layout_Make(state);
        std::vector<std::uint32_t> screen(13 * 9, MARKER);
        Slice_Scale(slice, layout, {0, 0, 13, 9}, 13, 9, 99, screen);
        for (int y = 0; y < 9; ++y) {
            for (int x = 0; x < 13; ++x) {
                const Slice_Point point = layout.To_Slice(x, y);
                const bool is_inside = point.x >= 0 && point.x < 3 && point.y >= 0 && point.y < 2;
                const std::uint32_t expected =
                    is_inside ? slice[static_cast<std::size_t>(point.y) * 3 + static_cast<std::size_t>(point.x)] : 99;
                EXPECT_EQ(screen[static_cast<std::size_t>(y * 13 + x)], expected) << zoom << ": " << x << ", " << y;
            }
        }
        // A part gives the same pixels, and no others.
        std::vector<std::uint32_t> part(13 * 9, MARKER);
        Slice_Scale(slice, layout, {4, 3, 20, 7}, 13, 9, 99, part);
        for (int y = 0; y < 9; ++y) {
            for (int x = 0; x < 13; ++x) {
                const auto at = static_cast<std::size_t>(y * 13 + x);
                EXPECT_EQ(part[at], x >= 4 && y >= 3 && y < 7 ? screen[at] : MARKER);
            }
        }
    }
}

}  // namespace

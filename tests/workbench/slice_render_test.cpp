#include "workbench/model/slice_render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

#include "database/db_panel_geometry.h"

#include <gtest/gtest.h>

namespace {

constexpr DB_Metrics METRICS{6, 16, 18, 2};  // space, slider, button, margin
constexpr Pixel_Rectangle PANEL{100, 50, 301, 400};

TEST(DB_Layout, buttons_stand_one_space_inside_the_lower_edge_with_two_pixels_between) {
    const DB_Layout layout = DB_Layout_Make(PANEL, METRICS);
    // (301 - 12 - 2) / 2 = 143, truncated
    EXPECT_EQ(layout.select_all, (Pixel_Rectangle{106, 56, 143, 18}));
    EXPECT_EQ(layout.select_none, (Pixel_Rectangle{106 + 143 + 2, 56, 143, 18}));
}

TEST(DB_Layout, warning_takes_the_place_of_the_buttons) {
    const DB_Layout layout = DB_Layout_Make(PANEL, METRICS);
    EXPECT_EQ(layout.warning_title, (Pixel_Rectangle{106, 56, 80, 18}));
    EXPECT_EQ(layout.warning_line, (Pixel_Rectangle{186, 56, (143 - 40) * 2, 18}));
}

TEST(DB_Layout, tree_and_sliders_fill_what_is_left) {
    const DB_Layout layout = DB_Layout_Make(PANEL, METRICS);
    const int above = 50 + 6 + 18 + 6;
    const int inner_width = 301 - 12;
    const int inner_height = 400 - 12 - 2 - 18 - 1;
    EXPECT_EQ(layout.vertical, (Pixel_Rectangle{106 + inner_width - 16, above + 16 + 6, 16, inner_height - 12 - 16}));
    EXPECT_EQ(layout.horizontal, (Pixel_Rectangle{106, above, inner_width - 16 - 6, 16}));
    EXPECT_EQ(layout.list, (Pixel_Rectangle{106, above + 16 + 6, inner_width - 16 - 6, inner_height - 16 - 6}));
}

TEST(DB_Layout, zones_reach_from_the_tree_to_the_edges_of_the_panel) {
    const DB_Layout layout = DB_Layout_Make(PANEL, METRICS);
    const int list_top = layout.list.y + layout.list.height;
    EXPECT_EQ(layout.top_zone, (Pixel_Rectangle{100, list_top - 10, 301, 450 - (list_top - 10)}));
    EXPECT_EQ(layout.bottom_zone, (Pixel_Rectangle{100, 50, 301, layout.list.y - 50}));
    EXPECT_EQ(layout.left_zone, (Pixel_Rectangle{100, 50, 20, 400}));
    const int list_right = layout.list.x + layout.list.width;
    EXPECT_EQ(layout.right_zone, (Pixel_Rectangle{list_right, 50, 401 - list_right, 400}));
}

TEST(DB_Panel_Height, is_eighteen_pixels_a_row_and_the_button_row) {
    EXPECT_EQ(DB_Panel_Height(0, 6, 18, 2), 18 + 2 * 6 + 2 * 2);
    EXPECT_EQ(DB_Panel_Height(10, 6, 18, 2), 18 + 2 * 6 + 2 * 2 + 180);
    EXPECT_EQ(DB_Panel_Height(65535, 6, 18, 2), 34 + 65535 * 18);
}

}  // namespace

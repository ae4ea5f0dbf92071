#include "panels/label_grid_geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr Label_Dimensions DIMENSIONS = {2, 18, 15, 6, 3};  // row height 20
constexpr Label_Host_Box HOST = {10, 8, 280, 120, 1};       // margin 3, so 114 pixels for rows

}  // namespace

TEST(Label_Layout, without_need_for_a_slider_the_grid_fills_the_box_inside_its_margins) {
    const Label_Layout layout = Label_Layout_Make(DIMENSIONS, HOST, 20);  // content 100
    EXPECT_FALSE(layout.scroll.needed);
    EXPECT_EQ(layout.scroll.maximum, 1.0F);
    EXPECT_EQ(layout.scroll.value, 0.0F);
    EXPECT_EQ(layout.slider, (Pixel_Rectangle{13, 11, 15, 114}));
    EXPECT_EQ(layout.grid, (Pixel_Rectangle{13, 11, 274, 114}));
    EXPECT_EQ(layout.visible_top, 10);
    EXPECT_EQ(layout.visible_bottom, 11 + 1 + 114 - 20);
}

TEST(Label_Layout, the_slider_takes_its_width_and_one_space_from_the_grid_and_starts_at_its_bottom) {
    const Label_Layout layout = Label_Layout_Make(DIMENSIONS, HOST, 24);  // content 120
    EXPECT_TRUE(layout.scroll.needed);
    EXPECT_EQ(layout.grid, (Pixel_Rectangle{13 + 21, 11, 274 - 21, 114}));
    EXPECT_EQ(layout.scroll.content, 120.0F);
    EXPECT_EQ(layout.scroll.maximum, 6.0F);
    EXPECT_EQ(layout.scroll.value, 6.0F);
}

TEST(Label_Layout, the_slider_is_needed_beyond_the_library_spacing_not_beyond_its_own_height) {
    // 120 - 2 x 3 = 114: a content of 114 fits, one more does not.
    Label_Dimensions dimensions = DIMENSIONS;
    dimensions.button = 112;  // rows of 114
    EXPECT_FALSE(Label_Slider_Make(dimensions, 120, 100, 4).needed);
    dimensions.button = 113;
    EXPECT_TRUE(Label_Slider_Make(dimensions, 120, 100, 4).needed);
    // A library spacing above the margin: needed although the content is lower than the slider.
    dimensions = DIMENSIONS;
    dimensions.library_space = 20;
    const Label_Slider slider = Label_Slider_Make(dimensions, 120, 114, 20);
    EXPECT_TRUE(slider.needed);
    EXPECT_EQ(slider.maximum, -14.0F);
    EXPECT_EQ(slider.value, -14.0F);
}

TEST(Label_Layout, only_complete_rows_count) {
    for (int count = 0; count <= 256; count++) {
        EXPECT_EQ(Label_Slider_Make(DIMENSIONS, 120, 114, count).content, static_cast<float>(count / 4 * 20)) << count;
        int laid_out = 0;
        for (int i = 0; i < count; i++) {
            const bool is_laid_out = Label_Cell_Of(i, count).is_laid_out;
            EXPECT_EQ(is_laid_out, i >= count % 4) << i << " of " << count;
            laid_out += is_laid_out ? 1 : 0;
        }
        EXPECT_EQ(laid_out, count / 4 * 4);
    }
    EXPECT_FALSE(Label_Cell_Of(-1, 8).is_laid_out);
    EXPECT_FALSE(Label_Cell_Of(8, 8).is_laid_out);
}

TEST(Label_Layout, the_top_row_holds_the_highest_labels_each_row_ascending_from_the_left) {
    const int expected[3][4] = {{8, 9, 10, 11}, {4, 5, 6, 7}, {0, 1, 2, 3}};
    for (int row = 0; row < 3; row++) {
        for (int column = 0; column < 4; column++) {
            const Label_Cell cell = Label_Cell_Of(expected[row][column], 12);
            EXPECT_EQ(cell.row, row);
            EXPECT_EQ(cell.column, column);
        }
    }
}

TEST(Label_Layout, buttons_stand_side_by_side_and_move_up_by_the_whole_part_of_the_scroll_position) {
    const Pixel_Rectangle grid = {34, 11, 253, 114};  // columns of 63
    EXPECT_EQ(Label_Button(grid, Label_Cell_Of(8, 12), 20, 0.0F), (Pixel_Rectangle{34, 11, 63, 20}));
    EXPECT_EQ(Label_Button(grid, Label_Cell_Of(3, 12), 20, 0.0F), (Pixel_Rectangle{34 + 3 * 63, 51, 63, 20}));
    EXPECT_EQ(Label_Button(grid, Label_Cell_Of(3, 12), 20, 6.9F).y, 51 - 6);
    EXPECT_EQ(Label_Button(grid, Label_Cell_Of(3, 12), 20, -6.9F).y, 51 + 6);
    EXPECT_EQ(Label_Button_Y(11, Label_Cell_Of(3, 12), 20, 6.9F), 51 - 6);
}

TEST(Label_Layout, numbers_beyond_16_bits_stay_out_of_sight) {
    EXPECT_EQ(Label_To_Short(40000), 32767);
    EXPECT_EQ(Label_To_Short(-40000), -32767);
    EXPECT_EQ(Label_To_Short(LABEL_NOWHERE), -32767);
    const Label_Cell lowest = Label_Cell_Of(0, 256);
    EXPECT_EQ(Label_Button_Y(11, lowest, 65534, 0.0F), 32767);
    for (const float wild : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::max()}) {
        EXPECT_NE(Label_Button_Y(11, lowest, 20, wild), LABEL_NOWHERE);
    }
    EXPECT_EQ(Label_Button_Y(11, lowest, 20, std::numeric_limits<float>::quiet_NaN()), 11 + 63 * 20);
    const Label_Layout layout =
        Label_Layout_Make({-32768, -32768, -32768, -32768, -32768}, {-32768, -32768, -32768, -32768, 65535}, 256);
    EXPECT_GE(layout.grid.y, -32767);
    Label_Layout_Make({32767, 32767, 32767, 32767, 32767}, {32767, 32767, 32767, 32767, 0}, 256);
}

TEST(Label_Layout, the_height_is_two_borders_five_pixels_and_the_rows) {
    EXPECT_EQ(Label_Panel_Height(DIMENSIONS, 0), 9);
    EXPECT_EQ(Label_Panel_Height(DIMENSIONS, 5), 109);
    EXPECT_EQ(Label_Panel_Height({32767, 32767, 0, 0, 0}, 65535), std::numeric_limits<int>::max());
}

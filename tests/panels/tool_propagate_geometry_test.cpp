#include "panels/tool_propagate_geometry.h"

#include <gtest/gtest.h>

TEST(Propagate_Geometry, the_list_takes_two_of_four_columns_between_down_and_up) {
    const Propagate_Layout layout = Propagate_Layout_Make({10, 20, 211, 60}, 3, 18);
    const int column = (211 - 12) / 4;  // 49, the rest stays free
    EXPECT_EQ(layout.down, (Pixel_Rectangle{13, 23, static_cast<short>(column), 18}));
    EXPECT_EQ(layout.list, (Pixel_Rectangle{13 + 49 + 3, 23, 98, 18}));
    EXPECT_EQ(layout.up, (Pixel_Rectangle{65 + 98 + 3, 23, 49, 18}));
}

TEST(Propagate_Geometry, widgets_never_overlap_and_stay_in_the_host_box) {
    for (short width = 40; width < 400; width++) {
        for (int space = 0; space < 9; space++) {
            const Propagate_Layout layout = Propagate_Layout_Make({-7, 5, width, 60}, space, 18);
            ASSERT_EQ(layout.down.x, -7 + space);
            ASSERT_EQ(layout.down.x + layout.down.width + space, layout.list.x);
            ASSERT_EQ(layout.list.x + layout.list.width + space, layout.up.x);
            ASSERT_LE(layout.up.x + layout.up.width + space, -7 + width);
            ASSERT_EQ(layout.list.width, 2 * layout.down.width);
        }
    }
}

TEST(Propagate_Geometry, a_host_box_too_narrow_gives_widths_that_are_not_drawn) {
    EXPECT_LE(Propagate_Layout_Make({0, 0, 5, 60}, 3, 18).list.width, 0);
}

TEST(Propagate_Geometry, the_height_is_row_space_and_title) {
    EXPECT_EQ(Propagate_Height(3, 18, 20), 41);
}

TEST(Propagate_Geometry, next_and_previous_need_two_frames_and_one_on_that_side) {
    for (int nb = 0; nb < 4; nb++) {
        for (int current = -1; current < 5; current++) {
            EXPECT_EQ(Propagate_Has_Next(nb, current), nb >= 2 && current < nb - 1) << nb << " " << current;
            EXPECT_EQ(Propagate_Has_Previous(nb, current), nb >= 2 && current > 0) << nb << " " << current;
        }
    }
}

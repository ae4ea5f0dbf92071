#include "tests/panels/brush_fixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

TEST_F(Brush_Panel, discs_and_outlines_stand_in_the_plain_the_hover_and_the_pressed_look) {
    Bring_Up();
    panel.Draw();
    Expect_Discs(sizes, COLOR_1, "plain");
    for (int i = 0; i < 4; i++) {
        Point_At_Button(i, 4);
        EXPECT_EQ(panel.Motion(0), 0);
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[1]), 0) << "hover " << i;
        EXPECT_EQ(panel.Motion(BRUSH_PRESS), 0);
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[2]), 0) << "pressed " << i;
        panel.Leave();
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[0]), 0) << "left " << i;
    }
}

TEST_F(Brush_Panel, discs_follow_any_sizes_and_any_place) {
    const std::vector<std::vector<int>> cases = {
        {0}, {1}, {0, 0}, {1, 5}, {255, 3, 128}, {65535, 1, 40000}, {7, 7, 7, 7, 7, 7, 7, 7}};
    for (const auto& one : cases) {
        for (int height : {13, 16, 37, 50}) {
            host_height = height;
            Brush_Host::Sizes(one);
            stage.Wipe();
            Lay_Out();
            panel.Draw();
            Expect_Discs(one, COLOR_1, "height " + std::to_string(height));
        }
    }
}

TEST_F(Brush_Panel, a_brush_of_size_0_shows_one_pixel_in_a_ring_of_eight) {
    Brush_Host::Sizes({0, 30});
    Lay_Out();
    panel.Draw();
    const auto shown = stage.Read();
    const int x = host_x + BRUSH_SPACE + Column_Width(2) / 2;
    const int y = host_y + BRUSH_SPACE + (host_height - 2 * BRUSH_SPACE) / 2;
    for (int dy = -2; dy <= 2; dy++) {
        for (int dx = -2; dx <= 2; dx++) {
            const int distance = std::max(std::abs(dx), std::abs(dy));
            const unsigned int expected = distance == 0 ? COLOR_1 : distance == 1 ? 0 : Grounds()[0];
            EXPECT_EQ(shown[stage.Index(x + dx, y + dy)], expected) << dx << ", " << dy;
        }
    }
}

TEST_F(Brush_Panel, tag_0_is_grey_and_others_show_the_high_bytes) {
    const std::array<unsigned int, 3> expected = {GREY, COLOR_1, COLOR_2};
    for (int tag : {0, 1, 2, 0}) {
        Variable_Set("$TAG_CUR", tag);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, expected[static_cast<std::size_t>(tag)], "TAG " + std::to_string(tag));
    }
}

TEST_F(Brush_Panel, a_missing_colour_table_gives_black_discs_until_it_is_there) {
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Variable_Undefine(name);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, 0, name);
        Variable_Define_Array(name, VARIABLE_UNSIGNED_16, 3);
        Brush_Host::Tag_Color(1, 0xC0FF, 0x8001, 0x40AA);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, COLOR_1, name);
    }
}

TEST_F(Brush_Panel, a_button_without_room_beyond_the_margin_stays_empty) {
    host_height = 2 * BRUSH_SPACE + 2 * BORDER + 4;
    Lay_Out();
    panel.Draw();
    const auto shown = stage.Read();
    for (int y = 0; y < host_height - 2 * BRUSH_SPACE; y++) {
        for (int x = 0; x < 4 * Column_Width(4); x++) {
            ASSERT_EQ(shown[stage.Index(host_x + BRUSH_SPACE + x, host_y + BRUSH_SPACE + y)], Grounds()[0]);
        }
    }
}

TEST_F(Brush_Panel, any_host_box_and_any_library_border_are_survived) {
    const short usual = BORDER;
    for (int border : {-32768, -40, -3, 0, 1, 9, 32767}) {
        BORDER = static_cast<short>(border);
        for (int width = -20; width < 90; width += 11) {
            for (int height = -20; height < 40; height += 3) {
                host_width = width;
                host_height = height;
                Lay_Out();
                panel.Draw();
                panel.Update(UPDATE_ALL);
            }
        }
        for (int space : {-32768, -5, 32767}) {
            Variable_Set("$INTERFACE_SPACE_DIM", space);
            host_width = 30;
            host_height = 30;
            Lay_Out();
            panel.Draw();
        }
        Variable_Set("$INTERFACE_SPACE_DIM", BRUSH_SPACE);
    }
    BORDER = usual;
}

#include <gtest/gtest.h>

#include "host/kit_graph.h"
#include "tests/kits/widgets/test_window.h"

namespace {

Boxs Plot_Box(HWND window) {
    Boxs box;
    box.x = 1;
    box.y = 2;
    box.width = 600;
    box.height = 400;
    box.Init(window);
    return box;
}

}  // namespace

TEST(Plot_Area, margins_follow_the_smaller_side) {
    const Test_Window window(640, 420, Window_Axis::Up);
    const Plot_Area area = Plot_Window_Area(Plot_Box(window.Get()), "GLI", "Pixels");
    // m = min(600 / 50, 400 / 50) = 8
    EXPECT_EQ(area.left, 1 + 16 + 40);
    EXPECT_EQ(area.width, 600 - 56 - 26);
    EXPECT_EQ(area.bottom, 2 + 24 + 35);
    EXPECT_EQ(area.height, 400 - 59 - 16);
}

TEST(Plot_Area, without_titles_the_bottom_margin_is_smaller) {
    const Test_Window window(640, 420, Window_Axis::Up);
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        const Plot_Area area = Plot_Window_Area(Plot_Box(window.Get()), none, none);
        EXPECT_EQ(area.bottom, 2 + 16 + 20);
        EXPECT_EQ(area.height, 400 - 36 - 16);
    }
    EXPECT_EQ(Plot_Window_Area(Plot_Box(window.Get()), nullptr, "Pixels").bottom, 2 + 59);
}

TEST(Plot_Area, reserved_rows_are_left_free_at_the_top) {
    const Test_Window window(640, 420, Window_Axis::Up);
    const Plot_Area area = Plot_Window_Area(Plot_Box(window.Get()), "GLI", "Pixels", 30);
    EXPECT_EQ(area.height, 400 - 59 - 46);
    EXPECT_EQ(area.bottom, 2 + 59);
    EXPECT_EQ(Plot_Window_Area(Plot_Box(window.Get()), "GLI", "Pixels", -9).height, 400 - 59 - 16);
}

TEST(Plot_Area, the_large_margin_is_at_the_visual_bottom_in_either_axis) {
    const Test_Window window(640, 420, Window_Axis::Down);
    const Plot_Area area = Plot_Window_Area(Plot_Box(window.Get()), "GLI", "Pixels", 30);
    EXPECT_EQ(area.bottom, 2 + 46);
    EXPECT_EQ(area.height, 400 - 59 - 46);
}

TEST(Plot_Area, small_boxes_have_none) {
    Boxs box;
    box.width = 40;
    box.height = 20;
    const Plot_Area area = Plot_Window_Area(box, "GLI", "Pixels");
    EXPECT_LE(area.width, 0);
    EXPECT_LE(area.height, 0);
}

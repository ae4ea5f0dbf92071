#include "workbench/model/window_beside.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

constexpr int TOOLS = 450;
constexpr Window_Place SCREEN = {0, 0, 1920, 1040, false};

void Expect_Inside(const Window_Place& place, const Window_Place& area) {
    EXPECT_GE(place.left, area.left);
    EXPECT_GE(place.top, area.top);
    EXPECT_LE(place.left + place.width, area.left + area.width);
    EXPECT_LE(place.top + place.height, area.top + area.height);
}

TEST(Window_Beside, it_stands_right_of_the_main_window_where_there_is_room) {
    const Window_Place place = Window_Beside({20, 60, 1000, 800, false}, TOOLS, 760, 420, SCREEN);
    EXPECT_EQ(place.left, 1020);
    EXPECT_EQ(place.top, 60);
    EXPECT_EQ(place.width, 760);
    EXPECT_EQ(place.height, 420);
}

TEST(Window_Beside, it_stands_left_of_the_main_window_where_only_there_is_room) {
    const Window_Place place = Window_Beside({900, 60, 1000, 800, false}, TOOLS, 760, 420, SCREEN);
    EXPECT_EQ(place.left, 140);
    EXPECT_EQ(place.width, 760);
}

TEST(Window_Beside, over_the_main_window_it_leaves_the_tools_free) {
    const Window_Place place = Window_Beside({0, 0, 1920, 1040, true}, TOOLS, 1100, 560, SCREEN);
    EXPECT_EQ(place.left, 820);
    EXPECT_EQ(place.top, 480);
    EXPECT_EQ(place.width, 1100);
}

TEST(Window_Beside, it_gets_narrower_rather_than_cover_the_tools) {
    const Window_Place screen = {0, 0, 1366, 728, false};
    const Window_Place place = Window_Beside({0, 0, 1366, 728, false}, TOOLS, 1100, 560, screen);
    EXPECT_EQ(place.left, TOOLS);
    EXPECT_EQ(place.width, 1366 - TOOLS);
}

TEST(Window_Beside, it_lies_on_the_screen_wherever_the_main_window_is) {
    const Window_Place second = {1920, 40, 1280, 980, false};
    for (int left = -3000; left <= 5000; left += 170) {
        for (int top = -900; top <= 2000; top += 190) {
            const Window_Place place = Window_Beside({left, top, 1320, 860, false}, TOOLS, 1100, 1200, second);
            Expect_Inside(place, second);
            EXPECT_GE(place.width, 320);
        }
    }
}

}  // namespace

// Where the enlarged window opens: beside its host, and on a screen that is there.
#include "histogram/blow_place.h"

#include <gtest/gtest.h>

namespace {

constexpr Blow_Place SCREEN = {0, 0, 1920, 1040};

TEST(Blow_Place, right_of_the_owner_where_there_is_room) {
    EXPECT_EQ(Blow_Place_Beside({100, 50, 1020, 700}, SCREEN), (Blow_Place{1120, 50, 800, 400}));
}

TEST(Blow_Place, left_of_the_owner_where_the_right_has_no_room) {
    EXPECT_EQ(Blow_Place_Beside({800, 50, 1020, 700}, SCREEN), (Blow_Place{0, 50, 800, 400}));
}

TEST(Blow_Place, in_the_lower_right_corner_where_no_side_has_room) {
    EXPECT_EQ(Blow_Place_Beside({0, 0, 1900, 1000}, SCREEN), (Blow_Place{1120, 640, 800, 400}));
}

TEST(Blow_Place, beside_an_owner_that_hangs_over_the_edge_it_is_moved_onto_the_screen) {
    EXPECT_EQ(Blow_Place_Beside({100, -60, 1020, 700}, SCREEN), (Blow_Place{1120, 0, 800, 400}));
    EXPECT_EQ(Blow_Place_Beside({100, 900, 1020, 700}, SCREEN), (Blow_Place{1120, 640, 800, 400}));
}

TEST(Blow_Place, on_a_screen_left_of_the_first_one_it_stays_there) {
    constexpr Blow_Place second = {-1920, 40, 1920, 1000};
    EXPECT_EQ(Blow_Place_Beside({-1900, 60, 900, 700}, second), (Blow_Place{-1000, 60, 800, 400}));
    EXPECT_EQ(Blow_Place_Inside({-2500, 0, 640, 480}, second), (Blow_Place{-1920, 40, 640, 480}));
}

TEST(Blow_Place, a_place_on_the_screen_is_not_touched) {
    EXPECT_EQ(Blow_Place_Inside({7, 9, 640, 480}, SCREEN), (Blow_Place{7, 9, 640, 480}));
    EXPECT_EQ(Blow_Place_Inside(SCREEN, SCREEN), SCREEN);
}

TEST(Blow_Place, a_small_screen_makes_it_smaller) {
    EXPECT_EQ(Blow_Place_Inside({500, 300, 3000, 2000}, {0, 0, 640, 480}), (Blow_Place{0, 0, 640, 480}));
    EXPECT_EQ(Blow_Place_Beside({0, 0, 640, 480}, {0, 0, 640, 360}), (Blow_Place{0, 0, 640, 360}));
}

TEST(Blow_Place, numbers_that_no_window_can_have_are_no_place) {
    EXPECT_TRUE((Blow_Place{-5000, -300, 1, 1}.Is_Place()));
    EXPECT_FALSE((Blow_Place{0, 0, 0, 400}.Is_Place()));
    EXPECT_FALSE((Blow_Place{0, 0, 800, -1}.Is_Place()));
    EXPECT_FALSE((Blow_Place{2147483647, 0, 800, 400}.Is_Place()));
    EXPECT_FALSE((Blow_Place{0, -2147483647, 800, 400}.Is_Place()));
    EXPECT_FALSE((Blow_Place{0, 0, 2147483647, 400}.Is_Place()));
}

}  // namespace

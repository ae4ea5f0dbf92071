#include "workbench/model/wheel_notches.h"

#include "base/wheel_remainder.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

using Deltas = std::vector<int>;

TEST(Wheel_Remainder, keeps_what_is_less_than_a_notch) {
    Wheel_Remainder wheel;
    EXPECT_EQ(wheel.Add(40), 0);
    EXPECT_EQ(wheel.Add(40), 0);
    EXPECT_EQ(wheel.Add(40), 1);
    EXPECT_EQ(wheel.Rest(), 0);
    EXPECT_EQ(wheel.Add(-40), 0);
    EXPECT_EQ(wheel.Add(-80), -1);
    EXPECT_EQ(wheel.Add(300), 2);
    EXPECT_EQ(wheel.Rest(), 60);
}

TEST(Wheel_Remainder, slow_turns_add_up_to_lines) {
    Wheel_Remainder wheel(3);
    EXPECT_EQ(wheel.Add(120), 3);
    EXPECT_EQ(wheel.Add(-240), -6);
    EXPECT_EQ(wheel.Add(30), 0) << "three quarters of a line";
    EXPECT_EQ(wheel.Add(30), 1);
    EXPECT_EQ(wheel.Add(-20), 0) << "the half that was left is used up first";
    int lines = 0;
    for (int turn = 0; turn < 120; ++turn) {
        lines += wheel.Add(-1);
    }
    EXPECT_EQ(lines, -3);
}

TEST(Wheel_Notches, a_single_notch_stays_one) {
    EXPECT_EQ(Wheel_Notches(120, false), Deltas{120});
    EXPECT_EQ(Wheel_Notches(-120, false), Deltas{-120});
}

TEST(Wheel_Notches, many_notches_are_told_one_by_one_and_the_rest_last) {
    EXPECT_EQ(Wheel_Notches(360, false), (Deltas{120, 120, 120}));
    EXPECT_EQ(Wheel_Notches(-300, false), (Deltas{-120, -120, -60}));
    EXPECT_EQ(Wheel_Notches(-1200, false), Deltas(10, -120));
}

TEST(Wheel_Notches, parts_of_a_notch_pass) {
    EXPECT_EQ(Wheel_Notches(30, false), Deltas{30});
    EXPECT_EQ(Wheel_Notches(0, false), Deltas{});
}

TEST(Wheel_Notches, turned_is_the_other_direction) {
    EXPECT_EQ(Wheel_Notches(120, true), Deltas{-120});
    EXPECT_EQ(Wheel_Notches(-300, true), (Deltas{120, 120, 60}));
    EXPECT_EQ(Wheel_Notches(-32768, true).size(), 274U);  // the largest that a message can hold
}

}  // namespace

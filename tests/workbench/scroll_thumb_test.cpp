#include "workbench/model/scroll_thumb.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

constexpr int LEAST = 24;

TEST(Scroll_Thumb, is_needed_only_when_the_content_is_higher) {
    EXPECT_FALSE((Scroll_Extent{500, 500, 0}.Is_Needed()));
    EXPECT_TRUE((Scroll_Extent{501, 500, 0}.Is_Needed()));
    EXPECT_FALSE((Scroll_Extent{500, 0, 0}.Is_Needed()));
    EXPECT_EQ((Scroll_Extent{400, 500, 9}.Offset_Max()), 0);
    const Scroll_Thumb all = Scroll_Thumb_Of({400, 500, 0}, LEAST);
    EXPECT_EQ(all.top, 0);
    EXPECT_EQ(all.length, 500) << "all of it is seen";
}

TEST(Scroll_Thumb, shows_the_share_and_the_place_of_what_is_seen) {
    const Scroll_Thumb first = Scroll_Thumb_Of({1000, 500, 0}, LEAST);
    EXPECT_EQ(first.top, 0);
    EXPECT_EQ(first.length, 250);
    const Scroll_Thumb last = Scroll_Thumb_Of({1000, 500, 500}, LEAST);
    EXPECT_EQ(last.top + last.length, 500) << "at the end";
    EXPECT_EQ(Scroll_Thumb_Of({1000, 500, 250}, LEAST).top, 125);
    EXPECT_EQ(Scroll_Thumb_Of({1000, 500, 9999}, LEAST).top, last.top) << "beyond the end";
    EXPECT_EQ(Scroll_Thumb_Of({1000, 500, -5}, LEAST).top, 0);
}

TEST(Scroll_Thumb, keeps_a_size_that_can_be_taken_hold_of) {
    const Scroll_Thumb long_content = Scroll_Thumb_Of({2'000'000'000, 500, 1'999'999'500}, LEAST);
    EXPECT_EQ(long_content.length, LEAST);
    EXPECT_EQ(long_content.top, 500 - LEAST);
    const Scroll_Thumb low = Scroll_Thumb_Of({1000, 10, 0}, LEAST);
    EXPECT_EQ(low.length, 10) << "not longer than its track";
    EXPECT_EQ(Scroll_Offset_Of({1000, 10, 0}, LEAST, 5), 0);
}

TEST(Scroll_Thumb, dragging_reaches_every_place_and_both_ends) {
    const Scroll_Extent extent = {1300, 500, 0};
    const int way = 500 - Scroll_Thumb_Of(extent, LEAST).length;
    EXPECT_EQ(Scroll_Offset_Of(extent, LEAST, 0), 0);
    EXPECT_EQ(Scroll_Offset_Of(extent, LEAST, way), 800);
    EXPECT_EQ(Scroll_Offset_Of(extent, LEAST, -40), 0);
    EXPECT_EQ(Scroll_Offset_Of(extent, LEAST, way + 40), 800);
    for (int top = 0; top <= way; ++top) {
        EXPECT_EQ(Scroll_Thumb_Of({1300, 500, Scroll_Offset_Of(extent, LEAST, top)}, LEAST).top, top);
    }
    EXPECT_EQ(Scroll_Offset_Of({400, 500, 0}, LEAST, 60), 0) << "nothing to scroll";
}

TEST(Scroll_Wheel, small_turns_add_up_to_what_a_notch_scrolls) {
    Scroll_Wheel wheel;
    int pixels = 0;
    for (int turn = 0; turn < WHEEL_NOTCH; ++turn) {
        pixels += wheel.Pixels(1, 48);
    }
    EXPECT_EQ(pixels, 48);
    EXPECT_EQ(wheel.Pixels(-WHEEL_NOTCH, 48), -48);
    EXPECT_EQ(wheel.Pixels(2 * WHEEL_NOTCH, 72), 144) << "another scale";
    EXPECT_EQ(wheel.Pixels(1, 72), 0);
    EXPECT_EQ(wheel.Pixels(1, 48), 0) << "the part of the other scale is gone";
}

}  // namespace

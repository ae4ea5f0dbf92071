#include "workbench/model/histogram_control.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

using Source = Histogram_Control::Source;

TEST(Histogram_Control, it_counts_all_frames_until_something_else_is_chosen) {
    Histogram_Control control;
    control.All_Take(30);
    EXPECT_EQ(control.Source_Now(), Source::All);
    EXPECT_EQ(control.Frames(), (Frame_Range{0, 29}));
    control.Range_Take({3, 7}, 30);
    EXPECT_EQ(control.Source_Now(), Source::Range);
    control.Range_Take({0, 29}, 30);
    EXPECT_EQ(control.Source_Now(), Source::All) << "a range of all frames";
}

TEST(Histogram_Control, only_that_of_the_shown_slice_follows_it) {
    Histogram_Control control;
    control.Shown_Take(4);
    EXPECT_TRUE(control.Slice_Follow(5));
    EXPECT_EQ(control.Frames(), (Frame_Range{5, 5}));
    control.Range_Take({3, 7}, 30);
    EXPECT_FALSE(control.Slice_Follow(6));
    EXPECT_EQ(control.Frames(), (Frame_Range{3, 7}));
    control.Shown_Take(4);
    control.Checked_Take();
    EXPECT_FALSE(control.Slice_Follow(6)) << "checked frames stay";
    EXPECT_EQ(control.Source_Now(), Source::Checked);
}

TEST(Histogram_Control, another_volume_counts_all_its_frames_unless_some_are_checked) {
    Histogram_Control control;
    control.Shown_Take(4);
    control.Volume_Follow(12, 40.0);
    EXPECT_EQ(control.Source_Now(), Source::All);
    EXPECT_EQ(control.Frames(), (Frame_Range{0, 11}));
    EXPECT_EQ(control.Background(), 40.0);
    control.Checked_Take();
    control.Volume_Follow(20, std::nullopt);
    EXPECT_EQ(control.Source_Now(), Source::Checked);
    EXPECT_FALSE(control.Background().has_value());
}

TEST(Histogram_Control, its_text_says_which_pixels_are_counted) {
    Histogram_Control control;
    EXPECT_EQ(control.Pixels_Text(3), "");
    control.Of_Tag_Set(true);
    control.Smoothed_Set(true);
    control.Background_Leave_Out(true);
    EXPECT_EQ(control.Pixels_Text(3), ", TAG 3 only, smoothed") << "no background is known";
    EXPECT_FALSE(control.Left_Out().has_value());
    control.Background_Set(12.5);
    EXPECT_EQ(control.Pixels_Text(3), ", TAG 3 only, smoothed, without background (up to 12.50)");
    EXPECT_EQ(control.Left_Out(), 12.5);
    EXPECT_TRUE(control.Plain_Take());
    EXPECT_FALSE(control.Plain_Take());
    EXPECT_EQ(control.Pixels_Text(3), "");
    EXPECT_EQ(control.Background(), 12.5) << "is known for the next time";
}

TEST(Frame_Range, it_is_read_as_it_is_written) {
    EXPECT_EQ(Frame_Range_Of("80-100", 150), (Frame_Range{79, 99}));
    EXPECT_EQ(Frame_Range_Of(" 80 - 100 ", 150), (Frame_Range{79, 99}));
    EXPECT_EQ(Frame_Range_Of("80 100", 150), (Frame_Range{79, 99}));
    EXPECT_EQ(Frame_Range_Of("7", 150), (Frame_Range{6, 6}));
    for (const char* text : {"", "0", "0-3", "9-3", "1-151", "151", "a", "3-b", "3-4x", "-", "99999999999"}) {
        EXPECT_FALSE(Frame_Range_Of(text, 150).has_value()) << text;
    }
}

}  // namespace

#include "histogram/peak_segments.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(Segments_Find, a_flat_curve_has_none) {
    const std::vector<float> derivative(50, 0.0F);
    EXPECT_EQ(Segments_Find(derivative).nb, 0);
}

TEST(Segments_Find, one_maximum_takes_the_whole_range) {
    std::vector<float> derivative(40, 0.0F);
    for (std::size_t i = 5; i < 35; ++i) {
        derivative[i] = i < 20 ? 1.0F : -1.0F;
    }
    const Segment_List list = Segments_Find(derivative);
    ASSERT_EQ(list.nb, 1);
    EXPECT_EQ(list.segment[0].centre, 19);
    EXPECT_EQ(list.segment[0].first, 0);
    EXPECT_EQ(list.segment[0].last, 39);
}

TEST(Segments_Find, a_valley_is_split_at_its_middle_and_the_lower_half_goes_left) {
    //                                   0  1  2   3   4  5  6  7  8  9  10  11
    const std::vector<float> derivative = {0, 1, 1, -1, -1, 0, 0, 0, 1, 1, -1, 0};
    const Segment_List list = Segments_Find(derivative);
    ASSERT_EQ(list.nb, 2);
    EXPECT_EQ(list.segment[0].centre, 2);
    EXPECT_EQ(list.segment[1].centre, 9);
    EXPECT_EQ(list.segment[0].last, 5) << "valley at 4, rise at 7: the middle of the two";
    EXPECT_EQ(list.segment[1].first, 6);
    EXPECT_EQ(list.segment[1].last, 11);
}

TEST(Segments_Find, segments_tile_the_range_without_gap_or_overlap) {
    std::vector<float> derivative(500);
    for (std::size_t i = 0; i < derivative.size(); ++i) {
        derivative[i] = static_cast<float>(static_cast<int>((i * 7919U) % 13U) - 6);
    }
    const Segment_List list = Segments_Find(derivative);
    ASSERT_GT(list.nb, 10);
    int next = 0;
    for (int j = 0; j < list.nb; ++j) {
        EXPECT_EQ(list.segment[static_cast<std::size_t>(j)].first, next);
        next = list.segment[static_cast<std::size_t>(j)].last + 1;
    }
    EXPECT_EQ(next, 500);
}

TEST(Segments_Find, stops_at_a_hundred_of_the_lowest_bins) {
    std::vector<float> derivative(1000);
    for (std::size_t i = 0; i < derivative.size(); ++i) {
        derivative[i] = i % 4 < 2 ? 1.0F : -1.0F;
    }
    const Segment_List list = Segments_Find(derivative);
    EXPECT_EQ(list.nb, SEGMENT_MAX);
    EXPECT_EQ(list.segment[99].centre, 99 * 4 + 1);
    EXPECT_EQ(list.segment[99].last, 999);
}

}  // namespace

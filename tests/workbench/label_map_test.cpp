#include "workbench/model/label_map.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

TEST(Label_Map, is_background_at_first) {
    const Label_Map map(4, 3, 2);
    EXPECT_EQ(map.Counts()[0], 24U);
    EXPECT_EQ(map.Highest_Tag(), 0);
    EXPECT_EQ(map.Slice_Size(), 12U);
}

TEST(Label_Map, an_empty_map_has_nothing) {
    const Label_Map map;
    EXPECT_EQ(map.Counts()[0], 0U);
    EXPECT_EQ(map.Highest_Tag(), 0);
    EXPECT_TRUE(map.Slice(0).empty());
    EXPECT_EQ(map.At(0, 0, 0), 0);
}

TEST(Label_Map, slices_lie_one_after_the_other) {
    Label_Map map(4, 3, 2);
    map.Slice(1)[5] = 7;
    EXPECT_EQ(map.All()[17], 7);
    EXPECT_EQ(map.At(1, 1, 1), 7);
    EXPECT_EQ(map.At(1, 1, 0), 0);
}

TEST(Label_Map, positions_outside_are_background_and_slices_outside_are_empty) {
    Label_Map map(4, 3, 2);
    for (std::uint8_t& tag : map.All()) {
        tag = 9;
    }
    EXPECT_EQ(map.At(-1, 0, 0), 0);
    EXPECT_EQ(map.At(4, 0, 0), 0);
    EXPECT_EQ(map.At(0, 3, 0), 0);
    EXPECT_EQ(map.At(0, 0, 2), 0);
    EXPECT_EQ(map.At(0, 0, -1), 0);
    EXPECT_EQ(map.At(3, 2, 1), 9);
    EXPECT_TRUE(map.Slice(-1).empty());
    EXPECT_TRUE(map.Slice(2).empty());
}

TEST(Label_Map, counts_every_voxel_once_whatever_the_size) {
    for (int width = 1; width < 9; ++width) {
        Label_Map map(width, 1, 1);
        for (int x = 0; x < width; ++x) {
            map.All()[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(x % 3 == 0 ? 255 : 1);
        }
        const auto counts = map.Counts();
        EXPECT_EQ(counts[255], static_cast<std::uint64_t>((width + 2) / 3));
        EXPECT_EQ(counts[1] + counts[255], static_cast<std::uint64_t>(width));
        EXPECT_EQ(map.Highest_Tag(), 255);
    }
}

TEST(Pixel_Rect, union_ignores_empty_ones) {
    const Pixel_Rect a = {1, 2, 3, 4};
    EXPECT_EQ(Rect_Union(a, {}), a);
    EXPECT_EQ(Rect_Union({}, a), a);
    EXPECT_EQ(Rect_Union(a, {5, 0, 6, 3}), (Pixel_Rect{1, 0, 6, 4}));
    EXPECT_TRUE(Rect_Common(a, {3, 2, 9, 9}).Is_Empty());
    EXPECT_EQ(Rect_Common(a, {2, 0, 9, 3}), (Pixel_Rect{2, 2, 3, 3}));
}

}  // namespace

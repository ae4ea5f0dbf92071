#include "workbench/model/marker_table.h"

#include <gtest/gtest.h>

#include <set>

using namespace workbench;

namespace {

TEST(Marker_Table, has_no_marker_placed_at_first) {
    const Marker_Table table;
    EXPECT_EQ(table.Placed_Nb(), 0);
    EXPECT_FALSE(table.Get(0).is_placed);
    EXPECT_FALSE(table.Near(0, 0, 0, 1000).has_value());
}

TEST(Marker_Table, refuses_indices_outside) {
    Marker_Table table;
    EXPECT_FALSE(table.Set(-1, {true, 1, 1, 1}));
    EXPECT_FALSE(table.Set(MARKER_NB, {true, 1, 1, 1}));
    EXPECT_FALSE(table.Get(MARKER_NB).is_placed);
    EXPECT_EQ(table.Placed_Nb(), 0);
}

TEST(Marker_Table, finds_the_nearest_marker_of_the_slice_within_reach) {
    Marker_Table table;
    table.Set(0, {true, 10, 10, 5});
    table.Set(1, {true, 14, 10, 5});
    table.Set(2, {true, 11, 10, 6});
    EXPECT_EQ(table.Near(11, 10, 5, 5), 0);
    EXPECT_EQ(table.Near(13, 10, 5, 5), 1);
    EXPECT_EQ(table.Near(10, 15, 5, 5), 0);
    EXPECT_FALSE(table.Near(10, 16, 5, 5).has_value());
    EXPECT_FALSE(table.Near(10, 10, 7, 5).has_value());
}

TEST(Marker_Table, of_two_markers_at_one_place_the_upper_one_is_meant) {
    Marker_Table table;
    table.Set(2, {true, 4, 4, 0});
    table.Set(5, {true, 4, 4, 0});
    EXPECT_EQ(table.Near(4, 4, 0, 3), 5);
}

TEST(Marker_Table, colors_differ) {
    std::set<std::uint32_t> colors;
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        colors.insert(Marker_Default_Color(marker));
    }
    EXPECT_EQ(colors.size(), static_cast<std::size_t>(MARKER_NB));
}

}  // namespace

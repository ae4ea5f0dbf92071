#include "workbench/model/marker_table.h"

#include <gtest/gtest.h>

#include <set>

using namespace workbench;

namespace {

TEST(Marker_Table, has_no_marker_placed_at_first) {
    const Marker_Table table;
    EXPECT_EQ(table.Placed_Nb(), 0);
    EXPECT_FALSE(table.Get(0).is_placed);
}

TEST(Marker_Table, refuses_indices_outside) {
    Marker_Table table;
    EXPECT_FALSE(table.Set(-1, {true, 1, 1, 1}));
    EXPECT_FALSE(table.Set(MARKER_NB, {true, 1, 1, 1}));
    EXPECT_FALSE(table.Get(MARKER_NB).is_placed);
    EXPECT_EQ(table.Placed_Nb(), 0);
}

TEST(Marker_Table, colors_differ) {
    std::set<std::uint32_t> colors;
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        colors.insert(Marker_Default_Color(marker));
    }
    EXPECT_EQ(colors.size(), static_cast<std::size_t>(MARKER_NB));
}

}  // namespace

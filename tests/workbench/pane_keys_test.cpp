#include "workbench/model/pane_keys.h"

#include <gtest/gtest.h>

#include <set>

#include "host/kit_widgets.h"

using namespace workbench;

namespace {

constexpr int COLUMNS = 4;

TEST(Pane_Keys, arrows_step_in_the_grid_and_stay_inside) {
    EXPECT_EQ(Grid_Step(5, 24, COLUMNS, KEY_RIGHT), 6);
    EXPECT_EQ(Grid_Step(5, 24, COLUMNS, KEY_LEFT), 4);
    EXPECT_EQ(Grid_Step(5, 24, COLUMNS, KEY_UP), 9);
    EXPECT_EQ(Grid_Step(5, 24, COLUMNS, KEY_DOWN), 1);
    EXPECT_EQ(Grid_Step(1, 24, COLUMNS, KEY_DOWN), 1);
    EXPECT_EQ(Grid_Step(22, 24, COLUMNS, KEY_UP), 22);
    EXPECT_EQ(Grid_Step(23, 24, COLUMNS, KEY_RIGHT), 23);
    EXPECT_EQ(Grid_Step(0, 24, COLUMNS, KEY_LEFT), 0);
    EXPECT_EQ(Grid_Step(7, 24, COLUMNS, KEY_HOME), 0);
    EXPECT_EQ(Grid_Step(7, 24, COLUMNS, KEY_END), 23);
}

TEST(Pane_Keys, other_keys_do_not_move) {
    for (const int key : {0, KEY_ENTER, KEY_TAB, static_cast<int>('a'), KEY_DELETE}) {
        EXPECT_FALSE(Grid_Step(5, 24, COLUMNS, key).has_value()) << key;
    }
    EXPECT_FALSE(Grid_Step(0, 0, COLUMNS, KEY_HOME).has_value());
}

TEST(Pane_Keys, a_current_outside_counts_as_the_nearest) {
    EXPECT_EQ(Grid_Step(-3, 8, COLUMNS, KEY_RIGHT), 1);
    EXPECT_EQ(Grid_Step(99, 8, COLUMNS, KEY_LEFT), 6);
}

TEST(Pane_Keys, every_place_is_reached_from_every_other) {
    for (int from = 0; from < 24; ++from) {
        std::set<int> reached = {from};
        for (bool grows = true; grows;) {
            std::set<int> next = reached;
            for (const int at : reached) {
                for (const int key : {KEY_LEFT, KEY_RIGHT, KEY_UP, KEY_DOWN}) {
                    next.insert(*Grid_Step(at, 24, COLUMNS, key));
                }
            }
            grows = next.size() > reached.size();
            reached = next;
        }
        EXPECT_EQ(reached.size(), 24U);
    }
}

}  // namespace

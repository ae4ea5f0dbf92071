#include "workbench/database/tree_keys.h"

#include <gtest/gtest.h>

#include <random>

#include "host/kit_widgets.h"

using namespace workbench;

namespace {

/** root { a { a1, a2 }, b, c { c1 { c11 } } } */
class Tree_Keys : public testing::Test {
  protected:
    Tree_Keys() {
        Add(0, 3, 7);
        Add(1, 2, 2);
        Add(2, 0, 0);
        Add(2, 0, 0);
        Add(1, 0, 0);
        Add(1, 1, 2);
        Add(2, 1, 1);
        Add(3, 0, 0);
    }
    void Add(int level, int child_nb, int desc_nb) {
        DB_List record{};
        record.level = static_cast<std::uint16_t>(level);
        record.child_nb = static_cast<std::uint16_t>(child_nb);
        record.desc_nb = static_cast<std::uint16_t>(desc_nb);
        record.flag = child_nb != 0 ? DB_FLAG_EXPANDED : DB_FLAG_LEAF;
        records.push_back(record);
    }
    void Close(int record) { records[static_cast<std::size_t>(record)].flag &= static_cast<std::uint16_t>(~1U); }
    int Nb() const { return static_cast<int>(records.size()); }
    Tree_Step Step(int current, int key, int page = 3) {
        return Tree_Key_Step(Nb(), records.data(), current, key, page);
    }
    std::vector<DB_List> records;
};

TEST_F(Tree_Keys, shown_rows_leave_out_what_is_collapsed) {
    EXPECT_EQ(Tree_Shown(Nb(), records.data()), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    Close(1);
    Close(6);
    EXPECT_EQ(Tree_Shown(Nb(), records.data()), (std::vector<int>{0, 1, 4, 5, 6}));
    Close(0);
    EXPECT_EQ(Tree_Shown(Nb(), records.data()), (std::vector<int>{0}));
    EXPECT_EQ(Tree_Shown(5, nullptr), std::vector<int>{});
}

TEST_F(Tree_Keys, up_and_down_walk_the_shown_rows_and_stop_at_the_ends) {
    Close(1);
    EXPECT_EQ(Step(1, KEY_DOWN).record, 4);
    EXPECT_EQ(Step(4, KEY_UP).record, 1);
    EXPECT_EQ(Step(0, KEY_UP).record, 0);
    EXPECT_EQ(Step(7, KEY_DOWN).record, 7);
    EXPECT_EQ(Step(0, KEY_PAGE_DOWN).record, 5);
    EXPECT_EQ(Step(7, KEY_PAGE_UP).record, 4);
    EXPECT_EQ(Step(4, KEY_HOME).record, 0);
    EXPECT_EQ(Step(4, KEY_END).record, 7);
}

TEST_F(Tree_Keys, left_closes_a_branch_then_goes_to_its_parent) {
    EXPECT_EQ(Step(6, KEY_LEFT).record, 6);
    EXPECT_TRUE(Step(6, KEY_LEFT).toggle);
    Close(6);
    EXPECT_EQ(Step(6, KEY_LEFT).record, 5);
    EXPECT_FALSE(Step(6, KEY_LEFT).toggle);
    EXPECT_EQ(Step(3, KEY_LEFT).record, 1);
    Close(0);
    EXPECT_EQ(Step(0, KEY_LEFT).record, 0);
}

TEST_F(Tree_Keys, right_opens_a_branch_then_goes_to_its_first_child) {
    EXPECT_EQ(Step(1, KEY_RIGHT).record, 2);
    EXPECT_FALSE(Step(1, KEY_RIGHT).toggle);
    Close(1);
    EXPECT_TRUE(Step(1, KEY_RIGHT).toggle);
    EXPECT_EQ(Step(2, KEY_RIGHT).record, 1) << "hidden: its branch is current, and opens";
    EXPECT_EQ(Step(4, KEY_RIGHT).record, 4);
    EXPECT_FALSE(Step(4, KEY_RIGHT).toggle);
}

TEST_F(Tree_Keys, without_a_current_record_the_first_key_enters_at_an_end) {
    EXPECT_EQ(Step(-1, KEY_DOWN).record, 0);
    EXPECT_EQ(Step(-1, KEY_UP).record, 7);
    EXPECT_EQ(Tree_Key_Step(0, nullptr, -1, KEY_DOWN, 3).record, -1);
    EXPECT_EQ(Step(500, KEY_DOWN).record, 7) << "a record that a rebuild took away";
}

TEST_F(Tree_Keys, scrolling_shows_the_row_and_moves_as_little_as_possible) {
    EXPECT_EQ(Tree_Scroll_To(2, 0.0F, 100), 0.0F);
    EXPECT_EQ(Tree_Scroll_To(10, 0.0F, 100), static_cast<float>(9 + 18 * 11 - 100));
    EXPECT_EQ(Tree_Scroll_To(10, 500.0F, 100), static_cast<float>(9 + 180));
    EXPECT_EQ(Tree_Scroll_To(0, 500.0F, 100), 0.0F);
    for (int row = 0; row < 50; ++row) {
        const float at = Tree_Scroll_To(row, 123.0F, 60);
        EXPECT_LE(at, static_cast<float>(Tree_Shown_Middle(row) - 9));
        EXPECT_GE(at + 60.0F, static_cast<float>(Tree_Shown_Middle(row) + 9));
    }
}

TEST_F(Tree_Keys, expanding_and_collapsing_everything_leaves_leaves_alone) {
    Tree_Expand_All(Nb(), records.data(), false);
    EXPECT_EQ(Tree_Shown(Nb(), records.data()), (std::vector<int>{0}));
    EXPECT_EQ(records[2].flag, DB_FLAG_LEAF);
    Tree_Expand_All(Nb(), records.data(), true);
    EXPECT_EQ(static_cast<int>(Tree_Shown(Nb(), records.data()).size()), Nb());
    EXPECT_EQ(records[2].flag, DB_FLAG_LEAF);
    Tree_Expand_All(3, nullptr, true);
}

}  // namespace

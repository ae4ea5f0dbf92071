#include "database/tree_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/database/tree_scene.h"

namespace {

// ---------------- rows of a tree

TEST(Tree_Walk, passes_over_the_subtree_of_a_collapsed_branch) {
    Tree_Scene tree;
    for (const int level : {0, 1, 2, 2, 1, 0}) {
        tree.Add(level);
    }
    tree.Finish();
    tree[1].flag = 0;
    std::vector<int> records;
    Tree_Walk walk(tree.Nb(), tree.Pt());
    for (; !walk.At_End(); walk.Next()) {
        records.push_back(walk.Record());
    }
    EXPECT_EQ(records, (std::vector<int>{0, 1, 4, 5}));
    EXPECT_EQ(walk.Row(), 4);
}

TEST(Tree_Walk, stays_inside_the_records_whatever_the_subtree_size_says) {
    Tree_Scene tree;
    for (int i = 0; i < 5; ++i) {
        tree.Add(i == 0 ? 0 : 1);
    }
    tree.Finish();
    tree[3].flag = 0;
    tree[3].desc_nb = 60000;
    EXPECT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), 4);
    EXPECT_EQ(tree[4].row, DB_ROW_NONE);
    tree[4].desc_nb = 65535;
    tree[4].flag = 0;
    tree[3].desc_nb = 0;
    EXPECT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), 5);
}

TEST(Tree_Walk, has_no_rows_without_records) {
    EXPECT_TRUE(Tree_Walk(7, nullptr).At_End());
    EXPECT_EQ(Tree_Rows_Number(7, nullptr), 0);
    EXPECT_EQ(Tree_Row_Find(7, nullptr, 0), -1);
    Tree_Range_Flip(7, nullptr, 0, 6);
    Tree_Uncheck(7, nullptr);
}

TEST(Tree_Rows, are_those_of_a_recursive_tree) {
    for (unsigned int seed = 1; seed <= 200; ++seed) {
        Tree_Scene tree;
        tree.Make_Random(seed, 1 + static_cast<int>(seed * 7 % 400), seed % 5 == 0 ? 300 : 9, 1 + seed % 6);
        for (DB_List& record : tree.rows) {
            record.row = 77;
        }
        const std::vector<int> order = Displayed_Records(tree.rows);
        ASSERT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), static_cast<int>(order.size()));
        std::vector<int> row_of(tree.rows.size(), DB_ROW_NONE);
        for (std::size_t row = 0; row < order.size(); ++row) {
            row_of[static_cast<std::size_t>(order[row])] = static_cast<int>(row);
        }
        for (int i = 0; i < tree.Nb(); ++i) {
            ASSERT_EQ(tree[i].row, row_of[static_cast<std::size_t>(i)]) << "seed " << seed << " record " << i;
        }
        for (int row = -1; row <= tree.Nb(); ++row) {
            const bool displayed = row >= 0 && row < static_cast<int>(order.size());
            ASSERT_EQ(Tree_Row_Find(tree.Nb(), tree.Pt(), row), displayed ? order[static_cast<std::size_t>(row)] : -1)
                << "seed " << seed << " row " << row;
        }
    }
}

TEST(Tree_Rows, are_those_of_a_recursive_tree_of_65535_records) {
    Tree_Scene tree;
    tree.Make_Random(11, 65535, 250, 40);
    const std::vector<int> order = Displayed_Records(tree.rows);
    ASSERT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), static_cast<int>(order.size()));
    ASSERT_GT(order.size(), 1000U);
    for (int row = 0; row < static_cast<int>(order.size()); ++row) {
        ASSERT_EQ(tree[order[static_cast<std::size_t>(row)]].row, row);
    }
    const int last = static_cast<int>(order.size()) - 1;
    EXPECT_EQ(Tree_Row_Find(tree.Nb(), tree.Pt(), last), order.back());
    EXPECT_EQ(std::count_if(tree.rows.begin(), tree.rows.end(),
                            [](const DB_List& record) { return record.row == DB_ROW_NONE; }),
              static_cast<std::ptrdiff_t>(tree.rows.size() - order.size()));
}

TEST(Tree_Rows, end_at_65535_but_are_counted_on) {
    Tree_Scene tree;
    for (int i = 0; i < 70000; ++i) {
        tree.Add(0);
    }
    tree.Finish();
    EXPECT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), 70000);
    EXPECT_EQ(tree[65534].row, 65534);
    EXPECT_EQ(tree[65535].row, DB_ROW_NONE);
    EXPECT_EQ(tree[69999].row, DB_ROW_NONE);
    EXPECT_EQ(Tree_Row_Find(tree.Nb(), tree.Pt(), 65534), 65534);
    EXPECT_EQ(Tree_Row_Find(tree.Nb(), tree.Pt(), 65535), -1);
    Tree_Uncheck(tree.Nb(), tree.Pt());
    Tree_Range_Flip(tree.Nb(), tree.Pt(), 65533, 69999);
    EXPECT_EQ(tree[65534].state, DB_STATE_CHECKED);
    EXPECT_EQ(tree[65535].state, DB_STATE_NONE);
}

TEST(Tree_Rows, survive_counts_that_wrapped) {
    Tree_Scene tree;
    tree.Add(0);
    for (int i = 0; i < 70000; ++i) {
        tree.Add(1);
    }
    tree.Finish();
    tree[0].flag = 0;
    EXPECT_EQ(tree[0].desc_nb, 70000 - 65536);
    EXPECT_EQ(Tree_Rows_Number(tree.Nb(), tree.Pt()), 1 + 65536);
}

// ---------------- ranges

/** The same by searching every row from the top. */
void Plain_Range_Flip(std::vector<DB_List>& rows, int a, int b) {
    for (int row = std::min(a, b); row <= std::max(a, b); ++row) {
        if (row < 0 || row >= static_cast<int>(rows.size())) {
            continue;
        }
        const auto shown = std::find_if(rows.begin(), rows.end(), [row](const DB_List& at) { return at.row == row; });
        if (shown == rows.end()) {
            return;
        }
        shown->state ^= DB_STATE_CHECKED;
        for (auto below = shown + 1; below != rows.end() && below->level > shown->level; ++below) {
            below->state = shown->state;
            row = std::max<int>(row, below->row);
        }
    }
}

TEST(Tree_Range, flips_what_a_search_for_every_row_flips) {
    std::mt19937 random(5);
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        Tree_Scene tree;
        tree.Make_Random(seed, 1 + static_cast<int>(seed % 150), seed % 4 == 0 ? 120 : 6, seed % 2 == 0 ? 1000 : 5);
        for (DB_List& record : tree.rows) {
            if (random() % 9 == 0) {
                record.state |= DB_STATE_NO_ACCESS;
            }
        }
        Tree_Rows_Number(tree.Nb(), tree.Pt());
        const int a = static_cast<int>(random() % 180) - 10;
        const int b = static_cast<int>(random() % 180) - 10;
        std::vector<DB_List> plain = tree.rows;
        Plain_Range_Flip(plain, a, b);
        Tree_Range_Flip(tree.Nb(), tree.Pt(), a, b);
        for (int i = 0; i < tree.Nb(); ++i) {
            ASSERT_EQ(tree[i].state, plain[static_cast<std::size_t>(i)].state)
                << "seed " << seed << " rows " << a << " to " << b << " record " << i;
        }
    }
}

TEST(Tree_Range, hands_the_whole_state_down_the_no_access_bit_included) {
    Tree_Scene tree;
    for (const int level : {0, 1, 2, 0}) {
        tree.Add(level);
    }
    tree.Finish();
    Tree_Rows_Number(tree.Nb(), tree.Pt());
    Tree_Uncheck(tree.Nb(), tree.Pt());
    tree[0].state = DB_STATE_NO_ACCESS;
    Tree_Range_Flip(tree.Nb(), tree.Pt(), 0, 0);
    EXPECT_EQ(tree[0].state, DB_STATE_NO_ACCESS | DB_STATE_CHECKED);
    EXPECT_EQ(tree[2].state, DB_STATE_NO_ACCESS | DB_STATE_CHECKED);
    EXPECT_EQ(tree[3].state, DB_STATE_NONE);
}

TEST(Tree_Range, ends_at_the_first_collapsed_branch_that_it_flips) {
    Tree_Scene tree;
    for (const int level : {0, 0, 1, 0, 0}) {
        tree.Add(level);
    }
    tree.Finish();
    tree[1].flag = 0;
    Tree_Uncheck(tree.Nb(), tree.Pt());
    Tree_Rows_Number(tree.Nb(), tree.Pt());
    Tree_Range_Flip(tree.Nb(), tree.Pt(), 3, 0);
    EXPECT_EQ(tree[0].state, DB_STATE_CHECKED);
    EXPECT_EQ(tree[1].state, DB_STATE_CHECKED);
    EXPECT_EQ(tree[2].state, DB_STATE_CHECKED);
    EXPECT_EQ(tree[3].state, DB_STATE_NONE);
    EXPECT_EQ(tree[4].state, DB_STATE_NONE);
}

TEST(Tree_Range, bears_rows_far_outside) {
    Tree_Scene tree;
    tree.Add(0);
    tree.Add(0);
    tree.Finish();
    Tree_Uncheck(tree.Nb(), tree.Pt());
    Tree_Rows_Number(tree.Nb(), tree.Pt());
    Tree_Range_Flip(tree.Nb(), tree.Pt(), std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
    EXPECT_EQ(tree[0].state, DB_STATE_CHECKED);
    EXPECT_EQ(tree[1].state, DB_STATE_CHECKED);
    Tree_Range_Flip(tree.Nb(), tree.Pt(), 5, 9);
    EXPECT_EQ(tree[1].state, DB_STATE_CHECKED);
}

TEST(Tree_Uncheck, keeps_the_other_bits) {
    Tree_Scene tree;
    tree.Add(0);
    tree[0].state = DB_STATE_NO_ACCESS | DB_STATE_CHECKED;
    Tree_Uncheck(tree.Nb(), tree.Pt());
    EXPECT_EQ(tree[0].state, DB_STATE_NO_ACCESS);
}

// ---------------- lines

TEST(Tree_Lines, go_on_below_whatever_is_not_the_last_child) {
    Tree_Lines lines;
    EXPECT_FALSE(lines.Goes_On(0));
    DB_List record = {};
    lines.Pass(record);
    EXPECT_TRUE(lines.Goes_On(0));
    record.level = 99;
    lines.Pass(record);
    EXPECT_TRUE(lines.Goes_On(99));
    record.flag = DB_FLAG_LAST;
    lines.Pass(record);
    EXPECT_FALSE(lines.Goes_On(99));
    EXPECT_TRUE(lines.Goes_On(0));
}

TEST(Tree_Lines, know_nothing_of_level_100_and_beyond) {
    Tree_Lines lines;
    DB_List record = {};
    for (const int level : {100, 101, 4000, 65535}) {
        record.level = static_cast<std::uint16_t>(level);
        lines.Pass(record);
        EXPECT_FALSE(lines.Goes_On(level));
    }
    EXPECT_FALSE(lines.Goes_On(99));
    EXPECT_FALSE(lines.Goes_On(-1));
}

// ---------------- positions

TEST(Tree_Positions, row_and_column_are_truncated_toward_zero) {
    EXPECT_EQ(Tree_Row_At(9), 0);
    EXPECT_EQ(Tree_Row_At(26), 0);
    EXPECT_EQ(Tree_Row_At(27), 1);
    EXPECT_EQ(Tree_Row_At(-8), 0);
    EXPECT_EQ(Tree_Row_At(-9), -1);
    EXPECT_EQ(Tree_Column_At(19), 0);
    EXPECT_EQ(Tree_Column_At(20), 1);
    EXPECT_EQ(Tree_Column_At(-19), 0);
    EXPECT_EQ(Tree_Column_At(-20), -1);
}

TEST(Tree_Positions, the_middle_line_of_a_row_lies_in_it) {
    for (int row = 0; row < 200; ++row) {
        EXPECT_EQ(Tree_Row_At(Tree_Row_Middle(row)), row);
    }
}

TEST(Tree_Positions, every_slider_position_becomes_a_number_of_pixels) {
    EXPECT_EQ(Tree_Pixels(17.9F), 17);
    EXPECT_EQ(Tree_Pixels(-0.9F), 0);
    EXPECT_EQ(Tree_Pixels(std::nanf("")), 0);
    EXPECT_EQ(Tree_Pixels(std::numeric_limits<float>::infinity()), 100000000);
    EXPECT_EQ(Tree_Pixels(-1.0e30F), -100000000);
}

TEST(Tree_Extents, say_whether_the_tree_fits_and_how_far_it_scrolls) {
    EXPECT_TRUE(Tree_Height_Extent(10, 180).fits);
    const Tree_Extent high = Tree_Height_Extent(11, 180);
    EXPECT_FALSE(high.fits);
    EXPECT_EQ(high.visible, 180);
    EXPECT_EQ(high.total, 216);  // one row more, so that the last one is seen completely
    EXPECT_EQ(high.Maximum(), 36);
    EXPECT_TRUE(Tree_Width_Extent(188, 6, 200).fits);
    const Tree_Extent wide = Tree_Width_Extent(189, 6, 200);
    EXPECT_FALSE(wide.fits);
    EXPECT_EQ(wide.Maximum(), 1);
}

}  // namespace

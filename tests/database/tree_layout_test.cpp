#include "database/tree_layout.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/database/tree_scene.h"
#include "tests/kits/common/failing_memory.h"

namespace {

constexpr int SPACE = 6;

class Letter_Measurer final : public Text_Measurer {
  public:
    int Width(Tree_Font font, const char* text) override {
        return static_cast<int>(std::strlen(text)) * (font == Tree_Font::Bold ? 10 : 7);
    }
    Fonts Fonts_Get() const override { return {this, this}; }
};

/** A tree of some thousand rows with levels that jump, branches that are collapsed, and last children. */
void Grow(Tree_Scene& tree, unsigned seed, int record_nb) {
    std::mt19937 random(seed);
    int level = 0;
    for (int i = 0; i < record_nb; ++i) {
        const std::string name(1 + random() % 30, 'n');
        tree.Add(level, random() % 3 == 0 ? nullptr : "title", name.c_str());
        level = static_cast<int>(random() % static_cast<unsigned>(level + 2));
        level = std::min(level, 6);
    }
    tree.Finish();
    for (DB_List& record : tree.rows) {
        if (random() % 20 == 0) {
            record.flag = static_cast<std::uint16_t>(record.flag & ~DB_FLAG_EXPANDED);
        }
    }
}

class Tree_Layout_Test : public testing::TestWithParam<unsigned> {
  protected:
    Tree_Layout_Test() { Grow(tree, GetParam(), 9000); }
    Tree_Layout Lay_Out() {
        return Tree_Lay_Out(tree.Nb(), tree.Pt(), SPACE, lists.Of(tree.Nb(), tree.Pt(), measurer.Fonts_Get()),
                            measurer);
    }
    std::vector<int> Rows_Of() const {
        std::vector<int> rows;
        for (const DB_List& record : tree.rows) {
            rows.push_back(record.row);
        }
        return rows;
    }

    Tree_Scene tree;
    Text_Width_Lists lists;
    Letter_Measurer measurer;
};

TEST_P(Tree_Layout_Test, finds_the_rows_and_the_width_that_passes_of_their_own_find) {
    const int row_nb = Tree_Rows_Number(tree.Nb(), tree.Pt());
    const int width =
        Tree_Width_Measure(tree.Nb(), tree.Pt(), SPACE, lists.Of(tree.Nb(), tree.Pt(), measurer.Fonts_Get()), measurer);
    const std::vector<int> rows = Rows_Of();
    for (DB_List& record : tree.rows) {
        record.row = 77;
    }
    const Tree_Layout layout = Lay_Out();
    EXPECT_EQ(layout.row_nb, row_nb);
    EXPECT_EQ(layout.width, width);
    EXPECT_EQ(Rows_Of(), rows);
}

TEST_P(Tree_Layout_Test, a_walk_from_a_start_meets_what_a_walk_from_the_top_meets) {
    const Tree_Layout layout = Lay_Out();
    ASSERT_GE(layout.starts.size(), 2U);
    Tree_Lines lines;
    int starts_met = 0;
    for (Tree_Walk walk(tree.Nb(), tree.Pt()); !walk.At_End(); walk.Next()) {
        const Tree_Start start = layout.Start_For(walk.Row());
        ASSERT_LE(start.row, walk.Row());
        if (start.row == walk.Row() && start.row != 0) {
            ++starts_met;
            ASSERT_EQ(start.record, walk.Record());
            for (int level = 0; level < 8; ++level) {
                ASSERT_EQ(start.lines.Goes_On(level), lines.Goes_On(level)) << "row " << start.row;
            }
        }
        ASSERT_LT(walk.Row() - start.row, 1024);
        lines.Pass(tree[walk.Record()]);
    }
    EXPECT_EQ(starts_met, static_cast<int>(layout.starts.size()));
}

INSTANTIATE_TEST_SUITE_P(Random_Trees, Tree_Layout_Test, testing::Values(1U, 2U, 3U));

TEST(Tree_Layout, the_first_rows_have_the_start_of_the_tree) {
    Tree_Layout layout;
    layout.starts.push_back({2000, 1024, {}});
    layout.starts.push_back({4000, 2048, {}});
    EXPECT_EQ(layout.Start_For(0).record, 0);
    EXPECT_EQ(layout.Start_For(1023).record, 0);
    EXPECT_EQ(layout.Start_For(1024).record, 2000);
    EXPECT_EQ(layout.Start_For(2047).record, 2000);
    EXPECT_EQ(layout.Start_For(1000000).record, 4000);
}

TEST(Tree_Layout, without_memory_every_record_has_its_row) {
    Tree_Scene tree;
    for (int i = 0; i < 3000; ++i) {
        tree.Add(0, "one", "two");
    }
    tree.Finish();
    std::int32_t column_x[2] = {-1, -1};
    tree[1500].column_nb = 2;
    tree[1500].column_x = column_x;
    Text_Width_Lists lists;
    Letter_Measurer measurer;
    const auto lay_out = [&] {
        return Tree_Lay_Out(tree.Nb(), tree.Pt(), SPACE, lists.Of(tree.Nb(), tree.Pt(), measurer.Fonts_Get()),
                            measurer);
    };
    const Tree_Layout whole = lay_out();
    ASSERT_EQ(whole.starts.size(), 2U);
    int without_columns = 0;
    const int failed = Fail_Each_Allocation([&] {
        for (DB_List& record : tree.rows) {
            record.row = 0;
        }
        const Tree_Layout layout = lay_out();
        EXPECT_EQ(layout.row_nb, 3000);
        EXPECT_EQ(tree[2999].row, 2999);
        EXPECT_TRUE(layout.width == whole.width || layout.width == 0);
        without_columns += layout.width == 0 ? 1 : 0;
    });
    EXPECT_GE(failed, 2);
    EXPECT_EQ(without_columns, 1);
}

}  // namespace

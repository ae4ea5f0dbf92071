#include "workbench/parts/focus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace workbench;

namespace {

class Focus_Of_Keys : public ::testing::Test {
  protected:
    std::vector<Pane> marked;
    std::vector<int> folded;
    std::string told;
    int cursor_ends = 0;
    bool is_database = false;
    Focus focus{{[this] { return is_database; }, [this](Pane pane) { marked.push_back(pane); },
                 [this] { ++cursor_ends; }, [this](int tool) { folded.push_back(tool); },
                 [this](const char* text) { told = text; }}};
};

TEST_F(Focus_Of_Keys, steps_go_round_and_leave_the_hidden_database_out) {
    for (int step = 0; step < 7; ++step) {
        focus.Focus_Step(1);
    }
    EXPECT_EQ(marked, (std::vector<Pane>{Pane::Image, Pane::Tag, Pane::Brush, Pane::Frames, Pane::Marker,
                                         Pane::Histogram, Pane::Image}));
    is_database = true;
    focus.Focus_Step(-1);
    EXPECT_EQ(focus.Now(), Pane::Database);
    EXPECT_EQ(told, "Database has the keyboard; Tab goes on");
    EXPECT_EQ(cursor_ends, 8);
}

TEST_F(Focus_Of_Keys, from_nothing_a_step_back_goes_to_the_last_part) {
    focus.Focus_Step(-1);
    EXPECT_EQ(focus.Now(), Pane::Histogram);
}

TEST_F(Focus_Of_Keys, when_it_leaves_every_part_nothing_is_told) {
    focus.Set(Pane::Tag);
    told.clear();
    focus.Set(Pane::None);
    EXPECT_EQ(marked.back(), Pane::None);
    EXPECT_EQ(told, "");
}

TEST_F(Focus_Of_Keys, only_a_marked_panel_of_the_tools_folds) {
    focus.Set(Pane::Image);
    focus.Panel_Fold();
    EXPECT_TRUE(folded.empty());
    EXPECT_EQ(told, "Tab marks a panel, X folds it");
    focus.Set(Pane::Tag);
    focus.Panel_Fold();
    focus.Set(Pane::Histogram);
    focus.Panel_Fold();
    EXPECT_EQ(folded, (std::vector<int>{0, 4}));
}

TEST(Focus, parts_with_keys_of_their_own_have_a_context) {
    EXPECT_EQ(Context_Of(Pane::Marker), Key_Context::Marker_Panel);
    EXPECT_EQ(Context_Of(Pane::Histogram), Key_Context::Histogram_Panel);
    EXPECT_EQ(Context_Of(Pane::Image), Key_Context::Window);
    EXPECT_EQ(Context_Of(Pane::None), Key_Context::Window);
}

}  // namespace

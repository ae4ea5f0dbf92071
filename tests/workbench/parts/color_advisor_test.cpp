#include "workbench/parts/color_advisor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace workbench;

namespace {

constexpr std::uint32_t RED = 0xE02020;
constexpr std::uint32_t NEARLY_RED = 0xE02222;
constexpr std::uint32_t BLUE = 0x2020E0;
constexpr std::uint32_t WHITE = 0xFFFFFF;

class Color_Advice : public ::testing::Test {
  protected:
    std::vector<std::uint32_t> colors = {0, RED, BLUE, NEARLY_RED, WHITE};
    std::vector<int> shown = {1, 2, 3, 4};
    std::vector<std::uint8_t> slice = {0, 1, 1, 2, 0};
    std::vector<bool> used = {true, true, true, false, false};
    std::string mark, told, asked;
    std::vector<std::string> choices;
    int answer = -1;
    int found = -1;
    int changes = 0;
    Color_Advisor advisor{{[this] { return colors; }, [this] { return shown; },
                           [this] { return std::span<const std::uint8_t>(slice); }, [this] { return used; },
                           [](int tag) { return tag == 1 ? std::string("K\xC3\xB6pf") : std::to_string(tag); },
                           [this](const std::string& text) { mark = text; },
                           [this](const std::string& text) { told = text; }, [this](int pairs) { found = pairs; },
                           [this](const std::vector<std::uint32_t>& wanted) {
                               colors = wanted;
                               ++changes;
                           },
                           [this](const std::string& text, const std::vector<std::string>& of) {
                               asked = text;
                               choices = of;
                               return answer;
                           }}};
};

TEST_F(Color_Advice, only_tags_that_the_slice_shows_are_compared) {
    advisor.Slice_Look();
    EXPECT_EQ(advisor.Alike_Nb(), 0);
    EXPECT_EQ(mark, "");
    slice.push_back(3);
    advisor.Slice_Look();
    EXPECT_EQ(advisor.Alike_Nb(), 1);
    EXPECT_TRUE(mark.starts_with("TAGs 1 and 3 look alike to ")) << mark;
    shown = {1, 2};
    advisor.Slice_Look();
    EXPECT_EQ(mark, "");
}

TEST_F(Color_Advice, a_further_look_names_the_tags_that_have_the_colours_now) {
    slice = {1, 3};
    advisor.Slice_Look();
    EXPECT_TRUE(mark.starts_with("TAGs 1 and 3 ")) << mark;
    colors = {0, RED, NEARLY_RED, BLUE, WHITE};
    slice = {1, 2};
    advisor.Slice_Look();
    EXPECT_TRUE(mark.starts_with("TAGs 1 and 2 ")) << mark;
    colors[2] = BLUE;
    advisor.Slice_Look();
    EXPECT_EQ(mark, "");
}

TEST_F(Color_Advice, without_an_image_there_is_no_mark) {
    mark = "old";
    slice.clear();
    advisor.Slice_Look();
    EXPECT_EQ(mark, "");
}

TEST_F(Color_Advice, alike_colours_are_listed_and_change_when_the_user_wants) {
    answer = 0;
    advisor.Colors_Check();
    EXPECT_NE(asked.find("  TAG 1 K\xC3\xB6pf and 3   "), std::string::npos) << asked;
    EXPECT_EQ(choices.size(), 1U) << "there are no former colours yet";
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(told, "1 TAG colours were changed; pairs that look alike: 0");
    EXPECT_EQ(colors[1], RED) << "the lower number keeps its colour";
    EXPECT_EQ(colors[2], BLUE);
    EXPECT_NE(colors[3], NEARLY_RED);
    // Nothing is alike any more: the only choice is to have the former colours back.
    advisor.Colors_Check();
    EXPECT_NE(asked.find("There are none: all 4 shown TAGs can be told apart."), std::string::npos) << asked;
    EXPECT_EQ(colors[3], NEARLY_RED);
    answer = -1;
    advisor.Colors_Check();
    EXPECT_EQ(choices.size(), 1U) << "they are no longer former";
    EXPECT_EQ(changes, 2);
}

TEST_F(Color_Advice, pairs_of_which_both_are_used_are_marked) {
    used[3] = true;
    advisor.Colors_Check();
    EXPECT_NE(asked.find("* TAG 1 "), std::string::npos) << asked;
    EXPECT_EQ(changes, 0) << "the user has only read";
}

TEST_F(Color_Advice, former_colours_of_other_labels_are_not_offered) {
    answer = 0;
    advisor.Colors_Check();
    advisor.Former_Forget();
    answer = -1;
    advisor.Colors_Check();
    EXPECT_TRUE(choices.empty());
}

}  // namespace

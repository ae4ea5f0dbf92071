#include "workbench/analysis/band_plan.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

std::vector<Peak_Row> Rows(int nb) {
    std::vector<Peak_Row> rows;
    for (int k = 0; k < nb; ++k) {
        Peak_Row row;
        row.number = k + 1;
        row.from = 10.0 * k;
        row.to = 10.0 * k + 8.0;
        rows.push_back(row);
    }
    return rows;
}

std::vector<int> Tags(const Band_Plan& plan) {
    std::vector<int> tags;
    for (const Band_Choice& choice : plan.Choices()) {
        tags.push_back(choice.tag);
    }
    return tags;
}

TEST(Band_Plan, proposes_tags_in_order_and_none_for_the_background) {
    EXPECT_EQ(Tags(Band_Plan(Rows(4), 0, 16)), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(Tags(Band_Plan(Rows(3), -1, 16)), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Tags(Band_Plan(Rows(5), -1, 4)), (std::vector<int>{1, 2, 3, 0, 0})) << "no more TAGs";
    const Band_Plan plan(Rows(2), 0, 16);
    EXPECT_EQ(plan.Choices()[1].peak, 2);
    EXPECT_EQ(plan.Choices()[1].from, 10.0);
    EXPECT_EQ(plan.Choices()[1].to, 18.0);
}

TEST(Band_Plan, a_tag_has_one_peak) {
    Band_Plan plan(Rows(3), -1, 16);
    plan.Tag_Set(2, 1);
    EXPECT_EQ(Tags(plan), (std::vector<int>{0, 2, 1}));
    plan.Tag_Set(1, 0);
    EXPECT_EQ(Tags(plan), (std::vector<int>{0, 0, 1})) << "none may be said more than once";
    plan.Tag_Set(0, 16);
    plan.Tag_Set(7, 3);
    plan.Tag_Set(0, -1);
    EXPECT_EQ(Tags(plan), (std::vector<int>{0, 0, 1})) << "there is no such TAG, no such peak";
}

TEST(Background_Peak, is_the_lowest_one_when_it_has_the_fullest_bin) {
    EXPECT_EQ(Background_Peak(Rows(3), 3.0), 0);
    EXPECT_EQ(Background_Peak(Rows(3), 13.0), -1) << "the fullest bin is tissue";
    EXPECT_EQ(Background_Peak(Rows(1), 3.0), -1) << "the only peak is not taken away";
    EXPECT_EQ(Background_Peak({}, 3.0), -1);
}

TEST(Band_Choice_Text, tells_what_would_be_overwritten) {
    const Band_Choice choice = {2, 12.345, 45.678, 3};
    EXPECT_EQ(Band_Choice_Text(choice, "Fluid", {}), "Peak 2   12.35 to 45.68   TAG 3 Fluid");
    EXPECT_EQ(Band_Choice_Text(choice, "Fluid", {true, 10.0, 0.00125}),
              "Peak 2   12.35 to 45.68   TAG 3 Fluid, now 10 to 0.001250");
    EXPECT_EQ(Band_Choice_Text({1, 0.0, 3.0, 0}, "", {true, 1.0, 2.0}), "Peak 1   0 to 3   no TAG");
}

}  // namespace

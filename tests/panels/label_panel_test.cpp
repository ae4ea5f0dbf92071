#include "panels/label_panel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

TEST(Label_Caption, is_the_label_or_the_number_where_there_is_none) {
    EXPECT_STREQ(Label_Caption_Of("Lung", 5).text, "Lung");
    EXPECT_STREQ(Label_Caption_Of("", 5).text, "");
    EXPECT_STREQ(Label_Caption_Of(nullptr, 5).text, "5");
}

TEST(Label_Caption, is_cut_within_its_80_bytes) {
    const std::string label(500, 'x');
    EXPECT_EQ(Label_Caption_Of(label.c_str(), 0).text, std::string(79, 'x'));
}

TEST(Label_Caption, replaces_only_a_different_one) {
    Buttons button;
    Label_Change change;
    Label_Caption_Show(button, Label_Caption_Of("Lung", 0), change);
    EXPECT_STREQ(button.name, "Lung");
    EXPECT_EQ(change.mask, Label_Change::REDRAW);
    Label_Change second;
    Label_Caption_Show(button, Label_Caption_Of("Lung", 0), second);
    EXPECT_EQ(second.mask, 0U);
    Label_Caption_Show(button, Label_Caption_Of("100 %s %n", 0), second);
    EXPECT_STREQ(button.name, "100 %s %n") << "a label is no format";
}

TEST(Label_Color, has_red_in_its_low_byte_and_ignores_the_high_one) {
    Buttons button;
    Label_Change change;
    Label_Color_Show(button, 0xFF302010, change);
    EXPECT_EQ(button.color.red, 0x10);
    EXPECT_EQ(button.color.green, 0x20);
    EXPECT_EQ(button.color.blue, 0x30);
    EXPECT_EQ(change.mask, Label_Change::INIT | Label_Change::REDRAW);
    Label_Change second;
    Label_Color_Show(button, 0x00302010, second);
    EXPECT_EQ(second.mask, 0U);
}

TEST(Label_Current, marks_one_button_among_those_asked_for) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Label_Change change;
    Label_Current_Show(grid, 8, 3, change);
    EXPECT_EQ(change.mask, Label_Change::MARK);
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(grid.Button(i).current, i == 3 ? 1 : 0);
    }
    Label_Change second;
    Label_Current_Show(grid, 8, 3, second);
    EXPECT_EQ(second.mask, 0U);
    Label_Current_Show(grid, 2, 1, second);
    EXPECT_EQ(grid.Button(3).current, 1) << "beyond those asked for";
}

namespace {
constexpr Label_Copy_Failure NO_FAILURE = {1, "source", "label"};
}  // namespace

TEST(Label_Replace, stores_a_copy_on_the_c_heap) {
    char* label = nullptr;
    std::string text = "Lung";
    EXPECT_TRUE(Label_Replace(&label, text.c_str(), NO_FAILURE));
    text = "gone";
    EXPECT_STREQ(label, "Lung");
    EXPECT_TRUE(Label_Replace(&label, "", NO_FAILURE));
    EXPECT_STREQ(label, "");
    std::free(label);
}

#include "tests/panels/brush_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

TEST_F(Brush_Panel, a_release_is_ignored_and_traced) {
    Bring_Up();
    Point_At_Button(2, 4);
    EXPECT_EQ(panel.Click(0), 0);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{"16 in Tool_Brush::Click(up_down=0x00000000)"});
    for (const int still_held : {0x10, 0x20, 0x40, 0x50, 0x70}) {
        EXPECT_EQ(panel.Click(still_held), 0) << still_held;
    }
    EXPECT_EQ(panel.Read(), NO_BRUSH);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, a_pick_answers_1_moves_the_mark_and_leaves_the_host_s_variable_alone) {
    Bring_Up();
    panel.Draw();
    const auto corner = [this](int i) {
        return stage.Read()[stage.Index(host_x + BRUSH_SPACE + i * Column_Width(4), host_y + BRUSH_SPACE)];
    };
    Quiet();
    Point_At_Button(2, 4);
    EXPECT_EQ(panel.Click(BRUSH_PRESS), 1);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{"16 in Tool_Brush::Click(up_down=0x00000012)"});
    EXPECT_EQ(panel.Read(), 2);
    EXPECT_EQ(corner(2), Grounds()[3]);
    Point_At_Button(1, 4);
    EXPECT_EQ(panel.Click(0x42), 1);
    EXPECT_EQ(panel.Read(), 1);
    EXPECT_EQ(corner(1), Grounds()[3]);
    EXPECT_NE(corner(2), Grounds()[3]);
    EXPECT_EQ(Variable_Number("$BRUSH_CUR", -1), NO_BRUSH);
}

TEST_F(Brush_Panel, a_pick_repaints_marks_only) {
    Bring_Up();
    Point_At_Button(0, 4);
    panel.Click(BRUSH_PRESS);
    Point_At_Button(3, 4);
    panel.Motion(0);
    Widget_Counters_Reset();
    panel.Click(BRUSH_PRESS);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 2U);
    EXPECT_EQ(Widget_Counters_Get().draws, 1U) << "the pressed look";
}

TEST_F(Brush_Panel, motion_answers_0_although_buttons_change_their_look) {
    Bring_Up();
    panel.Draw();
    const auto before = stage.Read();
    Widget_Counters_Reset();
    Point_At_Button(1, 4);
    EXPECT_EQ(panel.Motion(0), 0);
    EXPECT_NE(stage.Read(), before);
    EXPECT_EQ(Widget_Counters_Get().draws, 1U);
    panel.Leave();
    EXPECT_EQ(stage.Read(), before);
    Widget_Counters_Reset();
    panel.Leave();
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(Lines_Of(stage.Take_Messages()).size() == 1) << "Draw alone is traced";
}

TEST_F(Brush_Panel, keys_and_wheel_do_nothing) {
    Bring_Up();
    Point_At_Button(1, 4);
    for (int key : {13, 27, 97, 0x821, 0x825, 0x827, -1}) {
        EXPECT_EQ(panel.Keyboard(key), 0);
    }
    for (int notches : {-3, 0, 1, 100}) {
        EXPECT_EQ(panel.Scroll(notches), 1);
    }
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(stage.Take_Messages().empty());
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
}

TEST_F(Brush_Panel, drawing_sets_the_mark_of_the_current_brush_and_clears_no_other) {
    Bring_Up();
    const auto marked = [this](int i) {
        return stage.Read()[stage.Index(host_x + BRUSH_SPACE + i * Column_Width(4), host_y + BRUSH_SPACE)] ==
               Grounds()[3];
    };
    Variable_Set("$BRUSH_CUR", 2);
    panel.Draw();
    EXPECT_TRUE(marked(2));
    Variable_Set("$BRUSH_CUR", 3);
    panel.Draw();
    EXPECT_TRUE(marked(2));
    EXPECT_TRUE(marked(3));
    EXPECT_FALSE(marked(0));
    EXPECT_EQ(panel.Read(), NO_BRUSH) << "drawing announces nothing";
    EXPECT_EQ(stage.Take_Messages(), std::vector<Panel_Message>(2, {16, "in Tool_Brush::Draw()"}));
    Widget_Counters_Reset();
    panel.Draw();
    EXPECT_EQ(Widget_Counters_Get().draws, 5U) << "frame and four buttons";
}

// ---------------- notifications

TEST_F(Brush_Panel, of_all_64_flags_four_are_read) {
    constexpr int bit_all = 60;
    constexpr int bit_brush = 23;
    constexpr int bit_tag_cur = 22;
    constexpr int bit_tag_table = 38;
    for (int bit = 0; bit < 64; bit++) {
        Variable_Set("$BRUSH_CUR", NO_BRUSH);
        Variable_Set("$TAG_CUR", 1);
        Brush_Host::Sizes(sizes);
        Bring_Up();
        Brush_Host::Tag_Color(2, 0x10FF, 0xE0FF, bit << 8);
        Variable_Set("$BRUSH_CUR", 1);
        Variable_Set("$TAG_CUR", 2);
        Brush_Host::Sizes({2, 3, 9, 21});
        Quiet();
        panel.Update(1ULL << bit);
        const bool brush = bit == bit_all || bit == bit_brush;
        const bool color = brush || bit == bit_tag_cur || bit == bit_tag_table;
        EXPECT_EQ(panel.Read(), brush ? 1 : NO_BRUSH) << bit;
        const auto messages = Lines_Of(stage.Take_Messages());
        ASSERT_FALSE(messages.empty());
        EXPECT_EQ(messages[0], "16 in Tool_Brush::Update()");
        EXPECT_EQ(std::count(messages.begin(), messages.end(), "17 in Tool_Brush::Init()"), brush ? 1 : 0) << bit;
        EXPECT_EQ(std::count(messages.begin(), messages.end(), "17 in Tool_Brush::Set_Color()"), bit == bit_all ? 2
                                                                                                 : color        ? 1
                                                                                                                : 0)
            << bit;
        if (!color) {
            EXPECT_EQ(messages.size(), 1U) << bit;
            EXPECT_EQ(Painted(), 0U) << bit;
            EXPECT_EQ(Variable_Look_Ups(nullptr), 0U) << bit;
        }
    }
    Quiet();
    panel.Update(0);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, the_announced_brush_moves_the_mark_by_two_adjustments) {
    Bring_Up();
    Variable_Set("$BRUSH_CUR", 3);
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(panel.Read(), 3);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 1U) << "the former index had no button";
    Variable_Set("$BRUSH_CUR", 0);
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 3U);
    Quiet();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, an_announced_index_without_a_button_is_kept_and_marks_nothing) {
    for (int index : {4, 7, 8, 9, 300, 65535}) {
        Bring_Up();
        Variable_Set("$BRUSH_CUR", index);
        panel.Update(UPDATE_BRUSH);
        EXPECT_EQ(panel.Read(), index);
        panel.Draw();
        Expect_Discs(sizes, COLOR_1, "index " + std::to_string(index));
    }
}

TEST_F(Brush_Panel, only_a_change_of_tag_is_remembered_as_one) {
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    const auto recoloured = [this](unsigned __int64 flags) {
        Quiet();
        panel.Update(flags);
        const auto messages = stage.Take_Messages();
        return std::count(messages.begin(), messages.end(), Panel_Message{17, "in Tool_Brush::Set_Color()"});
    };
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 1) << "laying out in that colour does not count";
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 0);
    Variable_Set("$TAG_CUR", 2);
    EXPECT_EQ(recoloured(UPDATE_ALL), 1) << "everything recolours without remembering";
    EXPECT_EQ(recoloured(UPDATE_TAG_TABLE), 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 0);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR | UPDATE_TAG_TABLE), 1);
    Variable_Set("$TAG_CUR", 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR | UPDATE_ALL), 2);
}

TEST_F(Brush_Panel, a_new_colour_shows_at_once_and_keeps_the_outline) {
    Bring_Up();
    panel.Draw();
    Variable_Set("$TAG_CUR", 2);
    panel.Update(UPDATE_TAG_CUR);
    Expect_Discs(sizes, COLOR_2, "another TAG");
    Brush_Host::Tag_Color(2, 0x77FF, 0x0000, 0xFFFF);
    panel.Update(UPDATE_TAG_TABLE);
    Expect_Discs(sizes, 0x7700FF, "another colour");
    Variable_Set("$TAG_CUR", 0);
    panel.Update(UPDATE_TAG_CUR);
    Expect_Discs(sizes, GREY, "background");
    const auto updated = stage.Read();
    stage.Wipe();
    Lay_Out();
    panel.Draw();
    EXPECT_EQ(stage.Read(), updated);
}

TEST_F(Brush_Panel, recolouring_takes_a_button_out_of_its_hover_look) {
    Bring_Up();
    panel.Draw();
    Point_At_Button(1, 4);
    panel.Motion(0);
    Variable_Set("$TAG_CUR", 2);
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(Wrong_Pixels(1, sizes, COLOR_2, Grounds()[0]), 0);
}

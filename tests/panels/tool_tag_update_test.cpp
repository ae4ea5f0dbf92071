// What Update takes over and what it paints: fields through pixels, the kind of painting through the widgets' counters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "panels/tool_tag.h"
#include "tests/panels/label_scene.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int NB = 20;        ///< all in view
constexpr int SCROLLED = 48;  ///< needs the slider

constexpr unsigned __int64 TESTED[] = {UPDATE_TAG_ENABLE, UPDATE_TAG_SELECT, UPDATE_TAG_LOCK,
                                       UPDATE_TAG_CUR,    UPDATE_TAG_LABEL,  UPDATE_TAG_TABLE};

class Tag_Update : public Tag_Fixture {
  protected:
    void Lay_Out(int nb, unsigned short option = TAG_GREY_SELECTION) {
        Define_Tags(nb);
        panel.Flag(option);
        Boxs box = Place();
        box.style |= STYLE_SHOW_CHECK;
        panel.Resize(&box);
        panel.Update(UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR | UPDATE_TAG_LABEL);
        panel.Draw();
        model = Fresh_Model(box, nb);
        model.look[1].current = 1;
        Quiet();
    }
    Label_Look& Look(int tag) { return model.look[static_cast<std::size_t>(tag)]; }
    /** Update painted in these ways, and what the window shows then is what a fresh Draw shows and what the model says.
     */
    void Expect_Update(unsigned __int64 flags, unsigned int draws, unsigned int adjusts, unsigned int clears,
                       const char* when) {
        Take_Counters();
        panel.Update(flags);
        const Widget_Counters painted = Take_Counters();
        EXPECT_EQ(painted.draws, draws) << when;
        EXPECT_EQ(painted.adjusts, adjusts) << when;
        EXPECT_EQ(painted.clears, clears) << when;
        EXPECT_EQ(Wrong_Pixels(model), 0) << when << ": after Update";
        panel.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << when << ": after Draw";
        Take_Counters();
        panel.Update(flags & ~UPDATE_TAG_TABLE);
        EXPECT_EQ(Painted(), 0U) << when << ": a second time";
    }
    unsigned int Painted() {
        const Widget_Counters painted = Take_Counters();
        return painted.draws + painted.adjusts + painted.clears;
    }

    Tool_Tag panel;
    Label_Model model;
};

}  // namespace

TEST_F(Tag_Update, flags_that_the_panel_does_not_test_do_nothing_one_by_one) {
    Lay_Out(NB, 0x1333);
    Flags("$TAG_ENABLE")[5] = 0;
    Flags("$TAG_SELECT")[5] = 0;
    Flags("$TAG_LOCK")[5] = 1;
    Variable_Set_Array_Text("$TAG_LABEL", 5, "other");
    Set_Color(5, 0x123456);
    Variable_Set("$TAG_CUR", 5);
    for (int bit = 0; bit < 64; bit++) {
        const unsigned __int64 flag = 1ULL << bit;
        if (std::find(std::begin(TESTED), std::end(TESTED), flag) != std::end(TESTED)) {
            continue;
        }
        Quiet();
        panel.Update(flag);
        const Widget_Counters painted = Take_Counters();
        EXPECT_EQ(painted.draws + painted.adjusts + painted.clears + painted.inits, 0U) << "bit " << bit;
        EXPECT_EQ(panel.Read(), 1) << "bit " << bit;
        EXPECT_THAT(messages.Take(), ElementsAre(Panel_Message{16, "in Tool_Tag::Update()"}));
        EXPECT_THAT(requests.Take(), IsEmpty());
    }
    panel.Update(0);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Tag_Update, nothing_changed_paints_nothing) {
    Lay_Out(NB, TAG_CHECK_ENABLE | TAG_GREY_DISABLED | TAG_GREY_SELECTION | TAG_THRESHOLD_MODE);
    for (const unsigned __int64 flag : TESTED) {
        panel.Update(flag);
        EXPECT_EQ(Painted(), 0U) << std::hex << flag;
    }
    Lay_Out(SCROLLED);
    panel.Update(UPDATE_TAG_TABLE);
    EXPECT_EQ(Painted(), 1U) << "the slider is drawn with every table";
}

TEST_F(Tag_Update, another_current_tag_repaints_marks_only) {
    Lay_Out(NB);
    Variable_Set("$TAG_CUR", 13);
    Look(1).current = 0;
    Look(13).current = 1;
    Expect_Update(UPDATE_TAG_CUR, 0, NB, 0, "current");
    EXPECT_EQ(panel.Read(), 13);
}

TEST_F(Tag_Update, tag_0_is_a_current_tag_like_any_other) {
    Lay_Out(NB);
    Variable_Set("$TAG_CUR", 0);
    Look(1).current = 0;
    Look(0).current = 1;
    Expect_Update(UPDATE_TAG_CUR, 0, NB, 0, "background");
    EXPECT_EQ(panel.Read(), 0);
}

TEST_F(Tag_Update, a_current_tag_out_of_view_is_kept_for_the_scroll_that_shows_it) {
    Lay_Out(SCROLLED);
    Variable_Set("$TAG_CUR", 47);
    panel.Update(UPDATE_TAG_CUR);
    panel.Scroll(1000);
    Point_Away();
    model.scroll = 0;
    Look(1).current = 0;
    Look(47).current = 1;
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Update, check_marks_follow_the_array_that_the_option_word_names) {
    const struct {
        unsigned short option;
        unsigned __int64 flag;
        const char* variable;
        unsigned char usual;
    } cases[] = {{TAG_CHECK_ENABLE, UPDATE_TAG_ENABLE, "$TAG_ENABLE", 1},
                 {TAG_CHECK_SELECT, UPDATE_TAG_SELECT, "$TAG_SELECT", 1},
                 {TAG_CHECK_LOCK, UPDATE_TAG_LOCK, "$TAG_LOCK", 0}};
    for (const auto& one : cases) {
        Lay_Out(NB, one.option);
        for (Label_Look& look : model.look) {
            look.checked = one.usual;
        }
        EXPECT_EQ(Wrong_Pixels(model), 0) << one.variable;
        Flags(one.variable)[6] = one.usual != 0 ? 0 : 200;
        Look(6).checked = one.usual != 0 ? 0 : 1;
        Expect_Update(one.flag, 0, NB, 0, one.variable);
        // Without its option the array shows nowhere.
        panel.Flag(0);
        Flags(one.variable)[7] = one.usual != 0 ? 0 : 1;
        Expect_Update(one.flag, 0, 0, 0, "no option");
    }
}

TEST_F(Tag_Update, greying_clears_the_background_and_bringing_back_does_not) {
    const struct {
        unsigned short option;
        unsigned __int64 flag;
        const char* variable;
        unsigned char greyed;
    } cases[] = {{TAG_GREY_DISABLED, UPDATE_TAG_ENABLE, "$TAG_ENABLE", 0},
                 {TAG_GREY_SELECTION, UPDATE_TAG_SELECT, "$TAG_SELECT", 0},
                 {TAG_GREY_SELECTION, UPDATE_TAG_LOCK, "$TAG_LOCK", 1}};
    for (const auto& one : cases) {
        Lay_Out(NB, one.option);
        Flags(one.variable)[6] = one.greyed;
        Look(6).style |= STYLE_INACTIVE;
        Expect_Update(one.flag, NB, 0, NB, one.variable);
        Flags(one.variable)[6] = one.greyed != 0 ? 0 : 7;
        Look(6).style &= ~STYLE_INACTIVE;
        Expect_Update(one.flag, NB, 0, 0, one.variable);
    }
}

TEST_F(Tag_Update, of_selection_and_lock_the_later_step_decides_about_greying) {
    Lay_Out(NB, TAG_GREY_SELECTION);
    Flags("$TAG_SELECT")[6] = 0;  // greyed by the selection, brought back by the lock
    Flags("$TAG_LOCK")[7] = 1;    // left alone by the selection, greyed by the lock
    Look(7).style |= STYLE_INACTIVE;
    panel.Update(UPDATE_TAG_SELECT | UPDATE_TAG_LOCK);
    EXPECT_EQ(Wrong_Pixels(model), 0);
    panel.Update(UPDATE_TAG_SELECT);
    Look(6).style |= STYLE_INACTIVE;
    Look(7).style &= ~STYLE_INACTIVE;
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Update, one_button_may_show_check_mark_and_greying_by_different_arrays) {
    Lay_Out(NB, TAG_CHECK_LOCK | TAG_GREY_DISABLED);
    Flags("$TAG_LOCK")[6] = 1;
    Flags("$TAG_ENABLE")[6] = 0;
    Look(6).checked = 1;
    Look(6).style |= STYLE_INACTIVE;
    Expect_Update(UPDATE_TAG_LOCK | UPDATE_TAG_ENABLE, NB, 0, NB, "both");
}

TEST_F(Tag_Update, another_label_redraws) {
    Lay_Out(NB);
    Variable_Set_Array_Text("$TAG_LABEL", 6, "Lung");
    Variable_Set_Array_Text("$TAG_LABEL", 7, nullptr);
    Look(6).caption = "Lung";
    Look(7).caption = "7";
    Expect_Update(UPDATE_TAG_LABEL, NB, 0, 0, "labels");
}

TEST_F(Tag_Update, a_label_beyond_39_characters_shows_its_beginning_and_is_redrawn_every_time) {
    Lay_Out(NB);
    const std::string whole = "0123456789012345678901234567890123456789" + std::string(100, 'x');
    Variable_Set_Array_Text("$TAG_LABEL", 6, whole.c_str());
    Look(6).caption = whole.substr(0, 39);
    for (int time = 0; time < 2; time++) {
        Take_Counters();
        panel.Update(UPDATE_TAG_LABEL);
        EXPECT_EQ(Painted(), static_cast<unsigned int>(NB));
        EXPECT_EQ(Wrong_Pixels(model), 0);
    }
}

TEST_F(Tag_Update, in_threshold_mode_labels_are_thresholds_and_empty_without_them) {
    Lay_Out(NB, TAG_THRESHOLD_MODE);
    for (int tag = 0; tag < NB; tag++) {
        Look(tag).caption = std::to_string(tag * 10 - 20);
    }
    EXPECT_EQ(Wrong_Pixels(model), 0);
    Thresholds()[6] = 1234.6F;
    Look(6).caption = "1235";
    Expect_Update(UPDATE_TAG_LABEL, NB, 0, 0, "threshold");
    Variable_Undefine("$TAG_THRESHOLD_MIN");
    for (Label_Look& look : model.look) {
        look.caption = "";
    }
    Expect_Update(UPDATE_TAG_LABEL, NB, 0, 0, "no thresholds");
}

TEST_F(Tag_Update, another_colour_makes_the_buttons_anew) {
    Lay_Out(NB);
    Set_Color(6, 0x3080F0);
    Look(6).color = 0x3080F0;
    Take_Counters();
    Expect_Update(UPDATE_TAG_TABLE, NB, 0, 0, "colour");
    Set_Color(0, 0x00FF00);
    Expect_Update(UPDATE_TAG_TABLE, 0, 0, 0, "TAG 0 is grey whatever the arrays say");
    auto* red = static_cast<std::uint16_t*>(Variable_Array("$TAG_RED", VARIABLE_UNSIGNED_16, nullptr));
    red[6] ^= 0xFFU;
    Expect_Update(UPDATE_TAG_TABLE, 0, 0, 0, "the low byte does not show");
}

TEST_F(Tag_Update, a_table_scrolls_to_its_bottom) {
    Lay_Out(SCROLLED);
    panel.Scroll(1000);
    panel.Update(UPDATE_TAG_TABLE);
    window.Wipe();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Update, tags_that_a_table_brings_are_drawn_picked_and_edited_at_once) {
    constexpr unsigned __int64 everything =
        UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR | UPDATE_TAG_LABEL | UPDATE_TAG_TABLE;
    Lay_Out(8);
    Change_Count(NB);
    panel.Update(everything);
    panel.Draw();
    Boxs box = Place();
    box.style |= STYLE_SHOW_CHECK;
    model = Fresh_Model(box, NB);
    model.look[1].current = 1;
    EXPECT_EQ(Wrong_Pixels(model), 0);
    for (int tag = 0; tag < NB; tag++) {
        EXPECT_EQ(Press_Label(panel, model, tag), tag);
    }
    Open_Editor(panel, model, NB - 1);
    Type(panel, "brought");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[NB - 1], "brought");
}

TEST_F(Tag_Update, tags_that_had_no_row_are_there_once_a_smaller_table_gives_them_one) {
    Lay_Out(7);  // TAGs 3 to 6
    Change_Count(4);
    panel.Update(UPDATE_TAG_TABLE | UPDATE_TAG_LABEL | UPDATE_TAG_CUR);
    panel.Draw();
    Boxs box = Place();
    box.style |= STYLE_SHOW_CHECK;
    model = Fresh_Model(box, 4);
    model.look[1].current = 1;
    EXPECT_EQ(Wrong_Pixels(model), 0);
    for (int tag = 0; tag < 4; tag++) {
        EXPECT_EQ(Press_Label(panel, model, tag), tag);
    }
}

TEST_F(Tag_Update, a_tag_whose_edit_ended_while_it_was_gone_comes_back_as_a_plain_button) {
    Lay_Out(8);
    Open_Editor(panel, model, 7);
    Change_Count(4);
    panel.Update(UPDATE_TAG_TABLE);
    Point_Away();
    panel.Leave();  // ends the edit of a TAG that the table no longer has
    Change_Count(8);
    panel.Update(UPDATE_TAG_TABLE);
    panel.Leave();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(model), 0);
    EXPECT_EQ(Press_Label(panel, model, 7), 7);
    EXPECT_EQ(Open_Editor(panel, model, 7), -1);
    Type(panel, "back");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[7], "back");
}

TEST_F(Tag_Update, a_panel_that_moved_to_another_window_paints_nothing_into_the_former_one) {
    Lay_Out(NB);
    Define_Tags(8);
    Panel_Window second(Window_Axis::Down, WINDOW_WIDTH, WINDOW_HEIGHT);
    Boxs box = Place();
    box.window = second.Get();
    panel.Resize(&box);
    panel.Draw();
    window.Wipe();
    const Window_Picture wiped = Pixels();
    Change_Count(NB);
    panel.Update(UPDATE_TAG_TABLE | UPDATE_TAG_LABEL);
    panel.Draw();
    second.Point_At(model.X(NB - 1) + 5, model.Y(NB - 1) + 5);
    EXPECT_EQ(panel.Motion(HOVER), 0);
    EXPECT_EQ(panel.Click(LEFT_PRESS), NB - 1);
    panel.Scroll(1);
    panel.Leave();
    EXPECT_TRUE(Pixels().pixels == wiped.pixels);
}

TEST_F(Tag_Update, a_longer_table_brings_the_slider_and_leaves_the_grid_where_it_was) {
    Lay_Out(NB);
    const Label_Model short_table = model;
    Change_Count(SCROLLED);
    panel.Update(UPDATE_TAG_TABLE | UPDATE_TAG_LABEL);
    Label_Model long_table = Fresh_Model(model.host, SCROLLED);
    long_table.grid_x = short_table.grid_x;  // until the next Resize
    long_table.grid_width = short_table.grid_width;
    for (int tag = 0; tag < SCROLLED; tag++) {
        EXPECT_EQ(long_table.Is_Visible(tag), tag < NB) << tag;
    }
    for (const int tag : {1, 7, 19}) {
        // Right of the slider, which covers the first pixels of the grid.
        EXPECT_EQ(Press_Label(panel, long_table, tag), tag);
    }
    // And back: no slider again.
    Change_Count(8);
    panel.Update(UPDATE_TAG_TABLE);
    panel.Leave();
    window.Wipe();
    panel.Draw();
    Label_Model back = Fresh_Model(model.host, 8);
    back.look[1].current = 1;
    EXPECT_EQ(Wrong_Pixels(back), 0);
}

TEST_F(Tag_Update, a_change_of_marks_together_with_a_table_shows_with_the_next_draw) {
    Lay_Out(NB);
    Variable_Set("$TAG_CUR", 6);
    panel.Update(UPDATE_TAG_CUR | UPDATE_TAG_TABLE);
    EXPECT_EQ(Painted(), 0U) << "neither marks only nor a redraw";
    Look(1).current = 0;
    Look(6).current = 1;
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Update, a_missing_array_ends_the_update_at_its_step_without_painting) {
    const struct {
        const char* variable;
        int steps_done;  // of current, label, table
    } cases[] = {{"$TAG_ENABLE", 0}, {"$TAG_SELECT", 0}, {"$TAG_LOCK", 0}, {"$TAG_LABEL", 1},
                 {"$TAG_RED", 2},    {"$TAG_GRN", 2},    {"$TAG_BLU", 2}};
    for (const auto& one : cases) {
        Lay_Out(NB, TAG_CHECK_SELECT);
        for (Label_Look& look : model.look) {
            look.checked = 1;
        }
        Variable_Set("$TAG_CUR", 6);
        Variable_Set_Array_Text("$TAG_LABEL", 6, "Lung");
        Set_Color(6, 0x3080F0);
        Variable_Undefine(one.variable);
        Quiet();
        panel.Update(UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR | UPDATE_TAG_LABEL |
                     UPDATE_TAG_TABLE);
        EXPECT_EQ(Painted(), 0U) << one.variable;
        EXPECT_THAT(messages.Take_Reports(), IsEmpty()) << one.variable;
        EXPECT_EQ(panel.Read(), one.steps_done > 0 ? 6 : 1) << one.variable;
        // What earlier steps took over shows with the next Draw.
        if (one.steps_done > 0) {
            Look(1).current = 0;
            Look(6).current = 1;
        }
        if (one.steps_done > 1) {
            Look(6).caption = "Lung";
        }
        panel.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << one.variable;
    }
}

TEST_F(Tag_Update, variables_that_come_late_are_found) {
    Tool_Tag fresh;
    Boxs box = Place();
    fresh.Resize(&box);
    fresh.Update(~0ULL);
    Define_Tags(NB);
    fresh.Resize(&box);
    fresh.Update(~0ULL);
    EXPECT_EQ(fresh.Read(), 1);
}

TEST_F(Tag_Update, an_update_during_an_edit_may_bring_the_button_back_and_a_cancel_leaves_it_greyed) {
    Lay_Out(NB, TAG_GREY_DISABLED);
    Open_Editor(panel, model, 6);
    Quiet();
    panel.Update(UPDATE_TAG_ENABLE);  // enabled, and the bits of the edit are among those of greying
    EXPECT_EQ(Take_Counters().draws, static_cast<unsigned int>(NB));
    EXPECT_EQ(panel.Keyboard('x'), 1) << "the edit goes on";
    panel.Leave();
    Open_Editor(panel, model, 7);
    Flags("$TAG_ENABLE")[7] = 0;
    Take_Counters();
    panel.Update(UPDATE_TAG_ENABLE);  // finds a bit set: neither greyed nor brought back
    EXPECT_EQ(Painted(), 0U);
    Point_Away();
    panel.Leave();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(model), 0) << "plain until the next update";
    Look(7).style |= STYLE_INACTIVE;
    Expect_Update(UPDATE_TAG_ENABLE, NB, 0, NB, "greyed at last");
}

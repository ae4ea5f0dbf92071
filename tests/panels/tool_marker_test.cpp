// The marker panel where it differs from the TAG panel, and once through what they share but do not do word for word
// alike.
#include "panels/tool_marker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "tests/panels/label_scene.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int NONE = -1;
constexpr int NB = 20;        ///< all in view
constexpr int SCROLLED = 48;  ///< needs the slider

class Marker_Panel : public Marker_Fixture {
  protected:
    Boxs Checked_Place() const {
        Boxs box = Place();
        box.style |= STYLE_SHOW_CHECK;
        return box;
    }
    void Lay_Out(int nb, Boxs box) {
        Define_Markers(nb);
        EXPECT_EQ(panel.Resize(&box), 1);
        panel.Draw();
        model = Fresh_Model(box, nb);
        Quiet();
    }
    Label_Look& Look(int marker) { return model.look[static_cast<std::size_t>(marker)]; }
    unsigned int Painted() {
        const Widget_Counters painted = Take_Counters();
        return painted.draws + painted.adjusts + painted.clears;
    }
    void Expect_Update(unsigned __int64 flags, unsigned int draws, unsigned int adjusts, unsigned int inits,
                       const char* when) {
        Take_Counters();
        panel.Update(flags);
        const Widget_Counters painted = Take_Counters();
        EXPECT_EQ(painted.draws, draws) << when;
        EXPECT_EQ(painted.adjusts, adjusts) << when;
        EXPECT_EQ(painted.inits, inits) << when;
        EXPECT_EQ(painted.clears, 0U) << when;
        EXPECT_EQ(Wrong_Pixels(model), 0) << when;
        Take_Counters();
        panel.Update(flags);
        EXPECT_EQ(Painted(), 0U) << when << ": a second time";
    }

    Tool_Marker panel;
    Label_Model model;
};

}  // namespace

// ---------------- protocol

TEST_F(Marker_Panel, operations_are_traced_at_level_15) {
    Define_Markers(NB);
    Boxs box = Place();
    messages.Take();
    panel.Resize(&box);
    panel.Height(3);
    panel.Draw();
    panel.Click(RELEASE);
    panel.Click(RIGHT_PRESS);
    panel.Keyboard(-1);
    panel.Update(0);
    EXPECT_THAT(messages.Take(),
                ElementsAre(Panel_Message{15, "in Tool_Marker::Resize(dim=280x120)"},
                            Panel_Message{15, "in Tool_Marker::Height()"}, Panel_Message{15, "in Tool_Marker::Draw()"},
                            Panel_Message{15, "in Tool_Marker::Click(up_down=0x00000000)"},
                            Panel_Message{15, "in Tool_Marker::Click(up_down=0x00000042)"},
                            Panel_Message{15, "in Tool_Marker::Keyboard(key=0xffffffff)"},
                            Panel_Message{15, "in Tool_Marker::Update()"}));
    panel.Motion(HOVER);
    panel.Leave();
    panel.Read();
    EXPECT_THAT(messages.Take(), IsEmpty());
    panel.Scroll(2);
    EXPECT_THAT(messages.Take(), ElementsAre(Panel_Message{15, "in Tool_Marker::Scroll(val=2)"},
                                             Panel_Message{15, "in Tool_Marker::Draw()"}));
}

TEST_F(Marker_Panel, the_height_is_that_of_the_tag_panel) {
    EXPECT_EQ(panel.Height(4), 2 * BORDER_DIM + 5 + 4 * (BUTTON_DIM_SML + BORDER_DIM));
}

// ---------------- layout

TEST_F(Marker_Panel, a_resize_shows_colours_captions_and_the_current_mark) {
    Lay_Out(NB, Place());
    EXPECT_EQ(Wrong_Pixels(model), 0) << "marker 0 has its colour from the table, too";
    Variable_Set_Array_Text("$MARKER_LABEL", 6, nullptr);
    Variable_Set("$MARKER_CUR", 6);
    Boxs box = Place();
    panel.Resize(&box);
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(Fresh_Model(box, NB)), 0);
    EXPECT_EQ(panel.Read(), 0) << "only a click or an update changes the current marker";
}

TEST_F(Marker_Panel, check_marks_are_taken_over_only_where_the_host_box_asks_for_them) {
    Lay_Out(NB, Checked_Place());
    EXPECT_EQ(Wrong_Pixels(model), 0);
    // Without the bit a disabled marker looks like any other, and the marks stay as they were.
    Boxs plain = Place();
    std::fill_n(Enable(), NB, std::uint8_t{0});
    panel.Resize(&plain);
    panel.Draw();
    for (int marker = 0; marker < NB; marker++) {
        Look(marker).style = STYLE_GRID_BUTTON;
    }
    EXPECT_EQ(Wrong_Pixels(model), 0);
    Boxs checked = Checked_Place();
    Variable_Undefine("$MARKER_ENABLE");
    panel.Resize(&checked);
    panel.Draw();
    for (Label_Look& look : model.look) {
        look.style = STYLE_GRID_BUTTON | STYLE_SHOW_CHECK;
        look.checked = 0;
    }
    EXPECT_EQ(Wrong_Pixels(model), 0) << "no array: none is checked";
}

TEST_F(Marker_Panel, without_arrays_buttons_show_numbers_and_keep_their_colour) {
    Lay_Out(8, Place());
    Variable_Undefine("$MARKER_LABEL");
    Variable_Undefine("$MARKER_COLOR");
    Boxs box = Place();
    panel.Resize(&box);
    panel.Draw();
    for (int marker = 0; marker < 8; marker++) {
        Look(marker).caption = std::to_string(marker);
    }
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Marker_Panel, more_markers_than_buttons_are_handled_up_to_the_capacity) {
    Lay_Out(100, Place());
    Label_Model shown(Place(), 64);
    std::copy_n(model.look.begin(), 64, shown.look.begin());
    EXPECT_EQ(Wrong_Pixels(shown), 0);
    panel.Update(~0ULL);
    panel.Scroll(1000);
    shown.scroll = 0;
    EXPECT_EQ(Press_Label(panel, shown, 63), 63);
    panel.Leave();
}

TEST_F(Marker_Panel, markers_without_a_complete_row_are_not_shown) {
    for (const int nb : {0, 3, 5, 7}) {
        Lay_Out(nb, Place());
        EXPECT_EQ(Wrong_Pixels(model), 0) << nb;
        for (int y = 0; y < WINDOW_HEIGHT; y += 5) {
            for (int x = 0; x < WINDOW_WIDTH; x += 9) {
                const int picked = Press(panel, x, y);
                EXPECT_TRUE(picked == NONE || picked >= nb % 4);
            }
        }
        panel.Leave();
    }
}

// ---------------- events

TEST_F(Marker_Panel, a_click_picks_what_is_painted_there_and_writes_nothing) {
    for (const int nb : {NB, SCROLLED}) {
        Lay_Out(nb, Place());
        for (int y = 0; y < WINDOW_HEIGHT; y += 3) {
            for (int x = model.grid_x - 2; x < WINDOW_WIDTH; x += 5) {
                EXPECT_EQ(Press(panel, x, y), model.At(x, y));
            }
        }
        EXPECT_EQ(Press_Label(panel, model, 6), 6);
        EXPECT_EQ(panel.Read(), 6);
        EXPECT_EQ(Press_Label(panel, model, 7, RELEASE), NONE);
        EXPECT_EQ(Variable_Number("$MARKER_CUR", -1), 1);
        EXPECT_THAT(requests.Take(), IsEmpty());
        panel.Leave();
    }
}

TEST_F(Marker_Panel, wheel_slider_and_leave_work_as_in_the_tag_panel) {
    Lay_Out(SCROLLED, Place());
    EXPECT_EQ(panel.Scroll(1), 1);
    model.scroll -= Label_Model::ROW;
    EXPECT_EQ(Wrong_Pixels(model), 0);
    panel.Scroll(-1);
    const int x = model.host.x + model.Margin() + 5;
    Press(panel, x, model.top + model.height - 3);
    EXPECT_EQ(Move(panel, x, 0, LEFT_DRAG), 1);
    EXPECT_EQ(Move(panel, model.X(20) + 3, 60), 0);
    Point_Away();
    panel.Leave();
    model.scroll = 0;
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Marker_Panel, an_edit_replaces_the_label_and_announces_it_as_a_tag_label) {
    Lay_Out(NB, Place());
    EXPECT_EQ(panel.Keyboard('a'), 0);
    EXPECT_EQ(Open_Editor(panel, model, 6), NONE);
    Type(panel, "Tip of the nose, as the surgeon calls it, left");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[6], "Tip of the nose, as the surgeon calls it, left");
    EXPECT_THAT(requests.Take(), ElementsAre(Panel_Request{Panel_Request::Kind::Update, UPDATE_TAG_LABEL}));
    Look(6).caption = "Tip of the nose, as the surgeon calls i";
    Point_Away();
    panel.Leave();
    EXPECT_EQ(Wrong_Pixels(model), 0);
    EXPECT_THAT(messages.Take_Reports(), IsEmpty());
}

TEST_F(Marker_Panel, an_edit_ends_without_change_by_an_empty_text_or_a_click) {
    Lay_Out(NB, Place());
    Open_Editor(panel, model, 6);
    EXPECT_EQ(panel.Keyboard(KEY_ESCAPE), 1);
    EXPECT_STREQ(Labels()[6], "M6");
    EXPECT_THAT(requests.Take_Updates(), ElementsAre(UPDATE_TAG_LABEL));
    Open_Editor(panel, model, 6);
    Type(panel, "x");
    EXPECT_EQ(Press_Label(panel, model, 9), 9);
    EXPECT_EQ(panel.Keyboard('y'), 0);
    EXPECT_STREQ(Labels()[6], "M6");
    EXPECT_THAT(requests.Take(), IsEmpty());
    EXPECT_EQ(Open_Editor(panel, model, 0), 0) << "marker 0 is never edited";
    Open_Editor(panel, model, 6);
    Variable_Undefine("$MARKER_LABEL");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 0);
}

TEST_F(Marker_Panel, a_right_press_on_another_marker_draws_the_first_one_and_edits_that) {
    Lay_Out(NB, Place());
    Open_Editor(panel, model, 6);
    Type(panel, "gone");
    window.Wipe();
    Take_Counters();
    EXPECT_EQ(Open_Editor(panel, model, 9), NONE);
    EXPECT_EQ(Take_Counters().draws, 3U) << "button 9 pressed, button 6 by the end of its edit, the editor";
    Type(panel, "Left ear");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[6], "M6");
    EXPECT_STREQ(Labels()[9], "Left ear");
    Look(9).caption = "Left ear";
    Point_Away();
    panel.Leave();
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(model), 0);
    EXPECT_EQ(Press_Label(panel, model, 6), 6);
}

// ---------------- update

TEST_F(Marker_Panel, flags_that_the_panel_does_not_test_do_nothing_one_by_one) {
    Lay_Out(NB, Checked_Place());
    Enable()[6] = 9;
    Variable_Set_Array_Text("$MARKER_LABEL", 6, "other");
    Colors_Array()[6] = 0x123456;
    Variable_Set("$MARKER_CUR", 5);
    constexpr unsigned __int64 tested = UPDATE_TAG_CUR | UPDATE_TAG_LABEL | UPDATE_TAG_ENABLE | UPDATE_TAG_TABLE;
    for (int bit = 0; bit < 64; bit++) {
        if (((tested >> bit) & 1U) == 0) {
            panel.Update(1ULL << bit);
            const Widget_Counters painted = Take_Counters();
            EXPECT_EQ(painted.draws + painted.adjusts + painted.inits, 0U) << "bit " << bit;
            EXPECT_EQ(panel.Read(), 0) << "bit " << bit;
        }
    }
}

TEST_F(Marker_Panel, each_kind_of_change_is_painted_in_its_way) {
    Lay_Out(NB, Checked_Place());
    Variable_Set("$MARKER_CUR", 6);
    Look(1).current = 0;
    Look(6).current = 1;
    Expect_Update(UPDATE_TAG_CUR, 0, NB, 0, "marks only");
    EXPECT_EQ(panel.Read(), 6);
    Variable_Set_Array_Text("$MARKER_LABEL", 6, "nose");
    Variable_Set_Array_Text("$MARKER_LABEL", 7, nullptr);
    Look(6).caption = "nose";
    Look(7).caption = "7";
    Expect_Update(UPDATE_TAG_LABEL, NB, 0, 0, "labels");
    EXPECT_EQ(Look(7).checked, 1);
    Enable()[7] = 0;
    Look(7).checked = 0;
    Expect_Update(UPDATE_TAG_ENABLE, NB, 0, 0, "a check mark is a full draw here");
    Colors_Array()[6] = 0xFF3080F0;
    Look(6).color = 0x3080F0;
    Expect_Update(UPDATE_TAG_TABLE, NB, 0, NB, "colours");
}

TEST_F(Marker_Panel, an_enable_byte_is_the_check_mark_as_it_is) {
    Lay_Out(NB, Checked_Place());
    EXPECT_EQ(Look(1).checked, 1);
    Enable()[1] = 2;  // shown like 1, and yet a change: the byte is stored unreduced
    Look(1).checked = 2;
    Expect_Update(UPDATE_TAG_ENABLE, NB, 0, 0, "1 to 2");
    Enable()[1] = 1;
    Look(1).checked = 1;
    Expect_Update(UPDATE_TAG_ENABLE, NB, 0, 0, "2 to 1");
}

TEST_F(Marker_Panel, a_missing_array_ends_the_update_at_its_step_without_painting) {
    const char* order[] = {"$MARKER_LABEL", "$MARKER_ENABLE", "$MARKER_COLOR"};
    for (int step = 0; step < 3; step++) {
        Lay_Out(NB, Checked_Place());
        Variable_Set("$MARKER_CUR", 6);
        Variable_Set_Array_Text("$MARKER_LABEL", 6, "nose");
        Enable()[6] = 0;
        EXPECT_EQ(Look(7).checked, 1);
        Enable()[7] = 0;
        Colors_Array()[6] = 0x3080F0;
        Variable_Undefine(order[step]);
        Take_Counters();
        panel.Update(~0ULL);
        EXPECT_EQ(Painted(), 0U) << order[step];
        EXPECT_EQ(panel.Read(), 6);
        Look(1).current = 0;
        Look(6).current = 1;
        if (step > 0) {
            Look(6).caption = "nose";
        }
        if (step > 1) {
            Look(6).checked = 0;
            Look(7).checked = 0;
        }
        panel.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << order[step];
        EXPECT_THAT(messages.Take_Reports(), IsEmpty());
    }
}

TEST_F(Marker_Panel, the_current_marker_is_followed_without_any_variable) {
    Lay_Out(NB, Place());
    Press_Label(panel, model, 6);
    Variable_Undefine("$MARKER_NB");
    Variable_Undefine("$MARKER_CUR");
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(panel.Read(), 0);
}

TEST_F(Marker_Panel, every_step_of_an_update_looks_the_count_up) {
    Lay_Out(NB, Checked_Place());
    const struct {
        unsigned __int64 flags;
        unsigned int look_ups;
    } cases[] = {{0, 0},
                 {UPDATE_ALL, 0},
                 {UPDATE_TAG_CUR, 1},
                 {UPDATE_TAG_LABEL, 1},
                 {UPDATE_TAG_LABEL | UPDATE_TAG_ENABLE, 2},
                 {UPDATE_TAG_CUR | UPDATE_TAG_LABEL | UPDATE_TAG_ENABLE | UPDATE_TAG_TABLE, 4}};
    for (const auto& one : cases) {
        panel.Update(~0ULL);
        Variable_Look_Ups_Reset();
        panel.Update(one.flags);
        EXPECT_EQ(Variable_Look_Ups("$MARKER_NB"), one.look_ups) << one.flags;
    }
    Variable_Set("$MARKER_CUR", 5);
    Variable_Look_Ups_Reset();
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(Variable_Look_Ups("$MARKER_NB"), 2U) << "the step, and the painting";
}

TEST_F(Marker_Panel, releases_are_ignored_and_of_keys_the_low_16_bits_count) {
    Lay_Out(NB, Place());
    Open_Editor(panel, model, 6);
    for (const int still_held : {0, 0x10, 0x20, 0x40, 0x70}) {
        EXPECT_EQ(Press_Label(panel, model, 7, still_held), NONE) << still_held;
    }
    EXPECT_EQ(panel.Keyboard(0x7FFF0000 | 'x'), 1) << "the edit is still open";
    EXPECT_EQ(panel.Keyboard(static_cast<int>(0x80010000U) | KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[6], "x");
}

TEST_F(Marker_Panel, another_count_lays_nothing_out_before_the_next_resize) {
    Lay_Out(NB, Place());
    Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, 8);
    Take_Counters();
    panel.Update(UPDATE_TAG_TABLE);
    EXPECT_EQ(Painted(), 0U);
    EXPECT_EQ(Press_Label(panel, model, 6), 6) << "where it stood";
    panel.Leave();
    Boxs box = Place();
    panel.Resize(&box);
    panel.Draw();
    EXPECT_EQ(Wrong_Pixels(Fresh_Model(box, 8)), 0);
}

TEST_F(Marker_Panel, copies_share_the_buttons_and_live_on_without_the_original) {
    Define_Markers(NB);
    auto original = std::make_unique<Tool_Marker>();
    Boxs box = Place();
    original->Resize(&box);
    model = Fresh_Model(box, NB);
    Tool_Marker copy(*original);
    Tool_Marker assigned;
    assigned = *original;
    original.reset();
    for (Tool_Marker* one : {&copy, &assigned}) {
        window.Wipe();
        one->Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0);
        EXPECT_EQ(Press_Label(*one, model, 13), 13);
        one->Leave();
    }
}

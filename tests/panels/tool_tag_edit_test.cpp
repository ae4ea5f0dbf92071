// The editor in place of a button: opening, keys, finishing, cancelling.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>

#include "panels/tool_tag.h"
#include "tests/panels/label_scene.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int NONE = -1;
constexpr int NB = 20;        ///< all in view
constexpr int SCROLLED = 48;  ///< needs the slider

class Tag_Edit : public Tag_Fixture {
  protected:
    void Lay_Out(int nb = NB, unsigned short option = TAG_GREY_SELECTION) {
        Define_Tags(nb);
        panel.Flag(option);
        Boxs box = Place();
        panel.Resize(&box);
        panel.Draw();
        model = Fresh_Model(box, nb);
        Quiet();
    }
    void Expect_Shows(const char* when) {
        Point_Away();
        panel.Motion(HOVER);
        panel.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << when;
    }
    bool Is_Editing() { return panel.Keyboard(KEY_HOME) == 1; }

    Tool_Tag panel;
    Label_Model model;
};

}  // namespace

TEST_F(Tag_Edit, a_right_press_opens_the_editor_over_the_button_and_picks_nothing) {
    Lay_Out();
    EXPECT_EQ(Open_Editor(panel, model, 6), NONE);
    EXPECT_EQ(panel.Read(), 0);
    // The editor covers its button and no other pixel.
    const Window_Picture expected = Expected(model);
    const Window_Picture shown = Pixels();
    int inside = 0;
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            const bool is_button = model.At(x, y) == 6;
            if (shown.At(x, y) != expected.At(x, y)) {
                EXPECT_TRUE(is_button || model.At(x, y) > 0) << x << ", " << y;
                inside += is_button ? 1 : 0;
            }
        }
    }
    EXPECT_GT(inside, model.Column_Width() * Label_Model::ROW / 2);
    EXPECT_TRUE(Is_Editing());
}

TEST_F(Tag_Edit, without_an_edit_keys_are_not_used) {
    Lay_Out();
    EXPECT_EQ(panel.Keyboard('a'), 0);
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 0);
    EXPECT_THAT(requests.Take(), IsEmpty());
}

TEST_F(Tag_Edit, the_editor_starts_with_the_caption_all_selected) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    EXPECT_EQ(panel.Keyboard(KEY_END), 1);
    EXPECT_EQ(Type(panel, "b"), 1);
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[6], "TAG 6b");
}

TEST_F(Tag_Edit, a_finished_edit_replaces_the_label_and_announces_it) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    EXPECT_EQ(Type(panel, "Lung"), 1);
    EXPECT_STREQ(Labels()[6], "TAG 6") << "not before the edit is finished";
    EXPECT_THAT(requests.Take(), IsEmpty());
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_STREQ(Labels()[6], "Lung");
    EXPECT_THAT(requests.Take(), ElementsAre(Panel_Request{Panel_Request::Kind::Update, UPDATE_TAG_LABEL}));
    model.look[6].caption = "Lung";
    Expect_Shows("renamed");
    EXPECT_FALSE(Is_Editing());
    EXPECT_THAT(messages.Take_Reports(), IsEmpty());
}

TEST_F(Tag_Edit, a_label_may_be_given_to_a_tag_that_has_none) {
    Lay_Out();
    Variable_Set_Array_Text("$TAG_LABEL", 6, nullptr);
    Open_Editor(panel, model, 6);
    Type(panel, "Lung");
    panel.Keyboard(KEY_TAB);
    EXPECT_STREQ(Labels()[6], "Lung");
}

TEST_F(Tag_Edit, only_the_low_16_bits_of_a_key_count) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    panel.Keyboard(0x70000 | 'Q');
    panel.Keyboard(0x7FFF0000 | KEY_ENTER);
    EXPECT_STREQ(Labels()[6], "Q");
}

TEST_F(Tag_Edit, fifty_characters_are_stored_whole_and_shown_as_39) {
    const std::string typed = "12345678901234567890123456789012345678901234567890";
    for (const bool answered : {false, true}) {
        Lay_Out();
        if (answered) {
            requests.Answer_At_Once([&](unsigned long long flags) { panel.Update(flags); });
        }
        Open_Editor(panel, model, 6);
        Type(panel, typed);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
        EXPECT_EQ(Labels()[6], typed);
        model.look[6].caption = typed.substr(0, 39);
        Expect_Shows("cut");
        requests.Answer_Never();
    }
}

TEST_F(Tag_Edit, finishing_with_an_empty_text_changes_nothing_and_announces_it_all_the_same) {
    for (const unsigned short option : {TAG_GREY_SELECTION, TAG_THRESHOLD_MODE}) {
        for (const bool escape : {false, true}) {
            Lay_Out(NB, option);
            if (option == TAG_THRESHOLD_MODE) {
                for (int tag = 0; tag < NB; tag++) {
                    model.look[static_cast<std::size_t>(tag)].caption = std::to_string(tag * 10 - 20);
                }
            }
            Open_Editor(panel, model, 6);
            if (escape) {
                EXPECT_EQ(panel.Keyboard(KEY_ESCAPE), 1);
            } else {
                panel.Keyboard(KEY_BACKSPACE);
                EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
            }
            EXPECT_STREQ(Labels()[6], "TAG 6");
            EXPECT_EQ(Thresholds()[6], 40.0F);
            EXPECT_THAT(requests.Take_Updates(), ElementsAre(UPDATE_TAG_LABEL));
            Expect_Shows("unchanged");
        }
    }
}

TEST_F(Tag_Edit, threshold_mode_stores_a_number_and_leaves_the_label) {
    Lay_Out(NB, TAG_THRESHOLD_MODE);
    const struct {
        const char* typed;
        float stored;
    } cases[] = {{"12.75", 12.75F},
                 {"-3e2x", -300.0F},
                 {"abc", 0.0F},
                 {"3.4028235e38", std::numeric_limits<float>::max()},
                 {"0x10", static_cast<float>(std::atof("0x10"))},
                 {"1e300", std::numeric_limits<float>::infinity()},
                 {"-1e300", -std::numeric_limits<float>::infinity()}};
    for (const auto& one : cases) {
        Open_Editor(panel, model, 6);
        Type(panel, one.typed);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
        EXPECT_EQ(Thresholds()[6], one.stored) << one.typed;
        EXPECT_STREQ(Labels()[6], "TAG 6");
        EXPECT_THAT(requests.Take_Updates(), ElementsAre(UPDATE_TAG_LABEL));
    }
    for (int tag = 0; tag < NB; tag++) {
        model.look[static_cast<std::size_t>(tag)].caption = std::to_string(tag * 10 - 20);
    }
    model.look[6].caption = "-1e300";  // as it was typed, until labels are announced
    Expect_Shows("typed");
}

TEST_F(Tag_Edit, threshold_mode_without_thresholds_shows_what_was_typed) {
    Lay_Out(NB, TAG_THRESHOLD_MODE);
    Variable_Undefine("$TAG_THRESHOLD_MIN");
    Open_Editor(panel, model, 6);
    Type(panel, "7");
    EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
    EXPECT_THAT(requests.Take_Updates(), ElementsAre(UPDATE_TAG_LABEL));
    EXPECT_STREQ(Labels()[6], "TAG 6");
}

TEST_F(Tag_Edit, a_missing_label_array_makes_keys_unused) {
    for (const unsigned short option : {TAG_GREY_SELECTION, TAG_THRESHOLD_MODE}) {
        Lay_Out(NB, option);
        Open_Editor(panel, model, 6);
        Variable_Undefine("$TAG_LABEL");
        EXPECT_EQ(panel.Keyboard('a'), 0);
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 0);
        EXPECT_THAT(requests.Take(), IsEmpty());
        EXPECT_THAT(messages.Take_Reports(), IsEmpty());
    }
}

TEST_F(Tag_Edit, tag_0_is_picked_by_a_right_press_and_never_edited) {
    Lay_Out();
    EXPECT_EQ(Press_Label(panel, model, 6), 6);
    EXPECT_EQ(Open_Editor(panel, model, 0), 0);
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_FALSE(Is_Editing());
}

TEST_F(Tag_Edit, a_right_press_beside_the_buttons_opens_nothing) {
    Lay_Out();
    EXPECT_EQ(Press(panel, model.host.x + 1, model.host.y + 1, RIGHT_PRESS), NONE);
    EXPECT_FALSE(Is_Editing());
}

TEST_F(Tag_Edit, any_click_slider_press_wheel_or_leaving_cancels_the_edit) {
    const int slider_x = 10 + 3 + 5;
    const std::function<void()> cancels[] = {
        [&] { EXPECT_EQ(Press(panel, 2, 2), NONE); },
        [&] { EXPECT_EQ(Press_Label(panel, model, 3), 3); },
        [&] { EXPECT_EQ(Press(panel, 2, 2, RIGHT_PRESS), NONE); },
        [&] { EXPECT_EQ(Press(panel, slider_x, model.top + 3), NONE); },
        [&] { EXPECT_EQ(panel.Scroll(0), 1); },
        [&] { panel.Leave(); },
    };
    int number = 0;
    for (const auto& cancel : cancels) {
        Lay_Out(SCROLLED);
        Open_Editor(panel, model, 6);
        Type(panel, "gone");
        cancel();
        EXPECT_EQ(panel.Keyboard('x'), 0) << number;
        EXPECT_STREQ(Labels()[6], "TAG 6") << number;
        EXPECT_THAT(requests.Take(), IsEmpty()) << number;
        panel.Leave();
        panel.Scroll(-1000);
        Expect_Shows(("after cancel " + std::to_string(number)).c_str());
        EXPECT_EQ(Press_Label(panel, model, 6), 6) << "the button is back";
        number++;
    }
}

TEST_F(Tag_Edit, a_slider_drag_cancels_the_edit) {
    Lay_Out(SCROLLED);
    const int slider_x = 10 + 3 + 5;
    Press(panel, slider_x, model.top + model.height - 3);  // holds the thumb
    // The right button opens the editor meanwhile; its press is on a button, so the slider does not hear of it.
    Open_Editor(panel, model, 6);
    EXPECT_EQ(Move(panel, slider_x, 0, LEFT_DRAG), 1);
    EXPECT_EQ(panel.Keyboard('x'), 0);
    model.scroll = 0;
    Point_Away();
    panel.Leave();
    Expect_Shows("scrolled to the top");
}

TEST_F(Tag_Edit, cancelling_by_click_or_leaving_draws_the_button_and_no_other) {
    // Once by the cancellation, once more because it leaves the pressed look that the right press gave it.
    constexpr unsigned int button_draws = 2;
    Lay_Out();
    Open_Editor(panel, model, 6);
    Point_Away();
    Take_Counters();
    panel.Click(LEFT_PRESS);
    EXPECT_EQ(Take_Counters().draws, button_draws);
    EXPECT_EQ(Wrong_Pixels(model), 0);
    Open_Editor(panel, model, 6);
    Point_Away();
    Take_Counters();
    panel.Leave();
    EXPECT_EQ(Take_Counters().draws, button_draws);
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Edit, cancelling_by_the_wheel_draws_the_button_with_all_others_only) {
    Lay_Out(SCROLLED);
    Open_Editor(panel, model, 6);
    Take_Counters();
    panel.Scroll(0);
    EXPECT_EQ(Take_Counters().draws, static_cast<unsigned int>(2 + model.Visible_Nb())) << "frame, slider, buttons";
}

TEST_F(Tag_Edit, a_click_on_the_edited_button_cancels_and_picks_it) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    EXPECT_EQ(Press_Label(panel, model, 6), 6);
    EXPECT_FALSE(Is_Editing());
    Open_Editor(panel, model, 7);
    EXPECT_EQ(Open_Editor(panel, model, 7), 7) << "a right press does, too";
    EXPECT_FALSE(Is_Editing());
}

TEST_F(Tag_Edit, a_right_press_on_another_button_draws_the_first_one_again) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    Type(panel, "gone");
    window.Wipe();
    const Window_Picture wiped = Pixels();
    Take_Counters();
    EXPECT_EQ(Open_Editor(panel, model, 9), NONE);
    const unsigned int draws = Take_Counters().draws;
    const Window_Picture shown = Pixels();
    int left_of_first = 0;
    int left_of_second = 0;
    int drawn_elsewhere = 0;
    for (int y = 0; y < WINDOW_HEIGHT; y++) {
        for (int x = 0; x < WINDOW_WIDTH; x++) {
            const bool is_drawn = shown.At(x, y) != wiped.At(x, y);
            const int label = model.At(x, y);
            left_of_first += label == 6 && !is_drawn ? 1 : 0;
            left_of_second += label == 9 && !is_drawn ? 1 : 0;
            drawn_elsewhere += label != 6 && label != 9 && is_drawn ? 1 : 0;
        }
    }
    EXPECT_EQ(left_of_first, 0) << "the button of the first edit is there again";
    EXPECT_EQ(left_of_second, 0);
    EXPECT_EQ(drawn_elsewhere, 0);
    EXPECT_EQ(draws, 3U) << "button 9 pressed, button 6 by the end of its edit, the editor";
    EXPECT_TRUE(Is_Editing());
    panel.Leave();
    Expect_Shows("nothing of either edit is left");
    EXPECT_EQ(Press_Label(panel, model, 6), 6);
}

TEST_F(Tag_Edit, a_right_press_on_another_button_moves_the_edit_there) {
    Lay_Out();
    Open_Editor(panel, model, 6);
    Type(panel, "gone");
    EXPECT_EQ(Open_Editor(panel, model, 9), NONE);
    Type(panel, "Nine");
    panel.Keyboard(KEY_ENTER);
    EXPECT_STREQ(Labels()[6], "TAG 6");
    EXPECT_STREQ(Labels()[9], "Nine");
    EXPECT_EQ(Press_Label(panel, model, 6), 6) << "the first button is back";
}

TEST_F(Tag_Edit, a_table_that_shrinks_below_the_edited_tag_ends_the_edit_harmlessly) {
    for (const bool finished : {true, false}) {
        Lay_Out();
        Open_Editor(panel, model, 18);
        Type(panel, "late");
        Change_Count(8);
        panel.Update(UPDATE_TAG_TABLE);
        if (finished) {
            EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
            EXPECT_THAT(requests.Take_Updates(), ElementsAre(UPDATE_TAG_LABEL));
        } else {
            panel.Leave();
        }
        EXPECT_FALSE(Is_Editing());
    }
}

TEST_F(Tag_Edit, a_button_that_a_table_moved_out_of_sight_is_not_drawn_over_other_things) {
    Lay_Out(SCROLLED);
    panel.Scroll(1000);
    Label_Model at_top = model;
    at_top.scroll = 0;
    Open_Editor(panel, at_top, 47);
    panel.Update(UPDATE_TAG_TABLE);  // scrolls to the bottom
    window.Wipe();
    Type(panel, "Lung");
    window.Wipe();
    Take_Counters();
    panel.Keyboard(KEY_ENTER);
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_STREQ(Labels()[47], "Lung");
}

TEST_F(Tag_Edit, the_host_may_answer_inside_or_after_the_request) {
    for (const bool at_once : {true, false}) {
        Lay_Out();
        const auto update = [&](unsigned long long flags) { panel.Update(flags); };
        at_once ? requests.Answer_At_Once(update) : requests.Answer_Queued(update);
        Open_Editor(panel, model, 6);
        Type(panel, "Lung");
        EXPECT_EQ(panel.Keyboard(KEY_ENTER), 1);
        requests.Deliver();
        model.look[6].caption = "Lung";
        Expect_Shows(at_once ? "at once" : "queued");
        requests.Answer_Never();
    }
}

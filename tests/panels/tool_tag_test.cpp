#include "panels/tool_tag.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>

#include "tests/panels/label_scene.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int NONE = -1;
constexpr int ALL_IN_VIEW = 20;  ///< TAGs that fit without slider
constexpr int SCROLLED = 48;     ///< TAGs that need it

class Tag_Panel : public Tag_Fixture {
  protected:
    void Lay_Out(int nb) {
        Define_Tags(nb);
        Boxs box = Place();
        EXPECT_EQ(panel.Resize(&box), 1);
        Quiet();
    }
    void Expect_Shows(const Label_Model& model, const char* when) {
        window.Wipe();
        panel.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << when;
    }

    Tool_Tag panel;
};

}  // namespace

// ---------------- protocol

TEST_F(Tag_Panel, operations_are_traced_at_level_16_and_these_only) {
    Define_Tags(ALL_IN_VIEW);
    Boxs box = Place();
    messages.Take();
    panel.Resize(&box);
    panel.Height(3);
    panel.Draw();
    panel.Click(RELEASE);
    panel.Click(LEFT_PRESS);
    panel.Keyboard(0x12345);
    panel.Update(0);
    EXPECT_THAT(messages.Take(),
                ElementsAre(Panel_Message{16, "in Tool_Tag::Resize(dim=280x120)"},
                            Panel_Message{16, "in Tool_Tag::Height()"}, Panel_Message{16, "in Tool_Tag::Draw()"},
                            Panel_Message{16, "in Tool_Tag::Click(up_down=0x00000000)"},
                            Panel_Message{16, "in Tool_Tag::Click(up_down=0x00000012)"},
                            Panel_Message{16, "in Tool_Tag::Keyboard(key=0x00012345)"},
                            Panel_Message{16, "in Tool_Tag::Update()"}));
    panel.Motion(HOVER);
    panel.Leave();
    panel.Read();
    panel.Flag(0);
    EXPECT_THAT(messages.Take(), IsEmpty());
    panel.Scroll(-7);
    EXPECT_THAT(messages.Take(), ElementsAre(Panel_Message{16, "in Tool_Tag::Scroll(val=-7)"},
                                             Panel_Message{16, "in Tool_Tag::Draw()"}));
}

TEST_F(Tag_Panel, the_height_counts_borders_and_rows) {
    EXPECT_EQ(panel.Height(0), 2 * BORDER_DIM + 5);
    EXPECT_EQ(panel.Height(4), 2 * BORDER_DIM + 5 + 4 * (BUTTON_DIM_SML + BORDER_DIM));
    EXPECT_EQ(panel.Height(65535), 2 * BORDER_DIM + 5 + 65535 * (BUTTON_DIM_SML + BORDER_DIM));
}

// ---------------- layout

TEST_F(Tag_Panel, all_tags_in_view_are_shown_as_laid_out_in_either_axis) {
    Lay_Out(ALL_IN_VIEW);
    Expect_Shows(Fresh_Model(Place(), ALL_IN_VIEW), "down");
    EXPECT_EQ(Fresh_Model(Place(), ALL_IN_VIEW).Visible_Nb(), ALL_IN_VIEW);
}

TEST_F(Tag_Panel, with_a_slider_the_lowest_tags_are_shown_first) {
    Lay_Out(SCROLLED);
    const Label_Model model = Fresh_Model(Place(), SCROLLED);
    Expect_Shows(model, "scrolled to the bottom");
    EXPECT_TRUE(model.needed);
    for (int tag = 0; tag < 4; tag++) {
        EXPECT_TRUE(model.Is_Visible(tag));
        EXPECT_EQ(Press_Label(panel, model, tag), tag);
    }
    // Rows of the lowest numbers at the foot.
    EXPECT_GT(model.Y(0), model.Y(4));
}

TEST_F(Tag_Panel, the_check_mark_bit_of_the_host_box_reaches_the_buttons) {
    Define_Tags(ALL_IN_VIEW);
    Boxs box = Place();
    box.style |= STYLE_SHOW_CHECK;
    panel.Flag(TAG_CHECK_SELECT);
    panel.Resize(&box);
    panel.Update(UPDATE_TAG_SELECT);
    Label_Model model = Fresh_Model(box, ALL_IN_VIEW);
    for (Label_Look& look : model.look) {
        look.checked = 1;
    }
    Expect_Shows(model, "checked");
}

TEST_F(Tag_Panel, tags_of_an_incomplete_row_are_never_shown_nor_picked) {
    for (const int nb : {5, 6, 7, 9, 23}) {
        Lay_Out(nb);
        const Label_Model model = Fresh_Model(Place(), nb);
        Expect_Shows(model, "incomplete row");
        for (int y = 0; y < WINDOW_HEIGHT; y += 5) {
            for (int x = 0; x < WINDOW_WIDTH; x += 11) {
                const int picked = Press(panel, x, y);
                EXPECT_TRUE(picked == NONE || picked >= nb % 4) << picked << " of " << nb;
            }
        }
        panel.Leave();
    }
}

TEST_F(Tag_Panel, tags_that_a_smaller_table_leaves_without_a_row_vanish) {
    Lay_Out(8);
    Change_Count(7);
    panel.Update(UPDATE_TAG_TABLE);
    for (int y = 0; y < WINDOW_HEIGHT; y += 3) {
        for (int x = 0; x < WINDOW_WIDTH; x += 7) {
            const int picked = Press(panel, x, y);
            EXPECT_TRUE(picked == NONE || picked >= 3) << picked;
        }
    }
    panel.Leave();
    Expect_Shows(Fresh_Model(Place(), 7), "one complete row is left");
}

TEST_F(Tag_Panel, fewer_than_four_tags_show_nothing_and_clicks_give_none) {
    for (const int nb : {0, 1, 2, 3}) {
        Lay_Out(nb);
        Expect_Shows(Label_Model(Place(), 0), "nothing laid out");
        for (const int code : {LEFT_PRESS, RIGHT_PRESS, 0x22, 0x10, 0x40, RELEASE}) {
            for (int y = 0; y < WINDOW_HEIGHT; y += 9) {
                for (int x = 0; x < WINDOW_WIDTH; x += 13) {
                    EXPECT_EQ(Press(panel, x, y, code), NONE);
                }
            }
        }
        EXPECT_EQ(panel.Keyboard('a'), 0) << "no editor was opened";
    }
}

TEST_F(Tag_Panel, more_tags_than_buttons_are_handled_up_to_the_capacity) {
    Lay_Out(300);
    Label_Model model(Place(), 256);
    const Label_Model all = Fresh_Model(Place(), 300);
    std::copy_n(all.look.begin(), 256, model.look.begin());
    Expect_Shows(model, "256 of 300");
    EXPECT_EQ(Press_Label(panel, model, 5), 5);
    Variable_Set("$TAG_CUR", 299);
    panel.Update(~0ULL);
    EXPECT_EQ(panel.Read(), 299);
    panel.Scroll(1);
    panel.Leave();
}

TEST_F(Tag_Panel, null_labels_and_a_missing_label_array_show_numbers) {
    Define_Tags(8);
    Variable_Set_Array_Text("$TAG_LABEL", 5, nullptr);
    Boxs box = Place();
    panel.Resize(&box);
    Expect_Shows(Fresh_Model(box, 8), "one null label");
    Variable_Undefine("$TAG_LABEL");
    panel.Resize(&box);
    Label_Model model(box, 8);
    for (int tag = 0; tag < 8; tag++) {
        model.look[static_cast<std::size_t>(tag)] = {std::to_string(tag), Color_Of(tag)};
    }
    Expect_Shows(model, "no labels");
}

TEST_F(Tag_Panel, without_a_colour_array_buttons_keep_the_colour_they_had) {
    for (const char* missing : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Tool_Tag fresh;
        Define_Tags(8);
        Variable_Undefine(missing);
        Boxs box = Place();
        EXPECT_EQ(fresh.Resize(&box), 1);
        Label_Model model = Fresh_Model(box, 8);
        for (Label_Look& look : model.look) {
            look.color = 0;
        }
        window.Wipe();
        fresh.Draw();
        EXPECT_EQ(Wrong_Pixels(model), 0) << missing;
    }
}

TEST_F(Tag_Panel, threshold_mode_shows_whole_thresholds_and_keeps_captions_without_the_array) {
    Define_Tags(8);
    Thresholds()[4] = 3.4028235e38F;  // 39 digits
    Thresholds()[5] = -99999.6F;
    panel.Flag(TAG_THRESHOLD_MODE);
    Boxs box = Place();
    panel.Resize(&box);
    Label_Model model = Fresh_Model(box, 8);
    for (int tag = 0; tag < 8; tag++) {
        model.look[static_cast<std::size_t>(tag)].caption = std::to_string(tag * 10 - 20);
    }
    model.look[4].caption = "340282346638528859811704183484516925440";
    model.look[5].caption = "-100000";
    Expect_Shows(model, "thresholds");
    Variable_Undefine("$TAG_THRESHOLD_MIN");
    panel.Resize(&box);
    Expect_Shows(model, "kept");
}

TEST_F(Tag_Panel, a_resize_makes_greyed_and_edited_buttons_plain_again) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    Flags("$TAG_SELECT")[7] = 0;
    panel.Update(UPDATE_TAG_SELECT);
    Open_Editor(panel, model, 9);
    Boxs box = Place();
    panel.Resize(&box);
    Point_Away();
    panel.Leave();
    Expect_Shows(model, "plain");
    EXPECT_EQ(panel.Keyboard('a'), 0) << "the edit is closed";
}

TEST_F(Tag_Panel, strange_boxes_and_dimensions_are_survived) {
    Define_Tags(SCROLLED);
    const auto use_all = [&](Boxs box) {
        EXPECT_EQ(panel.Resize(&box), 1);
        panel.Draw();
        panel.Click(LEFT_PRESS);
        panel.Click(RIGHT_PRESS);
        panel.Motion(LEFT_DRAG);
        panel.Scroll(1);
        panel.Update(~0ULL);
        panel.Leave();
    };
    for (const int number : {-32768, -1, 0, 1, 32767}) {
        for (const char* dimension :
             {"$INTERFACE_BORDER_DIM", "$INTERFACE_BUTTON_DIM_SML", "$INTERFACE_CURSOR_DIM", "$INTERFACE_SPACE_DIM"}) {
            Define_Dimensions();
            Variable_Set(dimension, number);
            use_all(Place());
        }
        Define_Dimensions();
        use_all(Host_Box(number, 8, 280, 120));
        use_all(Host_Box(10, number, 280, 120));
        if (number < 2) {
            use_all(Host_Box(10, 8, number, 120));
            use_all(Host_Box(10, 8, 280, number));
        }
        Boxs bordered = Place();
        bordered.border = static_cast<unsigned short>(number);
        use_all(bordered);
    }
}

// ---------------- picking

TEST_F(Tag_Panel, a_click_picks_what_is_painted_there) {
    for (const int nb : {ALL_IN_VIEW, SCROLLED, 6}) {
        Lay_Out(nb);
        const Label_Model model = Fresh_Model(Place(), nb);
        for (int y = 0; y < WINDOW_HEIGHT; y += 2) {
            for (int x = model.grid_x - 2; x < WINDOW_WIDTH; x += 3) {
                const int expected = model.At(x, y);
                EXPECT_EQ(Press(panel, x, y), expected) << x << ", " << y;
                if (expected != NONE) {
                    EXPECT_EQ(panel.Read(), expected);
                }
            }
        }
        panel.Leave();
    }
}

TEST_F(Tag_Panel, a_pick_writes_no_variable_and_sends_nothing) {
    Lay_Out(ALL_IN_VIEW);
    EXPECT_EQ(Press_Label(panel, Fresh_Model(Place(), ALL_IN_VIEW), 6), 6);
    EXPECT_EQ(panel.Read(), 6);
    EXPECT_EQ(Variable_Number("$TAG_CUR", -1), 1);
    EXPECT_THAT(requests.Take(), IsEmpty());
}

TEST_F(Tag_Panel, a_release_is_ignored_whichever_buttons_are_still_held) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    EXPECT_EQ(Open_Editor(panel, model, 6), NONE);
    Quiet();
    for (const int still_held : {RELEASE, 0x10, 0x20, 0x40, 0x50, 0x70}) {
        EXPECT_EQ(Press_Label(panel, model, 7, still_held), NONE) << still_held;
    }
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_EQ(panel.Keyboard('a'), 1) << "the edit is still open";
}

TEST_F(Tag_Panel, every_press_picks_whichever_buttons_are_held) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    for (const int code : {0x02, 0x22, 0x52, 0x72}) {
        EXPECT_EQ(Press_Label(panel, model, 13, code), 13) << code;
    }
}

TEST_F(Tag_Panel, greyed_buttons_are_not_picked) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    Flags("$TAG_SELECT")[6] = 0;
    panel.Update(UPDATE_TAG_SELECT);
    EXPECT_EQ(Press_Label(panel, model, 6), NONE);
    EXPECT_EQ(Open_Editor(panel, model, 6), NONE);
    EXPECT_EQ(panel.Keyboard('a'), 0) << "no editor either";
    EXPECT_EQ(panel.Read(), 0);
}

// ---------------- slider

TEST_F(Tag_Panel, the_wheel_scrolls_by_rows_wherever_the_pointer_is) {
    Lay_Out(SCROLLED);
    Label_Model model = Fresh_Model(Place(), SCROLLED);
    Point_Away();
    window.Wipe();
    EXPECT_EQ(panel.Scroll(1), 1);  // forward: what lies higher
    model.scroll -= Label_Model::ROW;
    EXPECT_EQ(Wrong_Pixels(model), 0) << "drawn by the scroll itself";
    EXPECT_EQ(Press_Label(panel, model, 4), 4);
    panel.Leave();
    EXPECT_EQ(panel.Scroll(1000), 1);
    model.scroll = 0;
    Expect_Shows(model, "top");
    EXPECT_EQ(panel.Scroll(-1000), 1);
    model.scroll = static_cast<float>(model.Max_Scroll());
    Expect_Shows(model, "bottom");
    EXPECT_EQ(panel.Scroll(std::numeric_limits<int>::min()), 1);
    EXPECT_EQ(panel.Scroll(std::numeric_limits<int>::max()), 1);
}

TEST_F(Tag_Panel, a_press_on_the_slider_scrolls_and_picks_nothing) {
    Lay_Out(SCROLLED);
    const Label_Model model = Fresh_Model(Place(), SCROLLED);
    panel.Draw();
    const Window_Picture before = Pixels();
    EXPECT_EQ(Press(panel, model.host.x + model.Margin() + 5, model.top + 5), NONE);
    EXPECT_NE(Pixels(), before);
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_NE(Press_Label(panel, model, 0), 0) << "another TAG stands there now";
}

TEST_F(Tag_Panel, dragging_the_thumb_scrolls_and_reports_it) {
    Lay_Out(SCROLLED);
    Label_Model model = Fresh_Model(Place(), SCROLLED);
    const int x = model.host.x + model.Margin() + 5;
    const int bottom = model.top + model.height - 3;
    EXPECT_EQ(Move(panel, x, bottom), 0) << "a mere hover";
    EXPECT_EQ(Press(panel, x, bottom), NONE);
    EXPECT_EQ(Move(panel, x, model.top - 200, LEFT_DRAG), 1);
    EXPECT_EQ(Move(panel, x, bottom), 0) << "released";
    Point_Away();
    panel.Leave();
    model.scroll = 0;
    Expect_Shows(model, "dragged to the top");
}

TEST_F(Tag_Panel, with_fewer_than_four_tags_scrolling_only_draws) {
    Lay_Out(8);
    Variable_Set("$TAG_NB", 3);
    Quiet();
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_EQ(Take_Counters().inits, 0U);
}

TEST_F(Tag_Panel, motion_shows_hover_and_leave_takes_it_away) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    window.Wipe();
    panel.Draw();
    EXPECT_EQ(Move(panel, model.X(6) + 5, model.Y(6) + 5), 0);
    EXPECT_GT(Wrong_Pixels(model), 0);
    Point_Away();
    panel.Leave();
    EXPECT_EQ(Wrong_Pixels(model), 0);
}

TEST_F(Tag_Panel, a_count_without_its_variable_is_no_count) {
    Lay_Out(ALL_IN_VIEW);
    const Label_Model model = Fresh_Model(Place(), ALL_IN_VIEW);
    Variable_Undefine("$TAG_NB");
    Quiet();
    EXPECT_EQ(Press_Label(panel, model, 6), NONE);
    EXPECT_EQ(Open_Editor(panel, model, 6), NONE);
    EXPECT_EQ(panel.Motion(HOVER), 0);
    panel.Update(~0ULL);
    panel.Leave();
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_THAT(messages.Take_Reports(), IsEmpty());
}

// ---------------- copies

// ---------------- copies

TEST_F(Tag_Panel, copies_share_the_buttons_and_live_on_without_the_original) {
    Define_Tags(ALL_IN_VIEW);
    auto original = std::make_unique<Tool_Tag>(TAG_CHECK_SELECT);
    Boxs box = Place();
    original->Resize(&box);
    const Label_Model model = Fresh_Model(box, ALL_IN_VIEW);
    EXPECT_EQ(Press_Label(*original, model, 6), 6);
    original->Leave();
    Tool_Tag copy(*original);
    EXPECT_EQ(copy.Read(), 6);
    Tool_Tag assigned;
    assigned = copy;
    assigned = *&assigned;
    // A mark that one of them takes over shows in the others.
    Variable_Set("$TAG_CUR", 9);
    original->Update(UPDATE_TAG_CUR);
    EXPECT_EQ(copy.Read(), 6) << "the current TAG is a copy's own";
    original.reset();
    Label_Model marked = model;
    marked.look[9].current = 1;
    for (Tool_Tag* panel_now : {&copy, &assigned}) {
        window.Wipe();
        panel_now->Draw();
        EXPECT_EQ(Wrong_Pixels(marked), 0);
        EXPECT_EQ(Press_Label(*panel_now, model, 13), 13);
        panel_now->Leave();
    }
}

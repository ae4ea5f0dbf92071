#include "database/tool_db_fct.h"

#include "tests/database/tree_fixture.h"

namespace {

using Tool_DB_Fct_Test = Tree_Fixture;

// ---------------- sliders

TEST_F(Tool_DB_Fct_Test, a_short_tree_disables_the_vertical_slider_at_the_top) {
    Make_Flat(11);  // 198 of 200 pixels
    vertical.value = 90.0F;
    Draw();
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE);
    EXPECT_EQ(vertical.value, 0.0F);
    EXPECT_EQ(horizontal.style, STYLE_SCROLL_BAR | STYLE_INACTIVE);
}

TEST_F(Tool_DB_Fct_Test, a_long_tree_enables_it_and_shows_its_last_row) {
    Make_Flat(12);
    Draw();
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL);
    EXPECT_EQ(vertical.minimum, 0.0F);
    EXPECT_EQ(vertical.maximum, 13.0F * 18 - 200);
}

TEST_F(Tool_DB_Fct_Test, a_wide_tree_enables_the_horizontal_slider) {
    tree.Add(0, "a title that is certainly wider than the box of this test, whatever the font");
    Tidy();
    Draw();
    EXPECT_EQ(horizontal.style, STYLE_SCROLL_BAR);
    EXPECT_EQ(horizontal.maximum, static_cast<float>(DB_List_Text_Pos(&box, 1, tree.Pt()) + 2 * SPACE_DIM - BOX_WIDTH));
}

TEST_F(Tool_DB_Fct_Test, sliders_are_laid_out_anew_only_when_something_changed) {
    Make_Flat(30);
    Draw();
    Take_Counters();
    vertical.value = 36.0F;
    Draw();
    EXPECT_EQ(Take_Counters().inits, 0U);
    vertical.value = -5.0F;  // scrolling under a dragged pointer
    Draw();
    EXPECT_EQ(vertical.value, 0.0F);
    vertical.value = 1.0e9F;
    Draw();
    EXPECT_EQ(vertical.value, vertical.maximum);
}

TEST_F(Tool_DB_Fct_Test, a_tree_that_became_short_is_drawn_at_its_new_position) {
    Make_Branch(60);
    vertical.value = 500.0F;
    Draw();
    tree[0].flag = 0;
    Draw();
    EXPECT_EQ(vertical.value, 0.0F);
    const Window_Picture at_once = Pixels();
    Draw();
    EXPECT_EQ(Pixels(), at_once);
}

// ---------------- clicks

TEST_F(Tool_DB_Fct_Test, a_click_traces_its_old_name) {
    Make_Flat(3);
    Draw();
    messages.Take();
    Point_At_Row(1);
    Click(LEFT_PRESS);
    const std::vector<Panel_Message> all = messages.Take();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0], (Panel_Message{TRACE_LEVEL, "in DB_2D_Class_List_Click(up_down=0x00000012)"}));
}

TEST_F(Tool_DB_Fct_Test, a_click_on_the_lead_cell_toggles_the_branch_and_no_mark) {
    Make_Branch(40);
    tree[3].state = DB_STATE_CHECKED;
    DB_List_Set_State(tree.Nb(), tree.Pt());
    Draw();
    const Records before = Checked();
    Point_At_Row(0, 10);
    Take_Counters();
    EXPECT_EQ(Click(LEFT_PRESS), 0);
    const Widget_Counters counters = Take_Counters();
    EXPECT_EQ(counters.draws, 2U);   // both sliders ...
    EXPECT_EQ(counters.clears, 2U);  // ... each on a cleared ground
    EXPECT_EQ(tree[0].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(tree[1].row, DB_ROW_NONE);
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Click(RELEASE), 0);  // no drag began
    EXPECT_EQ(Checked(), before);
    EXPECT_EQ(Click(LEFT_PRESS), 0);
    EXPECT_NE(tree[0].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(tree[1].row, 1);
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL);
}

TEST_F(Tool_DB_Fct_Test, the_lead_cell_of_a_leaf_selects) {
    Make_Branch(3);
    Draw();
    Point_At_Row(2, 25);
    Click(LEFT_PRESS);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(Click(RELEASE), 1);
    Select_Range();
    EXPECT_EQ(Checked(), Records{2});
}

TEST_F(Tool_DB_Fct_Test, a_drag_selects_the_rows_between) {
    Make_Flat(9);
    Draw();
    EXPECT_EQ(Click_Rows(6, 3), 1);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Select_Range(), 1);
    EXPECT_EQ(Checked(), (Records{3, 4, 5, 6}));
    EXPECT_EQ(Click(RELEASE), 0);
}

TEST_F(Tool_DB_Fct_Test, shift_extends_from_the_previous_anchor) {
    Make_Flat(9);
    Draw();
    Click_Rows(2, 2);
    Select_Range();
    EXPECT_EQ(Checked(), Records{2});
    shift_held = true;
    Click_Rows(5, 5);
    Select_Range();
    EXPECT_EQ(Checked(), (Records{2, 3, 4, 5}));
    EXPECT_EQ(db_drag.anchor_row, 2);
}

TEST_F(Tool_DB_Fct_Test, control_and_the_add_mode_keep_the_other_checks) {
    Make_Flat(9);
    Draw();
    Click_Rows(1, 1);
    Select_Range();
    control_held = true;
    Click_Rows(4, 4);
    Select_Range();
    EXPECT_EQ(Checked(), (Records{1, 4}));
    control_held = false;
    Click_Rows(6, 6);
    Select_Range(2 | DB_MODE_ADD);
    EXPECT_EQ(Checked(), (Records{1, 4, 6}));
    Click_Rows(6, 6);
    Select_Range(2 | DB_MODE_ADD);  // flips
    EXPECT_EQ(Checked(), (Records{1, 4}));
    Click_Rows(6, 6);
    Select_Range();
    EXPECT_EQ(Checked(), Records{6});
}

TEST_F(Tool_DB_Fct_Test, a_branch_takes_its_leaves_along) {
    Make_Branch(3);
    tree.Add(0);
    tree[4].flag = DB_FLAG_LEAF;
    Draw();
    Click_Rows(0, 0);
    Select_Range();
    EXPECT_EQ(Checked(), (Records{0, 1, 2, 3}));
    control_held = true;
    Click_Rows(2, 2);
    Select_Range();
    EXPECT_EQ(Checked(), (Records{1, 3}));
    EXPECT_EQ(tree[0].state, DB_STATE_PARTIAL);
}

TEST_F(Tool_DB_Fct_Test, a_drag_from_below_the_last_row_selects_what_it_covers) {
    Make_Flat(5);
    Draw();
    Point_At_Row(8);
    EXPECT_EQ(Click(LEFT_PRESS), 0);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(db_drag.anchor_row, 8);
    EXPECT_EQ(db_drag.press.y, Tree_Row_Middle(8));
    Point_At_Row(3);
    EXPECT_EQ(Click(RELEASE), 1);
    Select_Range();
    EXPECT_EQ(Checked(), (Records{3, 4}));
}

TEST_F(Tool_DB_Fct_Test, no_drag_starts_below_the_rows_of_a_collapsed_tree) {
    Make_Branch(9);
    tree[0].flag = 0;
    Draw();
    Point_At_Row(5);
    EXPECT_EQ(Click(LEFT_PRESS), 0);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Click(RELEASE), 0);
}

TEST_F(Tool_DB_Fct_Test, a_press_keeps_its_point_in_tree_coordinates) {
    Make_Flat(40);
    tree.Add(0, "a title that is certainly wider than the box of this test, whatever the font");
    tree[40].flag = DB_FLAG_LEAF;
    Draw();
    vertical.value = 90.0F;
    horizontal.value = 13.0F;
    Draw();
    Point_At(BOX_X + 150, BOX_Y + 70);
    Click(LEFT_PRESS);
    EXPECT_EQ(db_drag.press.x, 13 - SPACE_DIM + 150);
    EXPECT_EQ(db_drag.press.y, 90 + BOX_HEIGHT - 70);
}

TEST_F(Tool_DB_Fct_Test, pointers_outside_the_window_count_as_0) {
    Make_Flat(4);
    Draw();
    Point_At(-50, -9);
    DB_Tree_Point point;
    ASSERT_TRUE(DB_List_Pointer(box, horizontal, vertical, "", &point));
    EXPECT_EQ(point.x, -BOX_X - SPACE_DIM);
    EXPECT_EQ(point.y, BOX_Y + BOX_HEIGHT);
    Point_At(40000, 32768);
    ASSERT_TRUE(DB_List_Pointer(box, horizontal, vertical, "", &point));
    EXPECT_EQ(point.x, -BOX_X - SPACE_DIM);
    EXPECT_EQ(point.y, BOX_Y + BOX_HEIGHT);
}

TEST_F(Tool_DB_Fct_Test, a_drag_belongs_to_the_tree_in_which_it_began) {
    Make_Flat(5);
    Draw();
    Boxs other = box;  // shows the same records
    Point_At_Row(1);
    Click(LEFT_PRESS);
    Point_At_Row(3);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    ASSERT_TRUE(db_drag.band_shown);
    EXPECT_EQ(DB_List_Motion(&other, LEFT_DRAG, tree.Nb(), tree.Pt(), &horizontal, &vertical), 0);
    EXPECT_EQ(DB_List_Motion(&other, HOVER, tree.Nb(), tree.Pt(), &horizontal, &vertical), 0);
    EXPECT_TRUE(db_drag.band_shown) << "the band is in the first tree";
    EXPECT_EQ(DB_List_Click(&other, RELEASE, tree.Nb(), tree.Pt(), &horizontal, &vertical), 0);
    EXPECT_TRUE(db_drag.active);
    DB_Drag_Forget(&other);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(Click(RELEASE), 1);
    DB_Drag_Forget(&box);
    EXPECT_EQ(db_drag.anchor_row, 0);
}

TEST_F(Tool_DB_Fct_Test, a_press_on_an_empty_tree_begins_a_drag_like_any_other) {
    Point_At(BOX_X + 50, BOX_Y + 60);
    for (const int nb : {0, 7}) {  // 7: the count of a failed creation
        EXPECT_EQ(DB_List_Click(&box, LEFT_PRESS, nb, nullptr, &horizontal, &vertical), 0);
        EXPECT_TRUE(db_drag.active);
        EXPECT_EQ(DB_List_Motion(&box, LEFT_DRAG, nb, nullptr, &horizontal, &vertical), 1);
        EXPECT_EQ(DB_List_Click(&box, RELEASE, nb, nullptr, &horizontal, &vertical), 1);
        EXPECT_FALSE(db_drag.active);
        EXPECT_EQ(DB_List_Select_Range(&box, 2, nb, nullptr, &horizontal, &vertical), 1);
    }
}

// ---------------- rubber band

TEST_F(Tool_DB_Fct_Test, the_band_follows_the_pointer_and_leaves_nothing_behind) {
    Make_Flat(9);
    tree.Add(0, "a title that is certainly wider than the box of this test, whatever the font");
    Draw();
    const auto drag_over = [&](const std::vector<DB_Tree_Point>& points) {
        Draw();
        Point_At_Tree(60, 30);
        Click(LEFT_PRESS);
        for (const DB_Tree_Point& point : points) {
            Point_At_Tree(point.x, point.y);
            EXPECT_EQ(Motion(LEFT_DRAG), 1);
            EXPECT_TRUE(db_drag.band_shown);
        }
        db_drag.active = false;
        return Pixels();
    };
    const Window_Picture bare = (Draw(), Pixels());
    // the last step counts, whatever the way: corners in all directions, lines, a point, far outside
    const Window_Picture once = drag_over({{200, 150}});
    EXPECT_NE(once, bare);
    EXPECT_EQ(drag_over({{10, 12}, {60, 90}, {190, 30}, {60, 30}, {-20, 400}, {900, -60}, {200, 150}}), once);
    const auto changed = [&](const Window_Picture& picture) {
        int nb = 0;
        for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
            nb += picture.pixels[i] != bare.pixels[i] ? 1 : 0;
        }
        return nb;
    };
    EXPECT_EQ(changed(drag_over({{60, 90}})), 60);    // straight down
    EXPECT_EQ(changed(drag_over({{190, 30}})), 130);  // straight to the right
    EXPECT_EQ(drag_over({{200, 150}, {60, 30}}), bare);
    Draw();
    EXPECT_FALSE(db_drag.band_shown);
    EXPECT_EQ(Pixels(), bare);
}

TEST_F(Tool_DB_Fct_Test, the_band_inverts_with_its_color_and_stays_in_the_box) {
    Make_Flat(2);
    window.Wipe();
    Draw();
    const Window_Picture bare = Pixels();
    Point_At_Tree(100, 60);
    Click(LEFT_PRESS);
    Point_At_Tree(600, 100);
    Motion(LEFT_DRAG);
    const Window_Picture with_band = Pixels();
    int changed = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const std::uint32_t difference = bare.At(x, window.Row(y)) ^ with_band.At(x, window.Row(y));
            if (difference != 0) {
                changed++;
                ASSERT_EQ(difference, 0x808000U);
                ASSERT_TRUE(x >= BOX_X && x < BOX_X + BOX_WIDTH) << x << ", " << y;
            }
        }
    }
    const int visible = BOX_WIDTH - SPACE_DIM - 100;
    EXPECT_EQ(changed, 2 * visible + 39);
}

TEST_F(Tool_DB_Fct_Test, a_motion_without_buttons_forgets_the_band) {
    Make_Flat(5);
    Draw();
    EXPECT_EQ(Motion(LEFT_DRAG), 0);  // no drag
    Point_At_Row(1);
    Click(LEFT_PRESS);
    Point_At_Row(3, 150);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    EXPECT_EQ(db_drag.current.x, 150);
    EXPECT_TRUE(db_drag.band_shown);
    db_drag.active = false;
    EXPECT_EQ(Motion(0), 0);
    EXPECT_FALSE(db_drag.band_shown);
}

TEST_F(Tool_DB_Fct_Test, drawing_other_records_keeps_the_band) {
    Make_Flat(5);
    Tree_Scene other;
    other.Add(0);
    other.Finish();
    Draw();
    Point_At_Row(1);
    Click(LEFT_PRESS);
    Point_At_Row(3, 150);
    Motion(LEFT_DRAG);
    Boxs elsewhere = Host_Box(0, 0, 20, 15);
    DB_List_Draw(&elsewhere, 1, other.Pt(), &horizontal, &vertical);
    EXPECT_TRUE(db_drag.band_shown);
    Draw();
    EXPECT_FALSE(db_drag.band_shown);
    DB_List_Forget(other.Pt());
}

}  // namespace

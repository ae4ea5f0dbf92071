#include "tests/panels/brush_fixture.h"

#include <string>
#include <vector>

TEST_F(Brush_Panel, the_first_notification_builds_every_mask) {
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(masks.Wrong(i, sizes[static_cast<std::size_t>(i)]), 0) << i;
    }
}

TEST_F(Brush_Panel, a_changed_size_rebuilds_the_masks_lays_out_and_draws) {
    Bring_Up();
    Brush_Host::Sizes({2, 3, 10, 20});
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()),
              (std::vector<std::string>{"16 in Tool_Brush::Update()", "17 in Tool_Brush::Init()",
                                        "16 in Tool_Brush::Resize(dim=206x50)", "17 in Tool_Brush::Set_Color()",
                                        "17 in Tool_Brush::Set_Border()", "16 in Tool_Brush::Draw()"}));
    EXPECT_EQ(masks.Wrong(2, 10), 0);
    Expect_Discs({2, 3, 10, 20}, COLOR_1, "after the change");
    const auto updated = stage.Read();
    stage.Wipe();
    Lay_Out();
    panel.Draw();
    EXPECT_EQ(stage.Read(), updated) << "an update shows what a fresh layout and drawing show";
}

TEST_F(Brush_Panel, every_single_size_is_compared) {
    Bring_Up();
    for (std::size_t i = 0; i < 4; i++) {
        std::vector<int> changed = sizes;
        changed[i]++;
        Brush_Host::Sizes(changed);
        masks.Dirty();
        panel.Update(UPDATE_BRUSH);
        EXPECT_EQ(masks.Wrong(static_cast<int>(i), changed[i]), 0) << i;
        Brush_Host::Sizes(sizes);
        panel.Update(UPDATE_BRUSH);
    }
}

TEST_F(Brush_Panel, a_changed_number_rebuilds) {
    Bring_Up();
    Brush_Host::Sizes({2, 3, 9});
    masks.Dirty();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(2, 9), 0);
    EXPECT_TRUE(masks.Untouched(3));
    Expect_Discs({2, 3, 9}, COLOR_1, "three");
}

TEST_F(Brush_Panel, unchanged_brushes_rebuild_nothing_and_draw_nothing) {
    Bring_Up();
    masks.Dirty();
    Brush_Host::Sizes(sizes);  // another array with the same contents
    for (int i = 0; i < 5; i++) {
        panel.Update(UPDATE_BRUSH);
    }
    EXPECT_EQ(stage.Take_Messages(), std::vector<Panel_Message>(5, {16, "in Tool_Brush::Update()"}));
    EXPECT_EQ(Painted(), 0U);
    EXPECT_EQ(Widget_Counters_Get().inits, 0U);
    for (int i = 0; i < 4; i++) {
        EXPECT_TRUE(masks.Untouched(i));
    }
}

TEST_F(Brush_Panel, a_mask_with_a_missing_row_or_no_rows_is_left_alone) {
    masks.row[1][30] = nullptr;
    masks.table[2] = nullptr;
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(0, 2), 0);
    EXPECT_TRUE(masks.Untouched(1));
    EXPECT_TRUE(masks.Untouched(2));
    EXPECT_EQ(masks.Wrong(3, 20), 0);
}

TEST_F(Brush_Panel, all_masks_are_cleared_before_the_first_brush_is_set) {
    masks.table[1] = masks.table[0];  // two brushes in one mask
    Brush_Host::Sizes({20, 2});
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(0, 20), 0);
}

TEST_F(Brush_Panel, a_missing_table_leaves_the_masks_alone_and_is_tried_again) {
    Lay_Out();
    Variable_Undefine("$BRUSH_PT");
    panel.Update(UPDATE_BRUSH);
    EXPECT_TRUE(masks.Untouched(0));
    Variable_Define_Array_At("$BRUSH_PT", VARIABLE_POINTER, 4, masks.table.data());
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(3, 20), 0);
    Variable_Undefine("$BRUSH_SIZE");
    masks.Dirty();
    panel.Update(~0ULL);
    Lay_Out();
    panel.Draw();
    EXPECT_TRUE(masks.Untouched(3));
}

TEST_F(Brush_Panel, brushes_beyond_eight_get_masks_and_no_button) {
    Brush_Masks many(11, 6);
    std::vector<int> eleven = {1, 2, 3, 4, 5, 6, 7, 8, 2, 3, 200};
    Brush_Host::Sizes(eleven);
    Lay_Out();
    panel.Update(UPDATE_ALL);
    for (int i = 0; i < 11; i++) {
        EXPECT_EQ(many.Wrong(i, eleven[static_cast<std::size_t>(i)]), 0) << i;
    }
    panel.Draw();
    Expect_Discs({1, 2, 3, 4, 5, 6, 7, 8}, COLOR_1, "the scale is that of the eight shown");
    stage.Point_At(host_x + BRUSH_SPACE + 8 * Column_Width(8) - 1, host_y + host_height / 2);
    EXPECT_EQ(panel.Click(BRUSH_PRESS), 1);
    EXPECT_EQ(panel.Read(), 7);
    eleven[10] = 5;
    Brush_Host::Sizes(eleven);
    many.Dirty();
    panel.Update(UPDATE_BRUSH);
    EXPECT_TRUE(many.Untouched(10)) << "sizes without a button are not compared";
}

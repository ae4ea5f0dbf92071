// What the panels do while the host has not defined a variable. Addresses of variables are kept for the life of a
// process, so this program's tests run in order, from a host without any variable to a complete one.
#include <gtest/gtest.h>

#include "panels/tool_brush.h"
#include "panels/tool_propagate.h"
#include "tests/panels/brush_scene.h"
#include "tests/panels/propagate_scene.h"

namespace {

constexpr int PRESS = 0x12;

template <class Panel>
void Use_All(Panel& panel, const Panel_Stage& stage) {
    Boxs box = stage.Host_Box(2, 2, 150, 40);
    EXPECT_EQ(panel.Resize(&box), 1);
    panel.Draw();
    stage.Point_At(70, 22);
    EXPECT_EQ(panel.Click(PRESS), 0);
    EXPECT_EQ(panel.Motion(1), 0);
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_EQ(panel.Keyboard(KEY_LEFT), 0);
    panel.Update(~0ULL);
    panel.Leave();
}

}  // namespace

TEST(A_Host_Without_Variables, brush_panel_draws_nothing_and_picks_nothing) {
    Panel_Stage stage(160, 50, Window_Axis::Down);
    Tool_Brush panel;
    const auto before = stage.Read();
    Use_All(panel, stage);
    EXPECT_EQ(panel.Height(), 8);
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_EQ(stage.Read(), before);
    for (const Panel_Message& one : stage.Take_Messages()) {
        EXPECT_GE(one.level, 16) << one.text;
    }
}

TEST(A_Host_Without_Variables, propagate_panel_shows_no_frames) {
    Panel_Stage stage(160, 50, Window_Axis::Up);
    Tool_Propagate panel;
    panel.Set([](void*, void*) { return 1; });
    Use_All(panel, stage);
    EXPECT_EQ(panel.Height(), 0);
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_EQ(panel.Propagate(-1), 0);
    EXPECT_TRUE(stage.Take_Changes().empty());
    for (const Panel_Message& one : stage.Take_Messages()) {
        EXPECT_EQ(one.level, 16) << one.text;
    }
}

TEST(A_Host_Without_Variables, drawing_needs_number_and_index_of_the_brushes) {
    Panel_Stage stage(160, 50, Window_Axis::Down);
    Tool_Brush panel;
    Boxs box = stage.Host_Box(2, 2, 150, 40);
    panel.Resize(&box);
    const auto before = stage.Read();
    Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, 2);
    panel.Draw();
    EXPECT_EQ(stage.Read(), before) << "asked for again, and the index is still missing";
    Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
    panel.Draw();
    EXPECT_NE(stage.Read(), before) << "the frame";
    panel.Update(~0ULL);
    stage.Point_At(70, 22);
    EXPECT_EQ(panel.Click(PRESS), 1) << "buttons without discs: the sizes are still missing";
}

TEST(A_Host_Without_Variables, a_host_that_defines_them_later_gets_a_working_panel) {
    Panel_Stage stage(160, 50, Window_Axis::Down);
    Tool_Brush panel;
    const Brush_Host host;
    Brush_Masks masks(4, 10);
    Boxs box = stage.Host_Box(2, 2, 150, 40);
    panel.Resize(&box);
    panel.Update(UPDATE_ALL);
    panel.Draw();
    stage.Point_At(70, 22);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(masks.Wrong(2, 9), 0);
}

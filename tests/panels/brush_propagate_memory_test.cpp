// Every allocation of the panels fails once; a panel that got none must survive every operation.
#include <gtest/gtest.h>

#include <array>

#include "panels/tool_brush.h"
#include "panels/tool_propagate.h"
#include "tests/kits/common/failing_memory.h"
#include "tests/panels/brush_scene.h"
#include "tests/panels/propagate_scene.h"

namespace {

constexpr int PRESS = 0x12;

void Use_All(Tool_Brush& panel, const Panel_Stage& stage) {
    Boxs box = stage.Host_Box(2, 2, 150, 40);
    panel.Resize(&box);
    panel.Draw();
    stage.Point_At(70, 22);
    panel.Click(PRESS);
    panel.Motion(1);
    Variable_Set("$BRUSH_CUR", 1 + panel.Read() % 3);
    panel.Update(~0ULL);
    panel.Leave();
    const Tool_Brush copy(panel);
    panel = copy;
}

}  // namespace

TEST(Failing_Allocations, a_brush_panel_without_buttons_or_sizes_still_builds_the_masks) {
    const Brush_Host host;
    Brush_Masks masks(4, 10);
    Panel_Stage stage(160, 50, Window_Axis::Down);
    const std::array<int, 4> size = {2, 3, 9, 20};
    int without_buttons = 0;
    const int failed = Fail_Each_Allocation([&] {
        Tool_Brush panel;
        masks.Dirty();
        Boxs box = stage.Host_Box(2, 2, 150, 40);
        panel.Resize(&box);
        panel.Update(UPDATE_ALL);
        stage.Point_At(70, 22);
        without_buttons += panel.Click(PRESS) == 0 ? 1 : 0;
        panel.Draw();
        panel.Leave();
        for (int i = 0; i < 4; i++) {
            EXPECT_EQ(masks.Wrong(i, size[static_cast<std::size_t>(i)]), 0);
        }
    });
    EXPECT_GE(failed, 2) << "buttons and sizes";
    EXPECT_GE(without_buttons, 1);
}

TEST(Failing_Allocations, every_operation_of_the_brush_panel_survives_each) {
    const Brush_Host host;
    Brush_Masks masks(4, 10);
    Panel_Stage stage(160, 50, Window_Axis::Down);
    Fail_Each_Allocation([&] {
        Tool_Brush panel;
        Use_All(panel, stage);
    });
    Tool_Brush panel;
    Use_All(panel, stage);
    EXPECT_EQ(panel.Click(PRESS), 1);
}

TEST(Failing_Allocations, every_operation_of_the_propagate_panel_survives_each) {
    Propagate_Host host;
    Stage_Volume volume(5);
    Panel_Stage stage(260, 60, Window_Axis::Up);
    const auto use_all = [&](Tool_Propagate& panel) {
        Boxs box = stage.Host_Box(2, 2, 250, 50);
        panel.Resize(&box);
        panel.Set([](void*, void*) { return 12; });
        Window_Frame_Set(&host.window, volume.At(1));
        panel.Update(UPDATE_ALL);
        panel.Draw();
        stage.Point_At(30, 15);
        panel.Click(PRESS);
        panel.Motion(1);
        stage.Point_At(130, 15);
        panel.Scroll(-1);
        panel.Propagate(1);
        panel.Leave();
        const Tool_Propagate copy(panel);
        panel = copy;
    };
    Fail_Each_Allocation([&] {
        Tool_Propagate panel;
        use_all(panel);
    });
    Tool_Propagate panel;
    use_all(panel);
    Window_Frame_Set(&host.window, volume.At(1));
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(panel.Propagate(1), 12);
    Window_Frame_Set(&host.window, nullptr);
}

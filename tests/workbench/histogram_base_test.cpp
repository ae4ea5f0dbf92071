#include "workbench/histogram_base.h"

#include <gtest/gtest.h>

#include "tests/histogram/histo_stage.h"

using namespace workbench;

namespace {

TEST(Histogram_Base, nothing_stays_on_the_screen_of_counts_that_are_gone) {
    for (const Window_Axis axis : {Window_Axis::Up, Window_Axis::Down}) {
        Histo_Scene scene;
        Scene_Object& frame = scene.Add_Grey({}, {5, 900, 30, 400, 7, 7, 60, 2});
        const Histo_Stage stage(axis);
        Tool_Histo panel;
        Histogram_Base base(panel, [](Tool_Histo& wanting) { return wanting.Height(100); });
        Boxs box = stage.Place();
        base.Resize(&box);
        base.Draw();
        const auto empty = stage.Read();
        constexpr unsigned __int64 flags = UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT;
        base.Update(flags);
        const auto full = stage.Read();
        EXPECT_NE(full, empty);

        frame.Select(false);
        base.Update(flags);
        EXPECT_EQ(stage.Read(), empty) << "no frame is selected";
        frame.Select(true);
        base.Update(flags);
        EXPECT_EQ(stage.Read(), full);
        frame.Histogram_Drop();
        base.Update(UPDATE_HISTO_DATA);
        EXPECT_EQ(stage.Read(), empty) << "the frame has no histogram any more";
    }
}

TEST(Histogram_Base, the_magnification_outlives_a_change_of_the_layout) {
    const Histo_Scene scene;
    const Histo_Stage stage(Window_Axis::Up);
    Tool_Histo panel;
    Histogram_Base base(panel, [](Tool_Histo& wanting) { return wanting.Height(100); });
    Boxs box = stage.Place();
    base.Resize(&box);
    base.Scale_Set(0.25F);
    base.Resize(&box);
    EXPECT_EQ(panel.scale, 0.25F);
    EXPECT_EQ(panel.scale_valuator.value, 0.25F);
    base.Scale_Set(7.0F);
    EXPECT_EQ(panel.scale, HISTO_SCALE_MAX);
}

}  // namespace

#include "workbench/hosted_histogram.h"

#include <gtest/gtest.h>

#include "tests/histogram/histo_stage.h"

using namespace workbench;

namespace {

TEST(Hosted_Histogram, nothing_stays_on_the_screen_of_counts_that_are_gone) {
    for (const Window_Axis axis : {Window_Axis::Up, Window_Axis::Down}) {
        Histo_Scene scene;
        Scene_Object& frame = scene.Add_Grey({}, {5, 900, 30, 400, 7, 7, 60, 2});
        const Histo_Stage stage(axis);
        Tool_Histo panel;
        Hosted_Histogram hosted(panel, [](Tool_Histo& wanting) { return wanting.Height(100); });
        Boxs box = stage.Place();
        hosted.Resize(&box);
        hosted.Draw();
        const auto empty = stage.Read();
        constexpr unsigned __int64 flags = UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT;
        hosted.Update(flags);
        const auto full = stage.Read();
        EXPECT_NE(full, empty);

        frame.Select(false);
        hosted.Update(flags);
        EXPECT_EQ(stage.Read(), empty) << "no frame is selected";
        frame.Select(true);
        hosted.Update(flags);
        EXPECT_EQ(stage.Read(), full);
        frame.Histogram_Drop();
        hosted.Update(UPDATE_HISTO_DATA);
        EXPECT_EQ(stage.Read(), empty) << "the frame has no histogram any more";
    }
}

TEST(Hosted_Histogram, the_magnification_outlives_a_change_of_the_layout) {
    const Histo_Scene scene;
    const Histo_Stage stage(Window_Axis::Up);
    Tool_Histo panel;
    Hosted_Histogram hosted(panel, [](Tool_Histo& wanting) { return wanting.Height(100); });
    Boxs box = stage.Place();
    hosted.Resize(&box);
    hosted.Scale_Set(0.25F);
    hosted.Resize(&box);
    EXPECT_EQ(panel.scale, 0.25F);
    EXPECT_EQ(panel.scale_valuator.value, 0.25F);
    hosted.Scale_Set(7.0F);
    EXPECT_EQ(panel.scale, HISTO_SCALE_MAX);
}

/** Two frames of one grid, of which one is selected. */
class Histogram_Magnification : public ::testing::Test {
  protected:
    void SetUp() override {
        other.Select(false);
        Boxs box = stage.Place();
        hosted.Resize(&box);
        hosted.Scale_Release();
        Show();
    }
    void Show() { hosted.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT); }
    void Select_Other() {
        one.Select(false);
        other.Select(true);
        Show();
    }
    Histo_Scene scene;
    Scene_Object& one = scene.Add_Grey({}, {1000, 2, 2, 500, 2, 2, 2, 2});
    Scene_Object& other = scene.Add_Grey({}, {1000, 2, 2, 100, 2, 2, 2, 2});
    const Histo_Stage stage{Window_Axis::Up};
    Tool_Histo panel;
    Hosted_Histogram hosted{panel, [](Tool_Histo& wanting) { return wanting.Height(100); }};
};

TEST_F(Histogram_Magnification, is_proposed_anew_when_the_selection_changes) {
    EXPECT_TRUE(hosted.Scale_Suggest());
    EXPECT_FLOAT_EQ(panel.scale, 0.55F);
    EXPECT_FALSE(hosted.Scale_Suggest()) << "nothing new";
    Select_Other();
    EXPECT_TRUE(hosted.Scale_Suggest());
    EXPECT_FLOAT_EQ(panel.scale, 0.11F);
    EXPECT_EQ(panel.scale_valuator.value, panel.scale);
}

TEST_F(Histogram_Magnification, stays_when_the_user_has_set_it_by_key_or_on_the_panel) {
    hosted.Scale_Suggest();
    hosted.Scale_Set(0.3F);
    Select_Other();
    EXPECT_FALSE(hosted.Scale_Suggest());
    EXPECT_EQ(panel.scale, 0.3F);
    hosted.Scale_Release();
    EXPECT_TRUE(hosted.Scale_Suggest()) << "another image";
    panel.scale = panel.scale_valuator.value = 0.7F;  // as a press on the slider does
    EXPECT_FALSE(hosted.Scale_Suggest());
    EXPECT_EQ(panel.scale, 0.7F);
}

TEST_F(Histogram_Magnification, stays_when_the_user_has_set_the_very_one_that_was_proposed) {
    hosted.Scale_Suggest();
    const float proposed = panel.scale;
    hosted.Scale_Set(proposed);
    Select_Other();
    EXPECT_FALSE(hosted.Scale_Suggest());
    EXPECT_EQ(panel.scale, proposed);
}

TEST_F(Histogram_Magnification, stays_when_there_are_no_counts_and_is_no_choice_of_the_users_after_a_layout) {
    hosted.Scale_Suggest();
    one.Select(false);
    Show();
    EXPECT_FALSE(hosted.Scale_Suggest());
    Boxs box = stage.Place();
    hosted.Resize(&box);
    Select_Other();
    EXPECT_TRUE(hosted.Scale_Suggest());
    EXPECT_FLOAT_EQ(panel.scale, 0.11F);
}

}  // namespace

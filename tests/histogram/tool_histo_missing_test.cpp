// A host that has not defined its variables. The panel keeps the address of each variable once it was found, so the
// order of the steps matters and one test holds them all.
#include <gtest/gtest.h>

#include "histogram/tool_histo_compute.h"
#include "histogram/tool_histo_paint.h"
#include "tests/histogram/histo_scene.h"

TEST(Missing_Host_Variables, stop_only_what_needs_them) {
    Quorel_2D volume;
    Quorel_Window window;
    window.volume = &volume;
    Scene_Object frame;
    frame.counts[0] = {1, 2, 3};
    frame.record.nb_bins = 3;
    frame.record.bin_width = 1.0F;
    frame.record.counts = frame.counts[0].data();
    frame.frame.histogram = &frame.record;
    frame.object.frame = &frame.frame;
    frame.Select(true);
    volume.Child_Add(&frame.object);
    frame.object.Parent_Set_Pt(&volume);
    Object_Register_2D(&frame.object);

    Tool_Histo panel;
    EXPECT_EQ(Histo_Compute(panel), 0) << "no current window";
    Variable_Define_Pointer("$WINDOW_CUR", &window);
    Histo_Record_Give(panel, {}, {7});
    const Histo_Record* record = panel.data->record;
    const auto expect_untouched = [&](const char* step) {
        EXPECT_EQ(Histo_Compute(panel), 0) << step;
        EXPECT_EQ(panel.data->record, record) << step;
        EXPECT_EQ(record->counts[0], 7U) << step;
    };
    expect_untouched("no variable");
    panel.blow_button.current = 1;
    panel.Update(UPDATE_COLOR_COMPONENT | UPDATE_ALL);
    EXPECT_EQ(panel.blow_button.current, 1) << "without the component the update ends there";
    Variable_Define_Scalar("$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, 2);
    expect_untouched("no largest number of bins");
    Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, 100);
    expect_untouched("no number of bins");
    EXPECT_EQ(panel.color_component, 0);

    // No image mouse, no TAGs, no dimensions.
    EXPECT_EQ(Histo_Cursor(panel), 1) << "no window to draw in: nothing is asked";
    panel.Set(1, 3, 0.0, 1.0);
    EXPECT_EQ(Histo_Paint(panel), 1);
    Boxs box;
    box.width = 100;
    box.height = 50;
    EXPECT_EQ(panel.Resize(&box), 1);
    EXPECT_EQ(panel.width, 94);
    EXPECT_EQ(panel.blow_button.width, 0);
    panel.Update(~0ULL);
    EXPECT_EQ(panel.data->record->counts[0], 7U);

    // The grey-level selection never exists and stops nothing.
    Variable_Define_Scalar("$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, 0);
    EXPECT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(panel.color_component, 2);
    EXPECT_EQ(panel.data->record->nb_bins, 4);
    EXPECT_GE(Variable_Look_Ups("$SELECT_GLI_MIN"), 1U) << "looked up all the same";
    EXPECT_GE(Variable_Look_Ups("$SELECT_GLI_MAX"), 1U);
}

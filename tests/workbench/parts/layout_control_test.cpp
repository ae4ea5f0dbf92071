#include "workbench/parts/layout_control.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

/** An application that notes what it is asked for. */
struct Layout_Test : ::testing::Test {
    Settings settings;
    Views_Shown arranged;
    int arrange_nb = 0;
    int redraw_nb = 0;
    std::string told;
    Layout_Control layouts{{[this]() -> Settings& { return settings; },
                            [this](const Views_Shown& views) {
                                arranged = views;
                                ++arrange_nb;
                            },
                            [this] { ++redraw_nb; }, [](int view) { return "plane " + std::to_string(view); },
                            [this](const std::string& text) { told = text; }}};
};

TEST_F(Layout_Test, what_is_chosen_is_shown_and_kept) {
    layouts.Arrangement_Set(View_Arrangement::Four);
    EXPECT_EQ(arranged, (Views_Shown{View_Arrangement::Four, 0, false}));
    layouts.Views_Link(true);
    EXPECT_EQ(arranged, (Views_Shown{View_Arrangement::Four, 0, true}));
    EXPECT_EQ(settings.views, arranged);
    EXPECT_EQ(layouts.Arrangement_Now(), View_Arrangement::Four);
    EXPECT_TRUE(layouts.Is_Linked());
    layouts.Linear_Set(true);
    EXPECT_TRUE(settings.is_linear);
    EXPECT_EQ(redraw_nb, 1);
}

TEST_F(Layout_Test, each_plane_becomes_the_large_one_in_turn) {
    for (const int large : {1, 2, 0}) {
        layouts.Large_Plane_Next();
        EXPECT_EQ(arranged.large, large);
        EXPECT_EQ(told, "The large view: plane " + std::to_string(large));
    }
}

TEST_F(Layout_Test, the_slices_come_back_only_where_they_are_hidden) {
    layouts.Slices_Show();
    layouts.Large_Plane_Next();
    layouts.Arrangement_Set(View_Arrangement::Three);
    const int before = arrange_nb;
    layouts.Slices_Show();
    EXPECT_EQ(arrange_nb, before);
    layouts.Arrangement_Set(View_Arrangement::One);
    layouts.Slices_Show();
    EXPECT_EQ(arranged, (Views_Shown{View_Arrangement::One, SLICES_VIEW, false}));
}

}  // namespace

// What keys and menus do to what is shown of the image.
#include "workbench/parts/view_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class View_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    View_Host Host() {
        View_Host host;
        host.stroke_end = [this] { ++strokes_ended; };
        host.place = [this](int slice) { placed.push_back(slice); };
        host.go = [this](int volume) { gone.push_back(volume); };
        host.zoom_to = [this](double factor) { zoom = factor; };
        host.zoom_by = [this](int step) { zoom += step; };
        host.plane_step = [this](int step) {
            plane_steps += is_plane_alone ? step : 0;
            return is_plane_alone;
        };
        host.plane_end = host.plane_step;
        return host;
    }
    int strokes_ended = 0;
    std::vector<int> placed;
    std::vector<int> gone;
    double zoom = 0.0;
    bool is_plane_alone = false;
    int plane_steps = 0;
    Settings settings;
    View_Control view{work, settings, dialogs, Host()};
};

TEST_F(View_Watch, without_an_image_there_is_no_slice_to_go_to) {
    view.Slice_Show(1);
    view.Slice_Step(1);
    view.Slice_To_End(true);
    EXPECT_THAT(placed, IsEmpty());
    EXPECT_THAT(view.Window_Entries(), IsEmpty());
    EXPECT_EQ(strokes_ended, 0);
}

TEST_F(View_Watch, slices_end_at_both_ends) {
    Open(2);
    view.Slice_Step(1);
    view.Slice_To_End(true);
    view.Slice_Step(1);
    view.Slice_To_End(false);
    view.Slice_Step(-1);
    EXPECT_THAT(placed, ElementsAre(1, NZ - 1, 0));
    EXPECT_EQ(strokes_ended, 3);
    EXPECT_TRUE(Told().Has(Change::Position));
    EXPECT_THAT(dialogs.logged, ElementsAre("slice 1", "slice " + std::to_string(NZ - 1), "slice 0"));
    view.Slice_Show(0);  // told although it is shown
    EXPECT_TRUE(Told().Has(Change::Position));
    view.Volume_Step(1);
    EXPECT_THAT(gone, ElementsAre(1));
}

TEST_F(View_Watch, the_window_moves_by_shares_of_the_levels_and_comes_back) {
    Open(1);
    work.statistics.min = 0.0;
    work.statistics.max = 1000.0;
    work.statistics.window_low = 100.0;
    work.statistics.window_high = 500.0;
    view.Window_Reset();
    EXPECT_EQ(work.grey_window, (Grey_Window{100.0F, 500.0F}));
    EXPECT_EQ(Told(), Changes(Change::View));
    const Grey_Window first = work.grey_window;
    view.Level_Step(1);
    EXPECT_NE(work.grey_window.low, first.low);
    EXPECT_FLOAT_EQ(work.grey_window.high - work.grey_window.low, 400.0F);
    view.Window_Width_Step(1);
    EXPECT_GT(work.grey_window.high - work.grey_window.low, 400.0F);
    view.Window_Reset();
    EXPECT_EQ(work.grey_window, first);
}

TEST_F(View_Watch, a_window_of_the_list_is_marked_when_it_is_chosen) {
    volumes::Image_Folder opened;
    volumes::Folder_Volume& one = opened.volumes.emplace_back();
    one.volume = Image();
    one.modality = ('C' << 8) | 'T';
    work.volumes.Take(std::move(opened), {}, work.session);
    ASSERT_GT(view.Window_Entries().size(), 1U);
    view.Window_Choose(1);
    const std::vector<Numbered_Entry> entries = view.Window_Entries();
    EXPECT_TRUE(entries[1].is_checked);
    EXPECT_EQ(entries[1].text.substr(0, 4), "&2  ");
    EXPECT_THAT(dialogs.told, testing::SizeIs(1));
    const Grey_Window chosen = work.grey_window;
    view.Window_Choose(-1);
    view.Window_Choose(static_cast<int>(entries.size()));
    EXPECT_EQ(work.grey_window, chosen);
}

TEST_F(View_Watch, opacity_is_a_share_in_per_cent) {
    settings.overlay_opacity = 40;
    dialogs.texts = {"101", "-1", "5x", "", std::nullopt, "0", "100"};
    for (int time = 0; time < 5; ++time) {
        view.Overlay_Opacity_Ask();
        EXPECT_EQ(settings.overlay_opacity, 40);
    }
    EXPECT_THAT(dialogs.warned, testing::SizeIs(4));
    view.Overlay_Opacity_Ask();
    EXPECT_EQ(settings.overlay_opacity, 0);
    view.Overlay_Opacity_Ask();
    EXPECT_EQ(settings.overlay_opacity, 100);
}

TEST_F(View_Watch, overlays_are_shown_and_hidden) {
    view.Overlay_Set(false);
    EXPECT_FALSE(settings.is_overlay_shown);
    EXPECT_FALSE(view.Is_Overlay());
    view.Range_Overlay_Set(true);
    EXPECT_TRUE(view.Is_Range_Overlay());
}

TEST_F(View_Watch, keys_go_through_a_plane_that_stands_alone) {
    is_plane_alone = true;
    const int slice = work.slice;
    view.Slice_Step(3);
    view.Slice_To_End(true);
    EXPECT_EQ(plane_steps, 3 + 1);
    EXPECT_EQ(work.slice, slice);
}

}  // namespace

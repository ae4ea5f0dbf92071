// What keys and menus do with TAGs, brushes and markers.
#include "workbench/parts/tag_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Tag_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    Tag_Watch() { Open(1); }
    Tag_Host Host() {
        Tag_Host host;
        host.settle = [this] { ++settled; };
        host.slice_show = [this](int slice) { slices.push_back(slice); };
        host.scroll_to = [this](int tag) { scrolled.push_back(tag); };
        host.panel_set = [this](Tag_Mark mark, bool is_threshold) {
            panel += std::to_string(static_cast<int>(mark)) + (is_threshold ? "t" : "-");
        };
        host.shared_keep = [this] { ++shares_kept; };
        host.tool_step = [this](int) { return is_tool_stepped; };
        host.folded = [](const std::string& text) {
            std::string lower = text;
            std::ranges::transform(lower, lower.begin(), [](unsigned char letter) { return std::tolower(letter); });
            return lower;
        };
        return host;
    }
    int settled = 0;
    std::vector<int> slices;
    std::vector<int> scrolled;
    std::string panel;
    bool is_tool_stepped = false;
    int shares_kept = 0;
    Tag_Control tags{work, values, labels, dialogs, Host()};
};

TEST_F(Tag_Watch, a_tag_that_there_is_not_is_not_picked) {
    tags.Tag_Pick(24);
    tags.Tag_Pick(-1);
    EXPECT_EQ(values.Tag_Cur(), 1);
    EXPECT_TRUE(Told().Is_Empty());
}

TEST_F(Tag_Watch, a_picked_tag_is_scrolled_to_when_everybody_knows_it) {
    tags.Tag_Step_By(-2);
    EXPECT_EQ(values.Tag_Cur(), 23);
    EXPECT_THAT(scrolled, IsEmpty());
    EXPECT_TRUE(Told().Has(Change::Current_Tag));
    EXPECT_THAT(scrolled, ElementsAre(23));
    tags.Tag_Set(3, false);
    Told();
    EXPECT_THAT(scrolled, ElementsAre(23));
}

TEST_F(Tag_Watch, a_tag_is_found_by_number_or_part_of_its_name) {
    values.Tag_Label_Set(5, "Liver left");
    values.Tag_Label_Set(9, "Liver right");
    dialogs.texts = {"7", "LIVER", "liver", "liver", "heart", "300", "1234", "", std::nullopt};
    for (const int expected : {7, 9, 5, 9, 9, 9, 9, 9, 9}) {
        tags.Tag_Go_To();
        EXPECT_EQ(values.Tag_Cur(), expected);
    }
    EXPECT_THAT(dialogs.warned, ElementsAre("No TAG has \"heart\" in its name.",
                                            HasSubstr("no TAG 300; there are TAGs 0 to 23"), HasSubstr("no TAG 1234")));
}

TEST_F(Tag_Watch, a_threshold_is_a_number_or_none) {
    work.panel_scale = {3, 1000.0};
    dialogs.texts = {"2.5", "abc", "1e999", std::nullopt, ""};
    tags.Threshold_Ask(false);
    EXPECT_FLOAT_EQ(values.Threshold_Min()[1], 2500.0F);
    EXPECT_TRUE(Told().Has(Change::Bands));
    for (int wrong = 0; wrong < 3; ++wrong) {
        tags.Threshold_Ask(false);
        EXPECT_THAT(dialogs.offered, ElementsAre("2.50000"));
        EXPECT_FLOAT_EQ(values.Threshold_Min()[1], 2500.0F);
    }
    EXPECT_THAT(dialogs.warned, ElementsAre("\"abc\" is no number.", "\"1e999\" is no number."));
    EXPECT_TRUE(Told().Is_Empty());
    tags.Threshold_Ask(false);
    EXPECT_EQ(values.Threshold_Min()[1], TAG_THRESHOLD_MIN_UNSET);
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 2U);
}

TEST_F(Tag_Watch, another_name_is_one_step) {
    dialogs.texts = {"Liver", "Liver", ""};
    for (int time = 0; time < 3; ++time) {
        tags.Tag_Rename_Ask();
    }
    EXPECT_EQ(labels.Tag_Name(1), "Liver");
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 1U);
    EXPECT_TRUE(Told().Has(Change::Texts));
    dialogs.texts = {"Apex"};
    tags.Marker_Rename_Ask();
    EXPECT_EQ(labels.Marker_Name(0), "Apex");
    EXPECT_EQ(labels.Tag_Name(1), "Liver");
}

TEST_F(Tag_Watch, marks_are_those_of_the_current_tag) {
    EXPECT_TRUE(tags.Has_Tag_Mark(Tag_Mark::Enable));
    tags.Tag_Toggle(Tag_Mark::Enable);
    EXPECT_FALSE(tags.Has_Tag_Mark(Tag_Mark::Enable));
    EXPECT_EQ(Told(), Changes(Change::Tag_Shown));
    tags.Tag_Toggle(Tag_Mark::Lock);
    EXPECT_EQ(values.Tag_Lock()[1], 1);
    EXPECT_EQ(Told(), Changes(Change::Tag_Locked));
    tags.Tag_Toggle(Tag_Mark::Select);
    EXPECT_EQ(values.Tag_Select()[1], 0);
    EXPECT_EQ(Told(), Changes(Change::Tag_Selected));
}

TEST_F(Tag_Watch, the_panel_is_told_check_mark_and_threshold_mode_together) {
    tags.Check_Mark_Set(Tag_Mark::Lock);
    tags.Threshold_Mode_Set(true);
    tags.Check_Mark_Set(Tag_Mark::Select);
    EXPECT_EQ(panel, "2-2t1t");
    EXPECT_TRUE(tags.Is_Threshold_Mode());
    EXPECT_TRUE(tags.Is_Check_Mark(Tag_Mark::Select));
    EXPECT_TRUE(Told().Has(Change::Bands));
}

TEST_F(Tag_Watch, the_tool_in_hand_steps_before_the_brush) {
    tags.Brush_Step(2);
    EXPECT_EQ(values.Brush_Cur(), 2);
    EXPECT_TRUE(Told().Has(Change::Brush));
    is_tool_stepped = true;
    tags.Brush_Step(2);
    EXPECT_EQ(values.Brush_Cur(), 2);
}

TEST_F(Tag_Watch, markers_go_round_and_show_their_slice) {
    Marker_Put(7, 4);
    tags.Marker_Step(-1);
    EXPECT_EQ(values.Marker_Cur(), 7);
    EXPECT_THAT(slices, ElementsAre(4));
    tags.Markers_Refresh();
    EXPECT_EQ(values.Marker_Enable()[7], 1);
    tags.Marker_Remove();
    EXPECT_EQ(settled, 1);
    EXPECT_FALSE(work.session.Markers().Get(7).is_placed);
    tags.Markers_Refresh();
    EXPECT_EQ(values.Marker_Enable()[7], 0);
    EXPECT_TRUE(Told().Has(Change::Markers));
}

TEST_F(Tag_Watch, more_tags_come_in_rows_up_to_the_last) {
    tags.Tag_More();
    EXPECT_EQ(values.Tag_Nb(), 28);
    EXPECT_TRUE(Told().Has(Change::Tag_Nb));
    labels.Nb_Grow(255);
    tags.Tag_More();
    EXPECT_EQ(values.Tag_Nb(), 256);
    labels.Nb_Grow(3);
    EXPECT_EQ(values.Tag_Nb(), 256);
}

TEST_F(Tag_Watch, all_volumes_may_have_one_set_of_names) {
    tags.Labels_Share(true);
    EXPECT_TRUE(tags.Are_Labels_Shared());
    EXPECT_EQ(settled, 1);
    tags.Labels_Share(false);
    EXPECT_FALSE(tags.Are_Labels_Shared());
    EXPECT_EQ(shares_kept, 2);
    EXPECT_THAT(dialogs.told, ElementsAre(HasSubstr("All open volumes"), HasSubstr("Each volume")));
}

TEST_F(Tag_Watch, names_of_other_volumes_do_not_go_unasked) {
    Open(2);
    values.Tag_Label_Set(1, "Liver");
    dialogs.answers = {Dialogs::Answer::No};
    tags.Labels_Share(true);
    EXPECT_FALSE(tags.Are_Labels_Shared());
    EXPECT_EQ(shares_kept, 0);
    dialogs.answers = {Dialogs::Answer::Yes};
    tags.Labels_Share(true);
    EXPECT_TRUE(tags.Are_Labels_Shared());
}

}  // namespace

// Names, colours and thresholds between the panels, the history and files.
#include "workbench/model/label_attributes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kit_dataset.h"
#include "tests/workbench/parts/work_scene.h"
#include "workbench/model/label_state.h"

using namespace workbench;

namespace {

class Attributes_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    Attributes_Watch() { Open(1); }
};

TEST_F(Attributes_Watch, what_is_described_comes_back) {
    work.panel_scale = {3, 1000.0};
    values.Tag_Label_Set(3, "Liver");
    values.Tag_Enable()[3] = 0;
    values.Tag_Lock()[4] = 1;
    values.Threshold_Min()[3] = 2500.0F;
    values.Marker_Color_Set(1, 0x112233);
    const Label_Description description = labels.Describe();
    ASSERT_EQ(description.tags.size(), static_cast<std::size_t>(values.Tag_Nb()));
    EXPECT_EQ(description.tags[3].low, 2.5F);
    EXPECT_EQ(description.tags[3].high, std::nullopt);
    EXPECT_EQ(description.markers[1].color, 0x332211U);

    Work_Scene other;
    other.Open(1);
    EXPECT_EQ(other.labels.Take(description), 0);
    EXPECT_EQ(other.labels.Describe(), description);
    EXPECT_EQ(other.values.Threshold_Min()[3], 2.5F);  // told in the unit of the other image
    EXPECT_EQ(other.work.session.Journal().Undo_Nb(), 0U);
    const Changes told = other.Told();
    for (const Change change : {Change::Colors, Change::Texts, Change::Bands, Change::Tag_Shown, Change::Tag_Locked}) {
        EXPECT_TRUE(told.Has(change));
    }
    other.labels.Note();
    EXPECT_EQ(other.work.session.Journal().Undo_Nb(), 0U);  // what was taken is known
}

TEST_F(Attributes_Watch, names_that_the_code_page_lacks_are_counted) {
    Label_Description description;
    description.tags = {{40, 1, true, true, false, {}, {}, "Gef\xC3\xA4\xC3\x9F"},
                        {2, 1, true, true, false, {}, {}, "plain"}};
    description.markers = {{0, 1, {}, "\xC3\xA9"}};
    EXPECT_EQ(labels.Take(description), 2);
    EXPECT_EQ(labels.Tag_Name(40), "Gef??");
    EXPECT_EQ(values.Tag_Nb(), 44);
}

TEST_F(Attributes_Watch, thresholds_are_grey_values_whatever_the_unit) {
    work.panel_scale = {3, 1000.0};
    values.Threshold_Min()[1] = 2500.0F;
    values.Threshold_Max()[2] = 99000.0F;
    labels.Unit_Follow();
    EXPECT_EQ(work.panel_scale, Panel_Scale_Of(work.session.Image()));
    EXPECT_DOUBLE_EQ(labels.Grey_Of(values.Threshold_Min()[1]), 2.5);
    EXPECT_DOUBLE_EQ(labels.Grey_Of(values.Threshold_Max()[2]), 99.0);
    EXPECT_EQ(values.Threshold_Max()[1], TAG_THRESHOLD_MAX_UNSET);
    EXPECT_EQ(values.Threshold_Min()[2], TAG_THRESHOLD_MIN_UNSET);
}

TEST_F(Attributes_Watch, differences_are_steps_of_their_kind) {
    values.Tag_Label_Set(1, "one");
    labels.Note();
    EXPECT_EQ(Told(), Changes(Change::Texts));
    values.Threshold_Min()[1] = 5.0F;
    labels.Note();
    EXPECT_EQ(Told(), Changes(Change::Bands));
    labels.Note();
    EXPECT_TRUE(Told().Is_Empty());
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 2U);
}

TEST_F(Attributes_Watch, each_volume_has_names_colours_and_states_of_its_own) {
    Open(3);
    values.Tag_Label_Set(1, "Liver");
    values.Marker_Label_Set(2, "Apex");
    values.Tag_Color_Set(1, 0xAA5500);
    values.Marker_Color_Set(2, 0x0102FF);
    values.Tag_Lock()[1] = 1;
    values.Tag_Enable()[2] = 0;
    values.Tag_Select()[3] = 0;
    values.Threshold_Min()[1] = 12.5F;
    values.Threshold_Max()[200] = 0.1F;
    const Label_State mine = Label_State_Of(values, work.panel_scale);
    Told();

    Go(1);
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 0U);
    EXPECT_EQ(values.Tag_Labels()[1], nullptr);
    EXPECT_EQ(values.Marker_Labels()[2], nullptr);
    EXPECT_NE(values.Tag_Color(1), 0xAA5500U);
    EXPECT_EQ(values.Tag_Lock()[1], 0);
    EXPECT_EQ(values.Threshold_Min()[1], TAG_THRESHOLD_MIN_UNSET);
    EXPECT_TRUE(Changes({Change::Colors, Change::Texts, Change::Bands, Change::Tag_Shown, Change::Tag_Selected,
                         Change::Tag_Locked})
                    .Is_Within(Told()));
    values.Tag_Label_Set(1, "Spleen");
    labels.Note();

    Go(2);
    EXPECT_EQ(values.Tag_Labels()[1], nullptr);
    Go(0);
    EXPECT_EQ(Label_State_Of(values, work.panel_scale), mine);
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 3U);  // two names and the thresholds, noted when it was left
    Go(1);
    EXPECT_EQ(labels.Tag_Name(1), "Spleen");
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 1U);
}

TEST_F(Attributes_Watch, volumes_are_opened_with_the_names_that_there_are) {
    values.Tag_Label_Set(1, "Liver");
    Open(2);
    Go(1);
    EXPECT_EQ(labels.Tag_Name(1), "Liver");
    Told();
    Go(0);
    EXPECT_TRUE(Told().Is_Empty());  // nothing is another way
}

TEST_F(Attributes_Watch, all_volumes_have_the_same_names_when_they_are_to) {
    Open(2);
    Go(1);
    values.Tag_Label_Set(1, "Spleen");
    Go(0);
    values.Tag_Label_Set(1, "Liver");
    labels.Share(true);
    EXPECT_TRUE(labels.Is_Shared());
    EXPECT_EQ(labels.Describe(1).tags[1].name, "Liver");
    Go(1);
    EXPECT_EQ(labels.Tag_Name(1), "Liver");
    values.Tag_Label_Set(1, "Kidney");
    labels.Share(false);
    values.Tag_Label_Set(1, "Lung");
    EXPECT_EQ(labels.Describe(0).tags[1].name, "Kidney");
    Go(0);
    EXPECT_EQ(labels.Tag_Name(1), "Kidney");
    Go(1);
    EXPECT_EQ(labels.Tag_Name(1), "Lung");
}

TEST_F(Attributes_Watch, another_volume_is_described_with_its_own_thresholds) {
    Open(2);
    work.panel_scale = {3, 1000.0};
    values.Threshold_Min()[3] = 2500.0F;
    values.Tag_Label_Set(3, "Liver");
    const Label_Description mine = labels.Describe();
    Go(1);
    EXPECT_NE(labels.Describe(), mine);
    EXPECT_EQ(labels.Describe(0), mine);
    EXPECT_EQ(labels.Describe(1), labels.Describe());
}

TEST_F(Attributes_Watch, a_choice_that_is_taken_back_at_once_loses_no_names) {
    Open(2);
    Go(1);
    values.Tag_Label_Set(1, "Spleen");
    Go(0);
    values.Tag_Label_Set(1, "Liver");
    EXPECT_TRUE(labels.Are_Others_Different());
    labels.Share(true);
    labels.Share(false);
    Go(1);
    EXPECT_EQ(labels.Tag_Name(1), "Spleen");
}

}  // namespace

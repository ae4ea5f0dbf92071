// Names, colours and thresholds between the panels, the history and files.
#include "workbench/model/label_attributes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/parts/work_scene.h"

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

}  // namespace

// Steps are taken back with everything that they hold, and the user sees where.
#include "workbench/parts/history_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class History_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    History_Watch() { Open(1); }
    History_Host Host() {
        return {[this] { ++settled; }, [this](int slice) { slices.push_back(slice); }};
    }
    int settled = 0;
    std::vector<int> slices;
    History_Control history{work, values, dialogs, Host()};
};

TEST_F(History_Watch, without_steps_it_says_so) {
    history.Undo_Or_Redo(false);
    history.Undo_Or_Redo(true);
    EXPECT_THAT(dialogs.told, ElementsAre("There is nothing to undo", "There is nothing to redo"));
    EXPECT_EQ(history.Next_Step(false), std::nullopt);
    EXPECT_EQ(settled, 2);
}

TEST_F(History_Watch, a_marker_is_seen_where_it_was) {
    Marker_Put(1, 4);
    EXPECT_EQ(history.Next_Step(false), "Place marker");
    history.Undo_Or_Redo(false);
    EXPECT_FALSE(work.session.Markers().Get(1).is_placed);
    EXPECT_TRUE(Told().Has(Change::Markers));
    history.Undo_Or_Redo(true);
    EXPECT_TRUE(work.session.Markers().Get(1).is_placed);
    EXPECT_THAT(slices, ElementsAre(0, 4));
    EXPECT_THAT(dialogs.told, ElementsAre("Undone: Place marker", "Redone: Place marker"));
}

TEST_F(History_Watch, names_bands_and_colours_come_back) {
    values.Tag_Label_Set(3, "Liver");
    labels.Note();
    values.Threshold_Min()[3] = 100.0F;
    labels.Note();
    values.Tag_Color_Set(3, 0xABCDEF);
    work.session.Note_Colors(values.Tag_Colors());
    Told();
    history.Undo_Or_Redo(false);
    EXPECT_EQ(values.Tag_Color(3), 3U * 0x010203U);
    EXPECT_TRUE(Told().Has(Change::Colors));
    history.Undo_Or_Redo(false);
    EXPECT_EQ(values.Threshold_Min()[3], TAG_THRESHOLD_MIN_UNSET);
    EXPECT_TRUE(Told().Has(Change::Bands));
    history.Undo_Or_Redo(false);
    EXPECT_EQ(labels.Tag_Name(3), "3");
    EXPECT_TRUE(Told().Has(Change::Texts));
    for (int step = 0; step < 3; ++step) {
        history.Undo_Or_Redo(true);
    }
    EXPECT_EQ(labels.Tag_Name(3), "Liver");
    EXPECT_EQ(values.Threshold_Min()[3], 100.0F);
    EXPECT_EQ(values.Tag_Color(3), 0xABCDEFU);
}

TEST_F(History_Watch, the_list_leads_to_any_step) {
    Marker_Put(1, 4);
    Marker_Put(2, 3);
    Marker_Put(3, 2);
    dialogs.ways = {1, -1, 1, 3};
    history.History_Ask();
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 1U);
    EXPECT_THAT(dialogs.offered, testing::SizeIs(4));
    EXPECT_THAT(slices, ElementsAre(0));  // what went is seen nowhere, so nothing else is shown
    history.History_Ask();
    history.History_Ask();
    EXPECT_THAT(slices, ElementsAre(0));
    history.History_Ask();
    EXPECT_EQ(work.session.Journal().Undo_Nb(), 3U);
    EXPECT_THAT(slices, ElementsAre(0, 2));
    EXPECT_THAT(dialogs.told, ElementsAre(HasSubstr("History: "), HasSubstr("History: ")));
}

}  // namespace

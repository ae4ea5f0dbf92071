#include "kits/dataset/panel_flags.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(Panel_Flags, after_resize_is_a_part_of_everything) {
    for (const Panel_Kind kind : {Panel_Kind::Tag, Panel_Kind::Marker, Panel_Kind::Brush, Panel_Kind::Propagate,
                                  Panel_Kind::Histogram, Panel_Kind::Classes, Panel_Kind::Files}) {
        EXPECT_NE(Update_After_Resize(kind), 0U);
        EXPECT_TRUE(Has_All(Update_Everything(kind), Update_After_Resize(kind))) << static_cast<int>(kind);
    }
    EXPECT_TRUE(Has_All(Update_Everything(Panel_Kind::Classes, 3), UPDATE_STRUCTURE | UPDATE_LEVEL_3D));
    EXPECT_FALSE(Has_Any(Update_Everything(Panel_Kind::Classes, 3), UPDATE_LEVEL_2D));
}

/** What each kind reads of the host besides its layout, as the panels' own headers tell it. */
TEST(Panel_Flags, name_what_each_kind_follows) {
    constexpr unsigned __int64 tag_marks = UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR;
    EXPECT_EQ(Update_After_Resize(Panel_Kind::Tag), tag_marks);
    EXPECT_EQ(Update_Everything(Panel_Kind::Tag), tag_marks | UPDATE_TAG_LABEL | UPDATE_TAG_TABLE);
    EXPECT_EQ(Update_After_Resize(Panel_Kind::Marker), UPDATE_TAG_ENABLE | UPDATE_TAG_CUR);
    EXPECT_EQ(Update_Everything(Panel_Kind::Marker),
              UPDATE_TAG_ENABLE | UPDATE_TAG_CUR | UPDATE_TAG_LABEL | UPDATE_TAG_TABLE);
    EXPECT_EQ(Update_Everything(Panel_Kind::Brush), UPDATE_ALL | UPDATE_BRUSH | UPDATE_TAG_CUR | UPDATE_TAG_TABLE);
    EXPECT_EQ(Update_Everything(Panel_Kind::Propagate), UPDATE_ALL | UPDATE_FRAME_CUR);
    EXPECT_EQ(Update_Everything(Panel_Kind::Histogram),
              UPDATE_ALL | UPDATE_HISTO_DATA | UPDATE_COLOR_COMPONENT | UPDATE_HISTO_PAINT);
    EXPECT_EQ(Update_Everything(Panel_Kind::Files), UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_EQ(Update_Everything(Panel_Kind::Classes, 1), UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_1D);
    EXPECT_EQ(Update_After_Resize(Panel_Kind::Classes, 3), Update_Everything(Panel_Kind::Classes, 3));
}

TEST(Collected_Updates, sends_many_changes_as_one) {
    Collected_Updates collected;
    std::vector<unsigned __int64> sent;
    const auto take = [&](unsigned __int64 flags) { sent.push_back(flags); };
    collected.Send(take);
    EXPECT_TRUE(sent.empty()) << "nothing changed";
    for (int request = 0; request < 40; ++request) {
        collected.Add(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    }
    collected.Add(UPDATE_TAG_CUR);
    EXPECT_TRUE(collected.Has_Pending());
    collected.Send(take);
    EXPECT_EQ(sent, std::vector<unsigned __int64>{UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_TAG_CUR});
    EXPECT_FALSE(collected.Has_Pending());
}

TEST(Collected_Updates, rows_that_are_built_anew_get_their_checks) {
    Collected_Updates collected;
    collected.Add(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    collected.Send([](unsigned __int64 flags) { EXPECT_TRUE(Has_All(flags, UPDATE_STRUCTURE | UPDATE_SELECTION)); });
}

TEST(Collected_Updates, what_a_delivery_adds_waits_for_the_next_one) {
    Collected_Updates collected;
    int deliveries = 0;
    const auto answer = [&](unsigned __int64) {
        ++deliveries;
        collected.Add(UPDATE_FRAME_CUR);
    };
    collected.Add(UPDATE_FRAME_CUR);
    collected.Send(answer);
    EXPECT_EQ(deliveries, 1);
    EXPECT_TRUE(collected.Has_Pending());
    collected.Send(answer);
    EXPECT_EQ(deliveries, 2);
}

}  // namespace

#include "workbench/model/tag_table.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "workbench/model/label_map.h"

using namespace workbench;

namespace {

TEST(Tag_Table, the_first_tags_have_names_and_the_rest_their_numbers) {
    EXPECT_EQ(Tag_Default(0).label, "Background");
    EXPECT_EQ(Tag_Default(1).label, "Grey matter");
    EXPECT_TRUE(Tag_Default(16).label.empty());
    EXPECT_TRUE(Tag_Default(255).label.empty());
}

TEST(Tag_Table, offered_tags_have_different_colors) {
    std::set<std::tuple<int, int, int>> colors;
    for (int tag = 0; tag < TAG_DEFAULT_NB; ++tag) {
        const Tag_Entry entry = Tag_Default(tag);
        colors.insert({entry.red, entry.green, entry.blue});
    }
    EXPECT_EQ(colors.size(), static_cast<std::size_t>(TAG_DEFAULT_NB));
}

TEST(Tag_Table, the_count_is_a_multiple_of_four_that_holds_the_highest_tag) {
    for (int highest = 0; highest < TAG_MAX; ++highest) {
        const int count = Tag_Count_For(highest);
        EXPECT_EQ(count % 4, 0);
        EXPECT_GT(count, highest);
        EXPECT_LE(count, TAG_MAX);
        EXPECT_TRUE(count - highest <= 4 || count == TAG_DEFAULT_NB);
    }
    EXPECT_EQ(Tag_Count_For(-5), TAG_DEFAULT_NB);
    EXPECT_EQ(Tag_Count_For(100000), TAG_MAX);
}

TEST(Tag_Table, stepping_goes_round) {
    EXPECT_EQ(Tag_Step(23, 1, 24), 0);
    EXPECT_EQ(Tag_Step(0, -1, 24), 23);
    EXPECT_EQ(Tag_Step(3, 50, 24), 5);
    EXPECT_EQ(Tag_Step(3, 1, 0), 0);
}

}  // namespace

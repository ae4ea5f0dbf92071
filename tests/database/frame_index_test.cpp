#include "database/frame_index.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "host/kit_dataset.h"

namespace {

using Frame_Pointers = std::vector<const Quorel_2D_Frame*>;
using Found = std::vector<std::pair<int, bool>>;  // record, checked

Object_Frames Frames(const Quorel_2D_Frame* frame, const Frame_Pointers& more) {
    return {frame, static_cast<int>(more.size()), more.data()};
}

Found Find(Frame_Index& index, const Object_Frames& object) {
    Found found;
    index.Visit_Rows(object, [&](const Frame_Index::Row& row) { found.emplace_back(row.record, row.checked); });
    return found;
}

class Frame_Index_Test : public testing::Test {
  protected:
    Quorel_2D_Frame a;
    Quorel_2D_Frame b;
    Quorel_2D_Frame c;
};

TEST_F(Frame_Index_Test, gives_the_rows_of_a_frame_in_record_order) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(4));
    index.Add({&a, 2, false});
    index.Add({&b, 3, true});
    index.Add({&a, 5, true});
    index.Add({&a, 9, false});
    EXPECT_EQ(Find(index, Frames(&a, {})), (Found{{2, false}, {5, true}, {9, false}}));
    EXPECT_EQ(Find(index, Frames(&b, {})), (Found{{3, true}}));
    EXPECT_EQ(Find(index, Frames(&c, {})), Found{});
}

TEST_F(Frame_Index_Test, further_frames_are_merged_in_record_order) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(4));
    index.Add({&a, 0, false});
    index.Add({&b, 1, false});
    index.Add({&c, 2, false});
    index.Add({&b, 3, false});
    EXPECT_EQ(Find(index, Frames(&c, {&b, &a})), (Found{{0, false}, {1, false}, {2, false}, {3, false}}));
    EXPECT_EQ(Find(index, Frames(nullptr, {&c})), (Found{{2, false}}));
}

TEST_F(Frame_Index_Test, frame_named_twice_gives_its_rows_twice) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(3));
    index.Add({&a, 0, true});
    index.Add({&b, 1, false});
    index.Add({&a, 2, false});
    EXPECT_EQ(Find(index, Frames(&a, {&b, &a})), (Found{{0, true}, {0, true}, {1, false}, {2, false}, {2, false}}));
}

TEST_F(Frame_Index_Test, null_frames_match_nothing) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(2));
    index.Add({nullptr, 0, true});
    index.Add({&a, 1, true});
    EXPECT_EQ(Find(index, Frames(nullptr, {})), Found{});
    EXPECT_EQ(Find(index, Frames(nullptr, {nullptr, nullptr})), Found{});
    EXPECT_EQ(Find(index, Frames(nullptr, {nullptr, &a, nullptr})), (Found{{1, true}}));
}

TEST_F(Frame_Index_Test, index_of_nothing_finds_nothing) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(0));
    EXPECT_EQ(Find(index, Frames(&a, {&b})), Found{});
}

TEST_F(Frame_Index_Test, another_index_may_be_made_and_used_while_rows_are_visited) {
    Frame_Index index;
    ASSERT_TRUE(index.Make(3));
    for (int i = 0; i < 3; ++i) {
        index.Add({&a, i, true});
    }
    Found found;
    const Frame_Pointers more{&b, &a};
    index.Visit_Rows(Frames(nullptr, more), [&](const Frame_Index::Row& row) {
        found.emplace_back(row.record, row.checked);
        Frame_Index other;
        ASSERT_TRUE(other.Make(1));
        other.Add({&a, 77, false});
        EXPECT_EQ(Find(other, Frames(&a, more)), (Found{{77, false}, {77, false}}));
    });
    EXPECT_EQ(found, (Found{{0, true}, {1, true}, {2, true}}));
}

TEST(Frame_Index, random_rows_agree_with_comparing_every_row) {
    std::mt19937 random(3);
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    for (int round = 0; round < 200; ++round) {
        const std::vector<Quorel_2D_Frame> frames(1 + below(60));
        const auto any = [&]() { return below(6) == 0 ? nullptr : &frames[below(frames.size())]; };
        std::vector<Frame_Index::Row> rows;
        const int row_nb = static_cast<int>(below(200));
        Frame_Index index;
        ASSERT_TRUE(index.Make(row_nb));
        for (int i = 0; i < row_nb; ++i) {
            rows.push_back({any(), 3 * i, below(2) == 0});
            index.Add(rows.back());
        }
        for (int object = 0; object < 20; ++object) {
            const Quorel_2D_Frame* const own = any();
            Frame_Pointers more(below(3) == 0 ? 0 : below(8));
            for (auto& frame : more) {
                frame = any();
            }
            Found expected;
            for (const Frame_Index::Row& row : rows) {
                if (row.frame != nullptr && own == row.frame) {
                    expected.emplace_back(row.record, row.checked);
                }
                for (const Quorel_2D_Frame* const frame : more) {
                    if (row.frame != nullptr && frame == row.frame) {
                        expected.emplace_back(row.record, row.checked);
                    }
                }
            }
            ASSERT_EQ(Find(index, Frames(own, more)), expected) << "round " << round;
        }
    }
}

}  // namespace

#include "workbench/model/undo_journal.h"

#include <gtest/gtest.h>

#include <random>

namespace {

Undo_Step Step(const std::string& title) {
    return {title, Threshold_Change{{{1, {0.0F, 1.0F}, {2.0F, 3.0F}}}}};
}

Undo_Step Heavy_Step(std::size_t bytes) {
    Slice_Change change;
    change.runs.resize(bytes / sizeof(Voxel_Run));
    return {"Heavy", std::move(change)};
}

TEST(Slice_Difference, of_equal_slices_is_nothing) {
    const std::vector<std::uint8_t> slice(50, 3);
    EXPECT_FALSE(Slice_Difference(0, slice, slice).has_value());
}

TEST(Slice_Difference, applied_backwards_and_forwards_gives_both_states) {
    std::mt19937 random(11);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::uint8_t> before(97);
        for (std::uint8_t& tag : before) {
            tag = static_cast<std::uint8_t>(random() % 3);
        }
        std::vector<std::uint8_t> after = before;
        const std::size_t from = random() % after.size();
        for (std::size_t at = from; at < std::min(after.size(), from + random() % 40); ++at) {
            after[at] = static_cast<std::uint8_t>(random() % 3);
        }
        const auto change = Slice_Difference(4, before, after);
        if (!change) {
            EXPECT_EQ(before, after);
            continue;
        }
        EXPECT_EQ(change->slice, 4);
        std::vector<std::uint8_t> slice = after;
        Slice_Change_Apply(*change, false, slice);
        EXPECT_EQ(slice, before);
        Slice_Change_Apply(*change, true, slice);
        EXPECT_EQ(slice, after);
    }
}

TEST(Slice_Difference, joins_neighbours_of_one_change) {
    std::vector<std::uint8_t> before(100, 0);
    std::vector<std::uint8_t> after = before;
    std::fill(after.begin() + 10, after.begin() + 60, std::uint8_t{2});
    const auto change = Slice_Difference(0, before, after);
    ASSERT_TRUE(change.has_value());
    ASSERT_EQ(change->runs.size(), 1U);
    EXPECT_EQ(change->runs[0].offset, 10U);
    EXPECT_EQ(change->runs[0].length, 50U);
}

TEST(Slice_Change_Apply, ignores_runs_beyond_the_slice) {
    std::vector<std::uint8_t> slice(5, 1);
    Slice_Change_Apply({0, {{3, 4, 0, 9}, {0xFFFFFFFF, 2, 0, 9}}}, true, slice);
    EXPECT_EQ(slice, std::vector<std::uint8_t>(5, 1));
}

TEST(Undo_Journal, walks_back_and_forth) {
    Undo_Journal journal;
    EXPECT_EQ(journal.Undo(), nullptr);
    EXPECT_EQ(journal.Redo(), nullptr);
    journal.Push(Step("a"));
    journal.Push(Step("b"));
    EXPECT_EQ(journal.Next_Undo()->title, "b");
    EXPECT_EQ(journal.Undo()->title, "b");
    EXPECT_EQ(journal.Undo()->title, "a");
    EXPECT_EQ(journal.Undo(), nullptr);
    EXPECT_EQ(journal.Next_Redo()->title, "a");
    EXPECT_EQ(journal.Redo()->title, "a");
    EXPECT_EQ(journal.Redo()->title, "b");
    EXPECT_EQ(journal.Redo(), nullptr);
}

TEST(Undo_Journal, a_new_step_forgets_what_was_undone) {
    Undo_Journal journal;
    journal.Push(Step("a"));
    journal.Push(Step("b"));
    journal.Undo();
    journal.Push(Step("c"));
    EXPECT_EQ(journal.Redo_Nb(), 0U);
    EXPECT_EQ(journal.Undo()->title, "c");
    EXPECT_EQ(journal.Undo()->title, "a");
}

TEST(Undo_Journal, keeps_a_hundred_steps_whatever_they_weigh_and_forgets_the_oldest_beyond) {
    Undo_Journal journal;
    for (int step = 0; step < 150; ++step) {
        journal.Push(Heavy_Step(1U << 20U));
    }
    EXPECT_EQ(journal.Undo_Nb(), JOURNAL_STEPS_KEPT);
    std::size_t undone = 0;
    while (journal.Undo() != nullptr) {
        ++undone;
    }
    EXPECT_EQ(undone, JOURNAL_STEPS_KEPT);
}

TEST(Undo_Journal, light_steps_are_bounded_by_number_and_memory_is_accounted) {
    Undo_Journal journal;
    for (std::size_t step = 0; step < JOURNAL_STEPS_MAX + 20; ++step) {
        journal.Push(Step("a"));
    }
    EXPECT_EQ(journal.Undo_Nb(), JOURNAL_STEPS_MAX);
    EXPECT_EQ(journal.Bytes(), JOURNAL_STEPS_MAX * Step("a").Bytes());
    journal.Clear();
    EXPECT_EQ(journal.Bytes(), 0U);
}

TEST(Undo_Journal, knows_whether_the_state_is_the_saved_one) {
    Undo_Journal journal;
    EXPECT_FALSE(journal.Is_Unsaved());
    journal.Push(Step("a"));
    EXPECT_TRUE(journal.Is_Unsaved());
    journal.Mark_Saved();
    EXPECT_FALSE(journal.Is_Unsaved());
    journal.Undo();
    EXPECT_TRUE(journal.Is_Unsaved());
    journal.Redo();
    EXPECT_FALSE(journal.Is_Unsaved());
    journal.Undo();
    journal.Push(Step("b"));  // as many steps as when it was saved, but another state
    EXPECT_TRUE(journal.Is_Unsaved());
}

TEST(Undo_Journal, a_saved_state_that_was_forgotten_cannot_be_reached_again) {
    Undo_Journal journal;
    journal.Mark_Saved();
    for (std::size_t step = 0; step < JOURNAL_STEPS_MAX + 1; ++step) {
        journal.Push(Step("a"));
    }
    while (journal.Undo() != nullptr) {
    }
    EXPECT_TRUE(journal.Is_Unsaved());
    journal.Clear();
    EXPECT_FALSE(journal.Is_Unsaved());
}

}  // namespace

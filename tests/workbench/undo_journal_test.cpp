#include "workbench/model/undo_journal.h"

#include <gtest/gtest.h>

#include <random>

using namespace workbench;

namespace {

Undo_Step Step(const std::string& title) {
    return {title, Threshold_Change{{{1, {0.0F, 1.0F}, {2.0F, 3.0F}}}}};
}

/** Every pixel of a slice changes, from anything to anything. */
Undo_Step Heavy_Step(int width, std::mt19937& random) {
    std::vector<std::uint8_t> before(static_cast<std::size_t>(width) * static_cast<std::size_t>(width));
    std::vector<std::uint8_t> after(before.size());
    for (std::size_t at = 0; at < before.size(); ++at) {
        before[at] = static_cast<std::uint8_t>(random());
        after[at] = static_cast<std::uint8_t>(before[at] + 1 + random() % 255);
    }
    return {"Heavy", Voxel_Change{{*Slice_Difference(0, before, after)}}};
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
    ASSERT_EQ(change->Runs().size(), 1U);
    EXPECT_EQ(change->Runs()[0].offset, 10U);
    EXPECT_EQ(change->Runs()[0].length, 50U);
}

TEST(Slice_Change_Apply, ignores_runs_beyond_the_slice) {
    std::vector<std::uint8_t> slice(5, 1);
    const Voxel_Run runs[] = {{3, 4, 0, 9}, {0xFFFFFFFF, 2, 0, 9}};
    Slice_Change_Apply({0, runs}, true, slice);
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

TEST(Slice_Change, packs_few_and_many_runs_and_gives_them_back) {
    std::mt19937 random(5);
    for (const std::size_t nb : {std::size_t{1}, std::size_t{40}, std::size_t{5000}}) {
        std::vector<Voxel_Run> runs;
        std::uint32_t at = 0;
        for (std::size_t run = 0; run < nb; ++run) {
            at += static_cast<std::uint32_t>(random() % 300);
            const auto length = static_cast<std::uint32_t>(1 + random() % 200);
            runs.push_back({at, length, static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random())});
            at += length;
        }
        const Slice_Change change(7, runs);
        const std::vector<Voxel_Run> back = change.Runs();
        ASSERT_EQ(back.size(), nb);
        for (std::size_t run = 0; run < nb; ++run) {
            EXPECT_EQ(back[run].offset, runs[run].offset);
            EXPECT_EQ(back[run].length, runs[run].length);
            EXPECT_EQ(back[run].before, runs[run].before);
            EXPECT_EQ(back[run].after, runs[run].after);
        }
        EXPECT_LE(change.Bytes(), nb * 6);
    }
}

TEST(Undo_Journal, two_hundred_steps_find_room_whatever_they_do_to_slices_of_512_pixels) {
    std::mt19937 random(3);
    Undo_Journal journal;
    const Undo_Step step = Heavy_Step(512, random);
    for (int at = 0; at < 220; ++at) {
        journal.Push(step);
    }
    EXPECT_GE(journal.Undo_Nb(), 200U);
    EXPECT_LE(journal.Bytes(), JOURNAL_BYTES);
}

TEST(Undo_Journal, forgets_the_oldest_beyond_its_memory_and_says_so) {
    std::mt19937 random(3);
    Undo_Journal journal;
    const Undo_Step step = Heavy_Step(1024, random);
    const std::size_t fitting = JOURNAL_BYTES / step.Bytes();
    for (std::size_t at = 0; at < fitting + 30; ++at) {
        journal.Push(step);
    }
    EXPECT_LE(journal.Bytes(), JOURNAL_BYTES);
    EXPECT_EQ(journal.Undo_Nb(), fitting);
    EXPECT_EQ(journal.Forgotten_Nb(), 30U);
    EXPECT_EQ(journal.List().front(), "30 steps before this were forgotten for want of room");
    EXPECT_EQ(journal.List()[1], "31  Heavy, slice 1");
    journal.Clear();
    EXPECT_EQ(journal.List(), std::vector<std::string>{"Start (saved)"});
}

TEST(Undo_Journal, weighs_all_slices_of_a_step) {
    std::mt19937 random(3);
    const Undo_Step one = Heavy_Step(512, random);
    Undo_Step many = one;
    auto& slices = std::get<Voxel_Change>(many.change).slices;
    slices.assign(60, slices.front());
    EXPECT_GE(many.Bytes(), 60 * slices.front().Bytes());
    Undo_Journal journal;
    for (int at = 0; at < 20; ++at) {
        journal.Push(many);
        EXPECT_LE(journal.Bytes(), JOURNAL_BYTES);
    }
    EXPECT_EQ(journal.Undo_Nb(), JOURNAL_BYTES / many.Bytes());
    EXPECT_EQ(journal.Forgotten_Nb() + journal.Undo_Nb(), 20U);
}

TEST(Slice_Nearest, is_a_slice_that_changes) {
    const Voxel_Run run = {0, 1, 0, 1};
    const std::span<const Voxel_Run> runs(&run, 1);
    const Voxel_Change change{{Slice_Change(3, runs), Slice_Change(7, runs), Slice_Change(20, runs)}};
    EXPECT_EQ(Slice_Nearest(change, 0), 3);
    EXPECT_EQ(Slice_Nearest(change, 7), 7);
    EXPECT_EQ(Slice_Nearest(change, 12), 7);
    EXPECT_EQ(Slice_Nearest(change, 90), 20);
}

TEST(Undo_Journal, lists_its_steps_by_name_with_what_is_saved_and_undone) {
    Undo_Journal journal;
    journal.Push(Step("a"));
    journal.Mark_Saved();
    const Voxel_Run run = {0, 1, 0, 1};
    const std::span<const Voxel_Run> runs(&run, 1);
    journal.Push({"Stroke", Voxel_Change{{Slice_Change(90, runs)}}});
    journal.Push(Step("c"));
    journal.Undo();
    EXPECT_EQ(journal.List(),
              (std::vector<std::string>{"Start", "1  a (saved)", "2  Stroke, slice 91", "3  c (undone)"}));
    journal.Push({"Bands", Voxel_Change{{Slice_Change(2, runs), Slice_Change(40, runs)}}});
    EXPECT_EQ(journal.List()[3], "3  Bands, slices 3 to 41");
    journal.Mark_Unsaved();
    EXPECT_TRUE(journal.Is_Unsaved());
    EXPECT_EQ(journal.List()[1], "1  a");
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

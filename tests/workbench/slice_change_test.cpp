#include "workbench/model/slice_change.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

using namespace workbench;

namespace {

using Tags = std::vector<std::uint8_t>;

struct States {
    Tags before;
    Tags after;
};

/** @param tag_nb so many TAGs in both @param density how many of 100 pixels change */
States Random_States(std::mt19937& random, std::size_t size, unsigned int tag_nb, unsigned int density) {
    States states{Tags(size), {}};
    for (std::uint8_t& tag : states.before) {
        tag = static_cast<std::uint8_t>(random() % tag_nb);
    }
    states.after = states.before;
    for (std::uint8_t& tag : states.after) {
        tag = random() % 100 < density ? static_cast<std::uint8_t>(random() % tag_nb) : tag;
    }
    return states;
}

/** The same with long stretches of one TAG, before and after each of their own. */
States Stretched_States(std::mt19937& random, std::size_t size, unsigned int tag_nb) {
    const auto stretched = [&] {
        Tags tags;
        while (tags.size() < size) {
            const auto tag = static_cast<std::uint8_t>(random() % tag_nb);
            tags.insert(tags.end(), 1 + random() % (random() % 4 == 0 ? 300 : 9), tag);
        }
        tags.resize(size);
        return tags;
    };
    Tags before = stretched();
    return {std::move(before), stretched()};
}

/** So many TAGs of the first tag_nb, any of them, and all others if wanted. */
Tag_Flags Random_Stays(std::mt19937& random, std::size_t stay_nb, std::size_t tag_nb, bool with_others) {
    Tag_Flags stays{};
    std::fill(stays.begin() + static_cast<std::ptrdiff_t>(tag_nb), stays.end(), std::uint8_t{with_others});
    while (stay_nb > 0) {
        std::uint8_t& flag = stays[random() % tag_nb];
        stay_nb -= flag == 0 ? 1 : 0;
        flag = static_cast<std::uint8_t>(1 + random() % 255);
    }
    return stays;
}

/** The runs of changed pixels, pixel by pixel. */
std::vector<Voxel_Run> Plain_Runs(const States& states) {
    std::vector<Voxel_Run> runs;
    for (std::size_t at = 0; at < states.before.size(); ++at) {
        const std::uint8_t before = states.before[at];
        const std::uint8_t after = states.after[at];
        if (before == after) {
            continue;
        }
        const bool is_longer = !runs.empty() && runs.back().offset + runs.back().length == at &&
                               runs.back().before == before && runs.back().after == after;
        if (is_longer) {
            ++runs.back().length;
        } else {
            runs.push_back({static_cast<std::uint32_t>(at), 1, before, after});
        }
    }
    return runs;
}

void Expect_Runs(const std::vector<Voxel_Run>& found, const std::vector<Voxel_Run>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t at = 0; at < found.size(); ++at) {
        EXPECT_EQ(found[at].offset, expected[at].offset);
        EXPECT_EQ(found[at].length, expected[at].length);
        EXPECT_EQ(found[at].before, expected[at].before);
        EXPECT_EQ(found[at].after, expected[at].after);
    }
}

TEST(Slice_Change, of_any_two_states_leads_from_one_to_the_other_and_back) {
    std::mt19937 random(17);
    for (int round = 0; round < 400; ++round) {
        constexpr unsigned int tag_nbs[] = {2, 3, 4, 250};
        const std::size_t size = 1 + random() % 700;
        const unsigned int tag_nb = tag_nbs[round % 4];
        const States states = round % 8 < 4 ? Random_States(random, size, tag_nb, 1 + random() % 100)
                                            : Stretched_States(random, size, tag_nb);
        const auto change = Slice_Change::Of_Difference(round, states.before, states.after);
        ASSERT_EQ(change.has_value(), states.before != states.after);
        if (!change) {
            continue;
        }
        EXPECT_EQ(change->slice, round);
        const std::vector<Voxel_Run> expected = Plain_Runs(states);
        Expect_Runs(change->Runs(), expected);
        std::uint64_t voxel_nb = 0;
        for (const Voxel_Run& run : expected) {
            voxel_nb += run.length;
        }
        EXPECT_EQ(change->Voxel_Nb(), voxel_nb);
        Tags slice = states.before;
        change->Apply(true, slice);
        EXPECT_EQ(slice, states.after);
        change->Apply(false, slice);
        EXPECT_EQ(slice, states.before);
    }
}

TEST(Slice_Change, tags_that_stay_are_left_out) {
    std::mt19937 random(23);
    for (unsigned int round = 0; round < 400; ++round) {
        constexpr std::size_t tag_nb = 8;
        const States states =
            round % 2 == 0 ? Random_States(random, 700, tag_nb, 90) : Stretched_States(random, 700, tag_nb);
        const Tag_Flags stays = Random_Stays(random, round / 4 % tag_nb, tag_nb, round % 4 >= 2);
        Tags expected = states.after;
        for (std::size_t at = 0; at < expected.size(); ++at) {
            expected[at] = stays[states.before[at]] != 0 ? states.before[at] : expected[at];
        }
        const auto change = Slice_Change::Of_Difference(0, states.before, states.after, &stays);
        ASSERT_EQ(change.has_value(), expected != states.before) << round;
        Tags slice = states.before;
        if (change) {
            Expect_Runs(change->Runs(), Plain_Runs({states.before, expected}));
            change->Apply(true, slice);
        }
        ASSERT_EQ(slice, expected) << round;
    }
    Tag_Flags all;
    all.fill(1);
    EXPECT_FALSE(Slice_Change::Of_Difference(0, Tags(70, 1), Tags(70, 2), &all).has_value());
}

TEST(Slice_Change, noise_takes_a_bit_for_each_pixel_and_a_few_strokes_take_less) {
    std::mt19937 random(5);
    constexpr std::size_t size = 512 * 512;
    States noise{Tags(size), Tags(size)};
    for (std::uint8_t& tag : noise.after) {
        tag = static_cast<std::uint8_t>(random() % 2);
    }
    EXPECT_LE(Slice_Change::Of_Difference(0, noise.before, noise.after)->Bytes(), size / 8 + 2);
    States strokes{Tags(size), Tags(size)};
    for (std::size_t row = 100; row < 200; ++row) {
        std::fill_n(strokes.after.begin() + static_cast<std::ptrdiff_t>(row * 512 + 50), 300, std::uint8_t{3});
    }
    EXPECT_LE(Slice_Change::Of_Difference(0, strokes.before, strokes.after)->Bytes(), 100U * 7U);
}

TEST(Slice_Change, of_noise_writes_nothing_beyond_a_smaller_slice) {
    std::mt19937 random(9);
    const States states = Random_States(random, 640, 2, 100);
    const auto change = Slice_Change::Of_Difference(0, states.before, states.after);
    ASSERT_TRUE(change.has_value());
    ASSERT_LE(change->Bytes(), 2U * (640 / 8 + 2));
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{130}}) {
        Tags slice(states.before.begin(), states.before.begin() + static_cast<std::ptrdiff_t>(size));
        change->Apply(true, slice);
        EXPECT_EQ(slice, Tags(states.after.begin(), states.after.begin() + static_cast<std::ptrdiff_t>(size)));
    }
}

}  // namespace

#include "workbench/volumes/voxel_levels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <stdexcept>
#include <thread>

using namespace volumes;
using ::testing::ElementsAre;

namespace {

constexpr std::int32_t SMALLEST = std::numeric_limits<std::int32_t>::min();
using Levels = std::vector<std::int32_t>;

Levels List(const Level_View& view) {
    return {view.begin(), view.end()};
}

Levels Random_Levels(std::mt19937& random, std::size_t nb, std::int32_t lowest, std::int32_t highest,
                     bool has_outside) {
    std::uniform_int_distribution<std::int32_t> any(lowest, highest);
    Levels levels(nb);
    std::ranges::generate(levels, [&] { return has_outside && random() % 5 == 0 ? LEVEL_OUTSIDE : any(random); });
    return levels;
}

struct Range_Case {
    std::int32_t lowest;
    std::int32_t highest;
    bool has_outside;
    bool is_narrow;
};

constexpr std::array<Range_Case, 20> CASES = {{{0, 0, false, true},
                                               {0, 255, true, true},
                                               {0, 65535, false, true},
                                               {0, 65535, true, false},
                                               {0, 65534, true, true},
                                               {0, 65536, false, false},
                                               {-32768, 32767, false, true},
                                               {-32768, 32767, true, false},
                                               {-32768, 32766, true, true},
                                               {-32768, 32768, false, false},
                                               {-32769, 32766, false, true},
                                               {-1, 65534, false, true},
                                               {-1, 65533, true, true},
                                               {1'000'000, 1'065'535, false, true},
                                               {1'000'000, 1'065'535, true, false},
                                               {LEVEL_LARGEST - 65535, LEVEL_LARGEST, false, true},
                                               {LEVEL_LARGEST - 65534, LEVEL_LARGEST, true, false},
                                               {SMALLEST, SMALLEST + 65535, false, true},
                                               {SMALLEST, SMALLEST + 65534, true, true},
                                               {SMALLEST, LEVEL_LARGEST, true, false}}};

TEST(Voxel_Levels, keep_every_level_in_16_bits_where_all_fit) {
    for (const Range_Case& one : CASES) {
        SCOPED_TRACE(std::to_string(one.lowest) + " .. " + std::to_string(one.highest) +
                     (one.has_outside ? " and outside" : ""));
        Levels list = {one.lowest, one.highest, one.lowest};
        if (one.has_outside) {
            list.push_back(LEVEL_OUTSIDE);
        }
        const Voxel_Levels levels(list);
        EXPECT_EQ(levels.Is_Narrow(), one.is_narrow);
        EXPECT_EQ(List(levels), list);
        Voxel_Levels made = Voxel_Levels::Of_Range(list.size(), one.lowest, one.highest, one.has_outside);
        EXPECT_EQ(made.Is_Narrow(), one.is_narrow);
        EXPECT_EQ(List(made), Levels(list.size(), one.lowest));
        made.Put(0, list);
        EXPECT_EQ(List(made), list);
        EXPECT_TRUE(made == levels);
    }
}

TEST(Voxel_Levels, of_either_width_read_the_same) {
    std::mt19937 random(11);
    for (const Range_Case& one : CASES) {
        const Levels list = Random_Levels(random, 301, one.lowest, one.highest, one.has_outside);
        const Voxel_Levels levels(list);
        const Voxel_Levels wide = Voxel_Levels::Of_Wide(Levels(list));
        EXPECT_FALSE(wide.Is_Narrow());
        EXPECT_TRUE(levels == wide && wide == levels);
        ASSERT_EQ(levels.size(), list.size());
        for (const Voxel_Levels* const own : {&levels, &wide}) {
            EXPECT_EQ(List(*own), list);
            EXPECT_EQ(own->front(), list.front());
            EXPECT_EQ(own->back(), list.back());
            const Level_View part = own->View().subspan(17, 100);
            EXPECT_EQ(List(part), Levels(list.begin() + 17, list.begin() + 117));
            EXPECT_EQ(List(part.subspan(40).first(7)), Levels(list.begin() + 57, list.begin() + 64));
            Levels copy(100);
            part.Copy_To(copy);
            EXPECT_EQ(copy, List(part));
            own->Visit([&](const auto& typed) {
                ASSERT_EQ(typed.size(), list.size());
                for (std::size_t at = 0; at < list.size(); ++at) {
                    ASSERT_EQ(typed[at], list[at]);
                    ASSERT_EQ((*own)[at], list[at]);
                }
            });
            EXPECT_EQ(std::ranges::max(*own), std::ranges::max(list));
            EXPECT_EQ(std::ranges::count(*own, LEVEL_OUTSIDE), std::ranges::count(list, LEVEL_OUTSIDE));
        }
        Voxel_Levels other = levels;
        other.Set(150, other[150] == one.lowest ? one.highest : one.lowest);
        EXPECT_EQ(other == wide, one.lowest == one.highest && !one.has_outside);
    }
}

TEST(Voxel_Levels, appended_in_any_order_are_what_was_appended) {
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        Levels expected;
        Voxel_Levels levels;
        if (random() % 2 == 0) {
            levels.reserve(50);
        }
        for (int part = 0; part < 8; ++part) {
            const auto& one = CASES[random() % CASES.size()];
            // Mostly near to one another, so that codes are made anew and not given up at once.
            const std::int32_t middle = static_cast<std::int32_t>(random() % 70000) - 35000;
            const bool is_near = random() % 8 != 0;
            const Levels list = Random_Levels(random, random() % 9, is_near ? middle : one.lowest,
                                              is_near ? middle + 20 : one.highest, random() % 6 == 0);
            const bool is_wide = random() % 2 == 0;
            levels.Append(is_wide ? Voxel_Levels::Of_Wide(Levels(list)) : Voxel_Levels(list));
            expected.insert(expected.end(), list.begin(), list.end());
            ASSERT_EQ(List(levels), expected) << round;
        }
    }
}

TEST(Voxel_Levels, become_wide_when_one_is_set_that_does_not_fit) {
    Voxel_Levels levels = {-5, 3, 7};
    levels.Set(1, LEVEL_OUTSIDE);
    EXPECT_TRUE(levels.Is_Narrow());
    levels.Set(2, 40000);
    EXPECT_TRUE(levels.Is_Narrow());
    EXPECT_THAT(levels, ElementsAre(-5, LEVEL_OUTSIDE, 40000));
    levels.Set(0, 1'000'000);
    EXPECT_FALSE(levels.Is_Narrow());
    EXPECT_THAT(levels, ElementsAre(1'000'000, LEVEL_OUTSIDE, 40000));
    Voxel_Levels whole = Voxel_Levels::Of_Range(2, -32768, 32767, false);
    whole.Set(1, 32767);
    whole.Set(0, LEVEL_OUTSIDE);  // the largest code is a level's
    EXPECT_THAT(whole, ElementsAre(LEVEL_OUTSIDE, 32767));
}

TEST(Voxel_Levels, put_beyond_their_room_is_refused) {
    Voxel_Levels levels = Voxel_Levels::Of_Range(4, 0, 100, false);
    EXPECT_THROW(levels.Put(0, Levels{70000}), std::out_of_range);
    EXPECT_THROW(levels.Put(0, Levels{-1}), std::out_of_range);
    EXPECT_THROW(levels.Put(3, Levels{1, 2}), std::out_of_range);
    EXPECT_THROW(levels.Put(5, Levels{}), std::out_of_range);
    levels.Put(0, Levels{9, 0, 1});
    levels.Put(3, Levels{2});
    EXPECT_THAT(levels, ElementsAre(9, 0, 1, 2));
}

TEST(Voxel_Levels, are_put_and_turned_by_several_threads_each_its_part) {
    constexpr std::size_t part = 5000;
    for (const std::int32_t highest : {1000, 100'000}) {
        Voxel_Levels levels = Voxel_Levels::Of_Range(4 * part, -50, highest, true);
        Levels expected(4 * part);
        {
            std::vector<std::jthread> threads;
            for (std::size_t thread = 0; thread < 4; ++thread) {
                threads.emplace_back([&, thread] {
                    std::mt19937 random(static_cast<unsigned>(thread));
                    const Levels own = Random_Levels(random, part, -50, highest, true);
                    levels.Put(thread * part, own);
                    levels.Reorder(thread * part, part, [](auto codes) { std::ranges::reverse(codes); });
                    std::ranges::reverse_copy(own, expected.begin() + static_cast<std::ptrdiff_t>(thread * part));
                });
            }
        }
        EXPECT_EQ(List(levels), expected);
    }
}

TEST(Voxel_Levels, take_two_bytes_each) {
    const Levels list(100'000, 3);
    EXPECT_EQ(Voxel_Levels(list).Bytes(), 200'000U);
    EXPECT_EQ(Voxel_Levels(Levels(list)).Bytes(), 200'000U);
    EXPECT_EQ(Voxel_Levels::Of_Range(100'000, -7, 60'000, true).Bytes(), 200'000U);
    EXPECT_EQ(Voxel_Levels::Of_Wide(Levels(list)).Bytes(), 400'000U);
}

}  // namespace

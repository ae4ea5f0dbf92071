#include "workbench/model/propagation.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

#include "workbench/volumes/volume.h"

using namespace workbench;

namespace {

/** Two frames of 40 x 30 pixels. */
struct Frames {
    static constexpr int WIDTH = 40;
    static constexpr int HEIGHT = 30;
    std::vector<std::int32_t> from_levels = std::vector<std::int32_t>(WIDTH * HEIGHT);
    std::vector<std::int32_t> to_levels = from_levels;
    std::vector<std::uint8_t> from = std::vector<std::uint8_t>(WIDTH * HEIGHT);
    std::vector<std::uint8_t> to = from;
    Propagation_Tags tags;

    Frames() { tags.carried.fill(1); }
    Propagation_Frames View() { return {WIDTH, HEIGHT, from_levels, from, to_levels, to}; }
    template <class Value>
    static void Fill(std::vector<Value>& values, int left, int top, int right, int bottom, int value) {
        for (int y = top; y < bottom; ++y) {
            for (int x = left; x < right; ++x) {
                values[static_cast<std::size_t>(y * WIDTH + x)] = static_cast<Value>(value);
            }
        }
    }
    std::uint8_t At(int x, int y) const { return to[static_cast<std::size_t>(y * WIDTH + x)]; }
};

TEST(Propagate_Copy, writes_carried_tags_and_leaves_the_rest) {
    Frames frames;
    Frames::Fill(frames.from, 5, 5, 10, 10, 2);
    Frames::Fill(frames.from, 20, 5, 25, 10, 3);
    Frames::Fill(frames.to, 0, 0, 7, 7, 4);
    Frames::Fill(frames.to, 8, 8, 10, 10, 5);
    frames.tags.carried[3] = 0;
    frames.tags.locked[5] = 1;
    EXPECT_EQ(Propagate_Copy(frames.View(), frames.tags), 25U - 4U);
    EXPECT_EQ(frames.At(6, 6), 2);   // over another TAG
    EXPECT_EQ(frames.At(0, 0), 4);   // background is not carried
    EXPECT_EQ(frames.At(8, 8), 5);   // locked
    EXPECT_EQ(frames.At(22, 7), 0);  // not carried
}

TEST(Propagate_Copy, of_background_carries_nothing) {
    Frames frames;
    frames.to[3] = 9;
    EXPECT_EQ(Propagate_Copy(frames.View(), frames.tags), 0U);
    EXPECT_EQ(frames.to[3], 9);
}

/** A bright block that moves by two pixels from one frame to the next, on dark ground with some noise. */
Frames Moving_Block(int dx) {
    Frames frames;
    std::mt19937 random(3);
    for (auto* levels : {&frames.from_levels, &frames.to_levels}) {
        for (std::int32_t& level : *levels) {
            level = 20 + static_cast<int>(random() % 5);
        }
    }
    for (int y = 6; y < 24; ++y) {
        for (int x = 8; x < 28; ++x) {
            frames.from_levels[static_cast<std::size_t>(y * Frames::WIDTH + x)] = 100 + static_cast<int>(random() % 9);
            frames.to_levels[static_cast<std::size_t>(y * Frames::WIDTH + x + dx)] =
                101 + static_cast<int>(random() % 7);
        }
    }
    Frames::Fill(frames.from, 8, 6, 28, 24, 1);
    return frames;
}

TEST(Propagate_Grow, follows_a_border_that_moved) {
    for (const int dx : {-3, -2, 0, 2, 3}) {
        Frames frames = Moving_Block(dx);
        const std::size_t carried = Propagate_Grow(frames.View(), frames.tags);
        EXPECT_EQ(carried, 20U * 18U) << dx;
        for (int y = 0; y < Frames::HEIGHT; ++y) {
            for (int x = 0; x < Frames::WIDTH; ++x) {
                const bool is_block = y >= 6 && y < 24 && x >= 8 + dx && x < 28 + dx;
                EXPECT_EQ(frames.At(x, y), is_block ? 1 : 0) << dx << ": " << x << ", " << y;
            }
        }
    }
}

TEST(Propagate_Grow, a_border_through_even_tissue_does_not_creep) {
    Frames frames;
    std::mt19937 random(5);
    for (auto* levels : {&frames.from_levels, &frames.to_levels}) {
        for (std::int32_t& level : *levels) {
            level = 100 + static_cast<int>(random() % 3);
        }
    }
    Frames::Fill(frames.from, 10, 8, 30, 22, 1);
    Propagate_Grow(frames.View(), frames.tags);
    EXPECT_EQ(frames.to, frames.from);
}

TEST(Propagate_Grow, never_leaves_the_band_and_keeps_the_inside) {
    Frames frames = Moving_Block(0);
    std::fill(frames.to_levels.begin(), frames.to_levels.end(), 104);  // everything fits now
    Propagate_Grow(frames.View(), frames.tags, {.band = 3});
    for (int y = 0; y < Frames::HEIGHT; ++y) {
        for (int x = 0; x < Frames::WIDTH; ++x) {
            const int distance = std::max({8 - x, x - 27, 0}) + std::max({6 - y, y - 23, 0});
            EXPECT_EQ(frames.At(x, y), distance <= 3 ? 1 : 0) << x << ", " << y;
        }
    }
    std::fill(frames.to.begin(), frames.to.end(), std::uint8_t{0});
    std::fill(frames.to_levels.begin(), frames.to_levels.end(), 0);  // nothing fits
    Propagate_Grow(frames.View(), frames.tags, {.band = 3});
    for (int y = 0; y < Frames::HEIGHT; ++y) {
        for (int x = 0; x < Frames::WIDTH; ++x) {
            EXPECT_EQ(frames.At(x, y), x >= 11 && x < 25 && y >= 9 && y < 21 ? 1 : 0) << x << ", " << y;
        }
    }
}

TEST(Propagate_Grow, leaves_locked_pixels_and_other_work_of_the_receiving_frame) {
    Frames frames = Moving_Block(3);
    Frames::Fill(frames.to, 12, 10, 14, 12, 5);
    Frames::Fill(frames.to, 28, 6, 29, 24, 7);  // in the way of the moved border
    frames.tags.locked[5] = 1;
    Propagate_Grow(frames.View(), frames.tags);
    EXPECT_EQ(frames.At(12, 10), 5);
    EXPECT_EQ(frames.At(28, 15), 7);
    EXPECT_EQ(frames.At(29, 15), 0);  // cannot be reached through it
    EXPECT_EQ(frames.At(20, 15), 1);
}

TEST(Propagate_Grow, carries_a_thin_tag_where_it_fits) {
    Frames frames;
    Frames::Fill(frames.from, 5, 10, 35, 12, 6);
    Frames::Fill(frames.from_levels, 5, 10, 35, 12, 50);
    Frames::Fill(frames.to_levels, 5, 10, 20, 12, 50);  // the right half is gone
    EXPECT_EQ(Propagate_Grow(frames.View(), frames.tags), 30U);
    EXPECT_EQ(frames.At(10, 10), 6);
    EXPECT_EQ(frames.At(30, 10), 0);
}

TEST(Propagate_Grow, pixels_without_a_level_say_nothing_of_a_tag_and_take_none) {
    Frames frames = Moving_Block(2);
    const Frames as_it_was = frames;
    Frames without = as_it_was;
    Propagate_Grow(without.View(), without.tags);
    const std::size_t inside = 15 * Frames::WIDTH + 18;
    frames.from_levels[inside] = volumes::LEVEL_OUTSIDE;
    frames.to_levels[3 * Frames::WIDTH + 3] = volumes::LEVEL_OUTSIDE;
    Propagate_Grow(frames.View(), frames.tags);
    EXPECT_EQ(frames.to, without.to) << "one pixel without a level must not widen what fits";
}

TEST(Propagate_Grow, of_nothing_carries_nothing) {
    Frames frames;
    EXPECT_EQ(Propagate_Grow(frames.View(), frames.tags), 0U);
    Frames::Fill(frames.from, 5, 5, 20, 20, 2);
    frames.tags.carried[2] = 0;
    EXPECT_EQ(Propagate_Grow(frames.View(), frames.tags), 0U);
}

TEST(Propagate_Grow, survives_every_size_and_any_tags) {
    std::mt19937 random(9);
    for (int round = 0; round < 200; ++round) {
        const int width = 1 + static_cast<int>(random() % 7);
        const int height = 1 + static_cast<int>(random() % 7);
        const auto size = static_cast<std::size_t>(width * height);
        std::vector<std::int32_t> levels[2] = {std::vector<std::int32_t>(size), std::vector<std::int32_t>(size)};
        std::vector<std::uint8_t> from(size);
        std::vector<std::uint8_t> to(size);
        for (std::size_t at = 0; at < size; ++at) {
            levels[0][at] = static_cast<std::int32_t>(random());
            levels[1][at] = static_cast<std::int32_t>(random());
            from[at] = static_cast<std::uint8_t>(random());
            to[at] = static_cast<std::uint8_t>(random() % 2);
        }
        Propagation_Tags tags;
        tags.carried.fill(1);
        tags.locked[1] = 1;
        const std::vector<std::uint8_t> before = to;
        Propagate_Grow({width, height, levels[0], from, levels[1], to}, tags,
                       {.band = static_cast<int>(random() % 400)});
        for (std::size_t at = 0; at < size; ++at) {
            EXPECT_TRUE(before[at] != 1 || to[at] == 1);
        }
    }
}

TEST(Overlap, is_one_for_equal_and_nothing_for_separate_areas) {
    Frames frames;
    Frames::Fill(frames.from, 0, 0, 10, 10, 1);
    EXPECT_DOUBLE_EQ(Overlap(frames.from, frames.from, frames.tags.carried), 1.0);
    EXPECT_DOUBLE_EQ(Overlap(frames.from, frames.to, frames.tags.carried), 0.0);
    EXPECT_DOUBLE_EQ(Overlap(frames.to, frames.to, frames.tags.carried), 1.0);
    Frames::Fill(frames.to, 5, 0, 15, 10, 1);
    EXPECT_DOUBLE_EQ(Overlap(frames.from, frames.to, frames.tags.carried), 0.5);
}

}  // namespace

#include "workbench/model/slice_smoothing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include "workbench/volumes/volume.h"

using namespace volumes;
using namespace workbench;

namespace {

std::vector<std::int32_t> Smooth(const std::vector<std::int32_t>& levels, int width, int height, std::int32_t steps) {
    std::vector<std::int32_t> smooth(levels.size());
    Slice_Smooth(levels, width, height, steps, smooth);
    return smooth;
}

}  // namespace

TEST(Slice_Smoothing, is_the_sum_of_nine_in_ninths) {
    const int width = 7;
    const int height = 5;
    std::mt19937 random(3);
    std::vector<std::int32_t> levels;
    for (int i = 0; i < width * height; ++i) {
        levels.push_back(static_cast<std::int32_t>(random() % 2001) - 1000);
    }
    const std::vector<std::int32_t> smooth = Smooth(levels, width, height, 9);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::int32_t sum = 0;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    sum += levels[static_cast<std::size_t>(std::clamp(y + dy, 0, height - 1) * width +
                                                           std::clamp(x + dx, 0, width - 1))];
                }
            }
            EXPECT_EQ(smooth[static_cast<std::size_t>(y * width + x)], sum) << x << " " << y;
        }
    }
}

TEST(Slice_Smoothing, keeps_a_flat_slice) {
    EXPECT_EQ(Smooth({4, 4, 4, 4}, 2, 2, 9), std::vector<std::int32_t>(4, 36));
    EXPECT_EQ(Smooth({-5}, 1, 1, 9), std::vector<std::int32_t>(1, -45));
    EXPECT_EQ(Smooth({-5, -5, -5}, 3, 1, 1), std::vector<std::int32_t>(3, -5));
}

TEST(Slice_Smoothing, whole_levels_are_rounded_down) {
    EXPECT_EQ(Smooth({0, 1, 0}, 3, 1, 1), (std::vector<std::int32_t>{0, 0, 0}));
    EXPECT_EQ(Smooth({0, -1, 0}, 3, 1, 1), (std::vector<std::int32_t>{-1, -1, -1}));
}

TEST(Slice_Smoothing, large_levels_do_not_overflow) {
    constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(Smoothing_Steps(0, largest / 9), 9);
    EXPECT_EQ(Smoothing_Steps(0, largest / 9 + 1), 1);
    EXPECT_EQ(Smoothing_Steps(std::numeric_limits<std::int32_t>::min(), 0), 1);
    EXPECT_EQ(Smooth({largest, largest}, 2, 1, 1), (std::vector<std::int32_t>{largest, largest}));
}

TEST(Slice_Smoothing, pixels_outside_stay_and_count_in_no_mean) {
    const std::int32_t out = LEVEL_OUTSIDE;
    EXPECT_EQ(Smooth({10, out, 30}, 3, 1, 9), (std::vector<std::int32_t>{90, out, 270}));
    EXPECT_EQ(Smooth({4, out, 8, 6}, 2, 2, 9),
              (std::vector<std::int32_t>{(4 * 4 + 8 * 2 + 6) * 9 / 7, out, (4 * 2 + 8 * 4 + 6 * 2) * 9 / 8,
                                         (4 + 8 * 2 + 6 * 4) * 9 / 7}));
}

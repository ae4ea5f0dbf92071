#include "workbench/volumes/volume_statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace volumes;

namespace {

Volume Volume_Of(std::vector<std::int32_t> levels, double slope = 1, double intercept = 0) {
    Volume volume;
    volume.nx = static_cast<std::int32_t>(levels.size());
    volume.ny = volume.nz = volume.nt = 1;
    volume.slope = slope;
    volume.intercept = intercept;
    if (!levels.empty()) {
        volume.level_min = *std::min_element(levels.begin(), levels.end());
        volume.level_max = *std::max_element(levels.begin(), levels.end());
    }
    volume.levels = std::move(levels);
    return volume;
}

// By sorting, and two passes in long double.
void Expect_As_Sorted(std::vector<double> values, const Volume_Statistics& statistics) {
    std::sort(values.begin(), values.end());
    const std::size_t count = values.size();
    long double sum = 0;
    for (const double value : values) {
        sum += value;
    }
    const long double mean = sum / static_cast<long double>(count);
    long double squares = 0;
    for (const double value : values) {
        squares += (value - mean) * (value - mean);
    }
    const double scale = std::max(std::fabs(values.front()), std::fabs(values.back())) * 1e-12 + 1e-12;
    EXPECT_EQ(statistics.count, count);
    EXPECT_NEAR(statistics.min, values.front(), scale);
    EXPECT_NEAR(statistics.max, values.back(), scale);
    EXPECT_NEAR(statistics.mean, static_cast<double>(mean), scale);
    EXPECT_NEAR(statistics.sd, static_cast<double>(std::sqrt(squares / static_cast<long double>(count))), scale * 10);
    EXPECT_NEAR(statistics.window_low, values[(count + 99) / 100 - 1], scale);
    EXPECT_NEAR(statistics.window_high, values[(count * 99 + 99) / 100 - 1], scale);
}

TEST(Volume_Statistics, agrees_with_sorting_for_any_range) {
    std::mt19937 random(7);
    for (const std::size_t count :
         {std::size_t{2}, std::size_t{99}, std::size_t{100}, std::size_t{101}, std::size_t{5000}}) {
        for (const std::int32_t largest : {10, 70000, LEVEL_LARGEST}) {
            std::uniform_int_distribution<std::int32_t> level(-largest - 1, largest);
            std::vector<std::int32_t> levels(count);
            std::generate(levels.begin(), levels.end(), [&] { return level(random); });
            levels[0] = -largest - 1;
            levels[1] = largest;
            const Volume volume = Volume_Of(levels, 0.5, 100);
            std::vector<double> values;
            for (const std::int32_t stored : levels) {
                values.push_back(stored * 0.5 + 100);
            }
            SCOPED_TRACE(testing::Message() << count << " levels up to " << largest);
            Expect_As_Sorted(values, Volume_Statistics_Compute(volume));
        }
    }
}

TEST(Volume_Statistics, keeps_the_order_under_a_negative_slope) {
    const Volume_Statistics statistics = Volume_Statistics_Compute(Volume_Of({0, 1, 2, 3}, -10, 5));
    EXPECT_EQ(statistics.min, -25);
    EXPECT_EQ(statistics.max, 5);
    EXPECT_EQ(statistics.window_low, -25);
    EXPECT_EQ(statistics.window_high, 5);
    EXPECT_EQ(statistics.mean, -10);
    EXPECT_NEAR(statistics.sd, 10 * std::sqrt(1.25), 1e-12);
}

TEST(Volume_Statistics, leaves_out_levels_outside) {
    std::vector<std::int32_t> levels = {LEVEL_OUTSIDE, 0, LEVEL_OUTSIDE, 65535, 30000, 20000, LEVEL_OUTSIDE};
    Volume volume = Volume_Of(levels);
    volume.level_max = 65535;
    Expect_As_Sorted({0, 65535, 30000, 20000}, Volume_Statistics_Compute(volume));
    // Many, in either half of the numbers.
    std::mt19937 random(3);
    for (const std::int32_t largest : {500, 100000, LEVEL_LARGEST}) {
        std::uniform_int_distribution<std::int32_t> level(-largest, largest);
        levels.assign(3000, LEVEL_OUTSIDE);
        std::vector<double> values;
        for (std::size_t i = 1000; i < levels.size(); ++i) {
            levels[i] = i == 1000 ? largest : level(random);
            values.push_back(levels[i]);
        }
        volume = Volume_Of(levels);
        volume.level_max = largest;
        Expect_As_Sorted(values, Volume_Statistics_Compute(volume));
    }
    const Volume_Statistics statistics = Volume_Statistics_Compute(Volume_Of({LEVEL_OUTSIDE, LEVEL_OUTSIDE}));
    EXPECT_EQ(statistics.count, 0U);
    EXPECT_EQ(statistics.mean, 0);
    EXPECT_LT(statistics.window_low, statistics.window_high);
}

TEST(Volume_Statistics, leaves_rare_extremes_outside_the_window) {
    std::vector<std::int32_t> levels(10000);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        levels[i] = static_cast<std::int32_t>(i % 100);
    }
    levels[17] = 1000000;
    levels[18] = -1000000;
    const Volume_Statistics statistics = Volume_Statistics_Compute(Volume_Of(levels));
    EXPECT_EQ(statistics.min, -1000000);
    EXPECT_EQ(statistics.max, 1000000);
    EXPECT_EQ(statistics.window_low, 0);
    EXPECT_EQ(statistics.window_high, 99);
}

TEST(Volume_Statistics, always_gives_a_window) {
    std::vector<std::int32_t> levels(1000, 7);
    levels[5] = 9;
    Volume_Statistics statistics = Volume_Statistics_Compute(Volume_Of(levels));
    EXPECT_EQ(statistics.window_low, 7);
    EXPECT_EQ(statistics.window_high, 9);
    statistics = Volume_Statistics_Compute(Volume_Of({7}));
    EXPECT_EQ(statistics.window_low, 6.5) << "a single value is mid grey";
    EXPECT_EQ(statistics.window_high, 7.5);
    statistics = Volume_Statistics_Compute(Volume_Of({1000000000}));
    EXPECT_LT(static_cast<float>(statistics.window_low), static_cast<float>(statistics.window_high));
    EXPECT_EQ((statistics.window_low + statistics.window_high) / 2, 1e9);
    statistics = Volume_Statistics_Compute(Volume_Of({0}, 1, 1e300));
    EXPECT_LT(statistics.window_low, statistics.window_high);
    statistics = Volume_Statistics_Compute(Volume_Of({}));
    EXPECT_LT(statistics.window_low, statistics.window_high);
}

TEST(Volume_Statistics, counts_all_components_of_colours) {
    Volume volume = Volume_Of({0x030201, 0x0780FA});
    volume.color = true;
    Expect_As_Sorted({1, 2, 3, 250, 128, 7}, Volume_Statistics_Compute(volume));
}

}  // namespace

#include "workbench/analysis/histogram_numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace workbench;

namespace {

TEST(Histogram_Numbers_Of, an_empty_histogram_has_no_pixels) {
    const std::vector<std::uint32_t> counts(10);
    EXPECT_EQ(Histogram_Numbers_Of(counts, {}, 0.0).pixels, 0U);
    EXPECT_EQ(Histogram_Numbers_Of({}, {}, 0.0).pixels, 0U);
}

TEST(Histogram_Numbers_Of, agrees_with_the_pixels_themselves) {
    std::mt19937 random(3);
    std::vector<std::uint32_t> counts(50);
    std::vector<double> levels;
    for (int k = 0; k < 5000; ++k) {
        const auto bin = (random() % 25 + random() % 25);
        ++counts[bin];
        levels.push_back(-100.0 + 2.5 * static_cast<double>(bin));
    }
    std::sort(levels.begin(), levels.end());
    double sum = 0.0;
    for (const double level : levels) {
        sum += level;
    }
    const double mean = sum / 5000.0;
    double squares = 0.0;
    for (const double level : levels) {
        squares += (level - mean) * (level - mean);
    }
    const Histogram_Numbers numbers = Histogram_Numbers_Of(counts, {-100.0, 2.5}, 0.0);
    EXPECT_EQ(numbers.pixels, 5000U);
    EXPECT_NEAR(numbers.mean, mean, 1e-9);
    EXPECT_NEAR(numbers.deviation, std::sqrt(squares / 5000.0), 1e-9);
    EXPECT_EQ(numbers.minimum, levels.front());
    EXPECT_EQ(numbers.maximum, levels.back());
    EXPECT_EQ(numbers.median, levels[2499]);
    EXPECT_EQ(numbers.percentile_1, levels[49]);
    EXPECT_EQ(numbers.percentile_99, levels[4949]);
}

TEST(Histogram_Numbers_Of, the_mode_is_the_lowest_of_the_fullest_bins) {
    const std::vector<std::uint32_t> counts = {1, 7, 3, 7, 2};
    EXPECT_EQ(Histogram_Numbers_Of(counts, {0.0, 10.0}, 0.0).mode, 10.0);
    EXPECT_EQ(Histogram_Numbers_Of(counts, {0.0, 10.0}, 0.5).mode, 15.0);
}

}  // namespace

#include "histogram/peak_candidates.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

/** A derivative that rises by `slope` before bin `x` and falls by it from there on, `reach` bins on each side. */
std::vector<float> Crossing(int n, int x, int reach, float slope) {
    std::vector<float> derivative(static_cast<std::size_t>(n), 0.0F);
    for (int k = 1; k <= reach; ++k) {
        derivative[static_cast<std::size_t>(x - k)] = slope;
        derivative[static_cast<std::size_t>(x + k)] = -slope;
    }
    return derivative;
}

TEST(Zero_Peak_Test, finds_a_clear_crossing_and_skips_its_falling_side) {
    const std::vector<float> derivative = Crossing(200, 100, 20, 6.0F);
    int last = 0;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 1 + 20);
    EXPECT_EQ(last, 100);
    EXPECT_EQ(Zero_Peak_Test(derivative, 99, 15, 5.0F, last), 0) << "no crossing there";
    EXPECT_EQ(last, 100) << "and no crossing seen";
}

TEST(Zero_Peak_Test, a_crossing_within_the_gap_of_the_last_one_is_rejected_and_remembered) {
    const std::vector<float> derivative = Crossing(200, 100, 20, 6.0F);
    int last = 85;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0) << "exactly the gap";
    EXPECT_EQ(last, 100);
    last = 84;
    EXPECT_NE(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
}

TEST(Zero_Peak_Test, a_later_last_crossing_rejects_too) {
    const std::vector<float> derivative = Crossing(200, 100, 20, 6.0F);
    int last = 150;  // a fit on the same curve before
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
    EXPECT_EQ(last, 100);
}

TEST(Zero_Peak_Test, needs_a_strict_rise_and_fall_over_the_gap) {
    std::vector<float> derivative = Crossing(200, 100, 20, 6.0F);
    int last = 0;
    derivative[86] = 0.0F;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
    derivative = Crossing(200, 100, 20, 6.0F);
    derivative[85] = 0.0F;  // one bin beyond the gap
    last = 0;
    EXPECT_NE(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
    derivative[114] = 0.0F;
    last = 0;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
}

TEST(Zero_Peak_Test, needs_a_steep_bin_on_each_side) {
    std::vector<float> derivative = Crossing(200, 100, 20, 5.0F);
    int last = 0;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0) << "as steep as the limit is not steeper";
    derivative[90] = 5.5F;
    last = 0;
    EXPECT_EQ(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
    derivative[110] = -5.5F;
    last = 0;
    EXPECT_NE(Zero_Peak_Test(derivative, 100, 15, 5.0F, last), 0);
}

TEST(Zero_Peak_Test, ignores_bins_outside_the_curve) {
    std::vector<float> derivative = {0, 9, 9, 9, 0, -9, -9};
    int last = -100;
    EXPECT_EQ(Zero_Peak_Test(derivative, 4, 15, 5.0F, last), 0) << "bin 0 does not rise";
    derivative[0] = 9;
    last = -100;
    EXPECT_EQ(Zero_Peak_Test(derivative, 4, 15, 5.0F, last), 3);
}

TEST(Data_Peak_Test, looks_one_bin_before_x) {
    std::vector<double> filtered(100, 20.0);
    filtered[50] = 30.9;
    EXPECT_TRUE(Data_Peak_Test(filtered, 51, 15, 10.0F).is_maximum);
    EXPECT_EQ(Data_Peak_Test(filtered, 51, 15, 10.0F).drop, 10) << "truncated";
    EXPECT_FALSE(Data_Peak_Test(filtered, 50, 15, 10.0F).is_maximum);
}

TEST(Data_Peak_Test, a_plateau_passes_and_its_drop_decides) {
    std::vector<double> filtered(100, 20.0);
    EXPECT_TRUE(Data_Peak_Test(filtered, 51, 15, 10.0F).is_maximum);
    EXPECT_EQ(Data_Peak_Test(filtered, 51, 15, 10.0F).drop, 0);
    filtered[40] = 17.5;
    EXPECT_EQ(Data_Peak_Test(filtered, 51, 15, 10.0F).drop, 2);
}

TEST(Data_Peak_Test, a_low_value_is_never_a_peak) {
    std::vector<double> filtered(100, 0.0);
    filtered[50] = 9.999;
    EXPECT_FALSE(Data_Peak_Test(filtered, 51, 15, 10.0F).is_maximum);
    filtered[50] = 10.0;
    EXPECT_TRUE(Data_Peak_Test(filtered, 51, 15, 10.0F).is_maximum);
}

TEST(Data_Peak_Test, survives_falls_beyond_the_integers) {
    std::vector<double> filtered(40, 0.0);
    filtered[20] = 1e30;
    EXPECT_EQ(Data_Peak_Test(filtered, 21, 15, 10.0F).drop, std::numeric_limits<int>::max());
}

TEST(Data_Peak_Test, survives_values_that_are_not_numbers) {
    std::vector<double> filtered(40, std::numeric_limits<double>::infinity());
    EXPECT_EQ(Data_Peak_Test(filtered, 21, 15, 10.0F).drop, 0);
    filtered[20] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Data_Peak_Test(filtered, 21, 15, 10.0F).drop, 0);
}

}  // namespace

#include "workbench/volumes/level_scale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace volumes;

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/** Every part's end values must come back within the error that the scale tells. */
void Expect_True(const std::vector<Scaled_Part>& parts, const Level_Scale& scale) {
    for (const Scaled_Part& part : parts) {
        const Level_Map map(part, scale);
        for (const std::int64_t stored : {part.lowest, part.lowest + (part.highest - part.lowest) / 3, part.highest}) {
            const double grey = static_cast<double>(stored) * part.slope + part.intercept;
            const std::int32_t level = map.Level(stored);
            ASSERT_NE(level, LEVEL_OUTSIDE) << grey;
            EXPECT_NEAR(level * scale.slope + scale.intercept, grey,
                        scale.max_error * (1 + 1e-6) + std::abs(grey) * 1e-14)
                << stored << " of slope " << part.slope;
        }
    }
}

TEST(Level_Scale, one_scale_for_all_parts_keeps_the_stored_values) {
    const std::vector<Scaled_Part> parts = {{0.25, -3, -100, 4000, 10, 0}, {0.25, -3, 0, 5000, 10, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.slope, 0.25);
    EXPECT_EQ(scale.intercept, -3);
    EXPECT_EQ(scale.max_error, 0);
    EXPECT_EQ(scale.lowest, -100);
    EXPECT_EQ(scale.highest, 5000);
    EXPECT_TRUE(Level_Map(parts[0], scale).Is_Same());
    EXPECT_EQ(Level_Map(parts[0], scale).Level(1234), 1234);
    EXPECT_EQ(Level_Scale_Warning(scale, "slices"), "");
    Expect_True(parts, scale);
}

TEST(Level_Scale, a_blank_slice_of_a_tiny_slope_takes_nothing_from_the_others) {
    // A slice of noise near 0 beside one of activity: the ratio of their slopes is 5,000,000.
    const std::vector<Scaled_Part> parts = {{0.6, 0, 0, 65534, 100, 0}, {1.2e-7, 0, 0, 32767, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    Expect_True(parts, scale);
    EXPECT_LT(scale.max_error, 5e-6);
    EXPECT_EQ(Level_Scale_Warning(scale, "slices"),
              "has slices of very different scales (slopes 1.2e-07 to 0.6): greys are rounded to steps of 9.15499e-06 "
              "and are at most 4.5775e-06 off");
}

TEST(Level_Scale, a_slice_of_one_value_has_no_step) {
    const std::vector<Scaled_Part> parts = {{0.6, 0, 0, 65534, 100, 0}, {1e-300, 0, 0, 0, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.slope, 0.6);
    EXPECT_EQ(scale.max_error, 0);
    Expect_True(parts, scale);
}

TEST(Level_Scale, slopes_that_are_multiples_are_exact) {
    const std::vector<Scaled_Part> parts = {{0.3, 0.5, 0, 4095, 100, 0}, {0.1, -0.2, -5, 4095, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.slope, 0.1);
    EXPECT_LT(scale.max_error, 1e-7);
    EXPECT_EQ(Level_Map(parts[0], scale).Level(100), 307);
    EXPECT_EQ(Level_Scale_Warning(scale, "slices"), "");
    Expect_True(parts, scale);
}

TEST(Level_Scale, slopes_with_a_common_part_are_exact) {
    const std::vector<Scaled_Part> parts = {
        {0.75, -7, -32768, 32767, 100, 0}, {0.5, -7, -32768, 32767, 100, 0}, {1.25, -6.75, -9, 9, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.slope, 0.25);
    EXPECT_EQ(scale.max_error, 0);
    EXPECT_EQ(Level_Map(parts[0], scale).Level(100), 300);
    EXPECT_EQ(Level_Map(parts[2], scale).Level(2), 11);
    EXPECT_EQ(Level_Scale_Warning(scale, "slices"), "");
    Expect_True(parts, scale);
}

TEST(Level_Scale, other_slopes_take_the_finest_step) {
    const std::vector<Scaled_Part> parts = {{0.37123456789, 0, 0, 32767, 100, 0.01}, {0.1, 0, 0, 32767, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.slope, 0.1);
    EXPECT_DOUBLE_EQ(scale.max_error, 0.06);
    EXPECT_EQ(Level_Scale_Warning(scale, "frames"), "");
    Expect_True(parts, scale);
}

TEST(Level_Scale, parts_of_single_values_keep_what_they_can) {
    // The blank slice's own slope is no step of anything; its value lies on the others' steps or it does not.
    const std::vector<Scaled_Part> fitting = {{0.5, 0, 0, 4095, 100, 0}, {1e-9, 2.25, 0, 0, 100, 0}};
    const Level_Scale exact = Level_Scale_Choose(fitting);
    EXPECT_EQ(exact.slope, 0.25);
    EXPECT_EQ(exact.max_error, 0);
    EXPECT_EQ(Level_Map(fitting[1], exact).Level(0), 9);
    const std::vector<Scaled_Part> other = {{0.5, 0, 0, 4095, 100, 0}, {1e-9, 2.1234567891, 0, 0, 100, 0}};
    const Level_Scale near = Level_Scale_Choose(other);
    EXPECT_EQ(near.slope, 0.5);
    EXPECT_EQ(Level_Scale_Warning(near, "slices"), "");
    Expect_True(other, near);
    const std::vector<Scaled_Part> ones = {{0.5, 0, 3, 3, 100, 0}, {0.7, 0.123456789123, 3, 3, 100, 0}};
    const Level_Scale of_ones = Level_Scale_Choose(ones);
    EXPECT_LT(of_ones.max_error, 1e-9);
    Expect_True(ones, of_ones);
}

TEST(Level_Scale, a_far_part_of_one_value_is_kept_while_it_leaves_steps_to_the_others) {
    // 4095 / 3 wide, and 60,000 times as far: within the steps there are.
    const std::vector<Scaled_Part> near = {
        {1.0 / 3, 0, 0, 4095, 100, 0}, {1.0 / 7000, 0, 0, 4095, 100, 0}, {1, 8e7 + 0.1234567891, 0, 0, 50, 0}};
    const Level_Scale kept = Level_Scale_Choose(near);
    EXPECT_FALSE(kept.Has_Outside());
    EXPECT_LT(kept.max_error, 0.01);
    Expect_True(near, kept);
    const std::vector<Scaled_Part> far = {
        {1.0 / 3, 0, 0, 4095, 100, 0}, {1.0 / 7000, 0, 0, 4095, 100, 0}, {1, 8e9 + 0.1234567891, 0, 0, 50, 0}};
    const Level_Scale left = Level_Scale_Choose(far);
    EXPECT_EQ(left.outlier_nb, 50U);
    EXPECT_EQ(left.outlier_lowest, 8e9 + 0.1234567891);
    EXPECT_EQ(left.outlier_highest, left.outlier_lowest);
    Volume volume;
    Outside_Note(left, volume);
    EXPECT_EQ(volume.outlier_nb, 50U);
    EXPECT_EQ(volume.outlier_lowest, left.outlier_lowest);
    Expect_True({far[0], far[1]}, left);
}

TEST(Level_Scale, values_of_32_bits_are_exact_wherever_they_begin) {
    const std::vector<Scaled_Part> high = {{2, 1, 3000000000, 4294967295, 100, 0}};
    const Level_Scale of_high = Level_Scale_Choose(high);
    EXPECT_EQ(of_high.max_error, 0);
    EXPECT_EQ(of_high.lowest, 0);
    Expect_True(high, of_high);
    const std::vector<Scaled_Part> wide = {{1, 0, 0, 4294967290, 100, 0}};
    const Level_Scale of_wide = Level_Scale_Choose(wide);
    EXPECT_EQ(of_wide.max_error, 0);
    EXPECT_EQ(of_wide.highest, LEVEL_LARGEST);
    Expect_True(wide, of_wide);
    const std::vector<Scaled_Part> widest = {{1, 0, 0, 4294967295, 100, 0}};
    const Level_Scale of_widest = Level_Scale_Choose(widest);
    EXPECT_GT(of_widest.max_error, 0);
    EXPECT_LE(of_widest.max_error, 0.5001);
    EXPECT_EQ(Level_Scale_Warning(of_widest, "frames"),
              "has frames of more values than levels can be: greys are rounded to steps of 1 and are at most 0.5 off");
    const std::vector<Scaled_Part> negative = {{-3, 7, -2147483648, 2147483647, 100, 0}};
    const Level_Scale of_negative = Level_Scale_Choose(negative);
    EXPECT_LE(of_negative.max_error, 1.5001);
    Expect_True(negative, of_negative);
    Expect_True(widest, of_widest);
}

TEST(Level_Scale, values_of_32_bits_with_slopes_of_their_own) {
    const std::vector<Scaled_Part> parts = {{1e-3, 0, -2000000000, 2000000000, 100, 0},
                                            {7e-5, 4, -2000000000, 2100000000, 100, 0},
                                            {-2.5e-4, 0, 0, 1000000000, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    Expect_True(parts, scale);
    EXPECT_LT(scale.max_error, 5e-4);
    EXPECT_NE(Level_Scale_Warning(scale, "frames").find("at most "), std::string::npos);
}

TEST(Level_Scale, a_part_of_an_absurd_slope_is_left_outside_and_told) {
    const std::vector<Scaled_Part> parts = {{1.5, 0, 0, 4000, 5000, 0},
                                            {1.7, 0, 0, 4000, 5000, 0},
                                            {1e290, 0, 7, 7, 5000, 0},
                                            {NOT_A_NUMBER, 0, 0, 9, 50, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_DOUBLE_EQ(scale.slope, 0.1);
    EXPECT_EQ(scale.outlier_nb, 5000U);
    EXPECT_EQ(scale.nonfinite_nb, 50U);
    EXPECT_EQ(Level_Map(parts[2], scale).Level(7), LEVEL_OUTSIDE);
    EXPECT_EQ(Level_Map(parts[3], scale).Level(7), LEVEL_OUTSIDE);
    Expect_True({parts[0], parts[1]}, scale);
    EXPECT_EQ(Level_Scale_Warning(scale, "slices"),
              "has slices whose scale is far from all others: 5,000 of their values (7e+290) are left outside the "
              "scale, are shown black and count nowhere; it has slices without a usable scale: 50 of their values are "
              "left outside, are shown black and count nowhere");
}

TEST(Level_Scale, what_was_read_outside_stays_outside) {
    const std::vector<Scaled_Part> parts = {{1, 0, 0, 10, 10, 0}, {3, 0, 0, 10, 10, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(Level_Map(parts[1], scale).Level_Again(LEVEL_OUTSIDE), LEVEL_OUTSIDE);
    EXPECT_EQ(Level_Map(parts[1], scale).Level_Again(5), 15);
    EXPECT_FALSE(Level_Map(parts[1], scale).Is_Same());
}

TEST(Level_Scale, falling_and_rising_slopes_meet) {
    const std::vector<Scaled_Part> parts = {{-0.3712345678, 1000, 0, 4095, 100, 0}, {0.11, -5, 0, 4095, 100, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    Expect_True(parts, scale);
    EXPECT_DOUBLE_EQ(scale.max_error, 0.055);
}

TEST(Level_Scale, no_usable_part_leaves_everything_outside) {
    const std::vector<Scaled_Part> parts = {{NOT_A_NUMBER, 0, 0, 10, 10, 0}};
    const Level_Scale scale = Level_Scale_Choose(parts);
    EXPECT_EQ(scale.nonfinite_nb, 10U);
    EXPECT_EQ(Level_Map(parts[0], scale).Level(0), LEVEL_OUTSIDE);
}

}  // namespace

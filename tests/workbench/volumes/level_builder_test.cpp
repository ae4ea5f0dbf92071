#include "workbench/volumes/level_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace volumes;

namespace {

using testing::ElementsAre;

template <class Value>
Volume Levels_Of(const std::vector<Value>& values, double slope = 1, double intercept = 0) {
    constexpr bool is_float = sizeof(Value) == sizeof(float);
    Level_Builder builder(is_float ? Voxel_Type::Float32 : Voxel_Type::Float64, Byte_Order::Little, values.size());
    std::vector<std::uint8_t> bytes(values.size() * sizeof(Value));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    builder.Append(bytes);
    Volume volume;
    builder.Finish(slope, intercept, volume);
    return volume;
}

template <class Value>
void Expect_Close(const Volume& volume, const std::vector<Value>& values, double most) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double grey = volume.levels[i] * volume.slope + volume.intercept;
        EXPECT_NEAR(grey, static_cast<double>(values[i]), most) << "value " << i;
    }
}

TEST(Level_Builder, few_greys_between_0_and_1_have_a_level_each) {
    std::vector<float> values;
    for (int grey = 255; grey >= 0; --grey) {
        values.push_back(static_cast<float>(grey) / 255.0F);
    }
    const Volume volume = Levels_Of(values);
    EXPECT_EQ(volume.level_min, 0);
    EXPECT_EQ(volume.level_max, 255);
    EXPECT_NEAR(volume.slope, 1.0 / 255, 1e-12);
    EXPECT_LT(volume.max_error, 1e-6);
    Expect_Close(volume, values, volume.max_error + 1e-7);
    EXPECT_EQ(volume.levels[0], 255);
}

TEST(Level_Builder, a_small_range_has_65536_levels) {
    // Diffusion values as scanners compute them, all different.
    std::mt19937 random(5);
    std::uniform_real_distribution<float> value(0.0F, 0.003F);
    std::vector<float> values = {0.0F, 0.003F};
    for (int i = 0; i < 20000; ++i) {
        values.push_back(value(random));
    }
    const Volume volume = Levels_Of(values);
    EXPECT_EQ(volume.level_min, 0);
    EXPECT_EQ(volume.level_max, QUANTISED_STEPS);
    EXPECT_NEAR(volume.slope, 0.003 / 65535, 1e-12);
    Expect_Close(volume, values, volume.max_error * 1.0001 + 1e-12);
}

TEST(Level_Builder, whole_numbers_in_floats_are_their_own_levels) {
    const Volume volume = Levels_Of<float>({-1000.0F, 0.0F, 3071.0F, 40.0F, std::nanf("")}, 0.5, 3);
    EXPECT_THAT(volume.levels, ElementsAre(-1000, 0, 3071, 40, LEVEL_OUTSIDE));
    EXPECT_EQ(volume.slope, 0.5) << "the file's scale is kept";
    EXPECT_EQ(volume.intercept, 3);
    EXPECT_EQ(volume.level_min, -1000);
    EXPECT_EQ(volume.level_max, 3071);
    EXPECT_EQ(volume.nonfinite_nb, 1U);
    EXPECT_EQ(volume.max_error, 0);
}

TEST(Level_Builder, gaps_in_a_grid_are_steps_too) {
    std::vector<double> values;
    for (const int step : {0, 1, 2, 700, 701, 4095}) {
        values.push_back(-0.25 + step * 0.0007);
    }
    const Volume volume = Levels_Of(values);
    EXPECT_THAT(volume.levels, ElementsAre(0, 1, 2, 700, 701, 4095));
    EXPECT_NEAR(volume.slope, 0.0007, 1e-9);
}

TEST(Level_Builder, a_grid_is_not_seen_where_it_would_cost_exactness) {
    const std::vector<double> values = {0.0, 0.1, 0.2, 0.333, 1.0};
    const Volume volume = Levels_Of(values);
    EXPECT_EQ(volume.level_max, QUANTISED_STEPS);
    Expect_Close(volume, values, volume.max_error * 1.0001);
}

TEST(Level_Builder, infinities_stay_outside_the_scale) {
    const float infinity = std::numeric_limits<float>::infinity();
    const Volume volume = Levels_Of<float>({infinity, 0.5F, -infinity, 0.75F, 1.0F});
    EXPECT_THAT(volume.levels, ElementsAre(LEVEL_OUTSIDE, 0, LEVEL_OUTSIDE, 1, 2));
    EXPECT_EQ(volume.nonfinite_nb, 2U);
    EXPECT_EQ(volume.level_max, 2);
}

template <class Value>
Volume Levels_Of_Type(Voxel_Type type, const std::vector<Value>& values) {
    Level_Builder builder(type, Byte_Order::Little, values.size());
    std::vector<std::uint8_t> bytes(values.size() * sizeof(Value));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    builder.Append(bytes);
    Volume volume;
    builder.Finish(1, 0, volume);
    return volume;
}

TEST(Level_Builder, a_mark_for_no_value_takes_nothing_from_the_others) {
    const Volume of_int = Levels_Of_Type<std::int32_t>(Voxel_Type::Int32, {5, 2147483647, 9, -20, 2147483647});
    EXPECT_THAT(of_int.levels, ElementsAre(5, LEVEL_OUTSIDE, 9, -20, LEVEL_OUTSIDE));
    EXPECT_EQ(of_int.max_error, 0);
    EXPECT_EQ(of_int.level_max, 9);
    EXPECT_EQ(of_int.outlier_nb, 2U);
    const Volume of_unsigned = Levels_Of_Type<std::uint32_t>(Voxel_Type::Uint32, {0, 5000000, 0xFFFFFFFFU, 17});
    EXPECT_THAT(of_unsigned.levels, ElementsAre(0, 5000000, LEVEL_OUTSIDE, 17));
    EXPECT_EQ(of_unsigned.max_error, 0);
    const Volume of_real = Levels_Of<double>({0.5, 1e300, 3, 0.25, -1e300, std::nan("")}, 2, 1);
    EXPECT_EQ(of_real.outlier_nb, 2U);
    EXPECT_EQ(of_real.nonfinite_nb, 1U);
    EXPECT_EQ(of_real.outlier_lowest, -2e300);
    EXPECT_EQ(of_real.outlier_highest, 2e300);
    EXPECT_NEAR(of_real.grey(of_real.levels[0]), 2, of_real.max_error + 1e-6);
    EXPECT_NEAR(of_real.grey(of_real.levels[3]), 1.5, of_real.max_error + 1e-6);
    EXPECT_EQ(of_real.levels[1], LEVEL_OUTSIDE);
    EXPECT_THAT(Values_Outside_Texts(of_real),
                ElementsAre("has 1 voxel that is no number; it is shown black and counts nowhere",
                            "has 2 voxels of -2e+300 to 2e+300, far from all others (1.5 to 7); they are left outside "
                            "the scale, are shown black and count nowhere"));
}

TEST(Level_Builder, values_that_keep_theirs_are_never_left_outside) {
    const Volume volume = Levels_Of_Type<std::int32_t>(Voxel_Type::Int32, {5, 2147483645, 9, -2147483647});
    EXPECT_EQ(volume.outlier_nb, 0U);
    EXPECT_THAT(volume.levels, ElementsAre(5, 2147483645, 9, -2147483647));
}

TEST(Level_Builder, marks_at_both_ends_of_a_wide_type_are_left_outside) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const Volume volume = Levels_Of_Type<std::int64_t>(Voxel_Type::Int64, {5, most, 9, least, -3});
    EXPECT_THAT(volume.levels, ElementsAre(5, LEVEL_OUTSIDE, 9, LEVEL_OUTSIDE, -3));
    EXPECT_EQ(volume.outlier_nb, 2U);
}

}  // namespace

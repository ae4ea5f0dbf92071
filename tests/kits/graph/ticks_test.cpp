#include "kits/graph/ticks.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>

namespace {

bool Is_Round(double step) {
    const double digit = step / std::pow(10.0, std::floor(std::log10(step) + 1e-9));
    return std::abs(digit - 1) < 1e-6 || std::abs(digit - 2) < 1e-6 || std::abs(digit - 5) < 1e-6;
}

std::string Text_At(double from, double to, double least, std::int64_t index, bool compact = false) {
    const Tick_Scale scale = Tick_Scale_Make(from, to, least);
    return Tick_Text(scale, Tick_Format_Make(scale, compact), index);
}

}  // namespace

TEST(Ticks, step_is_the_smallest_round_one_that_is_not_below_the_wish) {
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 100, 7).step, 10);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 100, 10).step, 10);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 100, 10.5).step, 20);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 100, 21).step, 50);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 100, 51).step, 100);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 1, 0.03).step, 0.05);
    EXPECT_DOUBLE_EQ(Tick_Scale_Make(0, 1000000, 1000).step, 1000);
}

TEST(Ticks, lie_inside_the_range_with_its_round_ends) {
    const Tick_Scale scale = Tick_Scale_Make(-30, 100, 10);
    EXPECT_EQ(scale.Value(scale.first), -30);
    EXPECT_EQ(scale.Value(scale.last), 100);
    EXPECT_EQ(scale.Count(), 14);
    const Tick_Scale inner = Tick_Scale_Make(-29.5, 99.5, 10);
    EXPECT_EQ(inner.Value(inner.first), -20);
    EXPECT_EQ(inner.Value(inner.last), 90);
    EXPECT_EQ(Tick_Scale_Make(0.1, 0.7, 0.1).Count(), 7);
    EXPECT_EQ(Tick_Scale_Make(11, 14, 20).Count(), 0);
}

TEST(Ticks, coarser_goes_from_one_to_two_to_five_to_ten) {
    Tick_Scale scale = Tick_Scale_Make(0, 1000, 1);
    for (const double step : {2.0, 5.0, 10.0, 20.0, 50.0, 100.0}) {
        scale = Tick_Scale_Coarser(0, 1000, scale);
        EXPECT_DOUBLE_EQ(scale.step, step);
    }
}

TEST(Ticks, every_range_gives_round_steps_in_order) {
    const float limits[] = {-FLT_MAX, -3e7F, -1.0F,  -1e-30F,  0.0F,  FLT_MIN,
                            1e-7F,    0.3F,  255.0F, 65536.5F, 3e30F, FLT_MAX};
    for (const float from : limits) {
        for (const float to : limits) {
            if (!(from < to)) {
                continue;
            }
            const double span = static_cast<double>(to) - from;
            for (const double parts : {1.0, 3.0, 7.0, 50.0, 1000.0}) {
                const Tick_Scale scale = Tick_Scale_Make(from, to, span / parts);
                EXPECT_TRUE(Is_Round(scale.step)) << from << " " << to << " " << scale.step;
                EXPECT_LE(scale.Count(), static_cast<std::int64_t>(parts) + 2);
                if (scale.Count() > 0) {
                    EXPECT_GE(scale.Value(scale.first), from - scale.step * 1e-6);
                    EXPECT_LE(scale.Value(scale.last), to + scale.step * 1e-6);
                }
            }
        }
    }
}

TEST(Ticks, a_wish_beyond_precision_is_cut_down) {
    const Tick_Scale scale = Tick_Scale_Make(1e8, 1e8 + 8, 1e-300);
    EXPECT_GE(scale.step, 1e-5);
}

TEST(Ticks, ranges_that_are_none) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(Is_Range_Valid(0, 1));
    EXPECT_TRUE(Is_Range_Valid(-FLT_MAX, FLT_MAX));
    EXPECT_FALSE(Is_Range_Valid(1, 1));
    EXPECT_FALSE(Is_Range_Valid(2, 1));
    EXPECT_FALSE(Is_Range_Valid(nan, 1));
    EXPECT_FALSE(Is_Range_Valid(0, nan));
    EXPECT_FALSE(Is_Range_Valid(-infinite, 1));
    EXPECT_FALSE(Is_Range_Valid(0, infinite));
}

TEST(Tick_Text, plain_numbers_with_the_decimals_of_the_step) {
    EXPECT_EQ(Text_At(0, 100, 20, 2), "40");
    EXPECT_EQ(Text_At(0, 1, 0.25, 1), "0.5");
    EXPECT_EQ(Text_At(0, 1, 0.05, 3), "0.15");
    EXPECT_EQ(Text_At(-1, 1, 0.5, -1), "-0.5");
    EXPECT_EQ(Text_At(0, 80000, 10000, 8), "80000");
}

TEST(Tick_Text, zero_is_just_zero) {
    EXPECT_EQ(Text_At(0, 1, 0.1, 0), "0");
    EXPECT_EQ(Text_At(-5e6, 5e6, 1e6, 0), "0");
}

TEST(Tick_Text, large_and_small_numbers_carry_their_unit) {
    EXPECT_EQ(Text_At(0, 200000, 50000, 3), "150k");
    EXPECT_EQ(Text_At(0, 2e6, 5e5, 3), "1.5M");
    EXPECT_EQ(Text_At(0, 3e9, 1e9, 2), "2G");
    EXPECT_EQ(Text_At(0, 2e13, 1e13, 1), "10e12");
    EXPECT_EQ(Text_At(0, 5e-6, 1e-6, 2), "2e-6");
    EXPECT_EQ(Text_At(0, 12000, 2000, 6, true), "12k");
    EXPECT_EQ(Text_At(0, 12000, 500, 3, true), "1.5k");
    EXPECT_EQ(Text_At(0, 900, 100, 9, true), "900");
}

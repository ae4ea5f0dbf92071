#include "histogram/peak_shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "histogram/tool_histo_peak.h"

namespace {

constexpr double MIX = 0.5;

TEST(Shape_Value, has_half_its_height_at_one_width) {
    const Peak_Parameters p{50.0, 80.0, 7.0};
    for (const std::uint8_t type : {PEAK_LORENTZ, PEAK_GAUSS, PEAK_MIXED}) {
        EXPECT_DOUBLE_EQ(Shape_Value(type, 50.0, p, MIX), 80.0);
        EXPECT_NEAR(Shape_Value(type, 57.0, p, MIX), 40.0, 1e-6);
        EXPECT_NEAR(Shape_Value(type, 43.0, p, MIX), 40.0, 1e-6);
    }
}

TEST(Shape_Value, is_0_beyond_the_cut_off_and_not_at_it) {
    const Peak_Parameters p{0.0, 1.0, 2.0};
    EXPECT_GT(Shape_Value(PEAK_GAUSS, 20.0, p, MIX), 0.0);
    EXPECT_EQ(Shape_Value(PEAK_GAUSS, 20.0001, p, MIX), 0.0);
    EXPECT_GT(Shape_Value(PEAK_LORENTZ, -100.0, p, MIX), 0.0);
    EXPECT_EQ(Shape_Value(PEAK_LORENTZ, -100.001, p, MIX), 0.0);
    EXPECT_EQ(Shape_Value(PEAK_MIXED, 50.0, p, MIX), 0.5 * Shape_Value(PEAK_LORENTZ, 50.0, p, MIX));
}

TEST(Shape_Value, unknown_shapes_are_0) {
    for (const int type : {0, 4, 5, 255}) {
        EXPECT_EQ(Shape_Value(static_cast<std::uint8_t>(type), 1.0, {1.0, 1.0, 1.0}, MIX), 0.0);
        EXPECT_EQ(Shape_Derivative(static_cast<std::uint8_t>(type), 1, 1.0, {1.0, 1.0, 1.0}, MIX), 0.0);
    }
    EXPECT_EQ(Shape_Derivative(PEAK_GAUSS, 3, 1.0, {1.0, 1.0, 1.0}, MIX), 0.0);
    EXPECT_EQ(Shape_Derivative(PEAK_LORENTZ, 3, 1.0, {1.0, 1.0, 1.0}, MIX), 0.0);
}

TEST(Shape_Value, survives_a_width_of_0) {
    const Peak_Parameters p{3.0, 5.0, 0.0};
    for (const std::uint8_t type : {PEAK_LORENTZ, PEAK_GAUSS, PEAK_MIXED}) {
        EXPECT_EQ(Shape_Value(type, 3.0, p, MIX), 5.0);
        EXPECT_EQ(Shape_Value(type, 4.0, p, MIX), 0.0);
        EXPECT_EQ(Shape_Derivative(type, 0, 3.0, p, MIX), 0.0);
        EXPECT_EQ(Shape_Derivative(type, 1, 3.0, p, MIX), 1.0);
        EXPECT_EQ(Shape_Derivative(type, 2, 3.0, p, MIX), 0.0);
    }
}

TEST(Shape_Derivative, agrees_with_central_differences) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 2000; ++round) {
        const Peak_Parameters p{100.0 * unit(random), 1.0 + 1000.0 * unit(random), 2.0 + 20.0 * unit(random)};
        const double x = p.centre + (unit(random) - 0.5) * 12.0 * p.width;
        for (const std::uint8_t type : {PEAK_LORENTZ, PEAK_GAUSS, PEAK_MIXED}) {
            for (std::uint8_t index = 0; index < 3; ++index) {
                const double h = 1e-5 * (index == PEAK_AMPLITUDE ? p.amplitude : p.width);
                Peak_Parameters low = p;
                Peak_Parameters high = p;
                (index == 0 ? low.centre : (index == 1 ? low.amplitude : low.width)) -= h;
                (index == 0 ? high.centre : (index == 1 ? high.amplitude : high.width)) += h;
                const double difference =
                    (Shape_Value(type, x, high, MIX) - Shape_Value(type, x, low, MIX)) / (2.0 * h);
                const double scale = p.amplitude / p.width + 1.0;
                ASSERT_NEAR(Shape_Derivative(type, index, x, p, MIX), difference, 2e-6 * scale)
                    << "type " << int{type} << " index " << int{index};
            }
        }
    }
}

TEST(Shape_Derivative, keeps_the_two_constants_at_their_different_precision) {
    const Peak_Parameters p{0.0, 1.0, 1.0};
    const double g = std::exp(-0.693147181);
    EXPECT_EQ(Shape_Derivative(PEAK_GAUSS, 2, 1.0, p, MIX), g * 1.386294);
    EXPECT_EQ(Shape_Derivative(PEAK_GAUSS, 0, 1.0, p, MIX), g * (-2.0) * (0.0 - 1.0) * 0.693147181);
}

TEST(Gauss_Support, holds_exactly_the_bins_where_the_shape_is_not_cut_off) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 3000; ++round) {
        const int n = 1 + static_cast<int>(random() % 300);
        const Peak_Parameters p{-50.0 + 400.0 * unit(random), 1.0,
                                random() % 4 == 0 ? static_cast<double>(random() % 9) : 12.0 * unit(random)};
        const Bin_Span support = Gauss_Support(p, n);
        for (int bin = 0; bin < n; ++bin) {
            const bool inside = !(std::abs(bin - p.centre) > 10.0 * p.width);
            ASSERT_EQ(bin >= support.first && bin <= support.last, inside)
                << "bin " << bin << " C " << p.centre << " W " << p.width;
        }
    }
}

TEST(Gauss_Unit_Values, agree_with_the_exponential) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 500; ++round) {
        const Peak_Parameters p{-20.0 + 2000.0 * unit(random), 1.0, 1.0 + 400.0 * unit(random)};
        const Bin_Span support = Gauss_Support(p, 2048);
        if (support.first > support.last) {
            continue;
        }
        std::vector<double> values(static_cast<std::size_t>(support.last - support.first + 1));
        Gauss_Unit_Values(p, support, values);
        for (int bin = support.first; bin <= support.last; ++bin) {
            const double exact = Shape_Value(PEAK_GAUSS, bin, p, MIX);
            ASSERT_NEAR(values[static_cast<std::size_t>(bin - support.first)], exact, 1e-8 * exact);
        }
    }
}

}  // namespace

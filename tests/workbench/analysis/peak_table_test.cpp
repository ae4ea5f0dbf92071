#include "workbench/analysis/peak_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

std::vector<double> Curve_Of(const std::vector<Found_Peak>& peaks, int n) {
    std::vector<double> curve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        for (const Found_Peak& peak : peaks) {
            curve[static_cast<std::size_t>(i)] +=
                peak.amplitude * std::pow(2.0, -std::pow((i - peak.centre) / peak.width, 2));
        }
    }
    return curve;
}

std::vector<std::uint32_t> Counts_Of(const std::vector<double>& curve) {
    std::vector<std::uint32_t> counts;
    for (const double value : curve) {
        counts.push_back(static_cast<std::uint32_t>(std::lround(value)));
    }
    return counts;
}

TEST(Peak_Table_Make, Gives_Grey_Levels_Areas_And_Shares) {
    const std::vector<Found_Peak> peaks = {{false, 100.0, 5000.0, 10.0}, {false, 250.0, 2000.0, 20.0}};
    const std::vector<double> curve = Curve_Of(peaks, 400);
    const std::vector<std::uint32_t> counts = Counts_Of(curve);
    const Peak_Table table = Peak_Table_Make(peaks, {counts, curve, -50.0, 2.0});
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_EQ(table.rows[0].number, 1);
    EXPECT_DOUBLE_EQ(table.rows[0].centre, 100.5 * 2.0 - 50.0);
    EXPECT_DOUBLE_EQ(table.rows[0].full_width, 40.0);
    double sum = 0.0;
    for (int i = 0; i < 175; ++i) {
        sum += curve[static_cast<std::size_t>(i)];
    }
    EXPECT_NEAR(table.rows[0].area, sum, 1e-3 * sum) << "the closed form against the sum of the bins";
    EXPECT_NEAR(table.rows[0].share + table.rows[1].share, 1.0, 1e-3);
    EXPECT_DOUBLE_EQ(table.rows[0].from, (100.5 - 10.0) * 2.0 - 50.0);
    EXPECT_DOUBLE_EQ(table.rows[0].to, (100.5 + 10.0) * 2.0 - 50.0);
    ASSERT_TRUE(table.quality.is_known);
    EXPECT_NEAR(table.quality.r_squared_filtered, 1.0, 1e-9);
    EXPECT_GT(table.quality.r_squared_counts, 0.9999);
    EXPECT_LT(table.quality.reduced_chi_square, 0.5) << "only rounding is left";
}

TEST(With_Error, The_Error_Has_Two_Digits_And_The_Value_Is_As_Exact) {
    EXPECT_EQ(With_Error(85.2512, 1.234, 2), "85.3 \xC2\xB1 1.2");
    EXPECT_EQ(With_Error(28.194, 1.04, 2), "28.2 \xC2\xB1 1.0");
    EXPECT_EQ(With_Error(0.9134, 0.1511, 2), "0.91 \xC2\xB1 0.15");
    EXPECT_EQ(With_Error(246840.3, 4987.0, 0), "246800 \xC2\xB1 5000");
    EXPECT_EQ(With_Error(15912.0, 251.0, 0), "15910 \xC2\xB1 250");
    EXPECT_EQ(With_Error(1802.4, 77.6, 0), "1802 \xC2\xB1 78");
    EXPECT_EQ(With_Error(12.0, 9.96, 2), "12 \xC2\xB1 10") << "rounding that carries";
    EXPECT_EQ(With_Error(12.3456, 0.00012, 2), "12.35 \xC2\xB1 0.00") << "no more decimals than are wanted";
    EXPECT_EQ(With_Error(12.3456, 0.0, 2), "12.35");
    EXPECT_EQ(With_Error(12.3456, NAN, 2), "12.35");
    EXPECT_EQ(With_Error(3.0e20, 1.5e18, 0), "3e+20 \xC2\xB1 1.5e+18");
}

TEST(Peak_Table_Make, Standard_Errors_Cover_The_Scatter_Of_Repeated_Noise) {
    // A model that is linear near its solution: the scatter of a one-parameter refit of the amplitude must agree with
    // its standard error.
    const std::vector<Found_Peak> peaks = {{false, 100.0, 1000.0, 12.0}};
    const std::vector<double> clean = Curve_Of(peaks, 200);
    std::mt19937 random(4);
    std::normal_distribution<double> noise(0.0, 8.0);
    double squares = 0.0;
    double error = 0.0;
    constexpr int ROUNDS = 400;
    for (int round = 0; round < ROUNDS; ++round) {
        std::vector<double> curve = clean;
        double above = 0.0;
        double below = 0.0;
        for (int i = 0; i < 200; ++i) {
            const double shape = clean[static_cast<std::size_t>(i)] / 1000.0;
            curve[static_cast<std::size_t>(i)] += noise(random);
            above += shape * curve[static_cast<std::size_t>(i)];
            below += shape * shape;
        }
        squares += std::pow(above / below - 1000.0, 2);
        const std::vector<std::uint32_t> counts(200, 1);
        error += Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0}).rows[0].height_error;
    }
    const double scatter = std::sqrt(squares / ROUNDS);
    // Amplitude and width of a Gaussian are correlated: with the width free the error is larger by the root of 3/2.
    EXPECT_NEAR(error / ROUNDS, scatter * std::sqrt(1.5), 0.1 * scatter);
}

TEST(Peak_Table_Make, Overlapping_Neighbours_Share_The_Levels_Between_Them) {
    const std::vector<Found_Peak> peaks = {{false, 100.0, 5000.0, 30.0}, {false, 130.0, 5000.0, 30.0}};
    const std::vector<double> curve = Curve_Of(peaks, 300);
    const Peak_Table table = Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0});
    EXPECT_DOUBLE_EQ(table.rows[0].to, 115.5);
    EXPECT_DOUBLE_EQ(table.rows[1].from, 115.5);
}

TEST(Peak_Table_Make, Segments_Count_Their_Pixels_And_Have_No_Fit_Quality) {
    const std::vector<std::uint32_t> counts = {1, 2, 9, 2, 1, 4, 20, 4};
    const std::vector<Found_Peak> peaks = {{true, 2.0, 0.0, 4.0}, {true, 6.0, 5.0, 7.0}};
    const Peak_Table table = Peak_Table_Make(peaks, {counts, {}, 10.0, 1.0});
    EXPECT_EQ(table.rows[0].area, 15.0);
    EXPECT_EQ(table.rows[1].area, 28.0);
    EXPECT_EQ(table.rows[1].height, 20.0);
    EXPECT_EQ(table.rows[0].from, 10.0);
    EXPECT_EQ(table.rows[0].to, 15.0);
    EXPECT_EQ(table.rows[1].from, 15.0) << "segments tile the range";
    EXPECT_FALSE(table.quality.is_known);
}

TEST(Peak_Table_Make, A_Singular_Fit_Has_No_Quality) {
    const std::vector<Found_Peak> peaks = {{false, 50.0, 0.0, 5.0}};
    const std::vector<double> curve(100, 1.0);
    const std::vector<std::uint32_t> counts(100, 1);
    EXPECT_FALSE(Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0}).quality.is_known);
    EXPECT_FALSE(Peak_Table_Make({}, {counts, curve, 0.0, 1.0}).quality.is_known);
}

TEST(Peak_Table_Text, Has_A_Line_Per_Peak_With_Tabs) {
    const std::vector<Found_Peak> peaks = {{false, 100.0, 5000.0, 10.0}};
    const std::vector<double> curve = Curve_Of(peaks, 200);
    const std::string text = Peak_Table_Text(Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0}));
    EXPECT_NE(text.find("\n1\t100.50\t5000.0\t20.00\t"), std::string::npos) << text;
    EXPECT_NE(text.find("Reduced chi-square\t"), std::string::npos);
}

}  // namespace

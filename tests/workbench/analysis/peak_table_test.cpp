#include "workbench/analysis/peak_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace workbench;

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

TEST(Peak_Table_Make, gives_grey_levels_areas_and_shares) {
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

TEST(Peak_Table_Make, standard_errors_cover_the_scatter_of_repeated_noise) {
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

TEST(Peak_Table_Make, overlapping_neighbours_share_the_levels_between_them) {
    const std::vector<Found_Peak> peaks = {{false, 100.0, 5000.0, 30.0}, {false, 130.0, 5000.0, 30.0}};
    const std::vector<double> curve = Curve_Of(peaks, 300);
    const Peak_Table table = Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0});
    EXPECT_DOUBLE_EQ(table.rows[0].to, 115.5);
    EXPECT_DOUBLE_EQ(table.rows[1].from, 115.5);
}

TEST(Peak_Table_Make, segments_count_their_pixels_and_have_no_fit_quality) {
    const std::vector<std::uint32_t> counts = {1, 2, 9, 2, 1, 4, 20, 4};
    const std::vector<Found_Peak> peaks = {{true, 2.0, 0.0, 4.0}, {true, 6.0, 5.0, 7.0}};
    const Peak_Table table = Peak_Table_Make(peaks, {counts, {}, 10.0, 1.0});
    EXPECT_EQ(table.rows[0].area, 15.0);
    EXPECT_EQ(table.rows[1].area, 28.0);
    EXPECT_EQ(table.rows[1].height, 20.0);
    EXPECT_EQ(table.rows[1].centre, 16.5);
    EXPECT_EQ(table.rows[0].from, 10.0);
    EXPECT_EQ(table.rows[0].to, 15.0);
    EXPECT_EQ(table.rows[1].from, 15.0) << "segments tile the range";
    EXPECT_FALSE(table.quality.is_known);
}

TEST(Peak_Table_Make, a_singular_fit_has_no_quality) {
    const std::vector<Found_Peak> peaks = {{false, 50.0, 0.0, 5.0}};
    const std::vector<double> curve(100, 1.0);
    const std::vector<std::uint32_t> counts(100, 1);
    EXPECT_FALSE(Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0}).quality.is_known);
    EXPECT_FALSE(Peak_Table_Make({}, {counts, curve, 0.0, 1.0}).quality.is_known);
}

TEST(Peak_Table_Make, a_segments_place_and_height_are_those_of_one_maximum) {
    // Smoothing has moved the maximum of the counts, a lonely spike, to where most pixels are.
    const std::vector<std::uint32_t> counts = {0, 90, 10, 40, 50, 40, 10, 0};
    const std::vector<double> filtered = {20.0, 33.0, 36.0, 38.5, 42.0, 33.0, 20.0, 10.0};
    const std::vector<Found_Peak> peaks = {{true, 3.0, 0.0, 7.0}};
    const Peak_Table table = Peak_Table_Make(peaks, {counts, filtered, 100.0, 2.0});
    EXPECT_EQ(table.rows[0].centre, 100.0 + 4.5 * 2.0);
    EXPECT_EQ(table.rows[0].height, 42.0);
}

TEST(Peak_Table_Make, shares_never_add_up_to_more_than_all_pixels) {
    // Two Gaussians over each other, as after a fit of a smoothed curve: together larger than the counts.
    const std::vector<Found_Peak> peaks = {{false, 50.0, 1000.0, 10.0}, {false, 55.0, 1000.0, 30.0}};
    const std::vector<double> curve = Curve_Of(peaks, 100);
    std::vector<std::uint32_t> counts = Counts_Of(curve);
    for (std::uint32_t& count : counts) {
        count = count * 3 / 4;
    }
    const Peak_Table table = Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0});
    EXPECT_NEAR(table.rows[0].share + table.rows[1].share, 1.0, 1e-12);
    EXPECT_NEAR(table.rows[1].share, 0.75, 0.001) << "they keep their proportion";
    // Segments that share a bin.
    const std::vector<Found_Peak> segments = {{true, 10.0, 0.0, 50.0}, {true, 60.0, 50.0, 99.0}};
    const Peak_Table cut = Peak_Table_Make(segments, {counts, curve, 0.0, 1.0});
    EXPECT_LE(cut.rows[0].share + cut.rows[1].share, 1.0 + 1e-12);
}

TEST(Peak_Table_Make, peaks_whose_error_exceeds_their_value_are_doubtful) {
    // A clear peak, and one that the curve does not have.
    const std::vector<Found_Peak> clear = {{false, 60.0, 5000.0, 10.0}};
    std::vector<double> curve = Curve_Of(clear, 200);
    std::mt19937 random(2);
    std::normal_distribution<double> noise(0.0, 40.0);
    for (double& value : curve) {
        value += noise(random);
    }
    const std::vector<std::uint32_t> counts(200, 100);
    const std::vector<Found_Peak> peaks = {clear[0], {false, 150.0, 3.0, 4.0}};
    const Peak_Table table = Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0});
    EXPECT_FALSE(table.rows[0].is_doubtful);
    EXPECT_EQ(Peak_Doubt_Text(table.rows[0]), "");
    EXPECT_TRUE(table.rows[1].is_doubtful);
    EXPECT_EQ(Peak_Doubt_Text(table.rows[1]).find("Peak 2 is doubtful: height 3 \xC2\xB1 "), 0U)
        << Peak_Doubt_Text(table.rows[1]);
    EXPECT_EQ(Peak_Cells(table.rows[0])[0], "1");
    EXPECT_EQ(Peak_Cells(table.rows[1])[0], "2 ?");
    EXPECT_NE(Peak_Table_Text(table).find("\tyes\n"), std::string::npos);
}

TEST(Peak_Cells, small_grey_values_keep_their_digits) {
    Peak_Row row;
    row.number = 1;
    row.centre = 0.00071239;
    row.centre_error = 0.0000031;
    row.full_width = 0.00012345;
    row.height = 1234.4;
    row.from = 0.00065;
    row.to = 0.00077;
    row.share = 0.0123456;
    const auto cells = Peak_Cells(row);
    EXPECT_EQ(cells[1], "0.0007124 \xC2\xB1 0.0000031");
    EXPECT_EQ(cells[3], "0.0001234");
    EXPECT_EQ(cells[5], "1.23 %");
    EXPECT_EQ(cells[6], "0.0006500");
    EXPECT_EQ(Peak_Row_Text(row, ' '), "1 0.000712390 1234.40 0.000123450 0 0.0123456");
}

TEST(Peak_Table_Text, has_a_line_per_peak_with_tabs) {
    const std::vector<Found_Peak> peaks = {{false, 100.0, 5000.0, 10.0}};
    const std::vector<double> curve = Curve_Of(peaks, 200);
    const std::string text = Peak_Table_Text(Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0}));
    EXPECT_NE(text.find("\n1\t100.500\t5000\t20\t"), std::string::npos) << text;
    EXPECT_NE(text.find("Reduced chi-square\t"), std::string::npos);
}

TEST(Analysis_Full_Text, names_the_source_and_tells_every_bin_exactly) {
    const std::vector<std::uint32_t> counts = {3, 5, 1};
    const std::vector<double> filtered = {0.1, 1.0 / 3.0};
    const std::vector<Found_Peak> peaks = {{true, 1.0, 0.0, 2.0}};
    const Analysed_Curve curve = {counts, filtered, 0.1, 0.001};
    const std::string text =
        Analysis_Full_Text(Peak_Table_Make(peaks, curve), curve, "Histogram of\tbrain.nii, frames 1 to 181");
    EXPECT_EQ(text.find("Histogram of\tbrain.nii, frames 1 to 181\nPixels\t9\n"), 0U) << text;
    EXPECT_NE(text.find("\n1\t0.10100000000000001\t0.10200000000000001\t5\t0.33333333333333331\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\n2\t0.10200000000000001\t0.10300000000000001\t1\t0\n"), std::string::npos) << text;
}

}  // namespace

#include "workbench/analysis/peak_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace workbench;

namespace {

/** A fitted peak whose errors are known, on bins of one grey level from 0. @param half_width bins */
Histo_Peak_Info Gauss(double bin, double height, double half_width) {
    Histo_Peak_Info peak;
    peak.kind = PEAK_GAUSS;
    peak.has_errors = 1;
    peak.centre = bin + 0.5;
    peak.height = height;
    peak.full_width = 2.0 * half_width;
    peak.area_pixels = height * half_width * std::sqrt(std::numbers::pi / std::numbers::ln2);
    return peak;
}

Histo_Peak_Info Segment(int first, int last, double centre, double height, double pixels) {
    Histo_Peak_Info peak;
    peak.kind = PEAK_SEGMENT;
    peak.first = first;
    peak.last = last;
    peak.centre = centre;
    peak.height = height;
    peak.full_width = last + 1 - first;
    peak.area_pixels = pixels;
    return peak;
}

std::vector<double> Curve_Of(const std::vector<Histo_Peak_Info>& peaks, int n) {
    std::vector<double> curve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        for (const Histo_Peak_Info& peak : peaks) {
            curve[static_cast<std::size_t>(i)] +=
                peak.height * std::pow(2.0, -std::pow((i + 0.5 - peak.centre) / (peak.full_width / 2.0), 2));
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

TEST(Peak_Table_Make, gives_the_panels_numbers_shares_and_claims) {
    std::vector<Histo_Peak_Info> peaks = {Gauss(100.0, 5000.0, 10.0), Gauss(250.0, 2000.0, 20.0)};
    const std::vector<double> curve = Curve_Of(peaks, 400);
    const std::vector<std::uint32_t> counts = Counts_Of(curve);
    // The same on bins of two grey levels from -50.
    for (Histo_Peak_Info& peak : peaks) {
        peak.centre = peak.centre * 2.0 - 50.0;
        peak.full_width *= 2.0;
    }
    peaks[1].centre_error = 0.25;
    peaks[1].height_error = 12.5;
    peaks[1].full_width_error = 0.75;
    const Peak_Table table = Peak_Table_Make(peaks, {counts, curve, -50.0, 2.0});
    ASSERT_EQ(table.rows.size(), 2U);
    for (std::size_t k = 0; k < 2; ++k) {
        SCOPED_TRACE(k);
        const Peak_Row& row = table.rows[k];
        EXPECT_EQ(row.number, static_cast<int>(k) + 1);
        EXPECT_EQ(row.centre, peaks[k].centre);
        EXPECT_EQ(row.height, peaks[k].height);
        EXPECT_EQ(row.full_width, peaks[k].full_width);
        EXPECT_EQ(row.area, peaks[k].area_pixels);
        EXPECT_EQ(row.centre_error, peaks[k].centre_error);
        EXPECT_EQ(row.height_error, peaks[k].height_error);
        EXPECT_EQ(row.full_width_error, peaks[k].full_width_error);
        EXPECT_FALSE(row.Is_Doubtful());
    }
    EXPECT_NEAR(table.rows[0].share + table.rows[1].share, 1.0, 1e-3);
    EXPECT_DOUBLE_EQ(table.rows[0].from, (100.5 - 10.0) * 2.0 - 50.0);
    EXPECT_DOUBLE_EQ(table.rows[0].to, (100.5 + 10.0) * 2.0 - 50.0);
    ASSERT_TRUE(table.quality.is_known);
    EXPECT_NEAR(table.quality.r_squared_filtered, 1.0, 1e-9);
    EXPECT_GT(table.quality.r_squared_counts, 0.9999);
    EXPECT_LT(table.quality.reduced_chi_square, 0.5) << "only rounding is left";
}

TEST(Peak_Table_Make, overlapping_neighbours_share_the_levels_between_them) {
    const std::vector<Histo_Peak_Info> peaks = {Gauss(100.0, 5000.0, 30.0), Gauss(130.0, 5000.0, 30.0)};
    const std::vector<double> curve = Curve_Of(peaks, 300);
    const Peak_Table table = Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0});
    EXPECT_DOUBLE_EQ(table.rows[0].to, 115.5);
    EXPECT_DOUBLE_EQ(table.rows[1].from, 115.5);
}

TEST(Peak_Table_Make, segments_tile_the_range_and_have_no_fit_quality) {
    const std::vector<std::uint32_t> counts = {1, 2, 9, 2, 1, 4, 20, 4};
    const std::vector<Histo_Peak_Info> peaks = {Segment(0, 4, 12.5, 9.0, 15.0), Segment(5, 7, 16.5, 20.0, 28.0)};
    const Peak_Table table = Peak_Table_Make(peaks, {counts, {}, 10.0, 1.0});
    EXPECT_EQ(table.rows[0].area, 15.0);
    EXPECT_EQ(table.rows[1].height, 20.0);
    EXPECT_EQ(table.rows[1].centre, 16.5);
    EXPECT_EQ(table.rows[0].from, 10.0);
    EXPECT_EQ(table.rows[0].to, 15.0);
    EXPECT_EQ(table.rows[1].from, 15.0);
    EXPECT_EQ(table.rows[1].to, 18.0);
    EXPECT_FALSE(table.quality.is_known);
}

TEST(Peak_Table_Make, a_fit_without_errors_has_no_quality) {
    std::vector<Histo_Peak_Info> peaks = {Gauss(50.0, 10.0, 5.0)};
    peaks[0].has_errors = 0;
    const std::vector<double> curve(100, 1.0);
    const std::vector<std::uint32_t> counts(100, 1);
    EXPECT_FALSE(Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0}).quality.is_known);
    EXPECT_FALSE(Peak_Table_Make({}, {counts, curve, 0.0, 1.0}).quality.is_known);
}

TEST(Peak_Table_Make, shares_never_add_up_to_more_than_all_pixels) {
    // Two Gaussians over each other, as after a fit of a smoothed curve: together larger than the counts.
    const std::vector<Histo_Peak_Info> peaks = {Gauss(50.0, 1000.0, 10.0), Gauss(55.0, 1000.0, 30.0)};
    const std::vector<double> curve = Curve_Of(peaks, 100);
    std::vector<std::uint32_t> counts = Counts_Of(curve);
    for (std::uint32_t& count : counts) {
        count = count * 3 / 4;
    }
    const Peak_Table table = Peak_Table_Make(peaks, {counts, curve, 0.0, 1.0});
    EXPECT_NEAR(table.rows[0].share + table.rows[1].share, 1.0, 1e-12);
    EXPECT_NEAR(table.rows[1].share, 0.75, 0.001) << "they keep their proportion";
}

TEST(Peak_Table_Make, doubt_is_the_panels_and_is_told_in_words) {
    std::vector<Histo_Peak_Info> peaks = {Gauss(60.0, 5000.0, 10.0), Gauss(150.0, 3.0, 4.0), Gauss(170.0, 90.0, 4.0),
                                          Gauss(190.0, 90.0, 4.0)};
    const std::vector<double> curve = Curve_Of(peaks, 200);
    peaks[1].doubt = HISTO_DOUBT_HEIGHT | HISTO_DOUBT_WIDTH;
    peaks[1].height_error = 40.0;
    peaks[2].doubt = HISTO_DOUBT_WIDTH;
    peaks[2].full_width_error = 9.0;
    peaks[3].doubt = HISTO_DOUBT_CENTRE;
    peaks[3].centre_error = 20.0;
    const Peak_Table table = Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0});
    EXPECT_FALSE(table.rows[0].Is_Doubtful());
    EXPECT_EQ(Peak_Doubt_Text(table.rows[0]), "");
    EXPECT_TRUE(table.rows[1].Is_Doubtful());
    EXPECT_EQ(Peak_Doubt_Text(table.rows[1]).find("Peak 2 is doubtful: height 3 \xC2\xB1 "), 0U)
        << Peak_Doubt_Text(table.rows[1]);
    EXPECT_EQ(Peak_Doubt_Text(table.rows[2]).find("Peak 3 is doubtful: full width 8 \xC2\xB1 "), 0U)
        << Peak_Doubt_Text(table.rows[2]);
    EXPECT_EQ(Peak_Doubt_Text(table.rows[3]).find("Peak 4 is doubtful: centre "), 0U) << Peak_Doubt_Text(table.rows[3]);
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
    const std::vector<Histo_Peak_Info> peaks = {Gauss(100.0, 5000.0, 10.0)};
    const std::vector<double> curve = Curve_Of(peaks, 200);
    const std::string text = Peak_Table_Text(Peak_Table_Make(peaks, {Counts_Of(curve), curve, 0.0, 1.0}));
    EXPECT_NE(text.find("\n1\t100.500\t5000\t20\t"), std::string::npos) << text;
    EXPECT_NE(text.find("Reduced chi-square\t"), std::string::npos);
}

TEST(Analysis_Full_Text, names_the_source_and_tells_every_bin_exactly) {
    const std::vector<std::uint32_t> counts = {3, 5, 1};
    const std::vector<double> filtered = {0.1, 1.0 / 3.0};
    const std::vector<Histo_Peak_Info> peaks = {Segment(0, 2, 0.1015, 1.0 / 3.0, 9.0)};
    const Analysed_Curve curve = {counts, filtered, 0.1, 0.001};
    const std::string text =
        Analysis_Full_Text(Peak_Table_Make(peaks, curve), curve, "Histogram of\tbrain.nii, frames 1 to 181");
    EXPECT_EQ(text.find("Histogram of\tbrain.nii, frames 1 to 181\nPixels\t9\n"), 0U) << text;
    EXPECT_NE(text.find("\n1\t0.10100000000000001\t0.10200000000000001\t5\t0.33333333333333331\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\n2\t0.10200000000000001\t0.10300000000000001\t1\t0\n"), std::string::npos) << text;
}

}  // namespace

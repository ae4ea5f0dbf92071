#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/histogram/analysis_panel.h"

namespace {

std::vector<std::uint32_t> Hills(int n, const std::vector<int>& centres, double height, double width) {
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        double sum = 0.0;
        for (const int centre : centres) {
            sum += height * std::exp(-std::pow((i - centre) / width, 2));
        }
        counts[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(sum);
    }
    return counts;
}

TEST(Fit_Derivative, without_counts_it_does_nothing) {
    Analysis_Panel test({});
    test.Data().Record_Free();
    EXPECT_EQ(test.panel.Fit_Derivative(3), 0);
    test.Data().record = new Histo_Record();
    EXPECT_EQ(test.panel.Fit_Derivative(3), 0) << "an emptied record";
    EXPECT_EQ(test.Data().filtered, nullptr);
    EXPECT_TRUE(test.reported.empty());
}

TEST(Fit_Derivative, no_peak_wanted_gives_an_empty_list_without_a_warning) {
    Analysis_Panel test(Hills(200, {60, 140}, 900.0, 12.0));
    EXPECT_EQ(test.panel.Fit_Derivative(0), 1);
    EXPECT_EQ(test.Data().peak_nb, 0);
    EXPECT_EQ(test.Data().peak_first, nullptr);
    EXPECT_TRUE(test.Texts(MESSAGE_WARNING).empty());
    EXPECT_EQ(test.Texts(11), std::vector<std::string>{"loop:000 nb peak:0"});
    test.Counts_Set(std::vector<std::uint32_t>(200, 0));
    EXPECT_EQ(test.panel.Fit_Derivative(0), 1) << "nothing divided by nothing";
    EXPECT_EQ(test.Data().peak_nb, 0);
}

TEST(Fit_Derivative, a_flat_curve_has_no_peak) {
    Analysis_Panel test(std::vector<std::uint32_t>(300, 17));
    EXPECT_EQ(test.panel.Fit_Derivative(4), 1);
    EXPECT_EQ(test.Data().peak_nb, 0);
}

TEST(Fit_Derivative, one_hill_is_one_segment_over_the_whole_range) {
    Analysis_Panel test(Hills(256, {100}, 5000.0, 20.0));
    EXPECT_EQ(test.panel.Fit_Derivative(1), 1);
    const auto peaks = test.Peaks();
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_EQ(peaks[0]->type, PEAK_SEGMENT);
    EXPECT_NEAR((*peaks[0]->param)[PEAK_CENTRE], 100.0, 2.0);
    EXPECT_EQ((*peaks[0]->param)[SEGMENT_FIRST], 0.0);
    EXPECT_EQ((*peaks[0]->param)[SEGMENT_LAST], 255.0);
    EXPECT_EQ(peaks[0]->param_min, nullptr);
    EXPECT_EQ(peaks[0]->fct_value, nullptr);
    ASSERT_EQ(peaks[0]->nb_pts, 256);
    for (int i = 0; i < 256; ++i) {
        ASSERT_EQ(peaks[0]->curve[i], 0.0F);
    }
    const auto centre = static_cast<int>((*peaks[0]->param)[PEAK_CENTRE]);
    char expected[64];
    std::snprintf(expected, sizeof expected, "Peak[%d] = %4d %4d/%-4d", 0, centre, 0, 255);
    EXPECT_TRUE(test.Has(11, expected));
}

TEST(Fit_Derivative, two_hills_are_tiled_by_two_segments_in_order) {
    Analysis_Panel test(Hills(400, {100, 290}, 3000.0, 22.0));
    EXPECT_EQ(test.panel.Fit_Derivative(2), 1);
    const auto peaks = test.Peaks();
    ASSERT_EQ(peaks.size(), 2U);
    EXPECT_EQ((*peaks[0]->param)[SEGMENT_LAST] + 1.0, (*peaks[1]->param)[SEGMENT_FIRST]);
    EXPECT_EQ(peaks[0]->next, peaks[1]);
    EXPECT_EQ(peaks[1]->prev, peaks[0]);
    EXPECT_EQ(peaks[0]->prev, nullptr);
}

TEST(Fit_Derivative, too_many_hills_warn_with_their_number_and_stay) {
    // Hills so far apart and so steep that no smoothing joins them all within the passes.
    std::vector<int> centres;
    for (int k = 0; k < 20; ++k) {
        centres.push_back(1500 + 3000 * k);
    }
    Analysis_Panel test(Hills(60000, centres, 100000.0, 40.0));
    EXPECT_EQ(test.panel.Fit_Derivative(10), 1);
    EXPECT_EQ(test.Data().peak_nb, 20);
    EXPECT_TRUE(test.Has(MESSAGE_WARNING,
                         "\xF1\x05WARNING:\x02 Unable to find less than \x01"
                         "20\x02 peaks"));
    EXPECT_EQ(test.Texts(11).front(), "loop:000 nb peak:20");
}

TEST(Fit_Derivative, of_more_than_a_hundred_maxima_the_lowest_hundred_become_segments) {
    std::vector<int> centres;
    for (int k = 0; k < 130; ++k) {
        centres.push_back(250 + 500 * k);
    }
    for (const std::uint8_t wanted : {std::uint8_t{60}, std::uint8_t{120}}) {
        Analysis_Panel test(Hills(65400, centres, 100000.0, 5.0));
        EXPECT_EQ(test.panel.Fit_Derivative(wanted), 1);
        EXPECT_EQ(test.Texts(11).front(), "loop:000 nb peak:130");
        const auto peaks = test.Peaks();
        ASSERT_EQ(peaks.size(), 100U);
        EXPECT_NEAR((*peaks.front()->param)[PEAK_CENTRE], 250.0, 2.0);
        EXPECT_NEAR((*peaks.back()->param)[PEAK_CENTRE], 250.0 + 500.0 * 99, 2.0);
        EXPECT_EQ((*peaks.back()->param)[SEGMENT_LAST], 65399.0);
        // The warning compares the segments, of which there are never more than a hundred.
        EXPECT_EQ(test.Has(MESSAGE_WARNING,
                           "\xF1\x05WARNING:\x02 Unable to find less than \x01"
                           "100\x02 peaks"),
                  wanted < 100);
    }
}

TEST(Fit_Derivative, replaces_the_result_before_it) {
    Analysis_Panel test(Hills(400, {100, 290}, 3000.0, 22.0));
    test.panel.Fit_Derivative(2);
    test.Data().fit_spare = new float[3];
    test.Counts_Set(Hills(100, {50}, 3000.0, 12.0));
    test.panel.Fit_Derivative(2);
    EXPECT_EQ(test.Data().peak_nb, 1);
    EXPECT_EQ(test.Data().curve_nb, 100);
    EXPECT_EQ(test.Data().fit_spare, nullptr);
    EXPECT_EQ(test.Data().fit_sum, nullptr);
}

TEST(Fit_Derivative, survives_curves_of_no_one_and_two_bins) {
    for (const int n : {0, 1, 2, 3}) {
        Analysis_Panel test(std::vector<std::uint32_t>(static_cast<std::size_t>(n), 100));
        EXPECT_EQ(test.panel.Fit_Derivative(3), 1) << n;
        EXPECT_EQ(test.Data().peak_nb, 0) << n;
        EXPECT_EQ(test.panel.Fit_Gaussian(), 1) << n;
    }
}

TEST(Peak_Source_Curve, follows_the_colour_component) {
    Analysis_Panel test({1, 2, 3});
    Histo_Record& record = *test.Data().record;
    record.flags = HISTO_COLOR;
    record.counts_red = new std::uint32_t[3]{10, 20, 30};
    record.counts_green = new std::uint32_t[3]{11, 21, 31};
    record.counts_blue = new std::uint32_t[3]{12, 22, 32};
    record.counts_component0 = new std::uint32_t[3]{13, 23, 4294967295U};
    const double expected[] = {4294967295.0, 30.0, 31.0, 32.0, 3.0, 0.0};
    for (int component = 0; component < 6; ++component) {
        test.panel.color_component = static_cast<unsigned char>(component);
        double curve[3] = {-1.0, -1.0, -1.0};
        Peak_Source_Curve(*test.Data().record, test.panel.color_component, curve);
        EXPECT_EQ(curve[2], expected[component]) << component;
    }
    record.flags = 0;
    test.panel.color_component = 1;
    double curve[3] = {};
    Peak_Source_Curve(*test.Data().record, test.panel.color_component, curve);
    EXPECT_EQ(curve[0], 1.0) << "a grey record has one array";
}

}  // namespace

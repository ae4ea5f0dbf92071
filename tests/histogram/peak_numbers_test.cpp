#include "histogram/peak_numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/histogram/analysis_panel.h"

namespace {

constexpr int BINS = 400;

/** Counts of hills of a half width of 15 bins, of known heights. */
std::vector<std::uint32_t> Hills(const std::vector<std::pair<double, double>>& places) {
    std::vector<std::uint32_t> counts(BINS, 0);
    for (int bin = 0; bin < BINS; ++bin) {
        double value = 0.0;
        for (const auto& [centre, height] : places) {
            value += height * std::exp(-std::numbers::ln2 * std::pow((bin - centre) / 15.0, 2));
        }
        counts[static_cast<std::size_t>(bin)] = static_cast<std::uint32_t>(std::lround(value));
    }
    return counts;
}

std::vector<Histo_Peak_Info> Numbers_Of(Analysis_Panel& test) {
    std::vector<Histo_Peak_Info> peaks(20);
    peaks.resize(static_cast<std::size_t>(Peak_Numbers(test.Data(), test.panel.color_component, peaks.data(), 20)));
    return peaks;
}

/** A record of its own grid: bins of two grey levels that begin at 100. */
void Grid_Set(Analysis_Panel& test) {
    test.Data().record->origin = 100.0F;
    test.Data().record->bin_width = 2.0F;
}

}  // namespace

TEST(Peak_Numbers, a_gaussian_stands_in_grey_levels_and_pixels) {
    const auto counts = Hills({{120.0, 5000.0}, {280.0, 2000.0}});
    Analysis_Panel test(counts);
    Grid_Set(test);
    last_zero = 0;
    ASSERT_EQ(test.panel.Fit_Gaussian(), 1);
    const auto peaks = Numbers_Of(test);
    ASSERT_EQ(peaks.size(), 2U);
    const double places[] = {120.0, 280.0};
    for (std::size_t k = 0; k < 2; ++k) {
        SCOPED_TRACE(k);
        const Histo_Peak_Info& peak = peaks[k];
        const Vector_N& param = *test.Peaks()[k]->param;
        EXPECT_EQ(peak.kind, PEAK_GAUSS);
        EXPECT_EQ(peak.first, -1);
        EXPECT_EQ(peak.last, -1);
        EXPECT_NEAR(peak.centre, (places[k] + 0.5) * 2.0 + 100.0, 1.0) << "the middle of its bin";
        EXPECT_DOUBLE_EQ(peak.centre, (param[PEAK_CENTRE] + 0.5) * 2.0 + 100.0);
        EXPECT_DOUBLE_EQ(peak.height, param[PEAK_AMPLITUDE]);
        EXPECT_DOUBLE_EQ(peak.full_width, 4.0 * param[PEAK_WIDTH]);
        double sum = 0.0;
        for (int bin = -1000; bin < 1400; ++bin) {
            sum += peak.height *
                   std::exp(-std::numbers::ln2 * std::pow((bin - param[PEAK_CENTRE]) / param[PEAK_WIDTH], 2));
        }
        EXPECT_NEAR(peak.area_pixels, sum, 1e-6 * sum);
        EXPECT_DOUBLE_EQ(peak.area_levels, 2.0 * peak.area_pixels);
        EXPECT_EQ(peak.has_errors, 1);
        EXPECT_EQ(peak.doubt, 0);
    }
}

TEST(Peak_Numbers, errors_tell_how_far_a_parameter_moves_with_the_noise) {
    const auto clean = Hills({{200.0, 4000.0}});
    std::mt19937 random(5);
    double squares = 0.0;
    double told = 0.0;
    constexpr int runs = 200;
    for (int run = 0; run < runs; ++run) {
        // One known peak on a curve with noise of its own per bin; a step of least squares moves the height.
        Analysis_Panel test(clean);
        Histo_Data& data = test.Data();
        data.filtered = new double[BINS];
        data.curve_nb = BINS;
        std::normal_distribution<double> noise(0.0, 50.0);
        Histo_Peak* tail = nullptr;
        for (int bin = 0; bin < BINS; ++bin) {
            data.filtered[bin] = 4000.0 * std::exp(-std::numbers::ln2 * std::pow((bin - 200.0) / 15.0, 2));
        }
        Histo_Peak* peak = Peak_Gauss_Add(data, tail, 200, 1.0F, 15.0F);
        peak_width_max = 100.0F;
        (*peak->param_max)[PEAK_WIDTH] = 100.0;
        for (int bin = 0; bin < BINS; ++bin) {
            data.filtered[bin] += noise(random);
        }
        Gauss_Newton(data, BINS, data.filtered, 0.1);
        const auto peaks = Numbers_Of(test);
        ASSERT_EQ(peaks.size(), 1U);
        ASSERT_EQ(peaks[0].has_errors, 1);
        squares += std::pow(peaks[0].height - 4000.0, 2);
        told += peaks[0].height_error;
    }
    EXPECT_NEAR(told / runs, std::sqrt(squares / runs), 0.2 * std::sqrt(squares / runs));
}

TEST(Peak_Numbers, a_peak_that_its_error_exceeds_is_doubtful) {
    std::vector<std::uint32_t> counts(BINS, 1);
    Analysis_Panel test(counts);
    Histo_Data& data = test.Data();
    data.filtered = new double[BINS];
    data.curve_nb = BINS;
    for (int bin = 0; bin < BINS; ++bin) {
        data.filtered[bin] = bin % 2 == 0 ? 1000.0 : -1000.0;  // nothing but noise
    }
    data.filtered[200] = 10.0;
    Histo_Peak* tail = nullptr;
    Peak_Gauss_Add(data, tail, 200, 1.0F, 2.0F);
    const auto peaks = Numbers_Of(test);
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_GT(peaks[0].height_error, 10.0);
    EXPECT_EQ(peaks[0].doubt, HISTO_DOUBT_HEIGHT | HISTO_DOUBT_WIDTH | HISTO_DOUBT_CENTRE);
}

TEST(Peak_Numbers, a_segment_tells_its_bins_and_counts_its_pixels) {
    const auto counts = Hills({{120.0, 5000.0}, {280.0, 2000.0}});
    Analysis_Panel test(counts);
    Grid_Set(test);
    ASSERT_EQ(test.panel.Fit_Derivative(2), 1);
    const auto peaks = Numbers_Of(test);
    ASSERT_EQ(peaks.size(), 2U);
    for (std::size_t k = 0; k < 2; ++k) {
        SCOPED_TRACE(k);
        const Histo_Peak_Info& peak = peaks[k];
        EXPECT_EQ(peak.kind, PEAK_SEGMENT);
        EXPECT_EQ(peak.has_errors, 0);
        EXPECT_EQ(peak.doubt, 0);
        ASSERT_LT(peak.first, peak.last);
        double pixels = 0.0;
        int highest = peak.first;
        for (int bin = peak.first; bin <= peak.last; ++bin) {
            pixels += counts[static_cast<std::size_t>(bin)];
            highest = test.Data().filtered[bin] > test.Data().filtered[highest] ? bin : highest;
        }
        EXPECT_EQ(peak.area_pixels, pixels);
        EXPECT_EQ(peak.area_levels, 2.0 * pixels);
        EXPECT_EQ(peak.centre, (highest + 0.5) * 2.0 + 100.0);
        EXPECT_EQ(peak.height, test.Data().filtered[highest]);
        EXPECT_EQ(peak.full_width, 2.0 * (peak.last - peak.first + 1));
    }
}

TEST(Peak_Numbers, gives_no_more_than_there_is_room_for) {
    Analysis_Panel test(Hills({{120.0, 5000.0}, {280.0, 2000.0}}));
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, nullptr, 0), 0) << "no analysis yet";
    last_zero = 0;
    test.panel.Fit_Gaussian();
    Histo_Peak_Info peaks[2];
    peaks[1].centre = -7.0;
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, nullptr, 0), 2);
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, nullptr, 9), 2);
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, peaks, -3), 2);
    EXPECT_EQ(peaks[0].kind, PEAK_NONE);
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, peaks, 1), 2);
    EXPECT_EQ(peaks[0].kind, PEAK_GAUSS);
    EXPECT_EQ(peaks[1].centre, -7.0) << "untouched";
    test.Data().Record_Empty();
    EXPECT_EQ(Peak_Numbers(test.Data(), 0, peaks, 2), 0) << "no counts any more";
}

TEST(Peak_Numbers, outlive_a_record_with_fewer_bins) {
    Analysis_Panel test(Hills({{120.0, 5000.0}, {280.0, 2000.0}}));
    for (const bool segments : {true, false}) {
        test.Counts_Set(Hills({{120.0, 5000.0}, {280.0, 2000.0}}));
        last_zero = 0;
        ASSERT_EQ(segments ? test.panel.Fit_Derivative(2) : test.panel.Fit_Gaussian(), 1);
        test.Counts_Set({1, 2, 3});
        const auto peaks = Numbers_Of(test);
        EXPECT_EQ(peaks.size(), 2U);
        for (const Histo_Peak_Info& peak : peaks) {
            EXPECT_TRUE(std::isfinite(peak.height) && std::isfinite(peak.area_pixels));
        }
    }
}

TEST(Histo_Fit_Repeatable, finds_the_peaks_of_the_first_fit_of_a_process) {
    const auto counts = Hills({{60.0, 5000.0}, {280.0, 2000.0}});
    const auto places = [](Analysis_Panel& test) {
        std::vector<double> found;
        for (const Histo_Peak* peak : test.Peaks()) {
            found.push_back((*peak->param)[PEAK_CENTRE]);
        }
        return found;
    };
    Analysis_Panel test(counts);
    last_zero = 0;
    test.panel.Fit_Gaussian();
    const auto first = places(test);
    ASSERT_EQ(first.size(), 2U);
    for (const std::int32_t before : {0, 55, 270, 100000, -3}) {
        last_zero = before;
        EXPECT_EQ(Histo_Fit_Gaussian_First(test.panel.data, 0), 1);
        EXPECT_EQ(places(test), first) << before;
    }
    EXPECT_NE(last_zero, 0) << "a plain fit goes on from here";
}

TEST(Histo_Fit_Repeatable, leaves_an_analysis_that_runs_alone) {
    Analysis_Panel test(Hills({{120.0, 5000.0}}));
    struct Asking {
        Analysis_Panel& test;
        int result = -1;
        std::int32_t kept = -1;
        static void Receive(void* context, HWND, int level, const char*) {
            auto& self = *static_cast<Asking*>(context);
            if (level == MESSAGE_STATUS && self.result < 0) {
                last_zero = 77;
                self.result = Histo_Fit_Gaussian_First(self.test.panel.data, 0);
                self.kept = last_zero;
            }
        }
    } asking{test};
    Message_Receiver_Add(Asking::Receive, &asking, true);
    test.panel.Fit_Gaussian();
    Message_Receiver_Remove(Asking::Receive, &asking);
    EXPECT_EQ(asking.result, 0);
    EXPECT_EQ(asking.kept, 77);
}

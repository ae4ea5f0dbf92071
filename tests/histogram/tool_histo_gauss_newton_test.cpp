#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "tests/histogram/analysis_panel.h"

namespace {

struct Hill {
    double centre;
    double amplitude;
    double width;  // half width at half height
};

double Height_At(const std::vector<Hill>& hills, double x) {
    double sum = 0.0;
    for (const Hill& hill : hills) {
        sum += hill.amplitude * std::exp(-std::log(2.0) * std::pow((x - hill.centre) / hill.width, 2));
    }
    return sum;
}

std::vector<std::uint32_t> Counts_Of(const std::vector<Hill>& hills, int n, unsigned seed = 0) {
    std::mt19937 random(seed);
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        const double height = Height_At(hills, i);
        if (seed == 0) {
            counts[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(std::lround(height));
        } else {
            std::poisson_distribution<std::uint32_t> noise(std::max(height, 1e-9));
            counts[static_cast<std::size_t>(i)] = noise(random);
        }
    }
    return counts;
}

/** The fit as it is said: plain matrices, one call per value. Works on copies of the start parameters. */
class Plain_Fit {
  public:
    struct Peak {
        double p[3];
        double low[3];
        double high[3];
    };
    explicit Plain_Fit(const std::vector<double>& data_values) : data(data_values) {}

    void Run(std::vector<Peak>& peaks, double width_max) {
        const std::size_t n = data.size();
        double previous = 0.0;
        for (int iteration = 0; iteration < 10; ++iteration) {
            const std::size_t count = 3 * peaks.size();
            std::vector<std::vector<double>> j(n, std::vector<double>(count));
            std::vector<double> r(n);
            double squares = 0.0;
            for (std::size_t i = 0; i < n; ++i) {
                for (std::size_t k = 0; k < peaks.size(); ++k) {
                    Vector_N param(3, 8);
                    for (int m = 0; m < 3; ++m) {
                        param[m] = peaks[k].p[m];
                    }
                    r[i] -= Peak_Value(PEAK_GAUSS, static_cast<double>(i), param);
                    for (std::uint8_t m = 0; m < 3; ++m) {
                        j[i][3 * k + m] = Peak_Deriv(PEAK_GAUSS, m, static_cast<double>(i), param);
                    }
                }
                r[i] += data[i];
                squares += r[i] * r[i];
            }
            if (std::abs(squares - previous) < 0.1) {
                return;
            }
            previous = squares;
            std::vector<std::vector<double>> a(count, std::vector<double>(count + 1));
            for (std::size_t row = 0; row < count; ++row) {
                for (std::size_t i = 0; i < n; ++i) {
                    for (std::size_t column = 0; column < count; ++column) {
                        a[row][column] += j[i][row] * j[i][column];
                    }
                    a[row][count] += j[i][row] * r[i];
                }
            }
            if (!Eliminate(a)) {
                return;
            }
            for (std::size_t k = 0; k < count; ++k) {
                Peak& peak = peaks[k / 3];
                if (std::abs(a[k][count]) > 1000.0 * std::max(std::abs(peak.low[k % 3]), std::abs(peak.high[k % 3]))) {
                    return;
                }
            }
            for (std::size_t k = 0; k < count; ++k) {
                Peak& peak = peaks[k / 3];
                peak.p[k % 3] = std::min(std::max(peak.low[k % 3], peak.p[k % 3] + a[k][count]), peak.high[k % 3]);
            }
            Prune(peaks, width_max);
        }
    }

  private:
    static bool Eliminate(std::vector<std::vector<double>>& a) {
        const std::size_t n = a.size();
        for (std::size_t c = 0; c < n; ++c) {
            std::size_t pivot = c;
            for (std::size_t row = c + 1; row < n; ++row) {
                if (std::abs(a[row][c]) > std::abs(a[pivot][c])) {
                    pivot = row;
                }
            }
            if (a[pivot][c] == 0.0) {
                return false;
            }
            std::swap(a[pivot], a[c]);
            for (std::size_t row = 0; row < n; ++row) {
                if (row != c) {
                    const double factor = a[row][c] / a[c][c];
                    for (std::size_t k = c; k <= n; ++k) {
                        a[row][k] -= factor * a[c][k];
                    }
                }
            }
        }
        for (std::size_t c = 0; c < n; ++c) {
            a[c][n] /= a[c][c];
        }
        return true;
    }

    static void Prune(std::vector<Peak>& peaks, double width_max) {
        std::erase_if(peaks, [](const Peak& peak) { return peak.p[1] <= peak.low[1] || peak.p[2] <= peak.low[2]; });
        std::erase_if(peaks, [&](const Peak& peak) { return peak.p[2] >= width_max; });
        for (std::size_t k = 0; k + 1 < peaks.size();) {
            const auto step = static_cast<std::ptrdiff_t>(k);
            if (std::abs(static_cast<float>(peaks[k].p[0]) - static_cast<float>(peaks[k + 1].p[0])) >= 10.0F) {
                ++k;
            } else if (static_cast<float>(peaks[k + 1].p[1]) > static_cast<float>(peaks[k].p[1])) {
                peaks.erase(peaks.begin() + step);
            } else {
                peaks.erase(peaks.begin() + step + 1);
                ++k;
            }
        }
    }

    const std::vector<double>& data;
};

/** Candidates of a curve, as the panel finds them: read from its traces. */
std::vector<Plain_Fit::Peak> Start_Of(Analysis_Panel& test, int n) {
    std::vector<Plain_Fit::Peak> peaks;
    const Histo_Data& data = test.Data();
    for (const std::string& text : test.Texts(11)) {
        int x = 0;
        const bool zero = std::sscanf(text.c_str(), "Locate a peak with zero at x = %d", &x) == 1;
        if (zero || std::sscanf(text.c_str(), "Locate a peak with data at x = %d", &x) == 1) {
            const double height = data.filtered[x];
            peaks.push_back({{static_cast<double>(x), (zero ? 1.0 : 0.25) * height, zero ? 5.0 : 10.0},
                             {x - 1.25, 0.0, 1.0},
                             {x + 1.25, 2.0 * height, static_cast<double>(static_cast<float>(n) / 5.0F)}});
        }
    }
    return peaks;
}

class Fit_Gaussian : public ::testing::Test {
  protected:
    void SetUp() override { last_zero = -1000; }
};

TEST_F(Fit_Gaussian, recovers_known_peaks_from_their_filtered_sum) {
    const std::vector<Hill> hills = {{150, 4000, 22}, {420, 2500, 30}, {700, 3300, 25}};
    Analysis_Panel test(Counts_Of(hills, 900));
    EXPECT_EQ(test.panel.Fit_Gaussian(), 1);
    const auto peaks = test.Peaks();
    ASSERT_EQ(peaks.size(), 3U);
    for (std::size_t k = 0; k < hills.size(); ++k) {
        // The moving mean over 21 bins widens a Gaussian: variances add, (21^2 - 1) / 12 bins^2.
        const double two_ln_2 = 2.0 * std::log(2.0);
        const double variance = hills[k].width * hills[k].width / two_ln_2;
        const double widened = std::sqrt((variance + 440.0 / 12.0) * two_ln_2);
        EXPECT_NEAR((*peaks[k]->param)[PEAK_CENTRE], hills[k].centre, 0.2);
        EXPECT_NEAR((*peaks[k]->param)[PEAK_WIDTH], widened, 0.02 * widened);
        EXPECT_NEAR((*peaks[k]->param)[PEAK_AMPLITUDE], hills[k].amplitude * hills[k].width / widened,
                    0.02 * hills[k].amplitude);
    }
}

TEST_F(Fit_Gaussian, recovers_known_peaks_under_poisson_noise) {
    const std::vector<Hill> hills = {{200, 4000, 25}, {560, 6000, 40}};
    for (unsigned seed = 1; seed <= 10; ++seed) {
        last_zero = -1000;
        Analysis_Panel test(Counts_Of(hills, 900, seed));
        test.panel.Fit_Gaussian();
        bool found[2] = {};
        for (const Histo_Peak* peak : test.Peaks()) {
            for (std::size_t k = 0; k < 2; ++k) {
                found[k] = found[k] || (std::abs((*peak->param)[PEAK_CENTRE] - hills[k].centre) < 6.0 &&
                                        (*peak->param)[PEAK_AMPLITUDE] > 0.8 * hills[k].amplitude);
            }
        }
        EXPECT_TRUE(found[0] && found[1]) << "seed " << seed;
    }
}

TEST_F(Fit_Gaussian, agrees_with_plain_matrices_and_one_call_per_value) {
    std::mt19937 random(9);
    int compared = 0;
    for (int round = 0; round < 25; ++round) {
        std::vector<Hill> hills;
        for (double centre = 60.0; centre < 560.0; centre += 60.0 + static_cast<double>(random() % 60)) {
            hills.push_back(
                {centre, 500.0 + static_cast<double>(random() % 4000), 10.0 + static_cast<double>(random() % 15)});
        }
        last_zero = -1000;
        Analysis_Panel test(Counts_Of(hills, 600));
        test.panel.Fit_Gaussian();
        std::vector<Plain_Fit::Peak> plain = Start_Of(test, 600);
        const std::vector<double> filtered(test.Data().filtered, test.Data().filtered + 600);
        Plain_Fit(filtered).Run(plain, static_cast<double>(600.0F / 5.0F));
        const auto peaks = test.Peaks();
        ASSERT_EQ(peaks.size(), plain.size()) << "round " << round;
        for (std::size_t k = 0; k < peaks.size(); ++k) {
            for (int m = 0; m < 3; ++m) {
                ASSERT_NEAR((*peaks[k]->param)[m], plain[k].p[m], 1e-6 * std::abs(plain[k].p[m]))
                    << "round " << round << " peak " << k;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 100);
}

TEST_F(Fit_Gaussian, without_a_candidate_it_reports_none_and_samples_nothing) {
    Analysis_Panel test(std::vector<std::uint32_t>(300, 5));
    EXPECT_EQ(test.panel.Fit_Gaussian(), 1);
    EXPECT_EQ(test.Texts(MESSAGE_STATUS), std::vector<std::string>{"Computing Peak Fit: \x01"
                                                                   "0\x02 peaks ..."});
    EXPECT_TRUE(test.Texts(MESSAGE_WARNING).empty());
    EXPECT_EQ(test.Texts(11).back(),
              "  -> Stop after \x01"
              "2\x02 iterations");
    EXPECT_EQ(test.Texts(11).front(), "nb pts:300 max val: 5.000000");
    EXPECT_EQ(test.Data().peak_first, nullptr);
}

TEST_F(Fit_Gaussian, an_empty_curve_stops_at_once_because_its_error_is_below_the_threshold) {
    Analysis_Panel test(std::vector<std::uint32_t>(300, 0));
    test.panel.Fit_Gaussian();
    EXPECT_EQ(test.Texts(11).back(),
              "  -> Stop after \x01"
              "1\x02 iterations");
}

TEST_F(Fit_Gaussian, a_second_fit_on_the_same_curve_rejects_its_first_crossing) {
    Analysis_Panel test(Counts_Of({{150, 4000, 22}}, 400));
    test.panel.Fit_Gaussian();
    const auto zeros = [&] {
        const auto texts = test.Texts(11);
        return std::count_if(texts.begin(), texts.end(),
                             [](const std::string& text) { return text.find("with zero") != std::string::npos; });
    };
    EXPECT_EQ(zeros(), 1);
    EXPECT_EQ(test.Peaks().size(), 1U);
    test.reported.clear();
    test.panel.Fit_Gaussian();
    EXPECT_EQ(zeros(), 0) << "the crossing is measured against itself: distance 0";
}

TEST_F(Fit_Gaussian, a_candidate_by_data_is_placed_behind_its_bin_and_told) {
    // Falling from the first bin on: the derivative has no crossing.
    std::vector<std::uint32_t> counts;
    for (int i = 0; i < 200; ++i) {
        counts.push_back(static_cast<std::uint32_t>(std::max(4000 - 60 * i, 0)));
    }
    Analysis_Panel test(counts);
    test.panel.Fit_Gaussian();
    const std::vector<std::string> told = test.Texts(12);
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front(), "  -> possile data peak at 0 -> max = 600");
    EXPECT_TRUE(test.Has(11, "Locate a peak with data at x = 1"));
    EXPECT_TRUE(test.Has_Part(11, "before[0]: C=      1.00"));
}

TEST_F(Fit_Gaussian, after_a_candidate_by_data_five_bins_are_left_out) {
    // The filtered plateau reaches from bin 110 to bin 150: each of its bins is a maximum if an edge is within 15 bins.
    std::vector<std::uint32_t> counts(250);
    std::fill(counts.begin() + 100, counts.begin() + 161, 1000U);
    Analysis_Panel test(counts);
    test.panel.Fit_Gaussian();
    std::vector<int> found;
    for (const std::string& text : test.Texts(11)) {
        int x = 0;
        if (std::sscanf(text.c_str(), "Locate a peak with data at x = %d", &x) == 1) {
            found.push_back(x);
        }
    }
    EXPECT_EQ(found, (std::vector<int>{111, 117, 123, 137, 143, 149}));
}

TEST_F(Fit_Gaussian, traces_every_step_with_its_numbers) {
    Analysis_Panel test(Counts_Of({{150, 4000, 22}}, 400));
    test.panel.Fit_Gaussian();
    EXPECT_TRUE(test.Has_Part(11, "Locate a peak with zero at x = 15"));
    EXPECT_TRUE(test.Has_Part(11, "before[0]: C="));
    EXPECT_TRUE(test.Has_Part(11, "++ mse: "));
    EXPECT_TRUE(test.Has_Part(11, "Iteration[0] peak[0]: C="));
    EXPECT_TRUE(test.Has_Part(11, "last peak[0]: C="));
    EXPECT_TRUE(test.Has_Part(11, "  -> Stop after \x01"));
    EXPECT_EQ(test.Texts(MESSAGE_STATUS), std::vector<std::string>{"Computing Peak Fit: \x01"
                                                                   "1\x02 peaks ..."});
}

TEST_F(Fit_Gaussian, leaves_the_spare_curve_to_the_other_method) {
    Analysis_Panel test(Counts_Of({{150, 4000, 22}}, 400));
    float* const spare = new float[4]();
    test.Data().fit_spare = spare;
    test.panel.Fit_Gaussian();
    EXPECT_EQ(test.Data().fit_spare, spare);
    test.panel.Fit_Derivative(5);
    EXPECT_EQ(test.Data().fit_spare, nullptr);
}

TEST_F(Fit_Gaussian, each_peak_keeps_its_own_curve) {
    Analysis_Panel test(Counts_Of({{150, 4000, 22}}, 400));
    test.panel.Fit_Gaussian();
    const auto peaks = test.Peaks();
    ASSERT_EQ(peaks.size(), 1U);
    ASSERT_EQ(peaks[0]->nb_pts, 400);
    for (int i = 0; i < 400; ++i) {
        ASSERT_EQ(peaks[0]->curve[i], static_cast<float>(Peak_Value(PEAK_GAUSS, i, *peaks[0]->param)));
    }
    EXPECT_NE(test.Data().fit_sum, nullptr);
}

/** A panel whose filtered curve and candidates the test makes itself. */
class Gauss_Newton_Steps : public ::testing::Test {
  protected:
    Gauss_Newton_Steps() : test(std::vector<std::uint32_t>(200, 0)) {
        test.Data().filtered = new double[200]();
        test.Data().curve_nb = 200;
        peak_width_max = 40.0F;
        peak_centre_tol = 1.25F;
    }
    void Curve_Set(const std::vector<Hill>& hills) {
        for (int i = 0; i < 200; ++i) {
            test.Data().filtered[i] = Height_At(hills, i);
        }
    }
    void Run() { Gauss_Newton(test.Data(), 200, test.Data().filtered, 0.1); }
    Histo_Peak* Add(int x, float factor, float width) { return Peak_Gauss_Add(test.Data(), tail, x, factor, width); }

    Analysis_Panel test;
    Histo_Peak* tail = nullptr;
};

TEST_F(Gauss_Newton_Steps, a_candidate_where_the_curve_is_0_ends_the_fit_with_an_invalid_matrix) {
    Curve_Set({{100, 500, 8}});
    Add(20, 1.0F, 1.0F);
    test.Data().filtered[20] = 0.0;
    Add(100, 1.0F, 5.0F);
    test.Data().peak_first->param->operator[](PEAK_AMPLITUDE) = 0.0;
    Run();
    EXPECT_EQ(test.Texts(MESSAGE_WARNING),
              std::vector<std::string>{"\xF1\x05WARNING:\x02 Gauss_Newton invalid matrix"});
    EXPECT_EQ(test.Data().peak_nb, 2) << "the peak stays";
    EXPECT_FALSE(test.Has_Part(11, "Stop after"));
}

TEST_F(Gauss_Newton_Steps, a_runaway_step_ends_the_fit_unchanged) {
    Curve_Set({{100, 500, 8}});
    Histo_Peak* peak = Add(100, 1.0F, 5.0F);
    (*peak->param_max)[PEAK_AMPLITUDE] = 1e-6;
    (*peak->param)[PEAK_AMPLITUDE] = 1e-7;
    Run();
    EXPECT_EQ(test.Texts(MESSAGE_WARNING), std::vector<std::string>{"\xF1\x05WARNING:\x02 Gauss_Newton failed!"});
    EXPECT_EQ((*peak->param)[PEAK_AMPLITUDE], 1e-7);
    EXPECT_FALSE(test.Has_Part(11, "Stop after"));
}

TEST_F(Gauss_Newton_Steps, a_step_runs_away_beyond_a_thousand_bounds) {
    for (const double bound : {0.49, 0.51}) {  // the step is 500
        Curve_Set({{100, 500, 8}});
        test.reported.clear();
        test.Data().Peaks_Free();
        tail = nullptr;
        Histo_Peak* peak = Add(100, 1.0F, 8.0F);
        (*peak->param)[PEAK_AMPLITUDE] = 0.1;
        (*peak->param_max)[PEAK_AMPLITUDE] = bound;
        Run();
        const bool is_taken = test.Has_Part(11, "Iteration[0]") || test.Has_Part(11, "Delete peak");
        EXPECT_EQ(is_taken, bound > 0.5);
        if (!is_taken) {
            EXPECT_EQ((*peak->param)[PEAK_AMPLITUDE], 0.1);
            EXPECT_EQ(test.Texts(MESSAGE_WARNING),
                      std::vector<std::string>{"\xF1\x05WARNING:\x02 Gauss_Newton failed!"});
        }
    }
}

TEST_F(Gauss_Newton_Steps, a_fit_that_starts_at_its_solution_stops_before_any_step) {
    Curve_Set({});
    Run();
    EXPECT_TRUE(test.Has(11,
                         "  -> Stop after \x01"
                         "1\x02 iterations"));
}

/** Candidates that the first step takes to fixed places: their centres cannot move, and the curve is so much higher
 * that their amplitudes end at their upper bounds. */
class Close_Candidates : public Gauss_Newton_Steps {
  protected:
    void Add_Fixed(int x, double amplitude) {
        Histo_Peak* peak = Add(x, 1.0F, 1.5F);
        (*peak->param)[PEAK_AMPLITUDE] = amplitude / 2.0;
        (*peak->param_min)[PEAK_CENTRE] = (*peak->param_max)[PEAK_CENTRE] = x;
        (*peak->param_max)[PEAK_AMPLITUDE] = amplitude;
        (*peak->param_max)[PEAK_WIDTH] = 2.0;
    }
    std::vector<std::string> Deletions() const {
        std::vector<std::string> deletions;
        for (const std::string& text : test.Texts(11)) {
            if (text.starts_with("*******")) {
                deletions.push_back(text);
            }
        }
        return deletions;
    }
};

TEST_F(Close_Candidates, a_higher_later_one_stays) {
    Curve_Set({{96, 5000, 2}, {104, 5000, 2}});
    Add_Fixed(96, 100.0);
    Add_Fixed(104, 200.0);
    Run();
    EXPECT_EQ(Deletions(), std::vector<std::string>{"******* Delete peak at 96.00: Peak to close a (96.0 /vs/ 104.0)"});
    ASSERT_EQ(test.Data().peak_nb, 1);
    EXPECT_EQ((*test.Data().peak_first->param)[PEAK_CENTRE], 104.0);
}

TEST_F(Close_Candidates, a_higher_earlier_one_stays) {
    Curve_Set({{96, 5000, 2}, {104, 5000, 2}});
    Add_Fixed(96, 200.0);
    Add_Fixed(104, 100.0);
    Run();
    EXPECT_EQ(Deletions(),
              std::vector<std::string>{"******* Delete peak at 104.00: Peak to close b (96.0 /vs/ 104.0)"});
}

TEST_F(Close_Candidates, of_two_equal_ones_the_earlier_stays) {
    Curve_Set({{96, 5000, 2}, {104, 5000, 2}});
    Add_Fixed(96, 100.0);
    Add_Fixed(104, 100.0);
    Run();
    EXPECT_EQ(Deletions(),
              std::vector<std::string>{"******* Delete peak at 104.00: Peak to close b (96.0 /vs/ 104.0)"});
}

TEST_F(Close_Candidates, ten_bins_apart_both_stay) {
    Curve_Set({{95, 5000, 2}, {105, 5000, 2}});
    Add_Fixed(95, 100.0);
    Add_Fixed(105, 100.0);
    Run();
    EXPECT_TRUE(Deletions().empty());
    EXPECT_EQ(test.Data().peak_nb, 2);
}

TEST_F(Close_Candidates, one_that_outlived_its_neighbour_meets_the_next_only_in_the_next_iteration) {
    Curve_Set({{93, 5000, 2}, {97, 5000, 2}, {101, 5000, 2}});
    Add_Fixed(93, 300.0);
    Add_Fixed(97, 200.0);
    Add_Fixed(101, 250.0);
    Run();
    const std::vector<std::string> expected = {"******* Delete peak at 97.00: Peak to close b (93.0 /vs/ 97.0)",
                                               "******* Delete peak at 101.00: Peak to close b (93.0 /vs/ 101.0)"};
    EXPECT_EQ(Deletions(), expected);
    EXPECT_TRUE(test.Has_Part(11, "Iteration[0] peak[1]: C=    101.00"));
    EXPECT_FALSE(test.Has_Part(11, "Iteration[1] peak[1]:"));
}

TEST_F(Gauss_Newton_Steps, a_fit_stops_before_the_step_when_the_error_changes_little) {
    Curve_Set({{100, 500, 8}});
    Add(100, 1.0F, 5.0F);
    Run();
    int errors = 0;
    int iterations = 0;
    double change = 1.0;
    for (const std::string& text : test.Texts(11)) {
        double error = 0.0;
        EXPECT_GE(change, 0.1) << "nothing but the last line after a small change";
        if (text.starts_with("  -> Stop after ")) {
            break;
        }
        if (std::sscanf(text.c_str(), "++ mse: %lf%% delta mse = %lf", &error, &change) == 2) {
            ++errors;
        }
        iterations += text.starts_with("Iteration[") ? 1 : 0;
        if (change < 0.1) {
            change = 0.1;
        }
    }
    EXPECT_GE(errors, 2);
    EXPECT_EQ(iterations, errors - 1);
    EXPECT_EQ(test.Texts(11).back(), "  -> Stop after \x01" + std::to_string(errors) + "\x02 iterations");
}

TEST_F(Gauss_Newton_Steps, after_ten_iterations_it_says_eleven) {
    Curve_Set({{100, 500, 8}});
    Add(100, 1.0F, 5.0F);
    Gauss_Newton(test.Data(), 200, test.Data().filtered, 0.0);  // no change is smaller
    EXPECT_TRUE(test.Has_Part(11, "Iteration[9] peak[0]: C="));
    EXPECT_FALSE(test.Has_Part(11, "Iteration[10]"));
    EXPECT_EQ(test.Texts(11).back(),
              "  -> Stop after \x01"
              "11\x02 iterations");
}

TEST_F(Gauss_Newton_Steps, the_sum_is_that_of_the_starting_peaks) {
    Curve_Set({{60, 500, 8}, {130, 300, 12}});
    Add(60, 1.0F, 5.0F);
    Add(130, 0.25F, 10.0F);
    std::vector<float> start(200);
    for (const Histo_Peak* peak : test.Peaks()) {
        for (int i = 0; i < 200; ++i) {
            float& sum = start[static_cast<std::size_t>(i)];
            sum = static_cast<float>(static_cast<double>(sum) + Peak_Value(PEAK_GAUSS, i, *peak->param));
        }
    }
    Run();
    EXPECT_NEAR((*test.Peaks()[0]->param)[PEAK_WIDTH], 8.0, 1e-3) << "the fit itself went on";
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(test.Data().fit_sum[i], start[static_cast<std::size_t>(i)]) << i;
    }
}

TEST_F(Gauss_Newton_Steps, a_wide_peak_is_deleted) {
    Curve_Set({{100, 500, 70}});
    Add(100, 1.0F, 30.0F);
    Run();
    EXPECT_EQ(test.Data().peak_nb, 0);
    EXPECT_TRUE(test.Has(11, "******* Delete peak at 100.00: Peak to wide (amp=426.0, width=40.0)"));
}

// The numbers of these two come from the plain formulas, worked out apart.
TEST_F(Gauss_Newton_Steps, a_peak_without_amplitude_is_deleted_as_too_small) {
    Curve_Set({{100, 500, 8}});
    Add(100, 1.0F, 12.0F);
    Add(112, 1.0F, 5.0F);
    Run();
    EXPECT_TRUE(test.Has(11, "******* Delete peak at 113.25: Peak to small (amp=0.0, width=1.6)"));
}

TEST_F(Gauss_Newton_Steps, the_error_is_told_as_a_hundred_times_its_mean_square) {
    Curve_Set({{100, 500, 8}});
    Add(100, 1.0F, 12.0F);
    double squares = 0.0;
    for (int i = 0; i < 200; ++i) {
        const double left = test.Data().filtered[i] - Peak_Value(PEAK_GAUSS, i, *test.Peaks()[0]->param);
        squares += left * left;
    }
    Run();
    char told[64];
    std::snprintf(told, sizeof told, "++ mse: %.4f%% delta mse = ", squares * 100.0 / 200);
    EXPECT_GT(squares, 1e5);
    EXPECT_TRUE(test.Has_Part(11, told)) << told;
}

TEST_F(Gauss_Newton_Steps, a_peak_of_one_bin_is_deleted_as_too_small) {
    Curve_Set({});
    test.Data().filtered[100] = 100.0;
    test.Data().filtered[99] = test.Data().filtered[101] = 5.0;
    Add(100, 1.0F, 3.0F);
    Run();
    EXPECT_TRUE(test.Has(11, "******* Delete peak at 100.00: Peak to small (amp=46.6, width=1.0)"));
}

TEST_F(Gauss_Newton_Steps, deleting_keeps_the_list_whole) {
    Curve_Set({});
    Histo_Peak* a = Add(10, 1.0F, 5.0F);
    Histo_Peak* b = Add(50, 1.0F, 5.0F);
    Histo_Peak* c = Add(90, 1.0F, 5.0F);
    Peak_Delete(test.Data(), a, "reason %d", 7);
    EXPECT_EQ(test.Texts(11).back(), "******* Delete peak at 10.00: reason 7");
    EXPECT_EQ(test.Data().peak_first, b);
    EXPECT_EQ(b->prev, nullptr);
    Peak_Delete(test.Data(), c, "%s", std::string(3000, 'x').c_str());
    EXPECT_EQ(b->next, nullptr);
    EXPECT_EQ(test.Data().peak_nb, 1);
    EXPECT_EQ(test.Texts(11).back().size(), std::strlen("******* Delete peak at 90.00: ") + 1023);
}

TEST_F(Gauss_Newton_Steps, bounds_stand_around_the_candidate) {
    Curve_Set({{100, 500, 8}});
    const Histo_Peak* peak = Add(100, 0.25F, 10.0F);
    EXPECT_EQ((*peak->param)[PEAK_AMPLITUDE], 0.25 * test.Data().filtered[100]);
    EXPECT_EQ((*peak->param_min)[PEAK_CENTRE], 98.75);
    EXPECT_EQ((*peak->param_max)[PEAK_CENTRE], 101.25);
    EXPECT_EQ((*peak->param_min)[PEAK_WIDTH], 1.0);
    EXPECT_EQ((*peak->param_max)[PEAK_WIDTH], 40.0);
    EXPECT_EQ((*peak->param_max)[PEAK_AMPLITUDE], 2.0 * test.Data().filtered[100]);
}

TEST(Peak_Curve, has_none_for_a_centre_of_0) {
    Vector_N param(3, 8);
    param[PEAK_AMPLITUDE] = 5.0;
    param[PEAK_WIDTH] = 2.0;
    EXPECT_EQ(Peak_Curve(PEAK_GAUSS, 10, param), nullptr);
    param[PEAK_CENTRE] = 4.0;
    double* curve = Peak_Curve(PEAK_GAUSS, 10, param);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve[4], 5.0);
    delete[] curve;
}

}  // namespace

#include "histogram/peak_fit_system.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_peak.h"

namespace {

constexpr int BIN_NB = 600;

/** A list of Gaussians of several widths, two of them cut by the ends. */
class Peak_List {
  public:
    Peak_List() {
        histo.filtered = new double[BIN_NB];
        histo.curve_nb = BIN_NB;
        peak_width_max = BIN_NB / 5.0F;
        peak_centre_tol = 1.25F;
        for (int bin = 0; bin < BIN_NB; ++bin) {
            histo.filtered[bin] = 1000.0 + 400.0 * std::sin(bin / 9.0);
        }
        Histo_Peak* tail = nullptr;
        for (const auto& [bin, width] : {std::pair{3, 2.0F}, {40, 1.0F}, {200, 7.5F}, {330, 30.0F}, {595, 12.0F}}) {
            Histo_Peak* peak = Peak_Gauss_Add(histo, tail, bin, 1.0F, width);
            (*peak->param)[PEAK_CENTRE] += 0.37;
        }
    }

    Histo_Data histo;
};

std::vector<double> Curve(int bins) {
    std::vector<double> curve(static_cast<std::size_t>(bins));
    for (int bin = 0; bin < bins; ++bin) {
        curve[static_cast<std::size_t>(bin)] = 700.0 + 300.0 * std::cos(bin / 11.0);
    }
    return curve;
}

/** The Jacobian and the residual in full, from parts of `run` bins. */
struct Plain_System {
    std::vector<std::vector<double>> jacobian;
    std::vector<double> residual;
};
Plain_System Put_Together(const Histo_Peak* first, const std::vector<double>& data, int run) {
    const auto nb = static_cast<int>(data.size());
    const std::vector<Fit_Peak> peaks = Fit_Peaks_Of(first, nb);
    const std::size_t columns = peaks.empty() ? 0 : static_cast<std::size_t>(peaks.back().column) + PEAK_PARAM_NB;
    Plain_System whole;
    for (int begin = 0; begin < nb; begin += run) {
        const Fit_Part part = Fit_Part_Make(peaks, data, {begin, std::min(begin + run, nb) - 1});
        EXPECT_TRUE(part.is_complete);
        for (int row = 0; begin + row <= part.bins.last; ++row) {
            std::vector<double> full(columns);
            for (unsigned int column = 0; column < part.jacobian.Columns(); ++column) {
                full[static_cast<std::size_t>(part.first_column) + column] = part.jacobian[row][column];
            }
            whole.jacobian.push_back(full);
            whole.residual.push_back(part.residual[row]);
        }
    }
    return whole;
}

/** The sums of the definition against what the system holds. */
void Expect_Products(const Plain_System& whole, const Fit_System& system) {
    const std::size_t columns = system.parameters.Size();
    ASSERT_EQ(system.normal.Rows(), columns);
    ASSERT_EQ(system.normal.Columns(), columns);
    ASSERT_EQ(system.gradient.Size(), columns);
    for (std::size_t i = 0; i < columns; ++i) {
        double slope = 0.0;
        double size = 0.0;
        for (std::size_t bin = 0; bin < whole.residual.size(); ++bin) {
            slope += whole.jacobian[bin][i] * whole.residual[bin];
            size += std::abs(whole.jacobian[bin][i] * whole.residual[bin]);
        }
        EXPECT_NEAR(system.gradient[static_cast<int>(i)], slope, 1e-12 * size) << i;
        for (std::size_t j = 0; j < columns; ++j) {
            double sum = 0.0;
            size = 0.0;
            for (const std::vector<double>& row : whole.jacobian) {
                sum += row[i] * row[j];
                size += std::abs(row[i] * row[j]);
            }
            ASSERT_NEAR(system.normal[static_cast<int>(i)][j], sum, 1e-12 * size) << i << " " << j;
        }
    }
}

}  // namespace

TEST(Fit_System, agrees_with_one_call_per_value) {
    const Peak_List list;
    const std::vector<double> data = Curve(BIN_NB);
    const Fit_System system = Fit_System_Make(list.histo.peak_first, data);
    const Plain_System whole = Put_Together(list.histo.peak_first, data, 128);
    ASSERT_TRUE(system.is_complete);
    ASSERT_TRUE(system.is_valid);
    Expect_Products(whole, system);
    double squares = 0.0;
    for (int bin = 0; bin < BIN_NB; ++bin) {
        double residual = data[static_cast<std::size_t>(bin)];
        int column = 0;
        for (const Histo_Peak* peak = list.histo.peak_first; peak != nullptr; peak = peak->next) {
            residual -= Peak_Value(peak->type, bin, *peak->param);
            for (std::uint8_t k = 0; k < 3; ++k, ++column) {
                const double slope = Peak_Deriv(peak->type, k, bin, *peak->param);
                const double ours = whole.jacobian[static_cast<std::size_t>(bin)][static_cast<std::size_t>(column)];
                ASSERT_NEAR(ours, slope, 1e-8 * std::abs(slope)) << bin << " " << column;
                ASSERT_EQ(ours == 0.0, slope == 0.0) << bin << " " << column;  // the same cut-off
                ASSERT_EQ(system.parameters[column], (*peak->param)[k]);
            }
        }
        ASSERT_NEAR(whole.residual[static_cast<std::size_t>(bin)], residual, 1e-6);
        squares += residual * residual;
    }
    EXPECT_NEAR(system.squared_error, squares, 1e-9 * squares);
}

TEST(Fit_System, parts_of_any_length_give_one_system) {
    const Peak_List list;
    const std::vector<double> data = Curve(BIN_NB);
    const Plain_System whole = Put_Together(list.histo.peak_first, data, BIN_NB);
    for (const int run : {1, 7, 64, 599}) {
        const Plain_System parts = Put_Together(list.histo.peak_first, data, run);
        for (std::size_t bin = 0; bin < data.size(); ++bin) {
            ASSERT_NEAR(parts.residual[bin], whole.residual[bin], 1e-6) << run << " " << bin;
            for (std::size_t column = 0; column < whole.jacobian[bin].size(); ++column) {
                const double slope = whole.jacobian[bin][column];
                ASSERT_NEAR(parts.jacobian[bin][column], slope, 1e-8 * std::abs(slope)) << run << " " << bin;
            }
        }
    }
}

TEST(Fit_System, a_part_has_the_columns_of_the_peaks_that_reach_into_it) {
    const Peak_List list;
    const std::vector<double> data = Curve(BIN_NB);
    const std::vector<Fit_Peak> peaks = Fit_Peaks_Of(list.histo.peak_first, BIN_NB);
    const Fit_Part empty = Fit_Part_Make(peaks, data, {60, 100});
    EXPECT_EQ(empty.jacobian.Columns(), 3U) << "the widest peak reaches from bin 31 on";
    EXPECT_EQ(empty.first_column, 9);
    const Fit_Part nothing = Fit_Part_Make(peaks, data, {24, 28});
    EXPECT_EQ(nothing.jacobian.Columns(), 0U);
    EXPECT_EQ(nothing.residual[3], data[27]);
    const Fit_Part two = Fit_Part_Make(peaks, data, {130, 140});
    EXPECT_EQ(two.jacobian.Columns(), 6U);
    EXPECT_EQ(two.first_column, 6);
}

TEST(Fit_System, other_shapes_are_asked_for_every_bin) {
    Peak_List list;
    const std::vector<double> data = Curve(BIN_NB);
    for (const std::uint8_t type : {PEAK_LORENTZ, PEAK_MIXED}) {
        Histo_Peak* peak = list.histo.peak_first->next->next;
        peak->type = type;
        const Plain_System whole = Put_Together(list.histo.peak_first, data, 128);
        for (std::size_t bin = 0; bin < data.size(); ++bin) {
            for (std::uint8_t k = 0; k < 3; ++k) {
                ASSERT_EQ(whole.jacobian[bin][6U + k], Peak_Deriv(type, k, static_cast<double>(bin), *peak->param));
            }
        }
        Expect_Products(whole, Fit_System_Make(list.histo.peak_first, data));
    }
}

TEST(Fit_System, without_peaks_the_error_is_that_of_the_data) {
    const std::vector<double> data = {3.0, -4.0, 12.0};
    Fit_System system = Fit_System_Make(nullptr, data);
    EXPECT_TRUE(system.is_complete);
    EXPECT_EQ(system.squared_error, 169.0);
    EXPECT_EQ(system.parameters.Size(), 0u);
    EXPECT_EQ(system.normal.Columns(), 0u);
}

TEST(Fit_System, without_bins_it_is_empty) {
    const Peak_List list;
    const Fit_System system = Fit_System_Make(list.histo.peak_first, {});
    EXPECT_EQ(system.squared_error, 0.0);
    EXPECT_EQ(system.parameters.Size(), 15u);
}

TEST(Fit_System, fits_of_all_sizes_end_and_leave_their_curves) {
    for (const int bins : {1, 2, 21, 64, 1000, 4096}) {
        Histo_Data histo;
        const std::vector<double> counts = Curve(bins);
        for (int round = 0; round < 2; ++round) {
            Peak_Fit_Prepare(histo, bins, counts.data());
            EXPECT_EQ(histo.curve_nb, bins);
            int nb = 0;
            for (const Histo_Peak* peak = histo.peak_first; peak != nullptr; peak = peak->next, ++nb) {
                ASSERT_EQ(peak->nb_pts, bins);
                for (int bin = 0; bin < bins; ++bin) {
                    ASSERT_EQ(peak->curve[bin], static_cast<float>(Peak_Value(peak->type, bin, *peak->param)));
                }
            }
            EXPECT_EQ(histo.peak_nb, nb);
        }
    }
}

TEST(Fit_System, many_peaks_of_a_long_curve_are_found_as_they_are) {
    constexpr int nb_bins = 8192;
    constexpr int nb_peaks = 60;
    const auto centre = [](int k) { return 70 + 136 * k; };
    const auto width = [](int k) { return 15.0 + k % 5; };
    Histo_Data histo;
    histo.filtered = new double[nb_bins]();
    histo.curve_nb = nb_bins;
    peak_width_max = nb_bins / 5.0F;
    peak_centre_tol = 1.25F;
    for (int bin = 0; bin < nb_bins; ++bin) {
        for (int k = 0; k < nb_peaks; ++k) {
            const double away = (bin - centre(k) - 0.4) / width(k);
            histo.filtered[bin] += std::abs(away) > 10.0 ? 0.0 : (500.0 + k) * std::exp(-0.693147181 * away * away);
        }
    }
    Histo_Peak* tail = nullptr;
    for (int k = 0; k < nb_peaks; ++k) {
        Peak_Gauss_Add(histo, tail, centre(k), 1.0F, 10.0F);
    }
    Gauss_Newton(histo, nb_bins, histo.filtered, 0.1);
    ASSERT_EQ(histo.peak_nb, nb_peaks);
    int k = 0;
    for (const Histo_Peak* peak = histo.peak_first; peak != nullptr; peak = peak->next, ++k) {
        EXPECT_NEAR((*peak->param)[PEAK_CENTRE], centre(k) + 0.4, 1e-3);
        EXPECT_NEAR((*peak->param)[PEAK_AMPLITUDE], 500.0 + k, 0.1);
        EXPECT_NEAR((*peak->param)[PEAK_WIDTH], width(k), 1e-2);
    }
}

// ---------------- functions of one's own

namespace {

int own_calls = 0;

/** A triangle, wider than any Gaussian's cut-off. */
double Triangle(std::uint8_t /*type*/, double position, Vector_N& param) {
    ++own_calls;
    return std::max(param[PEAK_AMPLITUDE] - std::abs(position - param[PEAK_CENTRE]), 0.0);
}
double Triangle_Slope(std::uint8_t /*type*/, std::uint8_t index, double position, Vector_N& param) {
    const double distance = position - param[PEAK_CENTRE];
    if (std::abs(distance) >= param[PEAK_AMPLITUDE]) {
        return 0.0;
    }
    return index == PEAK_AMPLITUDE ? 1.0 : index == PEAK_CENTRE ? (distance > 0.0 ? 1.0 : -1.0) : 0.0;
}

/** One record that calls itself a Gaussian and brings its own functions. */
void Triangle_Give(Histo_Data& histo) {
    histo.filtered = new double[BIN_NB]();
    histo.curve_nb = BIN_NB;
    histo.filtered[300] = 200.0;
    Histo_Peak* tail = nullptr;
    Histo_Peak* peak = Peak_Gauss_Add(histo, tail, 300, 1.0F, 2.0F);
    peak->fct_value = Triangle;
    peak->fct_deriv = Triangle_Slope;
}

}  // namespace

TEST(Fit_System, evaluates_a_record_by_the_functions_that_it_brings) {
    Histo_Data histo;
    Triangle_Give(histo);
    Histo_Peak& peak = *histo.peak_first;
    own_calls = 0;
    const std::vector<double> data(BIN_NB, 0.0);
    const Plain_System whole = Put_Together(&peak, data, 128);
    EXPECT_EQ(own_calls, BIN_NB);
    for (int bin = 0; bin < BIN_NB; ++bin) {
        const auto at = static_cast<std::size_t>(bin);
        ASSERT_EQ(whole.residual[at], -Triangle(PEAK_GAUSS, bin, *peak.param)) << bin;
        for (std::uint8_t k = 0; k < 3; ++k) {
            ASSERT_EQ(whole.jacobian[at][k], Triangle_Slope(PEAK_GAUSS, k, bin, *peak.param)) << bin;
        }
    }
}

TEST(Fit_System, sums_and_curves_are_made_by_the_records_own_functions_too) {
    Histo_Data histo;
    Triangle_Give(histo);
    const std::vector<double> nothing(BIN_NB, 0.0);
    Gauss_Newton(histo, BIN_NB, nothing.data(), 1e300);
    Peak_Curves_Make(histo, {1, "here"});
    const Histo_Peak& peak = *histo.peak_first;
    ASSERT_EQ(peak.nb_pts, BIN_NB);
    for (int bin = 0; bin < BIN_NB; ++bin) {
        const auto value = static_cast<float>(Triangle(PEAK_GAUSS, bin, *peak.param));
        ASSERT_EQ(histo.fit_sum[bin], value) << bin;
        ASSERT_EQ(peak.curve[bin], value) << bin;
    }
    EXPECT_GT(peak.curve[200], 0.0F) << "far beyond ten widths";
}

TEST(Fit_System, a_record_without_functions_adds_nothing) {
    Histo_Data histo;
    Triangle_Give(histo);
    histo.peak_first->fct_value = nullptr;
    histo.peak_first->fct_deriv = nullptr;
    const std::vector<double> data(BIN_NB, 3.0);
    const Fit_System system = Fit_System_Make(histo.peak_first, data);
    EXPECT_EQ(system.squared_error, 9.0 * BIN_NB);
    Gauss_Newton(histo, BIN_NB, data.data(), 0.1);
    EXPECT_EQ(histo.fit_sum[300], 0.0F);
}

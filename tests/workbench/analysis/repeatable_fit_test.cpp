#include "workbench/analysis/repeatable_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "histogram/tool_histo_peak.h"

namespace {

constexpr int BINS = 400;

void Counts_Set(Tool_Histo& panel, const std::vector<double>& centres) {
    auto* record = new Histo_Record();
    record->nb_bins = BINS;
    record->bin_width = 1.0F;
    record->counts = new std::uint32_t[BINS]();
    for (int i = 0; i < BINS; ++i) {
        for (const double centre : centres) {
            record->counts[i] += static_cast<std::uint32_t>(4000.0 * std::exp(-std::pow((i - centre) / 25.0, 2)));
        }
    }
    panel.data->Record_Free();
    panel.data->record = record;
}

std::vector<double> Parameters_Of(const Tool_Histo& panel) {
    std::vector<double> parameters;
    for (const Histo_Peak* peak = panel.data->peak_first; peak != nullptr; peak = peak->next) {
        for (int k = 0; k < PEAK_PARAM_NB; ++k) {
            parameters.push_back((*peak->param)[k]);
        }
    }
    return parameters;
}

TEST(Repeatable_Fit, Gives_The_Same_Peaks_For_The_Same_Data_Every_Time) {
    Repeatable_Fit fit;
    Tool_Histo panel;
    Counts_Set(panel, {100.0, 280.0});
    EXPECT_EQ(fit.Run(panel), 1);
    const std::vector<double> first = Parameters_Of(panel);
    ASSERT_EQ(first.size(), 6U);
    for (int round = 0; round < 5; ++round) {
        fit.Run(panel);
        EXPECT_EQ(Parameters_Of(panel), first);
    }
}

TEST(Repeatable_Fit, Is_Not_Disturbed_By_A_Fit_On_Other_Data) {
    Repeatable_Fit fit;
    Tool_Histo panel;
    Counts_Set(panel, {60.0});
    fit.Run(panel);
    const std::vector<double> alone = Parameters_Of(panel);
    Tool_Histo other;
    Counts_Set(other, {65.0, 330.0});
    fit.Run(other);
    fit.Run(panel);
    EXPECT_EQ(Parameters_Of(panel), alone);
}

TEST(Repeatable_Fit, Is_Needed_Because_The_Module_Remembers_Its_Last_Crossing) {
    Repeatable_Fit fit;
    Tool_Histo panel;
    Counts_Set(panel, {100.0});
    fit.Run(panel);
    const std::vector<double> primed = Parameters_Of(panel);
    panel.Fit_Gaussian();
    EXPECT_NE(Parameters_Of(panel), primed) << "the same fit straight after it starts from another candidate";
}

}  // namespace

#include "workbench/analysis/fit_log.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

TEST(Fit_Log, tells_for_every_candidate_where_it_came_from_and_why_it_went) {
    Fit_Log log;
    log.Add(11, "Locate a peak with zero at x = 40");
    log.Add(11, "Locate a peak with data at x = 47");
    log.Add(11, "Locate a peak with data at x = 90");
    log.Add(11, "++ mse: 12.5000% delta mse =    1.2e+03");
    log.Add(11, "******* Delete peak at 46.20: Peak to close b (40.1 /vs/ 46.2)");
    log.Add(11,
            "  -> Stop after \x01"
            "4\x02 iterations");
    ASSERT_EQ(log.Candidates().size(), 3U);
    EXPECT_TRUE(log.Candidates()[0].by_zero);
    EXPECT_TRUE(log.Candidates()[0].dropped.empty());
    EXPECT_EQ(log.Candidates()[1].dropped, "Peak to close b (40.1 /vs/ 46.2)");
    EXPECT_TRUE(log.Candidates()[2].dropped.empty());
    const std::vector<std::string> lines = log.Lines();
    EXPECT_EQ(lines[0], "Candidate at bin 40 (zero crossing of the derivative): kept");
    EXPECT_EQ(lines[1],
              "Candidate at bin 47 (maximum of the data): dropped at 46.20, Peak to close b (40.1 /vs/ 46.2)");
    EXPECT_EQ(lines[3], "Iteration 0: mse: 12.5000% delta mse =    1.2e+03");
    EXPECT_EQ(lines.back(), "Stop after 4 iterations");
}

TEST(Fit_Log, a_second_deletion_near_by_means_the_next_candidate) {
    Fit_Log log;
    log.Add(11, "Locate a peak with data at x = 40");
    log.Add(11, "Locate a peak with data at x = 42");
    log.Add(11, "******* Delete peak at 40.90: a");
    log.Add(11, "******* Delete peak at 41.00: b");
    EXPECT_EQ(log.Candidates()[0].dropped, "a");
    EXPECT_EQ(log.Candidates()[1].dropped, "b");
}

TEST(Fit_Log, shows_warnings_without_style_bytes_and_passes_other_levels_over) {
    Fit_Log log;
    log.Add(2, "\xF1\x05WARNING:\x02 Gauss_Newton failed!");
    log.Add(16, "in Histo_Compute()");
    log.Add(12, "  -> possile data peak at 3 -> max = 7");
    ASSERT_EQ(log.Lines().size(), 1U);
    EXPECT_EQ(log.Lines()[0], "WARNING: Gauss_Newton failed!");
}

TEST(Fit_Log, counts_the_passes_of_the_derivative_method) {
    Fit_Log log;
    log.Add(11, "loop:000 nb peak:9");
    log.Add(11, "loop:001 nb peak:4");
    EXPECT_EQ(log.Passes(), 2);
    EXPECT_EQ(log.Lines()[0], "Derivative method: 2 smoothing passes, 4 maxima left");
    log.Clear();
    EXPECT_TRUE(log.Lines().empty());
    log.Add(11, "loop:000 nb peak:1");
    EXPECT_EQ(log.Lines()[0], "Derivative method: 1 smoothing pass, 1 maximum left");
}

}  // namespace

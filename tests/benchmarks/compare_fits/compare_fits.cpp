// Our Gaussian fit, MINPACK, GSL and fityk on the same filtered curves, from the same start and within the same bounds:
// compare_fits [CURVE.txt ...], one count per line. Writes a table in Markdown.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "tests/benchmarks/compare_fits/fit_problem.h"

namespace {

/** 30 peaks on 2,048 bins, noise as of counted pixels. */
std::vector<double> Synthetic_Curve() {
    constexpr std::size_t bin_nb = 2048;
    constexpr int peak_nb = 30;
    std::mt19937 random(1);
    std::vector<double> counts(bin_nb);
    for (std::size_t bin = 0; bin < bin_nb; ++bin) {
        double mean = 0.0;
        for (int k = 0; k < peak_nb; ++k) {
            const double away = (static_cast<double>(bin) - 40.4 - 66.0 * k) / (9.0 + k % 5);
            mean += (5000.0 + 370.0 * (k % 7)) * std::exp(-0.693147181 * away * away);
        }
        counts[bin] = static_cast<double>(std::poisson_distribution<int>(mean + 0.5)(random));
    }
    return counts;
}

std::vector<double> Curve_Read(const char* path) {
    std::vector<double> counts;
    std::ifstream in(path);
    for (double count = 0.0; in >> count;) {
        counts.push_back(count);
    }
    return counts;
}

void Row_Print(const Fit_Problem& problem, const Fit_Outcome& outcome, double our_seconds) {
    if (outcome.parameters.size() != 3 * problem.start.size()) {
        std::printf("| %s | %s | no result | | | |\n", problem.name.c_str(), outcome.program.c_str());
        return;
    }
    std::printf("| %s | %s | %.3f | %.1f | %.6g | %s%s |\n", problem.name.c_str(), outcome.program.c_str(),
                outcome.seconds * 1e3, outcome.seconds / our_seconds, Squared_Error(problem, outcome.parameters),
                outcome.remark.c_str(), Within_Bounds(problem, outcome.parameters) ? "" : ", outside the bounds");
}

void Compare(const std::string& name, const std::vector<double>& counts) {
    Fit_Problem problem = Problem_Make(name, counts);
    problem.name =
        name + ": " + std::to_string(problem.start.size()) + " peaks, " + std::to_string(problem.data.size()) + " bins";
    if (problem.start.empty()) {
        std::printf("| %s | no peak stays | | | | |\n", problem.name.c_str());
        return;
    }
    const Fit_Outcome ours = Our_Fit(problem);
    const double error = Squared_Error(problem, ours.parameters);
    Row_Print(problem, ours, ours.seconds);
    Row_Print(problem, Minpack_Fit(problem, error), ours.seconds);
    Row_Print(problem, Gsl_Fit(problem), ours.seconds);
    Row_Print(problem, Fityk_Fit(problem, "levenberg_marquardt", error), ours.seconds);
    Row_Print(problem, Fityk_Fit(problem, "mpfit", error), ours.seconds);
}

}  // namespace

int main(int count, char** arguments) {
    std::printf("| Curve | Program | Time, ms | Times ours | Final squared error | |\n|---|---|---|---|---|---|\n");
    Compare("Synthetic", Synthetic_Curve());
    for (int i = 1; i < count; ++i) {
        const std::vector<double> counts = Curve_Read(arguments[i]);
        if (counts.empty()) {
            std::fprintf(stderr, "compare_fits: %s holds no counts.\n", arguments[i]);
            return 1;
        }
        Compare(std::filesystem::path(arguments[i]).stem().string(), counts);
    }
    return 0;
}

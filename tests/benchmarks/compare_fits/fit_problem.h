/** One least-squares problem that every program solves: a curve, Gaussians to start from, and their bounds. */
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <vector>

/** A Gaussian: centre in bins, amplitude in counts, half width at half height in bins. */
struct Gaussian {
    double value[3];
    double low[3];
    double high[3];
};

struct Fit_Problem {
    std::string name;
    std::vector<double> data;  ///< the filtered curve
    std::vector<Gaussian> start;
    double change = 0.1;  ///< a fit ends when a step changes the squared error by less
};

struct Fit_Outcome {
    std::string program;
    double seconds = 0.0;  ///< the least of several runs
    std::vector<double> parameters;
    std::string remark;
};

/** Sum of the squared residuals, by the same arithmetic for every program. */
double Squared_Error(const Fit_Problem& problem, const std::vector<double>& parameters);
/** True when every parameter lies within its bounds, up to rounding. */
bool Within_Bounds(const Fit_Problem& problem, const std::vector<double>& parameters);

/** Finds the candidates as the panel's fit does and leaves out those that it drops. @param counts one per bin */
Fit_Problem Problem_Make(const std::string& name, const std::vector<double>& counts);
Fit_Outcome Our_Fit(const Fit_Problem& problem);
Fit_Outcome Minpack_Fit(const Fit_Problem& problem, double final_error);
Fit_Outcome Gsl_Fit(const Fit_Problem& problem);
/** @param method fityk's name of it; @param final_error for a stop at the same change, which fityk wants relative */
Fit_Outcome Fityk_Fit(const Fit_Problem& problem, const std::string& method, double final_error);

inline constexpr int FIT_ROUNDS = 7;

/** The least time of several calls, in seconds: other work on the machine only adds. */
template <class Call>
double Least_Seconds(Call call) {
    double least = std::numeric_limits<double>::infinity();
    for (int round = 0; round < FIT_ROUNDS; ++round) {
        const auto start = std::chrono::steady_clock::now();
        call();
        least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return least;
}

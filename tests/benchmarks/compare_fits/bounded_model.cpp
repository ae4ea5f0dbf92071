#include "tests/benchmarks/compare_fits/bounded_model.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LN_2 = 0.693147181;
constexpr double CUT_OFF = 10.0;  // widths

}  // namespace

double Squared_Error(const Fit_Problem& problem, const std::vector<double>& parameters) {
    double sum = 0.0;
    for (std::size_t bin = 0; bin < problem.data.size(); ++bin) {
        double residual = problem.data[bin];
        for (std::size_t k = 0; k < parameters.size(); k += 3) {
            const double away = (static_cast<double>(bin) - parameters[k]) / parameters[k + 2];
            residual -= std::abs(away) > CUT_OFF ? 0.0 : parameters[k + 1] * std::exp(-LN_2 * away * away);
        }
        sum += residual * residual;
    }
    return sum;
}

bool Within_Bounds(const Fit_Problem& problem, const std::vector<double>& parameters) {
    for (std::size_t k = 0; k < parameters.size(); ++k) {
        const Gaussian& peak = problem.start[k / 3];
        const double slack = 1e-6 * std::max(1.0, std::abs(peak.high[k % 3]));
        if (!(parameters[k] >= peak.low[k % 3] - slack && parameters[k] <= peak.high[k % 3] + slack)) {
            return false;
        }
    }
    return true;
}

std::vector<double> Bounded_Model::Start() const {
    std::vector<double> variables;
    for (const Gaussian& peak : problem.start) {
        for (int m = 0; m < 3; ++m) {
            const double place = 2.0 * (peak.value[m] - peak.low[m]) / (peak.high[m] - peak.low[m]) - 1.0;
            variables.push_back(std::asin(std::clamp(place, -1.0, 1.0)));
        }
    }
    return variables;
}

std::vector<double> Bounded_Model::Parameters(const double* variables) const {
    std::vector<double> parameters;
    parameters.reserve(Variable_Nb());
    for (const Gaussian& peak : problem.start) {
        for (int m = 0; m < 3; ++m) {
            parameters.push_back(peak.low[m] + (peak.high[m] - peak.low[m]) * (std::sin(*variables++) + 1.0) / 2.0);
        }
    }
    return parameters;
}

void Bounded_Model::Residuals(const double* variables, double* residuals) const {
    const std::vector<double> p = Parameters(variables);
    for (std::size_t bin = 0; bin < Bin_Nb(); ++bin) {
        residuals[bin] = -problem.data[bin];
    }
    for (std::size_t k = 0; k < p.size(); k += 3) {
        const double sharpness = LN_2 / (p[k + 2] * p[k + 2]);
        for (std::size_t bin = 0; bin < Bin_Nb(); ++bin) {
            const double away = static_cast<double>(bin) - p[k];
            if (std::abs(away) <= CUT_OFF * p[k + 2]) {
                residuals[bin] += p[k + 1] * std::exp(-sharpness * away * away);
            }
        }
    }
}

void Bounded_Model::Jacobian(const double* variables, double* jacobian, std::size_t bin_stride,
                             std::size_t variable_stride) const {
    const std::vector<double> p = Parameters(variables);
    for (std::size_t k = 0; k < p.size(); k += 3) {
        const Gaussian& peak = problem.start[k / 3];
        double turn[3];
        for (std::size_t m = 0; m < 3; ++m) {
            turn[m] = (peak.high[m] - peak.low[m]) * std::cos(variables[k + m]) / 2.0;
        }
        const double sharpness = LN_2 / (p[k + 2] * p[k + 2]);
        for (std::size_t bin = 0; bin < Bin_Nb(); ++bin) {
            const double away = static_cast<double>(bin) - p[k];
            double* out = jacobian + bin * bin_stride + k * variable_stride;
            const bool is_inside = std::abs(away) <= CUT_OFF * p[k + 2];
            const double unit = is_inside ? std::exp(-sharpness * away * away) : 0.0;
            const double slope = 2.0 * sharpness * p[k + 1] * unit * away;
            out[0] = slope * turn[0];
            out[variable_stride] = unit * turn[1];
            out[2 * variable_stride] = slope * away / p[k + 2] * turn[2];
        }
    }
}

/** The sum of Gaussians for solvers that know no bounds: every parameter is a sine of a free variable, which cannot
 * leave them. */
#pragma once

#include <cstddef>
#include <vector>

#include "tests/benchmarks/compare_fits/fit_problem.h"

class Bounded_Model {
  public:
    explicit Bounded_Model(const Fit_Problem& fit_problem) : problem(fit_problem) {}
    std::size_t Variable_Nb() const { return 3 * problem.start.size(); }
    std::size_t Bin_Nb() const { return problem.data.size(); }

    std::vector<double> Start() const;
    std::vector<double> Parameters(const double* variables) const;
    /** Model minus data per bin. */
    void Residuals(const double* variables, double* residuals) const;
    /** Derivative of residual `bin` by variable `k` into jacobian[bin * bin_stride + k * variable_stride]. */
    void Jacobian(const double* variables, double* jacobian, std::size_t bin_stride, std::size_t variable_stride) const;

  private:
    const Fit_Problem& problem;
};

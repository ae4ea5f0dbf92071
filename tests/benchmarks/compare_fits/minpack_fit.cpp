#include <cminpack.h>

#include <limits>

#include "tests/benchmarks/compare_fits/bounded_model.h"

namespace {

int Evaluate(void* context, int bin_nb, int /*variable_nb*/, const double* x, double* residuals, double* jacobian,
             int /*jacobian_stride*/, int what) {
    const auto& model = *static_cast<const Bounded_Model*>(context);
    if (what == 1) {
        model.Residuals(x, residuals);
    } else if (what == 2) {
        model.Jacobian(x, jacobian, 1, static_cast<std::size_t>(bin_nb));
    }
    return 0;
}

}  // namespace

Fit_Outcome Minpack_Fit(const Fit_Problem& problem, double final_error) {
    Bounded_Model model(problem);
    const auto n = static_cast<int>(model.Variable_Nb());
    const auto m = static_cast<int>(model.Bin_Nb());
    std::vector<double> x;
    int result = 0;
    int steps = 0;
    Fit_Outcome outcome{"MINPACK (lmder)", 0.0, {}, {}};
    outcome.seconds = Least_Seconds([&] {
        x = model.Start();
        std::vector<double> residuals(model.Bin_Nb());
        std::vector<double> jacobian(model.Bin_Nb() * model.Variable_Nb());
        std::vector<double> scale(model.Variable_Nb());
        std::vector<double> qtf(model.Variable_Nb());
        std::vector<double> work(3 * model.Variable_Nb() + model.Bin_Nb());
        std::vector<int> pivot(model.Variable_Nb());
        int evaluations = 0;
        // Relative change of the squared error at which it ends; the other two limits as its authors advise.
        const double change = problem.change / final_error;
        result = lmder(Evaluate, &model, m, n, x.data(), residuals.data(), jacobian.data(), m, change, 1e-8, 0.0, 1000,
                       scale.data(), 1, 100.0, 0, &evaluations, &steps, pivot.data(), qtf.data(), work.data(),
                       work.data() + n, work.data() + 2 * n, work.data() + 3 * n);
    });
    outcome.parameters = model.Parameters(x.data());
    outcome.remark = std::to_string(steps) + " steps" + (result >= 1 && result <= 4 ? "" : ", gave up");
    return outcome;
}

#include <gsl/gsl_blas.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_multifit_nlinear.h>

#include <cmath>

#include "tests/benchmarks/compare_fits/bounded_model.h"

namespace {

constexpr int STEP_MAX = 1000;

int Residuals(const gsl_vector* x, void* context, gsl_vector* residuals) {
    static_cast<const Bounded_Model*>(context)->Residuals(x->data, residuals->data);
    return GSL_SUCCESS;
}

int Jacobian(const gsl_vector* x, void* context, gsl_matrix* jacobian) {
    static_cast<const Bounded_Model*>(context)->Jacobian(x->data, jacobian->data, jacobian->tda, 1);
    return GSL_SUCCESS;
}

double Error_Of(const gsl_multifit_nlinear_workspace* work) {
    double error = 0.0;
    gsl_blas_ddot(work->f, work->f, &error);
    return error;
}

}  // namespace

Fit_Outcome Gsl_Fit(const Fit_Problem& problem) {
    gsl_set_error_handler_off();
    Bounded_Model model(problem);
    Fit_Outcome outcome{"GSL (Levenberg-Marquardt, Cholesky)", 0.0, {}, {}};
    int steps = 0;
    bool is_stuck = false;
    outcome.seconds = Least_Seconds([&] {
        gsl_multifit_nlinear_fdf functions = {};
        functions.f = Residuals;
        functions.df = Jacobian;
        functions.n = model.Bin_Nb();
        functions.p = model.Variable_Nb();
        functions.params = &model;
        gsl_multifit_nlinear_parameters settings = gsl_multifit_nlinear_default_parameters();
        settings.solver = gsl_multifit_nlinear_solver_cholesky;  // the fastest of its solvers
        gsl_multifit_nlinear_workspace* work =
            gsl_multifit_nlinear_alloc(gsl_multifit_nlinear_trust, &settings, functions.n, functions.p);
        std::vector<double> start = model.Start();
        const gsl_vector_view view = gsl_vector_view_array(start.data(), start.size());
        gsl_multifit_nlinear_init(&view.vector, &functions, work);
        double error = Error_Of(work);
        is_stuck = false;
        for (steps = 0; steps < STEP_MAX; ++steps) {
            if (gsl_multifit_nlinear_iterate(work) != GSL_SUCCESS) {
                is_stuck = true;
                break;
            }
            const double now = Error_Of(work);
            if (std::abs(now - error) < problem.change) {
                break;
            }
            error = now;
        }
        outcome.parameters = model.Parameters(work->x->data);
        gsl_multifit_nlinear_free(work);
    });
    outcome.remark = std::to_string(steps + 1) + " steps" + (is_stuck ? ", no better step found" : "");
    return outcome;
}

/** The linearised least-squares system of a peak fit. */
#pragma once

#include <span>

#include "host/kit_common.h"

struct Histo_Peak;

/** One linearisation: J, r and p of the step (Jt J)^-1 Jt r. */
struct Fit_System {
    Vector_N parameters;         ///< all peaks' parameters, in list order
    Matrix_NxM jacobian;         ///< a row per bin, a column per parameter
    Vector_N residual;           ///< data minus the sum of all peaks, per bin
    double squared_error = 0.0;  ///< sum of the squared residuals
    bool is_complete = false;    ///< false when memory ran out
};

/** Builds the system for the list that begins at `first` (null: no peaks). A Gaussian of the module's own
 * functions is evaluated once per bin and only within its cut-off, elsewhere the Jacobian stays zero; every other
 * record by the functions that it brings. */
Fit_System Fit_System_Make(const Histo_Peak* first, std::span<const double> data);

/** The linearised least-squares system of a peak fit.
 *
 *  A peak reaches a few of the bins only, so the Jacobian is almost all zeros. It is made and multiplied in parts: a
 *  run of bins, with the columns of the peaks that reach into it. Any host's matrices gain by that, and none has to
 *  hold a row per bin with a column per parameter. */
#pragma once

#include <span>
#include <vector>

#include "histogram/histo_peak.h"
#include "histogram/peak_shapes.h"

/** One peak of a system. */
struct Fit_Peak {
    const Histo_Peak* peak = nullptr;
    int column = 0;             ///< index of its first parameter among all
    Bin_Span reach;             ///< bins in which it may differ from 0
    bool is_own_gauss = false;  ///< a Gaussian evaluated by the module's own functions: only then is its shape known
};

/** The rows of the Jacobian and of the residual for a run of bins. */
struct Fit_Part {
    Bin_Span bins;
    int first_column = 0;      ///< index of the parameter of the first column
    Matrix_NxM jacobian;       ///< a row per bin, a column per parameter of the peaks that reach into the run
    Vector_N residual;         ///< data minus the sum of all peaks, per bin
    bool is_complete = false;  ///< false when memory ran out
};

/** One linearisation: the step is (Jt J)^-1 Jt r. */
struct Fit_System {
    Vector_N parameters;         ///< all peaks' parameters, in list order
    Matrix_NxM normal;           ///< Jt J
    Vector_N gradient;           ///< Jt r
    double squared_error = 0.0;  ///< sum of the squared residuals
    bool is_valid = true;        ///< false when the host marked a product invalid
    bool is_complete = false;    ///< false when memory ran out
};

/** The peaks of the list that begins at `first` (null: none). @throws std::bad_alloc */
std::vector<Fit_Peak> Fit_Peaks_Of(const Histo_Peak* first, int nb_bins);

/** The part for `bins`, which must lie in `data`, one value per bin. A Gaussian of the module's own functions is
 * evaluated once per bin and only within its cut-off, elsewhere the Jacobian stays zero; every other record by the
 * functions that it brings. @throws std::bad_alloc */
Fit_Part Fit_Part_Make(std::span<const Fit_Peak> peaks, std::span<const double> data, const Bin_Span& bins);

/** Builds the system for the list that begins at `first` (null: no peaks). */
Fit_System Fit_System_Make(const Histo_Peak* first, std::span<const double> data);

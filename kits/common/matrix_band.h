/** Matrices that differ from zero near their diagonal only, as the normal equations of peaks that overlap only their
 * neighbours do. For the kit's own use. Nothing here throws. */
#pragma once

#include <cstddef>
#include <memory>

#include "kits/common/double_array.h"

/** How far a square matrix reaches from its diagonal. */
struct Band {
    std::size_t lower = 0;  ///< elements left of it
    std::size_t upper = 0;  ///< elements right of it
};

/** The band of the order x order matrix, stored by rows. */
Band Band_Of(const double* values, std::size_t order);
/** True when factors of the band alone are cheaper than those of the whole matrix. */
bool Band_Is_Narrow(const Band& band, std::size_t order);

/** LU factors with partial pivoting. */
class Band_Factors {
  public:
    /** Factorises; once, first of all. @return false without memory, and when a pivot is zero or not finite */
    bool Make(const double* values, std::size_t order, const Band& band);
    /** values (order x columns, by rows) = inverse * values. */
    void Solve(double* values, std::size_t columns) const;
    /** True when no element of the inverse can overflow, whatever the signs; false tells nothing. @param room `order`
     * doubles of any value */
    bool Is_Inverse_Bounded(double* room) const;

  private:
    const double* Row(std::size_t row) const { return upper_rows + row * width; }
    double* Row(std::size_t row) { return upper_rows + row * width; }
    void Copy(const double* values, std::size_t upper);
    bool Step(std::size_t step);
    std::size_t Below(std::size_t row) const;
    std::size_t Right(std::size_t row) const;

    std::size_t order = 0;
    std::size_t lower = 0;
    std::size_t reach = 0;  ///< right of the diagonal, after rows were exchanged
    std::size_t width = 0;  ///< doubles of a row: from `lower` left of the diagonal to `reach` right of it
    Double_Array memory;
    double* upper_rows = nullptr;
    double* multipliers = nullptr;  ///< `lower` of each step
    std::unique_ptr<std::size_t[]> pivots;
};

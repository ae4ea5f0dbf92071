/** Dense linear algebra on plain arrays of doubles, stored by rows. For the kit's own use. Nothing here throws. */
#pragma once

#include <cstddef>

struct Matrix_View {
    const double* values;
    std::size_t rows;
    std::size_t columns;
};

/** out (columns x rows) = transposed values (rows x columns). */
void Transpose(const double* values, std::size_t rows, std::size_t columns, double* out);
/** out = inverse of the order x order matrix. @return false: a pivot is exactly zero, the result is not finite, or
 * memory is missing */
bool Invert(const double* values, std::size_t order, double* out);
/** out (zeroed, left.rows x right.columns) = left * right. Parts of the sums that only add zeros are left out, unless
 * an operand has an element that is not finite. @return false without memory */
bool Multiply(const Matrix_View& left, const Matrix_View& right, double* out);
/** out (left.rows) = left * right (left.columns). */
void Multiply_Vector(const Matrix_View& left, const double* right, double* out);

#include "kits/common/matrix_numeric.h"

#include <Eigen/Dense>
#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace {

using Row_Major = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using Const_Map = Eigen::Map<const Row_Major>;
using Map = Eigen::Map<Row_Major>;

Eigen::Index Signed(std::size_t count) {
    return static_cast<Eigen::Index>(count);
}
Const_Map Mapped(const Matrix_View& view) {
    return {view.values, Signed(view.rows), Signed(view.columns)};
}

/** Half-open range of indices. */
struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;

    void Include(std::size_t from, std::size_t to) {
        begin = end > begin ? std::min(begin, from) : from;
        end = std::max(end, to);
    }
    bool operator==(const Range&) const = default;
};

Range Common(const Range& a, const Range& b) {
    const Range common{std::max(a.begin, b.begin), std::min(a.end, b.end)};
    return common.begin < common.end ? common : Range{};
}

/** Rows of the left matrix, and columns of the right one, that are multiplied together: as many sums as there are
 * registers. */
constexpr std::size_t ROW_GROUP = 4;
constexpr std::size_t COLUMN_GROUP = 6;

/** Where a matrix may differ from zero, group by group. */
struct Filling {
    std::vector<Range> ranges;
    bool is_finite = true;
};

std::size_t Groups(std::size_t count, std::size_t group) {
    return (count + group - 1) / group;
}

/** True when all are +0. Bits are compared because whole vectors of them are. */
bool All_Zero(const double* values, std::size_t count) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < count; ++i) {
        bits |= std::bit_cast<std::uint64_t>(values[i]);
    }
    return bits == 0;
}

/** Zero times anything finite is zero, and one that is not makes the sum no number: faster than asking each. */
bool All_Finite(const double* values, std::size_t count) {
    const Eigen::Map<const Eigen::ArrayXd> all(values, Signed(count));
    return (all * 0.0).sum() == 0.0;
}

/** Per group of rows: the columns that hold anything but zeros. */
Filling Columns_Filled(const Matrix_View& matrix) {
    constexpr std::size_t stride = 16;
    Filling filling;
    filling.ranges.resize(Groups(matrix.rows, ROW_GROUP));
    for (std::size_t row = 0; row < matrix.rows; ++row) {
        const double* values = matrix.values + row * matrix.columns;
        std::size_t begin = 0;
        std::size_t end = matrix.columns;
        while (begin + stride <= end && All_Zero(values + begin, stride)) {
            begin += stride;
        }
        while (begin < end && values[begin] == 0.0) {
            ++begin;
        }
        while (end >= begin + stride && All_Zero(values + end - stride, stride)) {
            end -= stride;
        }
        while (end > begin && values[end - 1] == 0.0) {
            --end;
        }
        if (begin < end) {
            filling.ranges[row / ROW_GROUP].Include(begin, end);
            filling.is_finite = filling.is_finite && All_Finite(values + begin, end - begin);
        }
    }
    return filling;
}

/** Per group of columns: the rows that hold anything but zeros. */
Filling Rows_Filled(const Matrix_View& matrix) {
    Filling filling;
    filling.ranges.resize(Groups(matrix.columns, COLUMN_GROUP));
    const std::size_t whole_nb = matrix.columns / COLUMN_GROUP;
    for (std::size_t row = 0; row < matrix.rows; ++row) {
        const double* values = matrix.values + row * matrix.columns;
        for (std::size_t group = 0; group < whole_nb; ++group) {
            if (!All_Zero(values + group * COLUMN_GROUP, COLUMN_GROUP)) {
                filling.ranges[group].Include(row, row + 1);
                filling.is_finite = filling.is_finite && All_Finite(values + group * COLUMN_GROUP, COLUMN_GROUP);
            }
        }
        const std::size_t rest = whole_nb * COLUMN_GROUP;
        if (rest < matrix.columns && !All_Zero(values + rest, matrix.columns - rest)) {
            filling.ranges[whole_nb].Include(row, row + 1);
            filling.is_finite = filling.is_finite && All_Finite(values + rest, matrix.columns - rest);
        }
    }
    return filling;
}

/** Products that `left` * `right` takes when only the common ranges are multiplied. */
double Work(const Filling& left, const Filling& right) {
    double work = 0.0;
    for (const Range& rows : left.ranges) {
        for (const Range& columns : right.ranges) {
            const Range inner = Common(rows, columns);
            work += static_cast<double>(inner.end - inner.begin);
        }
    }
    return work * static_cast<double>(ROW_GROUP * COLUMN_GROUP);
}

/** A whole group of rows times a whole group of columns, over the inner range. */
void Multiply_Group(const Matrix_View& left, const Matrix_View& right, std::size_t row, std::size_t column,
                    const Range& inner, double* out) {
    using Sums = Eigen::Array<double, COLUMN_GROUP, 1>;
    using Slice = Eigen::Map<const Sums>;
    static_assert(ROW_GROUP == 4);
    const double* row_0 = left.values + row * left.columns;
    const double* row_1 = row_0 + left.columns;
    const double* row_2 = row_1 + left.columns;
    const double* row_3 = row_2 + left.columns;
    Sums sum_0 = Sums::Zero();
    Sums sum_1 = Sums::Zero();
    Sums sum_2 = Sums::Zero();
    Sums sum_3 = Sums::Zero();
    for (std::size_t i = inner.begin; i < inner.end; ++i) {
        const Slice slice(right.values + i * right.columns + column);
        sum_0 += row_0[i] * slice;
        sum_1 += row_1[i] * slice;
        sum_2 += row_2[i] * slice;
        sum_3 += row_3[i] * slice;
    }
    double* target = out + row * right.columns + column;
    for (const Sums* sum : {&sum_0, &sum_1, &sum_2, &sum_3}) {
        Eigen::Map<Sums>{target} = *sum;
        target += right.columns;
    }
}

/** The groups at the lower and right edges, which may be smaller. */
void Multiply_Edge(const Matrix_View& left, const Matrix_View& right, std::size_t row, std::size_t column,
                   const Range& inner, double* out) {
    for (std::size_t i = row; i < std::min(row + ROW_GROUP, left.rows); ++i) {
        for (std::size_t j = column; j < std::min(column + COLUMN_GROUP, right.columns); ++j) {
            double sum = 0.0;
            for (std::size_t k = inner.begin; k < inner.end; ++k) {
                sum += left.values[i * left.columns + k] * right.values[k * right.columns + j];
            }
            out[i * right.columns + j] = sum;
        }
    }
}

void Multiply_Ranges(const Matrix_View& left, const Matrix_View& right, const Filling& left_filling,
                     const Filling& right_filling, double* out) {
    for (std::size_t i = 0; i < left_filling.ranges.size(); ++i) {
        for (std::size_t j = 0; j < right_filling.ranges.size(); ++j) {
            const Range inner = Common(left_filling.ranges[i], right_filling.ranges[j]);
            const std::size_t row = i * ROW_GROUP;
            const std::size_t column = j * COLUMN_GROUP;
            if (inner.begin == inner.end) {
                continue;
            }
            if (row + ROW_GROUP <= left.rows && column + COLUMN_GROUP <= right.columns) {
                Multiply_Group(left, right, row, column, inner, out);
            } else {
                Multiply_Edge(left, right, row, column, inner, out);
            }
        }
    }
}

/** Multiplies what may differ from zero, where that is much less than all. @return false: nothing was done */
bool Multiply_Filled(const Matrix_View& left, const Matrix_View& right, double* out) {
    constexpr double worth_skipping = 0.4;  // of all products; Eigen is faster at each
    const Filling left_filling = Columns_Filled(left);
    const Filling right_filling = Rows_Filled(right);
    // Zero times infinity is not zero, so nothing may be left out then.
    if (!left_filling.is_finite || !right_filling.is_finite) {
        return false;
    }
    const double full =
        static_cast<double>(left.rows) * static_cast<double>(left.columns) * static_cast<double>(right.columns);
    if (Work(left_filling, right_filling) >= worth_skipping * full) {
        return false;
    }
    Multiply_Ranges(left, right, left_filling, right_filling, out);
    return true;
}

}  // namespace

void Transpose(const double* values, std::size_t rows, std::size_t columns, double* out) {
    // Rows that lie a power of two apart share a few places of the first cache: no more than eight at once.
    constexpr std::size_t tile_columns = 8;
    constexpr std::size_t tile_rows = 32;
    for (std::size_t row_begin = 0; row_begin < rows; row_begin += tile_rows) {
        const std::size_t row_end = std::min(row_begin + tile_rows, rows);
        for (std::size_t column_begin = 0; column_begin < columns; column_begin += tile_columns) {
            const std::size_t column_end = std::min(column_begin + tile_columns, columns);
            for (std::size_t column = column_begin; column < column_end; ++column) {
                for (std::size_t row = row_begin; row < row_end; ++row) {
                    out[column * rows + row] = values[row * columns + column];
                }
            }
        }
    }
}

bool Invert(const double* values, std::size_t order, double* out) try {
    const Const_Map matrix = Mapped({values, order, order});
    if (!matrix.allFinite()) {
        return false;
    }
    const Eigen::PartialPivLU<Eigen::MatrixXd> factors(matrix);
    if ((factors.matrixLU().diagonal().array() == 0.0).any()) {
        return false;
    }
    Map inverse(out, Signed(order), Signed(order));
    inverse = factors.inverse();
    return inverse.allFinite();
} catch (...) {
    return false;
}

bool Multiply(const Matrix_View& left, const Matrix_View& right, double* out) try {
    const Const_Map left_map = Mapped(left);
    const Const_Map right_map = Mapped(right);
    Map product(out, Signed(left.rows), Signed(right.columns));
    // Looking for zeros takes as long as a few products of each element, so that narrow matrices are not asked.
    constexpr std::size_t worth_asking = 24;  // columns of the right one
    if (right.columns >= worth_asking && Multiply_Filled(left, right, out)) {
        return true;
    }
    product.noalias() = left_map * right_map;
    return true;
} catch (...) {
    return false;
}

void Multiply_Vector(const Matrix_View& left, const double* right, double* out) {
    for (std::size_t row = 0; row < left.rows; ++row) {
        const double* values = left.values + row * left.columns;
        // Four sums in flight; one alone waits for each addition.
        double sum[4] = {};
        std::size_t column = 0;
        for (; column + 4 <= left.columns; column += 4) {
            for (std::size_t lane = 0; lane < 4; ++lane) {
                sum[lane] += values[column + lane] * right[column + lane];
            }
        }
        for (; column < left.columns; ++column) {
            sum[0] += values[column] * right[column];
        }
        out[row] = (sum[0] + sum[1]) + (sum[2] + sum[3]);
    }
}

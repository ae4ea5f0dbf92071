#include "kits/common/matrix_numeric.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
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

/** Faster than asking each element: zero times anything finite is zero, and one that is not makes the sum no number. */
bool All_Finite(const Matrix_View& view) {
    const Eigen::Map<const Eigen::ArrayXd> values(view.values, Signed(view.rows * view.columns));
    return (values * 0.0).sum() == 0.0;
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

/** Rows of the left matrix and columns of the right one are taken in groups of this many. */
constexpr std::size_t GROUP = 12;

std::size_t Groups(std::size_t count) {
    return (count + GROUP - 1) / GROUP;
}

/** Per group of rows: the columns that hold anything but zeros. */
std::vector<Range> Column_Ranges_Of_Rows(const Matrix_View& matrix) {
    std::vector<Range> ranges(Groups(matrix.rows));
    for (std::size_t row = 0; row < matrix.rows; ++row) {
        const double* values = matrix.values + row * matrix.columns;
        std::size_t begin = 0;
        std::size_t end = matrix.columns;
        while (begin < end && values[begin] == 0.0) {
            ++begin;
        }
        while (end > begin && values[end - 1] == 0.0) {
            --end;
        }
        if (begin < end) {
            ranges[row / GROUP].Include(begin, end);
        }
    }
    return ranges;
}

/** Per group of columns: the rows that hold anything but zeros. */
std::vector<Range> Row_Ranges_Of_Columns(const Matrix_View& matrix) {
    std::vector<Range> ranges(Groups(matrix.columns));
    for (std::size_t row = 0; row < matrix.rows; ++row) {
        const double* values = matrix.values + row * matrix.columns;
        for (std::size_t group = 0; group < ranges.size(); ++group) {
            const std::size_t end = std::min((group + 1) * GROUP, matrix.columns);
            double sum = 0.0;  // of absolute values, without a branch per element
            for (std::size_t column = group * GROUP; column < end; ++column) {
                sum += std::abs(values[column]);
            }
            if (sum != 0.0) {
                ranges[group].Include(row, row + 1);
            }
        }
    }
    return ranges;
}

/** Products that `left` * `right` takes when only the common ranges are multiplied. */
double Work(const std::vector<Range>& left, const std::vector<Range>& right) {
    double work = 0.0;
    for (const Range& rows : left) {
        for (const Range& columns : right) {
            const Range inner = Common(rows, columns);
            work += static_cast<double>(inner.end - inner.begin);
        }
    }
    return work * static_cast<double>(GROUP * GROUP);
}

void Multiply_Ranges(const Const_Map& left, const Const_Map& right, const std::vector<Range>& left_ranges,
                     const std::vector<Range>& right_ranges, Map& out) {
    const auto rows = static_cast<std::size_t>(left.rows());
    const auto columns = static_cast<std::size_t>(right.cols());
    for (std::size_t i = 0; i < left_ranges.size(); ++i) {
        const std::size_t row = i * GROUP;
        const std::size_t row_nb = std::min(GROUP, rows - row);
        for (std::size_t j = 0; j < right_ranges.size(); ++j) {
            const Range inner = Common(left_ranges[i], right_ranges[j]);
            if (inner.begin == inner.end) {
                continue;
            }
            // Neighbours of the same range are multiplied together.
            const std::size_t first = j;
            while (j + 1 < right_ranges.size() && Common(left_ranges[i], right_ranges[j + 1]) == inner) {
                ++j;
            }
            const std::size_t column = first * GROUP;
            const std::size_t column_nb = std::min((j + 1) * GROUP, columns) - column;
            const auto inner_nb = Signed(inner.end - inner.begin);
            out.block(Signed(row), Signed(column), Signed(row_nb), Signed(column_nb)).noalias() =
                left.block(Signed(row), Signed(inner.begin), Signed(row_nb), inner_nb) *
                right.block(Signed(inner.begin), Signed(column), inner_nb, Signed(column_nb));
        }
    }
}

}  // namespace

void Transpose(const double* values, std::size_t rows, std::size_t columns, double* out) {
    constexpr std::size_t TILE = 16;  // both tiles stay in the first cache
    for (std::size_t row_begin = 0; row_begin < rows; row_begin += TILE) {
        const std::size_t row_end = std::min(row_begin + TILE, rows);
        for (std::size_t column_begin = 0; column_begin < columns; column_begin += TILE) {
            const std::size_t column_end = std::min(column_begin + TILE, columns);
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
    // Zero times infinity is not zero, so nothing may be left out then.
    if (All_Finite(left) && All_Finite(right)) {
        const std::vector<Range> left_ranges = Column_Ranges_Of_Rows(left);
        const std::vector<Range> right_ranges = Row_Ranges_Of_Columns(right);
        constexpr double WORTH_SKIPPING = 0.6;  // many small products are slower than one large one
        const double full =
            static_cast<double>(left.rows) * static_cast<double>(left.columns) * static_cast<double>(right.columns);
        if (Work(left_ranges, right_ranges) < WORTH_SKIPPING * full) {
            Multiply_Ranges(left_map, right_map, left_ranges, right_ranges, product);
            return true;
        }
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

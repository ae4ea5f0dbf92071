#include "kits/common/matrix_band.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

/** Below, the factors of the whole matrix are made in no time. */
constexpr std::size_t ORDER_MIN = 24;
/** Elements of a working row of the band, in halves of the order. */
constexpr std::size_t NARROW = 3;

/** The largest bound that still lies so far below infinity that rounding does not matter. */
constexpr double BOUND_MAX = 1e300;

}  // namespace

Band Band_Of(const double* values, std::size_t order) {
    Band band;
    for (std::size_t row = 0; row < order; ++row) {
        const double* elements = values + row * order;
        // Only what lies beyond the band known so far can widen it.
        std::size_t column = 0;
        while (column + band.lower < row && elements[column] == 0.0) {
            ++column;
        }
        if (column + band.lower < row) {
            band.lower = row - column;
        }
        std::size_t end = order;
        while (end > row + band.upper + 1 && elements[end - 1] == 0.0) {
            --end;
        }
        if (end > row + band.upper + 1) {
            band.upper = end - 1 - row;
        }
    }
    return band;
}

bool Band_Is_Narrow(const Band& band, std::size_t order) {
    return order >= ORDER_MIN && NARROW * (2 * band.lower + band.upper + 1) <= 2 * order;
}

std::size_t Band_Factors::Below(std::size_t row) const {
    return std::min(lower, order - 1 - row);
}

std::size_t Band_Factors::Right(std::size_t row) const {
    return std::min(reach, order - 1 - row);
}

bool Band_Factors::Make(const double* values, std::size_t wanted_order, const Band& band) {
    order = wanted_order;
    lower = band.lower;
    reach = band.lower + band.upper;
    width = lower + 1 + reach;
    memory = Doubles_Raw(order * (width + lower));
    pivots.reset(new (std::nothrow) std::size_t[order]);
    if (memory == nullptr || pivots == nullptr) {
        return false;
    }
    upper_rows = memory.get();
    multipliers = upper_rows + order * width;
    Copy(values, band.upper);
    for (std::size_t step = 0; step < order; ++step) {
        if (!Step(step)) {
            return false;
        }
    }
    return true;
}

/** Fills the rows; element (row, column) is at column - row + lower of its row. */
void Band_Factors::Copy(const double* values, std::size_t upper) {
    std::fill_n(upper_rows, order * width, 0.0);
    for (std::size_t row = 0; row < order; ++row) {
        const std::size_t first = row - std::min(row, lower);
        const std::size_t last = std::min(row + upper, order - 1);
        std::copy(values + row * order + first, values + row * order + last + 1, Row(row) + (lower + first - row));
    }
}

/** Eliminates one column below the diagonal. @return false: no pivot */
bool Band_Factors::Step(std::size_t step) {
    const std::size_t below = Below(step);
    std::size_t pivot = step;
    double largest = std::abs(Row(step)[lower]);
    for (std::size_t i = 1; i <= below; ++i) {
        const double size = std::abs(Row(step + i)[lower - i]);
        if (size > largest) {
            largest = size;
            pivot = step + i;
        }
    }
    pivots[step] = pivot;
    double* const pivot_row = Row(step) + lower;
    const std::size_t right = Right(step);
    if (pivot != step) {
        std::swap_ranges(pivot_row, pivot_row + right + 1, Row(pivot) + (lower + step - pivot));
    }
    const double diagonal = pivot_row[0];
    if (diagonal == 0.0 || !std::isfinite(diagonal)) {
        return false;
    }
    for (std::size_t i = 1; i <= below; ++i) {
        double* const row = Row(step + i) + (lower - i);
        const double factor = row[0] / diagonal;
        multipliers[step * lower + i - 1] = factor;
        for (std::size_t k = 1; k <= right; ++k) {
            row[k] -= factor * pivot_row[k];
        }
    }
    return true;
}

void Band_Factors::Solve(double* values, std::size_t columns) const {
    for (std::size_t step = 0; step < order; ++step) {
        double* const here = values + step * columns;
        if (pivots[step] != step) {
            std::swap_ranges(here, here + columns, values + pivots[step] * columns);
        }
        for (std::size_t i = 1; i <= Below(step); ++i) {
            const double factor = multipliers[step * lower + i - 1];
            double* const target = here + i * columns;
            for (std::size_t k = 0; k < columns; ++k) {
                target[k] -= factor * here[k];
            }
        }
    }
    for (std::size_t row = order; row-- > 0;) {
        const double* const elements = Row(row) + lower;
        double* const here = values + row * columns;
        for (std::size_t i = 1; i <= Right(row); ++i) {
            const double* const source = here + i * columns;
            for (std::size_t k = 0; k < columns; ++k) {
                here[k] -= elements[i] * source[k];
            }
        }
        for (std::size_t k = 0; k < columns; ++k) {
            here[k] /= elements[0];
        }
    }
}

bool Band_Factors::Is_Inverse_Bounded(double* room) const {
    // The solution for ones with every term taken as positive: no sum of a row of the inverse is larger.
    std::fill_n(room, order, 1.0);
    for (std::size_t step = 0; step < order; ++step) {
        std::swap(room[step], room[pivots[step]]);
        for (std::size_t i = 1; i <= Below(step); ++i) {
            room[step + i] += std::abs(multipliers[step * lower + i - 1]) * room[step];
        }
    }
    for (std::size_t row = order; row-- > 0;) {
        const double* const elements = Row(row) + lower;
        for (std::size_t i = 1; i <= Right(row); ++i) {
            room[row] += std::abs(elements[i]) * room[row + i];
        }
        room[row] /= std::abs(elements[0]);
        if (!(room[row] < BOUND_MAX)) {
            return false;
        }
    }
    return true;
}

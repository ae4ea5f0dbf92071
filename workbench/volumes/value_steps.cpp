#include "workbench/volumes/value_steps.h"

#include <algorithm>
#include <cmath>

#include "workbench/volumes/volume.h"

namespace volumes {

namespace {

constexpr double CLOSE_SHARE = 1.0 / 64;  // of a step of QUANTISED_STEPS: the rounding of single precision
constexpr double ERROR_SHARE = 1.0 / 4;   // of the same
constexpr double GRID_SHARE = 1.0 / 16;   // of a step of the grid

/** The distance of neighbours: the mean of those gaps that are about as small as the smallest one. */
double Step_Guess(const std::vector<double>& values) {
    double smallest = values.back();
    for (std::size_t k = 1; k < values.size(); ++k) {
        smallest = std::min(smallest, values[k] - values[k - 1]);
    }
    double sum = 0.0;
    int nb = 0;
    for (std::size_t k = 1; k < values.size(); ++k) {
        const double gap = values[k] - values[k - 1];
        if (gap < 1.5 * smallest) {
            sum += gap;
            ++nb;
        }
    }
    return sum / nb;
}

}  // namespace

Value_Steps::Value_Steps(double value_range)
    : range(value_range),
      close(value_range / QUANTISED_STEPS * CLOSE_SHARE),
      is_spread(!(value_range > 0.0)),
      one(is_spread ? 0 : static_cast<std::size_t>(QUANTISED_STEPS) + 1, -1.0) {}

void Value_Steps::Take(double difference, std::size_t step) {
    double& known = one[step];
    if (known < 0.0) {
        known = difference;
    } else {
        spread = std::max(spread, std::abs(known - difference));
        is_spread = spread > close;
    }
}

std::optional<Value_Grid> Value_Steps::Grid() const {
    if (is_spread) {
        return std::nullopt;
    }
    std::vector<double> values;
    for (const double value : one) {
        // A value at the border of two steps may have come to both.
        if (value >= 0.0 && (values.empty() || value - values.back() > close)) {
            values.push_back(value);
        }
    }
    if (values.size() < 2) {
        return std::nullopt;
    }
    // Added up from gap to gap: an error of the guess grows with the gap only, not with the value.
    const double guess = Step_Guess(values);
    double step_nb = 0.0;
    for (std::size_t k = 1; k < values.size(); ++k) {
        step_nb += std::round((values[k] - values[k - 1]) / guess);
    }
    if (!(step_nb >= 1.0) || step_nb > QUANTISED_STEPS) {
        return std::nullopt;
    }
    const double step = range / step_nb;
    Value_Grid grid{static_cast<std::int32_t>(step_nb), 0.0};
    for (const double value : values) {
        grid.max_error = std::max(grid.max_error, std::abs(value - std::round(value / step) * step));
    }
    const double most = std::min(range / QUANTISED_STEPS * ERROR_SHARE, step * GRID_SHARE);
    if (grid.max_error > most) {
        return std::nullopt;
    }
    grid.max_error += spread;
    return grid;
}

std::int32_t Value_Steps::Step_Of(std::int32_t step, const Value_Grid& grid) const {
    const double value = std::max(one[static_cast<std::size_t>(step)], 0.0);
    return static_cast<std::int32_t>(std::lround(value / range * grid.step_nb));
}

}  // namespace volumes

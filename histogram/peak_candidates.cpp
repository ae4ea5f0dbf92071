#include "histogram/peak_candidates.h"

#include <algorithm>
#include <limits>

int Zero_Peak_Test(std::span<const float> derivative, int x, int gap, float slope, int& zero_before) {
    const auto n = static_cast<int>(derivative.size());
    const auto d = [&](int bin) { return derivative[static_cast<std::size_t>(bin)]; };
    if (!(d(x - 1) > 0.0F && d(x) <= 0.0F)) {
        return 0;
    }
    const int distance = x - zero_before;
    zero_before = x;
    if (!(distance > gap && gap >= 2)) {
        return 0;
    }
    bool steep_left = false;
    bool steep_right = false;
    for (int k = 1; k <= gap - 1; ++k) {
        if (const int left = x - k; left >= 0) {
            if (d(left) <= 0.0F) {
                return 0;
            }
            steep_left = steep_left || d(left) > slope;
        }
        if (const int right = x + k; right < n) {
            if (d(right) >= 0.0F) {
                return 0;
            }
            steep_right = steep_right || d(right) < -slope;
        }
    }
    if (!steep_left || !steep_right) {
        return 0;
    }
    int skip = 1;
    for (int bin = x + 1; bin < n && d(bin) < 0.0F; ++bin) {
        ++skip;
    }
    return skip;
}

Data_Peak Data_Peak_Test(std::span<const double> filtered, int x, int half, float data_min) {
    const auto n = static_cast<int>(filtered.size());
    const double value = filtered[static_cast<std::size_t>(x - 1)];
    Data_Peak peak;
    if (value < static_cast<double>(data_min)) {
        return peak;
    }
    for (int k = -half; k <= half; ++k) {
        const int bin = x - 1 + k;
        if (k == 0 || bin < 0 || bin >= n) {
            continue;
        }
        const double neighbour = filtered[static_cast<std::size_t>(bin)];
        if (neighbour > value) {
            return peak;
        }
        // Truncated to an integer; a fall beyond the integers counts as the largest one.
        const double fall = std::min(value - neighbour, static_cast<double>(std::numeric_limits<int>::max()));
        if (fall > 0.0) {  // not for what is not a number
            peak.drop = std::max(peak.drop, static_cast<int>(fall));
        }
    }
    peak.is_maximum = true;
    return peak;
}

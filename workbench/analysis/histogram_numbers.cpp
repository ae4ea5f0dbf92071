#include "workbench/analysis/histogram_numbers.h"

#include <cmath>

namespace workbench {

namespace {

/** The smallest level that at least this share of the pixels does not exceed. */
double Percentile(std::span<const std::uint32_t> counts, std::uint64_t pixels, double share, const auto& level) {
    const auto wanted = static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(pixels)));
    std::uint64_t sum = 0;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        sum += counts[bin];
        if (sum >= wanted && sum > 0) {
            return level(bin);
        }
    }
    return 0.0;
}

}  // namespace

Histogram_Numbers Histogram_Numbers_Of(std::span<const std::uint32_t> counts, const Numbers_Grid& grid,
                                       double level_offset) {
    Histogram_Numbers numbers;
    const auto level = [&](std::size_t bin) {
        return (static_cast<double>(bin) + level_offset) * grid.bin_width + grid.origin;
    };
    double sum = 0.0;
    std::uint32_t fullest = 0;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        if (counts[bin] == 0) {
            continue;
        }
        if (numbers.pixels == 0) {
            numbers.minimum = level(bin);
        }
        numbers.maximum = level(bin);
        numbers.pixels += counts[bin];
        sum += level(bin) * counts[bin];
        if (counts[bin] > fullest) {
            fullest = counts[bin];
            numbers.mode = level(bin);
        }
    }
    if (numbers.pixels == 0) {
        return numbers;
    }
    const auto pixels = static_cast<double>(numbers.pixels);
    numbers.mean = sum / pixels;
    double squares = 0.0;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        squares += counts[bin] * (level(bin) - numbers.mean) * (level(bin) - numbers.mean);
    }
    numbers.deviation = std::sqrt(squares / pixels);
    numbers.percentile_1 = Percentile(counts, numbers.pixels, 0.01, level);
    numbers.median = Percentile(counts, numbers.pixels, 0.5, level);
    numbers.percentile_99 = Percentile(counts, numbers.pixels, 0.99, level);
    return numbers;
}

}  // namespace workbench

#include "workbench/model/background.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace workbench {

namespace {

constexpr std::int64_t BINS_MOST = 4096;

/** The last bin of the lower group. */
std::size_t Otsu_Bin(std::span<const std::uint64_t> counts) {
    double total = 0.0;
    double weighted = 0.0;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        total += static_cast<double>(counts[bin]);
        weighted += static_cast<double>(counts[bin]) * static_cast<double>(bin);
    }
    double below = 0.0;
    double below_weighted = 0.0;
    double best = -1.0;
    std::size_t found = 0;
    for (std::size_t bin = 0; bin + 1 < counts.size(); ++bin) {
        below += static_cast<double>(counts[bin]);
        below_weighted += static_cast<double>(counts[bin]) * static_cast<double>(bin);
        const double above = total - below;
        if (counts[bin] == 0 || below == 0.0 || above == 0.0) {
            continue;  // an empty bin parts as the one before it
        }
        const double distance = below_weighted / below - (weighted - below_weighted) / above;
        const double between = below * above * distance * distance;
        if (between > best) {
            best = between;
            found = bin;
        }
    }
    return found;
}

}  // namespace

std::optional<double> Background_Threshold(const volumes::Volume& volume) {
    if (volume.color || volume.level_min >= volume.level_max || volume.levels.empty()) {
        return std::nullopt;
    }
    const std::int64_t level_nb = std::int64_t{volume.level_max} - volume.level_min + 1;
    const std::int64_t levels_per_bin = (level_nb + BINS_MOST - 1) / BINS_MOST;
    std::vector<std::uint64_t> counts(static_cast<std::size_t>((level_nb + levels_per_bin - 1) / levels_per_bin));
    const bool is_falling = volume.slope < 0.0;  // the darkest grey value is the largest level
    const std::size_t last = counts.size() - 1;
    volume.levels.Visit([&](const auto& levels) {
        for (const std::int32_t level : levels) {
            if (level != volumes::LEVEL_OUTSIDE) {
                const auto bin = static_cast<std::size_t>((std::int64_t{level} - volume.level_min) / levels_per_bin);
                ++counts[is_falling ? last - bin : bin];
            }
        }
    });
    const std::size_t bin = Otsu_Bin(counts);
    const std::int64_t first = volume.level_min;
    const auto at = static_cast<std::int64_t>(is_falling ? last - bin : bin);
    // The level of the bin with the largest grey value.
    const std::int64_t level = is_falling
                                   ? first + at * levels_per_bin
                                   : std::min<std::int64_t>(first + (at + 1) * levels_per_bin - 1, volume.level_max);
    return static_cast<double>(level) * volume.slope + volume.intercept;
}

void Background_Leave_Out(const volumes::Level_View& levels, int width, int height, double slope, double intercept,
                          double threshold, std::span<unsigned char> mask) {
    std::ranges::fill(mask, static_cast<unsigned char>(1));
    const auto nx = static_cast<std::size_t>(width);
    std::vector<std::size_t> open;  // pixels of the background whose neighbours are not looked at yet
    const auto take = [&](std::size_t at) {
        const std::int32_t level = levels[at];
        if (mask[at] != 0 && (level == volumes::LEVEL_OUTSIDE || level * slope + intercept <= threshold)) {
            mask[at] = 0;
            open.push_back(at);
        }
    };
    for (std::size_t x = 0; x < nx && height > 0; ++x) {
        take(x);
        take((static_cast<std::size_t>(height) - 1) * nx + x);
    }
    for (std::size_t y = 0; y < static_cast<std::size_t>(height) && width > 0; ++y) {
        take(y * nx);
        take(y * nx + nx - 1);
    }
    while (!open.empty()) {
        const std::size_t at = open.back();
        open.pop_back();
        const std::size_t x = at % nx;
        if (x > 0) {
            take(at - 1);
        }
        if (x + 1 < nx) {
            take(at + 1);
        }
        if (at >= nx) {
            take(at - nx);
        }
        if (at + nx < levels.size()) {
            take(at + nx);
        }
    }
}

}  // namespace workbench

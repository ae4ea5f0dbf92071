#include "workbench/model/slice_smoothing.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "workbench/volumes/volume.h"

namespace workbench {

namespace {

constexpr std::int32_t NEIGHBOUR_NB = 9;

/** Division that rounds down for negative numbers too. */
std::int64_t Floor_Divided(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/** The same where some pixels are outside: they do not count in their neighbours' means, and stay outside. */
void Smooth_Inside(std::span<const std::int32_t> levels, int width, int height, std::int32_t steps,
                   std::span<std::int32_t> smooth) {
    const auto at = [&](int x, int y) {
        const auto row = static_cast<std::size_t>(std::clamp(y, 0, height - 1)) * static_cast<std::size_t>(width);
        return row + static_cast<std::size_t>(std::clamp(x, 0, width - 1));
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::int64_t sum = 0;
            std::int64_t count = 0;
            for (int neighbour = 0; neighbour < NEIGHBOUR_NB; ++neighbour) {
                const std::int32_t level = levels[at(x + neighbour % 3 - 1, y + neighbour / 3 - 1)];
                sum += level != volumes::LEVEL_OUTSIDE ? level : 0;
                count += level != volumes::LEVEL_OUTSIDE ? 1 : 0;
            }
            smooth[at(x, y)] = levels[at(x, y)] == volumes::LEVEL_OUTSIDE
                                   ? volumes::LEVEL_OUTSIDE
                                   : static_cast<std::int32_t>(Floor_Divided(sum * steps, count));
        }
    }
}

}  // namespace

std::int32_t Smoothing_Steps(std::int32_t level_min, std::int32_t level_max) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max() / NEIGHBOUR_NB;
    return level_min >= -most && level_max <= most ? NEIGHBOUR_NB : 1;
}

void Slice_Smooth(std::span<const std::int32_t> levels, int width, int height, std::int32_t steps,
                  std::span<std::int32_t> smooth) {
    const auto nx = static_cast<std::size_t>(width);
    const auto ny = static_cast<std::size_t>(height);
    if (std::ranges::find(levels, volumes::LEVEL_OUTSIDE) != levels.end()) {
        return Smooth_Inside(levels, width, height, steps, smooth);
    }
    std::vector<std::int64_t> column_sums(nx);
    for (std::size_t y = 0; y < ny; ++y) {
        const std::int32_t* above = levels.data() + (y > 0 ? y - 1 : 0) * nx;
        const std::int32_t* here = levels.data() + y * nx;
        const std::int32_t* below = levels.data() + std::min(y + 1, ny - 1) * nx;
        for (std::size_t x = 0; x < nx; ++x) {
            column_sums[x] = static_cast<std::int64_t>(above[x]) + here[x] + below[x];
        }
        for (std::size_t x = 0; x < nx; ++x) {
            const std::int64_t sum =
                column_sums[x > 0 ? x - 1 : 0] + column_sums[x] + column_sums[std::min(x + 1, nx - 1)];
            smooth[y * nx + x] = static_cast<std::int32_t>(Floor_Divided(sum * steps, NEIGHBOUR_NB));
        }
    }
}

}  // namespace workbench

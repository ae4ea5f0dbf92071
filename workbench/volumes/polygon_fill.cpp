#include "workbench/volumes/polygon_fill.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <vector>

namespace volumes {

// Scan lines: an edge crosses the rows from its upper end, included, to its lower one, excluded.
void Polygon_Toggle(std::span<const Picture_Point> points, std::int32_t width, std::int32_t height,
                    std::span<std::uint8_t> pixels) {
    std::vector<std::vector<double>> crossings(static_cast<std::size_t>(height));
    for (std::size_t at = 0; at < points.size(); ++at) {
        const Picture_Point& first = points[at];
        const Picture_Point& second = points[(at + 1) % points.size()];
        const auto& [upper, lower] = first[1] < second[1] ? std::tie(first, second) : std::tie(second, first);
        if (!std::isfinite(first[0] + first[1] + second[0] + second[1]) || upper[1] == lower[1]) {
            continue;
        }
        const double top = std::max(0.0, std::ceil(upper[1]));
        const double bottom = std::min(static_cast<double>(height), std::ceil(lower[1]));  // excluded
        for (double row = top; row < bottom; row += 1.0) {
            const double share = (row - upper[1]) / (lower[1] - upper[1]);
            crossings[static_cast<std::size_t>(row)].push_back(upper[0] + share * (lower[0] - upper[0]));
        }
    }
    for (std::size_t row = 0; row < crossings.size(); ++row) {
        std::vector<double>& here = crossings[row];
        std::ranges::sort(here);
        for (std::size_t at = 0; at + 1 < here.size(); at += 2) {
            const double begin = std::clamp(std::ceil(here[at]), 0.0, static_cast<double>(width));
            const double end = std::clamp(std::ceil(here[at + 1]), 0.0, static_cast<double>(width));  // excluded
            for (auto column = static_cast<std::size_t>(begin); column < static_cast<std::size_t>(end); ++column) {
                pixels[row * static_cast<std::size_t>(width) + column] ^= 1U;
            }
        }
    }
}

}  // namespace volumes

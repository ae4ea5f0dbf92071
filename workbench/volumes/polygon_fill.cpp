#include "workbench/volumes/polygon_fill.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <vector>

namespace volumes {

// Scan lines: an edge crosses the rows from its upper end, included, to its lower one, excluded. Every crossing turns
// over all that follows in its row.
void Polygon_Toggle(std::span<const Picture_Point> points, std::int32_t width, std::int32_t height,
                    std::span<std::uint8_t> pixels) {
    const std::size_t columns = static_cast<std::size_t>(width) + 1;
    std::vector<std::uint8_t> turns(columns * static_cast<std::size_t>(height));
    const bool is_finite = std::ranges::all_of(
        points, [](const Picture_Point& point) { return std::isfinite(point[0]) && std::isfinite(point[1]); });
    for (std::size_t at = 0; is_finite && at < points.size(); ++at) {
        const Picture_Point& first = points[at];
        const Picture_Point& second = points[(at + 1) % points.size()];
        const auto& [upper, lower] = first[1] < second[1] ? std::tie(first, second) : std::tie(second, first);
        const double top = std::max(0.0, std::ceil(upper[1]));
        const double bottom = std::min(static_cast<double>(height), std::ceil(lower[1]));  // excluded
        for (double row = top; row < bottom; row += 1.0) {
            const double share = (row - upper[1]) / (lower[1] - upper[1]);
            const double crossing = upper[0] + share * (lower[0] - upper[0]);
            const double column = std::clamp(std::ceil(crossing), 0.0, static_cast<double>(width));
            turns[static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column)] ^= 1U;
        }
    }
    for (std::size_t row = 0; row < static_cast<std::size_t>(height); ++row) {
        std::uint8_t is_inside = 0;
        for (std::size_t column = 0; column + 1 < columns; ++column) {
            is_inside ^= turns[row * columns + column];
            pixels[row * (columns - 1) + column] ^= is_inside;
        }
    }
}

}  // namespace volumes

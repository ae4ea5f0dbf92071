/** Which pixels a polygon encloses. */
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace volumes {

/** Column and row, of which whole numbers are the centres of pixels. */
using Picture_Point = std::array<double, 2>;

/** Turns over every pixel whose centre the polygon encloses, by the even-odd rule: of several polygons given one after
 *  the other those pixels are 1 that an odd number of them encloses. A centre on an edge belongs to the polygon on the
 *  side of rising columns and rows, so that polygons that share an edge share no pixel.
 *  @param points of the polygon, closed from the last to the first; numbers that are none enclose nothing
 *  @param pixels 0 or 1, width * height of them, rows one after the other; what lies beyond is cut off */
void Polygon_Toggle(std::span<const Picture_Point> points, std::int32_t width, std::int32_t height,
                    std::span<std::uint8_t> pixels);

}  // namespace volumes

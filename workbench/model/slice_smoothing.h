/** Means over 3 x 3 pixels of a slice: less noise, and levels between the stored ones. Pure code. */
#pragma once

#include <cstdint>
#include <span>

namespace workbench {

/** Into how many steps a stored level is cut: 9, so that the mean of nine levels is a whole number of steps; 1 where
 *  levels are too large for that. */
std::int32_t Smoothing_Steps(std::int32_t level_min, std::int32_t level_max);

/** Writes the mean of every pixel and its eight neighbours, in steps (see above), rounded down. Beyond an edge the
 *  nearest pixel stands for its neighbour. Pixels of LEVEL_OUTSIDE stay, and count in no mean. @param levels, smooth
 *  width * height values, x fastest; not the same memory
 */
void Slice_Smooth(std::span<const std::int32_t> levels, int width, int height, std::int32_t steps,
                  std::span<std::int32_t> smooth);

}  // namespace workbench

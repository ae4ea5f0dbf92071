/** Masks of round brushes: which pixels around the pointer a brush covers.
 *
 *  A mask of radius R has 2R + 1 rows of 2R + 1 bytes; byte (row y, column x) is 1 when the brush covers the point
 *  (x - R, y - R) relative to its centre, else 0. The rows belong to the caller and may stand anywhere in memory.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/** Rows of a mask; their number, 2R + 1, is also the length of each in bytes. An even number is no mask. */
using Brush_Mask_Rows = std::span<unsigned char* const>;

/** A brush smaller than this, in mask pixels, is a single pixel. */
inline constexpr std::uint16_t BRUSH_DISC_MIN = 2;

/** The square that distances from the centre are compared with.
 *  It is deliberately kept in a signed 16-bit number: sizes of 182 and more give a wrapped bound (182 to 256 an empty
 *  disc, 257 a small one again), and hosts count on getting these masks. */
constexpr std::int16_t Brush_Mask_Square(std::uint16_t size) {
    return static_cast<std::int16_t>(static_cast<std::uint32_t>(size) * size);
}

/** True when the mask has an odd number of rows and none of them is missing. */
bool Brush_Mask_Complete(Brush_Mask_Rows rows);

/** Sets every byte to 0. @param rows a complete mask */
void Brush_Mask_Clear(Brush_Mask_Rows rows);

/** Sets the bytes of a brush to 1: below BRUSH_DISC_MIN the centre alone, otherwise every point whose squared distance
 *  from the centre is smaller than Brush_Mask_Square. Cut at the mask; other bytes are left alone.
 *  @param rows a complete mask */
void Brush_Mask_Fill(Brush_Mask_Rows rows, std::uint16_t size);

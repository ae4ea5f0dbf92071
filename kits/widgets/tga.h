/** Reader of TGA pictures: true colour of 24 or 32 bits, plain or run-length coded. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/** Pixels 0xAARRGGBB, rows from the top. 24-bit pictures, and 32-bit ones without any opacity, are opaque. */
struct Tga_Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

inline constexpr int TGA_SIDE_MAX = 4096;  ///< pixels; larger pictures are refused

/** @return false for anything that is not a whole picture of the forms above; `picture` is empty then
 *  @throw std::bad_alloc without memory */
bool Tga_Read(std::span<const std::uint8_t> file, Tga_Picture* picture);

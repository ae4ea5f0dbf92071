/** Pictures as PNG files. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace volumes {

/** Pixels 0x00RRGGBB, rows from the top. */
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;  ///< width * height

    bool Is_Empty() const { return width <= 0 || height <= 0; }
};

/** The bytes of a PNG file: 8 bits of red, green and blue each. @param picture not empty @throw std::bad_alloc */
std::vector<std::uint8_t> Png_Encode(const Picture& picture);

/** Writes beside the file and puts the new one in its place in one step: it is never half written.
 *  @return empty, or what is wrong, to follow the file's name: then the file is as it was */
std::string Png_Write(const std::filesystem::path& file, const Picture& picture);

}  // namespace volumes

#include "kits/widgets/tga.h"

#include <algorithm>

namespace {

constexpr std::size_t HEADER_SIZE = 18;
constexpr std::uint8_t TYPE_PLAIN = 2;
constexpr std::uint8_t TYPE_RUN_LENGTH = 10;
constexpr std::uint8_t FROM_RIGHT = 0x10;  // bits of the descriptor byte
constexpr std::uint8_t FROM_TOP = 0x20;
constexpr std::uint8_t RUN_BIT = 0x80;  // of a packet's first byte

struct Header {
    std::uint8_t type = 0;
    int width = 0;
    int height = 0;
    std::size_t pixel_bytes = 0;
    std::uint8_t descriptor = 0;
    std::size_t pixels_at = 0;
};

std::uint16_t Little_16(std::span<const std::uint8_t> file, std::size_t at) {
    return static_cast<std::uint16_t>(file[at] | (file[at + 1] << 8U));
}

bool Header_Read(std::span<const std::uint8_t> file, Header* header) {
    if (file.size() < HEADER_SIZE) {
        return false;
    }
    header->type = file[2];
    header->width = Little_16(file, 12);
    header->height = Little_16(file, 14);
    header->pixel_bytes = file[16] / 8U;
    header->descriptor = file[17];
    const std::size_t map_bytes = file[1] == 0 ? 0 : Little_16(file, 5) * ((file[7] + 7U) / 8U);
    header->pixels_at = HEADER_SIZE + file[0] + map_bytes;
    return (header->type == TYPE_PLAIN || header->type == TYPE_RUN_LENGTH) && (file[16] == 24 || file[16] == 32) &&
           header->width > 0 && header->height > 0 && header->width <= TGA_SIDE_MAX && header->height <= TGA_SIDE_MAX &&
           header->pixels_at <= file.size();
}

std::uint32_t Pixel_Read(const std::uint8_t* bytes, std::size_t nb) {
    const std::uint32_t alpha = nb == 4 ? bytes[3] : 0xFFU;
    return (alpha << 24U) | (std::uint32_t{bytes[2]} << 16U) | (std::uint32_t{bytes[1]} << 8U) | bytes[0];
}

/** Pixels in the order of the file. */
bool Pixels_Read(std::span<const std::uint8_t> bytes, const Header& header, std::vector<std::uint32_t>& pixels) {
    const std::size_t size = header.pixel_bytes;
    std::size_t at = 0;
    if (header.type == TYPE_PLAIN) {
        if (bytes.size() / size < pixels.size()) {
            return false;
        }
        for (std::uint32_t& pixel : pixels) {
            pixel = Pixel_Read(&bytes[at], size);
            at += size;
        }
        return true;
    }
    for (std::size_t done = 0; done < pixels.size();) {
        if (at >= bytes.size()) {
            return false;
        }
        const std::uint8_t packet = bytes[at++];
        const std::size_t nb = (packet & 0x7FU) + 1U;
        const bool run = (packet & RUN_BIT) != 0;
        if (nb > pixels.size() - done || bytes.size() - at < (run ? size : nb * size)) {
            return false;
        }
        for (std::size_t i = 0; i < nb; i++) {
            pixels[done++] = Pixel_Read(&bytes[at], size);
            at += run ? 0 : size;
        }
        at += run ? size : 0;
    }
    return true;
}

}  // namespace

bool Tga_Read(std::span<const std::uint8_t> file, Tga_Picture* picture) {
    *picture = {};
    Header header;
    if (!Header_Read(file, &header)) {
        return false;
    }
    const std::size_t nb = static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.height);
    // A run packet makes at most 128 pixels: a short file cannot ask for a large picture.
    constexpr std::size_t run_max = 128;
    if ((file.size() - header.pixels_at) * run_max < nb) {
        return false;
    }
    std::vector<std::uint32_t> pixels(nb);
    if (!Pixels_Read(file.subspan(header.pixels_at), header, pixels)) {
        return false;
    }
    const auto row = [&](int y) { return pixels.begin() + static_cast<std::ptrdiff_t>(y) * header.width; };
    if ((header.descriptor & FROM_TOP) == 0) {
        for (int y = 0; y < header.height / 2; y++) {
            std::swap_ranges(row(y), row(y) + header.width, row(header.height - 1 - y));
        }
    }
    if ((header.descriptor & FROM_RIGHT) != 0) {
        for (int y = 0; y < header.height; y++) {
            std::reverse(row(y), row(y) + header.width);
        }
    }
    if (std::none_of(pixels.begin(), pixels.end(), [](std::uint32_t pixel) { return (pixel >> 24U) != 0; })) {
        for (std::uint32_t& pixel : pixels) {
            pixel |= 0xFF000000U;
        }
    }
    picture->width = header.width;
    picture->height = header.height;
    picture->pixels = std::move(pixels);
    return true;
}

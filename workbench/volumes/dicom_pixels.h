/** From stored pixel bytes to levels. */
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace volumes {

/** How the pixels of a frame are stored. */
struct Pixel_Format {
    enum class Kind { Grey, Grey_Inverted, Rgb, Ybr_Full, Ybr_Full_422, Palette };
    Kind kind = Kind::Grey;
    std::int32_t width = 0;           ///< 1 .. 65535
    std::int32_t height = 0;          ///< 1 .. 65535
    std::int32_t bits_allocated = 0;  ///< 8, 16 or 32; floating-point pixels: 32 or 64
    std::int32_t bits_stored = 0;     ///< 1 .. bits_allocated
    std::int32_t high_bit = 0;        ///< bits_stored - 1 .. bits_allocated - 1
    bool is_signed = false;
    bool is_planar = false;  ///< colours: all red, then all green, then all blue
    bool is_bits = false;    ///< stored eight pixels to a byte, without gaps between frames; unpacked to bytes

    bool Is_Color() const { return kind != Kind::Grey && kind != Kind::Grey_Inverted; }
    int Sample_Nb() const { return Is_Color() && kind != Kind::Palette ? 3 : 1; }
    /** Bytes of a frame, uncompressed. */
    std::uint64_t Frame_Size() const;
    /** Bytes of frames as stored without a codec. */
    std::uint64_t Stored_Size(std::uint64_t frames) const;
};

/** A colour palette: packed colours of the stored values first, first + 1 ...; values outside take the nearest. */
struct Palette {
    std::int32_t first = 0;
    std::vector<std::int32_t> colors;
};

/** Decodes a frame.
 *  @param bytes Frame_Size() bytes, samples of more than one byte in little-endian order
 *  @param palette at least one colour when the kind is PALETTE
 *  @param levels width * height values. 32-bit values may be beyond what a level holds: they are returned as stored,
 *  sign included, and the caller brings them into range */
void Frame_Decode(const Pixel_Format& format, std::span<const std::uint8_t> bytes, const Palette& palette,
                  std::span<std::int64_t> levels);

/** The same for pixels that are grey and whose values fit into levels as they are. */
void Levels_Decode_Grey(const Pixel_Format& format, std::span<const std::uint8_t> bytes,
                        std::span<std::int32_t> levels);

}  // namespace volumes

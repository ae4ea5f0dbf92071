/** The parts of a JPEG 2000 stream, before any of it is decoded. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace volumes {

/** How a codestream begins, and how a file around one does. */
inline constexpr std::array<std::uint8_t, 4> JPEG_2000_MARK = {0xFF, 0x4F, 0xFF, 0x51};
inline constexpr std::array<std::uint8_t, 12> JPEG_2000_FILE_MARK = {0,   0,   0,    12,   'j',  'P',
                                                                     ' ', ' ', 0x0D, 0x0A, 0x87, 0x0A};

/** A codestream that a decoder may be given: what it announces is in proportion to its length. */
struct Jpeg_2000_Stream {
    std::span<const std::uint8_t> bytes;  ///< of the codestream, what follows in the same frame or box included
    bool is_file = false;                 ///< there is a JP2 file around it
    bool has_sound_rest = true;           ///< behind its box are whole other boxes, filling, or nothing
    std::uint32_t tile_nb = 0;            ///< 1 .. 4096
};

/** Finds the codestream and reads its sizes. @return no value: there is none, or it has no or more than three
 * components, a side above 65535, too many tiles, or more pixels than a stream of its length is believed to have */
std::optional<Jpeg_2000_Stream> Jpeg_2000_Stream_Find(std::span<const std::uint8_t> packed);

/** Whether every tile has all of its parts, and the end mark follows the last one and but filling follows that. */
bool Jpeg_2000_Is_Whole(const Jpeg_2000_Stream& stream);

}  // namespace volumes

/** Comments in the streams of compressed pictures, and what else such a stream carries besides its picture. Pure code.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace workbench::archive {

/** Whether a stream begins as one of JPEG or JPEG-LS. */
bool Is_Jpeg_Start(std::span<const std::uint8_t> stream);
/** Whether a stream begins as one of JPEG 2000 without a file around it. */
bool Is_Jpeg_2000_Start(std::span<const std::uint8_t> stream);

/** Writes zeros over the comments and the segments of programs of a JPEG or JPEG-LS stream; those that say how colours
 *  are meant stay. Lengths and places stay as they are. @return where the picture ends; no value: it is no such stream,
 *  and may be changed in part */
std::optional<std::size_t> Jpeg_Comments_Blank(std::span<std::uint8_t> stream);
/** The same of a JPEG 2000 stream without a file around it. */
std::optional<std::size_t> Jpeg_2000_Comments_Blank(std::span<std::uint8_t> stream);

/** What run-length coded pictures of an object must have. */
struct Run_Length_Form {
    std::size_t segment_nb = 0;  // in each: one for each byte of a pixel
    std::size_t pixel_nb = 0;    // bytes of each segment when it is unpacked
};

/** Blanks what of a run-length coded picture (PackBits, PS3.5 Annex G) is in none of its runs: the places of the header
 *  that no segment has, and what follows each segment. @return false: it is none, and may be changed in part */
bool Run_Length_Blank(std::span<std::uint8_t> picture, const Run_Length_Form& form);

}  // namespace workbench::archive

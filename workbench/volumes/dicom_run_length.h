/** Decodes frames that are stored run-length compressed. */
#pragma once

#include <cstdint>
#include <span>

#include "workbench/volumes/dicom_pixels.h"

namespace volumes {

/** Unpacks one frame: a table of up to 15 segments, each holding one byte of every sample, the highest byte first.
 *  @param packed the frame as stored, whatever it holds
 *  @param bytes Frame_Size() bytes, filled as an uncompressed frame of the format is: little-endian samples
 *  @return what is wrong, null when nothing is; `bytes` then holds anything */
const char* Run_Length_Decode(const Pixel_Format& format, std::span<const std::uint8_t> packed,
                              std::span<std::uint8_t> bytes);

}  // namespace volumes

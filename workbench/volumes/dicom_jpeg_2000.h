/** Decodes single frames of JPEG 2000. Used by dicom_codec.cpp, which says what the parameters are. */
#pragma once

#include <array>

#include "workbench/volumes/dicom_codec.h"

namespace volumes {

/** How a codestream begins, and how a file around one does. */
inline constexpr std::array<std::uint8_t, 4> JPEG_2000_MARK = {0xFF, 0x4F, 0xFF, 0x51};
inline constexpr std::array<std::uint8_t, 12> JPEG_2000_FILE_MARK = {0,   0,   0,    12,   'j',  'P',
                                                                     ' ', ' ', 0x0D, 0x0A, 0x87, 0x0A};

std::optional<Coded_Format> Jpeg_2000_Format_Read(std::span<const std::uint8_t> packed);

Decode_Report Jpeg_2000_Decode(const Coded_Format& format, std::span<const std::uint8_t> packed,
                               std::span<std::uint8_t> bytes);

}  // namespace volumes

/** Decodes single frames of JPEG 2000. Used by dicom_codec.cpp, which says what the parameters are. */
#pragma once

#include "workbench/volumes/dicom_codec.h"

namespace volumes {

std::optional<Coded_Format> Jpeg_2000_Format_Read(std::span<const std::uint8_t> packed);

Decode_Report Jpeg_2000_Decode(const Coded_Format& format, std::span<const std::uint8_t> packed,
                               std::span<std::uint8_t> bytes);

}  // namespace volumes

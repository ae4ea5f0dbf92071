/** Decodes single frames of JPEG and JPEG-LS. Used by dicom_codec.cpp, which says what the parameters are. */
#pragma once

#include "workbench/volumes/dicom_codec.h"

namespace volumes {

/** From the markers before the first scan. @param is_ls JPEG-LS, not JPEG */
std::optional<Coded_Format> Jpeg_Format_Read(std::span<const std::uint8_t> packed, bool is_ls);

/** Where a stream ends: behind its end marker. 0: it has none. */
std::size_t Jpeg_End(std::span<const std::uint8_t> packed, bool is_ls);

Decode_Report Jpeg_Decode(const Coded_Format& format, bool is_ybr, std::span<const std::uint8_t> packed,
                          std::span<std::uint8_t> bytes);
Decode_Report Jpeg_Ls_Decode(const Coded_Format& format, std::span<const std::uint8_t> packed,
                             std::span<std::uint8_t> bytes);

}  // namespace volumes

/** Decodes frames that are compressed by a codec: JPEG, JPEG-LS, JPEG 2000. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcxfer.h"

namespace volumes {

enum class Frame_Codec {
    None,       ///< stored as it is, run-length, or in a way that is not decoded
    Jpeg,       ///< baseline, extended, progressive, lossless
    Jpeg_Ls,    ///< lossless and near-lossless
    Jpeg_2000,  ///< reversible and irreversible; bare or in a JP2 file
};

Frame_Codec Frame_Codec_Of(E_TransferSyntax syntax);

/** Whether bytes begin as a frame does. */
bool Is_Coded_Frame(Frame_Codec codec, std::span<const std::uint8_t> packed);

/** What a compressed frame says of itself. */
struct Coded_Format {
    std::int32_t width = 0;      ///< 1 .. 65535
    std::int32_t height = 0;     ///< 1 .. 65535
    std::int32_t sample_nb = 0;  ///< of a pixel: 1 or 3
    std::int32_t bits = 0;       ///< of a sample: 1 .. 32
    bool is_signed = false;      ///< JPEG 2000 alone says it

    /** Of a decoded sample: 1, 2 or 4. */
    std::int32_t Byte_Nb() const { return bits <= 8 ? 1 : bits <= 16 ? 2 : 4; }
    /** Bytes of a decoded frame. */
    std::uint64_t Frame_Size() const;
    bool operator==(const Coded_Format&) const = default;
};

/** Reads the beginning of a frame; no value when there is none that can be decoded. Decodes no pixel. */
std::optional<Coded_Format> Coded_Format_Read(Frame_Codec codec, std::span<const std::uint8_t> packed);

/** Why Coded_Format_Read has no value. */
inline constexpr const char* CODED_BEGINNING_WRONG = "its beginning is damaged or of a form that is not read";

/** How decoding went. */
struct Decode_Report {
    std::string error;          ///< why there is no picture, without the frame's name; empty: there is one
    bool has_warnings = false;  ///< the codec met errors, or the data are not of the length that it read
};

/** Decodes one frame; callable on several threads at once. Never throws but std::bad_alloc.
 *  @param is_ybr the samples are luminance and colour differences: JPEG's become red, green, blue
 *  @param format as Coded_Format_Read gave it for this frame, or for another: then a difference is an error
 *  @param packed whatever it holds
 *  @param bytes format.Frame_Size() bytes: filled pixel by pixel, samples in little-endian order; signed ones of JPEG
 *  2000 in two's complement of `bits` bits */
Decode_Report Coded_Frame_Decode(Frame_Codec codec, const Coded_Format& format, bool is_ybr,
                                 std::span<const std::uint8_t> packed, std::span<std::uint8_t> bytes);

}  // namespace volumes

#include "workbench/volumes/dicom_codec.h"

#include <algorithm>
#include <array>
#include <limits>

#include "workbench/volumes/dicom_jpeg.h"
#include "workbench/volumes/dicom_jpeg_2000.h"
#include "workbench/volumes/dicom_jpeg_2000_stream.h"

namespace volumes {

namespace {

constexpr std::uint64_t FRAME_SIZE_MOST =
    std::numeric_limits<std::uint32_t>::max() - 1U;  // bytes: what codecs count in

}  // namespace

Frame_Codec Frame_Codec_Of(E_TransferSyntax syntax) {
    switch (syntax) {
        case EXS_JPEGProcess1:
        case EXS_JPEGProcess2_4:
        case EXS_JPEGProcess6_8:
        case EXS_JPEGProcess10_12:
        case EXS_JPEGProcess14:
        case EXS_JPEGProcess14SV1:
            return Frame_Codec::Jpeg;
        case EXS_JPEGLSLossless:
        case EXS_JPEGLSLossy:
            return Frame_Codec::Jpeg_Ls;
        case EXS_JPEG2000LosslessOnly:
        case EXS_JPEG2000:
            return Frame_Codec::Jpeg_2000;
        default:
            return Frame_Codec::None;
    }
}

bool Is_Coded_Frame(Frame_Codec codec, std::span<const std::uint8_t> packed) {
    constexpr std::array<std::uint8_t, 3> jpeg = {0xFF, 0xD8, 0xFF};
    const auto begins_with = [&](std::span<const std::uint8_t> mark) {
        return packed.size() >= mark.size() && std::ranges::equal(packed.first(mark.size()), mark);
    };
    return codec == Frame_Codec::Jpeg_2000 ? begins_with(JPEG_2000_MARK) || begins_with(JPEG_2000_FILE_MARK)
                                           : codec != Frame_Codec::None && begins_with(jpeg);
}

std::uint64_t Coded_Format::Frame_Size() const {
    return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) *
           static_cast<std::uint64_t>(sample_nb) * static_cast<std::uint64_t>(Byte_Nb());
}

std::optional<Coded_Format> Coded_Format_Read(Frame_Codec codec, std::span<const std::uint8_t> packed) {
    std::optional<Coded_Format> format;
    switch (codec) {
        case Frame_Codec::Jpeg:
        case Frame_Codec::Jpeg_Ls:
            format = Jpeg_Format_Read(packed, codec == Frame_Codec::Jpeg_Ls);
            break;
        case Frame_Codec::Jpeg_2000:
            format = Jpeg_2000_Format_Read(packed);
            break;
        default:
            break;
    }
    const bool is_usable = format && format->Frame_Size() > 0 && format->Frame_Size() <= FRAME_SIZE_MOST &&
                           (format->sample_nb == 1 || format->sample_nb == 3);
    return is_usable ? format : std::nullopt;
}

Decode_Report Coded_Frame_Decode(Frame_Codec codec, const Coded_Format& format, bool is_ybr,
                                 std::span<const std::uint8_t> packed, std::span<std::uint8_t> bytes) {
    // Two frames of one file may differ, and a decoder believes its own header.
    const std::optional<Coded_Format> own = Coded_Format_Read(codec, packed);
    if (!own) {
        return {CODED_BEGINNING_WRONG, false};
    }
    if (*own != format || bytes.size() != format.Frame_Size()) {
        return {"another size or depth than the file says", false};
    }
    switch (codec) {
        case Frame_Codec::Jpeg:
            return Jpeg_Decode(format, is_ybr, packed, bytes);
        case Frame_Codec::Jpeg_Ls:
            return Jpeg_Ls_Decode(format, packed, bytes);
        default:
            return Jpeg_2000_Decode(format, packed, bytes);
    }
}

}  // namespace volumes

#include "workbench/volumes/dicom_jpeg.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "dcmtk/dcmjpeg/djcparam.h"
#include "dcmtk/dcmjpeg/djdijg12.h"
#include "dcmtk/dcmjpeg/djdijg16.h"
#include "dcmtk/dcmjpeg/djdijg8.h"
#include "dcmtk/dcmjpls/djcodecd.h"
#include "dcmtk/dcmjpls/djcparam.h"
#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/dicom_data_set.h"

namespace volumes {

namespace {

// Second bytes of markers, the first being 0xFF.
constexpr std::uint8_t MARK = 0xFF;
constexpr std::uint8_t STUFFED = 0x00;          // no marker: the byte 0xFF itself
constexpr std::uint8_t FIRST_LS_MARKER = 0x80;  // JPEG-LS: bytes below follow 0xFF as data
constexpr std::uint8_t TEMPORARY = 0x01;
constexpr std::uint8_t RESTART_FIRST = 0xD0;
constexpr std::uint8_t RESTART_LAST = 0xD7;
constexpr std::uint8_t START_OF_IMAGE = 0xD8;
constexpr std::uint8_t END_OF_IMAGE = 0xD9;
constexpr std::uint8_t START_OF_SCAN = 0xDA;
constexpr std::uint8_t FRAME_FIRST = 0xC0;
constexpr std::uint8_t FRAME_LAST = 0xCF;
constexpr std::uint8_t FRAME_LS = 0xF7;

bool Is_Alone(std::uint8_t marker) {
    return marker == TEMPORARY || (marker >= RESTART_FIRST && marker <= START_OF_IMAGE);
}

/** Whether a marker begins the description of a frame: not every one of its row does. */
bool Is_Frame(std::uint8_t marker, bool is_ls) {
    constexpr std::uint8_t tables[] = {0xC4, 0xC8, 0xCC};
    return is_ls
               ? marker == FRAME_LS
               : marker >= FRAME_FIRST && marker <= FRAME_LAST && std::ranges::find(tables, marker) == std::end(tables);
}

/** Goes through a stream marker by marker. */
class Markers {
  public:
    Markers(std::span<const std::uint8_t> packed, bool is_jpeg_ls) : bytes(packed), is_ls(is_jpeg_ls) {}

    /** The next marker, the data of a scan passed over; 0: there is none. */
    std::uint8_t Next() {
        while (at + 1 < bytes.size()) {
            const std::uint8_t second = bytes[at + 1];
            const bool is_restart = second >= RESTART_FIRST && second <= RESTART_LAST;
            if (bytes[at] != MARK || second == MARK || Is_Data(second) || (is_in_scan && is_restart)) {
                ++at;
                continue;
            }
            at += 2;
            return second;
        }
        return 0;
    }
    /** What belongs to the marker just found; empty: it is cut short, or the marker stands alone. */
    std::span<const std::uint8_t> Content(std::uint8_t marker) {
        constexpr std::size_t length_size = 2;
        if (Is_Alone(marker) || at + length_size > bytes.size()) {
            return {};
        }
        const std::size_t length = Value_Read<std::uint16_t>(bytes.data() + at, Byte_Order::Big);
        if (length < length_size || length > bytes.size() - at) {
            return {};
        }
        const auto content = bytes.subspan(at + length_size, length - length_size);
        at += length;
        is_in_scan = marker == START_OF_SCAN;
        return content;
    }
    std::size_t Position() const { return at; }

  private:
    bool Is_Data(std::uint8_t second) const {
        return second == STUFFED || (is_ls && is_in_scan && second < FIRST_LS_MARKER);
    }

    std::span<const std::uint8_t> bytes;
    bool is_ls;
    bool is_in_scan = false;
    std::size_t at = 0;
};

/** Behind the end only filling may follow. */
bool Is_Filling(std::span<const std::uint8_t> rest) {
    return std::ranges::all_of(rest, [](std::uint8_t byte) { return byte == 0 || byte == MARK; });
}

bool Has_Right_Length(std::span<const std::uint8_t> packed, bool is_ls) {
    const std::size_t end = Jpeg_End(packed, is_ls);
    return end != 0 && Is_Filling(packed.subspan(end));
}

/** A decoder that counts what it is warned of. */
template <class Decoder>
class Warned : public Decoder {
  public:
    using Decoder::Decoder;
    void emitMessage(int level) const override {
        constexpr int warning = -1;
        has_warnings = has_warnings || level == warning;
    }
    bool Has_Warnings() const { return has_warnings; }

  private:
    mutable bool has_warnings = false;
};

template <class Decoder>
Decode_Report Decode_With(const Coded_Format& format, bool is_ybr, std::span<const std::uint8_t> packed,
                          std::span<std::uint8_t> bytes) {
    const DJCodecParameter parameter(ECC_lossyYCbCr, EDC_photometricInterpretation, EUC_never, EPC_colorByPixel);
    Warned<Decoder> decoder(parameter, is_ybr ? OFTrue : OFFalse);
    OFCondition done = decoder.init();
    if (done.good()) {
        done = decoder.decode(const_cast<Uint8*>(packed.data()),  // it only reads them
                              static_cast<Uint32>(packed.size()), bytes.data(), static_cast<Uint32>(bytes.size()),
                              OFFalse);
    }
    if (done == EJ_Suspension) {
        return {"it is cut short", false};
    }
    if (done.bad()) {
        return {Toolkit_Text(done), false};
    }
    if (decoder.bytesPerSample() != format.Byte_Nb()) {
        return {"another depth than it says", false};
    }
    return {{}, decoder.Has_Warnings() || !Has_Right_Length(packed, false)};
}

}  // namespace

std::optional<Coded_Format> Jpeg_Format_Read(std::span<const std::uint8_t> packed, bool is_ls) {
    Markers markers(packed, is_ls);
    if (packed.size() < 2 || packed[0] != MARK || packed[1] != START_OF_IMAGE) {
        return std::nullopt;
    }
    for (std::uint8_t marker = markers.Next(); marker != 0 && marker != START_OF_SCAN && marker != END_OF_IMAGE;
         marker = markers.Next()) {
        const std::span<const std::uint8_t> content = markers.Content(marker);
        if (content.empty() && !Is_Alone(marker)) {
            return std::nullopt;
        }
        constexpr std::size_t frame_least = 6;  // depth, rows, columns, components
        if (Is_Frame(marker, is_ls) && content.size() >= frame_least) {
            Coded_Format format;
            format.bits = content[0];
            format.height = Value_Read<std::uint16_t>(content.data() + 1, Byte_Order::Big);
            format.width = Value_Read<std::uint16_t>(content.data() + 3, Byte_Order::Big);
            format.sample_nb = content[5];
            constexpr std::int32_t bits_most = 16;
            const bool is_usable = format.bits >= 1 && format.bits <= bits_most;
            return is_usable ? std::optional(format) : std::nullopt;
        }
    }
    return std::nullopt;
}

std::size_t Jpeg_End(std::span<const std::uint8_t> packed, bool is_ls) {
    Markers markers(packed, is_ls);
    for (std::uint8_t marker = markers.Next(); marker != 0; marker = markers.Next()) {
        if (marker == END_OF_IMAGE) {
            return markers.Position();
        }
        if (!Is_Alone(marker)) {
            markers.Content(marker);
        }
    }
    return 0;
}

namespace {

/** Whether a picture has more scans than any program writes: every one makes the decoder go through all pixels. */
bool Has_Too_Many_Scans(std::span<const std::uint8_t> packed) {
    constexpr int scans_most = 100;
    int scans = 0;
    Markers markers(packed, false);
    for (std::uint8_t marker = markers.Next(); marker != 0 && marker != END_OF_IMAGE && scans <= scans_most;
         marker = markers.Next()) {
        scans += marker == START_OF_SCAN ? 1 : 0;
        if (!Is_Alone(marker)) {
            markers.Content(marker);
        }
    }
    return scans > scans_most;
}

}  // namespace

Decode_Report Jpeg_Decode(const Coded_Format& format, bool is_ybr, std::span<const std::uint8_t> packed,
                          std::span<std::uint8_t> bytes) {
    constexpr std::int32_t bits_byte = 8;
    constexpr std::int32_t bits_extended = 12;
    const bool is_color_converted = is_ybr && format.sample_nb > 1;
    if (Has_Too_Many_Scans(packed)) {
        return {"it has more than 100 scans", false};
    }
    std::ranges::fill(bytes, std::uint8_t{0});
    if (format.bits <= bits_byte) {
        return Decode_With<DJDecompressIJG8Bit>(format, is_color_converted, packed, bytes);
    }
    if (format.bits <= bits_extended) {
        return Decode_With<DJDecompressIJG12Bit>(format, is_color_converted, packed, bytes);
    }
    return Decode_With<DJDecompressIJG16Bit>(format, is_color_converted, packed, bytes);
}

Decode_Report Jpeg_Ls_Decode(const Coded_Format& format, std::span<const std::uint8_t> packed,
                             std::span<std::uint8_t> bytes) {
    // The decoder takes the frame out of a data set; this one has what it looks at.
    DcmItem item;
    const auto bits = static_cast<Uint16>(8 * format.Byte_Nb());
    item.putAndInsertUint16(DCM_SamplesPerPixel, static_cast<Uint16>(format.sample_nb));
    item.putAndInsertUint16(DCM_Rows, static_cast<Uint16>(format.height));
    item.putAndInsertUint16(DCM_Columns, static_cast<Uint16>(format.width));
    item.putAndInsertUint16(DCM_BitsAllocated, bits);
    item.putAndInsertUint16(DCM_BitsStored, bits);
    item.putAndInsertString(DCM_PhotometricInterpretation, format.sample_nb == 1 ? "MONOCHROME2" : "RGB");
    item.putAndInsertUint16(DCM_PlanarConfiguration, 0);
    DcmPixelSequence sequence(DcmTag(DCM_PixelData, EVR_OB));
    auto table = std::make_unique<DcmPixelItem>(DcmTag(DCM_Item, EVR_OB));
    auto fragment = std::make_unique<DcmPixelItem>(DcmTag(DCM_Item, EVR_OB));
    OFCondition done = fragment->putUint8Array(packed.data(), static_cast<unsigned long>(packed.size()));
    if (done.good() && sequence.insert(table.get()).good()) {
        table.release();  // NOLINT(bugprone-unused-return-value): the sequence owns it
        if (sequence.insert(fragment.get()).good()) {
            fragment.release();  // NOLINT(bugprone-unused-return-value)
        }
    }
    std::ranges::fill(bytes, std::uint8_t{0});
    const DJLSCodecParameter parameter(EJLSUC_never, EJLSPC_colorByPixel);
    const DJLSLosslessDecoder decoder;  // the lossy one does the same
    Uint32 first = 1;
    OFString model;
    if (done.good()) {
        done = decoder.decodeFrame(nullptr, &sequence, &parameter, &item, 0, first, bytes.data(),
                                   static_cast<Uint32>(bytes.size()), model);
    }
    return done.good() ? Decode_Report{{}, !Has_Right_Length(packed, true)} : Decode_Report{Toolkit_Text(done), false};
}

}  // namespace volumes

#include "workbench/volumes/dicom_stored_frames.h"

#include <algorithm>
#include <limits>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_run_length.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

Dicom_Refusal Frame_Refusal(std::int32_t frame, const std::string& why) {
    return {"has pixels that cannot be decoded (frame " + std::to_string(frame + 1) + ": " + why + ")"};
}

DcmElement* Element_Of(DcmItem& data_set, const DcmTagKey& tag) {
    DcmElement* found = nullptr;
    return data_set.findAndGetElement(tag, found).good() ? found : nullptr;
}

}  // namespace

Stored_Frames::Stored_Frames(DcmItem& data_set, E_TransferSyntax transfer_syntax)
    : element(Element_Of(data_set, DCM_PixelData)),
      syntax(transfer_syntax),
      codec(Frame_Codec_Of(transfer_syntax)),
      is_compressed(DcmXfer(transfer_syntax).isEncapsulated()) {
    if (element == nullptr) {
        element = Element_Of(data_set, DCM_FloatPixelData);
        real_bits = 32;
    }
    if (element == nullptr) {
        element = Element_Of(data_set, DCM_DoubleFloatPixelData);
        real_bits = 64;
    }
    if (element == nullptr) {
        throw Dicom_Refusal{"holds no image"};
    }
    if (real_bits == 0 || element->getTag().getXTag() == DCM_PixelData) {
        real_bits = 0;
        if (dynamic_cast<DcmPixelData*>(element) == nullptr) {
            throw Dicom_Refusal{"has pixel data of an unusable form"};
        }
    }
    if (is_compressed && ((codec == Frame_Codec::None && syntax != EXS_RLELossless) || real_bits != 0)) {
        throw Dicom_Refusal{std::string("is compressed in a way that is not decoded (") +
                            DcmXfer(syntax).getXferName() + ")"};
    }
}

void Stored_Frames::Fragments_Open(const Pixel_Format& pixel_format) {
    auto& pixel_data = dynamic_cast<DcmPixelData&>(*element);
    DcmPixelSequence* sequence = nullptr;
    if (pixel_data.getEncapsulatedRepresentation(syntax, nullptr, sequence).bad() || sequence == nullptr) {
        throw Dicom_Refusal{"has fewer compressed frames than it says"};
    }
    fragments.emplace(*sequence, codec,
                      static_cast<std::size_t>(pixel_format.Sample_Nb()) *
                          static_cast<std::size_t>(pixel_format.bits_allocated) / BYTE_BITS);
}

// Contract: users compare greys with those of other programs: the format becomes what dcmdjpeg and its like write down
// of a decoded image.
void Stored_Frames::Codec_Format_Take(Pixel_Format& pixel_format) {
    std::vector<std::uint8_t> joined;
    coded = Coded_Format_Read(codec, fragments->Frame(0, joined));
    if (!coded) {
        throw Frame_Refusal(0, CODED_BEGINNING_WRONG);
    }
    if (coded->width != pixel_format.width || coded->height != pixel_format.height ||
        coded->sample_nb != pixel_format.Sample_Nb()) {
        throw Frame_Refusal(0, "its own size is " + std::to_string(coded->width) + " x " +
                                   std::to_string(coded->height) + " pixels of " + std::to_string(coded->sample_nb) +
                                   (coded->sample_nb == 1 ? " sample" : " samples"));
    }
    pixel_format.bits_allocated = coded->Byte_Nb() * static_cast<std::int32_t>(BYTE_BITS);
    if (codec == Frame_Codec::Jpeg_2000) {
        pixel_format.bits_stored = coded->bits;
        pixel_format.high_bit = coded->bits - 1;
        pixel_format.is_signed = pixel_format.is_signed || (coded->is_signed && !pixel_format.Is_Color());
    } else {
        pixel_format.bits_stored = std::min(pixel_format.bits_stored, coded->bits);
        pixel_format.high_bit = std::min(pixel_format.high_bit, coded->bits - 1);
    }
    pixel_format.is_planar = false;
    is_ybr = pixel_format.kind == Pixel_Format::Kind::Ybr_Full || pixel_format.kind == Pixel_Format::Kind::Ybr_Full_422;
    if (is_ybr && codec == Frame_Codec::Jpeg) {
        pixel_format.kind = Pixel_Format::Kind::Rgb;
    } else if (pixel_format.kind == Pixel_Format::Kind::Ybr_Full_422) {
        pixel_format.kind = Pixel_Format::Kind::Ybr_Full;  // the codec gives every sample
    }
}

std::int32_t Stored_Frames::Open(std::int32_t told, Pixel_Format& pixel_format) {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    if (is_compressed) {
        if (pixel_format.is_bits) {
            throw Dicom_Refusal{"has pixels of one bit that are compressed, which are not read"};
        }
        Fragments_Open(pixel_format);
    }
    frame_nb = told;
    if (frame_nb == 0) {
        const auto whole = static_cast<std::uint64_t>(element->getLength()) / pixel_format.Stored_Size(1);
        frame_nb = std::max(1, fragments ? fragments->Frame_Nb() : static_cast<std::int32_t>(std::min(whole, most)));
    }
    if (fragments && !fragments->Share_Out(frame_nb)) {
        throw Dicom_Refusal{fragments->Fragment_Nb() < static_cast<std::size_t>(frame_nb)
                                ? "has fewer compressed frames than it says"
                                : "has pieces of compressed data that cannot be shared out to its frames"};
    }
    if (codec != Frame_Codec::None) {
        Codec_Format_Take(pixel_format);
    }
    format = pixel_format;
    return frame_nb;
}

void Stored_Frames::Length_Check() const {
    const std::uint64_t wanted = format.Stored_Size(static_cast<std::uint64_t>(frame_nb));
    if (!is_compressed) {
        const std::uint64_t there = element->getLength();
        if (there < wanted) {
            throw Dicom_Refusal{"has fewer pixels than it says (" + Count_Text(there) + " of " + Count_Text(wanted) +
                                " bytes)"};
        }
        return;
    }
    constexpr std::uint64_t run_most = 64;  // bytes that one byte of run-length data can stand for
    if (codec == Frame_Codec::None && fragments->Packed_Size() * run_most < wanted) {
        throw Dicom_Refusal{"has compressed data too short for its frames"};
    }
}

void Stored_Frames::Bytes_Take(std::uint64_t start, std::int32_t frame, std::vector<std::uint8_t>& bytes) {
    const OFCondition taken = element->getPartialValue(bytes.data(), static_cast<Uint32>(start),
                                                       static_cast<Uint32>(bytes.size()), &cache, EBO_LittleEndian);
    if (taken.bad()) {
        throw Frame_Refusal(frame, Toolkit_Text(taken));
    }
}

void Stored_Frames::Bits_Frame(std::int32_t frame, Frame_Room& room) {
    const std::uint64_t pixels = room.bytes.size();
    const std::uint64_t first = pixels * static_cast<std::uint64_t>(frame);  // a bit; frames follow without gaps
    const std::uint64_t start = first / BYTE_BITS;
    room.joined.resize(static_cast<std::size_t>((first + pixels + BYTE_BITS - 1) / BYTE_BITS - start));
    Bytes_Take(start, frame, room.joined);
    for (std::uint64_t pixel = 0; pixel < pixels; ++pixel) {
        const std::uint64_t bit = first - start * BYTE_BITS + pixel;
        room.bytes[static_cast<std::size_t>(pixel)] =
            room.joined[static_cast<std::size_t>(bit / BYTE_BITS)] >> bit % BYTE_BITS & 1U;
    }
}

void Stored_Frames::Plain_Frame(std::int32_t frame, Frame_Room& room) {
    Bytes_Take(format.Frame_Size() * static_cast<std::uint64_t>(frame), frame, room.bytes);
    constexpr std::size_t wide = 4;
    if (real_bits == 0 && static_cast<std::size_t>(format.bits_allocated) == BYTE_BITS * wide &&
        DcmXfer(syntax).getByteOrder() == EBO_BigEndian && element->ident() != EVR_OB) {
        // The toolkit turns the bytes of 16-bit words; the samples are of two words, of which the higher comes first.
        std::vector<std::uint8_t>& bytes = room.bytes;
        for (std::size_t at = 0; at + wide <= bytes.size(); at += wide) {
            std::swap_ranges(bytes.data() + at, bytes.data() + at + 2, bytes.data() + at + 2);
        }
    }
}

void Stored_Frames::Frame(std::int32_t frame, Frame_Room& room) {
    room.bytes.resize(static_cast<std::size_t>(format.Frame_Size()));
    room.has_warnings = false;
    if (format.is_bits) {
        return Bits_Frame(frame, room);
    }
    if (!is_compressed) {
        return Plain_Frame(frame, room);
    }
    const std::span<const std::uint8_t> packed = fragments->Frame(frame, room.joined);
    if (packed.empty()) {
        throw Frame_Refusal(frame, "no data");
    }
    if (codec == Frame_Codec::None) {
        const char* const wrong = Run_Length_Decode(format, packed, room.bytes);
        if (wrong != nullptr) {
            throw Frame_Refusal(frame, wrong);
        }
        return;
    }
    const Decode_Report report = Coded_Frame_Decode(codec, *coded, is_ybr, packed, room.bytes);
    if (!report.error.empty()) {
        throw Frame_Refusal(frame, report.error);
    }
    room.has_warnings = report.has_warnings;
}

}  // namespace volumes

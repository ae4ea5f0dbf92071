#include "workbench/archive/picture_comments.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "dcmtk/dcmdata/dcxfer.h"
#include "workbench/archive/stream_comments.h"
#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/dicom_fields.h"

namespace workbench::archive {

namespace {

using Pieces = std::vector<std::span<std::uint8_t>>;

bool Is_Start(std::span<const std::uint8_t> piece, bool is_2000) {
    return is_2000 ? Is_Jpeg_2000_Start(piece) : Is_Jpeg_Start(piece);
}

/** Blanks what lies in some pieces, one picture or several. @return how many; 0: something else lies there */
std::size_t Pictures_Blank(const Pieces& pieces, bool is_2000) {
    std::vector<std::uint8_t> whole;
    for (const std::span<std::uint8_t> piece : pieces) {
        whole.insert(whole.end(), piece.begin(), piece.end());
    }
    const auto blanking = is_2000 ? Jpeg_2000_Comments_Blank : Jpeg_Comments_Blank;
    std::size_t picture_nb = 0;
    for (std::span<std::uint8_t> rest(whole); !rest.empty();) {
        const std::optional<std::size_t> end = blanking(rest);
        if (!end) {
            return 0;
        }
        ++picture_nb;
        rest = rest.subspan(*end);
        const auto next = std::ranges::find_if(rest, [](std::uint8_t byte) { return byte != 0; });
        const auto filling = static_cast<std::size_t>(next - rest.begin());
        if (!Is_Start(rest.subspan(filling), is_2000)) {
            std::ranges::fill(rest, std::uint8_t{0});
            break;
        }
        rest = rest.subspan(filling);
    }
    std::size_t at = 0;
    for (const std::span<std::uint8_t> piece : pieces) {
        std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(at), piece.size(), piece.begin());
        at += piece.size();
    }
    return picture_nb;
}

std::optional<Run_Length_Form> Run_Length_Form_Of(DcmDataset& data_set) {
    const auto field = [&](const DcmTagKey& tag) { return volumes::Field_Integer(data_set, tag).value_or(0); };
    const std::int32_t row_nb = field(DCM_Rows);
    const std::int32_t column_nb = field(DCM_Columns);
    const std::int32_t sample_nb = field(DCM_SamplesPerPixel);
    const std::int32_t bit_nb = field(DCM_BitsAllocated);
    const auto is_side = [](std::int32_t side) {
        return side > 0 && side <= std::numeric_limits<std::uint16_t>::max();
    };
    if (!is_side(row_nb) || !is_side(column_nb) || sample_nb < 1 || sample_nb > 4 || bit_nb < 8 || bit_nb > 64 ||
        bit_nb % 8 != 0) {
        return std::nullopt;
    }
    return Run_Length_Form{static_cast<std::size_t>(sample_nb) * static_cast<std::size_t>(bit_nb / 8),
                           static_cast<std::size_t>(row_nb) * static_cast<std::size_t>(column_nb)};
}

/** Whether the table of where frames begin is empty or can be one: a text would point beyond them. */
bool Is_Table(DcmPixelSequence& sequence, std::size_t frame_nb, const Pieces& pieces) {
    DcmPixelItem* table = nullptr;
    Uint8* bytes = nullptr;
    if (sequence.getItem(table, 0).bad() || table == nullptr) {
        return false;
    }
    const std::size_t length = table->getLength();
    if (length == 0) {
        return true;
    }
    if (length != frame_nb * 4 || table->getUint8Array(bytes).bad() || bytes == nullptr) {
        return false;
    }
    std::vector<std::size_t> begins;  // of the pieces, each behind its mark and length
    std::size_t at = 0;
    for (const std::span<std::uint8_t> piece : pieces) {
        begins.push_back(at);
        at += piece.size() + 8;
    }
    for (std::size_t frame = 0; frame < frame_nb; ++frame) {
        // As in every file that is compressed.
        const std::size_t begin = volumes::Value_Read<std::uint32_t>(bytes + frame * 4, volumes::Byte_Order::Little);
        if (!std::ranges::binary_search(begins, begin)) {
            return false;
        }
    }
    return true;
}

/** The pieces of all pictures, behind the table of where they begin. */
std::optional<Pieces> Pieces_Of(DcmPixelSequence& sequence) {
    Pieces pieces;
    for (unsigned long at = 1; at < sequence.card(); ++at) {
        DcmPixelItem* item = nullptr;
        Uint8* bytes = nullptr;
        if (sequence.getItem(item, at).bad() || item == nullptr) {
            return std::nullopt;
        }
        if (item->getLength() > 0) {
            if (item->getUint8Array(bytes).bad() || bytes == nullptr) {
                return std::nullopt;
            }
            pieces.emplace_back(bytes, item->getLength());
        }
    }
    return pieces;
}

}  // namespace

std::string Picture_Comments_Blank(DcmDataset& data_set) {
    constexpr const char* doubt = "its compressed pictures cannot be looked through for comments";
    const E_TransferSyntax form = data_set.getOriginalXfer();
    DcmElement* element = nullptr;
    if (!DcmXfer(form).isEncapsulated() || data_set.findAndGetElement(DCM_PixelData, element).bad()) {
        return {};
    }
    auto* const pixels = dynamic_cast<DcmPixelData*>(element);
    DcmPixelSequence* sequence = nullptr;
    constexpr std::array jpeg_forms = {EXS_JPEGProcess1,     EXS_JPEGProcess2_4, EXS_JPEGProcess6_8,
                                       EXS_JPEGProcess10_12, EXS_JPEGProcess14,  EXS_JPEGProcess14SV1,
                                       EXS_JPEGLSLossless,   EXS_JPEGLSLossy};
    const bool is_2000 = form == EXS_JPEG2000LosslessOnly || form == EXS_JPEG2000;
    const bool is_run_length = form == EXS_RLELossless;
    if ((!is_2000 && !is_run_length && std::ranges::find(jpeg_forms, form) == jpeg_forms.end()) || pixels == nullptr ||
        pixels->getEncapsulatedRepresentation(form, nullptr, sequence).bad() || sequence == nullptr) {
        return doubt;
    }
    const std::optional<Pieces> pieces = Pieces_Of(*sequence);
    const int told = volumes::Field_Integer(data_set, DCM_NumberOfFrames).value_or(1);
    const auto frame_nb = static_cast<std::size_t>(std::max(told, 1));
    if (!pieces || !Is_Table(*sequence, frame_nb, *pieces)) {
        return doubt;
    }
    if (is_run_length) {
        const std::optional<Run_Length_Form> runs = Run_Length_Form_Of(data_set);
        const bool are_all = runs && pieces->size() == frame_nb && std::ranges::all_of(*pieces, [&](const auto& piece) {
                                 return Run_Length_Blank(piece, *runs);
                             });
        return are_all ? "" : doubt;
    }
    std::size_t picture_nb = 0;
    for (std::size_t first = 0; first < pieces->size();) {
        std::size_t next = first + 1;
        while (next < pieces->size() && !Is_Start((*pieces)[next], is_2000)) {
            ++next;
        }
        const Pieces together(pieces->begin() + static_cast<std::ptrdiff_t>(first),
                              pieces->begin() + static_cast<std::ptrdiff_t>(next));
        const std::size_t found = Pictures_Blank(together, is_2000);
        if (found == 0) {
            return doubt;
        }
        picture_nb += found;
        first = next;
    }
    return picture_nb == frame_nb ? "" : doubt;
}

}  // namespace workbench::archive

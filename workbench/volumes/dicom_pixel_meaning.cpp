#include "workbench/volumes/dicom_pixel_meaning.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_codec.h"
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

void Color_Kind_Read(const std::string& photometric, std::int32_t samples, E_TransferSyntax syntax,
                     Pixel_Format& format, std::vector<std::string>& warnings) {
    struct Named {
        const char* name;
        Pixel_Format::Kind kind;
        std::int32_t samples;
    };
    constexpr Named kinds[] = {
        {"MONOCHROME2", Pixel_Format::Kind::Grey, 1},      {"MONOCHROME1", Pixel_Format::Kind::Grey_Inverted, 1},
        {"PALETTE COLOR", Pixel_Format::Kind::Palette, 1}, {"RGB", Pixel_Format::Kind::Rgb, 3},
        {"YBR_FULL", Pixel_Format::Kind::Ybr_Full, 3},     {"YBR_FULL_422", Pixel_Format::Kind::Ybr_Full_422, 3},
        {"YBR_RCT", Pixel_Format::Kind::Rgb, 3},           {"YBR_ICT", Pixel_Format::Kind::Rgb, 3}};
    // The last two are ways of JPEG 2000 to store red, green, blue, which it undoes itself.
    const std::size_t known_nb =
        Frame_Codec_Of(syntax) == Frame_Codec::Jpeg_2000 ? std::size(kinds) : std::size(kinds) - 2;
    for (const Named& one : std::span(kinds).first(known_nb)) {
        if (photometric == one.name) {
            if (samples != one.samples) {
                throw Dicom_Refusal{"has " + std::to_string(samples) + " samples per pixel, which does not fit " +
                                    photometric};
            }
            format.kind = one.kind;
            return;
        }
    }
    if (photometric.empty() && (samples == 1 || samples == 3)) {
        format.kind = samples == 1 ? Pixel_Format::Kind::Grey : Pixel_Format::Kind::Rgb;
        warnings.emplace_back("does not say what its pixels mean; taken as grey or RGB");
        return;
    }
    throw Dicom_Refusal{"has pixels of an unknown kind (" +
                        (photometric.empty() ? "no name" : Printable_Text(photometric, FIELD_SHOWN_MOST)) + ", " +
                        std::to_string(samples) + " samples)"};
}

}  // namespace

std::optional<std::pair<std::int32_t, std::int32_t>> Pixel_Meaning::Value_Range() const {
    constexpr std::int32_t bits_most = 16;
    if (format.Is_Color() || padding) {
        return std::nullopt;
    }
    if (greys) {
        const auto [lowest, highest] = std::ranges::minmax(greys->entries);
        return std::pair(lowest, highest);
    }
    if (format.bits_stored > bits_most) {
        return std::nullopt;
    }
    const std::int32_t value_nb = std::int32_t{1} << format.bits_stored;
    return format.is_signed ? std::pair(-value_nb / 2, value_nb / 2 - 1) : std::pair(0, value_nb - 1);
}

Pixel_Format Pixel_Format_Read(DcmItem& data_set, E_TransferSyntax syntax, std::int32_t real_bits,
                               std::vector<std::string>& warnings) {
    Pixel_Format format;
    constexpr std::int32_t side_most = 65535;
    format.width = Field_Integer(data_set, DCM_Columns).value_or(0);
    format.height = Field_Integer(data_set, DCM_Rows).value_or(0);
    if (format.width < 1 || format.height < 1 || format.width > side_most || format.height > side_most) {
        throw Dicom_Refusal{"has no usable size (" + std::to_string(format.width) + " x " +
                            std::to_string(format.height) + " pixels)"};
    }
    format.bits_allocated = Field_Integer(data_set, DCM_BitsAllocated).value_or(real_bits);
    if (format.bits_allocated == 1 && real_bits == 0) {
        format.is_bits = true;
        format.bits_allocated = 8;
    } else if (real_bits != 0 && format.bits_allocated != real_bits) {
        throw Dicom_Refusal{"has floating-point pixels of " + std::to_string(format.bits_allocated) +
                            " bits, which is no form of them"};
    } else if (format.bits_allocated != 8 && format.bits_allocated != 16 && format.bits_allocated != 32 &&
               real_bits == 0) {
        throw Dicom_Refusal{"has " + std::to_string(format.bits_allocated) +
                            " bits allocated per sample; 1, 8, 16 and 32 are read"};
    }
    if (real_bits != 0) {
        format.bits_stored = format.bits_allocated;
    } else {
        format.bits_stored =
            format.is_bits ? 1 : Field_Integer(data_set, DCM_BitsStored).value_or(format.bits_allocated);
    }
    const bool is_told = !format.is_bits && real_bits == 0;
    format.high_bit =
        is_told ? Field_Integer(data_set, DCM_HighBit).value_or(format.bits_stored - 1) : format.bits_stored - 1;
    if (format.bits_stored < 1 || format.bits_stored > format.bits_allocated ||
        format.high_bit < format.bits_stored - 1 || format.high_bit >= format.bits_allocated) {
        throw Dicom_Refusal{"has bits that do not fit one another (" + std::to_string(format.bits_stored) +
                            " stored of " + std::to_string(format.bits_allocated) + ", highest " +
                            std::to_string(format.high_bit) + ")"};
    }
    Color_Kind_Read(Field_Text(data_set, DCM_PhotometricInterpretation),
                    Field_Integer(data_set, DCM_SamplesPerPixel).value_or(1), syntax, format, warnings);
    const bool is_indexed = format.kind == Pixel_Format::Kind::Palette;
    format.is_signed = (!format.Is_Color() || is_indexed) && !format.is_bits &&
                       Field_Integer(data_set, DCM_PixelRepresentation).value_or(0) == 1;
    format.is_planar = format.Sample_Nb() > 1 && Field_Integer(data_set, DCM_PlanarConfiguration).value_or(0) == 1;
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && syntax == EXS_RLELossless) {
        format.kind = Pixel_Format::Kind::Ybr_Full;  // run-length segments hold every sample
    }
    const bool is_decoded = Frame_Codec_Of(syntax) != Frame_Codec::None;
    if (format.kind == Pixel_Format::Kind::Ybr_Full_422 && !is_decoded &&
        (format.bits_allocated != 8 || format.width % 2 != 0)) {
        throw Dicom_Refusal{"shares colours between pixels (YBR_FULL_422) in an unusable way"};
    }
    if ((format.is_bits || real_bits != 0) && format.Is_Color()) {
        throw Dicom_Refusal{"has pixels of an unknown kind (colours of one bit or of floating-point numbers)"};
    }
    return format;
}

void Tables_Read(DcmItem& data_set, Pixel_Meaning& meaning, std::vector<std::string>& warnings) {
    const Pixel_Format& format = meaning.format;
    Lookup_Failure failure = Lookup_Failure::None;
    if (format.kind == Pixel_Format::Kind::Palette) {
        auto read = Palette_Read(data_set, format.is_signed, failure);
        if (!read) {
            throw Dicom_Refusal{failure == Lookup_Failure::Too_Short ? "has a colour palette shorter than it says"
                                                                     : "has no usable colour palette"};
        }
        meaning.palette = std::move(*read);
    }
    DcmItem* const table = format.Is_Color() ? nullptr : Field_Item(data_set, DCM_ModalityLUTSequence);
    if (table != nullptr) {
        meaning.greys = Lookup_Read(*table, DCM_LUTDescriptor, DCM_LUTData, format.is_signed, failure);
        if (!meaning.greys) {
            warnings.emplace_back(
                "has a table of grey values that cannot be used: stored values are shown as they are");
        }
    }
}

// Contract: users count on histograms and means without the padding, the value by which scanners fill what lies outside
// their field; DICOM wants it left out of everything that is made of the pixels.
void Padding_Read(DcmItem& data_set, Pixel_Meaning& meaning) {
    const Pixel_Format& format = meaning.format;
    const std::optional<std::int32_t> value = Field_Integer(data_set, DCM_PixelPaddingValue);
    if (!value || format.Is_Color()) {
        return;
    }
    // Some programs write a negative number without its sign, and the other way round.
    const auto as_stored = [&](std::int32_t told) {
        constexpr std::int64_t numbers = 65536;
        const bool is_beyond = format.is_signed ? told >= numbers / 2 && told < numbers : told < 0;
        return is_beyond ? told + (format.is_signed ? -numbers : numbers) : std::int64_t{told};
    };
    const std::int32_t limit = Field_Integer(data_set, DCM_PixelPaddingRangeLimit).value_or(*value);
    // A range of which one end only is such a number would take in nearly everything: then it is the value alone.
    const bool is_range = (as_stored(*value) == *value) == (as_stored(limit) == limit);
    meaning.padding = std::minmax({as_stored(*value), as_stored(is_range ? limit : *value)});
}

}  // namespace volumes

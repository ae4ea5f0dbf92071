/** What the stored values of a DICOM image mean: their form, colours, grey values and padding. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "dcmtk/dcmdata/dcxfer.h"
#include "workbench/volumes/dicom_lookup.h"
#include "workbench/volumes/dicom_pixels.h"

namespace volumes {

/** Values of so many bits can all be levels. */
inline constexpr std::int32_t BITS_ALWAYS_LEVELS = 30;

struct Pixel_Meaning {
    Pixel_Format format;
    Palette palette;                                               ///< of Pixel_Format::Kind::Palette
    std::optional<Lookup> greys;                                   ///< grey values of the stored ones
    std::optional<std::pair<std::int64_t, std::int64_t>> padding;  ///< stored values that are no part of the image

    /** Whether the stored values of the pixels are all that counts, and fit into levels. */
    bool Is_Plain() const {
        return !format.Is_Color() && !padding && !greys && format.bits_stored <= BITS_ALWAYS_LEVELS;
    }
    /** Bytes of a level; more where the values turn out to need them. */
    std::uint64_t Level_Size_Least() const {
        constexpr std::int32_t narrow_bits = 16;
        const bool may_be_narrow = !format.Is_Color() && format.bits_stored <= narrow_bits;
        return may_be_narrow ? sizeof(std::uint16_t) : sizeof(std::int32_t);
    }
    /** From where to where the values of pixels can be, if 16 bits may be enough for them. */
    std::optional<std::pair<std::int32_t, std::int32_t>> Value_Range() const;
};

/** Throws Dicom_Refusal: the fields do not fit one another, or are of a kind that is not read.
 *  @param real_bits of floating-point pixels, else 0 @param warnings grow */
Pixel_Format Pixel_Format_Read(DcmItem& data_set, E_TransferSyntax syntax, std::int32_t real_bits,
                               std::vector<std::string>& warnings);
/** Fills `palette` and `greys` for the format. Throws Dicom_Refusal: there is no usable palette for colours of one. */
void Tables_Read(DcmItem& data_set, Pixel_Meaning& meaning, std::vector<std::string>& warnings);
/** Fills `padding` for the format. */
void Padding_Read(DcmItem& data_set, Pixel_Meaning& meaning);

}  // namespace volumes

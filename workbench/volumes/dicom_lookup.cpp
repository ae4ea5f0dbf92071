#include "workbench/volumes/dicom_lookup.h"

#include <algorithm>
#include <cstddef>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcelem.h"
#include "workbench/volumes/dicom_fields.h"

namespace volumes {

namespace {

constexpr std::int32_t ENTRIES_MOST = 65536;

/** Elements of 16 bits, whichever form they are kept in; null when there are none. */
const Uint16* Words_Of(DcmElement& element) {
    Uint16* words = nullptr;
    Sint16* signed_words = nullptr;
    if (element.getUint16Array(words).good() && words != nullptr) {
        return words;
    }
    if (element.getSint16Array(signed_words).good()) {
        return reinterpret_cast<const Uint16*>(signed_words);  // the same bits; entries have no sign
    }
    return nullptr;
}

}  // namespace

std::optional<Lookup> Lookup_Read(DcmItem& item, const DcmTagKey& descriptor, const DcmTagKey& data, bool is_signed,
                                  Lookup_Failure& failure) {
    failure = Lookup_Failure::Absent;
    const auto numbers = Field_Numbers<3>(item, descriptor);
    DcmElement* element = nullptr;
    if (!numbers || item.findAndGetElement(data, element).bad() || element == nullptr) {
        return std::nullopt;
    }
    const Uint16* const words = Words_Of(*element);
    Uint8* octets = nullptr;
    if (words == nullptr && (element->getUint8Array(octets).bad() || octets == nullptr)) {
        return std::nullopt;
    }
    failure = Lookup_Failure::Too_Short;
    const auto count_told = static_cast<std::int32_t>((*numbers)[0]);
    const std::int32_t count = count_told <= 0 ? count_told + ENTRIES_MOST : count_told;  // 0 stands for all
    Lookup lookup;
    lookup.bits = (*numbers)[2] > 8 ? 16 : 8;
    lookup.first = static_cast<std::int32_t>(std::clamp((*numbers)[1], -65536.0, 65536.0));
    constexpr std::int32_t sign_from = 32768;
    if (is_signed && lookup.first >= sign_from) {
        lookup.first -= ENTRIES_MOST;
    } else if (!is_signed && lookup.first < 0) {
        lookup.first += ENTRIES_MOST;
    }
    const auto length = static_cast<std::int64_t>(element->getLength());
    const bool is_packed = words == nullptr || (lookup.bits == 8 && length < std::int64_t{count} * 2);
    if (count < 1 || count > ENTRIES_MOST || length < (is_packed ? count : std::int64_t{count} * 2)) {
        return std::nullopt;
    }
    lookup.entries.reserve(static_cast<std::size_t>(count));
    for (std::size_t entry = 0; entry < static_cast<std::size_t>(count); ++entry) {
        if (!is_packed) {
            lookup.entries.push_back(words[entry]);
        } else if (words == nullptr) {
            lookup.entries.push_back(octets[entry]);
        } else {
            lookup.entries.push_back(entry % 2 == 0 ? words[entry / 2] & 0xFF : words[entry / 2] >> 8);
        }
    }
    failure = Lookup_Failure::None;
    return lookup;
}

std::optional<Palette> Palette_Read(DcmItem& data_set, bool is_signed, Lookup_Failure& failure) {
    struct Channel {
        DcmTagKey descriptor;
        DcmTagKey data;
    };
    const Channel channels[] = {{DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData},
                                {DCM_GreenPaletteColorLookupTableDescriptor, DCM_GreenPaletteColorLookupTableData},
                                {DCM_BluePaletteColorLookupTableDescriptor, DCM_BluePaletteColorLookupTableData}};
    Palette palette;
    for (unsigned at = 0; at < 3; ++at) {
        const auto lookup = Lookup_Read(data_set, channels[at].descriptor, channels[at].data, is_signed, failure);
        if (!lookup) {
            return std::nullopt;
        }
        if (at == 0) {
            palette.first = lookup->first;
            palette.colors.assign(lookup->entries.size(), 0);
        }
        for (std::size_t entry = 0; entry < std::min(lookup->entries.size(), palette.colors.size()); ++entry) {
            const auto whole = static_cast<std::uint32_t>(lookup->entries[entry]);
            const std::uint32_t value = lookup->bits == 16 ? whole >> 8U : whole;
            palette.colors[entry] |= static_cast<std::int32_t>((value & 0xFFU) << (8U * at));
        }
    }
    return palette;
}

}  // namespace volumes

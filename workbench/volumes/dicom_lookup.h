/** Lookup tables of a DICOM data set: colour palettes, and grey values of stored ones. */
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/dicom_pixels.h"

namespace volumes {

/** Entries for the stored values first, first + 1 ...; values outside take the nearest. */
struct Lookup {
    std::int32_t first = 0;
    std::int32_t bits = 16;             ///< of an entry: 8 or 16
    std::vector<std::int32_t> entries;  ///< one or more
};

enum class Lookup_Failure { None, Absent, Too_Short };

/** @param descriptor count, first stored value, bits: as unsigned or signed numbers, whichever the file wrote
 *  @param is_signed the stored values have a sign
 *  @param failure receives why there is none */
std::optional<Lookup> Lookup_Read(DcmItem& item, const DcmTagKey& descriptor, const DcmTagKey& data, bool is_signed,
                                  Lookup_Failure& failure);
/** The three tables of a colour palette. No value: see failure. */
std::optional<Palette> Palette_Read(DcmItem& data_set, bool is_signed, Lookup_Failure& failure);

}  // namespace volumes

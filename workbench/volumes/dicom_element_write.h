/** Puts values into the data set of an object that is made. Whatever the toolkit refuses ends the making: operations
 *  throw Dicom_Refusal, or std::bad_alloc. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"
#include "workbench/volumes/dicom_segmentation.h"

namespace volumes {

/** What was asked of the toolkit was done. */
void Demand(const OFCondition& condition);
void Text_Put(DcmItem& item, const DcmTagKey& tag, std::string_view text);
void Number_Put(DcmItem& item, const DcmTagKey& tag, std::uint16_t number);
/** Decimal strings, parted by backslashes; each with as many digits as fit into 16 bytes. */
void Decimals_Put(DcmItem& item, const DcmTagKey& tag, std::span<const double> numbers);
/** A new last item of a sequence. */
DcmItem& Item_New(DcmItem& parent, const DcmTagKey& sequence);
void Concept_Put(DcmItem& parent, const DcmTagKey& sequence, const Coded_Concept& concept_put);
/** The beginning of a text that has so many letters at most; a backslash would separate values. */
std::string Letters_First(std::string text, std::size_t most);

struct Moment_Text {
    std::string date;  ///< eight digits; empty: not known
    std::string time;  ///< six digits
};
/** Local time, as the dates and times of the images that an object repeats. */
Moment_Text Moment_Now();

}  // namespace volumes

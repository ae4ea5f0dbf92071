/** Values of a DICOM data set, whatever form they are stored in. */
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcitem.h"

namespace volumes {

/** A text without blanks around it; empty when there is none. @param position of several values */
std::string Field_Text(DcmItem& item, const DcmTagKey& tag, unsigned long position = 0);
/** A number, finite; no value when there is none. Texts, integers and floating-point values alike. */
std::optional<double> Field_Number(DcmItem& item, const DcmTagKey& tag, unsigned long position = 0);
/** A whole number within 32 bits. */
std::optional<std::int32_t> Field_Integer(DcmItem& item, const DcmTagKey& tag, unsigned long position = 0);
/** Three or two numbers; no value when one is missing. */
template <std::size_t Count>
std::optional<std::array<double, Count>> Field_Numbers(DcmItem& item, const DcmTagKey& tag) {
    std::array<double, Count> numbers{};
    for (std::size_t at = 0; at < Count; ++at) {
        const std::optional<double> number = Field_Number(item, tag, static_cast<unsigned long>(at));
        if (!number) {
            return std::nullopt;
        }
        numbers[at] = *number;
    }
    return numbers;
}
/** An item of a sequence; null when there is none. */
DcmItem* Field_Item(DcmItem& item, const DcmTagKey& tag, unsigned long position = 0);
/** All items of a sequence, in order; asking for each by its number takes time that grows with the square of them. */
std::vector<DcmItem*> Field_Items(DcmItem& item, const DcmTagKey& tag);
/** Text of the item's character sets as UTF-8 without blanks around it (see dicom_text.h).
 *  @param position of several values */
std::string Field_Utf8(DcmItem& item, const DcmTagKey& tag, unsigned long position = 0);
/** A person's name as UTF-8, its parts with blanks between them: "Doe Jane". Of several ways to write it, the first. */
std::string Field_Person(DcmItem& item, const DcmTagKey& tag);
/** A date, "2004-01-19"; what is no date comes as it is. */
std::string Field_Date(DcmItem& item, const DcmTagKey& tag);

}  // namespace volumes

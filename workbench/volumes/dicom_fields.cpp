#include "workbench/volumes/dicom_fields.h"

#include <cmath>
#include <limits>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcelem.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr unsigned char FIRST_NON_ASCII = 0x80;
constexpr unsigned long TEXT_LONGEST = 65536;  // bytes of a value that is read as a text or as numbers

}  // namespace

std::string Field_Text(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    DcmElement* element = nullptr;
    OFString value;
    if (item.findAndGetElement(tag, element).bad() || element == nullptr || element->getLength() > TEXT_LONGEST ||
        element->getOFString(value, position).bad()) {
        return {};
    }
    const char* const letters = value.c_str();
    std::string text(letters);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

std::optional<double> Field_Number(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    const std::string text = Field_Text(item, tag, position);
    OFBool is_read = OFFalse;
    const double number = OFStandard::atof(text.c_str(), &is_read);
    return is_read && !text.empty() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<std::int32_t> Field_Integer(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    const std::optional<double> number = Field_Number(item, tag, position);
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    return number && *number >= lowest && *number <= highest ? std::optional(static_cast<std::int32_t>(*number))
                                                             : std::nullopt;
}

DcmItem* Field_Item(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    DcmItem* found = nullptr;
    return item.findAndGetSequenceItem(tag, found, static_cast<signed long>(position)).good() ? found : nullptr;
}

std::string Field_Utf8(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    std::string text = Field_Text(item, tag, position);
    const std::string set = Field_Text(item, DCM_SpecificCharacterSet);
    if (set == "ISO_IR 192") {
        return Printable_Text(text);
    }
    const bool is_latin = set.empty() || set == "ISO_IR 100";
    std::string utf8;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < ' ') {
            utf8 += ' ';
        } else if (byte < FIRST_NON_ASCII) {
            utf8 += letter;
        } else if (is_latin) {
            utf8 += static_cast<char>(0xC0U | byte >> 6U);
            utf8 += static_cast<char>(0x80U | (byte & 0x3FU));
        } else {
            utf8 += '?';
        }
    }
    return utf8;
}

}  // namespace volumes

#include "workbench/volumes/dicom_fields.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcelem.h"
#include "dcmtk/dcmdata/dcsequen.h"
#include "dcmtk/ofstd/ofstd.h"
#include "workbench/volumes/dicom_text.h"

namespace volumes {

namespace {

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

std::vector<DcmItem*> Field_Items(DcmItem& item, const DcmTagKey& tag) {
    DcmSequenceOfItems* sequence = nullptr;
    std::vector<DcmItem*> items;
    if (item.findAndGetSequence(tag, sequence).good() && sequence != nullptr) {
        items.reserve(sequence->card());
        for (DcmObject* at = sequence->nextInContainer(nullptr); at != nullptr; at = sequence->nextInContainer(at)) {
            if (auto* const one = dynamic_cast<DcmItem*>(at)) {
                items.push_back(one);
            }
        }
    }
    return items;
}

std::string Field_Utf8(DcmItem& item, const DcmTagKey& tag, unsigned long position) {
    const auto whole = [](DcmItem& holder, const DcmTagKey& wanted) {
        DcmElement* element = nullptr;
        OFString value;
        const bool is_there = holder.findAndGetElement(wanted, element).good() && element != nullptr &&
                              element->getLength() <= TEXT_LONGEST && element->getOFStringArray(value, OFFalse).good();
        return is_there ? std::string(value.c_str(), value.size()) : std::string();
    };
    // An item of a sequence has the character set of what it is in, if it has none of its own.
    DcmItem* speaker = &item;
    while (!speaker->tagExists(DCM_SpecificCharacterSet) && speaker->getParentItem() != nullptr) {
        speaker = speaker->getParentItem();
    }
    // Contract: patients with Japanese or Chinese names are found by them. Half a character may be a backslash, at
    // which the toolkit would separate values, so the whole text is converted first.
    const std::string text = Dicom_Text_Utf8(whole(item, tag), whole(*speaker, DCM_SpecificCharacterSet), false);
    std::size_t begin = 0;
    for (unsigned long before = 0; before < position; ++before) {
        const std::size_t separator = text.find('\\', begin);
        if (separator == std::string::npos) {
            return {};
        }
        begin = separator + 1;
    }
    const std::string value = text.substr(begin, text.find('\\', begin) - begin);
    const std::size_t first = value.find_first_not_of(' ');
    const std::size_t last = value.find_last_not_of(' ');
    return first == std::string::npos ? std::string() : value.substr(first, last - first + 1);
}

std::string Field_Person(DcmItem& item, const DcmTagKey& tag) {
    const std::string written = Field_Utf8(item, tag);
    std::string name;
    for (const char letter : written) {
        if (letter == '=' && !name.empty()) {
            break;
        }
        const bool is_gap = letter == '^' || letter == ' ' || letter == '=';
        if (!is_gap) {
            name += letter;
        } else if (!name.empty() && name.back() != ' ') {
            name += ' ';
        }
    }
    if (!name.empty() && name.back() == ' ') {
        name.pop_back();
    }
    return name;
}

std::string Field_Date(DcmItem& item, const DcmTagKey& tag) {
    constexpr std::size_t digit_nb = 8;
    std::string written = Field_Text(item, tag);
    std::string digits = written;
    std::erase(digits, '.');  // as in files of the eighties
    const auto is_digit = [](char letter) { return letter >= '0' && letter <= '9'; };
    if (digits.size() != digit_nb || !std::ranges::all_of(digits, is_digit)) {
        return written;
    }
    return digits.substr(0, 4) + '-' + digits.substr(4, 2) + '-' + digits.substr(6);
}

}  // namespace volumes

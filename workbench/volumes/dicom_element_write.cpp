#include "workbench/volumes/dicom_element_write.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <new>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_data_set.h"

namespace volumes {

namespace {

constexpr std::size_t DECIMAL_STRING_MOST = 16;  // bytes of DICOM's DS

/** As many digits as fit. */
std::string Decimal_String(double number) {
    for (int digits = 15;; --digits) {
        std::array<char, 32> text{};
        const int length = std::snprintf(text.data(), text.size(), "%.*g", digits, number);
        if (static_cast<std::size_t>(length) <= DECIMAL_STRING_MOST) {
            return text.data();
        }
    }
}

}  // namespace

// Contract: the toolkit leaves out what it cannot write and says so only by what it returns; an object without the
// place of a slice would be read onto another slice.
void Demand(const OFCondition& condition) {
    if (condition.bad()) {
        throw Dicom_Refusal{"The segmentation object could not be made: " + Toolkit_Text(condition) + '.'};
    }
}

void Text_Put(DcmItem& item, const DcmTagKey& tag, std::string_view text) {
    Demand(item.putAndInsertOFStringArray(tag, OFString(text.data(), text.size())));
}

void Number_Put(DcmItem& item, const DcmTagKey& tag, std::uint16_t number) {
    Demand(item.putAndInsertUint16(tag, number));
}

void Decimals_Put(DcmItem& item, const DcmTagKey& tag, std::span<const double> numbers) {
    std::string text;
    for (const double number : numbers) {
        text += (text.empty() ? "" : "\\") + Decimal_String(number);
    }
    Text_Put(item, tag, text);
}

DcmItem& Item_New(DcmItem& parent, const DcmTagKey& sequence) {
    constexpr signed long append = -2;
    DcmItem* made = nullptr;
    Demand(parent.findOrCreateSequenceItem(sequence, made, append));
    if (made == nullptr) {
        throw std::bad_alloc();
    }
    return *made;
}

void Concept_Put(DcmItem& parent, const DcmTagKey& sequence, const Coded_Concept& concept_put) {
    DcmItem& item = Item_New(parent, sequence);
    Text_Put(item, DCM_CodeValue, concept_put.value);
    Text_Put(item, DCM_CodingSchemeDesignator, concept_put.scheme);
    Text_Put(item, DCM_CodeMeaning, concept_put.meaning);
}

std::string Letters_First(std::string text, std::size_t most) {
    std::ranges::replace(text, '\\', '/');
    std::size_t letters = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool is_begin = (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U;
        if (is_begin && ++letters > most) {
            text.resize(at);
            break;
        }
    }
    return text;
}

Moment_Text Moment_Now() {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
#if defined(_WIN32)
    localtime_s(&parts, &now);
#else
    localtime_r(&now, &parts);
#endif
    std::array<char, 16> text{};
    Moment_Text moment;
    if (std::strftime(text.data(), text.size(), "%Y%m%d", &parts) > 0) {
        moment.date = text.data();
    }
    if (std::strftime(text.data(), text.size(), "%H%M%S", &parts) > 0) {
        moment.time = text.data();
    }
    return moment;
}

}  // namespace volumes

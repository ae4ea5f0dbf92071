#include "workbench/archive/anonymous_object.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <new>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcelem.h"
#include "dcmtk/dcmdata/dctag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/archive/anonymous_rules.h"
#include "workbench/archive/secret_hash.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/unique_identifier.h"

namespace workbench::archive {

namespace {

constexpr int NESTING_MOST = 64;  // sequences in sequences
constexpr int DAYS_MOST = 3650;
constexpr const char* DUMMY_TEXT = "ANONYMOUS";

/** The toolkit refuses nothing but for want of memory here. */
void Demand(const OFCondition& condition) {
    if (condition.bad()) {
        throw std::bad_alloc();
    }
}

std::uint64_t Number_Of(const Hash_Bytes& hash, std::size_t byte_nb) {
    std::uint64_t number = 0;
    for (std::size_t at = 0; at < byte_nb; ++at) {
        number = number << 8U | hash[at];
    }
    return number;
}

/** Changes every one of the values between backslashes. @return false: it has no such values */
template <class Change>
bool Values_Change(DcmElement& element, const Change& change) {
    OFString written;
    std::string changed;
    if (element.getOFStringArray(written).good()) {
        std::string_view rest(written.c_str(), written.size());
        while (true) {
            const std::size_t end = std::min(rest.find('\\'), rest.size());
            std::string_view value = rest.substr(0, end);
            while (!value.empty() && (value.back() == ' ' || value.back() == '\0')) {
                value.remove_suffix(1);
            }
            while (!value.empty() && value.front() == ' ') {
                value.remove_prefix(1);
            }
            changed += change(value);
            if (end == rest.size()) {
                break;
            }
            changed += '\\';
            rest.remove_prefix(end + 1);
        }
    }
    return element.putOFStringArray(OFString(changed.c_str(), changed.size())).good();
}

bool Is_Letters(DcmEVR representation) {
    constexpr std::array forms = {EVR_AE, EVR_AS, EVR_CS, EVR_DA, EVR_DS, EVR_DT, EVR_IS, EVR_LO, EVR_LT,
                                  EVR_PN, EVR_SH, EVR_ST, EVR_TM, EVR_UC, EVR_UI, EVR_UR, EVR_UT};
    return std::ranges::find(forms, representation) != forms.end();
}

/** Who a data set is about, for what is made up of it. */
struct Subject {
    std::string name;
    int days;
};

class Walk {
  public:
    Walk(const Anonymiser& its_maker, const Subject& its_subject) : maker(its_maker), subject(its_subject) {}

    void Item(DcmItem& item, int depth) const {
        for (unsigned long at = item.card(); at-- > 0;) {
            if (!Element(*item.getElement(at), depth)) {
                delete item.remove(at);
            }
        }
    }

  private:
    /** @return whether it stays */
    bool Element(DcmElement& element, int depth) const {
        switch (Action(element)) {
            case Anonymous_Action::Keep:
                return Items(element, depth);
            case Anonymous_Action::Remove:
                return false;
            case Anonymous_Action::Empty:
                return element.clear().good();
            case Anonymous_Action::Dummy:
                return element.putString(DUMMY_TEXT).good();
            case Anonymous_Action::Patient:
                return element.putString(subject.name.c_str()).good();
            case Anonymous_Action::Replace:
                return Values_Change(element, [this](std::string_view value) { return maker.Identifier(value); });
            case Anonymous_Action::Shift:
                return Values_Change(element,
                                     [this](std::string_view value) { return Date_Shifted(value, subject.days); });
        }
        return false;
    }

    /** A file may name another form for a value than the standard does: the one that shows more counts. */
    static Anonymous_Action Action(const DcmElement& element) {
        const std::uint16_t group = element.getGTag();
        const std::uint16_t number = element.getETag();
        const DcmEVR standard = DcmTag(group, number).getEVR();
        if (standard != EVR_UNKNOWN && standard != EVR_UN) {
            // A sequence that is not written as one could not be walked.
            const bool is_hidden_sequence = standard == EVR_SQ && element.getVR() != EVR_SQ;
            if (is_hidden_sequence || (Is_Letters(standard) && !Is_Letters(element.getVR()))) {
                return Anonymous_Action::Remove;
            }
            const Anonymous_Action action = Anonymous_Action_Of(group, number, standard);
            if (action != Anonymous_Action::Keep) {
                return action;
            }
        }
        return Anonymous_Action_Of(group, number, element.getVR());
    }

    bool Items(DcmElement& element, int depth) const {
        if (element.getVR() != EVR_SQ) {
            return true;
        }
        if (depth >= NESTING_MOST) {
            return false;
        }
        for (DcmObject* at = element.nextInContainer(nullptr); at != nullptr; at = element.nextInContainer(at)) {
            if (auto* const item = dynamic_cast<DcmItem*>(at)) {
                Item(*item, depth + 1);
            }
        }
        return true;
    }

    const Anonymiser& maker;
    const Subject& subject;
};

/** Who a data set is about, in letters that do not depend on its character set: images and what is made of them agree.
 *  Numbers are given by each hospital anew; without number and name the study stands for the patient. */
std::string Patient_Key(DcmItem& data_set) {
    const std::string issuer = volumes::Field_Utf8(data_set, DCM_IssuerOfPatientID);
    if (const std::string number = volumes::Field_Utf8(data_set, DCM_PatientID); !number.empty()) {
        return issuer.empty() ? number : number + " of " + issuer;
    }
    if (std::string name = volumes::Field_Utf8(data_set, DCM_PatientName); !name.empty()) {
        return name;
    }
    return "study " + volumes::Field_Text(data_set, DCM_StudyInstanceUID);
}

/** An object that was made just now would tell by how many days its dates were moved: it was made with the study.
 *  @param data_set dates of the study moved already */
void Making_Hide(DcmItem& data_set) {
    constexpr const char* no_date = "19000101";
    constexpr const char* no_time = "000000";
    const std::string date = volumes::Field_Text(data_set, DCM_StudyDate);
    const std::string time = volumes::Field_Text(data_set, DCM_StudyTime);
    const auto put = [&](const DcmTagKey& tag, const std::string& value, const char* without) {
        if (data_set.tagExists(tag)) {
            Demand(data_set.putAndInsertString(tag, value.empty() ? without : value.c_str()));
        }
    };
    for (const DcmTagKey& tag : {DCM_SeriesDate, DCM_ContentDate, DCM_InstanceCreationDate}) {
        put(tag, date, no_date);
    }
    for (const DcmTagKey& tag : {DCM_SeriesTime, DCM_ContentTime, DCM_InstanceCreationTime}) {
        put(tag, time, no_time);
    }
}

void Marks_Write(DcmItem& data_set) {
    Demand(data_set.putAndInsertString(DCM_PatientIdentityRemoved, "YES"));
    Demand(data_set.putAndInsertString(DCM_DeidentificationMethod,
                                       "PS3.15 basic profile\\dates shifted\\free texts and private elements removed"));
    Demand(data_set.putAndInsertString(DCM_LongitudinalTemporalInformationModified, "MODIFIED"));
    struct Code {
        const char* value;
        const char* meaning;
    };
    constexpr std::array codes = {
        Code{"113100", "Basic Application Confidentiality Profile"},
        Code{"113107", "Retain Longitudinal Temporal Information Modified Dates Option"},
    };
    for (std::size_t at = 0; at < codes.size(); ++at) {
        DcmItem* item = nullptr;
        Demand(data_set.findOrCreateSequenceItem(DCM_DeidentificationMethodCodeSequence, item, static_cast<long>(at)));
        Demand(item->putAndInsertString(DCM_CodeValue, codes[at].value));
        Demand(item->putAndInsertString(DCM_CodingSchemeDesignator, "DCM"));
        Demand(item->putAndInsertString(DCM_CodeMeaning, codes[at].meaning));
    }
}

}  // namespace

std::string Anonymiser::Identifier(std::string_view identifier) const {
    std::string whole(identifier);
    if (identifier.empty() || dcmFindNameOfUID(whole.c_str()) != nullptr) {
        return whole;
    }
    const Hash_Bytes hash = Secret_Hash_Of(secret, "identifier " + whole);
    std::array<std::uint32_t, 4> words{};
    for (std::size_t at = 0; at < 16; ++at) {
        words[at / 4] = words[at / 4] << 8U | hash[at];
    }
    // A UUID of a form of one's own: version 8 of variant 1.
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x00008000U;
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;
    return "2.25." + volumes::Decimal_Text(words);
}

int Anonymiser::Days(std::string_view patient) const {
    const Hash_Bytes hash = Secret_Hash_Of(secret, "days " + std::string(patient));
    return 1 + static_cast<int>(Number_Of(hash, 7) % DAYS_MOST);
}

std::string Anonymiser::Patient_Name(std::string_view patient) const {
    std::array<char, 16> digits{};
    const Hash_Bytes hash = Secret_Hash_Of(secret, "patient " + std::string(patient));
    std::snprintf(digits.data(), digits.size(), "ANON%010llX", static_cast<unsigned long long>(Number_Of(hash, 5)));
    return digits.data();
}

std::string Date_Shifted(std::string_view date, int days) {
    constexpr std::size_t day_length = 8;
    int number = 0;
    const auto [end, failure] = std::from_chars(date.data(), date.data() + std::min(date.size(), day_length), number);
    if (date.size() < day_length || failure != std::errc() || end != date.data() + day_length || number <= 0) {
        return {};
    }
    const std::string_view rest = date.substr(day_length);
    if (rest.find_first_not_of("0123456789.+-") != std::string_view::npos) {
        return {};
    }
    namespace chrono = std::chrono;
    const chrono::year_month_day day{chrono::year(number / 10000),
                                     chrono::month(static_cast<unsigned>(number / 100 % 100)),
                                     chrono::day(static_cast<unsigned>(number % 100))};
    if (!day.ok()) {
        return {};
    }
    const chrono::year_month_day earlier{chrono::sys_days(day) - chrono::days(days)};
    if (static_cast<int>(earlier.year()) < 1) {
        return {};
    }
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d%02u%02u", static_cast<int>(earlier.year()),
                  static_cast<unsigned>(earlier.month()), static_cast<unsigned>(earlier.day()));
    return std::string(text.data()).append(rest);
}

std::string Anonymiser::Anonymise(DcmItem& data_set) const {
    if (!data_set.tagExists(DCM_PixelData) && !data_set.tagExists(DCM_FloatPixelData) &&
        !data_set.tagExists(DCM_DoubleFloatPixelData)) {
        return "is no image, and only images can be sent without the patient's identity";
    }
    const std::string patient = Patient_Key(data_set);
    const Subject subject = {Patient_Name(patient), Days(patient)};
    const bool is_segmentation = volumes::Field_Text(data_set, DCM_Modality) == "SEG";
    Walk(*this, subject).Item(data_set, 0);
    if (is_segmentation) {
        Making_Hide(data_set);
    }
    Marks_Write(data_set);
    return {};
}

namespace {

/** Older devices draw texts into bits that no grey value uses. */
bool Has_Overlay_In_Pixels(DcmItem& data_set) {
    constexpr std::uint16_t groups_end = 0x6020;
    for (std::uint16_t group = 0x6000; group < groups_end; group += 2) {
        const bool is_there = data_set.tagExists(DcmTagKey(group, 0x0010)) ||  // Overlay Rows
                              data_set.tagExists(DcmTagKey(group, 0x0102));    // Overlay Bit Position
        if (is_there && !data_set.tagExists(DcmTagKey(group, 0x3000))) {       // Overlay Data
            return true;
        }
    }
    return false;
}

}  // namespace

std::string Burnt_In_Doubt(DcmItem& data_set) {
    const std::string told = volumes::Field_Text(data_set, DCM_BurnedInAnnotation);
    if (told == "YES") {
        return "they say that texts are burnt into them";
    }
    if (Has_Overlay_In_Pixels(data_set)) {
        return "they have an overlay in the unused bits of their pixels";
    }
    struct Kind {
        const char* modality;
        const char* what;
    };
    constexpr std::array kinds = {Kind{"US", "ultrasound"},          Kind{"IVUS", "ultrasound"},
                                  Kind{"ES", "endoscopy"},           Kind{"XC", "photographs"},
                                  Kind{"GM", "microscopy"},          Kind{"SM", "microscopy"},
                                  Kind{"OP", "photographs"},         Kind{"RF", "fluoroscopy"},
                                  Kind{"OT", "of another modality"}, Kind{"SC", "secondary captures"}};
    const std::string modality = volumes::Field_Text(data_set, DCM_Modality);
    const auto kind = std::ranges::find(kinds, modality, &Kind::modality);
    // A screen is drawn with its texts, whatever the device says of it.
    for (unsigned long at = 0; at < 8; ++at) {
        const std::string value = volumes::Field_Text(data_set, DCM_ImageType, at);
        if (value.find("SCREEN") != std::string::npos || value.find("DOSE") != std::string::npos) {
            return "they are pictures of a screen";
        }
        if (value == "LABEL" || value == "OVERVIEW") {
            return "they show the label of a slide";
        }
    }
    if (told == "NO") {
        return {};
    }
    if (kind != kinds.end()) {
        return std::string("they are ") + kind->what;
    }
    const std::string sop_class = volumes::Field_Text(data_set, DCM_SOPClassUID);
    return sop_class.starts_with(UID_SecondaryCaptureImageStorage) ? "they are secondary captures" : std::string();
}

}  // namespace workbench::archive

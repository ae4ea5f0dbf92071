#include <algorithm>
#include <charconv>
#include <tuple>
#include <vector>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/volumes/dicom_fields.h"

namespace workbench::archive {

namespace {

constexpr std::size_t ANSWER_SIZE_MOST = 64U * 1024U;  // bytes: a few lines of text
constexpr std::size_t KEY_MOST = 64;                   // letters of a value that is looked for

bool Is_Date(const std::string& text) {
    constexpr std::size_t length = 8;
    return text.size() == length &&
           std::ranges::all_of(text, [](char letter) { return letter >= '0' && letter <= '9'; });
}

/** A value that is looked for: several values and control characters have no place in it. */
std::string Key(const std::string& text) {
    std::string key;
    for (const char letter : text) {
        key += letter == '\\' || static_cast<unsigned char>(letter) < ' ' ? '?' : letter;
    }
    const std::size_t first = key.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : key.substr(first, key.find_last_not_of(' ') - first + 1);
}

bool Has_Wildcard(const std::string& key) {
    return key.find_first_of("*?") != std::string::npos;
}

std::string Beginning(const std::string& text) {
    const std::string key = Key(text);
    return key.empty() || Has_Wildcard(key) ? key : key + "*";
}

std::string Part(const std::string& text) {
    const std::string key = Key(text);
    return key.empty() || Has_Wildcard(key) ? key : "*" + key + "*";
}

int Count(DcmItem& item, const DcmTagKey& tag) {
    const std::optional<std::int32_t> count = volumes::Field_Integer(item, tag);
    return count && *count >= 0 ? *count : -1;
}

void Put(DcmDataset& keys, const DcmTagKey& tag, const std::string& value) {
    if (keys.putAndInsertString(tag, value.c_str()).bad()) {
        throw std::bad_alloc();
    }
}

/** Sends keys and gives every answer to `take`, which returns false where it has enough. */
template <class Take>
void Find(const Archive_Settings& archive, const Load_Progress& progress, DcmDataset& keys, const Take& take) {
    Connection_Watch watch(progress);
    const Proposal proposal{UID_FINDStudyRootQueryRetrieveInformationModel, Plain_Syntaxes()};
    Archive_Association association(archive, watch, {&proposal, 1});
    const T_ASC_PresentationContextID context = association.Context_Of(proposal.sop_class);
    if (context == 0) {
        throw Refusal(Archive_Fault::Refused, archive, "does not let itself be searched.");
    }
    T_DIMSE_Message request = Request_Of(DIMSE_C_FIND_RQ, proposal.sop_class, association.Message_Number());
    association.Send(context, request, &keys);
    while (true) {
        const Archive_Message answer = association.Receive();
        Answer_Demand(archive, answer, DIMSE_C_FIND_RSP, request.msg.CFindRQ.MessageID);
        std::unique_ptr<DcmDataset> content;
        if (answer.Has_Content()) {
            content = association.Receive_Data_Set(answer, ANSWER_SIZE_MOST);
        }
        const int status = answer.Number(DCM_Status);
        if (Is_Pending(status)) {
            if (content && !take(*content)) {
                return;  // without a goodbye: few archives stop when they are asked to
            }
        } else if (status != STATUS_SUCCESS) {
            throw Refusal(Archive_Fault::Refused, archive, "refuses the search: " + Status_Text(answer) + ".");
        } else {
            association.Release();
            return;
        }
    }
}

/** Of a query's texts: letters beyond ASCII need a character set. */
void Character_Set_Put(DcmDataset& keys, const std::vector<std::string>& texts) {
    const bool is_plain = std::ranges::all_of(texts, [](const std::string& text) {
        return std::ranges::all_of(text, [](char letter) { return static_cast<unsigned char>(letter) < 0x80; });
    });
    Put(keys, DCM_SpecificCharacterSet, is_plain ? "" : "ISO_IR 192");
}

template <class Answer, class Make>
Search_Result<Answer> Search(const Archive_Settings& archive, const Load_Progress& progress, DcmDataset& keys,
                             const Make& make) {
    Search_Result<Answer> result;
    result.outcome = Outcome_Of(archive, [&] {
        Find(archive, progress, keys, [&](DcmDataset& content) {
            if (result.answers.size() >= ANSWER_MOST) {
                result.is_cut = true;
                return false;
            }
            Answer answer = make(content);
            if (Is_Identifier(answer.identifier)) {
                result.answers.push_back(std::move(answer));
            } else {
                ++result.unusable;
            }
            return result.unusable <= static_cast<int>(ANSWER_MOST);
        });
    });
    return result;
}

Study Study_Of(DcmItem& item) {
    Study study;
    study.identifier = volumes::Field_Text(item, DCM_StudyInstanceUID);
    study.patient_name = volumes::Field_Person(item, DCM_PatientName);
    study.patient_id = volumes::Field_Utf8(item, DCM_PatientID);
    study.birth_date = volumes::Field_Date(item, DCM_PatientBirthDate);
    study.date = volumes::Field_Date(item, DCM_StudyDate);
    study.description = volumes::Field_Utf8(item, DCM_StudyDescription);
    for (unsigned long position = 0;; ++position) {
        const std::string modality = volumes::Field_Text(item, DCM_ModalitiesInStudy, position);
        if (modality.empty()) {
            break;
        }
        study.modalities += (study.modalities.empty() ? "" : ", ") + modality;
    }
    study.series_count = Count(item, DCM_NumberOfStudyRelatedSeries);
    study.image_count = Count(item, DCM_NumberOfStudyRelatedInstances);
    return study;
}

Series Series_Of(DcmItem& item) {
    Series series;
    series.identifier = volumes::Field_Text(item, DCM_SeriesInstanceUID);
    series.number = volumes::Field_Text(item, DCM_SeriesNumber);
    series.modality = volumes::Field_Text(item, DCM_Modality);
    series.description = volumes::Field_Utf8(item, DCM_SeriesDescription);
    series.image_count = Count(item, DCM_NumberOfSeriesRelatedInstances);
    return series;
}

int Number_Of(const Series& series) {
    int number = 0;
    std::from_chars(series.number.data(), series.number.data() + series.number.size(), number);
    return number;
}

}  // namespace

std::string Query_Doubt(const Study_Query& query) {
    for (const std::string* const text :
         {&query.patient_name, &query.patient_id, &query.modality, &query.description}) {
        if (text->size() > KEY_MOST - 2) {
            return "What is looked for is longer than an archive can have it.";
        }
    }
    for (const std::string* const date : {&query.date_from, &query.date_to}) {
        if (!date->empty() && !Is_Date(*date)) {
            return "A date is to have eight digits: year, month and day, as in 20240131.";
        }
    }
    if (!query.date_from.empty() && !query.date_to.empty() && query.date_to < query.date_from) {
        return "The last date is before the first one.";
    }
    return {};
}

Search_Result<Study> Studies_Search(const Archive_Settings& archive, const Study_Query& query,
                                    const Load_Progress& progress) {
    if (std::string doubt = Query_Doubt(query); !doubt.empty()) {
        return {{Archive_Fault::Settings, std::move(doubt)}, {}};
    }
    DcmDataset keys;
    Character_Set_Put(keys, {query.patient_name, query.patient_id, query.description});
    Put(keys, DCM_QueryRetrieveLevel, "STUDY");
    Put(keys, DCM_StudyInstanceUID, "");
    Put(keys, DCM_PatientName, Beginning(query.patient_name));
    Put(keys, DCM_PatientID, Key(query.patient_id));
    Put(keys, DCM_PatientBirthDate, "");
    const bool has_date = !query.date_from.empty() || !query.date_to.empty();
    Put(keys, DCM_StudyDate, has_date ? query.date_from + "-" + query.date_to : "");
    Put(keys, DCM_StudyDescription, Part(query.description));
    Put(keys, DCM_ModalitiesInStudy, Key(query.modality));
    Put(keys, DCM_NumberOfStudyRelatedSeries, "");
    Put(keys, DCM_NumberOfStudyRelatedInstances, "");
    Search_Result<Study> result = Search<Study>(archive, progress, keys, Study_Of);
    std::ranges::stable_sort(result.answers, [](const Study& one, const Study& other) {
        return std::tie(other.date, one.patient_name) < std::tie(one.date, other.patient_name);
    });
    return result;
}

Search_Result<Series> Series_Search(const Archive_Settings& archive, const std::string& study,
                                    const Load_Progress& progress) {
    if (!Is_Identifier(study)) {
        return {{Archive_Fault::Settings, "The study has no usable identifier."}, {}};
    }
    DcmDataset keys;
    Put(keys, DCM_SpecificCharacterSet, "");
    Put(keys, DCM_QueryRetrieveLevel, "SERIES");
    Put(keys, DCM_StudyInstanceUID, study);
    Put(keys, DCM_SeriesInstanceUID, "");
    Put(keys, DCM_SeriesNumber, "");
    Put(keys, DCM_Modality, "");
    Put(keys, DCM_SeriesDescription, "");
    Put(keys, DCM_NumberOfSeriesRelatedInstances, "");
    Search_Result<Series> result = Search<Series>(archive, progress, keys, Series_Of);
    for (Series& series : result.answers) {
        series.study = study;  // whatever the archive says: it is what was asked for
    }
    std::ranges::stable_sort(result.answers, {}, Number_Of);
    return result;
}

}  // namespace workbench::archive

#include "workbench/archive/archive_texts.h"

#include <algorithm>

#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::size_t REASONS_SHOWN = 3;

}  // namespace

std::string Counted_Text(int count, const char* one, const char* many) {
    return count < 0 ? std::string()
                     : volumes::Count_Text(static_cast<std::uint64_t>(count)) + " " + (count == 1 ? one : many);
}

std::string Objects_Text(int count) {
    return Counted_Text(count, "object", "objects");
}

std::string Seconds_Text(std::chrono::milliseconds time) {
    return volumes::Amount_Text(std::chrono::duration<double>(time).count()) + " seconds";
}

std::string Joined_Text(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            joined += (joined.empty() ? "" : "   ") + volumes::Printable_Text(part, volumes::FIELD_SHOWN_MOST);
        }
    }
    return joined;
}

std::string Study_Text(const Study& study) {
    return Joined_Text({study.date, study.patient_name.empty() ? "(no name)" : study.patient_name, study.patient_id,
                        study.birth_date.empty() ? "" : "born " + study.birth_date, study.modalities, study.description,
                        Counted_Text(study.series_count, "series", "series"),
                        Counted_Text(study.image_count, "image", "images")});
}

std::string Series_Text(const Series& series) {
    return Joined_Text({series.number, series.modality,
                        series.description.empty() ? "(no description)" : series.description,
                        Counted_Text(series.image_count, "image", "images")});
}

std::string Reasons_Text(const Send_Result& sent, bool is_held) {
    std::vector<std::string> reasons;
    for (const Sent_File& file : sent.files) {
        if (!file.is_accepted && file.is_held == is_held && std::ranges::find(reasons, file.remark) == reasons.end()) {
            reasons.push_back(file.remark);
        }
    }
    std::string text;
    for (std::size_t at = 0; at < std::min(reasons.size(), REASONS_SHOWN); ++at) {
        text += (at == 0 ? "" : " ") + volumes::Printable_Text(reasons[at], volumes::FIELD_SHOWN_MOST);
    }
    return text + (reasons.size() > REASONS_SHOWN ? " And others." : "");
}

}  // namespace workbench::archive

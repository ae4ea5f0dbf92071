#include "workbench/model/label_files.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <vector>

#include "workbench/model/label_description_file.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr std::size_t NAME_MOST = 80;  // bytes of a title that becomes a name

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return text;
}

/** A file's name without the endings of volumes; empty when it has none of them. */
std::string Volume_Stem(const std::string& name) {
    const std::string lower = Lower(name);
    for (const std::string_view ending :
         {".nii.gz", ".hdr.gz", ".img.gz", ".nii", ".hdr", ".img", ".nrrd", ".nhdr", ".mha", ".mhd"}) {
        if (lower.size() > ending.size() && lower.ends_with(ending)) {
            return name.substr(0, name.size() - ending.size());
        }
    }
    return {};
}

/** A title as a file may be called: no signs that a system takes for something else, no end that it drops. */
std::string Name_From(const std::string& title) {
    std::string name;
    for (const char unit : title) {
        const bool is_sign = static_cast<unsigned char>(unit) < 0x20 ||
                             std::string_view("<>:\"/\\|?*").find(unit) != std::string_view::npos;
        const char put = is_sign ? ' ' : unit;
        if (put != ' ' || (!name.empty() && name.back() != ' ')) {
            name += put;
        }
    }
    if (name.size() > NAME_MOST) {
        std::size_t end = NAME_MOST;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U) {
            --end;  // not within a letter
        }
        name.resize(end);
    }
    while (!name.empty() && (name.back() == ' ' || name.back() == '.')) {
        name.pop_back();
    }
    return name;
}

std::string Listed(const std::vector<std::string>& names, const char* one, const char* several) {
    std::string text;
    for (std::size_t at = 0; at < names.size(); ++at) {
        text += (at == 0 ? "" : at + 1 == names.size() ? " and " : ", ") + names[at];
    }
    return text.empty() ? text : text + " " + (names.size() == 1 ? one : several);
}

}  // namespace

std::filesystem::path Label_Path_Proposed(const std::filesystem::path& image, const std::string& title) {
    const std::string name = image.has_filename() ? volumes::File_Name_Text(image) : std::string();
    std::string stem = Volume_Stem(name);
    if (stem.empty()) {
        stem = Name_From(title);
    }
    if (stem.empty()) {
        stem = image.has_stem() ? volumes::File_Name_Text(image.stem()) : "image";
    }
    std::error_code unknown;
    const std::filesystem::path folder = std::filesystem::absolute(image, unknown).parent_path();
    return (unknown ? image.parent_path() : folder) / volumes::Path_From_Utf8(stem + "_labels.nii.gz");
}

Label_Stamps Label_Stamps_Of(const std::filesystem::path& labels) {
    return {volumes::File_Stamp_Of(labels), volumes::File_Stamp_Of(Label_Description_Path(labels))};
}

Save_Doubts Save_Doubts_Of(const std::filesystem::path& labels, const Label_Stamps& known) {
    const Label_Stamps now = Label_Stamps_Of(labels);
    const std::filesystem::path description = Label_Description_Path(labels);
    Save_Doubts doubts;
    std::vector<std::string> changed;
    std::vector<std::string> read_only;
    const auto look = [&](const std::filesystem::path& file, const volumes::File_Stamp& was,
                          const volumes::File_Stamp& is) {
        // A file that is gone is no loss to overwrite.
        if (is.is_there && volumes::File_Is_Changed(was, is)) {
            changed.push_back(volumes::File_Name_Text(file));
        }
        if (volumes::File_Is_Read_Only(file)) {
            read_only.push_back(volumes::File_Name_Text(file));
        }
    };
    look(labels, known.labels, now.labels);
    doubts.is_theirs = !changed.empty();
    look(description, known.description, now.description);
    doubts.changed = Listed(changed, "was written by another program since it was read or saved here.",
                            "were written by another program since they were read or saved here.");
    doubts.read_only = Listed(read_only, "is protected: it may only be read.", "are protected: they may only be read.");
    return doubts;
}

}  // namespace workbench

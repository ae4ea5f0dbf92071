#include "workbench/model/label_description_file.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

#include "workbench/model/text_file.h"
#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr std::size_t FILE_SIZE_MOST = 4U << 20U;  // bytes; a longer file is none of ours

/** Whether a path's last extension is this one, in capitals too. */
bool Has_Extension(const std::filesystem::path& path, const char* extension) {
    const auto name = path.extension().native();
    const std::string_view wanted = extension;
    const auto is_same = [](auto unit, char letter) {
        return unit == static_cast<decltype(unit)>(letter) ||
               (letter >= 'a' && letter <= 'z' && unit == static_cast<decltype(unit)>(letter - 'a' + 'A'));
    };
    return std::equal(name.begin(), name.end(), wanted.begin(), wanted.end(), is_same);
}

std::string Not_Saved(const std::filesystem::path& file, const std::string& error) {
    return "The labels are saved, but not their names, colours, thresholds and markers: " +
           volumes::File_Name_Text(file) + " " + error + ".";
}

}  // namespace

std::filesystem::path Label_Description_Path(const std::filesystem::path& labels) {
    std::filesystem::path file = labels;
    for (const char* extension : {".gz", ".nii"}) {
        if (Has_Extension(file, extension)) {
            file.replace_extension();
        }
    }
    file += ".labels.txt";
    return file;
}

std::string Label_Description_Save(const std::filesystem::path& labels, const Label_Description& description,
                                   const Label_Extent& extent, std::string& kept) {
    kept.clear();
    const std::filesystem::path file = Label_Description_Path(labels);
    std::error_code unknown;
    if (std::filesystem::is_regular_file(file, unknown)) {
        std::string text;
        const std::string unread = Text_File_Read(file, FILE_SIZE_MOST, text);
        const Label_Description_Reading there = Label_Description_Parse(text, extent);
        if (!unread.empty() || !there.refused.empty() || there.left_out > 0) {
            std::filesystem::path aside;
            if (const std::string error = Text_File_Keep_Aside(file, there.is_newer ? ".newer" : ".damaged", &aside);
                !error.empty()) {
                return Not_Saved(file, error);
            }
            kept =
                "The former " + volumes::File_Name_Text(file) + " is kept as " + volumes::File_Name_Text(aside) + ".";
        }
    }
    const std::string error = Text_File_Write(file, Label_Description_Text(description));
    return error.empty() ? std::string() : Not_Saved(file, error);
}

Label_Description_Loading Label_Description_Load(const std::filesystem::path& labels, const Label_Extent& extent) {
    Label_Description_Loading loading;
    const std::filesystem::path file = Label_Description_Path(labels);
    std::error_code unknown;
    if (!std::filesystem::exists(file, unknown)) {
        return loading;
    }
    std::string text;
    std::string error = Text_File_Read(file, FILE_SIZE_MOST, text);
    Label_Description_Reading reading;
    if (error.empty()) {
        reading = Label_Description_Parse(text, extent);
        error = reading.refused;
    }
    if (!error.empty()) {
        loading.warning = "Names, colours, thresholds and markers are as they were: " + volumes::File_Name_Text(file) +
                          " " + error + ".";
        return loading;
    }
    loading.is_there = true;
    loading.description = std::move(reading.description);
    if (reading.left_out > 0) {
        loading.warning = volumes::File_Name_Text(file) + ": " + std::to_string(reading.left_out) +
                          (reading.left_out == 1 ? " line was left out, " : " lines were left out; the first is ") +
                          reading.first_left_out + ".";
    }
    return loading;
}

}  // namespace workbench

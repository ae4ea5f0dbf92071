#include "workbench/volumes/image_file_kind.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

#include "workbench/volumes/decoded_source.h"
#include "workbench/volumes/unfinished_file.h"

namespace volumes {

namespace {

bool Has_Ending(const std::string& name, std::string_view ending) {
    return name.size() >= ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), name.rbegin(), [](char wanted, char letter) {
               return letter == wanted || (letter >= 'A' && letter <= 'Z' && letter - 'A' + 'a' == wanted);
           });
}

}  // namespace

bool Is_Volume_Name(const std::string& name) {
    return std::ranges::any_of(
        std::initializer_list<std::string_view>{".nii", ".nii.gz", ".hdr", ".hdr.gz", ".nrrd", ".nhdr", ".mha", ".mhd"},
        [&](std::string_view ending) { return Has_Ending(name, ending); });
}

bool Is_Dicom_Name(const std::string& name) {
    return std::ranges::any_of(std::initializer_list<std::string_view>{".dcm", ".dicom", ".ima", ".dcm.gz"},
                               [&](std::string_view ending) { return Has_Ending(name, ending); });
}

bool Is_Voxels_Of_Pair(const Wanted_File& file, const std::string& name) {
    const auto ends = [&](const char* ending) { return Has_Ending(name, ending); };
    const bool is_image = ends(".img") || ends(".img.gz");
    if (file.is_named || (!is_image && !ends(".raw") && !ends(".raw.gz") && !ends(".zraw"))) {
        return false;
    }
    std::filesystem::path stem = file.path;
    if (Has_Ending(name, ".gz")) {
        stem.replace_extension();
    }
    stem.replace_extension();
    std::error_code unknown;
    using Endings = std::initializer_list<const char*>;
    return std::ranges::any_of(is_image ? Endings{".hdr", ".hdr.gz"} : Endings{".mhd", ".nhdr"},
                               [&](const char* ending) {
                                   std::filesystem::path header = stem;
                                   return std::filesystem::exists(header.concat(ending), unknown);
                               });
}

bool Is_Nifti_Content(std::span<const std::uint8_t> head) {
    constexpr std::size_t mark_at_1 = 344;
    constexpr std::size_t mark_at_2 = 4;
    const auto has = [&](std::size_t at, std::string_view mark) {
        return head.size() >= at + mark.size() && std::equal(mark.begin(), mark.end(), head.begin() + at);
    };
    return has(mark_at_1, std::string_view("n+1\0", 4)) || has(mark_at_2, std::string_view("n+2\0", 4));
}

bool Is_Dicom_Content(const std::filesystem::path& path) {
    constexpr std::size_t mark_at = 128;
    constexpr std::string_view mark = "DICM";
    File_Source plain(path);
    Decoded_Source source(plain);
    std::vector<std::uint8_t> head(mark_at + mark.size());
    head.resize(source.Read(head));
    return head.size() == mark_at + mark.size() && std::equal(mark.begin(), mark.end(), head.begin() + mark_at);
}

std::vector<std::filesystem::path> Folder_Files(const std::filesystem::path& folder,
                                                std::vector<Folder_Problem>& problems) {
    std::vector<std::filesystem::path> files;
    std::vector<std::filesystem::path> waiting = {folder};
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        return waiting;
    }
    while (!waiting.empty()) {
        const std::filesystem::path below = std::move(waiting.back());
        waiting.pop_back();
        std::filesystem::directory_iterator entry(below, error);
        for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
            std::error_code unknown;
            if (entry->is_directory(unknown)) {
                if (!entry->is_symlink(unknown)) {
                    waiting.push_back(entry->path());
                }
            } else if (Unfinished_Target(entry->path()).empty()) {
                files.push_back(entry->path());
            }
        }
        if (error) {
            problems.push_back({below, "is a folder that cannot be read", false});
            error.clear();
        }
    }
    std::ranges::sort(files, {},
                      [](const std::filesystem::path& path) { return std::pair(path.parent_path(), path.filename()); });
    return files;
}

}  // namespace volumes

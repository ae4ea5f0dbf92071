// What became of a folder, for people.
#include <algorithm>
#include <system_error>

#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

std::vector<Folder_Problem> Problems_Add(std::span<const Folder_Problem> further,
                                         std::vector<Folder_Problem>& problems) {
    std::vector<Folder_Problem> added;
    for (const Folder_Problem& problem : further) {
        if (std::ranges::find(problems, problem) == problems.end()) {
            problems.push_back(problem);
            added.push_back(problem);
        }
    }
    return added;
}

std::string Image_Folder_Text(const Image_Folder& folder) {
    const auto refused = std::ranges::count(folder.problems, false, &Folder_Problem::is_opened);
    const auto count = [](std::uint64_t number, const char* what) {
        return Count_Text(number) + ' ' + what + (number == 1 ? "" : "s");
    };
    std::string text = count(folder.volumes.size(), "volume") + " of " + count(folder.files.size(), "file");
    if (refused > 0) {
        text += "; " + count(static_cast<std::uint64_t>(refused), "file") + (refused == 1 ? " was" : " were") +
                " not opened";
    }
    return text;
}

std::string Image_Folder_Problems_Text(const Image_Folder& folder, const std::filesystem::path& below) {
    std::string text;
    for (const Folder_Problem& problem : folder.problems) {
        std::filesystem::path shown = problem.path.lexically_relative(below);
        if (shown.empty() || shown == ".") {
            shown = problem.path.filename();
        }
        try {
            const std::u8string name = shown.generic_u8string();
            text.append(name.begin(), name.end());
        } catch (const std::system_error&) {
            text += "A file whose name has no text";
        }
        text += ": " + problem.reason + (problem.is_opened ? " (opened all the same)\n" : "\n");
    }
    return text;
}

}  // namespace volumes

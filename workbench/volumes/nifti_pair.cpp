#include "workbench/volumes/nifti_pair.h"

#include <algorithm>
#include <system_error>

#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

std::string Lower_Case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

// A file of this name, or of it with ".gz", whatever its capitals.
std::filesystem::path Partner_Of_Other_Case(const std::filesystem::path& wanted) {
    const std::string name = Lower_Case(File_Name_Text(wanted));
    const std::filesystem::path folder = wanted.has_parent_path() ? wanted.parent_path() : std::filesystem::path(".");
    std::filesystem::path found;
    std::error_code code;
    std::filesystem::directory_iterator entry(folder, code);
    for (const std::filesystem::directory_iterator end; !code && entry != end; entry.increment(code)) {
        const std::string other = Lower_Case(File_Name_Text(entry->path()));
        std::error_code unknown;
        // The first by name, not by the order of the folder, which differs from system to system.
        if ((other == name || other == name + ".gz") && entry->is_regular_file(unknown) &&
            (found.empty() || entry->path() < found)) {
            found = entry->path();
        }
    }
    return found;
}

}  // namespace

std::filesystem::path Partner_Find(const std::filesystem::path& path, const std::string& from, const std::string& to) {
    std::filesystem::path base = path;
    if (Lower_Case(base.extension().string()) == ".gz") {
        base.replace_extension();
    }
    if (Lower_Case(base.extension().string()) != from) {
        return {};
    }
    std::string upper = to;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    for (const std::string& extension : {to, to + ".gz", upper, upper + ".GZ"}) {
        std::filesystem::path candidate = base;
        candidate.replace_extension(extension);
        std::error_code code;
        if (std::filesystem::is_regular_file(candidate, code)) {
            return candidate;
        }
    }
    return Partner_Of_Other_Case(base.replace_extension(to));
}

}  // namespace volumes

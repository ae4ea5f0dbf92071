#include "workbench/volumes/unfinished_file.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "workbench/volumes/file_lock.h"

namespace volumes {

namespace {

namespace fs = std::filesystem;

// Without letters outside ASCII, so they are the same in every system's text of a path.
constexpr std::string_view MARK_BEGIN = ".workbench-";
constexpr std::size_t MARK_SIZE = 8;  // hexadecimal digits
constexpr std::string_view MARK_END = ".part";
constexpr std::size_t ENDING_SIZE = MARK_BEGIN.size() + MARK_SIZE + MARK_END.size();

// Between closing and renaming a file is not held. A program that saves another target may be just there.
constexpr std::chrono::seconds AGE_OF_OTHERS{60};

bool Is_Digit(fs::path::value_type unit) {
    return (unit >= '0' && unit <= '9') || (unit >= 'a' && unit <= 'f');
}

bool Is_Same(fs::path::string_type::const_iterator at, std::string_view text) {
    return std::equal(text.begin(), text.end(), at, [](char wanted, fs::path::value_type unit) {
        return unit == static_cast<fs::path::value_type>(wanted);
    });
}

bool Is_Old(const fs::path& file) {
    std::error_code code;
    const fs::file_time_type written = fs::last_write_time(file, code);
    return !code && fs::file_time_type::clock::now() - written > AGE_OF_OTHERS;
}

int Remove(const fs::path& target) {
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::vector<fs::path> found;
    std::error_code code;
    fs::directory_iterator entry(folder, code);
    for (const fs::directory_iterator end; !code && entry != end; entry.increment(code)) {
        const fs::path of = Unfinished_Target(entry->path());
        std::error_code unknown;
        if (!of.empty() && entry->is_regular_file(unknown) &&
            (of.filename() == target.filename() || Is_Old(entry->path()))) {
            found.push_back(entry->path());
        }
    }
    return static_cast<int>(std::ranges::count_if(found, [](const fs::path& file) {
        { const std::optional<File_Lock> lock = File_Lock::Take(file); }  // letting go removes it
        std::error_code unknown;
        return !fs::exists(file, unknown);
    }));
}

}  // namespace

fs::path Unfinished_Name(const fs::path& target, std::uint32_t mark) {
    char digits[MARK_SIZE + 1] = {};
    std::snprintf(digits, sizeof digits, "%08x", static_cast<unsigned int>(mark));
    fs::path name = target;
    name += std::string(MARK_BEGIN) + digits + std::string(MARK_END);
    return name;
}

fs::path Unfinished_Target(const fs::path& file) {
    const fs::path::string_type name = file.filename().native();
    if (name.size() <= ENDING_SIZE) {
        return {};
    }
    const auto ending = name.end() - static_cast<std::ptrdiff_t>(ENDING_SIZE);
    const auto digits = ending + static_cast<std::ptrdiff_t>(MARK_BEGIN.size());
    const auto end = digits + static_cast<std::ptrdiff_t>(MARK_SIZE);
    if (!Is_Same(ending, MARK_BEGIN) || !std::all_of(digits, end, Is_Digit) || !Is_Same(end, MARK_END)) {
        return {};
    }
    return file.parent_path() / fs::path(fs::path::string_type(name.begin(), ending));
}

int Unfinished_Remove(const fs::path& target) noexcept {
    try {
        return Remove(target);
    } catch (const std::exception&) {
        return 0;
    }
}

}  // namespace volumes

#include "workbench/archive/archive_cache.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "workbench/archive/archive_settings.h"

namespace workbench::archive {

namespace {

namespace fs = std::filesystem;

constexpr int NAME_NB = 1000;  // tried
// On Windows a folder cannot be renamed while a virus scanner reads one of the new files.
constexpr int BUSY_NB = 20;
constexpr std::chrono::milliseconds BUSY_PAUSE{100};
constexpr std::string_view UNFINISHED = ".fetching-";
constexpr char COPY_MARK = '-';
constexpr std::chrono::hours LEFT_BEHIND_AGE{24};

struct Entry {
    fs::path path;
    fs::file_time_type time;
    std::uint64_t bytes = 0;
    bool is_unfinished = false;
};

/** Whether a folder can be one that this made. */
bool Is_Own_Name(const std::string& name, bool& is_unfinished) {
    const std::size_t mark = name.find(UNFINISHED);
    is_unfinished = mark != std::string::npos;
    return Is_Identifier(name.substr(0, is_unfinished ? mark : name.find(COPY_MARK)));
}

/** Whether a folder holds what was fetched and nothing else: labels that were saved beside the images are somebody's
 *  work. */
bool Is_All_Fetched(const fs::path& folder) {
    std::error_code code;
    for (fs::directory_iterator at(folder, code), end; !code && at != end; at.increment(code)) {
        std::error_code kind;
        if (at->is_symlink(kind) || !at->is_regular_file(kind) || at->path().extension() != ".dcm" ||
            !Is_Identifier(at->path().stem().string())) {
            return false;
        }
    }
    return !code;
}

bool Is_Same(const fs::path& left, const fs::path& right) {
    std::error_code code;
    return left == right || fs::equivalent(left, right, code);
}

std::uint64_t Bytes_In(const fs::path& folder) {
    std::uint64_t bytes = 0;
    std::error_code code;
    for (fs::directory_iterator at(folder, code), end; !code && at != end; at.increment(code)) {
        std::error_code size_code;
        const std::uintmax_t size = at->is_regular_file(size_code) ? at->file_size(size_code) : 0;
        bytes += size_code ? 0 : size;
    }
    return bytes;
}

std::vector<Entry> Entries(const fs::path& root) {
    std::vector<Entry> entries;
    std::error_code code;
    for (fs::directory_iterator at(root, code), end; !code && at != end; at.increment(code)) {
        Entry entry;
        std::error_code entry_code;
        // A link is followed by nobody: what it leads to is not ours.
        if (at->is_symlink(entry_code) || !at->is_directory(entry_code) ||
            !Is_Own_Name(at->path().filename().string(), entry.is_unfinished) ||
            (!entry.is_unfinished && !Is_All_Fetched(at->path()))) {
            continue;
        }
        entry.path = at->path();
        entry.time = at->last_write_time(entry_code);
        if (!entry_code) {
            entry.bytes = Bytes_In(entry.path);
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

}  // namespace

Fetched_Folder::Fetched_Folder(fs::path its_root, std::string its_series)
    : root(std::move(its_root)), series(std::move(its_series)) {
    std::error_code code;
    fs::create_directories(root, code);
    std::random_device random;
    for (int attempt = 0; !code && path.empty() && attempt < NAME_NB; ++attempt) {
        const fs::path tried = root / (series + std::string(UNFINISHED) + std::to_string(random()));
        if (fs::create_directory(tried, code)) {
            path = tried;
        }
    }
    if (path.empty()) {
        error = "cannot be made: " + (code ? code.message() : std::string("too many of that name"));
    }
}

Fetched_Folder::~Fetched_Folder() {
    if (!path.empty()) {
        std::error_code code;
        fs::remove_all(path, code);
    }
}

fs::path Fetched_Folder::Keep() {
    std::error_code code;
    int busy = 0;
    for (int copy = 1; copy < NAME_NB;) {
        fs::path name = root / (copy == 1 ? series : series + COPY_MARK + std::to_string(copy));
        if (fs::exists(fs::symlink_status(name, code))) {
            ++copy;
            continue;
        }
        fs::rename(path, name, code);
        if (!code) {
            path.clear();
            return name;
        }
        if (code == std::errc::permission_denied && ++busy < BUSY_NB) {
            std::this_thread::sleep_for(BUSY_PAUSE);
            continue;
        }
        if (code != std::errc::file_exists && code != std::errc::directory_not_empty) {
            break;
        }
        ++copy;
    }
    error = "cannot be given its name: " + (code ? code.message() : std::string("too many of that name"));
    return {};
}

std::uint64_t Cache_Trim(const fs::path& root, std::uint64_t most, std::span<const fs::path> kept) noexcept {
    try {
        std::vector<Entry> entries = Entries(root);
        std::ranges::sort(entries, {}, &Entry::time);
        std::uint64_t sum = 0;
        for (const Entry& entry : entries) {
            sum += entry.bytes;
        }
        const auto now = fs::file_time_type::clock::now();
        for (const Entry& entry : entries) {
            const bool is_left_behind = entry.is_unfinished && now - entry.time > LEFT_BEHIND_AGE;
            const bool is_too_much = !entry.is_unfinished && sum > most;
            if ((!is_left_behind && !is_too_much) ||
                std::ranges::any_of(kept, [&](const fs::path& one) { return Is_Same(one, entry.path); })) {
                continue;
            }
            std::error_code code;
            fs::remove_all(entry.path, code);
            sum -= code ? 0 : entry.bytes;
        }
        return sum;
    } catch (...) {
        return 0;
    }
}

}  // namespace workbench::archive

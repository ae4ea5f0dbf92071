#include "workbench/model/recovery_folder.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <system_error>

#include "workbench/model/text_file.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/unfinished_file.h"

namespace workbench {

namespace {

namespace fs = std::filesystem;

constexpr int ATTEMPTS = 20;  // names tried for an own journal
constexpr const char* ENDING = ".work";

fs::path With_Ending(fs::path stem, const char* ending) {
    stem += ending;
    return stem;
}

/** The stems of all journals and locks of a folder. */
std::set<fs::path> Stems(const fs::path& folder) {
    std::set<fs::path> stems;
    std::error_code code;
    for (fs::directory_iterator entry(folder, code), end; !code && entry != end; entry.increment(code)) {
        const fs::path unfinished = volumes::Unfinished_Target(entry->path());
        fs::path name = (unfinished.empty() ? entry->path() : unfinished).filename();
        if (volumes::File_Name_Text(name).starts_with("session-") &&
            (name.extension() == ".lock" || name.extension() == ENDING)) {
            stems.insert(folder / name.replace_extension());
        }
    }
    return stems;
}

}  // namespace

bool Recovery_Claim::Remove() {
    const bool is_gone = !volumes::File_Operations_In_Use().remove(file);
    volumes::Unfinished_Remove(file);
    return is_gone;
}

std::optional<Recovery_Claim> Recovery_Claim_Make(const fs::path& folder) {
    std::error_code code;
    fs::create_directories(folder, code);
    std::random_device random;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        char name[32] = {};
        std::snprintf(name, sizeof name, "session-%08x%08x", random(), random());
        const fs::path stem = folder / name;
        std::optional<volumes::File_Lock> lock = volumes::File_Lock::Take(With_Ending(stem, ".lock"));
        if (lock && !fs::exists(With_Ending(stem, ENDING), code)) {
            return Recovery_Claim(With_Ending(stem, ENDING), std::move(*lock));
        }
    }
    return std::nullopt;
}

Recovery_Findings Recovery_Find(const fs::path& folder) {
    Recovery_Findings findings;
    for (const fs::path& stem : Stems(folder)) {
        std::optional<volumes::File_Lock> lock = volumes::File_Lock::Take(With_Ending(stem, ".lock"));
        const fs::path journal = With_Ending(stem, ENDING);
        std::error_code code;
        if (!lock) {
            // Somebody holds it, or it cannot be made: nobody can then say whether a program still writes there.
            if (fs::exists(journal, code) && !fs::is_regular_file(With_Ending(stem, ".lock"), code)) {
                findings.told.push_back("Work that was not saved may be in " + volumes::File_Name_Text(journal) +
                                        ", which cannot be taken up: nothing can be written to " +
                                        volumes::File_Name_Text(folder) + ".");
            }
            continue;
        }
        volumes::Unfinished_Remove(journal);
        if (!fs::exists(journal, code)) {
            continue;
        }
        std::string bytes;
        if (const std::string error = Text_File_Read(journal, RECOVERY_FILE_MOST, bytes); !error.empty()) {
            findings.told.push_back("Work that was not saved may be in " + volumes::File_Name_Text(journal) +
                                    ", which " + error + ".");
            continue;
        }
        Recovery_Reading reading = Recovery_Decode(bytes);
        if (!reading.record) {
            fs::path aside = journal;
            const std::string error = Text_File_Keep_Aside(journal, reading.is_newer ? ".newer" : ".damaged", &aside);
            findings.told.push_back(
                "Work that was not saved cannot be taken up: " + volumes::File_Name_Text(journal) + " " +
                reading.problem +
                (error.empty() ? ". It is kept as " + volumes::File_Name_Text(aside) + "." : ". It " + error + "."));
            continue;
        }
        findings.found.push_back({Recovery_Claim(journal, std::move(*lock)), std::move(*reading.record)});
    }
    std::ranges::sort(findings.found,
                      [](const Recovery_Found& a, const Recovery_Found& b) { return a.record.time > b.record.time; });
    return findings;
}

}  // namespace workbench

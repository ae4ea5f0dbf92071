#include "workbench/parts/level_supply.h"

#include <new>

#include "workbench/volumes/message_text.h"

namespace workbench {

namespace {

constexpr std::size_t PROBLEMS_SHOWN = 3;  // one by one; more are only counted

std::string Reading_Text(const std::string& title) {
    return "Reading " + title;
}

std::string Refusal_Text(const std::string& title, const volumes::Levels_Result& result) {
    return title + " cannot be shown: it " + result.error + '.';
}

}  // namespace

volumes::Load_Limits Level_Supply::Limits() const {
    volumes::Load_Limits limits;
    limits.decoded_bytes = host.memory_most();
    return limits;
}

Level_Supply::Read Level_Supply::Levels_Read(const volumes::Waiting_Levels& wanted, const std::string& title) {
    Read read;
    const volumes::Load_Limits limits = Limits();
    dialogs.Run(Reading_Text(title), [&](const volumes::Load_Progress& progress) {
        read.result = volumes::Waiting_Levels_Read(wanted, progress, limits);
        if (read.result.volume) {
            read.numbers = volumes::Volume_Statistics_Compute(*read.result.volume);
        }
    });
    if (read.result.is_cancelled) {
        dialogs.Tell("Reading was given up");
    }
    return read;
}

void Level_Supply::Problems_Tell(const std::string& title, std::span<const volumes::Folder_Problem> found) {
    const std::vector<volumes::Folder_Problem> problems = host.problems_note(found);
    for (const volumes::Folder_Problem& problem : problems) {
        dialogs.Log("problem " + volumes::File_Name_Text(problem.path) + ' ' + problem.reason + '.');
    }
    if (problems.size() > PROBLEMS_SHOWN) {
        return dialogs.Warn(title + ": there is something to know of " + volumes::Count_Text(problems.size()) +
                            " files. File > What was read lists it.");
    }
    for (const volumes::Folder_Problem& problem : problems) {
        dialogs.Warn(volumes::File_Name_Text(problem.path) + ' ' + problem.reason + '.');
    }
}

bool Level_Supply::First_Read(volumes::Image_Folder& folder, std::vector<volumes::Volume_Statistics>& numbers) {
    while (!folder.volumes.empty()) {
        const std::size_t first = Open_Volumes::First_Of(folder);
        volumes::Folder_Volume& one = folder.volumes[first];
        if (one.waiting.empty()) {
            return true;
        }
        Read read = Levels_Read(volumes::Waiting_Levels_Of(one.volume, one.file_of_slice, folder.files, one.waiting),
                                one.title);
        if (read.result.is_cancelled) {
            return false;
        }
        if (read.result.volume) {
            one.volume = std::move(*read.result.volume);
            numbers[first] = read.numbers;
            volumes::Problems_Add(read.result.problems, folder.problems);
            return true;
        }
        folder.problems.push_back({one.path, "belongs to " + one.title + ", which " + read.result.error, false});
        folder.volumes.erase(folder.volumes.begin() + static_cast<std::ptrdiff_t>(first));
        numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(first));
    }
    return true;
}

bool Level_Supply::Make_Ready(int volume) {
    if (!work.volumes.Is_Waiting(volume, work.session)) {
        return true;
    }
    const std::string title = work.volumes.Facts(volume).title;
    try {
        Read read = Levels_Read(work.volumes.Wanted_Levels(volume, work.session), title);
        if (!read.result.volume) {
            if (!read.result.is_cancelled) {
                dialogs.Warn(Refusal_Text(title, read.result));
            }
            return false;
        }
        work.volumes.Levels_Take(volume, std::move(*read.result.volume), read.numbers, work.session);
        host.came(volume);
        Problems_Tell(title, read.result.problems);
        return true;
    } catch (const std::bad_alloc&) {
        dialogs.Warn("There is not enough memory for " + title + '.');
        return false;
    }
}

bool Level_Supply::Room_Keep() {
    const std::vector<int> leaving = work.volumes.To_Leave(host.memory_most(), work.session);
    if (leaving.empty()) {
        return false;
    }
    host.counting_cancel();
    for (const int volume : leaving) {
        work.volumes.Levels_Leave(volume);
        host.gone(volume);
    }
    return true;
}

}  // namespace workbench

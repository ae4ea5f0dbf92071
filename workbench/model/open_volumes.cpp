#include "workbench/model/open_volumes.h"

#include <algorithm>
#include <utility>

#include "workbench/model/display_window.h"

namespace workbench {

namespace {

Grey_Window Window_Of(const volumes::Volume& volume, const volumes::Volume_Statistics& numbers) {
    Grey_Window window;
    window.low = static_cast<float>(numbers.window_low);
    window.high = static_cast<float>(numbers.window_high);
    return First_Window(volume).value_or(window);
}

}  // namespace

std::size_t Open_Volumes::First_Of(const volumes::Image_Folder& folder) {
    const auto worth = [](const volumes::Folder_Volume& one) { return one.is_scout ? 0 : one.volume.nz; };
    return static_cast<std::size_t>(std::ranges::max_element(folder.volumes, {}, worth) - folder.volumes.begin());
}

void Open_Volumes::Clear(Session& current_session) {
    volumes.clear();
    files.clear();
    origins.clear();
    current = -1;
    current_session = Session();
}

void Open_Volumes::Take(volumes::Image_Folder&& folder, std::vector<volumes::Volume_Statistics>&& statistics,
                        Session& current_session) {
    Clear(current_session);
    const std::size_t first = First_Of(folder);
    try {
        statistics.resize(folder.volumes.size());
        volumes.reserve(folder.volumes.size());
        for (std::size_t at = 0; at < folder.volumes.size(); ++at) {
            volumes::Folder_Volume& opened = folder.volumes[at];
            Entry& entry = volumes.emplace_back();
            entry.facts = {std::move(opened.title), std::move(opened.descriptor),   opened.modality, opened.is_scout,
                           opened.is_cine,          std::move(opened.file_of_slice)};
            const volumes::Volume_Statistics& numbers = statistics[at];
            entry.view = {numbers, Window_Of(opened.volume, numbers), opened.volume.nz / 2, std::nullopt, {}};
            entry.slices = std::move(opened.waiting);
            entry.was_shown = !opened.volume.levels.empty();
            entry.session.Take(std::move(opened.volume), opened.path);
        }
        files = std::move(folder.files);
        origins = std::move(folder.origins);
        origins.resize(files.size());
    } catch (...) {
        Clear(current_session);
        throw;
    }
    current = static_cast<int>(first);
    volumes[first].used = ++last_used;
    std::swap(current_session, volumes[first].session);
}

const Session& Open_Volumes::Session_Of(int volume, const Session& current_session) const {
    return volume == current ? current_session : volumes[static_cast<std::size_t>(volume)].session;
}

void Open_Volumes::Switch(int wanted, Session& current_session) {
    if (wanted < 0 || wanted >= Nb() || wanted == current) {
        return;
    }
    std::swap(current_session, volumes[static_cast<std::size_t>(current)].session);
    current = wanted;
    volumes[static_cast<std::size_t>(current)].used = ++last_used;
    std::swap(current_session, volumes[static_cast<std::size_t>(current)].session);
}

Session& Open_Volumes::Own_Session(int volume, Session& current_session) {
    return volume == current ? current_session : volumes[static_cast<std::size_t>(volume)].session;
}

bool Open_Volumes::Is_Waiting(int volume, const Session& current_session) const {
    return !volumes[static_cast<std::size_t>(volume)].slices.empty() &&
           !Session_Of(volume, current_session).Has_Levels();
}

int Open_Volumes::Read_Nb(const Session& current_session) const {
    int nb = 0;
    for (int volume = 0; volume < Nb(); ++volume) {
        nb += Session_Of(volume, current_session).Has_Levels() ? 1 : 0;
    }
    return nb;
}

volumes::Waiting_Levels Open_Volumes::Wanted_Levels(int volume, const Session& current_session) const {
    const Entry& entry = volumes[static_cast<std::size_t>(volume)];
    return volumes::Waiting_Levels_Of(Session_Of(volume, current_session).Image(), entry.facts.file_of_slice, files,
                                      entry.slices);
}

void Open_Volumes::Levels_Take(int volume, volumes::Volume&& read, const volumes::Volume_Statistics& statistics,
                               Session& current_session) {
    Entry& entry = volumes[static_cast<std::size_t>(volume)];
    const Grey_Window window = entry.was_shown ? entry.view.window : Window_Of(read, statistics);
    Own_Session(volume, current_session).Levels_Take(std::move(read));
    entry.view.statistics = statistics;
    entry.view.window = window;
    entry.was_shown = true;
    entry.used = ++last_used;
}

std::vector<int> Open_Volumes::To_Leave(std::uint64_t bytes, const Session& current_session) const {
    std::uint64_t taken = 0;
    std::vector<int> may_leave;
    for (int volume = 0; volume < Nb(); ++volume) {
        const Session& session = Session_Of(volume, current_session);
        taken += session.Has_Levels() ? session.Image().levels.Bytes() : 0;
        if (volume != current && session.Has_Levels() && !session.Has_Unsaved_Work() &&
            !volumes[static_cast<std::size_t>(volume)].slices.empty()) {
            may_leave.push_back(volume);
        }
    }
    std::ranges::sort(may_leave, {}, [this](int volume) { return volumes[static_cast<std::size_t>(volume)].used; });
    std::size_t leaving_nb = 0;
    while (taken > bytes && leaving_nb < may_leave.size()) {
        taken -= Session_Of(may_leave[leaving_nb], current_session).Image().levels.Bytes();
        ++leaving_nb;
    }
    may_leave.resize(leaving_nb);
    return may_leave;
}

std::vector<int> Open_Volumes::Unsaved(const Session& current_session) const {
    std::vector<int> unsaved;
    for (int volume = 0; volume < Nb(); ++volume) {
        if (Session_Of(volume, current_session).Is_Unsaved()) {
            unsaved.push_back(volume);
        }
    }
    return unsaved;
}

}  // namespace workbench

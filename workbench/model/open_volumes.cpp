#include "workbench/model/open_volumes.h"

#include <algorithm>
#include <utility>

#include "workbench/model/display_window.h"

namespace workbench {

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
    try {
        statistics.resize(folder.volumes.size());
        volumes.reserve(folder.volumes.size());
        for (std::size_t at = 0; at < folder.volumes.size(); ++at) {
            volumes::Folder_Volume& opened = folder.volumes[at];
            Entry& entry = volumes.emplace_back();
            entry.facts = {std::move(opened.title), std::move(opened.descriptor),   opened.modality, opened.is_scout,
                           opened.is_cine,          std::move(opened.file_of_slice)};
            const volumes::Volume_Statistics& numbers = statistics[at];
            Grey_Window window;
            window.low = static_cast<float>(numbers.window_low);
            window.high = static_cast<float>(numbers.window_high);
            window = First_Window(opened.volume).value_or(window);
            entry.view = {numbers, window, opened.volume.nz / 2, std::nullopt, {}};
            entry.session.Take(std::move(opened.volume), opened.path);
        }
        files = std::move(folder.files);
        origins = std::move(folder.origins);
        origins.resize(files.size());
    } catch (...) {
        Clear(current_session);
        throw;
    }
    // What people have opened the folder for: no scout, and most frames.
    const auto worth = [](const Entry& entry) { return entry.facts.is_scout ? 0 : entry.session.Slice_Nb(); };
    current = static_cast<int>(std::ranges::max_element(volumes, {}, worth) - volumes.begin());
    std::swap(current_session, volumes[static_cast<std::size_t>(current)].session);
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
    std::swap(current_session, volumes[static_cast<std::size_t>(current)].session);
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

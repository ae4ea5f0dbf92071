#include "workbench/model/recovery_recorder.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace workbench {

namespace {

std::uint64_t Tagged_Nb(const Label_Map& labels) {
    const std::span<const std::uint8_t> all = labels.All();
    return static_cast<std::uint64_t>(all.size()) -
           static_cast<std::uint64_t>(std::ranges::count(all, std::uint8_t{0}));
}

}  // namespace

std::string Path_To_Utf8(const std::filesystem::path& path) {
    try {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        return {};
    }
}

std::optional<Recovery_Snapshot> Recovery_Recorder::Look(const Open_Volumes& volumes, const Session& in_hand,
                                                         const std::function<Label_Description()>& describe,
                                                         const std::vector<std::string>& opened) {
    std::map<std::uint64_t, std::uint64_t> now;
    for (int volume = 0; volume < volumes.Nb(); ++volume) {
        const Session& session = volumes.Session_Of(volume, in_hand);
        if (session.Has_Unsaved_Work()) {
            now[session.Serial()] = session.Change_Nb();
        }
    }
    if (now == seen) {
        return std::nullopt;
    }
    Recovery_Snapshot snapshot;
    snapshot.time =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    snapshot.opened = opened;
    const Label_Description description = now.empty() ? Label_Description{} : describe();
    for (int volume = 0; volume < volumes.Nb(); ++volume) {
        const Session& session = volumes.Session_Of(volume, in_hand);
        if (!session.Has_Unsaved_Work()) {
            continue;
        }
        Recovery_Part& part = snapshot.parts.emplace_back();
        part.serial = session.Serial();
        part.order = session.Order();
        Label_Description own = description;
        session.Markers_Describe(own.markers);
        part.facts = {Path_To_Utf8(session.Path()),    volumes.Facts(volume).title,        volume,
                      Volume_Grid_Of(session.Image()), Path_To_Utf8(session.Label_Path()), session.Stamps(),
                      Label_Description_Text(own),     Tagged_Nb(session.Labels()),        {}};
        const auto before = seen.find(part.serial);
        part.is_whole = before == seen.end();
        for (int slice = 0; slice < session.Slice_Nb(); ++slice) {
            if (part.is_whole || session.Slice_Change_Nb(slice) > before->second) {
                const std::span<const std::uint8_t> tags = session.Labels().Slice(slice);
                part.slices.emplace_back(slice, std::vector<std::uint8_t>(tags.begin(), tags.end()));
            }
        }
    }
    seen = std::move(now);
    return snapshot;
}

int Recovery_Volume_Find(const Open_Volumes& volumes, const Session& in_hand, const Recovery_Volume& wanted) {
    int found = -1;
    for (int volume = 0; volume < volumes.Nb(); ++volume) {
        const Session& session = volumes.Session_Of(volume, in_hand);
        if (Path_To_Utf8(session.Path()) != wanted.image || volumes.Facts(volume).title != wanted.title ||
            Grid_Compare(Volume_Grid_Of(session.Image()), wanted.grid).relation != Grid_Relation::SAME) {
            continue;
        }
        if (found < 0 || volume == wanted.index) {  // of equal ones the place in the list decides
            found = volume;
        }
    }
    return found;
}

}  // namespace workbench

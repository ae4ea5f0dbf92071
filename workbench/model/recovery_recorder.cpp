#include "workbench/model/recovery_recorder.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace workbench {

std::string Path_To_Utf8(const std::filesystem::path& path) {
    try {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        return {};
    }
}

bool Recovery_Recorder::Copy(const Session& session, std::size_t& room) {
    const auto before = seen.find(session.Serial());
    const std::uint64_t known = before != seen.end() ? before->second : 0;
    std::map<int, Slice_Copy>& own = copies[session.Serial()];
    const auto take = [&](int slice) {
        const std::span<const std::uint8_t> tags = session.Labels().Slice(slice);
        own[slice] = {session.Slice_Change_Nb(slice), {tags.begin(), tags.end()}};
    };
    for (int slice = 0; slice < session.Slice_Nb(); ++slice) {
        if (session.Slice_Change_Nb(slice) <= known || own.contains(slice)) {
            continue;
        }
        if (room == 0) {
            return false;
        }
        take(slice);
        room -= std::min(room, session.Labels().Slice_Size());
    }
    // All at once: a few slices, which changed while the others were copied.
    for (const auto& [slice, copy] : own) {
        if (copy.change_nb != session.Slice_Change_Nb(slice)) {
            take(slice);
        }
    }
    return true;
}

std::optional<Recovery_Snapshot> Recovery_Recorder::Look(const Open_Volumes& volumes, const Session& current_session,
                                                         const std::function<Label_Description(int volume)>& describe,
                                                         const std::vector<std::string>& opened) {
    std::map<std::uint64_t, std::uint64_t> now;
    std::vector<int> unsaved;
    for (int volume = 0; volume < volumes.Nb(); ++volume) {
        const Session& session = volumes.Session_Of(volume, current_session);
        if (session.Has_Unsaved_Work()) {
            now[session.Serial()] = session.Change_Nb();
            unsaved.push_back(volume);
        }
    }
    std::erase_if(copies, [&](const auto& one) { return !now.contains(one.first); });
    is_unfinished = false;
    if (now == seen) {
        return std::nullopt;
    }
    std::size_t room = RECOVERY_COPY_MOST;
    for (const int volume : unsaved) {
        is_unfinished = !Copy(volumes.Session_Of(volume, current_session), room) || is_unfinished;
    }
    if (is_unfinished) {
        return std::nullopt;
    }
    Recovery_Snapshot snapshot;
    snapshot.time =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    snapshot.opened = opened;
    for (const int volume : unsaved) {
        const Session& session = volumes.Session_Of(volume, current_session);
        Recovery_Part& part = snapshot.parts.emplace_back();
        part.serial = session.Serial();
        part.order = session.Order();
        Label_Description own = describe(volume);
        session.Markers_Describe(own.markers);
        part.facts = {Path_To_Utf8(session.Path()),
                      volumes.Facts(volume).title,
                      volume,
                      Volume_Grid_Of(session.Image()),
                      Path_To_Utf8(session.Label_Path()),
                      session.Stamps(),
                      Label_Description_Text(own),
                      0,
                      {}};
        part.is_whole = !seen.contains(part.serial);
    }
    // From here on nothing is thrown that would lose copies: the places are made before.
    for (Recovery_Part& part : snapshot.parts) {
        part.slices.reserve(copies[part.serial].size());
    }
    for (Recovery_Part& part : snapshot.parts) {
        for (auto& [slice, copy] : copies[part.serial]) {
            part.slices.emplace_back(slice, std::move(copy.tags));
        }
    }
    copies.clear();
    seen = std::move(now);
    return snapshot;
}

int Recovery_Volume_Find(const Open_Volumes& volumes, const Session& current_session, const Recovery_Volume& wanted) {
    int found = -1;
    for (int volume = 0; volume < volumes.Nb(); ++volume) {
        const Session& session = volumes.Session_Of(volume, current_session);
        if (Path_To_Utf8(session.Path()) != wanted.image || volumes.Facts(volume).title != wanted.title ||
            Grid_Compare(Volume_Grid_Of(session.Image()), wanted.grid).relation != Grid_Relation::Same) {
            continue;
        }
        if (found < 0 || volume == wanted.index) {  // of equal ones the place in the list decides
            found = volume;
        }
    }
    return found;
}

}  // namespace workbench

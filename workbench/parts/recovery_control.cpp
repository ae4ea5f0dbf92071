#include "workbench/parts/recovery_control.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <vector>

#include "workbench/model/recovery_text.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/unfinished_file.h"

namespace workbench {

namespace {

constexpr std::uint64_t LATE_MS = RECOVERY_LOSS_MOST_MS / 3;
constexpr int RETRY_LOOKS = 6;  // between two tries to write what could not be written

std::vector<std::uint8_t> Tags_Of(const Recovery_Volume& volume) {
    std::vector<std::uint8_t> tags(volume.grid.Voxel_Nb());
    const std::size_t slice_size = tags.size() / std::max<std::size_t>(volume.slices.size(), 1);
    for (std::size_t slice = 0; slice < volume.slices.size(); ++slice) {
        Slice_Unpack(volume.slices[slice], std::span(tags).subspan(slice * slice_size, slice_size));
    }
    return tags;
}

/** Names, colours and thresholds of all volumes are the same. */
bool Is_One_Scheme(const std::vector<Recovery_Volume>& volumes) {
    const auto differs = [](const Recovery_Volume& one, const Recovery_Volume& other) {
        return Recovery_Description(one).tags != Recovery_Description(other).tags;
    };
    return std::ranges::adjacent_find(volumes, differs) == volumes.end();
}

}  // namespace

std::filesystem::path Recovery_Folder_Of(const std::filesystem::path& settings_file) {
    if (settings_file.empty()) {
        return {};
    }
    std::error_code unknown;
    std::filesystem::path folder = std::filesystem::absolute(settings_file, unknown);
    folder.replace_extension(".recovery");
    return folder;
}

void Recovery_Control::Begin(const std::filesystem::path& its_folder, const std::string& program) {
    folder = its_folder;
    if (folder.empty()) {
        return;
    }
    claim = Recovery_Claim_Make(folder);
    if (!claim) {
        dialogs.Warn("Work that is not saved cannot be kept for the next start: nothing can be written to " +
                     Path_To_Utf8(folder) + ".");
        return;
    }
    keeper = std::make_unique<Recovery_Keeper>(claim->File(), program);
    looked = host.now_ms();
    host.look_after(RECOVERY_LOOK_MS);
}

bool Recovery_Control::Look() {
    if (!keeper) {
        return false;
    }
    looked = host.now_ms();
    bool is_complete = false;
    bool is_unfinished = false;
    try {
        if (keeper->Wants_Whole_Take()) {
            recorder.Forget();
        }
        std::optional<Recovery_Snapshot> snapshot = recorder.Look(
            work.volumes, work.session, [this](int volume) { return labels.Describe(volume); }, work.opened_paths);
        is_unfinished = recorder.Is_Unfinished();
        is_complete = !is_unfinished;
        if (snapshot) {
            dialogs.Log("recovery_looked " + std::to_string(snapshot->parts.size()));
            keeper->Offer(std::move(*snapshot));
        } else if (keeper->Has_Failed() && ++waited >= RETRY_LOOKS) {
            waited = 0;
            keeper->Retry();
        }
    } catch (const std::bad_alloc&) {
        dialogs.Log("recovery_no_memory");  // the next look tries again
        is_complete = false;
    }
    if (is_unfinished != is_soon) {
        is_soon = is_unfinished;
        host.look_after(is_soon ? RECOVERY_AGAIN_MS : RECOVERY_LOOK_MS);
    }
    const std::string problem = keeper->Problem_Take();
    if (!problem.empty() && !std::exchange(is_problem_told, true)) {
        dialogs.Warn("Work that is not saved is not kept for the next start any more: " +
                     volumes::File_Name_Text(claim->File()) + " " + problem + ". Save the labels.");
    }
    return is_complete;
}

void Recovery_Control::Look_If_Late() {
    if (keeper && host.now_ms() - looked > LATE_MS) {
        Look();
    }
}

void Recovery_Control::End() {
    keeper.reset();
    if (claim) {
        claim->Remove();
        claim.reset();
    }
}

void Recovery_Control::Crashes_Tell(std::span<const std::filesystem::path> reports) {
    if (!reports.empty()) {
        dialogs.Warn(
            "The workbench has ended by a fault since the last start. What happened stands in " +
            Path_To_Utf8(reports.back()) +
            (reports.size() > 1 ? ", and in " + std::to_string(reports.size() - 1) + " more beside it." : "."));
    }
}

bool Recovery_Control::Offer() {
    if (folder.empty()) {
        return false;
    }
    Recovery_Findings findings = Recovery_Find(folder);
    for (const std::string& sentence : findings.told) {
        dialogs.Warn(sentence);
    }
    for (Recovery_Found& found : findings.found) {
        for (const Recovery_Volume& volume : found.record.volumes) {
            if (!volume.labels.empty()) {  // the program may have ended while it saved
                volumes::Unfinished_Remove(volumes::Path_From_Utf8(volume.labels));
            }
        }
        const std::string text = Recovery_Found_Text(found.record);
        dialogs.Log("ask recovery " + text);
        const int way = dialogs.Way_Ask("Work that was not saved", text,
                                        {"&Take it up", "Ask again at the &next start", "&Discard it for good"});
        if (way == 0) {
            Take(found);
            return true;
        }
        if (way == 2 && !found.claim.Remove()) {
            dialogs.Warn(volumes::File_Name_Text(found.claim.File()) + " cannot be removed.");
        }
    }
    return false;
}

bool Recovery_Control::Take_Volume(const Recovery_Volume& wanted, bool is_first, int& volume) {
    volume = Recovery_Volume_Find(work.volumes, work.session, wanted);
    if (volume >= 0) {
        labels.Switch(volume);
    }
    const std::filesystem::path file =
        wanted.labels.empty() ? std::filesystem::path() : volumes::Path_From_Utf8(wanted.labels);
    const Label_Description description = Recovery_Description(wanted);
    if (volume < 0 || !work.session.Take_Up(Tags_Of(wanted), description.markers, file, wanted.stamps)) {
        return false;
    }
    labels.Nb_Grow(work.session.Labels().Highest_Tag());
    if (is_first || !labels.Is_Shared()) {  // names that all volumes have are those of the first
        host.take(description);
    }
    return true;
}

void Recovery_Control::Take(Recovery_Found& found) {
    std::vector<std::filesystem::path> paths;
    for (const std::string& path : found.record.opened) {
        paths.push_back(volumes::Path_From_Utf8(path));
    }
    host.open(paths);
    const int shown = work.volumes.Current();
    int first = -1;
    bool is_all = true;
    if (labels.Is_Shared() && !Is_One_Scheme(found.record.volumes)) {
        labels.Share(false);
        dialogs.Warn("The volumes had names and colours of their own, so they do not share one set any more.");
    }
    for (const Recovery_Volume& wanted : found.record.volumes) {
        int volume = -1;
        if (!Take_Volume(wanted, first < 0, volume)) {
            is_all = false;
            dialogs.Warn("The image of " + wanted.title + " (" + wanted.image +
                         ") is not there as it was; the work on it is kept, and is offered again at the next start.");
        } else if (first < 0) {
            first = volume;
        }
    }
    labels.Switch(shown);
    if (first >= 0) {
        host.go(first);
        work.hub.Note({Change::Pixels, Change::Markers, Change::Saved});
        dialogs.Tell("The work of " + Recovery_Time_Text(found.record.time) + " was taken up; it is not saved yet");
    }
    dialogs.Log("recovered " + std::to_string(is_all ? 1 : 0));
    // The journal that was found may go only when one of this run holds the same.
    bool is_held = false;
    do {
        is_held = Look();
    } while (is_soon);
    if (is_all && is_held && keeper->Wait()) {
        found.claim.Remove();
    }
}

void Recovery_Control::Step_Note() {
    const Undo_Journal& journal = work.session.Journal();
    if (journal.State() == noted_state) {
        return;
    }
    noted_state = journal.State();
    const Undo_Step* last = journal.Next_Undo();
    host.note("change: " + (last != nullptr ? last->title : std::string("start of a history")) + ", step " +
              std::to_string(journal.Undo_Nb()) + " of " + std::to_string(journal.Undo_Nb() + journal.Redo_Nb()));
}

}  // namespace workbench

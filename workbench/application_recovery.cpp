// Work that was not saved: journaled while the program runs, taken up after it has died. Reports of crashes.
#include <windows.h>

#include <algorithm>
#include <new>

#include "workbench/application.h"
#include "workbench/choice_dialog.h"
#include "workbench/crash_report.h"
#include "workbench/model/recovery_text.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/unfinished_file.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr UINT_PTR RECOVERY_TIMER = 41;
constexpr ULONGLONG RECOVERY_LATE_MS = RECOVERY_LOSS_MOST_MS / 3;
constexpr int RETRY_LOOKS = 6;  // between two tries to write what could not be written

std::vector<std::uint8_t> Tags_Of(const Recovery_Volume& volume) {
    std::vector<std::uint8_t> tags(volume.grid.Voxel_Nb());
    const std::size_t slice_size = tags.size() / std::max<std::size_t>(volume.slices.size(), 1);
    for (std::size_t slice = 0; slice < volume.slices.size(); ++slice) {
        Slice_Unpack(volume.slices[slice], std::span(tags).subspan(slice * slice_size, slice_size));
    }
    return tags;
}

}  // namespace

std::filesystem::path Application::Recovery_Folder() const {
    if (settings.File().empty()) {
        return {};
    }
    std::error_code unknown;
    std::filesystem::path folder = std::filesystem::absolute(settings.File(), unknown);
    folder.replace_extension(".recovery");
    return folder;
}

void Application::Recovery_Open() {
    const std::filesystem::path folder = Recovery_Folder();
    if (folder.empty()) {
        return;
    }
    Crash_Report_Install(folder, WORKBENCH_VERSION);
    recovery_claim = Recovery_Claim_Make(folder);
    if (!recovery_claim) {
        Warn("Work that is not saved cannot be kept for the next start: nothing can be written to " +
             Path_To_Utf8(folder) + ".");
        return;
    }
    recovery_keeper = std::make_unique<Recovery_Keeper>(recovery_claim->File(), WORKBENCH_VERSION);
    recovery_looked = ::GetTickCount64();
    Recovery_Look_After(RECOVERY_LOOK_MS);
}

void Application::Recovery_Look_After(int ms) {
    // A procedure of its own: it is called in every message loop, also those of dialogs and menus.
    ::SetTimer(window.Handle(), RECOVERY_TIMER, static_cast<UINT>(ms), [](HWND, UINT, UINT_PTR, DWORD) {
        if (Application* const application = The()) {
            application->Recovery_Look();
        }
    });
}

bool Application::Recovery_Look() {
    if (!recovery_keeper) {
        return false;
    }
    recovery_looked = ::GetTickCount64();
    bool is_complete = false;
    bool is_soon = false;
    try {
        if (recovery_keeper->Wants_Whole_Take()) {
            recovery_recorder.Forget();
        }
        std::optional<Recovery_Snapshot> snapshot = recovery_recorder.Look(
            volumes, session, [this] { return Labels_Describe(); }, opened_paths);
        is_soon = recovery_recorder.Is_Unfinished();
        is_complete = !is_soon;
        if (snapshot) {
            report.Line("recovery_looked " + std::to_string(snapshot->parts.size()));
            recovery_keeper->Offer(std::move(*snapshot));
        } else if (recovery_keeper->Has_Failed() && ++recovery_waited >= RETRY_LOOKS) {
            recovery_waited = 0;
            recovery_keeper->Retry();
        }
    } catch (const std::bad_alloc&) {
        report.Line("recovery_no_memory");  // the next look tries again
        is_complete = false;
    }
    if (is_soon != is_recovery_soon) {
        is_recovery_soon = is_soon;
        Recovery_Look_After(is_soon ? RECOVERY_AGAIN_MS : RECOVERY_LOOK_MS);
    }
    const std::string problem = recovery_keeper->Problem_Take();
    if (!problem.empty() && !std::exchange(is_recovery_problem_told, true)) {
        Warn("Work that is not saved is not kept for the next start any more: " +
             volumes::File_Name_Text(recovery_claim->File()) + " " + problem + ". Save the labels.");
    }
    return is_complete;
}

void Application::Recovery_Look_If_Late() {
    // Timers come last; a queue that is never empty must not hold them back for ever.
    if (recovery_keeper && ::GetTickCount64() - recovery_looked > RECOVERY_LATE_MS) {
        Recovery_Look();
    }
}

void Application::Recovery_End() {
    recovery_keeper.reset();
    if (recovery_claim) {
        recovery_claim->Remove();
        recovery_claim.reset();
    }
}

void Application::Crash_Tell() {
    const std::filesystem::path folder = Recovery_Folder();
    if (folder.empty()) {
        return;
    }
    const std::vector<std::filesystem::path> reports = Crash_Reports_Take(folder);
    if (!reports.empty()) {
        Warn("The workbench has ended by a fault since the last start. What happened stands in " +
             Path_To_Utf8(reports.back()) +
             (reports.size() > 1 ? ", and in " + std::to_string(reports.size() - 1) + " more beside it." : "."));
    }
}

bool Application::Recovery_Offer() {
    if (Recovery_Folder().empty()) {
        return false;
    }
    Recovery_Findings findings = Recovery_Find(Recovery_Folder());
    for (const std::string& sentence : findings.told) {
        Warn(sentence);
    }
    for (Recovery_Found& found : findings.found) {
        for (const Recovery_Volume& volume : found.record.volumes) {
            if (!volume.labels.empty()) {  // the program may have ended while it saved
                volumes::Unfinished_Remove(volumes::Path_From_Utf8(volume.labels));
            }
        }
        const std::string text = Recovery_Found_Text(found.record);
        report.Line("ask recovery " + text);
        const int way = Choice_Ask(window.Handle(), L"Work that was not saved", Wide_Of_Utf8(text),
                                   {L"&Take it up", L"Ask again at the &next start", L"&Discard it for good"});
        if (way == 0) {
            Recovery_Take(found);
            return true;
        }
        if (way == 2 && !found.claim.Remove()) {
            Warn(volumes::File_Name_Text(found.claim.File()) + " cannot be removed.");
        }
    }
    return false;
}

void Application::Recovery_Take(Recovery_Found& found) {
    std::vector<std::filesystem::path> paths;
    for (const std::string& path : found.record.opened) {
        paths.push_back(volumes::Path_From_Utf8(path));
    }
    Open_Paths(paths);
    const int shown = volumes.Current();
    int first = -1;
    bool is_all = true;
    for (const Recovery_Volume& wanted : found.record.volumes) {
        const int volume = Recovery_Volume_Find(volumes, session, wanted);
        if (volume >= 0) {
            volumes.Switch(volume, session);
        }
        const std::filesystem::path labels =
            wanted.labels.empty() ? std::filesystem::path() : volumes::Path_From_Utf8(wanted.labels);
        if (volume < 0 ||
            !session.Take_Up(Tags_Of(wanted), Recovery_Description(wanted).markers, labels, wanted.stamps)) {
            is_all = false;
            Warn("The image of " + wanted.title + " (" + wanted.image +
                 ") is not there as it was; the work on it is kept, and is offered again at the next start.");
        } else if (first < 0) {
            first = volume;
        }
    }
    if (volumes.Nb() > 0) {
        volumes.Switch(shown, session);
    }
    if (first >= 0) {
        Volume_Go(first);
        Tag_Nb_Grow(session.Labels().Highest_Tag());
        Labels_Adopt(Recovery_Description(found.record.volumes.front()));
        hub.Note({Change::Pixels, Change::Markers, Change::Saved});
        Status(L"The work of " + Wide_Of_Utf8(Recovery_Time_Text(found.record.time)) +
               L" was taken up; it is not saved yet");
    }
    report.Line("recovered " + std::to_string(is_all ? 1 : 0));
    // The journal that was found may go only when one of this run holds the same.
    bool is_held = false;
    do {
        is_held = Recovery_Look();
    } while (is_recovery_soon);
    if (is_all && is_held && recovery_keeper->Wait()) {
        found.claim.Remove();
    }
}

void Application::Changes_Note() {
    const Undo_Journal& journal = session.Journal();
    if (journal.State() == noted_state) {
        return;
    }
    noted_state = journal.State();
    const Undo_Step* last = journal.Next_Undo();
    Activity_Note("change: " + (last != nullptr ? last->title : std::string("start of a history")) + ", step " +
                  std::to_string(journal.Undo_Nb()) + " of " + std::to_string(journal.Undo_Nb() + journal.Redo_Nb()));
}

}  // namespace workbench

// Opening and saving.
#include <windows.h>

#include <algorithm>
#include <system_error>

#include "workbench/application.h"
#include "workbench/choice_dialog.h"
#include "workbench/file_dialog.h"
#include "workbench/folder_dialog.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr const wchar_t* VOLUME_FILTER =
    L"Images (*.nii, *.nii.gz, *.hdr, *.dcm, *.nrrd, *.mha)\0"
    L"*.nii;*.nii.gz;*.gz;*.hdr;*.img;*.dcm;*.ima;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0";
constexpr const wchar_t* LABEL_SAVE_FILTER =
    L"Label volumes (*.nii.gz, *.nii, *.nrrd, *.mha)\0"
    L"*.nii.gz;*.nii;*.gz;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0";
constexpr const wchar_t* LABEL_FILTER =
    L"Labels (*.nii.gz, *.nii, *.dcm, *.nrrd, *.mha)\0"
    L"*.nii.gz;*.nii;*.gz;*.dcm;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0";
constexpr const wchar_t* EXPORT_FILTER = L"Histograms (*.csv, *.txt)\0*.csv;*.txt\0All files\0*.*\0";

std::optional<std::filesystem::path> Label_Save_Ask(HWND owner, const std::filesystem::path& start) {
    std::optional<std::filesystem::path> path = Save_Ask(owner, L"Save labels", LABEL_SAVE_FILTER, start);
    if (path && !path->has_extension()) {
        *path += L".nii.gz";
    }
    return path;
}

}  // namespace

std::optional<volumes::Load_Result> Application::Load_With_Progress(const std::filesystem::path& path) {
    volumes::Load_Result result;
    dialogs.Run("Loading " + volumes::File_Name_Text(path),
                [&](const volumes::Load_Progress& progress) { result = volumes::Volume_Load(path, progress); });
    if (result.cancelled) {
        Status(L"Loading was given up");
        return std::nullopt;
    }
    if (!result.volume) {
        Warn(result.error, Warning_Subject::Label_File);
        return std::nullopt;
    }
    banner.Close(Warning_Subject::Label_File);  // what was told of other label files
    for (const std::string& warning : result.warnings) {
        Warn(warning, Warning_Subject::Label_File);
    }
    return result;
}

std::optional<Application::Save_Outcome> Application::Save_Doubts_Ask(const std::filesystem::path& path,
                                                                      bool is_chosen) {
    const Save_Doubts doubts = session.Doubts_Before(path, is_chosen);
    if (doubts.Is_None()) {
        return Save_Outcome::Saved;
    }
    std::vector<std::wstring> ways = {doubts.read_only.empty() ? L"&Overwrite" : L"&Overwrite all the same",
                                      L"&Save under another name..."};
    if (doubts.is_theirs) {
        ways.emplace_back(L"&Load theirs; the work here is lost");
    }
    ways.emplace_back(L"&Cancel");
    const std::string gap = doubts.changed.empty() || doubts.read_only.empty() ? "" : "\n\n";
    const std::string text = doubts.changed + gap + doubts.read_only;
    report.Line("ask save_doubts " + text);
    const int way = Choice_Ask(window.Handle(), L"Save labels", Wide_Of_Utf8(text), ways);
    if (way == 0) {
        return Save_Outcome::Saved;
    }
    if (way == 1) {
        return std::nullopt;
    }
    return doubts.is_theirs && way == 2 ? Save_Outcome::Load_Theirs : Save_Outcome::Not_Saved;
}

Application::Save_Outcome Application::Save_Labels_Asking(bool ask_for_name) {
    if (!session.Has_Volume()) {
        Warn("Open an image first; labels lie on an image.");
        return Save_Outcome::Not_Saved;
    }
    std::filesystem::path path = session.Label_Path();
    for (bool is_asked = ask_for_name || path.empty();; is_asked = true) {
        if (is_asked) {
            const std::filesystem::path start =
                path.empty() ? Label_Path_Proposed(session.Path(), volumes.Facts(volumes.Current()).title) : path;
            report.Line("ask save_as " + Utf8_Of_Wide(start.wstring()));
            const std::optional<std::filesystem::path> answer = Label_Save_Ask(window.Handle(), start);
            if (!answer) {
                return Save_Outcome::Not_Saved;
            }
            path = *answer;
        }
        const std::optional<Save_Outcome> wanted = Save_Doubts_Ask(path, is_asked);
        if (wanted && *wanted != Save_Outcome::Saved) {
            return *wanted;
        }
        if (wanted) {
            break;
        }
    }
    std::string kept;
    const std::string error = session.Save_Labels(path, labels.Describe(), kept);
    for (const std::string& sentence : {kept, error}) {
        if (!sentence.empty()) {
            Warn(sentence);
        }
    }
    hub.Note(Change::Saved);
    if (!error.empty()) {
        return Save_Outcome::Not_Saved;
    }
    Status(L"Labels saved to " + Wide_Of_Utf8(volumes::File_Name_Text(path)));
    return Save_Outcome::Saved;
}

bool Application::Save_Labels(bool ask_for_name) {
    const Save_Outcome outcome = Save_Labels_Asking(ask_for_name);
    if (outcome == Save_Outcome::Load_Theirs) {
        Load_Labels(session.Label_Path());
    }
    return outcome == Save_Outcome::Saved;
}

bool Application::Ask_Unsaved() {
    tools.Settle();  // also what a pen that is held down has drawn is work
    const std::vector<int> unsaved = volumes.Unsaved(session);
    if (unsaved.empty()) {
        return true;
    }
    const std::wstring question = unsaved.size() == 1 && unsaved.front() == volumes.Current()
                                      ? L"There is unsaved work. Save the labels first?"
                                      : L"There is unsaved work on " + std::to_wstring(unsaved.size()) +
                                            (unsaved.size() == 1 ? L" other volume." : L" volumes.") +
                                            L" Save the labels first?";
    report.Line("ask unsaved " + Utf8_Of_Wide(question));
    const int answer =
        ::MessageBoxW(window.Handle(), question.c_str(), L"Unsaved work", MB_YESNOCANCEL | MB_ICONQUESTION);
    if (answer != IDYES) {
        return answer == IDNO;
    }
    // Each in turn is the current volume while it is saved; nothing of it is shown.
    const int shown = volumes.Current();
    Save_Outcome outcome = Save_Outcome::Saved;
    int last = shown;
    for (std::size_t at = 0; at < unsaved.size() && outcome == Save_Outcome::Saved; ++at) {
        last = unsaved[at];
        volumes.Switch(last, session);
        outcome = Save_Labels_Asking(false);
    }
    volumes.Switch(shown, session);
    hub.Note(Change::Saved);
    if (outcome == Save_Outcome::Load_Theirs) {
        Volume_Go(last);
        Load_Labels(session.Label_Path());
    }
    return outcome == Save_Outcome::Saved;
}

bool Application::May_Close() {
    if (!Ask_Unsaved() || !Ask_Class_Changes()) {
        return false;
    }
    Settings_Keep();
    report.Line("closed");
    return true;
}

void Application::Open_Ask() {
    if (const auto path = workbench::Open_Ask(window.Handle(), L"Open volume", VOLUME_FILTER)) {
        Open_Paths(std::span(&*path, 1));
    }
}

void Application::Open_Folder_Ask() {
    if (const auto path = Ask_Folder(window.Handle(), L"Open folder")) {
        Open_Paths(std::span(&*path, 1));
    }
}

void Application::Not_Opened_Show() {
    not_opened_list.Open(window.Handle(), L"Files not opened",
                         not_opened.empty() ? L"All files were opened." : Wide_Of_Utf8(not_opened));
}

void Application::Load_Labels_Ask() {
    tools.Stroke_End();
    if (!session.Has_Volume()) {
        Warn("Open an image first; labels lie on an image.");
    } else if (!session.Is_Unsaved() || Ask_Unsaved()) {
        if (const auto path = workbench::Open_Ask(window.Handle(), L"Load labels", LABEL_FILTER)) {
            Load_Labels(*path);
        }
    }
}

void Application::Export_Verify_Ask() {
    if (const auto path = workbench::Open_Ask(window.Handle(), L"Verify export", EXPORT_FILTER)) {
        Export_Verify(*path, false);
    }
}

void Application::Quit() {
    ::SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
}

}  // namespace workbench

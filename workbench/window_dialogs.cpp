#include "workbench/window_dialogs.h"

#include <windows.h>

#include <atomic>
#include <exception>
#include <thread>
#include <vector>

#include "workbench/choice_dialog.h"
#include "workbench/file_dialog.h"
#include "workbench/folder_dialog.h"
#include "workbench/list_choice_dialog.h"
#include "workbench/progress_window.h"
#include "workbench/prompt_dialog.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

struct Kind_Of_File {
    File_Filter filter;
    const wchar_t* ending;  // for a name without one; null: none
};

Kind_Of_File Kind_Of(File_Kind kind) {
    switch (kind) {
        case File_Kind::Images:
            return {
                L"Images (*.nii, *.nii.gz, *.hdr, *.dcm, *.nrrd, *.mha)\0"
                L"*.nii;*.nii.gz;*.gz;*.hdr;*.img;*.dcm;*.ima;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0",
                nullptr};
        case File_Kind::Labels:
            return {
                L"Labels (*.nii.gz, *.nii, *.dcm, *.nrrd, *.mha)\0"
                L"*.nii.gz;*.nii;*.gz;*.dcm;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0",
                nullptr};
        case File_Kind::Label_Volumes:
            return {
                L"Label volumes (*.nii.gz, *.nii, *.nrrd, *.mha)\0"
                L"*.nii.gz;*.nii;*.gz;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0",
                nullptr};
        case File_Kind::Image_Volumes:
            return {L"NRRD (*.nrrd)\0*.nrrd;*.nhdr\0MetaImage (*.mha)\0*.mha;*.mhd\0All files\0*.*\0", L"nrrd"};
        case File_Kind::Segmentations:
            return {L"DICOM segmentation objects (*.dcm)\0*.dcm\0All files\0*.*\0", L"dcm"};
        case File_Kind::Histograms:
            return {L"Histograms (*.csv, *.txt)\0*.csv;*.txt\0All files\0*.*\0", nullptr};
        case File_Kind::Tables:
            return {L"Tables (*.csv)\0*.csv\0All files\0*.*\0", L"csv"};
        case File_Kind::Pictures:
            return {L"Pictures (*.png)\0*.png\0All files\0*.*\0", L"png"};
        default:
            return {L"Texts (*.txt)\0*.txt\0All files\0*.*\0", L"txt"};
    }
}

std::vector<std::wstring> Wide_Lines(const std::vector<std::string>& lines) {
    std::vector<std::wstring> wide;
    for (const std::string& line : lines) {
        wide.push_back(Wide_Of_Utf8(line));
    }
    return wide;
}

}  // namespace

void Window_Dialogs::Tell(const std::string& text) {
    status_line.Message_Set(Wide_Of_Utf8(text));
    report.Line("status " + text);
}

void Window_Dialogs::Warn(const std::string& text, Warning_Subject subject) {
    report.Line("warning " + text);
    banner.Add_Text(Wide_Of_Utf8(text), subject);
}

void Window_Dialogs::Warnings_Close(std::optional<Warning_Subject> subject) {
    if (subject) {
        banner.Close(*subject);
    } else {
        banner.Close();
    }
}

std::optional<std::string> Window_Dialogs::Text_Ask(const std::string& title, const std::string& question,
                                                    const std::string& start) {
    const std::optional<std::wstring> answer =
        Prompt(owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(question), Wide_Of_Utf8(start));
    return answer ? std::optional(Utf8_Of_Wide(*answer)) : std::nullopt;
}

int Window_Dialogs::Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                             int current, const std::string& accept) {
    return List_Choice_Ask(owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(label), Wide_Lines(lines), current,
                           Wide_Of_Utf8(accept).c_str());
}

int Window_Dialogs::Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& ways) {
    return Choice_Ask(owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(text), Wide_Lines(ways));
}

bool Window_Dialogs::Yes_No_Ask(const std::string& title, const std::string& question) {
    return ::MessageBoxW(owner(), Wide_Of_Utf8(question).c_str(), Wide_Of_Utf8(title).c_str(),
                         MB_YESNO | MB_ICONQUESTION) == IDYES;
}

Dialogs::Answer Window_Dialogs::Yes_No_Cancel_Ask(const std::string& title, const std::string& question) {
    const int answer = ::MessageBoxW(owner(), Wide_Of_Utf8(question).c_str(), Wide_Of_Utf8(title).c_str(),
                                     MB_YESNOCANCEL | MB_ICONQUESTION);
    return answer == IDYES ? Answer::Yes : answer == IDNO ? Answer::No : Answer::Cancel;
}

int Window_Dialogs::Text_Show(const std::string& title, const std::string& text,
                              const std::vector<std::string>& choices) {
    return workbench::Text_Show(owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(text), look.Fixed(), Wide_Lines(choices));
}

std::optional<std::filesystem::path> Window_Dialogs::File_To_Open(const std::string& title, File_Kind kind) {
    return Open_Ask(owner(), Wide_Of_Utf8(title).c_str(), Kind_Of(kind).filter);
}

std::optional<std::filesystem::path> Window_Dialogs::Folder_To_Open(const std::string& title) {
    return Ask_Folder(owner(), Wide_Of_Utf8(title).c_str());
}

std::optional<std::filesystem::path> Window_Dialogs::File_To_Save(const std::string& title, File_Kind kind,
                                                                  const std::filesystem::path& start) {
    const Kind_Of_File of = Kind_Of(kind);
    return Save_Ask(owner(), Wide_Of_Utf8(title).c_str(), of.filter, start, of.ending);
}

void Window_Dialogs::Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) {
    std::atomic<double> share = 0.0;
    std::atomic<bool> is_given_up = false;
    std::atomic<bool> is_done = false;
    std::exception_ptr failure;
    // The action goes on beside this thread, so that the window answers; nothing of the window is used there, and of
    // the kits only what computes.
    std::thread worker([&, waiting = ::GetCurrentThreadId()] {
        try {
            action([&](double done) {
                share = done;
                return !is_given_up;
            });
        } catch (...) {
            failure = std::current_exception();
        }
        is_done = true;
        ::PostThreadMessageW(waiting, WM_NULL, 0, 0);  // who waits for messages looks at once
    });
    {
        Progress_Window progress(look, owner(), Wide_Of_Utf8(what));
        while (!is_done) {
            const double done = share;
            if (!progress.Step(done, std::to_wstring(static_cast<int>(done * 100.0)) + L" %")) {
                is_given_up = true;
            }
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        }
    }
    worker.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace workbench

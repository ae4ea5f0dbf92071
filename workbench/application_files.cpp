// Opening and saving.
#include <windows.h>

#include <commdlg.h>

#include <atomic>
#include <system_error>
#include <thread>

#include "volumes/message_text.h"
#include "workbench/application.h"
#include "workbench/progress_window.h"
#include "workbench/wide_text.h"

namespace {

constexpr const wchar_t* volume_filter =
    L"Image volumes (*.nii, *.nii.gz, *.hdr)\0*.nii;*.nii.gz;*.gz;*.hdr;*.img\0All files\0*.*\0";
constexpr const wchar_t* label_filter = L"Label volumes (*.nii.gz, *.nii)\0*.nii.gz;*.nii;*.gz\0All files\0*.*\0";

OPENFILENAMEW File_Question(HWND owner, const wchar_t* filter, const wchar_t* title, std::wstring& buffer) {
    OPENFILENAMEW question = {};
    question.lStructSize = sizeof question;
    question.hwndOwner = owner;
    question.lpstrFilter = filter;
    question.lpstrTitle = title;
    buffer.resize(FILE_NAME_SIZE);
    question.lpstrFile = buffer.data();
    question.nMaxFile = FILE_NAME_SIZE;
    return question;
}

std::optional<std::filesystem::path> Ask_Open(HWND owner, const wchar_t* filter, const wchar_t* title) {
    std::wstring buffer;
    OPENFILENAMEW question = File_Question(owner, filter, title, buffer);
    question.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (::GetOpenFileNameW(&question) == 0) {
        return std::nullopt;
    }
    return std::filesystem::path(buffer.c_str());
}

std::optional<std::filesystem::path> Ask_Save(HWND owner, const std::wstring& start) {
    std::wstring buffer = start;
    OPENFILENAMEW question = File_Question(owner, label_filter, L"Save labels", buffer);
    question.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (::GetSaveFileNameW(&question) == 0) {
        return std::nullopt;
    }
    std::filesystem::path path(buffer.c_str());
    if (!path.has_extension()) {
        path += L".nii.gz";
    }
    return path;
}

}  // namespace

std::optional<Load_Result> Application::Load_With_Progress(const std::filesystem::path& path,
                                                           Volume_Statistics* numbers) {
    std::atomic<double> share = 0.0;
    std::atomic<bool> is_given_up = false;
    std::atomic<bool> is_done = false;
    Load_Result result;
    // Reading goes on beside this thread, so that the window answers; nothing of the window or the kits is used there.
    std::thread reader([&] {
        result = Volume_Load(path, [&](double done) {
            share = done;
            return !is_given_up;
        });
        if (result.volume && numbers != nullptr) {
            *numbers = Volume_Statistics_Compute(*result.volume);
        }
        is_done = true;
    });
    {
        Progress_Window progress(look, window.Handle(), L"Loading " + Wide_Of_Utf8(File_Name_Text(path)));
        while (!is_done) {
            const double done = share;
            if (!progress.Step(done, std::to_wstring(static_cast<int>(done * 100.0)) + L" %")) {
                is_given_up = true;
            }
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        }
    }
    reader.join();
    if (result.cancelled) {
        Status(L"Loading was given up");
        return std::nullopt;
    }
    if (!result.volume) {
        Warn(result.error);
        return std::nullopt;
    }
    for (const std::string& warning : result.warnings) {
        Warn(warning);
    }
    return result;
}

void Application::Open_Volume(const std::filesystem::path& path) {
    if (path.empty()) {
        Warn("The name of the file cannot be used on this system.");
        return;
    }
    Volume_Statistics numbers;
    std::optional<Load_Result> loaded = Load_With_Progress(path, &numbers);
    // Asked only now: a file that cannot be loaded costs no work.
    if (!loaded || !Ask_Unsaved()) {
        return;
    }
    statistics = numbers;
    Show_Volume(std::move(*loaded->volume), path);
    if (!options.labels.empty()) {
        const std::filesystem::path labels = Path_From_Utf8(std::exchange(options.labels, {}));
        std::error_code unknown;
        if (std::filesystem::exists(labels, unknown)) {
            Load_Labels(labels);
        } else {
            session.Label_Path_Set(labels);
        }
    }
}

void Application::Show_Volume(Volume&& volume, const std::filesystem::path& path) {
    objects.Clear();
    session.Take(std::move(volume), path);
    objects.Build(session);
    Adopt_Names();
    grey_window = {static_cast<float>(statistics.window_low), static_cast<float>(statistics.window_high)};
    slice = session.Slice_Nb() / 2;
    objects.Show(slice);
    Markers_Enable_Refresh();
    is_histogram_of_tag = false;
    is_histogram_of_shown = false;
    histogram_first = 0;
    histogram_last = session.Slice_Nb() - 1;
    Histogram_Select();
    Announce(UPDATE_ALL | UPDATE_WINDOW_CUR | UPDATE_FRAME_CUR | UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D |
             UPDATE_HISTO_PAINT);
    Histogram_Scale_Suggest();
    Title_Refresh();
    const Volume& image_now = session.Image();
    std::wstring text = Wide_Of_Utf8(File_Name_Text(path)) + L": " + std::to_wstring(image_now.nx) + L" \u00D7 " +
                        std::to_wstring(image_now.ny) + L" \u00D7 " + std::to_wstring(image_now.nz);
    if (image_now.nt > 1) {
        text += L", the first of " + std::to_wstring(image_now.nt) + L" time points";
    }
    Status(text + L"   " + Histogram_Text());
    report.Line("volume " + std::to_string(image_now.nx) + " " + std::to_string(image_now.ny) + " " +
                std::to_string(image_now.nz));
}

void Application::Adopt_Names() {
    session.Adopt_Labels(Text_Table::TAG_LABELS, variables.Tag_Labels());
    session.Adopt_Labels(Text_Table::MARKER_LABELS, variables.Marker_Labels());
    session.Adopt_Thresholds(variables.Threshold_Min(), variables.Threshold_Max());
}

void Application::Load_Labels(const std::filesystem::path& path) {
    const std::optional<Load_Result> loaded = Load_With_Progress(path, nullptr);
    if (!loaded) {
        return;
    }
    if (const std::string error = session.Take_Labels(*loaded->volume, path); !error.empty()) {
        Warn(error);
        return;
    }
    Tag_Nb_Grow(session.Labels().Highest_Tag());
    image.Refresh();
    Title_Refresh();
    Status(L"Labels loaded from " + Wide_Of_Utf8(File_Name_Text(path)));
}

bool Application::Save_Labels(bool ask_for_name) {
    if (!session.Has_Volume()) {
        Warn("Open an image first; labels lie on an image.");
        return false;
    }
    std::filesystem::path path = session.Label_Path();
    if (ask_for_name || path.empty()) {
        const std::wstring name = Wide_Of_Utf8(File_Name_Text(session.Path()));
        const std::wstring start = name.substr(0, name.find(L".nii")) + L"_labels.nii.gz";
        const std::optional<std::filesystem::path> answer = Ask_Save(window.Handle(), start);
        if (!answer) {
            return false;
        }
        path = *answer;
    }
    if (const std::string error = session.Save_Labels(path); !error.empty()) {
        Warn(error);
        return false;
    }
    Title_Refresh();
    Status(L"Labels saved to " + Wide_Of_Utf8(File_Name_Text(path)));
    return true;
}

bool Application::Ask_Unsaved() {
    if (!session.Is_Unsaved()) {
        return true;
    }
    const int answer = ::MessageBoxW(window.Handle(), L"There is unsaved work. Save the labels first?", L"Unsaved work",
                                     MB_YESNOCANCEL | MB_ICONQUESTION);
    return answer == IDNO || (answer == IDYES && Save_Labels(false));
}

bool Application::May_Close() {
    if (!Ask_Unsaved()) {
        return false;
    }
    report.Line("closed");
    return true;
}

void Application::Execute_File(Command command) {
    switch (command) {
        case Command::OPEN:
            if (const auto path = Ask_Open(window.Handle(), volume_filter, L"Open volume")) {
                Open_Volume(*path);
            }
            return;
        case Command::LOAD_LABELS:
            if (!session.Has_Volume()) {
                Warn("Open an image first; labels lie on an image.");
            } else if (Ask_Unsaved()) {
                if (const auto path = Ask_Open(window.Handle(), label_filter, L"Load labels")) {
                    Load_Labels(*path);
                }
            }
            return;
        case Command::SAVE_LABELS:
            Save_Labels(false);
            return;
        case Command::SAVE_LABELS_AS:
            Save_Labels(true);
            return;
        case Command::EXPORT_HISTOGRAM: {
            std::string path(FILE_NAME_SIZE, '\0');
            const char* filter =
                Fct_Create_szFilter(2, "CSV files", "$FILE_EXTENSION_EXCEL", "All files", "$FILE_EXTENSION_ALL");
            if (Fct_Save_FileName("Export histogram", filter, "histogram", "csv", path.data(), 0) != 0 &&
                histogram_panel.Write(path.c_str()) != 0) {
                Status(L"Histogram exported");
            }
            return;
        }
        default:
            ::SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
            return;
    }
}

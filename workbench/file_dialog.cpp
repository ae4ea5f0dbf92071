#include "workbench/file_dialog.h"

#include <commdlg.h>

#include <string>
#include <system_error>

#include "host/kit_dataset.h"

namespace workbench {

namespace {

OPENFILENAMEW File_Question(HWND owner, const wchar_t* title, File_Filter filter, std::wstring& buffer) {
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

}  // namespace

std::optional<std::filesystem::path> Open_Ask(HWND owner, const wchar_t* title, File_Filter filter) {
    std::wstring buffer;
    OPENFILENAMEW question = File_Question(owner, title, filter, buffer);
    question.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (::GetOpenFileNameW(&question) == 0) {
        return std::nullopt;
    }
    return std::filesystem::path(buffer.c_str());
}

std::optional<std::filesystem::path> Save_Ask(HWND owner, const wchar_t* title, File_Filter filter,
                                              std::filesystem::path start, const wchar_t* ending) {
    start.make_preferred();
    std::error_code unknown;
    const std::wstring folder = start.parent_path().wstring();
    // A folder that is gone would make the dialog refuse the name.
    std::wstring buffer =
        std::filesystem::is_directory(start.parent_path(), unknown) ? start.wstring() : start.filename().wstring();
    OPENFILENAMEW question = File_Question(owner, title, filter, buffer);
    question.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    question.lpstrDefExt = ending;
    question.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (::GetSaveFileNameW(&question) == 0) {
        return std::nullopt;
    }
    return std::filesystem::path(buffer.c_str());
}

}  // namespace workbench

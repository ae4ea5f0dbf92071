#include <windows.h>
// commdlg.h needs windows.h before it
#include <commdlg.h>

#include <cstring>
#include <string>

#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "kits/dataset/save_file_dialog.h"

namespace {

/** A text of the system's code page as wide text; `size` counts its zeros too. */
std::wstring Wide(const char* text, std::size_t size) {
    const int bytes = static_cast<int>(size);
    const int count = bytes > 0 ? ::MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0) : 0;
    std::wstring wide(static_cast<std::size_t>(count), L'\0');
    if (count > 0) {
        ::MultiByteToWideChar(CP_ACP, 0, text, bytes, wide.data(), count);
    }
    return wide;
}

std::wstring Wide(const char* text) {
    return text != nullptr ? Wide(text, std::strlen(text)) : std::wstring();
}

/** A filter with its double zero. */
std::wstring Wide_Filter(const char* filter) {
    std::size_t size = 0;
    while (filter != nullptr && filter[size] != 0) {
        size += std::strlen(filter + size) + 1;
    }
    return Wide(filter, size) + L'\0';
}

/** Writes the path in the system's code page. @return false when it has characters that the code page lacks, or does
 * not fit */
bool Store_Path(const wchar_t* path, char* buffer) {
    const bool unicode = ::GetACP() == CP_UTF8;
    BOOL replaced = FALSE;
    const int size = ::WideCharToMultiByte(CP_ACP, unicode ? 0 : WC_NO_BEST_FIT_CHARS, path, -1, buffer, FILE_NAME_SIZE,
                                           nullptr, unicode ? nullptr : &replaced);
    if (size > 0 && replaced == FALSE) {
        return true;
    }
    buffer[0] = 0;
    return false;
}

bool Run_Dialog(const std::wstring& title, const std::wstring& filter, const std::wstring& extension,
                std::wstring& path) {
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = ::IsWindow(hwnd) != FALSE ? hwnd : nullptr;
    dialog.lpstrFilter = filter.size() > 1 ? filter.c_str() : nullptr;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrTitle = title.empty() ? nullptr : title.c_str();
    dialog.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
    dialog.Flags = OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (::GetSaveFileNameW(&dialog) != FALSE) {
        return true;
    }
    // A name that the dialog does not accept keeps it from opening: it opens without a name then.
    if (::CommDlgExtendedError() == FNERR_INVALIDFILENAME && path[0] != 0) {
        path.assign(path.size(), L'\0');
        return ::GetSaveFileNameW(&dialog) != FALSE;
    }
    return false;
}

}  // namespace

int Save_File_Dialog(const char* title, const char* filter, const char* initial_name, const char* extension,
                     char* buffer) try {
    std::wstring path = Wide(initial_name);
    path.resize(FILE_NAME_SIZE);
    path.back() = 0;
    if (!Run_Dialog(Wide(title), Wide_Filter(filter), Wide(extension), path)) {
        return 0;
    }
    if (!Store_Path(path.c_str(), buffer)) {
        Error_Fct(hwnd, MESSAGE_WARNING,
                  "\xF1\x05WARNING:\x02 The name \"%ls\" has characters that this system's code page lacks; please "
                  "choose another one",
                  path.c_str());
        return 0;
    }
    return 1;
} catch (...) {
    Error_Fct(hwnd, MESSAGE_MEMORY, "memory error in Fct_Save_FileName");
    return 0;
}

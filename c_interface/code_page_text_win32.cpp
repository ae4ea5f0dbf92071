#include <windows.h>

#include "c_interface/code_page_text.h"

namespace c_interface {

namespace {

std::wstring Wide_Of(UINT page, DWORD flags, const char* text) {
    const int size = ::MultiByteToWideChar(page, flags, text, -1, nullptr, 0);
    std::wstring wide(size > 0 ? static_cast<std::size_t>(size) : 0, L'\0');
    if (size > 0) {
        ::MultiByteToWideChar(page, flags, text, -1, wide.data(), size);
    }
    return wide;
}

}  // namespace

bool Page_Of_Utf8(const char* text, std::string& out) {
    const std::wstring wide = Wide_Of(CP_UTF8, MB_ERR_INVALID_CHARS, text);
    if (wide.empty()) {
        return false;
    }
    // UTF-8 as the system's page loses nothing, and may not be asked.
    const bool is_utf8 = ::GetACP() == CP_UTF8;
    BOOL is_lossy = FALSE;
    const DWORD flags = is_utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL* const lossy = is_utf8 ? nullptr : &is_lossy;
    const int size = ::WideCharToMultiByte(CP_ACP, flags, wide.c_str(), -1, nullptr, 0, nullptr, lossy);
    if (size <= 0 || is_lossy != FALSE) {
        return false;
    }
    out.resize(static_cast<std::size_t>(size));
    ::WideCharToMultiByte(CP_ACP, flags, wide.c_str(), -1, out.data(), size, nullptr, nullptr);
    out.pop_back();
    return true;
}

std::string Utf8_Of_Page(const char* text) {
    const std::wstring wide = Wide_Of(CP_ACP, 0, text);
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string out(size > 0 ? static_cast<std::size_t>(size) : 1, '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, out.data(), size, nullptr, nullptr);
    out.pop_back();
    return out;
}

std::string Icon_Folder_Beside_Program() {
    std::string path(MAX_PATH, '\0');
    path.resize(::GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of("/\\") + 1) + "icons\\";
}

}  // namespace c_interface

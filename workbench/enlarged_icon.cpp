#include "workbench/enlarged_icon.h"

#include <windows.h>

#include <cwchar>

namespace {

constexpr const wchar_t* enlarged_class = L"Histogram";

BOOL CALLBACK Give(HWND window, LPARAM icon) {
    wchar_t name[32] = {};
    ::GetClassNameW(window, name, 32);
    if (std::wcscmp(name, enlarged_class) != 0) {
        return TRUE;
    }
    ::SendMessageW(window, WM_SETICON, ICON_BIG, icon);
    ::SendMessageW(window, WM_SETICON, ICON_SMALL, icon);
    return FALSE;
}

}  // namespace

void Enlarged_Icon_Give() {
    HICON icon = ::LoadIconW(::GetModuleHandleW(nullptr), L"MAINICON");
    ::EnumThreadWindows(::GetCurrentThreadId(), &Give, reinterpret_cast<LPARAM>(icon));
}

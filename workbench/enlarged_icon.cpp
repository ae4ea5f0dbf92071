#include "workbench/enlarged_icon.h"

#include <windows.h>

#include "workbench/enlarged_window.h"

namespace workbench {

namespace {

BOOL CALLBACK Give(HWND window, LPARAM icon) {
    if (!Is_Enlarged_Window(window)) {
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

}  // namespace workbench

#include "workbench/enlarged_frame.h"

#include <windows.h>

#include "workbench/enlarged_window.h"
#include "workbench/window_theme.h"

namespace workbench {

namespace {

BOOL CALLBACK Dress(HWND window, LPARAM icon) {
    if (!Is_Enlarged_Window(window)) {
        return TRUE;
    }
    ::SendMessageW(window, WM_SETICON, ICON_BIG, icon);
    ::SendMessageW(window, WM_SETICON, ICON_SMALL, icon);
    Frame_Theme_Follow(window);
    return FALSE;
}

}  // namespace

void Enlarged_Frame_Dress() {
    HICON icon = ::LoadIconW(::GetModuleHandleW(nullptr), L"MAINICON");
    ::EnumThreadWindows(::GetCurrentThreadId(), &Dress, reinterpret_cast<LPARAM>(icon));
}

}  // namespace workbench

#include "workbench/window_theme.h"

#include "base/gdi_handles.h"

#include <cstdint>

#include "workbench/model/theme_colors.h"
#include "workbench/system_library.h"

namespace workbench {

namespace {

constexpr DWORD FRAME_DARK = 20;  // DWMWA_USE_IMMERSIVE_DARK_MODE: older headers do not name it

bool is_dark_now = false;

COLORREF Colorref_Of(std::uint32_t color) {
    return RGB((color >> 16U) & 0xFFU, (color >> 8U) & 0xFFU, color & 0xFFU);
}

bool Is_High_Contrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return ::SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != 0 &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

BOOL CALLBACK Follow(HWND window, LPARAM) {
    Frame_Theme_Follow(window);
    return TRUE;
}

/** @return the brush of the ground */
HBRUSH Ink_On(WPARAM dc, std::uint32_t ground, HBRUSH brush) {
    ::SetTextColor(reinterpret_cast<HDC>(dc), Colorref_Of(Theme_Colors_Of(true).text));
    ::SetBkColor(reinterpret_cast<HDC>(dc), Colorref_Of(ground));
    return brush;
}

}  // namespace

void Windows_Theme_Set(bool is_dark) {
    is_dark_now = is_dark && !Is_High_Contrast();
    ::EnumThreadWindows(::GetCurrentThreadId(), &Follow, 0);
}

void Frame_Theme_Follow(HWND window) {
    using Set_Attribute = HRESULT(WINAPI*)(HWND, DWORD, LPCVOID, DWORD);
    static const auto set_attribute = System_Library(L"dwmapi.dll").Find<Set_Attribute>("DwmSetWindowAttribute");
    if (set_attribute != nullptr && (::GetWindowLongPtrW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION) {
        const BOOL is_dark = is_dark_now ? TRUE : FALSE;
        set_attribute(window, FRAME_DARK, &is_dark, sizeof is_dark);
    }
}

HBRUSH Prompt_Ground(UINT message, WPARAM dc) {
    if (!is_dark_now) {
        return nullptr;
    }
    const Theme_Colors& colors = Theme_Colors_Of(true);
    static const Gdi_Brush ground(::CreateSolidBrush(Colorref_Of(colors.ground)));
    static const Gdi_Brush field(::CreateSolidBrush(Colorref_Of(colors.heading)));
    switch (message) {
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            return Ink_On(dc, colors.ground, ground.Get());
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
            return Ink_On(dc, colors.heading, field.Get());
        default:
            return nullptr;
    }
}

}  // namespace workbench

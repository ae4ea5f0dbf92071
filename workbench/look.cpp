#include "workbench/look.h"

#include <algorithm>
#include <cmath>

#include "workbench/wide_text.h"

namespace {

constexpr int dpi_normal = 96;
constexpr int font_height = 13;  // pixels at 96 dots per inch

Gdi_Font Font_Make(int height, int weight, const wchar_t* face, int pitch) {
    LOGFONTW description = {};
    description.lfHeight = -height;
    description.lfWeight = weight;
    description.lfCharSet = DEFAULT_CHARSET;
    description.lfQuality = CLEARTYPE_QUALITY;
    description.lfPitchAndFamily = static_cast<BYTE>(pitch);
    ::lstrcpynW(description.lfFaceName, face, LF_FACESIZE);
    return Gdi_Font(::CreateFontIndirectW(&description));
}

}  // namespace

Look::Look() {
    Theme_Set(Library_Theme::Dark);
    Dpi_Set(dpi_normal);
}

void Look::Theme_Set(Library_Theme wanted) {
    theme = wanted;
    const bool is_dark = theme == Library_Theme::Dark;
    ground = is_dark ? RGB(43, 45, 50) : RGB(226, 228, 232);
    heading = is_dark ? RGB(62, 66, 74) : RGB(205, 209, 216);
    heading_hover = is_dark ? RGB(76, 81, 91) : RGB(191, 197, 206);
    image_ground = is_dark ? RGB(18, 19, 21) : RGB(160, 164, 170);
    text = is_dark ? RGB(230, 232, 235) : RGB(29, 31, 36);
    text_grey = is_dark ? RGB(150, 156, 166) : RGB(96, 102, 112);
    line = is_dark ? RGB(27, 28, 32) : RGB(166, 171, 181);
    accent = is_dark ? RGB(61, 139, 234) : RGB(31, 111, 208);
    warning = is_dark ? RGB(92, 66, 18) : RGB(255, 231, 170);
    warning_text = is_dark ? RGB(255, 226, 158) : RGB(92, 58, 0);
    const unsigned short dark_face[3] = {56, 58, 64};
    const unsigned short light_face[3] = {236, 237, 240};
    std::copy_n(is_dark ? dark_face : light_face, 3, panel);
    Library_Theme_Set(theme);
}

void Look::Dpi_Set(int dpi) {
    scale = static_cast<float>(std::clamp(dpi, dpi_normal / 2, dpi_normal * 6)) / dpi_normal;
    font = Font_Make(Px(font_height), FW_NORMAL, L"Arial", FF_SWISS);
    bold = Font_Make(Px(font_height), FW_BOLD, L"Arial", FF_SWISS);
    fixed = Font_Make(Px(font_height), FW_NORMAL, L"Courier New", FIXED_PITCH | FF_MODERN);
    Library_Scale_Set(scale);
}

int Look::Px(int pixels) const {
    return static_cast<int>(std::lround(static_cast<float>(pixels) * scale));
}

void Fill(HDC dc, const RECT& area, COLORREF color) {
    const Gdi_Brush brush(::CreateSolidBrush(color));
    ::FillRect(dc, &area, brush.Get());
}

int Draw_Line(HDC dc, const RECT& area, std::wstring_view text, HFONT font, COLORREF color, UINT format) {
    const Selected_Object selected(dc, font);
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, color);
    RECT place = area;
    const auto length = static_cast<int>(text.size());
    ::DrawTextW(dc, text.data(), length, &place, format | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SIZE size = {};
    ::GetTextExtentPoint32W(dc, text.data(), length, &size);
    return size.cx;
}

int Window_Dpi(HWND window) {
    // Only Windows 10 and later export it.
    using Dpi_Of_Window = UINT(WINAPI*)(HWND);
    const HMODULE library = ::GetModuleHandleW(L"user32.dll");
    void* const address =
        library == nullptr ? nullptr : reinterpret_cast<void*>(::GetProcAddress(library, "GetDpiForWindow"));
    const UINT dpi = address == nullptr ? 0 : reinterpret_cast<Dpi_Of_Window>(address)(window);
    return dpi == 0 ? dpi_normal : static_cast<int>(dpi);
}

Buffered_Paint::Buffered_Paint(HWND of_window) : paint(of_window), memory(paint.Get()) {
    ::GetClientRect(of_window, &client);
    bitmap = Gdi_Bitmap(
        ::CreateCompatibleBitmap(paint.Get(), std::max<LONG>(client.right, 1), std::max<LONG>(client.bottom, 1)));
    if (!memory || !bitmap) {
        memory = Memory_DC();
        return;
    }
    selected.emplace(memory.Get(), bitmap.Get());
}

Buffered_Paint::~Buffered_Paint() {
    if (memory) {
        const RECT& dirty = paint.Dirty();
        ::BitBlt(paint.Get(), dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top, memory.Get(),
                 dirty.left, dirty.top, SRCCOPY);
    }
}

#include "workbench/look.h"

#include <algorithm>
#include <cmath>

#include "workbench/font_choice.h"
#include "workbench/model/theme_colors.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int DPI_NORMAL = 96;
constexpr int FONT_HEIGHT = 13;  // pixels at 96 dots per inch
constexpr COLORREF SHADOW_LIGHT = RGB(236, 238, 242);
constexpr COLORREF SHADOW_DARK = RGB(0, 0, 0);

/** The system's order of the components. */
COLORREF Colorref_Of(std::uint32_t color) {
    return RGB((color >> 16U) & 0xFFU, (color >> 8U) & 0xFFU, color & 0xFFU);
}

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
    Dpi_Set(DPI_NORMAL);
}

void Look::Theme_Set(Library_Theme wanted) {
    theme = wanted;
    const Theme_Colors& colors = Theme_Colors_Of(theme == Library_Theme::Dark);
    ground = Colorref_Of(colors.ground);
    heading = Colorref_Of(colors.heading);
    heading_hover = Colorref_Of(colors.heading_hover);
    image_ground = Colorref_Of(colors.image_ground);
    text = Colorref_Of(colors.text);
    text_grey = Colorref_Of(colors.text_grey);
    line = Colorref_Of(colors.line);
    accent = Colorref_Of(colors.accent);
    accent_text = Colorref_Of(colors.accent_text);
    thumb = Colorref_Of(colors.thumb);
    warning = Colorref_Of(colors.warning);
    warning_text = Colorref_Of(colors.warning_text);
    panel[0] = GetRValue(Colorref_Of(colors.panel));
    panel[1] = GetGValue(Colorref_Of(colors.panel));
    panel[2] = GetBValue(Colorref_Of(colors.panel));
    Library_Theme_Set(theme);
}

void Look::Dpi_Set(int dpi) {
    scale = static_cast<float>(std::clamp(dpi, DPI_NORMAL / 2, DPI_NORMAL * 6)) / DPI_NORMAL;
    font = Font_Make(Px(FONT_HEIGHT), FW_NORMAL, L"Arial", FF_SWISS);
    bold = Font_Make(Px(FONT_HEIGHT), FW_BOLD, L"Arial", FF_SWISS);
    fixed = Font_Make(Px(FONT_HEIGHT), FW_NORMAL, L"Courier New", FIXED_PITCH | FF_MODERN);
    Library_Scale_Set(scale);
}

int Look::Px(int pixels) const {
    return static_cast<int>(std::lround(static_cast<float>(pixels) * scale));
}

void Fill(HDC dc, const RECT& area, COLORREF color) {
    const Gdi_Brush brush(::CreateSolidBrush(color));
    ::FillRect(dc, &area, brush.Get());
}

void Frame(HDC dc, const RECT& area, int thickness, COLORREF color) {
    Fill(dc, {area.left, area.top, area.right, area.top + thickness}, color);
    Fill(dc, {area.left, area.bottom - thickness, area.right, area.bottom}, color);
    Fill(dc, {area.left, area.top, area.left + thickness, area.bottom}, color);
    Fill(dc, {area.right - thickness, area.top, area.right, area.bottom}, color);
}

namespace {

/** Draw_Line in the font that is selected. */
void Draw_Selected(HDC dc, RECT area, std::wstring_view text, COLORREF color, UINT format) {
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, color);
    ::DrawTextW(dc, text.data(), static_cast<int>(text.size()), &area,
                format | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

}  // namespace

int Draw_Line(HDC dc, const RECT& area, std::wstring_view text, HFONT font, COLORREF color, UINT format) {
    Gdi_Font other;
    const Selected_Object selected(dc, Font_For(dc, font, text, other));
    Draw_Selected(dc, area, text, color, format);
    SIZE size = {};
    ::GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}

void Draw_Line_Shadowed(HDC dc, const RECT& area, std::wstring_view text, HFONT font, UINT format) {
    Gdi_Font other;
    const Selected_Object selected(dc, Font_For(dc, font, text, other));  // once for all ten drawings
    for (int side = 0; side < 9; ++side) {
        RECT moved = area;
        ::OffsetRect(&moved, side % 3 - 1, side / 3 - 1);
        Draw_Selected(dc, moved, text, SHADOW_DARK, format);
    }
    Draw_Selected(dc, area, text, SHADOW_LIGHT, format);
}

int Line_Width(HFONT font, std::wstring_view text) {
    const Memory_DC dc(nullptr);
    Gdi_Font other;
    const Selected_Object selected(dc.Get(), Font_For(dc.Get(), font, text, other));
    SIZE size = {};
    ::GetTextExtentPoint32W(dc.Get(), text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}

int Line_Height(HFONT font) {
    const Memory_DC dc(nullptr);
    const Selected_Object selected(dc.Get(), font);
    TEXTMETRICW metrics = {};
    ::GetTextMetricsW(dc.Get(), &metrics);
    return std::max<int>(metrics.tmHeight, 1);
}

int Window_Dpi(HWND window) {
    // Only Windows 10 and later export it.
    using Dpi_Of_Window = UINT(WINAPI*)(HWND);
    const HMODULE library = ::GetModuleHandleW(L"user32.dll");
    void* const address =
        library == nullptr ? nullptr : reinterpret_cast<void*>(::GetProcAddress(library, "GetDpiForWindow"));
    const UINT dpi = address == nullptr ? 0 : reinterpret_cast<Dpi_Of_Window>(address)(window);
    return dpi == 0 ? DPI_NORMAL : static_cast<int>(dpi);
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

}  // namespace workbench

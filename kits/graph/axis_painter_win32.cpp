#include "base/gdi_handles.h"

#include <algorithm>

#include "host/kit_common.h"
#include "kits/graph/axis_painter.h"

namespace {

constexpr int TEXT_MAX = 256;  // wide characters of a number or title

/** Between the box's colour and black or white, whichever is farther. */
COLORREF Ink(const Colors& ground, int percent) {
    const int brightness = (ground.red * 299 + ground.green * 587 + ground.blue * 114) / 1000;
    constexpr int middle = 132;
    const int far_end = brightness > middle ? 0 : 255;
    const auto part = [&](int value) { return std::clamp(value + (far_end - value) * percent / 100, 0, 255); };
    return RGB(part(ground.red), part(ground.green), part(ground.blue));
}

/** The font turned so that it reads upwards. */
Gdi_Font Turned(HFONT font) {
    LOGFONTA description = {};
    if (::GetObjectA(font, sizeof description, &description) == 0) {
        return {};
    }
    constexpr LONG quarter_turn = 900;  // tenths of a degree, counterclockwise
    description.lfEscapement = quarter_turn;
    description.lfOrientation = quarter_turn;
    return Gdi_Font(::CreateFontIndirectA(&description));
}

}  // namespace

struct Axis_Painter::Data {
    HDC dc;
    Saved_DC saved;
    Gdi_Font made;
    HFONT font;
    Gdi_Font turned;  // made for the first text that reads upwards: only one of the axes has any
    Selected_Object selected;
    TEXTMETRICA metrics = {};
    COLORREF text_color;
    COLORREF line_color;

    Data(HDC into, const Boxs& box, int font_height)
        : dc(into),
          saved(into),
          made(box.font == nullptr ? Y_Create_Font(box.window, box.font_name, box.font_weight, font_height) : nullptr),
          font(box.font != nullptr ? box.font : made.Get()),
          selected(into, font),
          text_color(Ink(box.color, 85)),
          line_color(Ink(box.color, 60)) {
        // Device units: lines, texts and turned texts then look the same whichever way the window's axis points.
        ::SetMapMode(dc, MM_TEXT);
        ::SetWindowOrgEx(dc, 0, 0, nullptr);
        ::SetViewportOrgEx(dc, 0, 0, nullptr);
        ::SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
        ::SetBkMode(dc, TRANSPARENT);
        ::GetTextMetricsA(dc, &metrics);
    }

    /** Null without memory. */
    HFONT Upwards() {
        if (!turned) {
            turned = Turned(font);
        }
        return turned.Get();
    }
};

Axis_Painter::Axis_Painter(HDC dc, const Boxs& box, int font_height)
    : data(std::make_unique<Data>(dc, box, font_height)) {}

Axis_Painter::~Axis_Painter() = default;

int Axis_Painter::Line_Height() const {
    return data->metrics.tmHeight;
}

int Axis_Painter::Width(const std::string& text) const {
    wchar_t wide[TEXT_MAX];
    const int length = Char_2_Wchar(text.c_str(), wide, TEXT_MAX);
    SIZE size = {};
    ::GetTextExtentPoint32W(data->dc, wide, length, &size);
    return size.cx;
}

int Axis_Painter::Width_Upwards(const std::string& text) const {
    const Selected_Object selected(data->dc, data->Upwards());
    return Width(text);
}

void Axis_Painter::Paint(const Axis_Layout& layout) const {
    const Gdi_Brush brush(::CreateSolidBrush(data->line_color));
    for (const Plot_Rect& line : layout.lines) {
        const RECT rect = {line.left, line.top, line.right, line.bottom};
        ::FillRect(data->dc, &rect, brush.Get());
    }
    ::SetTextColor(data->dc, data->text_color);
    const RECT cut = {layout.box.left, layout.box.top, layout.box.right, layout.box.bottom};  // letters have overhangs
    for (const Plot_Label& label : layout.labels) {
        const HFONT font = label.upwards ? data->Upwards() : data->font;
        if (label.upwards && font == nullptr) {
            continue;
        }
        wchar_t wide[TEXT_MAX];
        const auto length = static_cast<UINT>(std::max(0, Char_2_Wchar(label.text.c_str(), wide, TEXT_MAX)));
        const Selected_Object selected(data->dc, font);
        ::ExtTextOutW(data->dc, label.rect.left, label.upwards ? label.rect.bottom : label.rect.top, ETO_CLIPPED, &cut,
                      wide, length, nullptr);
    }
}

Plot_Rect Axis_Painter::Device_Rect(HDC dc, int x, int y, int width, int height) {
    POINT ends[2] = {{x, y}, {x + width - 1, y + height - 1}};
    ::LPtoDP(dc, ends, 2);
    return {std::min(ends[0].x, ends[1].x), std::min(ends[0].y, ends[1].y), std::max(ends[0].x, ends[1].x) + 1,
            std::max(ends[0].y, ends[1].y) + 1};
}

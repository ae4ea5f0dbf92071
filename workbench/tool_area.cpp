#include "workbench/tool_area.h"

#include <windowsx.h>

#include <algorithm>

namespace workbench {

namespace {

constexpr int HEADING_HEIGHT = 24;  // pixels at 96 dots per inch
constexpr int GAP = 6;
constexpr int MARGIN = 6;
constexpr int SCROLL_STEP = 40;
constexpr int BAR_WIDTH = 12;
constexpr int THUMB_LEAST = 24;

}  // namespace

bool Tool_Area::Make(HWND parent) {
    return Create(parent, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, L"");
}

Panel_Host* Tool_Area::Add(const wchar_t* title, Hosted_Panel& panel, Window_Axis axis,
                           std::function<void(int, int)> on_click) {
    Section section;
    section.title = title;
    section.host = std::make_unique<Panel_Host>(panel, look, std::move(on_click));
    if (!section.host->Make(Handle(), axis)) {
        return nullptr;
    }
    sections.push_back(std::move(section));
    return sections.back().host.get();
}

void Tool_Area::Stretch(const Panel_Host* panel, int most) {
    for (Section& section : sections) {
        if (section.host.get() == panel) {
            section.stretch_most = most;
        }
    }
}

void Tool_Area::Note_Set(const Panel_Host* panel, const std::wstring& note) {
    for (Section& section : sections) {
        if (section.host.get() == panel && section.note != note) {
            section.note = note;
            Invalidate(&section.heading);
        }
    }
}

int Tool_Area::Content_Height() const {
    int height = look.Px(MARGIN);
    for (const Section& section : sections) {
        height += look.Px(HEADING_HEIGHT) + look.Px(GAP);
        height += section.is_folded ? 0 : section.host->Wanted_Height();
    }
    return height;
}

void Tool_Area::Lay_Out() {
    const int content = Content_Height();
    const RECT client = Client();
    scroll.content = content;
    scroll.view = static_cast<int>(client.bottom);
    scroll.offset = std::clamp(scroll.offset, 0, scroll.Offset_Max());
    const int left = look.Px(MARGIN);
    const int right = std::max<int>(Bar().left - look.Px(MARGIN), left + 1);
    int y = look.Px(MARGIN) - scroll.offset;
    for (Section& section : sections) {
        section.heading = {left, y, right, y + look.Px(HEADING_HEIGHT)};
        y = section.heading.bottom;
        int height = section.is_folded ? 0 : section.host->Wanted_Height();
        if (!section.is_folded && section.stretch_most > height) {
            height = std::min(section.stretch_most, height + std::max<int>(client.bottom - content, 0));
        }
        section.host->Show(!section.is_folded);
        if (!section.is_folded) {
            section.host->Place({left, y, right, y + height});
            if (!section.host->Is_Ready()) {
                section.host->Lay_Out();
            }
        }
        y += height + look.Px(GAP);
    }
    Invalidate();
}

void Tool_Area::Update(unsigned __int64 flags) {
    for (const Section& section : sections) {
        section.host->Update(flags);
    }
}

Panel_Host* Tool_Area::Panel_At(POINT screen) const {
    const HWND under = ::WindowFromPoint(screen);
    for (const Section& section : sections) {
        if (section.host->Handle() == under) {
            return section.host.get();
        }
    }
    return nullptr;
}

RECT Tool_Area::Bar() const {
    RECT bar = Client();
    bar.left = bar.right - (scroll.Is_Needed() ? look.Px(BAR_WIDTH) : 0);
    return bar;
}

void Tool_Area::Scroll_To(int wanted) {
    scroll.offset = wanted;
    Lay_Out();
}

void Tool_Area::Wheel(int delta) {
    Scroll_To(scroll.offset - wheel.Pixels(delta, look.Px(SCROLL_STEP)));
}

void Tool_Area::Draw_Bar(HDC dc) const {
    if (!scroll.Is_Needed()) {
        return;
    }
    const RECT bar = Bar();
    const Scroll_Thumb thumb = Scroll_Thumb_Of(scroll, look.Px(THUMB_LEAST));
    Fill(dc, bar, look.heading);
    Fill(dc, {bar.left + look.Px(2), thumb.top, bar.right - look.Px(2), thumb.top + thumb.length},
         grip >= 0 ? look.accent : look.thumb);
}

void Tool_Area::Bar_Press(int y) {
    const Scroll_Thumb thumb = Scroll_Thumb_Of(scroll, look.Px(THUMB_LEAST));
    if (y >= thumb.top && y < thumb.top + thumb.length) {
        grip = y - thumb.top;
        ::SetCapture(Handle());
        Invalidate();
    } else {
        Scroll_To(scroll.offset + (y < thumb.top ? -scroll.view : scroll.view));
    }
}

void Tool_Area::Bar_Release() {
    if (grip >= 0) {
        grip = -1;
        ::ReleaseCapture();
        Invalidate();
    }
}

void Tool_Area::Draw_Heading(HDC dc, const Section& section, bool is_hovered) const {
    Fill(dc, section.heading, is_hovered ? look.heading_hover : look.heading);
    // A triangle that points down when open and right when folded.
    const int size = look.Px(4);
    const int x = section.heading.left + look.Px(12);
    const int y = (section.heading.top + section.heading.bottom) / 2;
    const POINT open[3] = {{x - size, y - size / 2}, {x + size, y - size / 2}, {x, y + size - size / 2}};
    const POINT folded[3] = {{x - size / 2, y - size}, {x - size / 2, y + size}, {x + size - size / 2, y}};
    {
        const Gdi_Brush brush(::CreateSolidBrush(look.text_grey));
        const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, look.text_grey));
        const Selected_Object selected_brush(dc, brush.Get());
        const Selected_Object selected_pen(dc, pen.Get());
        ::Polygon(dc, section.is_folded ? folded : open, 3);
    }
    RECT text = section.heading;
    text.left += look.Px(24);
    text.right -= look.Px(8);
    const int width = Draw_Line(dc, text, section.title, look.Bold(), look.text, DT_LEFT);
    text.left += width + look.Px(12);
    Draw_Line(dc, text, section.note, look.Font(), look.text_grey, DT_RIGHT);
}

LONG Tool_Area::Section_Bottom(const Section& section) const {
    RECT panel = section.heading;
    if (!section.is_folded) {
        ::GetWindowRect(section.host->Handle(), &panel);
        ::MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&panel), 2);
    }
    return panel.bottom;
}

void Tool_Area::Focus_Set(int panel) {
    focused = panel >= 0 && panel < Panel_Nb() ? panel : -1;
    if (focused >= 0) {
        const Section& section = sections[static_cast<std::size_t>(focused)];
        const int below = static_cast<int>(Section_Bottom(section) - Client().bottom) + look.Px(MARGIN);
        const int above = static_cast<int>(section.heading.top) - look.Px(MARGIN);
        // The heading comes first when the panel is higher than the window.
        const int step = above < 0 ? above : std::min(std::max(below, 0), above);
        if (step != 0) {
            Scroll_To(scroll.offset + step);
        }
    }
    Invalidate();
}

unsigned int Tool_Area::Folded() const {
    unsigned int bits = 0;
    for (std::size_t at = 0; at < sections.size(); ++at) {
        bits |= sections[at].is_folded ? 1U << at : 0U;
    }
    return bits;
}

void Tool_Area::Folded_Set(unsigned int bits) {
    for (std::size_t at = 0; at < sections.size(); ++at) {
        sections[at].is_folded = ((bits >> at) & 1U) != 0;
    }
    Lay_Out();
}

void Tool_Area::Fold_Toggle(int panel) {
    if (panel >= 0 && panel < Panel_Nb()) {
        Folded_Set(Folded() ^ (1U << static_cast<unsigned int>(panel)));
    }
}

void Tool_Area::Paint() {
    const Buffered_Paint paint(Handle());
    Fill(paint.Dc(), paint.Client(), look.ground);
    Draw_Bar(paint.Dc());
    for (std::size_t at = 0; at < sections.size(); ++at) {
        Draw_Heading(paint.Dc(), sections[at], static_cast<int>(at) == hovered);
        if (static_cast<int>(at) == focused) {
            RECT whole = sections[at].heading;
            whole.bottom = Section_Bottom(sections[at]);
            ::InflateRect(&whole, look.Px(3), look.Px(3));
            Frame(paint.Dc(), whole, look.Px(3), look.accent);
        }
    }
}

void Tool_Area::Hover(int section) {
    if (section != hovered) {
        hovered = section;
        Invalidate();
    }
}

void Tool_Area::Press(POINT point) {
    if (point.x >= Bar().left) {
        return Bar_Press(point.y);
    }
    for (Section& section : sections) {
        if (::PtInRect(&section.heading, point) != 0) {
            section.is_folded = !section.is_folded;
            Lay_Out();
            return;
        }
    }
}

LRESULT Tool_Area::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
            Press(point);
            return 0;
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            Bar_Release();
            return 0;
        case WM_MOUSEMOVE: {
            if (grip >= 0) {
                Scroll_To(Scroll_Offset_Of(scroll, look.Px(THUMB_LEAST), point.y - grip));
                return 0;
            }
            Watch_Leave(Handle());
            int over = -1;
            for (std::size_t at = 0; at < sections.size(); ++at) {
                over = ::PtInRect(&sections[at].heading, point) != 0 ? static_cast<int>(at) : over;
            }
            Hover(over);
            return 0;
        }
        case WM_MOUSELEAVE:
            Hover(-1);
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench

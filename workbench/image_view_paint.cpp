#include <algorithm>
#include <cmath>
#include <span>

#include "workbench/image_view.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr COLORREF SLICE_TEXT_SHADOW = RGB(0, 0, 0);
constexpr COLORREF OUTLINE_COLOR = RGB(255, 255, 255);
constexpr COLORREF PATH_COLOR = RGB(255, 225, 80);
constexpr COLORREF CROSS_COLOR = RGB(90, 170, 255);
constexpr int DASH = 8;  // pixels at 96 dots per inch

/** 0x00RRGGBB of a colour of the window system. */
std::uint32_t Pixel_Of(COLORREF color) {
    return (static_cast<std::uint32_t>(GetRValue(color)) << 16U) |
           (static_cast<std::uint32_t>(GetGValue(color)) << 8U) | GetBValue(color);
}

/** Lines and gaps of one length between points, with the selected pen: pens of the system have no dashes when they are
 *  thick. */
void Draw_Dashes(HDC dc, std::span<const POINT> points, int length) {
    for (std::size_t at = 1; at < points.size(); ++at) {
        const POINT& from = points[at - 1];
        const POINT& to = points[at];
        const double whole = std::hypot(to.x - from.x, to.y - from.y);
        const auto on_line = [&](double way) {
            const double share = std::min(way / std::max(whole, 1.0), 1.0);
            return POINT{from.x + std::lround((to.x - from.x) * share), from.y + std::lround((to.y - from.y) * share)};
        };
        for (int dash = 0; dash * 2.0 * length <= whole; ++dash) {
            const POINT ends[] = {on_line(dash * 2.0 * length), on_line((dash * 2.0 + 1.0) * length)};
            ::Polyline(dc, ends, 2);
        }
    }
}

std::wstring Side(char name) {
    return std::wstring(1, static_cast<wchar_t>(name));
}

}  // namespace

void Image_View::Paint() {
    Paint_DC paint(Handle());
    RECT dirty = paint.Dirty();
    const RECT client = Client();
    const int width = dirty.right - dirty.left;
    const int height = dirty.bottom - dirty.top;
    if (width <= 0 || height <= 0) {
        return;
    }
    // Only the part that is asked for is drawn, in a bitmap of its size.
    const Memory_DC memory(paint.Get());
    const Gdi_Bitmap bitmap(::CreateCompatibleBitmap(paint.Get(), width, height));
    if (!memory || !bitmap) {
        return;
    }
    const Selected_Object selected(memory.Get(), bitmap.Get());
    ::SetViewportOrgEx(memory.Get(), -dirty.left, -dirty.top, nullptr);
    if (content.source.levels.empty()) {
        Fill(memory.Get(), client, look.image_ground);
        Draw_Line(memory.Get(), client, L"Open an image with Ctrl+O, a folder with Ctrl+D, or drop them here",
                  look.Font(), look.text_grey, DT_CENTER);
    } else {
        Draw_Slice(memory.Get(), dirty);
        Draw_Cross(memory.Get());
        Draw_Markers(memory.Get());
        Draw_Paths(memory.Get());
        if (is_over && drag != Drag::Window && drag != Drag::Slider && drag != Drag::Tool_Slider) {
            Draw_Outline(memory.Get());
        }
        Draw_Texts(memory.Get());
        Draw_Scale_Bar(memory.Get());
        Draw_Tool_Slider(memory.Get());
    }
    Draw_Slider(memory.Get());
    Draw_Keyboard_Marks(memory.Get());
    ::BitBlt(paint.Get(), dirty.left, dirty.top, width, height, memory.Get(), dirty.left, dirty.top, SRCCOPY);
}

volumes::Picture Image_View::Picture_Now(bool is_plain) {
    const Dib_Picture drawn(nullptr, state.view_width, state.view_height);
    if (!drawn || content.source.levels.empty()) {
        return {};
    }
    const Pixel_Rect whole = {0, 0, content.source.width, content.source.height};
    const auto tints = [this](Tag_Overlay overlay, std::vector<Range_Overlay> ranges) {
        content.overlay = std::move(overlay);
        content.ranges = std::move(ranges);
    };
    const Tag_Overlay overlay = content.overlay;
    const std::vector<Range_Overlay> ranges = content.ranges;
    if (is_plain) {
        tints({}, {});
        Render(whole);
    }
    Draw_Slice(drawn.Get_DC(), {0, 0, state.view_width, state.view_height});
    if (is_plain) {
        tints(overlay, ranges);
        Render(whole);
    } else {
        Draw_Cross(drawn.Get_DC());
        Draw_Markers(drawn.Get_DC());
        Draw_Paths(drawn.Get_DC());
        Draw_Texts(drawn.Get_DC());
        Draw_Scale_Bar(drawn.Get_DC());
    }
    Dib_Picture::Flush();
    volumes::Picture copy{drawn.Width(), drawn.Height(), {}};
    const std::span pixels(drawn.Pixels(), screen.size());
    copy.pixels.resize(pixels.size());
    std::ranges::transform(pixels, copy.pixels.begin(), [](std::uint32_t pixel) { return pixel & 0xFFFFFFU; });
    return copy;
}

void Image_View::Draw_Slice(HDC dc, const RECT& dirty) {
    const Pixel_Rect part =
        Rect_Common({dirty.left, dirty.top, dirty.right, dirty.bottom}, {0, 0, state.view_width, state.view_height});
    if (part.Is_Empty()) {
        return;
    }
    const std::uint32_t ground = Pixel_Of(look.image_ground);
    if (content.is_linear) {
        Slice_Draw_Linear(kept.source, content.window, content.overlay, content.ranges, layout,
                          {part, state.view_width, state.view_height, ground, screen});
    } else {
        Slice_Scale(picture, layout, part, state.view_width, state.view_height, ground, screen);
    }
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = state.view_width;
    info.bmiHeader.biHeight = -(part.bottom - part.top);  // rows from the top, only those of the part
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    const std::uint32_t* rows = screen.data() + static_cast<std::ptrdiff_t>(part.top) * state.view_width;
    ::SetDIBitsToDevice(dc, part.left, part.top, static_cast<DWORD>(part.right - part.left),
                        static_cast<DWORD>(part.bottom - part.top), part.left, 0, 0,
                        static_cast<UINT>(part.bottom - part.top), rows, &info, DIB_RGB_COLORS);
}

void Image_View::Draw_Outline(HDC dc) const {
    const Gdi_Brush white(::CreateSolidBrush(OUTLINE_COLOR));
    // On the covered side of every edge: what the line encloses, itself included, is what will be painted.
    for (const Outline_Edge& edge : outline) {
        RECT line = {layout.To_Screen_X(over_x + edge.x0), layout.To_Screen_Y(over_y + edge.y0),
                     layout.To_Screen_X(over_x + edge.x1), layout.To_Screen_Y(over_y + edge.y1)};
        const int inwards = edge.is_first ? 0 : -1;
        if (edge.x0 == edge.x1) {
            line.left += inwards;
            line.right = line.left + 1;
        } else {
            line.top += inwards;
            line.bottom = line.top + 1;
        }
        if (line.left < state.view_width) {
            ::FillRect(dc, &line, white.Get());
        }
    }
}

void Image_View::Draw_Markers(HDC dc) const {
    const int arm = look.Px(7);
    for (const Shown_Marker& marker : content.markers) {
        const int x = layout.To_Screen_X(marker.x + 0.5);
        const int y = layout.To_Screen_Y(marker.y + 0.5);
        const int thick = marker.is_current ? look.Px(3) : look.Px(1);
        const RECT across = {x - arm, y - thick / 2, x + arm + 1, y - thick / 2 + thick};
        const RECT down = {x - thick / 2, y - arm, x - thick / 2 + thick, y + arm + 1};
        for (RECT shadow : {across, down}) {
            ::InflateRect(&shadow, 1, 1);
            Fill(dc, shadow, SLICE_TEXT_SHADOW);
        }
        Fill(dc, across, marker.color);
        Fill(dc, down, marker.color);
        Draw_Line_Shadowed(dc, {x + arm + look.Px(3), y - look.Px(10), x + look.Px(160), y + look.Px(10)}, marker.name,
                           look.Font(), DT_LEFT);
    }
}

void Image_View::Draw_Paths(HDC dc) {
    const std::vector<Shown_Path> paths = user.Tool_Paths();
    has_paths = !paths.empty();
    const int thick = std::max(look.Px(1), 1);
    const Gdi_Pen dark(::CreatePen(PS_SOLID, thick + 2, SLICE_TEXT_SHADOW));
    const Gdi_Pen light(::CreatePen(PS_SOLID, thick, PATH_COLOR));
    const int knot = look.Px(3);
    for (const Shown_Path& path : paths) {
        std::vector<POINT> points;
        for (const Slice_Point& at : path.points) {
            points.push_back({layout.To_Screen_X(at.x), layout.To_Screen_Y(at.y)});
        }
        if (points.empty()) {
            continue;
        }
        const POINT last = points.back();
        if (path.is_closed) {
            points.push_back(points.front());
        }
        for (const Gdi_Pen* pen : {&dark, &light}) {
            const Selected_Object selected(dc, pen->Get());
            if (path.is_dashed) {
                Draw_Dashes(dc, points, look.Px(DASH));
            } else {
                ::Polyline(dc, points.data(), static_cast<int>(points.size()));
            }
        }
        for (const Slice_Point& at : path.knots) {
            const int x = layout.To_Screen_X(at.x);
            const int y = layout.To_Screen_Y(at.y);
            RECT mark = {x - knot, y - knot, x + knot + 1, y + knot + 1};
            Fill(dc, mark, SLICE_TEXT_SHADOW);
            ::InflateRect(&mark, -1, -1);
            Fill(dc, mark, PATH_COLOR);
        }
        Draw_Line_Shadowed(dc, {last.x + look.Px(8), last.y - look.Px(9), last.x + look.Px(200), last.y + look.Px(9)},
                           Wide_Of_Utf8(path.text), look.Bold(), DT_LEFT);
    }
}

void Image_View::Draw_Cross(HDC dc) const {
    if (!content.cross.has_value()) {
        return;
    }
    const int x = layout.To_Screen_X(content.cross->x + 0.5);
    const int y = layout.To_Screen_Y(content.cross->y + 0.5);
    const int gap = look.Px(8);  // what the cross-hair points at stays in sight
    const Pixel_Rect slice = Rect_Common(layout.Slice_On_Screen(), {0, 0, state.view_width, state.view_height});
    const Gdi_Brush color(::CreateSolidBrush(CROSS_COLOR));
    const RECT lines[] = {{slice.left, y, std::min(x - gap, slice.right), y + 1},
                          {std::max(x + gap, slice.left), y, slice.right, y + 1},
                          {x, slice.top, x + 1, std::min(y - gap, slice.bottom)},
                          {x, std::max(y + gap, slice.top), x + 1, slice.bottom}};
    for (const RECT& line : lines) {
        RECT inside = line;
        const RECT view = {slice.left, slice.top, slice.right, slice.bottom};
        if (::IntersectRect(&inside, &line, &view)) {
            ::FillRect(dc, &inside, color.Get());
        }
    }
}

void Image_View::Draw_Scale_Bar(HDC dc) const {
    const int margin = look.Px(12);
    const Scale_Bar bar = Scale_Bar_Of(content.pixel_mm / layout.scale_x, (state.view_width - 2 * margin) / 4);
    if (bar.length < 1) {
        return;
    }
    const int tick = look.Px(4);
    const int thick = std::max(look.Px(2), 1);
    const int bottom = state.view_height - margin;
    const RECT parts[] = {{margin, bottom - thick, margin + bar.length, bottom},
                          {margin, bottom - tick - thick, margin + thick, bottom},
                          {margin + bar.length - thick, bottom - tick - thick, margin + bar.length, bottom}};
    for (RECT shadow : parts) {
        ::InflateRect(&shadow, 1, 1);
        Fill(dc, shadow, SLICE_TEXT_SHADOW);
    }
    for (const RECT& part : parts) {
        Fill(dc, part, OUTLINE_COLOR);
    }
    Draw_Line_Shadowed(dc, {margin, bottom - tick - look.Px(20), margin + look.Px(160), bottom - tick - look.Px(2)},
                       Wide_Of_Utf8(Number_Text(bar.mm) + " mm"), look.Font(), DT_LEFT);
}

void Image_View::Draw_Texts(HDC dc) const {
    const int margin = look.Px(8);
    const int height = look.Px(18);
    RECT area = {margin, margin, state.view_width - margin, margin + height};
    for (std::size_t from = 0; from <= content.caption.size();) {
        const std::size_t end = std::min(content.caption.find(L'\n', from), content.caption.size());
        Draw_Line_Shadowed(dc, area, content.caption.substr(from, end - from), look.Font(), DT_LEFT);
        ::OffsetRect(&area, 0, height);
        from = end + 1;
    }
    area.left += look.Px(16);
    for (const Legend_Entry& entry : content.legend) {
        const int side = look.Px(10);
        RECT swatch = {margin, area.top + (height - side) / 2, margin + side, area.top + (height + side) / 2};
        Fill(dc, swatch, SLICE_TEXT_SHADOW);
        ::InflateRect(&swatch, -1, -1);
        Fill(dc, swatch, RGB(entry.color >> 16U & 0xFFU, entry.color >> 8U & 0xFFU, entry.color & 0xFFU));
        Draw_Line_Shadowed(dc, area, entry.text, look.Font(), DT_LEFT);
        ::OffsetRect(&area, 0, height);
    }
    const Pixel_Rect slice = layout.Slice_On_Screen();
    const int left = std::max(slice.left, 0);
    const int right = std::min(slice.right, state.view_width);
    const int top = std::max(slice.top, 0);
    const int bottom = std::min(slice.bottom, state.view_height);
    const int middle_x = (left + right) / 2;
    const int middle_y = (top + bottom) / 2;
    const int half = look.Px(12);
    const HFONT font = look.Bold();
    Draw_Line_Shadowed(dc, {left + margin / 2, middle_y - half, left + 2 * half, middle_y + half},
                       Side(content.order.left), font, DT_LEFT);
    Draw_Line_Shadowed(dc, {right - 2 * half, middle_y - half, right - margin / 2, middle_y + half},
                       Side(content.order.right), font, DT_RIGHT);
    Draw_Line_Shadowed(dc, {middle_x - half, top + margin / 2, middle_x + half, top + 2 * half},
                       Side(content.order.top), font, DT_CENTER);
    Draw_Line_Shadowed(dc, {middle_x - half, bottom - 2 * half, middle_x + half, bottom - margin / 2},
                       Side(content.order.bottom), font, DT_CENTER);
}

void Image_View::Draw_Slider(HDC dc) const {
    const RECT box = Slider_Box();
    Fill(dc, box, look.ground);
    if (content.slice_nb < 2) {
        return;
    }
    const int length = box.bottom - box.top;
    const int thumb = std::max(length / content.slice_nb, look.Px(24));
    const int y = box.top + (length - thumb) * (content.slice_nb - 1 - content.slice) / (content.slice_nb - 1);
    RECT place = {box.left + look.Px(3), y, box.right - look.Px(3), y + thumb};
    Fill(dc, place, drag == Drag::Slider ? look.accent : look.thumb);
}

}  // namespace workbench

// Drawing of the histogram panel: GDI, no decisions about data.
#include "base/drawing_dc.h"
#include "base/gdi_handles.h"

#include "histogram/tool_histo_paint.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "histogram/histo_colors.h"
#include "histogram/histo_tag_colors.h"
#include "histogram/plot_scale.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_cursor.h"
#include "histogram/tool_histo_geometry.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr int BINS_PER_POLYGON = 16;
constexpr int CURSOR_WIDTH = 2;  // pixels
constexpr COLORREF WHITE = 0xFFFFFF;

/** The panel's device context, in device units whatever the window's axis: polygons land on the same pixels in both. */
class Panel_DC {
  public:
    Panel_DC(const Tool_Histo& panel, const char* label) : drawing(panel.window, label), saved(drawing.Get()) {
        if (!drawing) {
            return;
        }
        std::array<POINT, 2> corners = {POINT{panel.x, panel.y},
                                        POINT{panel.x + panel.width - 1, panel.y + panel.height - 1}};
        ::LPtoDP(Get(), corners.data(), static_cast<int>(corners.size()));
        box = {std::min<int>(corners[0].x, corners[1].x), std::min<int>(corners[0].y, corners[1].y), panel.width,
               panel.height};
        ::SetMapMode(Get(), MM_TEXT);
        ::SetWindowOrgEx(Get(), 0, 0, nullptr);
        ::SetViewportOrgEx(Get(), 0, 0, nullptr);
    }
    HDC Get() const { return drawing.Get(); }
    const Pixel_Rectangle& Box() const { return box; }

  private:
    Drawing_DC drawing;
    Saved_DC saved;  // declared after the device context, so that it goes before it
    Pixel_Rectangle box;
};

Plot_Scale Scale_Of(const Tool_Histo& panel, const Pixel_Rectangle& inner) {
    const Histo_Record& record = *panel.data->record;
    return {{inner.x, inner.width, inner.height},
            {record.nb_bins, record.origin, record.bin_width},
            static_cast<float>(record.max_count) * panel.scale};
}

/** Solid bars of the bins first .. last, standing on the row `base`, as stepped polygons. */
void Draw_Bars(HDC dc, const Plot_Scale& scale, int base, const std::uint32_t* counts, int first, int last,
               COLORREF color) {
    const Gdi_Brush brush(::CreateSolidBrush(color));
    const Selected_Object brush_selected(dc, brush.Get());
    const Selected_Object pen_selected(dc, ::GetStockObject(NULL_PEN));
    std::array<POINT, 2 * BINS_PER_POLYGON + 2> points;
    for (int from = first; from <= last; from += BINS_PER_POLYGON) {
        const int to = std::min(from + BINS_PER_POLYGON - 1, last);
        const int right = scale.Bin_To_Column(to + 1);
        if (scale.Bin_To_Column(from) == right) {
            continue;  // more bins than columns: these have none of their own
        }
        int nb = 0;
        const auto add = [&](int x, int y) { points[static_cast<std::size_t>(nb++)] = {x, y}; };
        add(scale.Bin_To_Column(from), base);
        for (int bin = from; bin <= to; ++bin) {
            const int begin = scale.Bin_To_Column(bin);
            const int end = scale.Bin_To_Column(bin + 1);
            if (begin != end) {
                const int top = base - scale.Count_To_Height(counts[bin]);
                add(begin, top);
                add(end, top);
            }
        }
        add(right, base);
        ::Polygon(dc, points.data(), nb);
    }
}

/** A brush of 2 x 2 pixels: two in the colour, two black. */
Gdi_Brush Checker_Brush(COLORREF color) {
    struct {
        BITMAPINFOHEADER header;
        std::array<std::uint32_t, 4> pixels;
    } dib = {};
    dib.header.biSize = sizeof dib.header;
    dib.header.biWidth = 2;
    dib.header.biHeight = 2;
    dib.header.biPlanes = 1;
    dib.header.biBitCount = 32;
    const std::uint32_t pixel = static_cast<std::uint32_t>(GetRValue(color)) << 16 |
                                static_cast<std::uint32_t>(GetGValue(color)) << 8 | GetBValue(color);
    dib.pixels = {pixel, 0, 0, pixel};
    return Gdi_Brush(::CreateDIBPatternBrushPt(&dib, DIB_RGB_COLORS));
}

/** Bins first .. last; first > last: none. */
struct Bin_Band {
    int first = 0;
    int last = -1;
    bool Holds(int bin) const { return bin >= first && bin <= last; }
};
using Bin_Bands = std::array<Bin_Band, HISTO_RANGE_MAX>;

/** Range ends are truncated here; the enlarged window rounds. */
Bin_Bands Bands_Of(const Tool_Histo& panel, const Plot_Scale& scale) {
    Bin_Bands bands;
    for (std::size_t range = 0; range < panel.range_nb; ++range) {
        bands[range] = {scale.Level_To_Bin(std::trunc(panel.range_min[range])),
                        scale.Level_To_Bin(std::trunc(panel.range_max[range]))};
    }
    return bands;
}

/** The first bins of a band, from `bin` on, that no later band covers. Bands are opaque: only these will be seen. */
Bin_Band Next_Visible(const Bin_Bands& bands, std::size_t range, std::size_t range_nb, int bin) {
    Bin_Band visible{bin, bands[range].last};
    for (bool moved = true; moved && visible.first <= visible.last;) {
        moved = false;
        for (std::size_t later = range + 1; later < range_nb; ++later) {
            if (bands[later].Holds(visible.first)) {
                visible.first = bands[later].last + 1;
                moved = true;
            }
        }
    }
    for (std::size_t later = range + 1; later < range_nb; ++later) {
        if (bands[later].first > visible.first && bands[later].first <= bands[later].last) {
            visible.last = std::min(visible.last, bands[later].first - 1);
        }
    }
    return visible;
}

/** A part of a TAG band: checkered over the full height, with the bars solid. */
void Draw_Band(HDC dc, const Tool_Histo& panel, const Plot_Scale& scale, const Pixel_Rectangle& inner,
               const Bin_Band& bins, COLORREF color) {
    const RECT band = {scale.Bin_To_Column(bins.first), inner.y, scale.Bin_To_Column(bins.last + 1),
                       inner.y + inner.height};
    if (const Gdi_Brush checker = Checker_Brush(color)) {
        ::FillRect(dc, &band, checker.Get());
    }
    Draw_Bars(dc, scale, inner.y + inner.height, Histo_Band_Counts(*panel.data->record, panel.color_component),
              bins.first, bins.last, color);
}

void Draw_Bands(HDC dc, const Tool_Histo& panel, const Plot_Scale& scale, const Pixel_Rectangle& inner) {
    Histo_Tag_Colors colors;
    colors.Look_Up();
    const Bin_Bands bands = Bands_Of(panel, scale);
    for (std::size_t range = 0; range < panel.range_nb; ++range) {
        const COLORREF color = colors.Of(panel.range_tag[range]);
        for (int bin = bands[range].first; bin <= bands[range].last;) {
            const Bin_Band visible = Next_Visible(bands, range, panel.range_nb, bin);
            if (visible.first <= visible.last) {
                Draw_Band(dc, panel, scale, inner, visible, color);
            }
            bin = visible.last + 1;
        }
    }
}

/** Draws connected lines through any number of points, a part at a time: nothing to allocate. Strokes up and down one
 *  column become one, with the same pixels. */
class Line_Drawer {
  public:
    explicit Line_Drawer(HDC line_dc) : dc(line_dc) {}
    ~Line_Drawer() {
        // The last pixel of a line stays undrawn: what only the last point reaches must not count before it.
        Push(column, lowest);
        Push(column, highest);
        Push(column, latest);
        Draw();
    }
    Line_Drawer(const Line_Drawer&) = delete;
    Line_Drawer& operator=(const Line_Drawer&) = delete;

    void Add(int x, int y) {
        if (nb > 0) {
            lowest = std::min(lowest, latest);
            highest = std::max(highest, latest);
        }
        if (nb == 0 || x != column) {
            if (nb > 0) {
                Push(column, lowest);
                Push(column, highest);
                Push(column, latest);
            }
            Push(x, y);
            column = x;
            lowest = highest = y;
        }
        latest = y;
    }

  private:
    static constexpr int POINTS_NB = 1024;

    const POINT& Last() const { return points[static_cast<std::size_t>(nb - 1)]; }
    void Push(int x, int y) {
        if (nb > 0 && Last().x == x && Last().y == y) {
            return;
        }
        if (nb == POINTS_NB) {
            // A line leaves its last pixel to the next one, which begins there.
            Draw();
            points[0] = Last();
            nb = 1;
        }
        points[static_cast<std::size_t>(nb++)] = {x, y};
    }
    void Draw() const {
        if (nb > 1) {
            ::Polyline(dc, points.data(), nb);
        }
    }

    HDC dc;
    std::array<POINT, POINTS_NB> points;
    int nb = 0;
    int column = 0;  // of the newest point
    int lowest = 0;  // rows of this column's points but the newest
    int highest = 0;
    int latest = 0;  // row of the newest point
};

void Draw_Outline(HDC dc, const Plot_Scale& scale, int base, const Histo_Curve& curve) {
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, curve.color));
    const Selected_Object pen_selected(dc, pen.Get());
    Line_Drawer line(dc);
    for (int bin = 0; bin < scale.Bins().nb_bins; ++bin) {
        const int y = base - scale.Count_To_Height(curve.counts[bin]);
        line.Add(scale.Bin_To_Column(bin), y);
        line.Add(scale.Bin_To_Column(bin + 1), y);
    }
}

void Draw_Plot(HDC dc, const Tool_Histo& panel, const Pixel_Rectangle& box) {
    const RECT interior = {box.x + panel.border, box.y + panel.border, box.x + box.width - panel.border,
                           box.y + box.height - panel.border};
    if (interior.right <= interior.left || interior.bottom <= interior.top) {
        return;  // a rectangle turned inside out would be filled all the same
    }
    ::FillRect(dc, &interior, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
    const Pixel_Rectangle inner = Histo_Plot_Inner(box, panel.border);
    const Plot_Scale scale = Scale_Of(panel, inner);
    if (scale.Is_Empty()) {
        return;
    }
    Draw_Bands(dc, panel, scale, inner);
    const Histo_Curves curves = Histo_Curves_Of(*panel.data->record, panel.color_component);
    for (int k = 0; k < curves.nb; ++k) {
        Draw_Outline(dc, scale, inner.y + inner.height, curves.curve[static_cast<std::size_t>(k)]);
    }
}

/** Draws the cursor line in XOR mode: twice at one column leaves no trace. */
void Invert_Line(const Panel_DC& panel_dc, int column, const Pixel_Rectangle& inner) {
    HDC dc = panel_dc.Get();
    const Gdi_Pen pen(::CreatePen(PS_SOLID, CURSOR_WIDTH, WHITE));
    const Selected_Object pen_selected(dc, pen.Get());
    const Rop_Guard rop(dc, R2_XORPEN);
    ::MoveToEx(dc, column, inner.y, nullptr);
    ::LineTo(dc, column, inner.y + inner.height);
}

}  // namespace

int Histo_Paint(Tool_Histo& panel) {
    if (panel.data == nullptr || !panel.data->Has_Counts()) {
        return 0;
    }
    Error_Fct(hwnd, TRACE_LEVEL, "in Histo_Paint()");
    const Panel_DC dc(panel, "tool_histo: Histo_Paint");
    if (dc.Get() == nullptr) {
        return 1;
    }
    // The line is gone with the repaint; the next cursor update inverts once at -1, outside the window, which leaves
    // nothing.
    panel.cursor_position = -1;
    Draw_Plot(dc.Get(), panel, dc.Box());
    return 1;
}

int Histo_Cursor(Tool_Histo& panel) {
    if (panel.data == nullptr || !panel.data->Has_Counts() || panel.data->record->nb_bins == 0) {
        return 0;
    }
    Error_Fct(hwnd, TRACE_LEVEL, "in Histo_Cursor()");
    const Panel_DC dc(panel, "tool_histo: Histo_Cursor");
    if (dc.Get() == nullptr) {
        return 1;
    }
    const Pixel_Rectangle inner = Histo_Plot_Inner(dc.Box(), panel.border);
    if (panel.cursor_position != 0) {
        Invert_Line(dc, panel.cursor_position, inner);
        panel.cursor_position = 0;
    }
    const Histo_Cursor_Bin marked = Histo_Cursor_Bin_Find(panel);
    if (marked.result != Histo_Cursor_Result::On_Bin) {
        return marked.result == Histo_Cursor_Result::No_Frame ? 0 : 1;
    }
    panel.cursor_position = Scale_Of(panel, inner).Bin_To_Column(marked.bin);
    Invert_Line(dc, panel.cursor_position, inner);
    return 1;
}

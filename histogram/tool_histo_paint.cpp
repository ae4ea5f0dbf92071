// Drawing of the histogram panel: GDI, no decisions about data.
#include "base/drawing_dc.h"
#include "base/gdi_handles.h"

#include "histogram/tool_histo_paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "histogram/histo_colors.h"
#include "histogram/histo_tag_colors.h"
#include "histogram/plot_panel_picture.h"
#include "histogram/plot_scale.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_cursor.h"
#include "histogram/tool_histo_geometry.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

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

/** The bands of the panel's ranges, in their order. Range ends are truncated here; the enlarged window rounds. */
std::span<const Panel_Band> Bands_Of(const Tool_Histo& panel, const Plot_Scale& scale,
                                     std::array<Panel_Band, HISTO_RANGE_MAX>& bands) {
    Histo_Tag_Colors colors;
    colors.Look_Up();
    for (std::size_t range = 0; range < panel.range_nb; ++range) {
        bands[range] = {scale.Level_To_Bin(std::trunc(panel.range_min[range])),
                        scale.Level_To_Bin(std::trunc(panel.range_max[range])),
                        Pixel_Of_Color(colors.Of(panel.range_tag[range]))};
    }
    return std::span(bands).first(panel.range_nb);
}

std::span<const Panel_Curve> Curves_Of(const Tool_Histo& panel, std::array<Panel_Curve, 3>& curves) {
    const Histo_Curves shown = Histo_Curves_Of(*panel.data->record, panel.color_component);
    for (std::size_t k = 0; k < static_cast<std::size_t>(shown.nb); ++k) {
        curves[k] = {shown.curve[k].counts, Pixel_Of_Color(shown.curve[k].color)};
    }
    return std::span(curves).first(static_cast<std::size_t>(shown.nb));
}

/** Shows the picture part by part: a few calls, whatever it shows, and no memory that could be missing.
 *  @param top row of the picture's top */
void Show_Picture(HDC dc, Panel_Picture picture, int top) {
    constexpr int pixels_max = 32768;  // one column of the highest box there is
    static std::array<std::uint32_t, pixels_max> pixels;
    const int rows = picture.Height();
    const int columns_max = std::clamp(pixels_max / rows, 1, Panel_Picture::COLUMNS_MAX);
    while (picture.Columns_Left() > 0) {
        const int column = picture.Column();
        const int columns = std::min(picture.Columns_Left(), columns_max);
        picture.Part_Draw({pixels.data(), columns, rows});
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = columns;
        info.bmiHeader.biHeight = -rows;  // negative: the first row is the top row
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        ::SetDIBitsToDevice(dc, column, top, static_cast<DWORD>(columns), static_cast<DWORD>(rows), 0, 0, 0,
                            static_cast<UINT>(rows), pixels.data(), &info, DIB_RGB_COLORS);
    }
}

void Draw_Plot(HDC dc, const Tool_Histo& panel, const Pixel_Rectangle& box) {
    const RECT interior = {box.x + panel.border, box.y + panel.border, box.x + box.width - panel.border,
                           box.y + box.height - panel.border};
    if (interior.right <= interior.left || interior.bottom <= interior.top) {
        return;  // a rectangle turned inside out would be filled all the same
    }
    const Pixel_Rectangle inner = Histo_Plot_Inner(box, panel.border);
    const Plot_Scale scale = Scale_Of(panel, inner);
    if (scale.Is_Empty()) {
        ::FillRect(dc, &interior, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
        return;
    }
    std::array<Panel_Band, HISTO_RANGE_MAX> bands;
    std::array<Panel_Curve, 3> curves;
    Panel_Contents contents;
    contents.band_counts = Histo_Band_Counts(*panel.data->record, panel.color_component);
    contents.bands = Bands_Of(panel, scale, bands);
    contents.curves = Curves_Of(panel, curves);
    contents.phase = inner.y + inner.height;
    Show_Picture(dc, Panel_Picture(scale, contents), interior.top);
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

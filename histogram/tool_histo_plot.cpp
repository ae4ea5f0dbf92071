#include "base/drawing_dc.h"
#include "base/gdi_handles.h"

#include "histogram/tool_histo_plot.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <new>
#include <thread>

#include "histogram/histo_colors.h"
#include "histogram/histo_tag_colors.h"
#include "histogram/plot_pixels.h"
#include "histogram/plot_scale.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_cursor.h"
#include "histogram/tool_histo_messages.h"
#include "histogram/tool_histo_plot_peaks.h"
#include "host/kit_common.h"
#include "host/kit_graph.h"

namespace {

constexpr std::uint32_t COLOR_FILTERED = 0xFF00FF;
constexpr std::uint32_t COLOR_FIT_SUM = 0xFFA000;
constexpr std::uint32_t COLOR_DERIVATIVE = 0xD8D8D8;
constexpr std::uint32_t HALF_TONE_REST = 0x000000;  // the other pixels of a TAG's half-tone
constexpr int TRACED_CURVES = 1;                    // trace level that shows the curves of the analysis
constexpr int FONT_HEIGHT = 12;                     // pixels, where the host has none
constexpr int LABEL_HEIGHT_MIN = 10;                // pixels, of a peak's label in a small plot
constexpr int LABEL_LINES = 16;                     // lines of labels that a plot is at least high
constexpr int LABEL_COLUMNS = 40;                   // and wide
constexpr int FONT_PER_PIXEL = 16;                  // lines grow by a pixel with so many of the font's
constexpr const char* NOTE_OUTSIDE = "No counts here: Reset Zoom shows all";
constexpr const char* NOTE_NO_PIXELS = "No range of grey levels and counts to plot";
/** XOR of the marks: flips the top bit of each component, so that a mark stands out by half the range on any colour. */
constexpr COLORREF MARK_COLOR = 0x808080;

/** The device context of the plot's window in device units, y down, and the plot area in it. */
class Plot_DC {
  public:
    Plot_DC(const Histo_Plot_Scene& scene, const char* label) : drawing(scene.box.window, label), saved(drawing.Get()) {
        if (!drawing) {
            return;
        }
        std::array<POINT, 2> corners = {POINT{scene.area.x, scene.area.y}, POINT{scene.area.x + scene.area.width - 1,
                                                                                 scene.area.y + scene.area.height - 1}};
        ::LPtoDP(Get(), corners.data(), static_cast<int>(corners.size()));
        left = static_cast<int>(std::min(corners[0].x, corners[1].x));
        top = static_cast<int>(std::min(corners[0].y, corners[1].y));
    }
    HDC Get() const { return drawing.Get(); }
    int Left() const { return left; }
    int Top() const { return top; }
    /** From here on pixels of the device; before, those of the window's axis. */
    void Device_Units() const {
        ::SetMapMode(Get(), MM_TEXT);
        ::SetWindowOrgEx(Get(), 0, 0, nullptr);
        ::SetViewportOrgEx(Get(), 0, 0, nullptr);
    }

  private:
    Drawing_DC drawing;
    Saved_DC saved;  // declared after the device context, so that it goes before it
    int left = 0;
    int top = 0;
};

Plot_Grid Grid_Of(const Histo_Record& record) {
    return {record.nb_bins, static_cast<double>(record.origin), static_cast<double>(record.bin_width)};
}

int Thickness(const Histo_Plot_Scene& scene) {
    return std::max((scene.font_height + FONT_PER_PIXEL / 2) / FONT_PER_PIXEL, 1);
}

/** Height of the peaks' labels: the host's font where the plot has room for it. */
int Label_Height(const Histo_Plot_Scene& scene) {
    const int wanted = scene.font_height > 0 ? scene.font_height : FONT_HEIGHT;
    const int room = std::min(scene.area.height / LABEL_LINES, scene.area.width / LABEL_COLUMNS);
    return std::min(wanted, std::max(room, LABEL_HEIGHT_MIN));
}

std::uint32_t Ground_Pixel(const Boxs& box) {
    return Pixel_Of_Color(static_cast<std::uint32_t>(box.color.get()));
}

/** Readable on the ground: white on dark, black on light. */
std::uint32_t Text_Pixel(const Boxs& box) {
    constexpr int middle = 132;
    const int brightness = (box.color.red * 299 + box.color.green * 587 + box.color.blue * 114) / 1000;
    return brightness > middle ? 0x202020 : 0xE8E8E8;
}

/** The font of the peaks' labels; `made` owns it when the box brings none. */
HFONT Label_Font(const Histo_Plot_Scene& scene, Gdi_Font& made) {
    if (scene.box.font != nullptr) {
        return scene.box.font;
    }
    made = Gdi_Font(Y_Create_Font(scene.box.window, scene.box.font_name, scene.box.font_weight, Label_Height(scene)));
    return made.Get();
}

/** A line in the middle of a plot that shows no counts: says why. */
void Draw_Note(HDC dc, const Histo_Plot_Scene& scene, RECT place, const char* text) {
    Gdi_Font made;
    const Selected_Object font(dc, Label_Font(scene, made));
    const std::uint32_t ink = Text_Pixel(scene.box);
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, RGB(ink >> 16 & 0xFF, ink >> 8 & 0xFF, ink & 0xFF));
    ::SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    ::DrawTextA(dc, text, -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

/** Counts without extent have no curve: one bin, or none that was counted. */
void Draw_Extentless(HDC dc, const Histo_Plot_Scene& scene, const RECT& place, const Histo_Record& record) {
    std::array<char, 96> text{};
    if (record.nb_bins == 1 && record.max_count > 0) {
        constexpr float half_bin = 0.5F;
        std::snprintf(text.data(), text.size(), "%u pixels in one bin, at grey level %.0f",
                      static_cast<unsigned int>(record.counts[0]),
                      static_cast<double>(std::trunc(half_bin * record.bin_width + record.origin)));
    } else {
        std::snprintf(text.data(), text.size(), "%s", NOTE_NO_PIXELS);
    }
    Draw_Note(dc, scene, place, text.data());
}

// ---- curves

bool Is_In(const Column_Spans& spans, int height) {
    return std::ranges::any_of(
        spans, [&](const Column_Span& span) { return !span.Is_Empty() && span.high >= 0 && span.low < height; });
}

/** Adds the curves. @return false: none of them has a pixel in the picture */
bool Curves_Add(std::vector<Plot_Layer>& layers, const Tool_Histo& panel, const Plot_Columns& columns, int thickness) {
    const Plot_Frame& frame = columns.Frame();
    const Histo_Data& data = *panel.data;
    bool is_seen = false;
    const auto add = [&](const Column_Spans& spans, std::uint32_t color) {
        layers.push_back(
            {Span_Blocks(Thick_Spans(spans, thickness), frame.width, frame.height), Pixel_Of_Color(color)});
        is_seen = is_seen || Is_In(spans, frame.height);
    };
    const Histo_Curves curves = Histo_Curves_Of(*data.record, panel.color_component);
    for (int k = 0; k < curves.nb; ++k) {
        const Histo_Curve& curve = curves.curve[static_cast<std::size_t>(k)];
        add(columns.Stepped(curve.counts, data.record->nb_bins), curve.color);
    }
    if (data.filtered != nullptr) {
        add(columns.Stepped(data.filtered, data.curve_nb), COLOR_FILTERED);
    }
    if (Flag_Trace >= TRACED_CURVES && data.fit_sum != nullptr) {
        add(columns.Stepped(data.fit_sum, data.curve_nb), COLOR_FIT_SUM);
    }
    if (Flag_Trace >= TRACED_CURVES && data.derivative != nullptr) {
        add(columns.Stepped(data.derivative, data.curve_nb), COLOR_DERIVATIVE);
    }
    return is_seen;
}

// ---- bands

/** The bin of a range's end: rounded, unlike in the panel, which truncates. */
int Rounded_Bin(const Plot_Scale& scale, float level) {
    return scale.Level_To_Bin(static_cast<float>(std::trunc(static_cast<double>(level) + 0.5)));
}

/** What lies below everything else. */
struct Plot_Ground {
    std::vector<std::uint32_t> even;  ///< one pixel per column, of the rows 0, 2 ..
    std::vector<std::uint32_t> odd;
    std::vector<std::uint32_t> under;  ///< under the counts
    Span_Blocks bars;

    void Draw(Plot_Pixels& picture) const {
        picture.Rows_Fill(even, odd);
        picture.Spans_Fill(bars, under);
    }
};

/** Ground and TAG bands: later bands hide earlier ones. As in the panel a band is a half-tone of the TAG's colour,
 * every other pixel black, and the colour itself under the counts. */
Plot_Ground Ground_Of(const Tool_Histo& panel, const Plot_Columns& columns, const Histo_Plot_Scene& scene) {
    const Plot_Frame& frame = columns.Frame();
    const std::uint32_t ground = Ground_Pixel(scene.box);
    const auto width = static_cast<std::size_t>(frame.width);
    std::vector<std::uint32_t> even(width, ground);
    if (!scene.tag || panel.range_nb == 0) {
        return {even, even, {}, Span_Blocks({}, frame.width, frame.height)};
    }
    const Histo_Record& record = *panel.data->record;
    const Plot_Scale scale({}, {record.nb_bins, record.origin, record.bin_width}, 0.0F);
    std::vector<std::uint32_t> odd(width, ground);
    std::vector<std::uint32_t> under(width, ground);
    std::vector<bool> banded(width, false);
    Histo_Tag_Colors colors;
    colors.Look_Up();
    for (std::size_t range = 0; range < panel.range_nb; ++range) {
        const std::uint32_t pixel = Pixel_Of_Color(colors.Of(panel.range_tag[range]));
        const int first = Rounded_Bin(scale, panel.range_min[range]);
        const int last = Rounded_Bin(scale, panel.range_max[range]);
        if (first > last) {
            continue;
        }
        const int left = columns.Bin_Column(first);
        const int begin = std::max(left, 0);
        // A band that is narrower than a column still shows.
        const int end = std::min(std::max(columns.Bin_Column(last + 1), left + 1), frame.width);
        for (auto column = static_cast<std::size_t>(begin); static_cast<int>(column) < end; ++column) {
            even[column] = column % 2 == 0 ? pixel : HALF_TONE_REST;
            odd[column] = column % 2 == 0 ? HALF_TONE_REST : pixel;
            under[column] = pixel;
            banded[column] = true;
        }
    }
    Column_Spans bars = columns.Stepped(Histo_Band_Counts(record, panel.color_component), record.nb_bins);
    const int base = frame.Row(0.0);
    for (std::size_t column = 0; column < width; ++column) {
        bars[column] =
            banded[column] && !bars[column].Is_Empty() ? Column_Span{base, bars[column].high} : Column_Span{};
    }
    return {std::move(even), std::move(odd), std::move(under), Span_Blocks(bars, frame.width, frame.height)};
}

// ---- picture

/** The plot area in memory. It is kept from one redraw to the next: a zoom by wheel draws many of one size, and new
 * memory costs as much as the curves. */
Dib_Picture kept_picture;

Dib_Picture& Picture_Of(HDC like, int width, int height) {
    if (kept_picture.Width() != width || kept_picture.Height() != height) {
        kept_picture = Dib_Picture();  // not both at once
        kept_picture = Dib_Picture(like, width, height);
    }
    return kept_picture;
}

// Few enough that they stay in the nearer memories, many enough that spans are seldom looked up.
constexpr int STRIP_ROWS = 128;
constexpr int THREAD_WORTH = 1 << 20U;  // pixels; fewer are drawn sooner than another thread begins

/** Everything that is drawn one over another, strip by strip, by two threads where it is worth it. */
void Strips_Draw(const Plot_Pixels& picture, const Plot_Ground& ground, const std::vector<Plot_Layer>& layers) {
    std::atomic<int> next = 0;
    const auto draw = [&] {
        for (int row = next.fetch_add(STRIP_ROWS); row < picture.Height(); row = next.fetch_add(STRIP_ROWS)) {
            Plot_Pixels strip = picture.Strip(row, row + STRIP_ROWS);
            ground.Draw(strip);
            for (const Plot_Layer& layer : layers) {
                strip.Layer_Draw(layer);
            }
        }
    };
    std::thread other;
    if (static_cast<std::int64_t>(picture.Width()) * picture.Height() >= THREAD_WORTH) {
        try {
            other = std::thread(draw);
        } catch (const std::exception&) {  // none is to be had: this one draws it all
        }
    }
    draw();
    if (other.joinable()) {
        other.join();
    }
}

/** Everything inside the plot area, in memory, and then shown at once. */
void Draw_Area(const Plot_DC& dc, const Tool_Histo& panel, const Histo_Plot_Scene& scene, const Plot_Frame& frame) {
    const Dib_Picture& dib = Picture_Of(dc.Get(), frame.width, frame.height);
    if (!dib) {
        return;
    }
    Dib_Picture::Flush();  // the last redraw's labels and its way to the screen
    Plot_Pixels picture(dib.Pixels(), frame.width, frame.height);
    const Plot_Columns columns(frame, Grid_Of(*panel.data->record));
    const int thickness = Thickness(scene);
    const Plot_Ground ground = Ground_Of(panel, columns, scene);
    const Histo_Plot_Peaks peaks(panel, columns, scene.peak);
    std::vector<Plot_Layer> layers;
    Histo_Plot_Window_Fill(layers, peaks, frame, frame.Row(0.0));
    const bool is_seen = Curves_Add(layers, panel, columns, thickness);
    Histo_Plot_Window_Curve(layers, peaks, frame, thickness);
    Strips_Draw(picture, ground, layers);
    if (!is_seen && peaks.Labels().empty()) {
        Draw_Note(dib.Get_DC(), scene, {0, 0, frame.width, frame.height}, NOTE_OUTSIDE);
    }
    if (!peaks.Labels().empty()) {
        Gdi_Font made;
        const Selected_Object font(dib.Get_DC(), Label_Font(scene, made));
        Histo_Plot_Peak_Label(dib.Get_DC(), picture, peaks, Ground_Pixel(scene.box), Text_Pixel(scene.box));
    }
    ::BitBlt(dc.Get(), dc.Left(), dc.Top(), frame.width, frame.height, dib.Get_DC(), 0, 0, SRCCOPY);
}

// ---- marks

/** What is on the screen now: drawing it once more takes it away. */
struct Marks {
    Pixel_Rectangle cursor;
    Pixel_Rectangle zoom;
};
Marks marks;

void Invert(HDC dc, const Pixel_Rectangle& mark) {
    if (!mark.Is_Empty()) {
        ::PatBlt(dc, mark.x, mark.y, mark.width, mark.height, PATINVERT);
    }
}

/** Draws marks or takes them away. */
class Mark_Pen {
  public:
    explicit Mark_Pen(const Plot_DC& dc)
        : target(dc.Get()), brush(::CreateSolidBrush(MARK_COLOR)), selected(target, brush.Get()) {
        dc.Device_Units();
    }
    void Line(const Pixel_Rectangle& line) const { Invert(target, line); }
    void Frame(const Pixel_Rectangle& frame) const {
        if (frame.width <= 2 || frame.height <= 2) {
            Invert(target, frame);
            return;
        }
        const int inner = frame.height - 2;
        Invert(target, {frame.x, frame.y, frame.width, 1});
        Invert(target, {frame.x, frame.y + 1, 1, inner});
        Invert(target, {frame.x + frame.width - 1, frame.y + 1, 1, inner});
        Invert(target, {frame.x, frame.y + frame.height - 1, frame.width, 1});
    }

  private:
    HDC target;
    Gdi_Brush brush;
    Selected_Object selected;
};

/** The dragged rectangle as far as it lies in the plot area. */
Pixel_Rectangle Zoom_Of(const Histo_Plot_Scene& scene, const Plot_DC& dc, const Blow_Drag& drag) {
    const Pixel_Rectangle& area = scene.area;
    const int left = std::max(std::min(drag.x_start, drag.x_end), area.x);
    const int right = std::min(std::max(drag.x_start, drag.x_end), area.x + area.width - 1);
    const int bottom = std::max(std::min(drag.y_start, drag.y_end), area.y);
    const int top = std::min(std::max(drag.y_start, drag.y_end), area.y + area.height - 1);
    if (left > right || bottom > top) {
        return {};
    }
    return {dc.Left() + left - area.x, dc.Top() + area.y + area.height - 1 - top, right - left + 1, top - bottom + 1};
}

void Zoom_Erase(const Mark_Pen& pen) {
    pen.Frame(marks.zoom);
    marks.zoom = {};
}

bool Can_Mark(const Histo_Plot_Scene& scene) {
    return scene.box.window != nullptr && !scene.area.Is_Empty();
}

}  // namespace

int Histo_Plot_Draw(const Tool_Histo& panel, const Histo_Plot_Scene& scene) {
    if (panel.data == nullptr || !panel.data->Has_Counts()) {
        return 0;
    }
    const Plot_DC dc(scene, "tool_histo_blow: Histo_Plot_Draw");
    if (dc.Get() == nullptr) {
        return 1;
    }
    // Whatever the ranges are: an axis without an extent is left out by the graph library, not by its caller.
    const Plot_Area area{scene.area.x, scene.area.y, scene.area.width, scene.area.height};
    Plot_Window_Axes_X(dc.Get(), scene.box, area, panel.x_label, scene.x.start, scene.x.end);
    Plot_Window_Axes_Y(dc.Get(), scene.box, area, panel.y_label, scene.y.start, scene.y.end);
    if (scene.area.Is_Empty()) {
        return 1;
    }
    dc.Device_Units();
    const Plot_Frame frame = scene.Frame();
    if (frame.Is_Empty()) {
        Draw_Extentless(dc.Get(), scene, {dc.Left(), dc.Top(), dc.Left() + frame.width, dc.Top() + frame.height},
                        *panel.data->record);
        return 1;
    }
    try {
        Draw_Area(dc, panel, scene, frame);
    } catch (const std::bad_alloc&) {
        Histo_Report_New(__LINE__, TOOL_HISTO_SOURCE);
    }
    return 1;
}

void Histo_Plot_Picture_Free() {
    kept_picture = Dib_Picture();
}

int Histo_Plot_Cursor(Tool_Histo& panel, const Histo_Plot_Scene& scene) {
    if (panel.data == nullptr || !panel.data->Has_Counts() || panel.data->record->nb_bins == 0 || !Can_Mark(scene)) {
        return 0;
    }
    const Plot_DC dc(scene, "tool_histo_blow: Histo_Plot_Cursor");
    if (dc.Get() == nullptr) {
        return 0;
    }
    const Mark_Pen pen(dc);
    pen.Line(marks.cursor);
    marks.cursor = {};
    const Histo_Cursor_Bin marked = Histo_Cursor_Bin_Find(panel);
    const Plot_Frame frame = scene.Frame();
    if (marked.result != Histo_Cursor_Result::On_Bin || frame.Is_Empty()) {
        return 0;
    }
    constexpr double half_bin = 0.5;
    const Plot_Grid grid = Grid_Of(*panel.data->record);
    const int column = frame.Column(grid.Edge(marked.bin) + half_bin * grid.bin_width);
    if (column < 0 || column >= frame.width) {
        return 0;
    }
    const int thickness = std::min(Thickness(scene), frame.width - column);
    marks.cursor = {dc.Left() + column, dc.Top(), thickness, frame.height};
    pen.Line(marks.cursor);
    return 1;
}

void Histo_Plot_Marks_Forget() {
    marks = {};
}

void Local_Drag_Draw(const Histo_Plot_Scene& scene, const Blow_Drag& drag) {
    if (!Can_Mark(scene)) {
        return;
    }
    const Plot_DC dc(scene, "tool_histo_blow: Local_Drag_Draw");
    if (dc.Get() == nullptr) {
        return;
    }
    const Pixel_Rectangle zoom = Zoom_Of(scene, dc, drag);
    const Mark_Pen pen(dc);
    Zoom_Erase(pen);
    marks.zoom = zoom;
    pen.Frame(zoom);
}

void Local_Drag_Clear(const Histo_Plot_Scene& scene) {
    if (marks.zoom.Is_Empty() || !Can_Mark(scene)) {
        return;
    }
    const Plot_DC dc(scene, "tool_histo_blow: Local_Drag_Clear");
    if (dc.Get() != nullptr) {
        Zoom_Erase(Mark_Pen(dc));
    }
}

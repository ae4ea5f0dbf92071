#include <algorithm>
#include <new>

#include "host/kit_graph.h"
#include "kits/graph/axis_layout.h"
#include "kits/graph/axis_painter.h"
#include "kits/graph/ticks.h"

namespace {

constexpr int FONT_HEIGHT_DEFAULT = 12;  // pixels
constexpr int FONT_HEIGHT_MIN = 7;
constexpr int TICK_ROOM = 9;  // pixels of the bottom margin that ticks and gaps take

/** Pixels for a line of text so that numbers and title fit below the area. */
int Font_Height(const Boxs& box, const Plot_Rect& box_rect, const Plot_Rect& area) {
    const int wanted = box.font_scale > 0 ? box.font_scale : FONT_HEIGHT_DEFAULT;
    const int line_max = (box_rect.bottom - area.bottom - TICK_ROOM) / 2;
    return std::max(std::min(wanted, line_max * 5 / 6), FONT_HEIGHT_MIN);
}

template <typename Make>
int Axis_Draw(HDC dc, const Boxs& box, const Plot_Area& area, const char* title, float from, float to, Make make) {
    if (dc == nullptr || area.width <= 0 || area.height <= 0 || box.width <= 0 || box.height <= 0 ||
        !Is_Range_Valid(from, to)) {
        return 0;
    }
    try {
        Axis_Request request;
        request.box = Axis_Painter::Device_Rect(dc, box.x, box.y, box.width, box.height);
        request.frame = box.border;
        request.area = Axis_Painter::Device_Rect(dc, area.left, area.bottom, area.width, area.height);
        Axis_Painter painter(dc, box, Font_Height(box, request.box, request.area));
        request.title = title != nullptr ? title : "";
        request.from = from;
        request.to = to;
        request.line_height = painter.Line_Height();
        request.width = [&painter](const std::string& text) { return painter.Width(text); };
        request.width_upwards = [&painter](const std::string& text) { return painter.Width_Upwards(text); };
        painter.Paint(make(request));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}

}  // namespace

int Plot_Window_Axes_X(HDC dc, const Boxs& box, const Plot_Area& area, const char* title, float from, float to) {
    return Axis_Draw(dc, box, area, title, from, to, Axis_Layout_X);
}

int Plot_Window_Axes_Y(HDC dc, const Boxs& box, const Plot_Area& area, const char* title, float from, float to) {
    return Axis_Draw(dc, box, area, title, from, to, Axis_Layout_Y);
}

#include "kits/graph/axis_layout.h"

#include <algorithm>
#include <cmath>

#include "kits/graph/ticks.h"

namespace {

constexpr int TICK_LENGTH = 4;  // pixels, outwards from the axis line
constexpr int LABEL_GAP = 2;    // between a tick and its number
constexpr int APART_X = 8;      // between numbers side by side
constexpr int APART_Y = 4;      // between numbers one above the other
constexpr int TICK_APART = 5;   // between ticks at least

/** The axis line stands just outside the area. */
constexpr int OUTSIDE = 1;

double Pixel_Of(double value, double from, double to, int pixels) {
    return (value - from) / (to - from) * pixels;
}

int Widest(const Axis_Request& request, const Tick_Scale& scale, const Tick_Format& format) {
    // The longest numbers stand at the ends; the one after the first has its decimals when the first is 0.
    int widest = 0;
    for (const std::int64_t index : {scale.first, std::min(scale.first + 1, scale.last), scale.last}) {
        widest = std::max(widest, request.width(Tick_Text(scale, format, index)));
    }
    return widest;
}

/** A scale and format of numbers. */
struct Numbers {
    Tick_Scale scale;
    Tick_Format format;
};

Numbers Numbers_Of(const Tick_Scale& scale, bool compact) {
    return {scale, Tick_Format_Make(scale, compact)};
}

void Line_Add(Axis_Layout& layout, const Plot_Rect& rect, const Plot_Rect& box) {
    const Plot_Rect cut = {std::max(rect.left, box.left), std::max(rect.top, box.top), std::min(rect.right, box.right),
                           std::min(rect.bottom, box.bottom)};
    if (cut.Width() > 0 && cut.Height() > 0) {
        layout.lines.push_back(cut);
    }
}

bool Has_Overlap(const Plot_Rect& a, const Plot_Rect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool Is_Inside(const Plot_Rect& inner, const Plot_Rect& outer) {
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

/** Adds a text unless it would be cut or stand on another one. @param apart columns to the texts beside it
 *  @return whether it was added */
bool Label_Add(Axis_Layout& layout, Plot_Label label, const Plot_Rect& room, int apart = 0) {
    const Plot_Rect around = {label.rect.left - apart, label.rect.top, label.rect.right + apart, label.rect.bottom};
    const bool free = std::none_of(layout.labels.begin(), layout.labels.end(),
                                   [&](const Plot_Label& other) { return Has_Overlap(around, other.rect); });
    const bool added = label.rect.Width() > 0 && free && Is_Inside(label.rect, room);
    if (added) {
        layout.labels.push_back(std::move(label));
    }
    return added;
}

/** Adds the numbers and their ticks by `add`(layout, numbers, index). An axis with one number tells no scale: where
 * fewer than two found room, the outermost two of the next finer scale that has room for both stand alone. */
template <typename Add>
Axis_Layout Numbers_Add(const Axis_Layout& bare, const Axis_Request& request, const Numbers& numbers, double per_pixel,
                        Add add) {
    Axis_Layout layout = bare;
    int added = 0;
    for (std::int64_t i = numbers.scale.first; i <= numbers.scale.last; i++) {
        added += add(layout, numbers, i) ? 1 : 0;
    }
    Tick_Scale scale = numbers.scale;
    while (added < 2 && scale.step >= per_pixel) {
        scale = Tick_Scale_Finer(request.from, request.to, scale);
        for (const bool compact : {false, true}) {
            const Numbers finer = Numbers_Of(scale, compact);
            Axis_Layout ends = bare;
            if (scale.Count() >= 2 && add(ends, finer, scale.first) && add(ends, finer, scale.last)) {
                return ends;
            }
        }
    }
    return layout;
}

}  // namespace

Axis_Layout Axis_Layout_X(const Axis_Request& request) {
    Axis_Layout layout;
    layout.box = request.box;
    const Plot_Rect& area = request.area;
    const Plot_Rect& box = request.box;
    const double per_pixel = (static_cast<double>(request.to) - request.from) / area.Width();
    Numbers numbers = Numbers_Of(Tick_Scale_Make(request.from, request.to, per_pixel * TICK_APART), false);
    while (numbers.scale.Count() > 1 &&
           Widest(request, numbers.scale, numbers.format) + APART_X > numbers.scale.step / per_pixel) {
        numbers = Numbers_Of(Tick_Scale_Coarser(request.from, request.to, numbers.scale), false);
    }

    Line_Add(layout, {area.left - OUTSIDE, area.bottom, area.right, area.bottom + OUTSIDE}, box);
    const int ticks_end = area.bottom + OUTSIDE + TICK_LENGTH;
    const int label_top = ticks_end + LABEL_GAP;
    if (!request.title.empty()) {
        const int width = request.width(request.title);
        const int middle = (area.left + area.right) / 2;
        const int left = std::clamp(middle - width / 2, box.left, std::max(box.left, box.right - width));
        const int top = box.bottom - request.line_height;
        if (top >= label_top + request.line_height) {
            const int free_rows = top - (label_top + request.line_height);  // half of them stay below the title
            Label_Add(layout, {request.title, {left, top - free_rows / 2, left + width, box.bottom - free_rows / 2}},
                      box);
        }
    }
    const auto number_add = [&](Axis_Layout& onto, const Numbers& of, std::int64_t i) {
        const double at = Pixel_Of(of.scale.Value(i), request.from, request.to, area.Width());
        const int x = area.left + std::clamp(static_cast<int>(std::floor(at + 0.5)), 0, area.Width() - 1);
        onto.tick_at.push_back(x);
        Line_Add(onto, {x, area.bottom + OUTSIDE, x + 1, ticks_end}, box);
        const std::string text = Tick_Text(of.scale, of.format, i);
        const int width = request.width(text);
        const int left = std::clamp(x - width / 2, box.left, std::max(box.left, box.right - width));
        return Label_Add(onto, {text, {left, label_top, left + width, label_top + request.line_height}}, box, APART_X);
    };
    return Numbers_Add(layout, request, numbers, per_pixel, number_add);
}

Axis_Layout Axis_Layout_Y(const Axis_Request& request) {
    Axis_Layout layout;
    layout.box = request.box;
    const Plot_Rect& area = request.area;
    const Plot_Rect& box = request.box;
    const int ticks_end = area.left - OUTSIDE - TICK_LENGTH;
    const int numbers_right = ticks_end - LABEL_GAP;
    Plot_Rect room = {box.left, box.top, numbers_right, std::min(box.bottom, area.bottom + TICK_LENGTH)};
    if (!request.title.empty()) {
        room.left += request.line_height + LABEL_GAP;
    }
    const double per_pixel = (static_cast<double>(request.to) - request.from) / area.Height();
    const double least = per_pixel * (request.line_height + APART_Y);
    Numbers numbers = Numbers_Of(Tick_Scale_Make(request.from, request.to, least), false);
    for (bool compact = false;
         numbers.scale.Count() > 1 && Widest(request, numbers.scale, numbers.format) > room.Width();) {
        // First shorter numbers, then fewer of them: a coarser step needs fewer decimals.
        const Tick_Scale next = compact ? Tick_Scale_Coarser(request.from, request.to, numbers.scale) : numbers.scale;
        compact = true;
        numbers = Numbers_Of(next, compact);
    }

    if (!request.title.empty()) {
        const auto& width_upwards = request.width_upwards ? request.width_upwards : request.width;
        const int length = width_upwards(request.title);
        const int middle = (area.top + area.bottom) / 2;
        const int top = std::clamp(middle - length / 2, box.top, std::max(box.top, box.bottom - length));
        // What the box's frame and the numbers leave free is halved by the title.
        const int free_columns = std::max(room.Width() - Widest(request, numbers.scale, numbers.format), 0);
        const int frame = std::min(request.frame, free_columns);
        const int left = box.left + frame + (free_columns - frame) / 2;
        Label_Add(layout, {request.title, {left, top, left + request.line_height, top + length}, true}, box);
    }
    Line_Add(layout, {area.left - OUTSIDE, area.top, area.left, area.bottom + OUTSIDE}, box);
    const auto number_add = [&](Axis_Layout& onto, const Numbers& of, std::int64_t i) {
        const double at = Pixel_Of(of.scale.Value(i), request.from, request.to, area.Height());
        const int y = area.bottom - 1 - std::clamp(static_cast<int>(std::floor(at + 0.5)), 0, area.Height() - 1);
        onto.tick_at.push_back(y);
        Line_Add(onto, {ticks_end, y, area.left - OUTSIDE, y + 1}, box);
        const std::string text = Tick_Text(of.scale, of.format, i);
        const int top =
            std::clamp(y - request.line_height / 2, room.top, std::max(room.top, room.bottom - request.line_height));
        const Plot_Rect rect = {numbers_right - request.width(text), top, numbers_right, top + request.line_height};
        return Label_Add(onto, {text, rect}, room);
    };
    return Numbers_Add(layout, request, numbers, per_pixel, number_add);
}

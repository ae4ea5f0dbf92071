#include "histogram/blow_view.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr float WIDEN_X = 0.05F;
constexpr float WIDEN_Y = 0.10F;
constexpr float PINCH_MIN = 0.09F;
constexpr float PINCH_MAX = 1.1F;
constexpr int WHEEL_DELTA_NOTCH = 120;
constexpr int NOTCHES_BACK_MAX = -9;  // one more would make the factor vanish

Blow_Range Widened(float start, float end, float part) {
    const float margin = (end - start) * part;
    return {start - margin, end + margin};
}

/** An origin within its limits: not below the full start, and not so high that the view would pass the full end. */
float Clamped(float origin, const Blow_Range& full, int pixels, float scale) {
    const float highest = full.end - static_cast<float>(pixels) * scale;
    if (origin <= full.start) {
        return full.start;
    }
    return origin >= highest ? highest : origin;
}

Blow_Range Visible(const Blow_Range& full, bool zoomed, float origin, int pixels, float scale) {
    if (!zoomed) {
        return full;
    }
    const float start = std::max(full.start, origin);
    return {start, std::min(full.end, start + static_cast<float>(pixels) * scale)};
}

bool Is_Usable(float scale) {
    return std::isnormal(scale) && scale > 0.0F;
}

/** True when a view shows something: single precision still tells its two ends apart. */
bool Can_Show(float origin, int pixels, float scale) {
    const float end = origin + static_cast<float>(pixels) * scale;
    return Is_Usable(scale) && std::isfinite(end) && origin < end;
}

/** Takes the origin and the scale that are on show where the full view has cut the range off: a zoom goes on from what
 * the user sees. */
void Shown_Take(const Blow_Range& shown, int pixels, float& origin, float& scale) {
    if (!(shown.start < shown.end)) {
        return;
    }
    origin = shown.start;
    constexpr float slack = 0.5F;  // of a pixel: less is rounding
    if (origin + (static_cast<float>(pixels) - slack) * scale > shown.end) {
        scale = (shown.end - shown.start) / static_cast<float>(pixels);
    }
}

}  // namespace

void Blow_View::Full_View_Set(const Histo_Record& record, const Blow_Area& plot_area) {
    area = plot_area;
    if (area.Is_Empty() || record.nb_bins == 0) {
        return;
    }
    full_x = Widened(record.origin, static_cast<float>(record.nb_bins - 1) * record.bin_width + record.origin, WIDEN_X);
    full_y = Widened(0.0F, static_cast<float>(record.max_count), WIDEN_Y);
    scale_x_max = (full_x.end - full_x.start) / static_cast<float>(area.width);
    scale_y_max = (full_y.end - full_y.start) / static_cast<float>(area.height);
    // A zoom of data without extent has no scale to go on with.
    if (!zoomed || !Is_Usable(scale_x) || !Is_Usable(scale_y)) {
        Reset();
    }
}

void Blow_View::Reset() {
    zoomed = false;
    origin_x = full_x.start;
    origin_y = full_y.start;
    scale_x = scale_x_max;
    scale_y = scale_y_max;
}

bool Blow_View::Zoom_Rectangle(const Blow_Drag& drag) {
    if (area.Is_Empty() || std::abs(drag.x_end - drag.x_start) < BLOW_DRAG_MIN ||
        std::abs(drag.y_end - drag.y_start) < BLOW_DRAG_MIN) {
        return false;
    }
    const auto in_x = [this](int x) { return std::clamp(x, area.left, area.left + area.width); };
    const auto in_y = [this](int y) { return std::clamp(y, area.bottom, area.bottom + area.height); };
    const int left = in_x(std::min(drag.x_start, drag.x_end));
    const int right = in_x(std::max(drag.x_start, drag.x_end));
    const int bottom = in_y(std::min(drag.y_start, drag.y_end));
    const int top = in_y(std::max(drag.y_start, drag.y_end));
    Shown_Take();
    const float new_scale_x = scale_x * static_cast<float>(right - left) / static_cast<float>(area.width);
    const float new_scale_y = scale_y * static_cast<float>(top - bottom) / static_cast<float>(area.height);
    const float new_origin_x = origin_x + static_cast<float>(left - area.left) * scale_x;
    const float new_origin_y = origin_y + static_cast<float>(bottom - area.bottom) * scale_y;
    if (!Can_Show(new_origin_x, area.width, new_scale_x) || !Can_Show(new_origin_y, area.height, new_scale_y)) {
        return false;
    }
    origin_x = new_origin_x;
    origin_y = new_origin_y;
    scale_x = new_scale_x;
    scale_y = new_scale_y;
    zoomed = true;
    return true;
}

void Blow_View::Zoom_Wheel(int notches, int x, int y) {
    if (area.Is_Empty()) {
        return;
    }
    Shown_Take();
    const float factor = static_cast<float>(std::max(notches, NOTCHES_BACK_MAX) + 10) / 10.0F;
    const float new_scale_x = std::min(scale_x * factor, scale_x_max);
    const float new_scale_y = std::min(scale_y * factor, scale_y_max);
    const int pointer_x = std::clamp(x, area.left, area.left + area.width);
    const int pointer_y = std::clamp(y, area.bottom, area.bottom + area.height);
    const float new_origin_x = origin_x - (new_scale_x - scale_x) * static_cast<float>(pointer_x - area.left);
    const float new_origin_y = origin_y - (new_scale_y - scale_y) * static_cast<float>(pointer_y - area.bottom);
    if (Can_Show(new_origin_x, area.width, new_scale_x) && Can_Show(new_origin_y, area.height, new_scale_y)) {
        origin_x = new_origin_x;
        origin_y = new_origin_y;
        scale_x = new_scale_x;
        scale_y = new_scale_y;
    }
    Origin_Clamp();
    zoomed = true;
}

bool Blow_View::Zoom_Pinch(const Gesture_Record& gesture) {
    const auto inside = [](float factor) { return factor >= PINCH_MIN && factor <= PINCH_MAX; };
    if (area.Is_Empty() || !inside(gesture.fx) || !inside(gesture.fy)) {
        return false;
    }
    Shown_Take();
    // The fingers move in device pixels, whose y grows downwards.
    origin_x -= scale_x * gesture.dx;
    origin_y += scale_y * gesture.dy;
    Origin_Clamp();
    const float new_scale_x = std::min(scale_x / gesture.fx, scale_x_max);
    const float new_scale_y = std::min(scale_y / gesture.fy, scale_y_max);
    if (Can_Show(origin_x, area.width, new_scale_x) && Can_Show(origin_y, area.height, new_scale_y)) {
        scale_x = new_scale_x;
        scale_y = new_scale_y;
    }
    zoomed = true;
    return true;
}

void Blow_View::Shown_Take() {
    if (zoomed) {
        ::Shown_Take(Visible_X(), area.width, origin_x, scale_x);
        ::Shown_Take(Visible_Y(), area.height, origin_y, scale_y);
        // The data may have become less since they were zoomed.
        scale_x = std::min(scale_x, scale_x_max);
        scale_y = std::min(scale_y, scale_y_max);
    }
}

void Blow_View::Origin_Clamp() {
    origin_x = Clamped(origin_x, full_x, area.width, scale_x);
    origin_y = Clamped(origin_y, full_y, area.height, scale_y);
}

Blow_Range Blow_View::Visible_X() const {
    return Visible(full_x, zoomed, origin_x, area.width, scale_x);
}

Blow_Range Blow_View::Visible_Y() const {
    return Visible(full_y, zoomed, origin_y, area.height, scale_y);
}

int Wheel_Accumulator::Add(int delta) {
    remainder += delta;
    const int notches = remainder / WHEEL_DELTA_NOTCH;
    remainder -= notches * WHEEL_DELTA_NOTCH;
    return notches;
}

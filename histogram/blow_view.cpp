#include "histogram/blow_view.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr float WIDEN_X = 0.05F;
constexpr float WIDEN_Y = 0.10F;
constexpr float PINCH_MIN = 0.09F;
constexpr float PINCH_MAX = 1.1F;
constexpr int NOTCHES_BACK_MAX = -9;  // one more would make the factor vanish

Blow_Range Widened(float start, float end, float part) {
    const float margin = (end - start) * part;
    return {start - margin, end + margin};
}

bool Is_Usable(float scale) {
    return std::isnormal(scale) && scale > 0.0F;
}

}  // namespace

void Blow_Direction::Full_Set(const Blow_Range& range, int area_first, int area_pixels) {
    full = range;
    first = area_first;
    pixels = area_pixels;
    scale_max = (full.end - full.start) / static_cast<float>(pixels);
}

Blow_Range Blow_Direction::Visible(bool zoomed) const {
    if (!zoomed) {
        return full;
    }
    const float start = std::max(full.start, at.origin);
    return {start, std::min(full.end, start + static_cast<float>(pixels) * at.scale)};
}

bool Blow_Direction::Can_Show(const Blow_Step& step) const {
    const float end = step.origin + static_cast<float>(pixels) * step.scale;
    return Is_Usable(step.scale) && std::isfinite(end) && step.origin < end;
}

Blow_Step Blow_Direction::Rectangle(int from, int to) const {
    const auto inside = [this](int pixel) { return std::clamp(pixel, first, first + pixels); };
    const int low = inside(std::min(from, to));
    const int high = inside(std::max(from, to));
    return {at.origin + static_cast<float>(low - first) * at.scale,
            at.scale * static_cast<float>(high - low) / static_cast<float>(pixels)};
}

Blow_Step Blow_Direction::Wheel(float factor, int pointer) const {
    const float scale = std::min(at.scale * factor, scale_max);
    const int inside = std::clamp(pointer, first, first + pixels);
    return {at.origin - (scale - at.scale) * static_cast<float>(inside - first), scale};
}

void Blow_Direction::Origin_Clamp() {
    const float highest = full.end - static_cast<float>(pixels) * at.scale;
    if (at.origin <= full.start) {
        at.origin = full.start;
    } else if (at.origin >= highest) {
        at.origin = highest;
    }
}

void Blow_View::Full_View_Set(const Histo_Record& record, const Pixel_Rectangle& plot_area) {
    if (plot_area.Is_Empty()) {
        x_direction.pixels = y_direction.pixels = 0;
        return;
    }
    const float last_bin = static_cast<float>(record.nb_bins - 1) * record.bin_width + record.origin;
    x_direction.Full_Set(Widened(record.origin, last_bin, WIDEN_X), plot_area.x, plot_area.width);
    y_direction.Full_Set(Widened(0.0F, static_cast<float>(record.max_count), WIDEN_Y), plot_area.y, plot_area.height);
    // A zoom of data without extent has no scale to go on with.
    if (!zoomed || !Is_Usable(x_direction.at.scale) || !Is_Usable(y_direction.at.scale)) {
        Reset();
    }
}

void Blow_View::Reset() {
    zoomed = false;
    x_direction.Reset();
    y_direction.Reset();
}

bool Blow_View::Take(const Blow_Step& in_x, const Blow_Step& in_y) {
    if (!x_direction.Can_Show(in_x) || !y_direction.Can_Show(in_y)) {
        return false;
    }
    x_direction.at = in_x;
    y_direction.at = in_y;
    return true;
}

bool Blow_View::Zoom_Rectangle(const Blow_Drag& drag) {
    if (Is_Empty() || std::abs(drag.x_end - drag.x_start) < BLOW_DRAG_MIN ||
        std::abs(drag.y_end - drag.y_start) < BLOW_DRAG_MIN ||
        !Take(x_direction.Rectangle(drag.x_start, drag.x_end), y_direction.Rectangle(drag.y_start, drag.y_end))) {
        return false;
    }
    zoomed = true;
    return true;
}

void Blow_View::Zoom_Wheel(int notches, int x, int y) {
    if (Is_Empty()) {
        return;
    }
    const float factor = static_cast<float>(std::max(notches, NOTCHES_BACK_MAX) + 10) / 10.0F;
    Take(x_direction.Wheel(factor, x), y_direction.Wheel(factor, y));
    x_direction.Origin_Clamp();
    y_direction.Origin_Clamp();
    zoomed = true;
}

bool Blow_View::Zoom_Pinch(const Gesture_Record& gesture) {
    const auto inside = [](float factor) { return factor >= PINCH_MIN && factor <= PINCH_MAX; };
    if (Is_Empty() || !inside(gesture.fx) || !inside(gesture.fy)) {
        return false;
    }
    // The fingers move in device pixels, whose y grows downwards.
    x_direction.at.origin -= x_direction.at.scale * gesture.dx;
    y_direction.at.origin += y_direction.at.scale * gesture.dy;
    x_direction.Origin_Clamp();
    y_direction.Origin_Clamp();
    Take({x_direction.at.origin, std::min(x_direction.at.scale / gesture.fx, x_direction.scale_max)},
         {y_direction.at.origin, std::min(y_direction.at.scale / gesture.fy, y_direction.scale_max)});
    zoomed = true;
    return true;
}

#include "workbench/model/view_geometry.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

/** Screen position of the slice's first side. @param center share of the slice in the middle of the view */
double Place(double view, double slice, double center) {
    if (slice <= view) {
        return std::floor((view - slice) / 2.0);
    }
    return std::floor(std::clamp(view / 2.0 - slice * center, view - slice, 0.0));
}

/** The slice coordinate in the middle of a screen pixel. */
double Middle(double first_side, double scale, int screen) {
    return (screen + 0.5 - first_side) / scale;
}

/** The first screen pixel whose middle lies at or behind a slice coordinate, by the very arithmetic of Middle: rounding
 *  must not part what is outlined from what is shown. */
int First_Screen_Pixel(double first_side, double scale, double slice) {
    int screen = static_cast<int>(std::ceil(first_side + slice * scale - 0.5));
    while (Middle(first_side, scale, screen) < slice) {
        ++screen;
    }
    while (Middle(first_side, scale, screen - 1) >= slice) {
        --screen;
    }
    return screen;
}

double Aspect(const View_State& state) {
    return state.pixel_aspect > 0.0 && std::isfinite(state.pixel_aspect) ? state.pixel_aspect : 1.0;
}

}  // namespace

Slice_Point View_Layout::To_Slice(int screen_x, int screen_y) const {
    return {Middle(left, scale_x, screen_x), Middle(top, scale_y, screen_y)};
}

int View_Layout::To_Screen_X(double slice_x) const {
    return First_Screen_Pixel(left, scale_x, slice_x);
}

int View_Layout::To_Screen_Y(double slice_y) const {
    return First_Screen_Pixel(top, scale_y, slice_y);
}

Pixel_Rect View_Layout::Slice_On_Screen() const {
    return {To_Screen_X(0), To_Screen_Y(0), To_Screen_X(slice_width), To_Screen_Y(slice_height)};
}

View_Layout View_Layout_Make(const View_State& state) {
    View_Layout layout;
    layout.slice_width = state.slice_width;
    layout.slice_height = state.slice_height;
    const double aspect = Aspect(state);
    double zoom = state.zoom;
    if (zoom == ZOOM_FIT) {
        zoom = std::min(state.view_width / static_cast<double>(std::max(state.slice_width, 1)),
                        state.view_height / (std::max(state.slice_height, 1) * aspect));
        zoom = std::clamp(zoom, ZOOM_MIN / 4.0, ZOOM_MAX);
        zoom = state.fit_most > 0.0 ? std::min(zoom, state.fit_most) : zoom;
    }
    layout.scale_x = zoom;
    layout.scale_y = zoom * aspect;
    layout.left = Place(state.view_width, state.slice_width * layout.scale_x, state.center_x);
    layout.top = Place(state.view_height, state.slice_height * layout.scale_y, state.center_y);
    return layout;
}

double Zoom_Step(const View_Layout& layout, int steps) {
    constexpr double root_of_two = 1.4142135623730951;
    const double wanted = layout.scale_x * std::pow(root_of_two, steps);
    const double nearest_whole = std::round(wanted);
    // Whole factors draw every pixel alike: take one that is close.
    const bool is_close = nearest_whole >= 1.0 && std::abs(wanted / nearest_whole - 1.0) < 0.1;
    return std::clamp(is_close ? nearest_whole : wanted, ZOOM_MIN, ZOOM_MAX);
}

void View_Pan(View_State& state, int dx, int dy) {
    const View_Layout layout = View_Layout_Make(state);
    const double width = state.slice_width * layout.scale_x;
    const double height = state.slice_height * layout.scale_y;
    const auto moved = [](double center, int delta, double view, double slice) {
        if (slice <= view) {
            return 0.5;
        }
        const double margin = view / 2.0 / slice;
        return std::clamp(center - delta / slice, margin, 1.0 - margin);
    };
    state.center_x = moved(state.center_x, dx, state.view_width, width);
    state.center_y = moved(state.center_y, dy, state.view_height, height);
}

Scale_Bar Scale_Bar_Of(double pixel_mm, int most) {
    const double room = pixel_mm * most;
    if (most < 1 || !(pixel_mm > 0.0) || !std::isfinite(room)) {
        return {};
    }
    const double decade = std::pow(10.0, std::floor(std::log10(room)));
    // Rounding in the logarithm may be one decade off either way.
    for (const double step : {10.0, 5.0, 2.0, 1.0, 0.5}) {
        if (const double mm = step * decade; mm <= room * (1.0 + 1e-12)) {
            return {std::min(static_cast<int>(std::lround(mm / pixel_mm)), most), mm};
        }
    }
    return {};
}

}  // namespace workbench

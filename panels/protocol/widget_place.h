/** From rectangles of a layout to widgets and back. */
#pragma once

#include <algorithm>
#include <limits>

#include "base/pixel_rectangle.h"
#include "host/kit_widgets.h"

/** Gives a widget its place and size. Widgets have 16 bits: a number beyond them becomes the nearest. */
inline void Widget_Place(Tools& widget, const Pixel_Rectangle& place) {
    const auto in_range = [](int value) {
        return static_cast<short>(
            std::clamp<int>(value, std::numeric_limits<short>::min(), std::numeric_limits<short>::max()));
    };
    widget.x = in_range(place.x);
    widget.y = in_range(place.y);
    widget.width = in_range(place.width);
    widget.height = in_range(place.height);
}

/** The rectangle that a widget covers. */
inline Pixel_Rectangle Widget_Rectangle(const Tools& widget) {
    return {widget.x, widget.y, widget.width, widget.height};
}

/** Layout of the histogram panel: pure numbers. */
#pragma once

#include "base/pixel_rectangle.h"
#include "histogram/plot_scale.h"

/** Where the panel's three columns stand. */
struct Histo_Layout {
    Pixel_Rectangle plot;      ///< the plot box, border included
    Pixel_Rectangle valuator;  ///< magnification
    Pixel_Rectangle button;    ///< "Blow"
};

/** Gap between the columns, pixels. */
inline constexpr int HISTO_COLUMN_GAP = 3;

/** @param host the host's box; @param cursor_dim width of valuator and button */
inline Histo_Layout Histo_Layout_Make(const Pixel_Rectangle& host, int cursor_dim) {
    Histo_Layout layout;
    layout.plot = {host.x, host.y, host.width - 2 * (cursor_dim + HISTO_COLUMN_GAP), host.height};
    layout.valuator = {layout.plot.x + layout.plot.width + HISTO_COLUMN_GAP, host.y, cursor_dim, host.height};
    layout.button = {layout.valuator.x + cursor_dim + HISTO_COLUMN_GAP, host.y, cursor_dim, host.height};
    return layout;
}

/** The rectangle inside a plot box in which bins are drawn: one pixel more than the border is left free all round. */
inline Pixel_Rectangle Histo_Plot_Inner(const Pixel_Rectangle& box, int border) {
    return {box.x + border + 1, box.y + border + 1, box.width - 2 * border - 2, box.height - 2 * border - 2};
}

/** The rectangle that panels' layouts compute with. Pictures in memory have another: Rect of kits/widgets/surface.h. */
#pragma once

/** Covers x .. x + width - 1 and y .. y + height - 1, pixels of the window's axis, whichever way its y grows. */
struct Pixel_Rectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool Is_Empty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const Pixel_Rectangle&, const Pixel_Rectangle&) = default;
};

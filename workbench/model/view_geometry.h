/** Where the pixels of a slice stand on the screen. */
#pragma once

#include "workbench/model/label_map.h"

namespace workbench {

/** Zoom factors that can be asked for; 0 fits the slice into the view. */
inline constexpr double ZOOM_FIT = 0.0;
inline constexpr double ZOOM_MIN = 0.25;
inline constexpr double ZOOM_MAX = 16.0;

/** A point in slice pixels; whole numbers are the left and top sides of pixels. */
struct Slice_Point {
    double x = 0.0;
    double y = 0.0;
};

struct View_Layout {
    double scale_x = 1.0;  ///< screen pixels per slice pixel
    double scale_y = 1.0;
    double left = 0.0;  ///< screen position of the slice's left and top side
    double top = 0.0;
    int slice_width = 0;
    int slice_height = 0;

    /** The point of the slice in the middle of a screen pixel: every screen pixel shows one slice pixel. */
    Slice_Point To_Slice(int screen_x, int screen_y) const;
    /** The first screen pixel that shows what lies right of (below) a side of a slice pixel. */
    int To_Screen_X(double slice_x) const;
    int To_Screen_Y(double slice_y) const;
    /** The slice's rectangle on the screen. */
    Pixel_Rect Slice_On_Screen() const;
};

/** What decides the layout. */
struct View_State {
    int view_width = 1;  ///< screen pixels
    int view_height = 1;
    int slice_width = 1;
    int slice_height = 1;
    double pixel_aspect = 1.0;  ///< height of a pixel by its width, in millimetres
    double zoom = ZOOM_FIT;     ///< screen pixels per slice pixel in x, or ZOOM_FIT
    double fit_most =
        0.0;  ///< ZOOM_FIT goes no further: screen pixels per slice pixel in x; 0: as far as there is room
    double center_x = 0.5;  ///< share of the slice that stands in the middle of the view
    double center_y = 0.5;
};
/** A slice smaller than the view is centred; a larger one never leaves a gap at a side of the view. */
View_Layout View_Layout_Make(const View_State& state);
/** The zoom after a step in or out. @param layout what is shown now; @param steps positive: larger */
double Zoom_Step(const View_Layout& layout, int steps);
/** A length to compare with: 1, 2 or 5 times a power of ten. */
struct Scale_Bar {
    int length = 0;  ///< screen pixels; 0: there is none
    double mm = 0.0;
};
/** The longest that fits. @param pixel_mm millimetres of a screen pixel; 0 or less: not known */
Scale_Bar Scale_Bar_Of(double pixel_mm, int most);
/** Moves the centre so that the slice follows the pointer by so many screen pixels. */
void View_Pan(View_State& state, int dx, int dy);

}  // namespace workbench

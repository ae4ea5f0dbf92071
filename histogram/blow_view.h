/** Zoom and pan of the enlarged histogram window: pure numbers, single precision.
 *
 *  Pixels are those of the plot area (inside the margins), y counted upward from its bottom edge's window coordinate.
 *  Data: grey levels (GLI) in x, pixel counts in y.
 */
#pragma once

#include "base/pixel_rectangle.h"
#include "host/kit_dataset.h"

/** One direction of a range of data. */
struct Blow_Range {
    float start = 0.0F;
    float end = 0.0F;
};

/** The two corners of a dragged rectangle, window pixels, y upward. */
struct Blow_Drag {
    int x_start = 0;
    int x_end = 0;
    int y_start = 0;
    int y_end = 0;
};

/** Pixels that a drag must reach in both directions to zoom. */
inline constexpr int BLOW_DRAG_MIN = 10;

/** Where a view of one direction begins, and how dense it is. */
struct Blow_Step {
    float origin = 0.0F;  ///< data value at the plot area's first pixel
    float scale = 1.0F;   ///< data units per pixel
};

/** The view in one direction: grey levels in x, pixel counts in y. */
struct Blow_Direction {
    Blow_Range full;         ///< the unzoomed view
    float scale_max = 1.0F;  ///< data units per pixel of the unzoomed view
    int first = 0;           ///< window pixel at which the plot area begins
    int pixels = 0;          ///< of the plot area
    Blow_Step at;            ///< where the view stands

    /** Takes another unzoomed view; where the view stands stays. */
    void Full_Set(const Blow_Range& range, int area_first, int area_pixels);
    /** To the unzoomed view. */
    void Reset() { at = {full.start, scale_max}; }
    /** From the origin as many pixels as the area has, cut off at the unzoomed view. */
    Blow_Range Visible(bool zoomed) const;
    /** True when a view could stand there and show something: single precision still tells its two ends apart. */
    bool Can_Show(const Blow_Step& step) const;
    /** The view of the part between two window pixels, from where the view stands.
     *  Contract: hosts compute the new view from the two pixels, also where the unzoomed view has cut the range off and
     *  they stand for other data on the picture. */
    Blow_Step Rectangle(int from, int to) const;
    /** The view after the wheel, from where it stands; the data under the pointer stays. */
    Blow_Step Wheel(float factor, int pointer) const;
    /** Moves the origin into its limits: not below the unzoomed start, and not so high that the view would pass its
     * end. */
    void Origin_Clamp();
};

/** The part of the data that the window shows. What new data or another size leave of a zoomed view is decided by
 * cutting off alone: where the view stands stays. */
class Blow_View {
  public:
    /** Takes the unzoomed view of a record: all bins, widened by 5 % in x and 10 % in y at each end. The view itself
     * follows unless it is zoomed. */
    void Full_View_Set(const Histo_Record& record, const Pixel_Rectangle& plot_area);
    /** Back to the full view. */
    void Reset();
    /** Zooms to a dragged rectangle, its corners clamped into the plot area. No origin clamp and no scale limit, unlike
     *  the wheel.
     *  @return false: nothing changed, because the drag is shorter than BLOW_DRAG_MIN in one direction or single
     *  precision could not tell the new view's ends apart */
    bool Zoom_Rectangle(const Blow_Drag& drag);
    /** Zooms by wheel notches, forward widens; the data under the pointer stays where it is as far as the limits allow.
     */
    void Zoom_Wheel(int notches, int x, int y);
    /** Zooms and pans by a two-finger gesture: first the origin moves and is clamped, by the scale of before, then the
     * scale changes. @return false: a factor outside [0.09, 1.1], ignored */
    bool Zoom_Pinch(const Gesture_Record& gesture);

    bool Is_Zoomed() const { return zoomed; }
    const Blow_Direction& X() const { return x_direction; }
    const Blow_Direction& Y() const { return y_direction; }
    /** What is visible now. */
    Blow_Range Visible_X() const { return x_direction.Visible(zoomed); }
    Blow_Range Visible_Y() const { return y_direction.Visible(zoomed); }

  private:
    bool Is_Empty() const { return x_direction.pixels <= 0 || y_direction.pixels <= 0; }
    bool Take(const Blow_Step& in_x, const Blow_Step& in_y);

    Blow_Direction x_direction;
    Blow_Direction y_direction;
    bool zoomed = false;
};

/** Zoom and pan of the enlarged histogram window: pure numbers, single precision.
 *
 *  Pixels are those of the plot area (inside the margins), y counted upward from its bottom edge's window coordinate.
 * Data: grey levels (GLI) in x, pixel counts in y.
 */
#pragma once

#include "host/kit_dataset.h"

/** The plot area in window pixels, y upward. */
struct Blow_Area {
    int left = 0;
    int bottom = 0;
    int width = 0;   ///< 0 or less: nothing is computed
    int height = 0;  ///< 0 or less: nothing is computed
    bool Is_Empty() const { return width <= 0 || height <= 0; }
};

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

/** The part of the data that the window shows. */
class Blow_View {
  public:
    /** Takes the unzoomed view of a record: all bins, widened by 5 % in x and 10 % in y at each end. The view itself
     * follows unless it is zoomed. */
    void Full_View_Set(const Histo_Record& record, const Blow_Area& plot_area);
    /** Back to the full view. */
    void Reset();
    /** Zooms to a dragged rectangle, its corners clamped into the plot area. No origin clamp and no scale limit, unlike
     * the wheel.
     *  @return false: nothing changed, because the drag is shorter than BLOW_DRAG_MIN in one direction or single
     * precision could not tell the new view's ends apart */
    bool Zoom_Rectangle(const Blow_Drag& drag);
    /** Zooms by wheel notches, forward widens; the data under the pointer stays where it is as far as the limits allow.
     */
    void Zoom_Wheel(int notches, int x, int y);
    /** Zooms and pans by a two-finger gesture. @return false: a factor outside [0.09, 1.1], ignored */
    bool Zoom_Pinch(const Gesture_Record& gesture);

    bool Is_Zoomed() const { return zoomed; }
    float Origin_X() const { return origin_x; }
    float Origin_Y() const { return origin_y; }
    float Scale_X() const { return scale_x; }
    float Scale_Y() const { return scale_y; }
    /** What is visible now: from the origin as many pixels as the plot has, cut off at the full view. */
    Blow_Range Visible_X() const;
    Blow_Range Visible_Y() const;
    const Blow_Range& Full_X() const { return full_x; }
    const Blow_Range& Full_Y() const { return full_y; }
    float Scale_X_Max() const { return scale_x_max; }
    float Scale_Y_Max() const { return scale_y_max; }

  private:
    void Origin_Clamp();
    void Shown_Take();

    Blow_Area area;
    Blow_Range full_x;
    Blow_Range full_y;
    float scale_x_max = 1.0F;  // data units per pixel of the unzoomed view
    float scale_y_max = 1.0F;
    float origin_x = 0.0F;
    float origin_y = 0.0F;
    float scale_x = 1.0F;
    float scale_y = 1.0F;
    bool zoomed = false;
};

/** Wheel deltas that have not made a whole notch yet. */
class Wheel_Accumulator {
  public:
    /** Adds a delta. @return whole notches (toward zero); the remainder is kept */
    int Add(int delta);
    int Remainder() const { return remainder; }

  private:
    int remainder = 0;
};

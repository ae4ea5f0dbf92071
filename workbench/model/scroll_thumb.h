/** A scroll bar in numbers: pixels of content, of the view and of the bar's track. Pure code. */
#pragma once

#include "base/wheel_remainder.h"

namespace workbench {

/** What a bar tells. */
struct Scroll_Extent {
    int content = 0;  ///< pixels that there are
    int view = 0;     ///< pixels that are seen, and of the track
    int offset = 0;   ///< pixels of the content above the view

    bool Is_Needed() const { return content > view && view > 0; }
    /** The largest offset; 0 when no bar is needed. */
    int Offset_Max() const { return Is_Needed() ? content - view : 0; }
};

/** The thumb's place in the track, pixels from its top. */
struct Scroll_Thumb {
    int top = 0;
    int length = 0;
};

/** @param length_least of the thumb, as far as the track has room */
Scroll_Thumb Scroll_Thumb_Of(const Scroll_Extent& extent, int length_least);
/** The offset that puts the thumb's top there, within the limits. */
int Scroll_Offset_Of(const Scroll_Extent& extent, int length_least, int thumb_top);

/** Turns of the wheel as pixels of a view: parts of a pixel are kept for the next message. */
class Scroll_Wheel {
  public:
    /** @param delta what one message of the wheel tells @param per_notch pixels, 1 or more; what was kept of another
     *  number is dropped @return pixels in the delta's direction */
    int Pixels(int delta, int per_notch);

  private:
    int pixels_per_notch = 1;
    Wheel_Remainder rest;
};

}  // namespace workbench

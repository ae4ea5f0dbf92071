/** A turn of the mouse wheel as single notches. */
#pragma once

#include <vector>

namespace workbench {

inline constexpr int WHEEL_NOTCH = 120;  ///< what one notch of the wheel tells

/** Turns of the wheel as lines to scroll. Slow wheels and touch pads tell parts of a notch: what makes no whole line
 * yet is kept. */
class Wheel_Lines {
  public:
    explicit Wheel_Lines(int per_notch) : lines_per_notch(per_notch) {}
    /** @param delta what one message of the wheel tells @return whole lines, toward zero, in the delta's direction */
    int Turn(int delta);

  private:
    int lines_per_notch;
    int rest = 0;  // of a line, in parts of a notch
};

/** Parts a turn into whole notches and a rest, in its own direction or the opposite one. A window that zooms by so much
 *  per notch then zooms in steps, however many notches the system puts into one message.
 *  @param delta what one message of the wheel tells @param is_turned the opposite direction
 *  @return the deltas of the messages to send instead, the rest last; together `delta`, or `-delta` */
std::vector<int> Wheel_Notches(int delta, bool is_turned);

}  // namespace workbench

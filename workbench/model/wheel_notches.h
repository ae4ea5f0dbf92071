/** A turn of the mouse wheel as single notches. */
#pragma once

#include <vector>

namespace workbench {

/** Parts a turn into whole notches and a rest, in its own direction or the opposite one. A window that zooms by so much
 *  per notch then zooms in steps, however many notches the system puts into one message.
 *  @param delta what one message of the wheel tells @param is_turned the opposite direction
 *  @return the deltas of the messages to send instead, the rest last; together `delta`, or `-delta` */
std::vector<int> Wheel_Notches(int delta, bool is_turned);

}  // namespace workbench

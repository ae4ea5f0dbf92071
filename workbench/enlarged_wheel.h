/** The mouse wheel over the enlarged histogram, whose window zooms by a factor per notch: forward out, back in. */
#pragma once

#include <windows.h>

namespace workbench {

/** Hands a turn of the wheel on to the enlarged histogram notch by notch: many notches of one message would zoom by one
 *  factor that falls to nothing.
 *  @param is_turned the other direction: forward zooms in
 *  @return false: the message is none, and nothing was done */
bool Enlarged_Wheel_Dispatch(const MSG& message, bool is_turned);

}  // namespace workbench

/** The keyboard in the enlarged histogram, whose window takes the mouse only. */
#pragma once

#include <windows.h>

namespace workbench {

/** Does what a key message of the enlarged histogram stands for (see model/enlarged_keys.h), by mouse messages to its
 *  window. Their direction is the window's own, whichever way the user's wheel turns.
 *  @return true: the message is used up; false: nothing was done */
bool Enlarged_Key_Dispatch(const MSG& message);

}  // namespace workbench

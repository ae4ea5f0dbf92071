/** Keys that mean the same whatever window of the application has the focus. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>

namespace workbench {

/** The key code (see KEY_*) of function keys, Ctrl+Q and Ctrl+S; 0 for every other key. @param key virtual key */
int Global_Key_Code(WPARAM key, bool is_control, bool is_alt);

/** Handles a message of the program's loop that is one of these keys, or Escape in a window other than the main one,
 *  which it closes. Keys of the main window itself go their usual way.
 *  @param take receives the key code @return true when the message is done with */
bool Global_Key_Dispatch(const MSG& message, HWND main_window, const std::function<void(int)>& take);

}  // namespace workbench

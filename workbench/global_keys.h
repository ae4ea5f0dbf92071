/** Keys of the main window that count whatever window of the application has the keyboard. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>

namespace workbench {

/** The key code (see KEY_*) of a key with which commands can be asked for from another window: function keys, and
 *  letters with Ctrl except those that are another key's code and those with which texts are edited and copied. 0 for
 *  every other key.
 *  @param key virtual key @param is_field a field with text has the keyboard: it undoes by itself */
int Global_Key_Code(WPARAM key, bool is_control, bool is_alt, bool is_field);

/** Handles a message of the program's loop that is one of these keys, a character in a window that is no field for
 *  texts, or Escape in a window other than the main one, which it closes. Keys of the main window itself go their usual
 *  way.
 *  @param take receives the key code, false: no command has this key @return true when the message is done with */
bool Global_Key_Dispatch(const MSG& message, HWND main_window, const std::function<bool(int)>& take);

}  // namespace workbench

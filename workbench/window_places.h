/** Where the further windows of the application stand. */
#pragma once

#include "base/gdi_handles.h"

#include "workbench/model/settings.h"

namespace workbench {

/** Where a window stands while it is neither the smallest nor the largest, pixels; without width when there is none. */
Window_Place Place_Of(HWND window);

/** The screen, without its bars, that most of a window lies on; null: the first one. */
Window_Place Screen_Of(HWND window);

/** Puts a window back where it stood last, on a screen that is there now; otherwise beside its owner.
 *  @param owner the main window; may be null @param tools width of what at the owner's left must stay free
 *  @param last without width: it has not stood anywhere yet */
void Place_Beside(HWND window, HWND owner, int tools, const Window_Place& last, int width, int height);

}  // namespace workbench

/** Where a further window of the application stands when it opens first. Pure. */
#pragma once

#include "workbench/model/settings.h"

namespace workbench {

/** Beside the main window: right of it, or left of it, where the screen has the room; otherwise over its right part, so
 *  that the tools at its left stay free, and narrower when it has to be.
 *  @param main the main window on the screen, pixels @param tools width of what at its left must stay free
 *  @param width, height that are wanted; the answer is not larger @param area the screen without its bars */
Window_Place Window_Beside(const Window_Place& main, int tools, int width, int height, const Window_Place& area);

}  // namespace workbench

/** The one place where a window's axis is honoured: widget rectangles to device rectangles and the pointer back. */
#pragma once

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/widgets_host.h"

/** Device rectangle of a widget in its window; the client height is taken afresh. @return false without a living window
 * or an area */
bool Widget_Device_Rect(const Tools& widget, Rect* rect);
/** The pointer globals in the widget's own picture: (0, 0) is its visual top left pixel, y down. @return false when it
 * lies outside (the point is given all the same) or when the widget has no living window or no area (the point is (-1,
 * -1) then) */
bool Widget_Pointer(const Tools& widget, Point* point);
/** The row of the window's axis that device row `y` shows, and the other way round: the conversion is its own inverse.
 */
int Axis_Row(Window_Axis axis, int client_height, int y);

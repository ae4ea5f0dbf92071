/** @file
 *  Kit_Graph: axes of plots. */
#pragma once

#include "host/kit_widgets.h"
#include "host/platform.h"

/** Exported while the module itself is built, imported by everyone else. */
#if defined(KIT_GRAPH_BUILD)
#define KIT_GRAPH_API KIT_EXPORT
#else
#define KIT_GRAPH_API KIT_IMPORT
#endif

/** The rectangle in which data is drawn, inside a plot box. Pixels of the window's own axis; covers left .. left +
 * width - 1 and bottom .. bottom + height - 1. */
struct Plot_Area {
    int left = 0;    ///< its first column
    int bottom = 0;  ///< its smallest y: the visual bottom where y grows upwards
    int width = 0;   ///< 0 or less: nothing can be drawn
    int height = 0;  ///< 0 or less: nothing can be drawn
};

/** The plot area of a box. With m = the smaller of width / 50 and height / 50 of the box: left margin 2m + 40, bottom
 *  margin 2m + 20 (3m + 35 when a title is given), right margin 2m + 10, top margin 2m + `top_reserved`.
 *  @param box              plot box, pixels of the window's axis
 *  @param title_x, title_y axis titles; null or empty for none
 *  @param top_reserved     pixels below the box's upper edge that controls cover, 0 for none
 */
KIT_GRAPH_API Plot_Area Plot_Window_Area(const Boxs& box, const char* title_x, const char* title_y,
                                         int top_reserved = 0);

/** Draws the horizontal axis with ticks at round values (1, 2 or 5 times a power of ten), their numbers and the title
 *  into the box's margins.
 *  @param dc a device context in the window's own axis, as made by Y_setup
 *  @param box      the plot box: gives place, font and colours
 *  @param area     as Plot_Window_Area gave it for the box
 *  @param title    axis title; null or empty: none
 *  @param from, to the values at the area's left and right edge
 *  @return 1; 0 when the area is empty or the range is not an increasing pair of finite numbers (nothing is drawn then)
 */
KIT_GRAPH_API int Plot_Window_Axes_X(HDC dc, const Boxs& box, const Plot_Area& area, const char* title, float from,
                                     float to);

/** The vertical axis; `from` at the bottom edge, `to` at the top edge. Otherwise as Plot_Window_Axes_X. */
KIT_GRAPH_API int Plot_Window_Axes_Y(HDC dc, const Boxs& box, const Plot_Area& area, const char* title, float from,
                                     float to);

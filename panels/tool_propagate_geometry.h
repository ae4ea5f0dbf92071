/** Where the widgets of the propagate panel stand. */
#pragma once

#include "base/pixel_rectangle.h"

/** One row, from left to right. */
struct Propagate_Layout {
    Pixel_Rectangle down;
    Pixel_Rectangle list;
    Pixel_Rectangle up;
};

/** The row of the panel: the list takes two of four columns; one space stands around and between the widgets. Above the
 *  row is room for the title.
 *  @param host the panel's rectangle; @param space, list_height pixels */
Propagate_Layout Propagate_Layout_Make(const Pixel_Rectangle& host, int space, int list_height);

/** @return the height that the panel wants, pixels */
int Propagate_Height(int space, int list_height, int title_height);

/** True when there is a frame after item `current`. */
bool Propagate_Has_Next(int frame_nb, int current);
/** True when there is a frame before item `current`. */
bool Propagate_Has_Previous(int frame_nb, int current);

/** Where the widgets of the propagate panel stand. */
#pragma once

/** A rectangle of a window: x .. x + width - 1, y .. y + height - 1, pixels of the window's axis. */
struct Propagate_Place {
    short x = 0;
    short y = 0;
    short width = 0;
    short height = 0;
    friend bool operator==(const Propagate_Place&, const Propagate_Place&) = default;
};

/** One row, from left to right. */
struct Propagate_Layout {
    Propagate_Place down;
    Propagate_Place list;
    Propagate_Place up;
};

/** The row of the panel: the list takes two of four columns; one space stands around and between the widgets. Above the
 *  row is room for the title.
 *  @param host the panel's rectangle; @param space, list_height pixels */
Propagate_Layout Propagate_Layout_Make(const Propagate_Place& host, int space, int list_height);

/** @return the height that the panel wants, pixels */
int Propagate_Height(int space, int list_height, int title_height);

/** True when there is a frame after item `current`. */
bool Propagate_Has_Next(int frame_nb, int current);
/** True when there is a frame before item `current`. */
bool Propagate_Has_Previous(int frame_nb, int current);

/** Where the widgets and zones of a database panel stand. Pixels of the window's axis, y counted upward. */
#pragma once

#include "base/pixel_rectangle.h"

/** What the layout depends on besides the panel's rectangle, pixels. */
struct DB_Metrics {
    int space = 0;          ///< "$INTERFACE_SPACE_DIM"
    int slider_width = 0;   ///< "$INTERFACE_VAL_DIM_SML"
    int button_height = 0;  ///< "$INTERFACE_BUTTON_DIM_SML"
    int margin = 0;         ///< border thickness of the host's box
};

struct DB_Layout {
    Pixel_Rectangle select_all;
    Pixel_Rectangle select_none;
    Pixel_Rectangle warning_title;  ///< edit mode: in place of the buttons
    Pixel_Rectangle warning_line;
    Pixel_Rectangle vertical;
    Pixel_Rectangle horizontal;
    Pixel_Rectangle list;      ///< the tree
    Pixel_Rectangle top_zone;  ///< auto-scroll zones around the tree; the upper one reaches 10 pixels into it
    Pixel_Rectangle bottom_zone;
    Pixel_Rectangle left_zone;
    Pixel_Rectangle right_zone;
};

DB_Layout DB_Layout_Make(const Pixel_Rectangle& panel, const DB_Metrics& metrics);

/** The next larger font scale. 0, the library's own, stays 0. */
constexpr short DB_Font_Scale_Larger(int scale) {
    return static_cast<short>(scale == 0 ? 0 : scale + 1);
}

/** Height of a panel for `rows` rows: the button row, two spaces, two borders and the rows. */
int DB_Panel_Height(int rows, int space, int button_height, int border);

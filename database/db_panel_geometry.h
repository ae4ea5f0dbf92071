/** Where the widgets and zones of a database panel stand. Pixels of the window's axis, y counted upward. */
#pragma once

/** A rectangle of a window: x .. x + width - 1, y .. y + height - 1. */
struct DB_Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const DB_Place&, const DB_Place&) = default;
};

/** What the layout depends on besides the panel's rectangle, pixels. */
struct DB_Metrics {
    int space = 0;          ///< "$INTERFACE_SPACE_DIM"
    int slider_width = 0;   ///< "$INTERFACE_VAL_DIM_SML"
    int button_height = 0;  ///< "$INTERFACE_BUTTON_DIM_SML"
    int margin = 0;         ///< border thickness of the host's box
};

struct DB_Layout {
    DB_Place select_all;
    DB_Place select_none;
    DB_Place warning_title;  ///< edit mode: in place of the buttons
    DB_Place warning_line;
    DB_Place vertical;
    DB_Place horizontal;
    DB_Place list;      ///< the tree
    DB_Place top_zone;  ///< auto-scroll zones around the tree; the upper one reaches 10 pixels into it
    DB_Place bottom_zone;
    DB_Place left_zone;
    DB_Place right_zone;
};

DB_Layout DB_Layout_Make(const DB_Place& panel, const DB_Metrics& metrics);

/** The next larger font scale. 0, the library's own, stays 0. */
constexpr short DB_Font_Scale_Larger(int scale) {
    return static_cast<short>(scale == 0 ? 0 : scale + 1);
}

/** Height of a panel for `rows` rows: the button row, two spaces, two borders and the rows. */
int DB_Panel_Height(int rows, int space, int button_height, int border);

/** Where the controls of the enlarged histogram window stand: pure numbers. Window pixels, y counted upward. */
#pragma once

#include <array>

#include "histogram/tool_histo_geometry.h"

inline constexpr int BLOW_SELECT_MAX = 3;  ///< selectors that there can be

/** What the layout depends on, pixels. */
struct Blow_Metrics {
    int client_width = 0;
    int client_height = 0;
    int button_height = 0;
    int space = 0;
    int font_height = 0;
    int select_nb = 0;  ///< 0 .. BLOW_SELECT_MAX
};

/** Height of an axis's letters so that the numbers fit beside the title in the left margin of the plot area, and the
 * title beside the area. @param
 * font_height of the host's font, 0 for the library's own; @param margin columns between plot box and plot area
 * @param rows that the vertical axis's title may take
 * @return 0 too for the library's own */
int Blow_Axis_Font(int font_height, int margin, int rows);

struct Blow_Layout {
    Pixel_Rectangle plot;  ///< the plot box, border included; a client area that is too small leaves it without extent
    Pixel_Rectangle reset_button;
    Pixel_Rectangle export_button;
    std::array<Pixel_Rectangle, BLOW_SELECT_MAX> select{};
    int select_arrow = 0;  ///< width of a selector's arrow; 0 where the texts leave no room for arrows
    int select_font = 0;   ///< font height of the selectors
    int top_reserved = 0;  ///< rows below the plot box's upper edge that the controls cover
};

/** Two buttons side by side, and the selectors in one row below them. They stand in more rows only where their part of
 * the row cannot hold their texts, and in fewer again where they would take too much of a low window. */
Blow_Layout Blow_Layout_Make(const Blow_Metrics& metrics);

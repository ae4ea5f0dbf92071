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

struct Blow_Layout {
    Histo_Rectangle plot;  ///< the plot box, border included; a client area that is too small leaves it without extent
    Histo_Rectangle reset_button;
    Histo_Rectangle export_button;
    std::array<Histo_Rectangle, BLOW_SELECT_MAX> select{};
    int select_arrow = 0;  ///< width of a selector's arrow; 0 where there is no room for arrows
    int select_font = 0;   ///< font height of the selectors
    int top_reserved = 0;  ///< rows below the plot box's upper edge that the controls cover
};

/** Two buttons side by side, and the selectors in rows below them: as many in a row as can be read, more where they
 * would take too much of a low window. */
Blow_Layout Blow_Layout_Make(const Blow_Metrics& metrics);

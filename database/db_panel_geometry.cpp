#include "database/db_panel_geometry.h"

#include "database/tool_db_fct.h"

namespace {

constexpr int WARNING_TITLE_WIDTH = 80;
constexpr int TOP_ZONE_OVERLAP = 10;  ///< the upper auto-scroll zone reaches so far into the tree
constexpr int LEFT_ZONE_WIDTH = 20;
constexpr int BUTTON_GAP = 2;

}  // namespace

DB_Layout DB_Layout_Make(const Pixel_Rectangle& panel, const DB_Metrics& metrics) {
    const int space = metrics.space;
    const int slider = metrics.slider_width;
    const int button = metrics.button_height;
    const int x = panel.x + space;
    const int y = panel.y + space;
    const int half = (panel.width - 2 * space - BUTTON_GAP) / 2;
    const int above_buttons = y + button + space;
    const int inner_width = panel.width - 2 * space;
    const int inner_height = panel.height - 2 * space - metrics.margin - button - 1;

    DB_Layout layout;
    layout.select_all = {x, y, half, button};
    layout.select_none = {x + half + BUTTON_GAP, y, half, button};
    layout.warning_title = {x, y, WARNING_TITLE_WIDTH, button};
    layout.warning_line = {x + WARNING_TITLE_WIDTH, y, (half - WARNING_TITLE_WIDTH / 2) * 2, button};
    const int tree_y = above_buttons + slider + space;
    const int tree_width = inner_width - slider - space;
    layout.vertical = {x + inner_width - slider, tree_y, slider, inner_height - 2 * space - slider};
    layout.horizontal = {x, above_buttons, tree_width, slider};
    layout.list = {x, tree_y, tree_width, inner_height - slider - space};

    const int panel_top = panel.y + panel.height;
    const int panel_right = panel.x + panel.width;
    const int top_from = layout.list.y + layout.list.height - TOP_ZONE_OVERLAP;
    const int right_from = layout.list.x + layout.list.width;
    layout.top_zone = {panel.x, top_from, panel.width, panel_top - top_from};
    layout.bottom_zone = {panel.x, panel.y, panel.width, layout.list.y - panel.y};
    layout.left_zone = {panel.x, panel.y, LEFT_ZONE_WIDTH, panel.height};
    layout.right_zone = {right_from, panel.y, panel_right - right_from, panel.height};
    return layout;
}

int DB_Panel_Height(int rows, int space, int button_height, int border) {
    return button_height + 2 * (space + DB_ROW_HEIGHT / 2 * rows + border);
}

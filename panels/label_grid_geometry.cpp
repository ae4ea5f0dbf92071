#include "panels/label_grid_geometry.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int SLIDER_MARGIN = 2;  // pixels beyond the host's border
constexpr int HEIGHT_MARGIN = 5;  // pixels

/** The whole pixels of a scroll position; of one that is no number 0. */
int Scroll_Offset(float scroll) {
    constexpr float limit = 1.0e8F;
    return scroll == scroll ? static_cast<int>(std::clamp(scroll, -limit, limit)) : 0;
}

}  // namespace

std::int16_t Label_To_Short(int value) {
    return static_cast<std::int16_t>(
        std::clamp<int>(value, LABEL_NOWHERE + 1, std::numeric_limits<std::int16_t>::max()));
}

Label_Slider Label_Slider_Make(const Label_Dimensions& dimensions, int frame_height, int slider_height, int count) {
    Label_Slider slider;
    const int content = count / LABEL_COLUMN_NB * dimensions.Row_Height();
    slider.needed = content > frame_height - 2 * dimensions.library_space;
    slider.content = static_cast<float>(content);
    if (slider.needed) {
        slider.maximum = static_cast<float>(content - slider_height);
        slider.value = slider.maximum;
    }
    return slider;
}

Label_Layout Label_Layout_Make(const Label_Dimensions& dimensions, const Label_Host_Box& host, int count) {
    Label_Layout layout;
    const int margin = host.border + SLIDER_MARGIN;
    const int height = Label_To_Short(host.height - 2 * margin);
    layout.scroll = Label_Slider_Make(dimensions, host.height, height, count);
    layout.slider = {Label_To_Short(host.x + margin), Label_To_Short(host.y + margin),
                     Label_To_Short(dimensions.cursor), Label_To_Short(height)};
    const int column = layout.scroll.needed ? dimensions.cursor + dimensions.space : 0;
    layout.grid = {Label_To_Short(host.x + margin + column), layout.slider.y,
                   Label_To_Short(host.width - 2 * margin - column), layout.slider.height};
    layout.visible_top = layout.grid.y - 1;
    layout.visible_bottom = layout.grid.y + 1 + layout.grid.height - dimensions.Row_Height();
    return layout;
}

Label_Cell Label_Cell_Of(int index, int count) {
    Label_Cell cell;
    const int from_top = count - 1 - index;
    cell.is_laid_out = index >= 0 && from_top >= 0 && from_top < count / LABEL_COLUMN_NB * LABEL_COLUMN_NB;
    cell.row = from_top / LABEL_COLUMN_NB;
    cell.column = LABEL_COLUMN_NB - 1 - from_top % LABEL_COLUMN_NB;
    return cell;
}

std::int16_t Label_Button_Y(int top, const Label_Cell& cell, int row_height, float scroll) {
    return Label_To_Short(cell.row * row_height - Scroll_Offset(scroll) + top);
}

Pixel_Rectangle Label_Button(const Pixel_Rectangle& grid, const Label_Cell& cell, int row_height, float scroll) {
    const int width = grid.width / LABEL_COLUMN_NB;
    return {Label_To_Short(grid.x + cell.column * width), Label_Button_Y(grid.y, cell, row_height, scroll),
            Label_To_Short(width), Label_To_Short(row_height)};
}

int Label_Panel_Height(const Label_Dimensions& dimensions, int rows) {
    const std::int64_t height =
        2 * dimensions.border + HEIGHT_MARGIN + static_cast<std::int64_t>(rows) * dimensions.Row_Height();
    return static_cast<int>(
        std::clamp<std::int64_t>(height, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

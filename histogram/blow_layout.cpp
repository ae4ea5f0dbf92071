#include "histogram/blow_layout.h"

#include <algorithm>

namespace {

constexpr int CLIENT_MARGIN = 1;           // pixels round the plot box
constexpr int SELECT_EMS_TENTHS = 146;     // twice the longest caption, because the field has as much room
constexpr int SELECT_PADDING = 16;         // pixels beside caption and field
constexpr int SELECT_FONT_MIN = 10;        // pixels; smaller letters cannot be told apart
constexpr int SELECT_ARROW_MIN = 8;        // pixels; a narrower arrow cannot be hit
constexpr int SELECT_ROW_PADDING = 8;      // pixels above and below the letters in the lowest row
constexpr int CONTROLS_PERCENT = 40;       // of the plot box's height that the controls may cover
constexpr int AXIS_FONT = 12;              // pixels, where the host has no font
constexpr int AXIS_FONT_MIN = 8;           // pixels
constexpr int AXIS_TICK_ROOM = 11;         // pixels of the left margin that ticks and gaps take
constexpr int AXIS_EMS_TENTHS = 31;        // a line of the title and four characters beside each other
constexpr int AXIS_TITLE_EMS_TENTHS = 60;  // the title's length

/** Width at which a selector without arrows shows caption and choice. */
int Select_Width(int font_height) {
    return font_height * SELECT_EMS_TENTHS / 10 + SELECT_PADDING;
}

int Slot_Width(const Blow_Metrics& metrics, int plot_width, int per_row) {
    return std::max((plot_width - (per_row + 1) * metrics.space) / per_row, 0);
}

/** Height of the letters with which a selector without arrows fits into a width. */
int Select_Font(const Blow_Metrics& metrics, int width) {
    const int fitting = (width - SELECT_PADDING) * 10 / SELECT_EMS_TENTHS;
    return std::min(metrics.font_height, std::max(fitting, SELECT_FONT_MIN));
}

struct Select_Rows {
    int per_row = 1;
    int height = 0;
};

int Controls_Height(const Blow_Metrics& metrics, const Select_Rows& rows) {
    const int row_nb = (metrics.select_nb + rows.per_row - 1) / rows.per_row;
    return 2 * metrics.space + metrics.button_height + row_nb * (rows.height + metrics.space);
}

Select_Rows Select_Rows_Choose(const Blow_Metrics& metrics, const Pixel_Rectangle& plot) {
    Select_Rows rows{metrics.select_nb, metrics.button_height};
    while (rows.per_row > 1 && Slot_Width(metrics, plot.width, rows.per_row) < Select_Width(metrics.font_height)) {
        --rows.per_row;
    }
    const int height_max = plot.height * CONTROLS_PERCENT / 100;
    const auto too_high = [&] { return Controls_Height(metrics, rows) > height_max; };
    // A low window: first flatter rows, then more in each row while small letters can still be read.
    if (too_high()) {
        rows.height = std::min(metrics.button_height, metrics.font_height + SELECT_ROW_PADDING);
    }
    while (too_high() && rows.per_row < metrics.select_nb &&
           Slot_Width(metrics, plot.width, rows.per_row + 1) * 10 >= Select_Width(SELECT_FONT_MIN) * 8) {
        ++rows.per_row;
    }
    // Letters that have become small need no more than a low row.
    if (too_high()) {
        const int letters = Select_Font(metrics, Slot_Width(metrics, plot.width, rows.per_row));
        rows.height = std::min(rows.height, letters + SELECT_ROW_PADDING);
    }
    return rows;
}

}  // namespace

int Blow_Axis_Font(int font_height, int margin, int rows) {
    const int fitting = std::max(
        std::min((margin - AXIS_TICK_ROOM) * 10 / AXIS_EMS_TENTHS, rows * 10 / AXIS_TITLE_EMS_TENTHS), AXIS_FONT_MIN);
    if (font_height <= 0) {
        return AXIS_FONT <= fitting ? 0 : fitting;
    }
    return std::min(font_height, fitting);
}

Blow_Layout Blow_Layout_Make(const Blow_Metrics& metrics) {
    Blow_Layout layout;
    Pixel_Rectangle& plot = layout.plot;
    plot = {CLIENT_MARGIN, CLIENT_MARGIN, std::max(metrics.client_width - 2 * CLIENT_MARGIN, 0),
            std::max(metrics.client_height - 2 * CLIENT_MARGIN, 0)};
    const int top = plot.y + plot.height;
    const int button_width = std::max((plot.width - 3 * metrics.space) / 2, 0);
    int y = top - metrics.space - metrics.button_height;
    layout.reset_button = {plot.x + metrics.space, y, button_width, metrics.button_height};
    layout.export_button = {layout.reset_button.x + button_width + metrics.space, y, button_width,
                            metrics.button_height};
    layout.select_font = metrics.font_height;
    if (metrics.select_nb > 0) {
        const Select_Rows rows = Select_Rows_Choose(metrics, plot);
        const int slot = Slot_Width(metrics, plot.width, rows.per_row);
        const int beside_texts = (slot - Select_Width(metrics.font_height)) / 2;
        const int arrow = std::min(rows.height * 2 / 3, beside_texts);
        layout.select_arrow = arrow >= SELECT_ARROW_MIN ? arrow : 0;
        if (beside_texts < 0) {
            layout.select_font = Select_Font(metrics, slot);
        }
        for (int i = 0; i < metrics.select_nb; ++i) {
            const int column = i % rows.per_row;
            if (column == 0) {
                y -= metrics.space + rows.height;
            }
            layout.select[static_cast<std::size_t>(i)] = {plot.x + metrics.space + column * (slot + metrics.space), y,
                                                          slot, rows.height};
        }
    }
    layout.top_reserved = std::max(top - y + metrics.space, 0);
    return layout;
}

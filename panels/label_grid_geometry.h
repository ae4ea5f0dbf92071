/** @file
 *  Where a grid of label buttons stands: pure numbers, no widget.
 *
 *  Pixels of a window whose y grows downwards; rectangles are half-open (x .. x + width - 1). The grid has four
 *  columns; the top row holds the four highest labels, the bottom row labels 0 to 3. Only complete rows are laid out.
 *
 *  Contract: hosts ask for the height of count / 4 rows; the lowest labels of another count have no room, so no button.
 */
#pragma once

#include <cstdint>

#include "base/pixel_rectangle.h"

inline constexpr int LABEL_COLUMN_NB = 4;  ///< columns of every grid
/** y of a button that is not laid out. No button that is laid out has it. */
inline constexpr std::int16_t LABEL_NOWHERE = -32768;

/** Interface dimensions, pixels. */
struct Label_Dimensions {
    int border = 0;         ///< "$INTERFACE_BORDER_DIM"
    int button = 0;         ///< "$INTERFACE_BUTTON_DIM_SML"
    int cursor = 0;         ///< "$INTERFACE_CURSOR_DIM"
    int space = 0;          ///< "$INTERFACE_SPACE_DIM"
    int library_space = 0;  ///< the widget library's own spacing

    /** Pixels from one row of buttons to the next: border and button. */
    int Row_Height() const { return border + button; }
};

/** The host's box: a rectangle with the width of its frame, which it counts within its sides. */
struct Label_Host_Box {
    ///@{
    int x = 0;  ///< pixels
    int y = 0;
    int width = 0;
    int height = 0;
    int border = 0;
    ///@}
};

/** State that the slider takes from the number of labels. */
struct Label_Slider {
    bool needed = false;   ///< the rows are higher than the frame less twice the library's spacing
    float maximum = 1.0F;  ///< pixels; below 0 when the content is only just too high
    float value = 0.0F;    ///< pixels; the maximum, so that the lowest labels are in view
    float content = 0.0F;  ///< height of all rows, pixels
};

/** Everything that a resize places, but for the buttons. */
struct Label_Layout {
    Pixel_Rectangle slider;  ///< has its place whether it is needed or not
    Pixel_Rectangle grid;    ///< right of the slider, or in its place when that is not needed
    Label_Slider scroll;     ///< of that slider
    int visible_top = 0;     ///< smallest y of a visible button
    int visible_bottom = 0;  ///< largest y of a visible button
};

/** A number as 16 bits; beyond their range the nearest one that is not LABEL_NOWHERE. */
std::int16_t Label_To_Short(int value);

/** The slider for `count` labels in a frame.
 *  Contract: hosts size panels to fit a full grid by twice the library's spacing, not by the slider's margin. */
Label_Slider Label_Slider_Make(const Label_Dimensions& dimensions, int frame_height, int slider_height, int count);

/** Lays out slider and grid in a host's box for `count` labels. */
Label_Layout Label_Layout_Make(const Label_Dimensions& dimensions, const Label_Host_Box& host, int count);

/** Place of a label in the grid. */
struct Label_Cell {
    bool is_laid_out = false;  ///< false: in an incomplete row, or no label at all; row and column say nothing then
    int row = 0;               ///< from the top
    int column = 0;            ///< from the left
};
/** @param index label, 0 at the bottom left; @param count labels of the grid */
Label_Cell Label_Cell_Of(int index, int count);

/** A button's rectangle. @param grid, cell its place; @param row_height pixels; @param scroll the slider's value */
Pixel_Rectangle Label_Button(const Pixel_Rectangle& grid, const Label_Cell& cell, int row_height, float scroll);
/** A button's y alone. @param top the grid's y; @param cell, row_height, scroll as for Label_Button */
std::int16_t Label_Button_Y(int top, const Label_Cell& cell, int row_height, float scroll);

/** Height of a panel with `rows` rows of buttons: 2 x border + 5 + rows x row height. */
int Label_Panel_Height(const Label_Dimensions& dimensions, int rows);

/** Drawing of tree rows with GDI. */
#pragma once

#include "base/drawing_dc.h"
#include "base/gdi_handles.h"

#include "database/text_widths.h"
#include "database/tree_layout.h"
#include "database/tree_rows.h"
#include "host/kit_widgets.h"

inline constexpr int TREE_FONT_HEIGHT = 13;  ///< pixels; for boxes that name none

/** A box without width or height has no pixels. */
inline bool Has_Pixels(const Boxs& box) {
    return box.width > 0 && box.height > 0;
}
/** The pixels of a box as a clip region: regions are in device units. */
Gdi_Region Tree_Region(HDC dc, const Boxs& box);

/** The two fonts of all trees. Created with the first box that draws, and kept; the system's font where that failed. */
class Tree_Fonts {
  public:
    static Tree_Fonts For(const Boxs& box);
    HFONT Get(Tree_Font font) const { return font == Tree_Font::Bold ? bold : regular; }

  private:
    HFONT regular = nullptr;
    HFONT bold = nullptr;
};

/** Measures texts with a device context. A tab counts three average character widths more than the system says. */
class Gdi_Text_Measurer final : public Text_Measurer {
  public:
    Gdi_Text_Measurer(HDC with_dc, const Tree_Fonts& with_fonts) : dc(with_dc), fonts(with_fonts) {}
    int Width(Tree_Font font, const char* text) override;
    Fonts Fonts_Get() const override { return {fonts.Get(Tree_Font::Regular), fonts.Get(Tree_Font::Bold)}; }

  private:
    HDC dc;
    Tree_Fonts fonts;
};

/** What a drawing of the rows starts from. */
struct Tree_View {
    const Boxs* box = nullptr;
    int horizontal = 0;  ///< scroll positions, pixels
    int vertical = 0;
    int space = 0;  ///< "$INTERFACE_SPACE_DIM"

    int Left() const { return box->x - horizontal + space; }
    int Top() const { return box->y + box->height + vertical; }  ///< of the tree, in the window's axis (upward)
    int Row_Y(int row) const { return Top() - Tree_Row_Middle(row); }
    int First_Row() const { return vertical / DB_ROW_HEIGHT; }
    int Last_Row() const { return First_Row() + box->height / DB_ROW_HEIGHT + 1; }
};

/** The records that are drawn. */
struct Tree_Records {
    int nb = 0;
    const DB_List* list_pt = nullptr;
    Tree_Start start;  ///< a displayed record at or above the first row in view
};

/** Fills the box and draws the displayed rows that the view covers. */
void Tree_Paint(HDC dc, const Tree_View& view, const Tree_Records& records, Text_Widths& widths);
/** Draws the outline of a rectangle (left, bottom, right, top; corners included) inverting: a second time erases it.
 *  @return false when nothing was drawn */
bool Tree_Band_Paint(HDC dc, const Boxs& box, const int (&erase)[4], bool erases, const int (&band)[4]);

#include "database/tool_db_fct.h"

#include <algorithm>
#include <new>

#include "database/text_widths.h"
#include "database/tool_db_fct_paint.h"
#include "database/tree_layout.h"
#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"

DB_Drag db_drag;

namespace {

constexpr const char* TEXT_POS_LABEL = "tool_db_fct: DB_List_Text_Pos";
constexpr int POSITION_END = 32768;  // first pointer position that is none

int Space() {
    return Host_Dimension("$INTERFACE_SPACE_DIM");
}

Text_Width_Lists& Width_Lists() {
    static Text_Width_Lists lists;
    return lists;
}

int Position_Fold(LONG position) {
    return position < 0 || position >= POSITION_END ? 0 : static_cast<int>(position);
}

/** Without memory for the columns their old places stay. */
int Width_Measure(HDC dc, const Boxs& box, int nb, DB_List* list_pt) {
    Gdi_Text_Measurer measurer(dc, Tree_Fonts::For(box));
    Text_Widths& widths = Width_Lists().Of(nb, list_pt, measurer.Fonts_Get());
    try {
        return Tree_Width_Measure(nb, list_pt, Space(), widths, measurer);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

/** The rows, and what DB_List_Text_Pos finds and writes, for a drawing: one pass over the records for both. */
Tree_Layout Lay_Out(const Boxs& box, int nb, DB_List* list_pt) {
    if (list_pt == nullptr) {
        return {};
    }
    const Drawing_DC dc(box.window, TEXT_POS_LABEL);
    if (!dc) {
        Tree_Layout rows_only;
        rows_only.row_nb = Tree_Rows_Number(nb, list_pt);
        return rows_only;
    }
    Gdi_Text_Measurer measurer(dc.Get(), Tree_Fonts::For(box));
    return Tree_Lay_Out(nb, list_pt, Space(), Width_Lists().Of(nb, list_pt, measurer.Fonts_Get()), measurer);
}

void Press(const DB_Tree_Point& at, Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    const int row = Tree_Row_At(at.y);
    if (row >= 0 && row < nb) {
        const int record = Tree_Row_Find(nb, list_pt, row);
        if (record < 0) {
            return;
        }
        if (list_pt[record].child_nb != 0 && Tree_Column_At(at.x) == list_pt[record].level) {
            list_pt[record].flag ^= DB_FLAG_EXPANDED;
            DB_List_Draw(box, nb, list_pt, horizontal, vertical);
            for (Sliders* slider : {horizontal, vertical}) {
                slider->Clear();
                slider->Draw();
            }
            return;
        }
    }
    db_drag.Begin(box);
    if (getkey(VK_SHIFT) == 0) {
        db_drag.anchor_row = row;
    }
    db_drag.press = at;
}

}  // namespace

bool DB_List_Pointer(const Boxs& box, const Sliders& horizontal, const Sliders& vertical, const char* label,
                     DB_Tree_Point* point) {
    const Drawing_DC dc(box.window, label);
    if (!dc) {
        return false;
    }
    POINT pointer = {YCursor_X, YCursor_Y};
    ::ScreenToClient(box.window, &pointer);
    ::DPtoLP(dc.Get(), &pointer, 1);
    point->x = Tree_Pixels(horizontal.value) - box.x - Space() + Position_Fold(pointer.x);
    point->y = Tree_Pixels(vertical.value) + box.y + box.height - Position_Fold(pointer.y);
    return true;
}

void DB_Slider_Fit(Sliders& slider, const Tree_Extent& extent) {
    const unsigned int kind = slider.style & STYLE_SLIDER_VERTICAL;
    const bool disabled = (slider.style & STYLE_EDITED) == STYLE_EDITED;
    const auto visible = static_cast<float>(extent.visible);
    if (extent.fits) {
        slider.value = slider.minimum;
        slider.Larg_Adjust(visible, visible);
        if (!disabled) {
            slider.style = kind | STYLE_INACTIVE;
            slider.Init(nullptr);
        }
        return;
    }
    const auto maximum = static_cast<float>(extent.Maximum());
    slider.Larg_Adjust(visible, static_cast<float>(extent.total));
    if (disabled || slider.minimum != 0.0F || slider.maximum != maximum ||
        !(slider.value >= 0.0F && slider.value <= maximum)) {
        slider.style = kind;
        slider.minimum = 0.0F;
        slider.maximum = maximum;
        slider.Init(nullptr);
    }
}

int DB_List_Draw(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    const int result = list_pt != nullptr ? 1 : 0;
    const Drawing_DC dc(box->window, "tool_db_fct: DB_List_Draw");
    if (!dc) {
        return result;
    }
    const Tree_Layout layout = Lay_Out(*box, nb, list_pt);
    // The sliders before the drawing: a tree that has become short is drawn at its new position at once.
    DB_Slider_Fit(*vertical, Tree_Height_Extent(layout.row_nb, box->height));
    if (layout.width > 0 || list_pt == nullptr) {
        DB_Slider_Fit(*horizontal, Tree_Width_Extent(layout.width, Space(), box->width));
    }
    const Tree_View view{box, Tree_Pixels(horizontal->value), Tree_Pixels(vertical->value), Space()};
    if (list_pt != nullptr) {
        const Gdi_Text_Measurer measurer(dc.Get(), Tree_Fonts::For(*box));
        Tree_Paint(dc.Get(), view, {nb, list_pt, layout.Start_For(view.First_Row())},
                   Width_Lists().Of(nb, list_pt, measurer.Fonts_Get()));
    } else {
        Text_Widths none;
        Tree_Paint(dc.Get(), view, {}, none);
    }
    if (db_drag.owner == box) {
        DB_List_Draw_Box(nullptr, horizontal, vertical);
    }
    return result;
}

int DB_List_Text_Pos(Boxs* box, int nb, DB_List* list_pt) {
    if (list_pt == nullptr) {
        return 0;
    }
    const Drawing_DC dc(box->window, TEXT_POS_LABEL);
    return dc ? Width_Measure(dc.Get(), *box, nb, list_pt) : 0;
}

int DB_List_Click(Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    // the name of an earlier operation; whoever reads the traces knows it by that
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_2D_Class_List_Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    DB_Tree_Point at;
    if (!DB_List_Pointer(*box, *horizontal, *vertical, "tool_db_fct: DB_List_Click", &at)) {
        return 0;
    }
    if ((up_down & MOUSE_PRESS) != 0) {
        Press(at, box, list_pt != nullptr ? nb : 0, list_pt, horizontal, vertical);
        return 0;
    }
    if (!db_drag.Is_Of(box)) {
        return 0;
    }
    db_drag.active = false;
    db_drag.end_row = Tree_Row_At(at.y);
    DB_List_Draw_Box(nullptr, horizontal, vertical);
    DB_List_Draw(box, nb, list_pt, horizontal, vertical);
    return 1;
}

int DB_List_Select_Range(Boxs* box, int mode, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    if ((mode & DB_MODE_ADD) == 0 && getkey(VK_CONTROL) == 0) {
        Tree_Uncheck(nb, list_pt);
    }
    Tree_Range_Flip(nb, list_pt, db_drag.anchor_row, db_drag.end_row);
    DB_List_Set_State(nb, list_pt);
    DB_List_Draw(box, nb, list_pt, horizontal, vertical);
    return 1;
}

int DB_List_Motion(Boxs* box, int up_down, int, DB_List*, Sliders* horizontal, Sliders* vertical) {
    if (up_down == 0 && (db_drag.owner == box || !db_drag.active)) {
        DB_List_Draw_Box(nullptr, horizontal, vertical);
    }
    if (!db_drag.Is_Of(box) ||
        !DB_List_Pointer(*box, *horizontal, *vertical, "tool_db_fct: DB_List_Motion", &db_drag.current)) {
        return 0;
    }
    return DB_List_Draw_Box(box, horizontal, vertical) ? 1 : 0;
}

bool DB_List_Draw_Box(Boxs* box, Sliders* horizontal, Sliders* vertical) {
    if (box == nullptr) {
        db_drag.band_shown = false;
        return false;
    }
    const Drawing_DC dc(box->window, "tool_db_fct: DB_List_Draw_Box");
    if (!dc) {
        return false;
    }
    const Tree_View view{box, Tree_Pixels(horizontal->value), Tree_Pixels(vertical->value), Space()};
    const DB_Tree_Point& a = db_drag.press;
    const DB_Tree_Point& b = db_drag.current;
    const int band[4] = {view.Left() + std::min(a.x, b.x), view.Top() - std::max(a.y, b.y),
                         view.Left() + std::max(a.x, b.x), view.Top() - std::min(a.y, b.y)};
    if (!Tree_Band_Paint(dc.Get(), *box, db_drag.band, db_drag.band_shown, band)) {
        return false;
    }
    std::copy(std::begin(band), std::end(band), db_drag.band);
    db_drag.band_shown = true;
    return true;
}

void DB_List_Forget(const DB_List* list_pt) {
    Width_Lists().Forget(list_pt);
}

void DB_Drag_Forget(const Boxs* box) {
    if (db_drag.owner == box) {
        const Boxs* const left_in = db_drag.left_in;  // another tree, which still shows a band
        db_drag = {};
        db_drag.left_in = left_in;
    }
    if (db_drag.left_in == box) {
        db_drag.left_in = nullptr;
    }
}

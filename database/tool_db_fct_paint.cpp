#include "database/tool_db_fct_paint.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "host/kit_common.h"

namespace {

constexpr COLORREF LINE_COLOR = 0xFF0000;  // 0x00BBGGRR
constexpr COLORREF TITLE_COLOR = 65535;    // also of column labels
constexpr COLORREF TEXT_COLOR = 0xFF0000;  // of names and column values
constexpr COLORREF TEXT_COLOR_CHECKED = 0;
constexpr COLORREF TEXT_COLOR_NO_ACCESS = 128;
constexpr COLORREF BAND_COLOR = 32896;

constexpr int CELL = 20;                // pixels of the lead, of the icon and of the check icon
constexpr int LEAF_HALF = 9;            // pixels of a leaf's lead above and below the row's middle line
constexpr int BRANCH_HALF = 8;          // ... of a branch's
constexpr int CONNECTOR_X = 7;          // in a lead cell
constexpr int CONNECTOR_BELOW = 2;      // pixels that a connector reaches below its row
constexpr int BASE_LINE_BELOW = 4;      // pixels from the middle line to the text's base line
constexpr int ANCHOR_BELOW = 3;         // pixels from the top of the tree to the anchor's middle line
constexpr int TAB_EXTRA = 3;            // average character widths
constexpr std::size_t TEXT_MAX = 8191;  // longest text that the system draws

constexpr char ICON_ANCHOR[] = "icon anchor.tga";
constexpr char ICON_PARTIAL[] = "icon check yellow.tga";
constexpr char ICON_CHECKED[] = "icon check green.tga";

std::size_t Text_Length(const char* text) {
    return std::min(std::strlen(text), TEXT_MAX);
}

int Extent(HDC dc, const char* text, std::size_t length) {
    SIZE size = {};
    ::GetTextExtentPoint32A(dc, text, static_cast<int>(length), &size);
    return size.cx;
}

/** A font with what placing its texts needs. */
struct Font_Metrics {
    int ascent = 0;
    int average = 0;
    int widest = 0;
    Font_Metrics(HDC dc, HFONT font) {
        const Selected_Object selected(dc, font);
        TEXTMETRICA metrics = {};
        ::GetTextMetricsA(dc, &metrics);
        ascent = metrics.tmAscent;
        average = metrics.tmAveCharWidth;
        widest = metrics.tmMaxCharWidth;
    }
};

/** Draws the rows of one view. */
class Tree_Painter {
  public:
    Tree_Painter(HDC on_dc, const Tree_View& of_view, Text_Widths& of_widths, const Tree_Fonts& with_fonts)
        : dc(on_dc),
          view(of_view),
          widths(of_widths),
          fonts(with_fonts),
          measurer(on_dc, with_fonts),
          regular(on_dc, with_fonts.Get(Tree_Font::Regular)),
          bold(on_dc, with_fonts.Get(Tree_Font::Bold)),
          right(of_view.box->x + of_view.box->width) {}

    void Rows(const Tree_Records& records) {
        Tree_Lines lines = records.start.lines;
        const int first = view.First_Row();
        const int last = view.Last_Row();
        for (Tree_Walk walk(records.nb, records.list_pt, records.start.record, records.start.row);
             !walk.At_End() && walk.Row() <= last; walk.Next()) {
            const DB_List& record = records.list_pt[walk.Record()];
            lines.Pass(record);
            if (walk.Row() >= first) {
                Row(walk.Record(), record, walk.Row(), lines);
            }
        }
    }

  private:
    struct Pen_Position {
        int x;
        int y;  // the row's middle line
    };

    void Row(int index, const DB_List& record, int row, const Tree_Lines& lines) {
        const int y = view.Row_Y(row);
        const int x = view.Left() + DB_INDENTATION * record.level;
        for (int level = 0; level < std::min<int>(record.level, Tree_Lines::LEVEL_MAX); ++level) {
            if (lines.Goes_On(level)) {
                Connector(view.Left() + CONNECTOR_X + DB_INDENTATION * level, y);
            }
        }
        if ((record.flag & DB_FLAG_LAST) == 0) {
            Joint(x + CONNECTOR_X, y);
        }
        Lead(record, row, x, y);
        Icon_Draw_Image(*view.box, x + CELL, y, Prog_Name, record.icon);
        if (const char* const check = Check_Icon(record)) {
            Icon_Draw_Image(*view.box, x + 2 * CELL, y, Prog_Name, check);
        }
        Texts(index, record, {x + TREE_TEXT_START + view.space, y});
        for (int column = 0; column < record.column_nb && record.column_x != nullptr; ++column) {
            Column(index, record, column, {view.box->x + record.column_x[column] - view.horizontal, y});
        }
    }

    /** From a little below the row up to the cell of the row above. */
    void Connector(int x, int y) const {
        ::MoveToEx(dc, x, y - LEAF_HALF - CONNECTOR_BELOW, nullptr);
        ::LineTo(dc, x, y + LEAF_HALF);
    }

    /** From a row's lead down to the lines of the rows below: leads are less than a row high, and those of branches do
     *  not know whether a sibling follows. */
    void Joint(int x, int y) const {
        ::MoveToEx(dc, x, y, nullptr);
        ::LineTo(dc, x, y - LEAF_HALF - CONNECTOR_BELOW);
    }

    void Lead(const DB_List& record, int row, int x, int y) const {
        const int goes_on = (record.flag & DB_FLAG_LAST) == 0 ? 1 : 0;
        if ((record.flag & DB_FLAG_LOCKED) != 0 || (record.state & DB_STATE_NO_ACCESS) != 0) {
            Icon_Lead_No_Access(*view.box, goes_on, x, x + CELL, y - LEAF_HALF, y + LEAF_HALF);
        } else if ((record.flag & DB_FLAG_LEAF) != 0) {
            Icon_Lead_Leaf(*view.box, goes_on, x, x + CELL, y - LEAF_HALF, y + LEAF_HALF);
        } else if ((record.flag & DB_FLAG_EXPANDED) != 0) {
            Icon_Lead_Expand(*view.box, row, x, x + CELL, y - BRANCH_HALF, y + BRANCH_HALF);
        } else {
            Icon_Lead_Collapse(*view.box, row, x, x + CELL, y - BRANCH_HALF, y + BRANCH_HALF);
        }
    }

    /** None for a checked row without access: only the bare mark counts. */
    static const char* Check_Icon(const DB_List& record) {
        if (record.state == DB_STATE_PARTIAL) {
            return ICON_PARTIAL;
        }
        return record.state == DB_STATE_CHECKED && (record.flag & DB_FLAG_LOCKED) == 0 ? ICON_CHECKED : nullptr;
    }

    static COLORREF Value_Color(const DB_List& record) {
        if (record.state == DB_STATE_CHECKED) {
            return TEXT_COLOR_CHECKED;
        }
        return (record.state & DB_STATE_NO_ACCESS) != 0 ? TEXT_COLOR_NO_ACCESS : TEXT_COLOR;
    }

    void Texts(int index, const DB_List& record, Pen_Position at) {
        if (record.title != nullptr) {
            const COLORREF color = record.color != 0 ? record.color : TITLE_COLOR;
            Text(Tree_Font::Regular, color, at, record.title);
            at.x += widths.Title(index, record, measurer);
            Text(Tree_Font::Regular, color, at, TREE_SEPARATOR);
            at.x += widths.Separator(measurer);
        }
        const bool locked = (record.flag & DB_FLAG_LOCKED) != 0;
        Text(Tree_Font::Bold, locked ? TEXT_COLOR : Value_Color(record), at, record.name);
    }

    void Column(int index, const DB_List& record, int column, Pen_Position at) {
        const std::uint32_t given = record.column_color != nullptr ? record.column_color[column] : 0;
        const COLORREF color = given != 0 ? given : TITLE_COLOR;
        if (record.column_label != nullptr) {
            Text(Tree_Font::Regular, color, at, record.column_label[column]);
        }
        at.x += widths.Label(index, record, column, measurer);
        Text(Tree_Font::Regular, color, at, TREE_SEPARATOR);
        at.x += widths.Separator(measurer);
        if (record.column_value != nullptr) {
            Text(Tree_Font::Bold, Value_Color(record), at, record.column_value[column]);
        }
    }

    void Text(Tree_Font font, COLORREF color, Pen_Position at, const char* text) {
        if (text == nullptr || *text == 0) {
            return;
        }
        const Font_Metrics& metrics = font == Tree_Font::Bold ? bold : regular;
        if (at.x - metrics.widest >= right) {  // letters may reach a little to the left of where they begin
            return;
        }
        const Selected_Object selected(dc, fonts.Get(font));
        if (color != color_now) {
            ::SetTextColor(dc, color);
            color_now = color;
        }
        const int top = at.y - BASE_LINE_BELOW + metrics.ascent;  // texts hang from their upper edge
        try {
            Pieces(text, at.x, top, TAB_EXTRA * metrics.average);
        } catch (const std::bad_alloc&) {
            return;  // a row without its text is still a row
        }
    }

    /** A text in pieces between its tabs, which leave room and draw nothing. */
    void Pieces(const char* text, int x, int top, int tab_extra) {
        const std::size_t length = Text_Length(text);
        if (std::memchr(text, '\t', length) == nullptr && text[length] == 0) {
            Piece(text, length, x, top);
            return;
        }
        std::string piece;
        for (std::size_t from = 0; from < length; from += piece.size() + 1) {
            piece.assign(text + from, std::find(text + from, text + length, '\t'));
            Piece(piece.c_str(), piece.size(), x, top);
            x += Extent(dc, piece.c_str(), piece.size()) + Extent(dc, "\t", 1) + tab_extra;
        }
    }

    void Piece(const char* text, std::size_t length, int x, int top) {
        wide.resize(std::max(wide.size(), length + 1));
        const int nb = Char_2_Wchar(text, wide.data(), static_cast<int>(wide.size()));
        if (nb > 0) {
            const void* const letters = wide.data();
            ::ExtTextOutW(dc, x, top, 0, nullptr, static_cast<const WCHAR*>(letters), static_cast<UINT>(nb), nullptr);
        }
    }

    HDC dc;
    const Tree_View& view;
    Text_Widths& widths;
    Tree_Fonts fonts;
    Gdi_Text_Measurer measurer;
    Font_Metrics regular;
    Font_Metrics bold;
    int right;                         // first column beyond the box
    COLORREF color_now = CLR_INVALID;  // text colour of the device context
    std::vector<wchar_t> wide;
};

/** The outline of a rectangle; every pixel once, so that drawing it again takes it away. */
void Outline(HDC dc, const int (&band)[4]) {
    const auto [left, bottom, right, top] = band;
    ::MoveToEx(dc, left, bottom, nullptr);
    if (left == right || bottom == top) {  // a line would be drawn forth and back
        ::LineTo(dc, right, top);
        return;
    }
    ::LineTo(dc, right, bottom);
    ::LineTo(dc, right, top);
    ::LineTo(dc, left, top);
    ::LineTo(dc, left, bottom);
}

}  // namespace

Gdi_Region Tree_Region(HDC dc, const Boxs& box) {
    if (!Has_Pixels(box)) {
        const RECT none = {};
        return Gdi_Region(::CreateRectRgnIndirect(&none));
    }
    POINT corners[2] = {{box.x, box.y}, {box.x + box.width - 1, box.y + box.height - 1}};
    ::LPtoDP(dc, corners, 2);
    const RECT rect = {std::min(corners[0].x, corners[1].x), std::min(corners[0].y, corners[1].y),
                       std::max(corners[0].x, corners[1].x) + 1, std::max(corners[0].y, corners[1].y) + 1};
    return Gdi_Region(::CreateRectRgnIndirect(&rect));
}

Tree_Fonts Tree_Fonts::For(const Boxs& box) {
    static Gdi_Font kept_regular;
    static Gdi_Font kept_bold;
    const int size = box.font_scale > 0 ? box.font_scale : TREE_FONT_HEIGHT;
    const auto get = [&](Gdi_Font& kept, const char* style) {
        if (!kept) {
            kept = Gdi_Font(Y_Create_Font(box.window, box.font_name, style, size));
        }
        return kept ? kept.Get() : static_cast<HFONT>(::GetStockObject(SYSTEM_FONT));
    };
    Tree_Fonts fonts;
    fonts.bold = get(kept_bold, "bold");
    fonts.regular = get(kept_regular, "");
    return fonts;
}

int Gdi_Text_Measurer::Width(Tree_Font font, const char* text) {
    if (text == nullptr || *text == 0) {
        return 0;
    }
    const std::size_t length = Text_Length(text);
    const auto tab_nb = static_cast<int>(std::count(text, text + length, '\t'));
    const int extra = tab_nb > 0 ? tab_nb * TAB_EXTRA * Font_Metrics(dc, fonts.Get(font)).average : 0;
    const Selected_Object selected(dc, fonts.Get(font));
    return Extent(dc, text, length) + extra;
}

void Tree_Paint(HDC dc, const Tree_View& view, const Tree_Records& records, Text_Widths& widths) {
    const Boxs& box = *view.box;
    if (!Has_Pixels(box)) {
        return;
    }
    const Gdi_Region region = Tree_Region(dc, box);
    const Clip_Guard clip(dc, region.Get());
    RECT ground;
    ::SetRect(&ground, box.x - 1, box.y - 1, box.x + box.width + 1, box.y + box.height + 1);
    const Gdi_Brush brush(::CreateSolidBrush(static_cast<COLORREF>(box.color.get())));
    ::FillRect(dc, &ground, brush.Get());
    if (records.list_pt == nullptr) {
        return;
    }
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, LINE_COLOR));
    const Selected_Object pen_selected(dc, pen.Get());
    ::SetBkMode(dc, TRANSPARENT);
    Icon_Draw_Image(box, view.Left(), view.Top() - ANCHOR_BELOW, Prog_Name, ICON_ANCHOR);
    Tree_Painter(dc, view, widths, Tree_Fonts::For(box)).Rows(records);
}

bool Tree_Band_Paint(HDC dc, const Boxs& box, const int (&erase)[4], bool erases, const int (&band)[4]) {
    const Gdi_Pen pen(Has_Pixels(box) ? ::CreatePen(PS_SOLID, 1, BAND_COLOR) : nullptr);
    if (!pen) {
        return false;
    }
    const Gdi_Region region = Tree_Region(dc, box);
    const Clip_Guard clip(dc, region.Get());
    const Rop_Guard inverting(dc, R2_XORPEN);
    const Selected_Object pen_selected(dc, pen.Get());
    if (erases) {
        Outline(dc, erase);
    }
    Outline(dc, band);
    return true;
}

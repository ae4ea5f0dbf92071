#include "database/tool_db_edit_paint.h"

#include <algorithm>
#include <cstdio>

#include "database/host_classes.h"
#include "database/tool_db_edit.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr COLORREF CONNECTOR_COLOR = 0x808080;  // 0x00BBGGRR
constexpr COLORREF DRAG_COLOR = 0x808080;       // inverts the high bit of every component: seen on any ground
constexpr COLORREF LOCKED_COLOR = 255;
constexpr int STROKE_REACH = 4;  // pixels from a toggle's middle
constexpr int MARGIN_LEAST = 2;  // pixels around the name
constexpr int MARGIN_LEFT_LEAST = 6;
constexpr int ICON_RIGHT = 28;  // pixels from the node's right edge to the icon's left edge
constexpr int ICON_BELOW = 11;  // pixels from the node's upper edge to the icon's middle line
constexpr int NODE_REACH = 10;  // pixels that handles stand out of a node
constexpr std::size_t ICON_NAME_SIZE = 512;

// Classes with these numbers in the low bits of their code are the plain ones.
constexpr int CLASS_NUMBER = 0xFFF;
constexpr int CLASS_NUMBER_FIRST = 64;
constexpr int CLASS_NUMBER_LAST = 4094;

struct Tint {
    unsigned char red, green, blue;
};
constexpr Tint TINT_HIGHLIGHTED = {230, 100, 100};
constexpr Tint TINT_PLAIN = {170, 170, 170};
constexpr Tint TINT_SPECIAL = {130, 180, 180};
constexpr Tint NAME_COLOR = {100, 100, 0};

Cached_Variable<std::int16_t>& Space_Variable() {
    static Cached_Variable<std::int16_t> variable("$INTERFACE_SPACE_DIM");
    return variable;
}

bool Is_Icon_Path_Known() {
    static Cached_Variable<const char*> variable("$DEFAULT_ICON_PATH");
    return variable.Value_Or(nullptr) != nullptr;
}

/** The editor's fonts: created with the first node that is drawn, and kept. Null where that failed: the library's own.
 */
struct Editor_Fonts {
    HFONT bold = nullptr;
    HFONT regular = nullptr;
    static Editor_Fonts For(const Boxs& box) {
        static Gdi_Font kept_bold;
        static Gdi_Font kept_regular;
        const int size = box.font_scale > 0 ? box.font_scale : TREE_FONT_HEIGHT;
        if (!kept_bold) {
            kept_bold = Gdi_Font(Y_Create_Font(box.window, box.font_name, "bold", size));
        }
        if (!kept_regular) {
            kept_regular = Gdi_Font(Y_Create_Font(box.window, box.font_name, "", size));
        }
        return {kept_bold.Get(), kept_regular.Get()};
    }
};

Tint Icon_Tint(const Quorel& object, bool highlighted) {
    if (highlighted) {
        return TINT_HIGHLIGHTED;
    }
    const int number = object.Class_A_Get() & CLASS_NUMBER;
    return number < CLASS_NUMBER_FIRST || number > CLASS_NUMBER_LAST ? TINT_PLAIN : TINT_SPECIAL;
}

const char* Text_Or_Empty(const char* text) {
    return text != nullptr ? text : "";
}

/** A line whose both ends are painted. */
void Stroke(HDC dc, int x0, int y0, int x1, int y1) {
    ::MoveToEx(dc, x0, y0, nullptr);
    ::LineTo(dc, x1, y1);
    ::LineTo(dc, x0, y0);
}

/** Puts a device context to device units, so that a circle is round about its middle pixel whatever the axis. */
POINT Device_Units(HDC dc, int x, int y) {
    POINT middle = {x, y};
    ::LPtoDP(dc, &middle, 1);
    ::SetMapMode(dc, MM_TEXT);
    ::SetWindowOrgEx(dc, 0, 0, nullptr);
    ::SetViewportOrgEx(dc, 0, 0, nullptr);
    return middle;
}

/** Collects line pairs and draws many at a time. */
class Line_Batch {
  public:
    explicit Line_Batch(HDC on_dc) : dc(on_dc) { std::fill(std::begin(count), std::end(count), DWORD{2}); }
    ~Line_Batch() { Flush(); }
    Line_Batch(const Line_Batch&) = delete;
    Line_Batch& operator=(const Line_Batch&) = delete;
    void Add(const POINT& from, const POINT& to) {
        if (nb == BATCH_LINES) {
            Flush();
        }
        point[2 * nb] = from;
        point[2 * nb + 1] = to;
        ++nb;
    }

  private:
    static constexpr DWORD BATCH_LINES = 64;
    void Flush() {
        if (nb > 0) {
            ::PolyPolyline(dc, point, count, nb);
            nb = 0;
        }
    }
    HDC dc;
    DWORD nb = 0;
    POINT point[2 * BATCH_LINES];
    DWORD count[BATCH_LINES];
};

}  // namespace

Quorel* Edit_Object_Of(int mode, const DB_List& record) {
    Quorel* object = nullptr;
    With_Classes(mode, [&](auto classes) { object = static_cast<typename decltype(classes)::Object*>(record.object); });
    return object;
}

Tree_View Edit_View_Of(const Boxs& box, const Sliders& horizontal, const Sliders& vertical) {
    return {&box, Tree_Pixels(horizontal.value), Tree_Pixels(vertical.value), Space_Variable().Value_Or(0)};
}

int Edit_Toggle_Kind(const DB_List& row) {
    if ((row.flag & DB_FLAG_LOCKED) != 0) {
        return DB_EXPAND_LOCKED;
    }
    return (row.flag & DB_FLAG_EXPANDED) != 0 ? DB_EXPAND_EXPANDED : DB_EXPAND_COLLAPSED;
}

Edit_Painter::Edit_Painter(HDC on_dc, const Tree_View& of_view)
    : dc(on_dc), view(of_view), region(Tree_Region(on_dc, *of_view.box)), clip(on_dc, region.Get()) {}

/** Whether a rectangle of the tree reaches into the box. Positions are far beyond 16 bits in large trees: everything
 *  outside is left out before a widget is made. */
bool Edit_Painter::Is_Seen(const DB_Tree_Point& from, const DB_Tree_Point& to) const {
    const POINT a = Place_Of(from);
    const POINT b = Place_Of(to);
    const Boxs& box = *view.box;
    return Has_Pixels(box) && std::max(a.x, b.x) >= box.x && std::min(a.x, b.x) < box.x + box.width &&
           std::max(a.y, b.y) >= box.y && std::min(a.y, b.y) < box.y + box.height;
}

bool Edit_Painter::Is_Node_Seen(const DB_List& row) const {
    const DB_Tree_Point cell = Edit_Cell(row);
    return row.row != DB_ROW_NONE &&
           Is_Seen({cell.x - NODE_REACH, cell.y}, {cell.x + EDIT_TOGGLE_X + NODE_REACH, cell.y + EDIT_CELL_HEIGHT});
}

POINT Edit_Painter::Place_Of(const DB_Tree_Point& point) const {
    return {view.Left() + point.x, view.Top() - point.y};
}

void Edit_Painter::Diagram(int mode, int nb, const DB_List* list_pt, const Edit_Marks& marks) const {
    const Boxs& box = *view.box;
    RECT ground;
    ::SetRect(&ground, box.x, box.y, box.x + box.width, box.y + box.height);
    const Gdi_Brush brush(::CreateSolidBrush(static_cast<COLORREF>(box.color.get())));
    ::FillRect(dc, &ground, brush.Get());
    Lines(nb, list_pt);
    const int row_end = (view.vertical + box.height) / EDIT_CELL_HEIGHT + 1;
    for (Edit_Walk walk(nb, list_pt); !walk.At_End() && walk.Row() < std::min<int>(row_end, DB_ROW_NONE); walk.Next()) {
        const Quorel* const object = Edit_Object_Of(mode, walk.Node());
        if (object == nullptr || !Is_Node_Seen(walk.Node())) {
            continue;
        }
        Node({walk.Record(), &walk.Node(), object}, marks.Is_Node_Highlighted(walk.Record()), marks);
        if (Has_Edit_Zone(walk.Record(), walk.Node(), Edit_Zone::Toggle)) {
            const int code = Edit_Code(walk.Record(), Edit_Zone::Toggle);
            Toggle(walk.Node(), Fill_Of(code, marks), Edit_Toggle_Kind(walk.Node()));
        }
    }
}

void Edit_Painter::Lines(int nb, const DB_List* list_pt) const {
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, CONNECTOR_COLOR));
    const Selected_Object pen_selected(dc, pen.Get());
    Edit_Lines lines;
    for (Edit_Walk walk(nb, list_pt); !walk.At_End() && walk.Row() < DB_ROW_NONE; walk.Next()) {
        Edit_Line line[Edit_Lines::PER_NODE];
        const int line_nb = lines.Of(walk, line);
        for (int i = 0; i < line_nb; ++i) {
            if (Is_Seen(line[i].from, line[i].to)) {
                const POINT from = Place_Of(line[i].from);
                const POINT to = Place_Of(line[i].to);
                ::MoveToEx(dc, from.x, from.y, nullptr);
                ::LineTo(dc, to.x, to.y);
            }
        }
    }
}

void Edit_Painter::Node(const Edit_Node& node, bool highlighted, const Edit_Marks& marks) const {
    if (!Is_Node_Seen(*node.row)) {
        return;
    }
    Box(node, highlighted);
    Handle(node, Edit_Zone::Parent_Handle, marks);
    Handle(node, Edit_Zone::Children_Handle, marks);
}

void Edit_Painter::Box(const Edit_Node& node, bool highlighted) const {
    const DB_Tree_Point cell = Edit_Cell(*node.row);
    const POINT corner = Place_Of({cell.x, cell.y + EDIT_CELL_HEIGHT});
    const Editor_Fonts fonts = Editor_Fonts::For(*view.box);
    const char* const title = Text_Or_Empty(node.object->Title_Get());

    Boxs body;
    body.Take_Look(*view.box);
    body.style = STYLE_FRAMED_BOX;
    body.x = static_cast<short>(corner.x);
    body.y = static_cast<short>(corner.y);
    body.width = EDIT_NODE_WIDTH;
    body.height = EDIT_NODE_HEIGHT;
    body.font = fonts.bold;
    body.Set_Name("  %s", title);
    body.Init(view.box->window);
    body.Draw();

    const int margin = std::max<int>(view.box->border, MARGIN_LEAST);
    const int left = std::max(2 * margin, MARGIN_LEFT_LEAST);
    Labels name;
    name.Take_Look(*view.box);
    name.style = STYLE_FLAT;
    name.x = static_cast<short>(body.x + left);
    name.y = static_cast<short>(body.y + margin);
    name.width = static_cast<short>(EDIT_NODE_WIDTH - left - margin);
    name.height = static_cast<short>(EDIT_NODE_HEIGHT / 2 - margin);
    name.font = fonts.regular;
    name.Set_Color(NAME_COLOR.red, NAME_COLOR.green, NAME_COLOR.blue);
    name.Set_Name("  %s", Text_Or_Empty(node.object->Name_Get()));
    name.Init(view.box->window);
    name.Draw();

    if (*title != 0 && Is_Icon_Path_Known()) {
        char file[ICON_NAME_SIZE];
        std::snprintf(file, sizeof file, "class %s.tga", title);
        const Tint tint = Icon_Tint(*node.object, highlighted);
        body.Icon(file, tint.red, tint.green, tint.blue, static_cast<short>(body.x + EDIT_NODE_WIDTH - ICON_RIGHT),
                  static_cast<short>(body.y + EDIT_NODE_HEIGHT - ICON_BELOW));
    }
}

COLORREF Edit_Painter::Fill_Of(int code, const Edit_Marks& marks) const {
    if (marks.Is_Dragged(code)) {
        return EDIT_DRAGGED_COLOR;
    }
    return marks.highlighted == code ? EDIT_HIGHLIGHT_COLOR : static_cast<COLORREF>(view.box->color.get());
}

void Edit_Painter::Handle(const Edit_Node& node, Edit_Zone zone, const Edit_Marks& marks) const {
    if (Has_Edit_Zone(node.record, *node.row, zone)) {
        const POINT at = Place_Of(Edit_Zone_Point(*node.row, zone));
        Circle(at.x, at.y, EDIT_HANDLE_RADIUS, EDIT_OUTLINE_COLOR, Fill_Of(Edit_Code(node.record, zone), marks));
    }
}

void Edit_Painter::Circle(int x, int y, int radius, COLORREF pen, COLORREF fill) const {
    const Saved_DC saved(dc);
    const Gdi_Pen outline(::CreatePen(PS_SOLID, 1, pen));
    const Gdi_Brush brush(::CreateSolidBrush(fill));
    const Selected_Object pen_selected(dc, outline.Get());
    const Selected_Object brush_selected(dc, brush.Get());
    const POINT middle = Device_Units(dc, x, y);
    ::Ellipse(dc, middle.x - radius, middle.y - radius, middle.x + radius + 1, middle.y + radius + 1);
}

void Edit_Painter::Toggle(const DB_List& row, COLORREF fill, int kind) const {
    const POINT at = Place_Of(Edit_Zone_Point(row, Edit_Zone::Toggle));
    const COLORREF color = kind == DB_EXPAND_LOCKED ? LOCKED_COLOR : EDIT_OUTLINE_COLOR;
    Circle(at.x, at.y, EDIT_TOGGLE_RADIUS, color, fill);
    const Saved_DC saved(dc);
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, color));
    const Selected_Object pen_selected(dc, pen.Get());
    const POINT middle = Device_Units(dc, at.x, at.y);
    Stroke(dc, middle.x - STROKE_REACH, middle.y, middle.x + STROKE_REACH, middle.y);
    if (kind == DB_EXPAND_COLLAPSED) {
        Stroke(dc, middle.x, middle.y - STROKE_REACH, middle.x, middle.y + STROKE_REACH);
    }
}

void Edit_Painter::Drag_Lines(int nb, const DB_List* list_pt, const std::vector<int>& codes,
                              const DB_Tree_Point& to) const {
    const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, DRAG_COLOR));
    const Selected_Object pen_selected(dc, pen.Get());
    const Rop_Guard inverting(dc, R2_XORPEN);
    Line_Batch batch(dc);
    for (const int code : codes) {
        const int record = Edit_Code_Record(code);
        if (record < nb && list_pt[record].row != DB_ROW_NONE) {
            batch.Add(Place_Of(Edit_Zone_Point(list_pt[record], Edit_Zone::Parent_Handle)), Place_Of(to));
        }
    }
}

void DB_Draw_Circle(Boxs* box, int x, int y, int radius, std::uint32_t pen, std::uint32_t fill) {
    const Drawing_DC dc(box->window, "tool_db_edit::DB_Draw_Circle");
    if (dc) {
        Edit_Painter(dc.Get(), {box}).Circle(x, y, radius, pen, fill);
    }
}

void DB_Draw_Expand(Boxs* box, const DB_List* record, Sliders* horizontal, Sliders* vertical, std::uint32_t fill,
                    int kind) {
    const Drawing_DC dc(box->window, "tool_db_edit::DB_Draw_Expand");
    if (dc) {
        Edit_Painter(dc.Get(), Edit_View_Of(*box, *horizontal, *vertical)).Toggle(*record, fill, kind);
    }
}

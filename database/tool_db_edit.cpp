#include "database/tool_db_edit.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "database/class_surgery.h"
#include "database/edit_diagram.h"
#include "database/host_classes.h"
#include "database/tool_db_dialog_rename.h"
#include "database/tool_db_edit_paint.h"
#include "database/tool_db_fct.h"
#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* EDIT_SOURCE = KIT_SOURCE_ROOT "/database/tool_db_edit.cpp";
constexpr const char* MEMORY_ERROR = "line %-4d of %s \nmemory error in new";

constexpr int CHANGED_BITS = 0x50;  // with the group and mask below: this object's structure or name changed
constexpr int CHANGED_GROUP = 8;
constexpr int CHANGED_MASK = 0x10000000;
constexpr unsigned __int64 REDRAW_ALL = 0x3FFF;  // every image window
constexpr unsigned __int64 REDRAW_ALL_3D = 0x3FFF0000;

constexpr int RENAME_SAVED = 1;

// What the image windows are asked for: 3D classes have bits of their own, and hosts tell them apart.
template <class Classes>
constexpr unsigned __int64 Redraw_Of() {
    const bool is_3d = std::is_same_v<typename Classes::Object, Quorel_3D>;
    return is_3d ? REDRAW_ALL_3D : REDRAW_ALL;
}

bool Has_Dimension(int mode) {
    return With_Classes(mode, [](auto) {});
}

template <class Classes>
typename Classes::Object* Object_Of(const DB_List& record) {
    return static_cast<typename Classes::Object*>(record.object);
}

void Mark_Changed(Quorel& object) {
    object.Flag_Set_On(CHANGED_BITS, CHANGED_GROUP, CHANGED_MASK);
}

bool Is_Alive(const Panel_Watch* panel) {
    return panel == nullptr || panel->Is_Alive();
}

/** The host may have the records built anew, or end the panel, before this returns. @return false when it ended */
template <class Classes>
bool Tell_Host(const Panel_Watch* panel) {
    Fct_Update(UPDATE_STRUCTURE | Classes::LEVEL, nullptr, nullptr, nullptr);
    if (!Is_Alive(panel)) {
        return false;
    }
    Fct_Redraw(Redraw_Of<Classes>(), nullptr, nullptr, nullptr);
    return Is_Alive(panel);
}

// ---- state

/** The editor's state, one for all panels; the drag itself is in db_drag. It belongs to one list of records. */
struct Editor {
    const DB_List* owner = nullptr;  ///< the records that the codes are of
    Edit_Marks marks;
    const Boxs* dragged_in = nullptr;  ///< where the drag of the marked nodes began; compared only
    bool lines_shown = false;          ///< drag feedback is on screen ...
    DB_Tree_Point lines_to;            ///< ... to this point
};
Editor editor;

/** The marks of a list; none when the codes are of another list. */
const Edit_Marks& Marks_Of(const DB_List* list_pt) {
    static const Edit_Marks none;
    return editor.owner == list_pt ? editor.marks : none;
}

/** Whether a drag goes on that began in this box with these records. */
bool Is_Own_Drag(const Boxs* box, const DB_List* list_pt) {
    return db_drag.Is_Of(box) && editor.owner == list_pt;
}

/** A drag that was ended elsewhere, by a release outside the diagram, moves nothing: its nodes are dragged no longer.
 *  @return whether there were any */
bool Ended_Drag_Forget(const DB_List* list_pt) {
    if (editor.owner != list_pt || db_drag.Is_Of(editor.dragged_in) || editor.marks.dragged.empty()) {
        return false;
    }
    editor.marks.dragged.clear();
    return true;
}

/** Makes the codes those of this list. */
void Take_Over(const DB_List* list_pt) {
    if (editor.owner != list_pt) {
        editor = {};
        editor.owner = list_pt;
    }
}

/** What the operations work on. */
struct Edit_Stage {
    int mode;
    Boxs* box;
    int nb;
    DB_List* list_pt;
    Sliders* horizontal;
    Sliders* vertical;
    const Panel_Watch* panel = nullptr;  ///< whose box and sliders these are; null: they outlive the operation

    Tree_View View() const { return Edit_View_Of(*box, *horizontal, *vertical); }
    bool Has(int record) const { return list_pt != nullptr && record >= 0 && record < nb; }
};

/** @return false without a device context */
bool Locate(const Edit_Stage& stage, Edit_Hit* hit) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Locate()");
    DB_Tree_Point at;
    if (!DB_List_Pointer(*stage.box, *stage.horizontal, *stage.vertical, "tool_db_edit::DB_Edit_Locate", &at)) {
        return false;
    }
    *hit = Edit_Hit_At(stage.nb, stage.list_pt, at);
    return true;
}

// ---- drawing

/** Draws the nodes of these zones that are in view. */
void Nodes_Draw(const Edit_Stage& stage, const int* code, std::size_t code_nb, bool highlighted) {
    const Drawing_DC dc(stage.box->window, "tool_db_edit::DB_Edit_Motion");
    if (!dc) {
        return;
    }
    const Edit_Painter painter(dc.Get(), stage.View());
    for (std::size_t i = 0; i < code_nb; ++i) {
        const int record = Edit_Code_Record(code[i]);
        const Quorel* const object = Edit_Object_Of(stage.mode, stage.list_pt[record]);
        if (object != nullptr) {
            painter.Node({record, &stage.list_pt[record], object}, highlighted, editor.marks);
        }
    }
}

/** Draws one zone, a body with its handles, in the look of the pointer being over it or not. */
void Zone_Draw(const Edit_Stage& stage, int code, bool highlighted) {
    const int record = Edit_Code_Record(code);
    if (!stage.Has(record) || stage.list_pt[record].row == DB_ROW_NONE || !Has_Dimension(stage.mode)) {
        return;
    }
    const DB_List& row = stage.list_pt[record];
    const Edit_Zone zone = Edit_Code_Zone(code);
    const COLORREF fill = highlighted ? EDIT_HIGHLIGHT_COLOR : static_cast<COLORREF>(stage.box->color.get());
    if (zone == Edit_Zone::Body) {
        Nodes_Draw(stage, &code, 1, highlighted);
    } else if (zone == Edit_Zone::Toggle) {
        DB_Draw_Expand(stage.box, &row, stage.horizontal, stage.vertical, fill, Edit_Toggle_Kind(row));
    } else {
        const Tree_View view = stage.View();
        const DB_Tree_Point at = Edit_Zone_Point(row, zone);
        DB_Draw_Circle(stage.box, view.Left() + at.x, view.Top() - at.y, EDIT_HANDLE_RADIUS, EDIT_OUTLINE_COLOR, fill);
    }
}

void Stage_Draw(const Edit_Stage& stage) {
    DB_Edit_Draw(stage.mode, stage.box, stage.nb, stage.list_pt, stage.horizontal, stage.vertical);
}

void Lines_Take_Away(const Edit_Stage& stage) {
    if (!editor.lines_shown || editor.owner != stage.list_pt || editor.dragged_in != stage.box) {
        return;
    }
    const Drawing_DC dc(stage.box->window, "tool_db_edit::DB_Edit_Drag");
    if (dc) {
        Edit_Painter(dc.Get(), stage.View()).Drag_Lines(stage.nb, stage.list_pt, editor.marks.dragged, editor.lines_to);
        editor.lines_shown = false;
    }
}

// ---- clicks

/** Begins a drag of the nodes whose parent handles are `codes`, ascending. */
void Drag_Begin(const Edit_Stage& stage, std::vector<int>&& codes) {
    Lines_Take_Away(stage);
    Take_Over(stage.list_pt);
    editor.marks.dragged = std::move(codes);
    editor.lines_shown = false;
    editor.dragged_in = stage.box;
    db_drag.Begin(stage.box);
    Nodes_Draw(stage, editor.marks.dragged.data(), editor.marks.dragged.size(), true);
}

/** The parent handles of a record's children. Record 0 names itself as its parent and is no child. */
std::vector<int> Children_Codes(const Edit_Stage& stage, int parent) {
    std::vector<int> codes;
    const int level = stage.list_pt[parent].level;
    for (int i = parent + 1; i < stage.nb && stage.list_pt[i].level > level; ++i) {
        if (stage.list_pt[i].parent == static_cast<std::uint16_t>(parent)) {
            codes.push_back(Edit_Code(i, Edit_Zone::Parent_Handle));
        }
    }
    return codes;
}

void Children_Toggle(const Edit_Stage& stage, int record) {
    stage.list_pt[record].flag ^= DB_FLAG_EXPANDED;
    Stage_Draw(stage);
    for (Sliders* slider : {stage.horizontal, stage.vertical}) {
        slider->Clear();
        slider->Draw();
    }
}

/** Tells, after the host was called, whether a class object is still there: the host may have taken it away, and then
 *  it may be no more. Asked of the host's tree; one that was not there before cannot be asked for and counts as there.
 */
template <class Classes>
class Object_Watch {
  public:
    using Object = typename Classes::Object;
    explicit Object_Watch(Object* watched) : object(watched), known(Is_In_Tree(watched)) {}
    Object* Get() const { return object; }
    bool Is_There() const { return !known || Is_In_Tree(object); }

  private:
    static bool Is_In_Tree(const Object* wanted) {
        return Class_Is_Below<Object>(Host_Pointer<Object>(Classes::ROOT), wanted, DB_LEVEL_MOST);
    }
    Object* object;
    bool known;
};

void Rename(const Edit_Stage& stage, const DB_List& record) {
    With_Classes(stage.mode, [&](auto classes) {
        using Classes = decltype(classes);
        auto* const object = Object_Of<Classes>(record);
        if (object == nullptr) {
            return;
        }
        char before[DIALOG_RENAME_SIZE] = {};
        char buffer[DIALOG_RENAME_SIZE] = {};
        const bool whole = Dialog_Text_Take(object->Name_Get(), before);
        std::memcpy(buffer, before, sizeof buffer);
        const Object_Watch<Classes> watch(object);
        if (Dialog_Rename(buffer) != RENAME_SAVED || !Is_Alive(stage.panel) || !watch.Is_There()) {
            return;
        }
        if (!whole && std::strcmp(buffer, before) == 0) {
            return;  // nothing was typed: the name keeps the part that did not fit into the dialog
        }
        object->Name_Set(buffer);
        Mark_Changed(*object);
        Tell_Host<Classes>(stage.panel);
    });
}

void Press(const Edit_Stage& stage, int up_down, const Edit_Hit& hit) {
    const int record = Edit_Code_Record(hit.code);
    if (!hit.on_node || !stage.Has(record)) {
        return;
    }
    switch (Edit_Code_Zone(hit.code)) {
        case Edit_Zone::Parent_Handle:
            Drag_Begin(stage, {hit.code});
            break;
        case Edit_Zone::Children_Handle:
            Drag_Begin(stage, Children_Codes(stage, record));
            break;
        case Edit_Zone::Toggle:
            Children_Toggle(stage, record);
            break;
        case Edit_Zone::Body:
            if (up_down == (MOUSE_PRESS | MOUSE_RIGHT)) {
                Rename(stage, stage.list_pt[record]);
            }
            break;
    }
}

/** Moves the objects of the dragged nodes below the object of a record. All objects are taken from the records before
 *  the first one is moved: then the host may build the records anew. It may also end objects that are still to be
 *  moved: those are left out. @return false without memory: nothing was moved */
template <class Classes>
bool Drop(const Edit_Stage& stage, const std::vector<int>& codes, int record) {
    const Object_Watch<Classes> target(Object_Of<Classes>(stage.list_pt[record]));
    std::vector<Object_Watch<Classes>> moved;
    try {
        moved.reserve(codes.size());
    } catch (const std::bad_alloc&) {
        Error_Fct(hwnd, MESSAGE_MEMORY, MEMORY_ERROR, __LINE__, EDIT_SOURCE);
        return false;
    }
    for (const int code : codes) {
        if (stage.Has(Edit_Code_Record(code))) {
            moved.emplace_back(Object_Of<Classes>(stage.list_pt[Edit_Code_Record(code)]));
        }
    }
    bool called = false;
    for (const Object_Watch<Classes>& object : moved) {
        if (object.Get() == nullptr || target.Get() == nullptr ||
            (called && !(object.Is_There() && target.Is_There())) || !Class_Append(*object.Get(), *target.Get())) {
            continue;
        }
        Mark_Changed(*target.Get());
        called = true;
        if (!Tell_Host<Classes>(stage.panel)) {
            break;  // with the panel the objects may have ended
        }
    }
    return true;
}

/** @return the result of the click */
int Release(const Edit_Stage& stage, const Edit_Hit& hit) {
    if (!Is_Own_Drag(stage.box, stage.list_pt)) {
        return 1;
    }
    db_drag.active = false;
    Lines_Take_Away(stage);
    const std::vector<int> codes = std::move(editor.marks.dragged);
    editor.marks.dragged.clear();
    const int record = Edit_Code_Record(hit.code);
    bool dropped = false;
    if (!codes.empty() && hit.on_node && Edit_Code_Zone(hit.code) == Edit_Zone::Children_Handle && stage.Has(record)) {
        With_Classes(stage.mode, [&](auto classes) { dropped = Drop<decltype(classes)>(stage, codes, record); });
    }
    if (!dropped && Is_Alive(stage.panel)) {
        Stage_Draw(stage);  // the dragged nodes look as before
    }
    return dropped ? 2 : 1;
}

// ---- delete

/** Takes the object of a record out of the tree. @return whether it did */
template <class Classes>
bool Take_Out(const Edit_Stage& stage, const DB_List& record) {
    auto* const object = Object_Of<Classes>(record);
    if (object == nullptr || !Class_Take_Out(*object, [](Quorel& parent) { Mark_Changed(parent); })) {
        return false;
    }
    Tell_Host<Classes>(stage.panel);
    return true;
}

// ---- motion

/** @return whether the pointer came to another zone */
bool Hover(const Edit_Stage& stage, int code) {
    if (editor.owner != stage.list_pt && editor.dragged_in != nullptr && db_drag.Is_Of(editor.dragged_in)) {
        return false;  // the codes are those of a drag that goes on in another panel
    }
    Take_Over(stage.list_pt);
    Edit_Marks& marks = editor.marks;
    const int before = marks.highlighted;
    if (code == before) {
        return false;
    }
    marks.highlighted = code;
    for (const auto& [zone, highlighted] : {std::pair{before, false}, std::pair{code, true}}) {
        if (zone != 0 && !marks.Is_Dragged(zone)) {
            Zone_Draw(stage, zone, highlighted);
        }
    }
    return true;
}

}  // namespace

// ---- operations

int DB_Edit_Draw(int mode, Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    const Drawing_DC dc(box->window, "tool_db_edit::DB_Edit_Draw");
    if (!dc) {
        return 0;
    }
    Ended_Drag_Forget(list_pt);
    const bool has_nodes = Has_Dimension(mode) && list_pt != nullptr && nb > 0;
    const int shown_nb = has_nodes ? nb : 0;
    const Edit_Extent extent = Edit_Rows_Assign(shown_nb, list_pt);
    // The sliders before the drawing: a diagram that has become small is drawn at its new position at once.
    DB_Slider_Fit(*vertical, Edit_Height_Extent(extent.row_nb, box->height));
    const int space = Edit_View_Of(*box, *horizontal, *vertical).space;
    DB_Slider_Fit(*horizontal, Edit_Width_Extent(extent.level_nb, space, box->width));
    Edit_Painter(dc.Get(), Edit_View_Of(*box, *horizontal, *vertical))
        .Diagram(mode, shown_nb, list_pt, Marks_Of(list_pt));
    if (editor.owner == list_pt && editor.dragged_in == box) {
        DB_Edit_Drag(nullptr, nb, list_pt, horizontal, vertical);
    }
    return has_nodes ? 1 : 0;
}

int DB_Edit_Locate(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    Edit_Hit hit;
    Locate({0, box, nb, list_pt, horizontal, vertical}, &hit);
    return hit.code;
}

int DB_Edit_Click_DB(int mode, Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical,
                     const Panel_Watch* panel) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Click_DB(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    const Edit_Stage stage = {mode, box, nb, list_pt, horizontal, vertical, panel};
    Edit_Hit hit;
    if (!Locate(stage, &hit) || !Has_Dimension(mode)) {
        return 1;
    }
    if ((up_down & MOUSE_PRESS) == 0) {
        return Release(stage, hit);
    }
    try {
        Press(stage, up_down, hit);
    } catch (const std::bad_alloc&) {
        Error_Fct(hwnd, MESSAGE_MEMORY, MEMORY_ERROR, __LINE__, EDIT_SOURCE);  // no drag begins
    }
    return 1;
}

int DB_Edit_Key_DB(int mode, Boxs* box, int key, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical,
                   const Panel_Watch* panel) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Key_DB(key=0x%08x)", static_cast<unsigned int>(key));
    if ((key & DB_KEY_MASK) != KEY_DELETE || box->Select(MOUSE_ASK) == 0) {
        return 0;  // outside the box no node is seen under the pointer
    }
    const Edit_Stage stage = {mode, box, nb, list_pt, horizontal, vertical, panel};
    Edit_Hit hit;
    const bool located = Locate(stage, &hit);
    const int record = Edit_Code_Record(hit.code);
    // Record 0 is the root, whatever its object hangs on in the host's tree.
    if (!located || !hit.on_node || Edit_Code_Zone(hit.code) != Edit_Zone::Body || record == 0 || !stage.Has(record)) {
        return 0;
    }
    bool done = false;
    With_Classes(mode, [&](auto classes) { done = Take_Out<decltype(classes)>(stage, list_pt[record]); });
    return done ? 1 : 0;
}

int DB_Edit_Motion_DB(int mode, Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal,
                      Sliders* vertical) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Motion_DB(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    const Edit_Stage stage = {mode, box, nb, list_pt, horizontal, vertical};
    if (up_down == 0) {
        Lines_Take_Away(stage);
        if (Ended_Drag_Forget(list_pt)) {
            Stage_Draw(stage);
        }
    }
    const bool dragging =
        Is_Own_Drag(box, list_pt) &&
        DB_List_Pointer(*box, *horizontal, *vertical, "tool_db_edit::DB_Edit_Motion", &db_drag.current);
    Edit_Hit hit;
    bool drawn = false;
    if (Locate(stage, &hit) && Has_Dimension(mode)) {
        if (hit.code != Marks_Of(list_pt).highlighted) {
            Lines_Take_Away(stage);  // what is drawn must not lie over inverting lines
        }
        drawn = Hover(stage, hit.code) && Has_Pixels(*box);
    }
    if (dragging) {
        drawn = DB_Edit_Drag(box, nb, list_pt, horizontal, vertical) != 0 || drawn;
    }
    return drawn ? 1 : 0;
}

int DB_Edit_Drag(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    if (box == nullptr) {
        editor.lines_shown = false;
        return 0;
    }
    if (list_pt == nullptr || editor.owner != list_pt || !Has_Pixels(*box)) {
        return 0;
    }
    const Drawing_DC dc(box->window, "tool_db_edit::DB_Edit_Drag");
    if (!dc) {
        return 0;
    }
    const Edit_Painter painter(dc.Get(), Edit_View_Of(*box, *horizontal, *vertical));
    if (editor.lines_shown) {
        painter.Drag_Lines(nb, list_pt, editor.marks.dragged, editor.lines_to);
    }
    editor.lines_to = db_drag.current;
    editor.lines_shown = true;
    painter.Drag_Lines(nb, list_pt, editor.marks.dragged, editor.lines_to);
    return 1;
}

void DB_Edit_Forget(const DB_List* list_pt) {
    if (list_pt != nullptr && editor.owner == list_pt) {
        editor = {};
    }
}

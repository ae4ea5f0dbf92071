#include "database/tool_db_edit.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "database/edit_diagram.h"
#include "database/tool_db_dialog_rename.h"
#include "database/tool_db_edit_paint.h"
#include "database/tool_db_fct.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"

int (*DB_Edit_Ask_Name)(char* buffer) = Dialog_Rename;

namespace {

constexpr const char* SOURCE = KIT_SOURCE_ROOT "/database/tool_db_edit.cpp";
constexpr const char* MEMORY_ERROR = "line %-4d of %s \nmemory error in new";

constexpr int CHANGED_BITS = 0x50;  // with the group and mask below: this object's structure or name changed
constexpr int CHANGED_GROUP = 8;
constexpr int CHANGED_MASK = 0x10000000;
constexpr unsigned __int64 REDRAW_ALL = 0x3FFF;  // every image window
constexpr unsigned __int64 REDRAW_ALL_3D =
    0x3FFF0000;  // ... for 3D classes; other bits, kept so: hosts tell them apart

constexpr int RENAME_SAVED = 1;

// -----------------------------------------------------------------------------------------------------------
// dimensions

struct Edit_1D {
    using Object = Quorel_1D;
    static constexpr unsigned __int64 UPDATE = UPDATE_STRUCTURE | UPDATE_LEVEL_1D;
    static constexpr unsigned __int64 REDRAW = REDRAW_ALL;
};
struct Edit_2D {
    using Object = Quorel_2D;
    static constexpr unsigned __int64 UPDATE = UPDATE_STRUCTURE | UPDATE_LEVEL_2D;
    static constexpr unsigned __int64 REDRAW = REDRAW_ALL;
};
struct Edit_3D {
    using Object = Quorel_3D;
    static constexpr unsigned __int64 UPDATE = UPDATE_STRUCTURE | UPDATE_LEVEL_3D;
    static constexpr unsigned __int64 REDRAW = REDRAW_ALL_3D;
};

/** Calls `operation` with the classes of the mode's dimension; nothing for another dimension. */
template <class Operation>
void With_Dimension(int mode, Operation operation) {
    switch (mode & DB_MODE_DIMENSION) {
        case 1:
            operation(Edit_1D{});
            break;
        case 2:
            operation(Edit_2D{});
            break;
        case 3:
            operation(Edit_3D{});
            break;
        default:
            break;
    }
}

bool Has_Dimension(int mode) {
    const int dimension = mode & DB_MODE_DIMENSION;
    return dimension >= 1 && dimension <= 3;
}

template <class Dimension>
typename Dimension::Object* Object_Of(const DB_List& record) {
    return static_cast<typename Dimension::Object*>(record.object);
}

void Mark_Changed(Quorel& object) {
    object.Flag_Set_On(CHANGED_BITS, CHANGED_GROUP, CHANGED_MASK);
}

/** The host may have the records built anew before this returns. */
template <class Dimension>
void Tell_Host() {
    Fct_Update(Dimension::UPDATE, nullptr, nullptr, nullptr);
    Fct_Redraw(Dimension::REDRAW, nullptr, nullptr, nullptr);
}

// ----------------------------------------------------------------------------------------------------------------
// state

/** The editor's state, one for all panels; the drag itself is in db_drag. It belongs to one list of records. */
struct Editor {
    const DB_List* owner = nullptr;  ///< the records that the codes are of
    Edit_Marks marks;
    int start_code = 0;        ///< where the drag began
    bool lines_shown = false;  ///< drag feedback is on screen ...
    DB_Tree_Point lines_to;    ///< ... to this point
};
Editor editor;

/** The marks of a list; none when the codes are of another list. */
const Edit_Marks& Marks_Of(const DB_List* list_pt) {
    static const Edit_Marks none;
    return editor.owner == list_pt ? editor.marks : none;
}

bool Is_Own_Drag(const DB_List* list_pt) {
    return db_drag.active && db_drag.owner == list_pt && editor.owner == list_pt;
}

/** A drag that was ended elsewhere, by a release outside the diagram, moves nothing: its nodes are dragged no longer.
 *  @return whether there were any */
bool Ended_Drag_Forget(const DB_List* list_pt) {
    if (editor.owner != list_pt || Is_Own_Drag(list_pt) || editor.marks.dragged.empty()) {
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

// --------------------------------------------------------------------------------------------------------------
// drawing

/** Draws the nodes of these zones that are in view. */
void Nodes_Draw(const Edit_Stage& stage, const int* code, std::size_t code_nb, bool highlighted) {
    const Tree_DC dc(*stage.box, "tool_db_edit::DB_Edit_Motion");
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
    if (!editor.lines_shown || editor.owner != stage.list_pt) {
        return;
    }
    const Tree_DC dc(*stage.box, "tool_db_edit::DB_Edit_Drag");
    if (dc) {
        Edit_Painter(dc.Get(), stage.View()).Drag_Lines(stage.nb, stage.list_pt, editor.marks.dragged, editor.lines_to);
        editor.lines_shown = false;
    }
}

// ----------------------------------------------------------------------------------------------------------------
// clicks

/** Begins a drag of the nodes whose parent handles are `codes`, ascending. */
void Drag_Begin(const Edit_Stage& stage, std::vector<int>&& codes, int start_code) {
    Lines_Take_Away(stage);
    Take_Over(stage.list_pt);
    editor.marks.dragged = std::move(codes);
    editor.start_code = start_code;
    db_drag.active = true;
    db_drag.owner = stage.list_pt;
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

/** Copies a name, cut before a character that does not fit. @return false when it was cut */
bool Name_Copy(const char* name, char (&buffer)[DIALOG_RENAME_SIZE]) {
    if (name == nullptr) {
        name = "";
    }
    std::size_t length = std::strlen(name);
    const bool whole = length < sizeof buffer;
    if (!whole) {
        constexpr unsigned char CONTINUATION = 0x80;  // of a character of several bytes, under the mask
        constexpr unsigned char CONTINUATION_MASK = 0xC0;
        length = sizeof buffer - 1;
        while (length > 0 && (static_cast<unsigned char>(name[length]) & CONTINUATION_MASK) == CONTINUATION) {
            --length;
        }
    }
    std::memcpy(buffer, name, length);
    buffer[length] = 0;
    return whole;
}

void Rename(int mode, const DB_List& record) {
    With_Dimension(mode, [&](auto dimension) {
        using Dimension = decltype(dimension);
        auto* const object = Object_Of<Dimension>(record);
        if (object == nullptr) {
            return;
        }
        char before[DIALOG_RENAME_SIZE] = {};
        char buffer[DIALOG_RENAME_SIZE] = {};
        const bool whole = Name_Copy(object->Name_Get(), before);
        std::memcpy(buffer, before, sizeof buffer);
        if (DB_Edit_Ask_Name(buffer) != RENAME_SAVED) {
            return;
        }
        if (!whole && std::strcmp(buffer, before) == 0) {
            return;  // nothing was typed: the name keeps the part that did not fit into the dialog
        }
        object->Name_Set(buffer);
        Mark_Changed(*object);
        Tell_Host<Dimension>();
    });
}

void Press(const Edit_Stage& stage, int up_down, const Edit_Hit& hit) {
    const int record = Edit_Code_Record(hit.code);
    if (!hit.on_node || !stage.Has(record)) {
        return;
    }
    switch (Edit_Code_Zone(hit.code)) {
        case Edit_Zone::Parent_Handle:
            Drag_Begin(stage, {hit.code}, hit.code);
            break;
        case Edit_Zone::Children_Handle:
            Drag_Begin(stage, Children_Codes(stage, record), hit.code);
            break;
        case Edit_Zone::Toggle:
            Children_Toggle(stage, record);
            break;
        case Edit_Zone::Body:
            if (up_down == (MOUSE_PRESS | MOUSE_RIGHT)) {
                Rename(stage.mode, stage.list_pt[record]);
            }
            break;
    }
}

/** Moves the objects of the dragged nodes below the object of a record. All objects are taken from the records before
 *  the first one is moved: then the host may build the records anew. @return false without memory: nothing was moved */
template <class Dimension>
bool Drop(const Edit_Stage& stage, const std::vector<int>& codes, int record) {
    using Object = typename Dimension::Object;
    Object* const target = Object_Of<Dimension>(stage.list_pt[record]);
    std::vector<Object*> moved;
    try {
        moved.reserve(codes.size());
    } catch (const std::bad_alloc&) {
        Error_Fct(hwnd, MESSAGE_MEMORY, MEMORY_ERROR, __LINE__, SOURCE);
        return false;
    }
    for (const int code : codes) {
        if (stage.Has(Edit_Code_Record(code))) {
            moved.push_back(Object_Of<Dimension>(stage.list_pt[Edit_Code_Record(code)]));
        }
    }
    for (Object* const object : moved) {
        if (object == nullptr || target == nullptr ||
            (target->Child_Get_Nb() == 1 && target->Child_Get_Pt(0) == object)) {
            continue;
        }
        // An object that is asked below itself is the host's to refuse: its tree operations put it back.
        if (Object* const parent = object->Parent_Get_Pt(); parent != nullptr) {
            parent->Child_Remove(object);
        }
        target->Child_Add(object);
        Mark_Changed(*target);
        Tell_Host<Dimension>();
    }
    return true;
}

/** @return the result of the click */
int Release(const Edit_Stage& stage, const Edit_Hit& hit) {
    if (!Is_Own_Drag(stage.list_pt)) {
        return 1;
    }
    db_drag.active = false;
    Lines_Take_Away(stage);
    const std::vector<int> codes = std::move(editor.marks.dragged);
    editor.marks.dragged.clear();
    const int record = Edit_Code_Record(hit.code);
    bool dropped = false;
    if (!codes.empty() && hit.on_node && Edit_Code_Zone(hit.code) == Edit_Zone::Children_Handle && stage.Has(record)) {
        With_Dimension(stage.mode, [&](auto dimension) { dropped = Drop<decltype(dimension)>(stage, codes, record); });
    }
    if (!dropped) {
        Stage_Draw(stage);  // the dragged nodes look as before
        return 1;
    }
    return 2;
}

// ----------------------------------------------------------------------------------------------------------------
// delete

/** Moves the children of an object behind it in its parent, in order. @return false, with everything as before, when
 * the host had no room for one of them */
template <class Object>
bool Children_Hand_On(Object* object, Object* parent, int position) {
    int moved_nb = 0;
    for (int i = object->Child_Get_Nb() - 1; i >= 0; --i) {
        Object* const child = object->Child_Get_Pt(i);
        object->Child_Remove(i);
        parent->Child_Insert(position + 1, child);
        if (child->Parent_Get_Pt() == parent) {
            ++moved_nb;
            continue;
        }
        if (child->Parent_Get_Pt() == nullptr) {
            object->Child_Insert(i, child);
        }
        for (; moved_nb > 0; --moved_nb) {
            Object* const back = parent->Child_Get_Pt(position + 1);
            parent->Child_Remove(position + 1);
            object->Child_Add(back);
        }
        return false;
    }
    return true;
}

/** Takes an object out of the tree, its children into its place. @return whether it did */
template <class Dimension>
bool Take_Out(typename Dimension::Object* object) {
    if (object == nullptr || object->Parent_Get_Pt() == nullptr) {
        return false;
    }
    auto* const parent = object->Parent_Get_Pt();
    // Without the link first: whoever looks at the object meanwhile sees it taken out.
    object->Parent_Set_Pt(nullptr);
    const int position = parent->Child_Get_Id(object);
    if (position < 0 || !Children_Hand_On(object, parent, position)) {
        object->Parent_Set_Pt(parent);
        return false;
    }
    Mark_Changed(*parent);
    parent->Child_Remove(position);
    Tell_Host<Dimension>();
    return true;
}

// ----------------------------------------------------------------------------------------------------------------
// motion

/** @return whether the pointer came to another zone */
bool Hover(const Edit_Stage& stage, int code) {
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

// ------------------------------------------------------------------------------------------------------------
// operations

int DB_Edit_Draw(int mode, Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    const Tree_DC dc(*box, "tool_db_edit::DB_Edit_Draw");
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
    if (editor.owner == list_pt) {
        DB_Edit_Drag(nullptr, nb, list_pt, horizontal, vertical);
    }
    return has_nodes ? 1 : 0;
}

int DB_Edit_Locate(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    Edit_Hit hit;
    Locate({0, box, nb, list_pt, horizontal, vertical}, &hit);
    return hit.code;
}

int DB_Edit_Click_DB(int mode, Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal,
                     Sliders* vertical) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Click_DB(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    const Edit_Stage stage = {mode, box, nb, list_pt, horizontal, vertical};
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
        Error_Fct(hwnd, MESSAGE_MEMORY, MEMORY_ERROR, __LINE__, SOURCE);  // no drag begins
    }
    return 1;
}

int DB_Edit_Key_DB(int mode, Boxs* box, int key, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical) {
    Error_Fct(hwnd, TRACE_LEVEL, "in DB_Edit_Key_DB(key=0x%08x)", static_cast<unsigned int>(key));
    if (key != KEY_DELETE) {
        return 0;
    }
    const Edit_Stage stage = {mode, box, nb, list_pt, horizontal, vertical};
    Edit_Hit hit;
    const bool located = Locate(stage, &hit);
    const int record = Edit_Code_Record(hit.code);
    // Record 0 is the root, whatever its object hangs on in the host's tree.
    if (!located || !hit.on_node || Edit_Code_Zone(hit.code) != Edit_Zone::Body || record == 0 || !stage.Has(record)) {
        return 0;
    }
    bool done = false;
    With_Dimension(mode, [&](auto dimension) {
        using Dimension = decltype(dimension);
        done = Take_Out<Dimension>(Object_Of<Dimension>(list_pt[record]));
    });
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
    const bool dragging = Is_Own_Drag(list_pt) && DB_List_Pointer(*box, *horizontal, *vertical,
                                                                  "tool_db_edit::DB_Edit_Motion", &db_drag.current);
    Edit_Hit hit;
    bool drawn = false;
    if (Locate(stage, &hit) && Has_Dimension(mode)) {
        if (hit.code != Marks_Of(list_pt).highlighted) {
            Lines_Take_Away(stage);  // what is drawn must not lie over inverting lines
        }
        drawn = Hover(stage, hit.code);
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
    if (list_pt == nullptr || editor.owner != list_pt) {
        return 0;
    }
    const Tree_DC dc(*box, "tool_db_edit::DB_Edit_Drag");
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

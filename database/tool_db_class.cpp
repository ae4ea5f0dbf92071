#include "database/tool_db_class.h"

#include <new>
#include <type_traits>
#include <vector>

#include "database/host_classes.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* CLASS_SOURCE = KIT_SOURCE_ROOT "/database/tool_db_class.cpp";
constexpr unsigned __int64 REDRAW_ALL = 0x3FFF;             ///< every image window, whatever it shows
constexpr int FLAG_WRITTEN = FLAG_SELECTED | FLAG_CHANGED;  ///< set by selecting
constexpr int FLAG_OF_ROOT = FLAG_SELECTED | FLAG_PARTLY_SELECTED;

/** Leaves that are not locked take part in the selection. */
bool Is_Selectable(const DB_List& record) {
    return (record.flag & (DB_FLAG_LEAF | DB_FLAG_LOCKED)) == DB_FLAG_LEAF && record.object != nullptr;
}

/** Fills the record of an object, but for its children. @return false: a text could not be copied */
template <class Classes>
bool Fill(DB_List& record, typename Classes::Object& object, int level, int parent) {
    record.level = static_cast<std::uint16_t>(level);
    record.parent = static_cast<std::uint16_t>(parent);
    record.flag = DB_FLAG_EXPANDED;
    record.icon = Classes::Icon(object);
    if (record.icon == nullptr) {
        record.icon = DB_ICON_DEFAULT;
    }
    if (object.Child_Get_Nb() == 0) {
        record.flag = DB_FLAG_LEAF;
        if (object.Class_A_Get() != Classes::PLAIN) {
            record.flag |= DB_FLAG_LOCKED;
        }
        if (Object_Is_Selected(object)) {
            record.state = DB_STATE_CHECKED;
        }
    }
    record.object = &object;
    return DB_List_Text_Copy(&record.title, object.Title_Get(), "title", {CLASS_SOURCE, __LINE__}) &&
           DB_List_Text_Copy(&record.name, object.Name_Get(), "name", {CLASS_SOURCE, __LINE__});
}

template <class Classes>
unsigned short Create(Tool_DB_Class& view, int* nb, DB_List** list_pt, int level, int parent, void* given) {
    using Object = typename Classes::Object;
    auto* const object = given != nullptr ? static_cast<Object*>(given) : Host_Pointer<Object>(Classes::ROOT);
    if (object == nullptr || level >= DB_LEVEL_MOST) {
        return 0;
    }
    const int k = *nb;
    DB_List* const record = DB_List_Append(nb, list_pt, {CLASS_SOURCE, __LINE__});
    if (record == nullptr || !Fill<Classes>(*record, *object, level, parent)) {
        return 0;
    }
    record->child_nb = static_cast<std::uint16_t>(object->Child_Get_Nb());
    for (int i = 0; i < object->Child_Get_Nb(); ++i) {
        Object* const child = object->Child_Get_Pt(i);
        if (child == nullptr) {
            continue;  // would mean the root
        }
        const unsigned short below = view.List_Create_From_DB(nb, list_pt, level + 1, k, child);
        if (*list_pt == nullptr) {
            return 0;  // no memory: all records are gone
        }
        (*list_pt)[k].desc_nb = static_cast<std::uint16_t>((*list_pt)[k].desc_nb + below);
    }
    return static_cast<unsigned short>((*list_pt)[k].desc_nb + 1);
}

/** Calls `visit(object, checked)` for the selectable leaves, from the last to the first. */
template <class Object, class Visit>
void Each_Leaf(int nb, const DB_List* list_pt, Visit visit) {
    for (int i = list_pt != nullptr ? nb - 1 : -1; i >= 0; --i) {
        if (Is_Selectable(list_pt[i])) {
            visit(*static_cast<Object*>(list_pt[i].object), (list_pt[i].state & DB_STATE_CHECKED) != 0);
        }
    }
}

/** Writes the leaves: the host hears of it only afterwards. @return the last one that is checked */
template <class Object>
Object* Leaves_Write(int nb, const DB_List* list_pt) {
    Object* last = nullptr;
    Each_Leaf<Object>(nb, list_pt, [&](Object& object, bool checked) {
        Object_Select(object, checked, FLAG_WRITTEN);
        last = checked ? &object : last;
    });
    return last;
}

/** Makes an object the one that the current window shows. */
void Leaf_Show(Quorel_2D& object, const Panel_Watch& panel) {
    auto* const window = Host_Pointer<Quorel_Window>("$WINDOW_CUR");
    if (window == nullptr) {
        return;  // closed meanwhile
    }
    Fct_Change_Child(window, &object, nullptr);
    if (panel.Is_Alive()) {
        Fct_Update(UPDATE_FRAME_CUR, nullptr, nullptr, nullptr);
    }
}

/** Writes the leaves of 2D classes. Each checked one is shown in turn, so the first of the list is shown in the end.
 *  The host may have the check marks read anew meanwhile: they are taken first.
 *  @return false when the panel ended meanwhile */
bool Leaves_Write_And_Show(int nb, const DB_List* list_pt, const Panel_Watch& panel) {
    struct Leaf {
        Quorel_2D* object;
        bool checked;
    };
    std::vector<Leaf> leaves;
    try {
        Each_Leaf<Quorel_2D>(nb, list_pt, [&](Quorel_2D& object, bool checked) {
            leaves.push_back({&object, checked});
        });
    } catch (const std::bad_alloc&) {
        // Without memory for a copy the host is not called before all is written; only the last one is shown.
        if (Quorel_2D* const shown = Leaves_Write<Quorel_2D>(nb, list_pt); shown != nullptr) {
            Leaf_Show(*shown, panel);
        }
        return panel.Is_Alive();
    }
    for (const Leaf& leaf : leaves) {
        Object_Select(*leaf.object, leaf.checked, FLAG_WRITTEN);
        if (leaf.checked) {
            Leaf_Show(*leaf.object, panel);
            if (!panel.Is_Alive()) {
                return false;
            }
        }
    }
    return true;
}

/** Writes the selection of one dimension. @return false when nothing more is to be done: there is no root, or no
 *  window for 2D classes, or the panel ended meanwhile */
template <class Classes>
bool Selection_Write(int nb, const DB_List* list_pt, const Panel_Watch& panel) {
    using Object = typename Classes::Object;
    constexpr bool is_shown = std::is_same_v<Object, Quorel_2D>;
    auto* const root = Host_Pointer<Object>(Classes::ROOT);
    if (root == nullptr || (is_shown && Host_Pointer<Quorel_Window>("$WINDOW_CUR") == nullptr)) {
        return false;
    }
    root->Flag_Set_Off(FLAG_OF_ROOT, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    if constexpr (is_shown) {
        if (!Leaves_Write_And_Show(nb, list_pt, panel)) {
            return false;
        }
    } else {
        Leaves_Write<Object>(nb, list_pt);
    }
    Fct_Update(UPDATE_SELECTION | Classes::LEVEL, All_Windows(), nullptr, nullptr);
    return panel.Is_Alive();
}

}  // namespace

Tool_DB_Class::Tool_DB_Class(int mode_word) {
    mode = mode_word;
}
Tool_DB_Class::~Tool_DB_Class() = default;
Tool_DB_Class::Tool_DB_Class(const Tool_DB_Class& other) = default;
Tool_DB_Class& Tool_DB_Class::operator=(const Tool_DB_Class& other) = default;

unsigned short Tool_DB_Class::List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) {
    unsigned short appended = 0;
    With_Classes(
        mode, [&](auto classes) { appended = Create<decltype(classes)>(*this, nb, list_pt, level, parent, object); });
    return appended;
}

void Tool_DB_Class::List_Select_From_DB(int nb, DB_List* list_pt) {
    if (list_pt == nullptr) {
        return;  // the count of a failed creation
    }
    With_Classes(mode, [&](auto classes) {
        using Object = typename decltype(classes)::Object;
        for (int i = 0; i < nb; ++i) {
            DB_List& record = list_pt[i];
            if (!Is_Selectable(record)) {
                continue;
            }
            if (Object_Is_Selected(*static_cast<Object*>(record.object))) {
                record.state = DB_STATE_CHECKED;  // the no-access bit goes too; clearing leaves it. Kept so.
            } else {
                record.state = static_cast<std::uint16_t>(record.state & ~DB_STATE_CHECKED);
            }
        }
    });
}

void Tool_DB_Class::List_Select_To_DB(int nb, DB_List* list_pt) {
    const Panel_Watch panel(life);
    bool goes_on = true;
    With_Classes(mode, [&](auto classes) { goes_on = Selection_Write<decltype(classes)>(nb, list_pt, panel); });
    if (goes_on) {
        Fct_Redraw(REDRAW_ALL, nullptr, nullptr, nullptr);  // all that is done for another dimension
    }
}

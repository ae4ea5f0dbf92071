#include "database/tool_db_class.h"

#include <new>
#include <vector>

#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* SOURCE = KIT_SOURCE_ROOT "/database/tool_db_class.cpp";
constexpr int LEVEL_MOST = 4096;                            ///< a hierarchy that goes on in a circle ends here
constexpr unsigned __int64 REDRAW_ALL = 0x3FFF;             ///< every image window, whatever it shows
constexpr int FLAG_WRITTEN = FLAG_SELECTED | FLAG_CHANGED;  ///< set by selecting
constexpr int FLAG_OF_ROOT = FLAG_SELECTED | FLAG_PARTLY_SELECTED;

/** What differs between the dimensions. */
struct Classes_1D {
    using Object = Quorel_1D;
    static constexpr const char* ROOT = "$DB_1D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_1D;
    static constexpr unsigned __int64 UPDATE = UPDATE_SELECTION | UPDATE_LEVEL_1D;
    static const char* Icon(Object& object) { return object.Icon_Get(); }
};
struct Classes_2D {
    using Object = Quorel_2D;
    static constexpr const char* ROOT = "$DB_2D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_2D;
    static constexpr unsigned __int64 UPDATE = UPDATE_SELECTION | UPDATE_LEVEL_2D;
    static const char* Icon(Object& object) { return object.Icon_2D_Get(); }
};
struct Classes_3D {
    using Object = Quorel_3D;
    static constexpr const char* ROOT = "$DB_3D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_3D;
    static constexpr unsigned __int64 UPDATE = UPDATE_SELECTION | UPDATE_LEVEL_3D;
    static const char* Icon(Object& object) { return object.Icon_Get(); }
};

/** Calls `operation` with the classes of the mode's dimension; nothing for another dimension. */
template <class Operation>
void With_Classes(int mode, Operation operation) {
    switch (mode & DB_MODE_DIMENSION) {
        case 1:
            operation(Classes_1D{});
            break;
        case 2:
            operation(Classes_2D{});
            break;
        case 3:
            operation(Classes_3D{});
            break;
        default:
            break;
    }
}

bool Is_Selected(const Quorel& object) {
    return object.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0;
}

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
        if (Is_Selected(object)) {
            record.state = DB_STATE_CHECKED;
        }
    }
    record.object = &object;
    return DB_List_Text_Copy(&record.title, object.Title_Get(), "title", {SOURCE, __LINE__}) &&
           DB_List_Text_Copy(&record.name, object.Name_Get(), "name", {SOURCE, __LINE__});
}

template <class Classes>
unsigned short Create(Tool_DB_Class& view, int* nb, DB_List** list_pt, int level, int parent, void* given) {
    using Object = typename Classes::Object;
    auto* const object = given != nullptr ? static_cast<Object*>(given) : Host_Pointer<Object>(Classes::ROOT);
    if (object == nullptr || level >= LEVEL_MOST) {
        return 0;
    }
    const int k = *nb;
    DB_List* const record = DB_List_Append(nb, list_pt, {SOURCE, __LINE__});
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

/** A leaf to be written. */
template <class Object>
struct Leaf {
    Object* object;
    bool checked;
};

/** The selectable leaves from the last to the first: writing them calls the host, which may have the check marks read
 *  anew meanwhile. @return false without memory */
template <class Object>
bool Leaves_Take(int nb, const DB_List* list_pt, std::vector<Leaf<Object>>& leaves) {
    try {
        for (int i = nb - 1; i >= 0; --i) {
            if (Is_Selectable(list_pt[i])) {
                leaves.push_back({static_cast<Object*>(list_pt[i].object), (list_pt[i].state & DB_STATE_CHECKED) != 0});
            }
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void Leaf_Write(Quorel& object, bool checked) {
    if (checked) {
        object.Flag_Set_On(FLAG_WRITTEN, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    } else {
        object.Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    }
}

/** Makes an object the one that the current window shows. */
void Leaf_Show(Quorel_2D* object) {
    Fct_Change_Child(Host_Pointer<Quorel_Window>("$WINDOW_CUR"), object, nullptr);
    Fct_Update(UPDATE_FRAME_CUR, nullptr, nullptr, nullptr);
}

/** Writes the leaves of 1D and 3D classes: the host hears of it only afterwards. */
template <class Object>
void Leaves_Write(int nb, DB_List* list_pt, const Object* /*kind*/) {
    for (int i = nb - 1; i >= 0; --i) {
        if (Is_Selectable(list_pt[i])) {
            Leaf_Write(*static_cast<Object*>(list_pt[i].object), (list_pt[i].state & DB_STATE_CHECKED) != 0);
        }
    }
}

/** Writes the leaves of 2D classes. Each checked one is shown in turn, so the first of the list is shown in the end. */
void Leaves_Write(int nb, DB_List* list_pt, const Quorel_2D* /*kind*/) {
    std::vector<Leaf<Quorel_2D>> leaves;
    if (Leaves_Take(nb, list_pt, leaves)) {
        for (const Leaf<Quorel_2D>& leaf : leaves) {
            Leaf_Write(*leaf.object, leaf.checked);
            if (leaf.checked) {
                Leaf_Show(leaf.object);
            }
        }
        return;
    }
    // Without memory for a copy the host is not called before all is written; only the last one is shown.
    Quorel_2D* shown = nullptr;
    for (int i = nb - 1; i >= 0; --i) {
        if (Is_Selectable(list_pt[i])) {
            auto* const object = static_cast<Quorel_2D*>(list_pt[i].object);
            const bool checked = (list_pt[i].state & DB_STATE_CHECKED) != 0;
            Leaf_Write(*object, checked);
            shown = checked ? object : shown;
        }
    }
    if (shown != nullptr) {
        Leaf_Show(shown);
    }
}

}  // namespace

Tool_DB_Class::Tool_DB_Class(int mode_word) {
    mode = mode_word;
}

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
            if (Is_Selected(*static_cast<Object*>(record.object))) {
                record.state = DB_STATE_CHECKED;  // the no-access bit goes too; clearing leaves it. Kept so.
            } else {
                record.state = static_cast<std::uint16_t>(record.state & ~DB_STATE_CHECKED);
            }
        }
    });
}

void Tool_DB_Class::List_Select_To_DB(int nb, DB_List* list_pt) {
    With_Classes(mode, [&](auto classes) {
        using Classes = decltype(classes);
        using Object = typename Classes::Object;
        if (auto* const root = Host_Pointer<Object>(Classes::ROOT); root != nullptr) {
            root->Flag_Set_Off(FLAG_OF_ROOT, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        }
        if (list_pt != nullptr) {
            Leaves_Write(nb, list_pt, static_cast<const Object*>(nullptr));
        }
        Fct_Update(Classes::UPDATE, All_Windows(), nullptr, nullptr);
    });
    Fct_Redraw(REDRAW_ALL, nullptr, nullptr, nullptr);
}

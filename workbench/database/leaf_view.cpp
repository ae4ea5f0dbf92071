#include "workbench/database/leaf_view.h"

#include <new>

namespace workbench {

namespace {

constexpr const char* LEAF_VIEW_SOURCE = "workbench/database/leaf_view.cpp";
constexpr int NO_LEAF = -1;

}  // namespace

Leaf_View::~Leaf_View() {
    Source_Free();
}

void Leaf_View::Source_Set(Tool_DB_List* view) {
    source = view;
    mode = view != nullptr ? view->mode & ~DB_MODE_EDIT : 0;
}

void Leaf_View::Source_Free() {
    source_rows.clear();
    DB_List_Array_Free(&all_nb, &all);
}

int Leaf_View::Source_Row(int listed) const {
    return listed >= 0 && listed < static_cast<int>(source_rows.size()) ? source_rows[static_cast<std::size_t>(listed)]
                                                                        : NO_LEAF;
}

DB_List* Leaf_View::Leaf_Append(int source_row, int* nb, DB_List** list_pt) {
    source_rows.push_back(source_row);
    DB_List* const row = DB_List_Append(nb, list_pt, {LEAF_VIEW_SOURCE, __LINE__});
    if (row != nullptr) {
        const DB_List& leaf = all[source_row];
        row->flag = static_cast<std::uint16_t>(leaf.flag & (DB_FLAG_LEAF | DB_FLAG_LOCKED));
        row->state = leaf.state;
        row->modality = leaf.modality;
        row->index = leaf.index;
        row->object = leaf.object;
        row->color = leaf.color;
        row->icon = leaf.icon;
    }
    return row;
}

DB_List* Leaf_View::Branch_Append(int* nb, DB_List** list_pt) {
    source_rows.push_back(NO_LEAF);
    return DB_List_Append(nb, list_pt, {LEAF_VIEW_SOURCE, __LINE__});
}

unsigned short Leaf_View::List_Create_From_DB(int* nb, DB_List** list_pt, int /*level*/, int /*parent*/,
                                              void* /*object*/) {
    const int first = *nb;
    Source_Free();
    if (source == nullptr || Is_Without_Rows() || first != 0) {
        return 0;
    }
    source->List_Create_From_DB(&all_nb, &all, 0, 0, nullptr);
    if (all == nullptr) {
        return 0;
    }
    source->List_Select_From_DB(all_nb, all);
    DB_List_Set_State(all_nb, all);
    try {
        if (!List_Rows(nb, list_pt)) {
            return 0;
        }
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return static_cast<unsigned short>(*nb - first);
}

bool Leaf_View::Source_Read(int nb, const DB_List* list_pt) {
    if (source == nullptr || all == nullptr || list_pt == nullptr || nb > static_cast<int>(source_rows.size())) {
        return false;
    }
    source->List_Select_From_DB(all_nb, all);
    DB_List_Set_State(all_nb, all);
    return true;
}

void Leaf_View::List_Select_From_DB(int nb, DB_List* list_pt) {
    if (!Source_Read(nb, list_pt)) {
        return;
    }
    for (int i = 0; i < nb; ++i) {
        if (const int row = Source_Row(i); row != NO_LEAF) {
            list_pt[i].state = all[row].state;
        }
    }
}

void Leaf_View::List_Select_To_DB(int nb, DB_List* list_pt) {
    if (!Source_Read(nb, list_pt)) {
        return;
    }
    for (int i = 0; i < nb; ++i) {
        if (const int row = Source_Row(i); row != NO_LEAF) {
            DB_List& record = all[row];
            record.state =
                static_cast<std::uint16_t>((record.state & ~DB_STATE_MASK) | (list_pt[i].state & DB_STATE_MASK));
        }
    }
    source->List_Select_To_DB(all_nb, all);
}

}  // namespace workbench

#include "workbench/database/find_view.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace workbench {

namespace {

constexpr const char* SOURCE = "workbench/database/find_view.cpp";
constexpr const char* PLACE_LABEL = "In";
constexpr const char* MODALITY_LABEL = "Modality";
constexpr const char* PLACE_SEPARATOR = " / ";

/** What the words are looked for in. */
std::string Own_Texts(const DB_List& record) {
    return std::string(record.title != nullptr ? record.title : "") + ' ' + (record.name != nullptr ? record.name : "");
}

/** What a row is called where it is named as a place: files by their name, folders and classes by their title. */
std::string Place_Name(const DB_List& record) {
    return record.name != nullptr ? record.name : record.title != nullptr ? record.title : "";
}

/** The two letters of a modality; empty: none. */
std::string Modality_Text(std::uint16_t modality) {
    return modality == 0 ? "" : std::string{static_cast<char>(modality >> 8), static_cast<char>(modality & 0xFF)};
}

/** Gives a record its extra columns. @return false without memory, reported */
bool Columns_Set(DB_List& record, const std::vector<std::pair<const char*, std::string>>& columns) {
    const std::size_t nb = columns.size();
    if (nb == 0) {
        return true;
    }
    record.column_x = static_cast<std::int32_t*>(std::calloc(nb, sizeof(std::int32_t)));
    record.column_color = static_cast<std::uint32_t*>(std::calloc(nb, sizeof(std::uint32_t)));
    record.column_label = static_cast<char**>(std::calloc(nb, sizeof(char*)));
    record.column_value = static_cast<char**>(std::calloc(nb, sizeof(char*)));
    if (record.column_x == nullptr || record.column_color == nullptr || record.column_label == nullptr ||
        record.column_value == nullptr) {
        return false;  // what there is, is freed with the record
    }
    record.column_nb = static_cast<std::uint16_t>(nb);
    for (std::size_t i = 0; i < nb; ++i) {
        if (!DB_List_Text_Copy(&record.column_label[i], columns[i].first, "column_label", {SOURCE, __LINE__}) ||
            !DB_List_Text_Copy(&record.column_value[i], columns[i].second.c_str(), "column_value",
                               {SOURCE, __LINE__})) {
            return false;
        }
    }
    return true;
}

}  // namespace

Find_View::~Find_View() {
    Source_Free();
}

void Find_View::Source_Set(Tool_DB_List* view) {
    source = view;
    mode = view != nullptr ? view->mode & ~DB_MODE_EDIT : 0;
}

void Find_View::Source_Free() {
    found.clear();
    DB_List_Array_Free(&all_nb, &all);
}

int Find_View::Source_Row(int listed) const {
    return listed >= 0 && listed < static_cast<int>(found.size()) ? found[static_cast<std::size_t>(listed)] : -1;
}

/** Appends the row of a leaf when it matches. @param branches above it, the root first. @return false without memory */
bool Find_View::List_Row(int at, const std::vector<int>& branches, int* nb, DB_List** list_pt) {
    const DB_List& leaf = all[at];
    std::string place;
    std::string text = Own_Texts(leaf);
    std::uint16_t modality = leaf.modality;
    for (const int branch : branches) {
        place += (place.empty() ? "" : PLACE_SEPARATOR) + Place_Name(all[branch]);
        text += ' ' + Own_Texts(all[branch]);
        modality = modality != 0 ? modality : all[branch].modality;
    }
    if (!words.Match(text + ' ' + Modality_Text(modality))) {
        return true;
    }
    found.push_back(at);
    DB_List* const row = DB_List_Append(nb, list_pt, {SOURCE, __LINE__});
    if (row == nullptr) {
        return false;
    }
    row->flag = static_cast<std::uint16_t>(leaf.flag & (DB_FLAG_LEAF | DB_FLAG_LOCKED));
    row->state = leaf.state;
    row->modality = leaf.modality;
    row->index = leaf.index;
    row->object = leaf.object;
    row->color = leaf.color;
    row->icon = leaf.icon;
    std::vector<std::pair<const char*, std::string>> columns;
    if (!place.empty()) {
        columns.emplace_back(PLACE_LABEL, place);
    }
    if (modality != 0) {
        columns.emplace_back(MODALITY_LABEL, Modality_Text(modality));
    }
    return DB_List_Text_Copy(&row->title, leaf.title, "title", {SOURCE, __LINE__}) &&
           DB_List_Text_Copy(&row->name, leaf.name, "name", {SOURCE, __LINE__}) && Columns_Set(*row, columns);
}

unsigned short Find_View::List_Create_From_DB(int* nb, DB_List** list_pt, int /*level*/, int /*parent*/,
                                              void* /*object*/) {
    const int first = *nb;
    Source_Free();
    if (source == nullptr || words.Is_Empty() || first != 0) {
        return 0;
    }
    source->List_Create_From_DB(&all_nb, &all, 0, 0, nullptr);
    if (all == nullptr) {
        return 0;
    }
    source->List_Select_From_DB(all_nb, all);
    DB_List_Set_State(all_nb, all);
    try {
        std::vector<int> branches;
        for (int i = 0; i < all_nb; ++i) {
            while (!branches.empty() && all[branches.back()].level >= all[i].level) {
                branches.pop_back();
            }
            if ((all[i].flag & DB_FLAG_LEAF) == 0) {
                branches.push_back(i);
            } else if (!List_Row(i, branches, nb, list_pt)) {
                return 0;
            }
        }
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return static_cast<unsigned short>(*nb - first);
}

bool Find_View::Source_Read(int nb, const DB_List* list_pt) {
    if (source == nullptr || all == nullptr || list_pt == nullptr || nb > static_cast<int>(found.size())) {
        return false;
    }
    source->List_Select_From_DB(all_nb, all);
    DB_List_Set_State(all_nb, all);
    return true;
}

void Find_View::List_Select_From_DB(int nb, DB_List* list_pt) {
    if (!Source_Read(nb, list_pt)) {
        return;
    }
    for (int i = 0; i < nb; ++i) {
        list_pt[i].state = all[Source_Row(i)].state;
    }
}

void Find_View::List_Select_To_DB(int nb, DB_List* list_pt) {
    if (!Source_Read(nb, list_pt)) {
        return;
    }
    for (int i = 0; i < nb; ++i) {
        DB_List& record = all[Source_Row(i)];
        record.state = static_cast<std::uint16_t>((record.state & ~DB_STATE_MASK) | (list_pt[i].state & DB_STATE_MASK));
    }
    source->List_Select_To_DB(all_nb, all);
}

}  // namespace workbench

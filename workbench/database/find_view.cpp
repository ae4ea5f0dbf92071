#include "workbench/database/find_view.h"

#include <cstdlib>
#include <utility>

namespace workbench {

namespace {

constexpr const char* FIND_VIEW_SOURCE = "workbench/database/find_view.cpp";
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
        if (!DB_List_Text_Copy(&record.column_label[i], columns[i].first, "column_label",
                               {FIND_VIEW_SOURCE, __LINE__}) ||
            !DB_List_Text_Copy(&record.column_value[i], columns[i].second.c_str(), "column_value",
                               {FIND_VIEW_SOURCE, __LINE__})) {
            return false;
        }
    }
    return true;
}

}  // namespace

/** Appends the row of a leaf when it matches. @param branches above it, the root first. @return false without memory */
bool Find_View::List_Row(int at, const std::vector<int>& branches, int* nb, DB_List** list_pt) {
    const DB_List& leaf = Source()[at];
    std::string place;
    std::string text = Own_Texts(leaf);
    std::uint16_t modality = leaf.modality;
    for (const int branch : branches) {
        place += (place.empty() ? "" : PLACE_SEPARATOR) + Place_Name(Source()[branch]);
        text += ' ' + Own_Texts(Source()[branch]);
        modality = modality != 0 ? modality : Source()[branch].modality;
    }
    if (!words.Match(text + ' ' + Modality_Text(modality))) {
        return true;
    }
    DB_List* const row = Leaf_Append(at, nb, list_pt);
    if (row == nullptr) {
        return false;
    }
    std::vector<std::pair<const char*, std::string>> columns;
    if (!place.empty()) {
        columns.emplace_back(PLACE_LABEL, place);
    }
    if (modality != 0) {
        columns.emplace_back(MODALITY_LABEL, Modality_Text(modality));
    }
    return DB_List_Text_Copy(&row->title, leaf.title, "title", {FIND_VIEW_SOURCE, __LINE__}) &&
           DB_List_Text_Copy(&row->name, leaf.name, "name", {FIND_VIEW_SOURCE, __LINE__}) && Columns_Set(*row, columns);
}

bool Find_View::List_Rows(int* nb, DB_List** list_pt) {
    std::vector<int> branches;
    for (int i = 0; i < Source_Nb(); ++i) {
        while (!branches.empty() && Source()[branches.back()].level >= Source()[i].level) {
            branches.pop_back();
        }
        if ((Source()[i].flag & DB_FLAG_LEAF) == 0) {
            branches.push_back(i);
        } else if (!List_Row(i, branches, nb, list_pt)) {
            return false;
        }
    }
    return true;
}

}  // namespace workbench

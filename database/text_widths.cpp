#include "database/text_widths.h"

#include <algorithm>
#include <new>

// ---- one list

void Text_Widths::Drop() {
    rows.clear();
    first_of_columns.clear();
    column_slots.clear();
}

void Text_Widths::Begin(int nb, const DB_List* list_pt, const Text_Measurer::Fonts& fonts) {
    if (fonts != fonts_now) {
        Drop();
        separator = {};
        fonts_now = fonts;
    }
    const auto record_nb = static_cast<std::size_t>(std::max(nb, 0));
    if (rows.size() == record_nb) {
        return;
    }
    Drop();
    try {
        rows.resize(record_nb);
        const auto with_columns = [](const DB_List& row) { return row.column_nb != 0; };
        if (std::any_of(list_pt, list_pt + record_nb, with_columns)) {
            first_of_columns.reserve(record_nb + 1);
            std::size_t slot_nb = 0;
            for (std::size_t record = 0; record < record_nb; ++record) {
                first_of_columns.push_back(slot_nb);
                slot_nb += 2U * list_pt[record].column_nb;
            }
            first_of_columns.push_back(slot_nb);
            column_slots.resize(slot_nb);
        }
    } catch (const std::bad_alloc&) {
        Drop();
    }
}

int Text_Widths::In_Column(int record, int slot, Tree_Font font, const char* text, Text_Measurer& measurer) {
    const auto at = static_cast<std::size_t>(record);
    const auto column_slot = static_cast<std::size_t>(slot);
    if (first_of_columns.empty() ||  // no memory, or columns came later
        first_of_columns[at] + column_slot >= first_of_columns[at + 1]) {
        return Measured(font, text, measurer);
    }
    Slot& kept = column_slots[first_of_columns[at] + column_slot];
    return Kept(kept.text, kept.width, font, text, measurer);
}

int Text_Widths::Label(int record, const DB_List& row, int column, Text_Measurer& measurer) {
    const char* const text = row.column_label != nullptr ? row.column_label[column] : nullptr;
    return In_Column(record, 2 * column, Tree_Font::Regular, text, measurer);
}

int Text_Widths::Value(int record, const DB_List& row, int column, Text_Measurer& measurer) {
    const char* const text = row.column_value != nullptr ? row.column_value[column] : nullptr;
    return In_Column(record, 2 * column + 1, Tree_Font::Bold, text, measurer);
}

// ---- some lists

Text_Widths& Text_Width_Lists::Of(int nb, const DB_List* list_pt, const Text_Measurer::Fonts& fonts) {
    auto entry = std::find_if(entries.begin(), entries.end(), [&](const Entry& at) { return at.list_pt == list_pt; });
    if (entry == entries.end()) {
        try {
            entries.emplace_front();
            entries.front().list_pt = list_pt;
        } catch (const std::bad_alloc&) {
            without_memory = {};
            without_memory.Begin(nb, list_pt, fonts);
            return without_memory;
        }
        if (entries.size() > LIST_MAX) {
            entries.pop_back();
        }
    } else {
        entries.splice(entries.begin(), entries, entry);
    }
    entries.front().widths.Begin(nb, list_pt, fonts);
    return entries.front().widths;
}

void Text_Width_Lists::Forget(const DB_List* list_pt) {
    entries.remove_if([list_pt](const Entry& entry) { return entry.list_pt == list_pt; });
    without_memory = {};
}

// ---- rows, columns

void Row_Widths::Widen(int record, const DB_List& row) {
    has_columns = true;
    for (int column = 0; column < row.column_nb; ++column) {
        const int width =
            widths.Label(record, row, column, measurer) + separator + widths.Value(record, row, column, measurer);
        if (static_cast<std::size_t>(column) >= column_widths.size()) {
            column_widths.resize(row.column_nb);
        }
        int& of_column = column_widths[static_cast<std::size_t>(column)];
        of_column = std::max(of_column, width);
    }
}

int Row_Widths::Place(const DB_List& row) const {
    int x = column_start + TREE_COLUMN_GAP;
    for (int column = 0; column < row.column_nb; ++column) {
        if (row.column_x != nullptr) {
            row.column_x[column] = x;
        }
        x += TREE_COLUMN_GAP + column_widths[static_cast<std::size_t>(column)];
    }
    return x;
}

int Row_Widths::Place(int nb, DB_List* list_pt) {
    for (int record = 0; has_columns && record < nb; ++record) {
        if (list_pt[record].column_nb != 0) {
            widest = std::max(widest, Place(list_pt[record]));
        }
    }
    return widest;
}

int Tree_Width_Measure(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer) {
    Row_Widths rows(space, widths, measurer);
    for (int record = 0; record < nb; ++record) {
        rows.Add(record, list_pt[record]);
    }
    return rows.Place(nb, list_pt);
}

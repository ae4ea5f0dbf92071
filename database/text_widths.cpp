#include "database/text_widths.h"

#include <algorithm>
#include <new>

#include "database/tree_rows.h"

// ---- one list

void Text_Widths::Begin(int nb, const DB_List* list_pt, const Text_Measurer::Fonts& fonts) {
    if (fonts != fonts_now) {
        first.clear();
        separator = {};
        fonts_now = fonts;
    }
    if (first.size() == static_cast<std::size_t>(nb) + 1) {
        return;
    }
    first.clear();
    slots.clear();
    try {
        first.reserve(static_cast<std::size_t>(nb) + 1);
        std::size_t slot_nb = 0;
        for (int record = 0; record < nb; ++record) {
            first.push_back(slot_nb);
            slot_nb += RECORD_SLOTS + 2U * list_pt[record].column_nb;
        }
        first.push_back(slot_nb);
        slots.resize(slot_nb);
    } catch (const std::bad_alloc&) {
        first.clear();
        slots.clear();
    }
}

int Text_Widths::Of(int record, int slot, Tree_Font font, const char* text, Text_Measurer& measurer) {
    const auto at = static_cast<std::size_t>(record);
    const auto column_slot = static_cast<std::size_t>(slot);
    if (first.empty() || first[at] + column_slot >= first[at + 1]) {  // no memory, or columns came later
        return text != nullptr ? measurer.Width(font, text) : 0;
    }
    return Kept(slots[first[at] + column_slot], font, text, measurer);
}

int Text_Widths::Label(int record, const DB_List& row, int column, Text_Measurer& measurer) {
    const char* const text = row.column_label != nullptr ? row.column_label[column] : nullptr;
    return Of(record, RECORD_SLOTS + 2 * column, Tree_Font::Regular, text, measurer);
}

int Text_Widths::Value(int record, const DB_List& row, int column, Text_Measurer& measurer) {
    const char* const text = row.column_value != nullptr ? row.column_value[column] : nullptr;
    return Of(record, RECORD_SLOTS + 2 * column + 1, Tree_Font::Bold, text, measurer);
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

namespace {

/** Widths of the columns; the last one counts how many records have columns at all. */
class Columns {
  public:
    void Widen(int record, const DB_List& row, Text_Widths& widths, Text_Measurer& measurer) {
        const int separator = widths.Separator(measurer);
        for (int column = 0; column < row.column_nb; ++column) {
            const int width =
                widths.Label(record, row, column, measurer) + separator + widths.Value(record, row, column, measurer);
            if (static_cast<std::size_t>(column) >= width_of.size()) {
                width_of.resize(row.column_nb);
            }
            int& widest = width_of[static_cast<std::size_t>(column)];
            widest = std::max(widest, width);
        }
    }
    /** @return where the last column of the record ends */
    int Place(const DB_List& row, int start) const {
        int x = start + TREE_COLUMN_GAP;
        for (int column = 0; column < row.column_nb; ++column) {
            if (row.column_x != nullptr) {
                row.column_x[column] = x;
            }
            x += TREE_COLUMN_GAP + width_of[static_cast<std::size_t>(column)];
        }
        return x;
    }

  private:
    std::vector<int> width_of;
};

}  // namespace

int Tree_Width_Measure(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer) {
    int tree_width = 0;
    int column_start = 0;
    bool has_columns = false;
    Columns columns;
    const int separator = widths.Separator(measurer);
    for (int record = 0; record < nb; ++record) {
        const DB_List& row = list_pt[record];
        int x = 2 * space + TREE_TEXT_START + DB_INDENTATION * row.level + widths.Name(record, row, measurer);
        if (row.title != nullptr) {
            x += widths.Title(record, row, measurer) + separator;
        }
        tree_width = std::max(tree_width, x);
        if (row.column_nb != 0) {
            has_columns = true;
            column_start = std::max(column_start, x);
            columns.Widen(record, row, widths, measurer);
        }
    }
    for (int record = 0; has_columns && record < nb; ++record) {
        if (list_pt[record].column_nb != 0) {
            tree_width = std::max(tree_width, columns.Place(list_pt[record], column_start));
        }
    }
    return tree_width;
}

#include "database/tree_layout.h"

#include <algorithm>
#include <new>

namespace {

constexpr int ROWS_BETWEEN_STARTS = 1024;

/** Gives records that are passed one by one their rows, and keeps starts on the way. */
class Row_Numbering {
  public:
    Row_Numbering(int record_nb, DB_List* records, Tree_Layout& of_layout)
        : list_pt(records), walk(record_nb, records), layout(of_layout) {}

    void Pass(int record) {
        if (record < walk.Record()) {
            Write(record, DB_ROW_NONE);
            return;
        }
        const int row = walk.Row();
        if (row % ROWS_BETWEEN_STARTS == 0 && row != 0) {
            Keep({record, row, lines});
        }
        Write(record, row);
        lines.Pass(list_pt[record]);
        walk.Next();
        layout.row_nb = walk.Row();
    }

  private:
    void Keep(const Tree_Start& start) {
        try {
            layout.starts.push_back(start);
        } catch (const std::bad_alloc&) {
            return;  // a drawing walks further to its first row
        }
    }
    /** Most redraws change no row, and what is not written need not go back to memory. */
    void Write(int record, int row) {
        const std::uint16_t number = Tree_Row_Number(row);
        if (list_pt[record].row != number) {
            list_pt[record].row = number;
        }
    }

    DB_List* list_pt;
    Tree_Walk walk;
    Tree_Layout& layout;
    Tree_Lines lines;
};

}  // namespace

Tree_Start Tree_Layout::Start_For(int row) const {
    const auto below = std::upper_bound(starts.begin(), starts.end(), row,
                                        [](int wanted, const Tree_Start& start) { return wanted < start.row; });
    return below != starts.begin() ? *(below - 1) : Tree_Start{};
}

Tree_Layout Tree_Lay_Out(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer) {
    Tree_Layout layout;
    Row_Numbering rows(nb, list_pt, layout);
    int record = 0;
    try {
        Row_Widths row_widths(space, widths, measurer);
        while (record < nb) {
            const int at = record++;
            rows.Pass(at);
            row_widths.Add(at, list_pt[at]);
        }
        layout.width = row_widths.Place(nb, list_pt);
    } catch (const std::bad_alloc&) {
        for (; record < nb; ++record) {  // the others get their rows without widths
            rows.Pass(record);
        }
    }
    return layout;
}

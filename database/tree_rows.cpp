#include "database/tree_rows.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int ROW_TOP = 9;          // pixels from the top of the tree to the first row's upper edge
constexpr int ROW_MIDDLE = 19;      // ... to its middle line
constexpr float FAR_AWAY = 1.0e8F;  // pixels; no tree is that large, and sums of some stay far inside 32 bits

}  // namespace

int Tree_Rows_Number(int nb, DB_List* list_pt) {
    Tree_Walk walk(nb, list_pt);
    while (!walk.At_End()) {
        const int next = walk.Next_Record();
        list_pt[walk.Record()].row = Tree_Row_Number(walk.Row());
        for (int hidden = walk.Record() + 1; hidden < next; ++hidden) {
            list_pt[hidden].row = DB_ROW_NONE;
        }
        walk.Next();
    }
    return walk.Row();
}

int Tree_Row_Find(int nb, const DB_List* list_pt, int row, int from) {
    if (list_pt == nullptr || row < 0 || row >= DB_ROW_NONE) {
        return -1;
    }
    for (int record = std::max(from, 0); record < nb;) {
        const int at = list_pt[record].row;
        if (at == row) {
            return record;
        }
        record += at < row ? row - at : 1;  // each row between has a record at least
    }
    return -1;
}

void Tree_Range_Flip(int nb, DB_List* list_pt, int row_a, int row_b) {
    if (list_pt == nullptr) {
        return;
    }
    const int last = std::min(std::max(row_a, row_b), nb - 1);
    int from = 0;
    for (int row = std::max(std::min(row_a, row_b), 0); row <= last;) {
        const int record = Tree_Row_Find(nb, list_pt, row, from);
        if (record < 0) {
            return;
        }
        const auto state = static_cast<std::uint16_t>(list_pt[record].state ^ DB_STATE_CHECKED);
        list_pt[record].state = state;
        int below = record + 1;
        for (; below < nb && list_pt[below].level > list_pt[record].level; ++below) {
            list_pt[below].state = state;
            row = std::max<int>(row, list_pt[below].row);
        }
        ++row;
        from = below;
    }
}

void Tree_Uncheck(int nb, DB_List* list_pt) {
    for (int record = 0; list_pt != nullptr && record < nb; ++record) {
        list_pt[record].state = static_cast<std::uint16_t>(list_pt[record].state & ~DB_STATE_MASK);
    }
}

int Tree_Pixels(float position) {
    if (std::isnan(position)) {
        return 0;
    }
    return static_cast<int>(std::clamp(position, -FAR_AWAY, FAR_AWAY));
}

int Tree_Row_At(int y) {
    return (y - ROW_TOP) / DB_ROW_HEIGHT;
}

int Tree_Column_At(int x) {
    return x / DB_INDENTATION;
}

int Tree_Row_Middle(int row) {
    return ROW_MIDDLE + row * DB_ROW_HEIGHT;
}

Tree_Extent Tree_Height_Extent(int row_nb, int box_height) {
    return {row_nb * DB_ROW_HEIGHT <= box_height, box_height, (row_nb + 1) * DB_ROW_HEIGHT};
}

Tree_Extent Tree_Width_Extent(int tree_width, int space, int box_width) {
    const int total = tree_width + 2 * space;
    return {total <= box_width, box_width, total};
}

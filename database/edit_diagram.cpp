#include "database/edit_diagram.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int COLUMN_SHIFT = 8;  // pixels left of a cell that pick it: the parent handle stands out there
constexpr int ROW_SHIFT = 5;     // pixels: the limit between two rows lies in the gap

constexpr int TOGGLE_CHILDREN = 2;  // children that make a node worth collapsing: the first one is always shown

bool Is_Near(int position, int middle) {
    return std::abs(position - middle) <= EDIT_ZONE_REACH;
}

int Zone_X(Edit_Zone zone) {
    switch (zone) {
        case Edit_Zone::Children_Handle:
            return EDIT_NODE_WIDTH;
        case Edit_Zone::Toggle:
            return EDIT_TOGGLE_X;
        default:
            return 0;
    }
}

DB_Tree_Point On_Middle(int level, int row, int x) {
    return {EDIT_CELL_WIDTH * level + x, EDIT_CELL_HEIGHT * row + EDIT_MIDDLE_Y};
}

/** The record that stands in a cell; -1: none. */
int Record_In(int nb, const DB_List* list_pt, int level, int row) {
    if (level < 0 || row < 0 || row >= DB_ROW_NONE) {
        return -1;
    }
    for (int i = 0; i < nb; ++i) {
        const DB_List& node = list_pt[i];
        if (node.row == row && node.level == level) {
            return i;
        }
        if (node.row > row && node.row != DB_ROW_NONE) {
            break;
        }
    }
    return -1;
}

Edit_Hit Zone_At(int record, const DB_List& node, int x, int y) {
    if (Is_Near(y, EDIT_MIDDLE_Y)) {
        for (const Edit_Zone zone : {Edit_Zone::Parent_Handle, Edit_Zone::Children_Handle, Edit_Zone::Toggle}) {
            if (Is_Near(x, Zone_X(zone)) && Has_Edit_Zone(record, node, zone)) {
                return {true, Edit_Code(record, zone)};
            }
        }
    }
    if (x <= EDIT_NODE_WIDTH && y <= EDIT_CELL_HEIGHT) {
        return {true, Edit_Code(record, Edit_Zone::Body)};
    }
    return {};
}

}  // namespace

bool Has_Edit_Zone(int record, const DB_List& node, Edit_Zone zone) {
    switch (zone) {
        case Edit_Zone::Parent_Handle:
            return record != 0;
        case Edit_Zone::Children_Handle:
            return node.child_nb > 0;
        case Edit_Zone::Toggle:
            return node.child_nb >= TOGGLE_CHILDREN;
        default:
            return true;
    }
}

// ---- rows

bool Edit_Walk::Is_First_Child(int of) const {
    return of > 0 && list[of].parent == static_cast<std::uint16_t>(of - 1) && list[of].level > list[of - 1].level;
}

/** The walk begins with the first record without asking: that one names itself as its parent, collapsed or not. */
bool Edit_Walk::Is_Shown(int of) const {
    const int parent = list[of].parent;
    return Is_First_Child(of) || parent >= nb || (list[parent].flag & DB_FLAG_EXPANDED) != 0;
}

void Edit_Walk::Next() {
    const int level = Node().level;
    for (++record; record < nb; record += 1 + list[record].desc_nb) {
        if (Is_Shown(record)) {
            row += Node().level > level ? 0 : 1;
            return;
        }
    }
}

Edit_Extent Edit_Rows_Assign(int nb, DB_List* list_pt) {
    for (int i = 0; list_pt != nullptr && i < nb; ++i) {
        list_pt[i].row = DB_ROW_NONE;
    }
    Edit_Extent extent;
    for (Edit_Walk walk(nb, list_pt); !walk.At_End() && walk.Row() < DB_ROW_NONE; walk.Next()) {
        list_pt[walk.Record()].row = static_cast<std::uint16_t>(walk.Row());
        extent.row_nb = walk.Row() + 1;
        extent.level_nb = std::max(extent.level_nb, walk.Node().level + 1);
    }
    return extent;
}

namespace {
Tree_Extent Extent_Of(int total, int visible) {
    return {total <= visible, visible, total};
}
}  // namespace

Tree_Extent Edit_Height_Extent(int row_nb, int box_height) {
    return Extent_Of(row_nb * EDIT_CELL_HEIGHT + EDIT_BOTTOM_MARGIN, box_height);
}

Tree_Extent Edit_Width_Extent(int level_nb, int space, int box_width) {
    return Extent_Of(level_nb * EDIT_CELL_WIDTH + 2 * space, box_width);
}

// ---- positions

DB_Tree_Point Edit_Cell(const DB_List& node) {
    return {EDIT_CELL_WIDTH * node.level, EDIT_CELL_HEIGHT * node.row};
}

DB_Tree_Point Edit_Zone_Point(const DB_List& node, Edit_Zone zone) {
    return On_Middle(node.level, node.row, Zone_X(zone));
}

int Edit_Lines::Of(const Edit_Walk& walk, Edit_Line (&line)[PER_NODE]) {
    const DB_List& node = walk.Node();
    const int level = node.level;
    const int row = walk.Row();
    const bool remembered = level < LEVEL_MAX;
    const int above = remembered ? last_row[level] : row;
    if (remembered) {
        last_row[level] = static_cast<std::uint16_t>(row);
    }
    if (walk.Record() == 0 || level == 0) {
        return 0;
    }
    const DB_Tree_Point end = On_Middle(level, row, 0);
    if (walk.Is_First_Child()) {
        line[0] = {On_Middle(level - 1, row, EDIT_NODE_WIDTH), end};
        return 1;
    }
    const DB_Tree_Point corner = On_Middle(level - 1, row, EDIT_TOGGLE_X);
    line[0] = {On_Middle(level - 1, above, EDIT_TOGGLE_X), corner};
    line[1] = {corner, end};
    return 2;
}

// ---- locating

Edit_Hit Edit_Hit_At(int nb, const DB_List* list_pt, const DB_Tree_Point& at) {
    if (list_pt == nullptr) {
        return {};
    }
    // The shifts choose the cell only; the zones in it are counted from its own corner.
    const int column = (at.x + COLUMN_SHIFT) / EDIT_CELL_WIDTH;
    const int row = (at.y - ROW_SHIFT) / EDIT_CELL_HEIGHT;
    const int record = Record_In(nb, list_pt, column, row);
    if (record < 0) {
        return {};
    }
    return Zone_At(record, list_pt[record], at.x - EDIT_CELL_WIDTH * column, at.y - EDIT_CELL_HEIGHT * row);
}

// ---- marks

bool Edit_Marks::Is_Dragged(int code) const {
    return std::binary_search(dragged.begin(), dragged.end(), code);
}

bool Edit_Marks::Is_Node_Highlighted(int record) const {
    const int body = Edit_Code(record, Edit_Zone::Body);
    return (body != 0 && body == highlighted) || Is_Dragged(Edit_Code(record, Edit_Zone::Parent_Handle));
}

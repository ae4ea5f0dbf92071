#include "workbench/database/tree_keys.h"

#include <algorithm>

#include "host/kit_widgets.h"

namespace workbench {

namespace {

constexpr int FIRST_TOP = 9;  // a row covers FIRST_TOP + TREE_ROW_HEIGHT * row and the 17 pixels below

bool Is_Branch(const DB_List& record) {
    return record.child_nb != 0;
}
bool Is_Open(const DB_List& record) {
    return (record.flag & DB_FLAG_EXPANDED) != 0;
}

/** The record above `record` in the tree; -1 for roots. */
int Parent_Of(const DB_List* list_pt, int record) {
    const int level = list_pt[record].level;
    for (int at = record - 1; at >= 0; --at) {
        if (list_pt[at].level < level) {
            return at;
        }
    }
    return -1;
}

}  // namespace

std::vector<int> Tree_Shown(int nb, const DB_List* list_pt) {
    std::vector<int> shown;
    for (int at = 0; list_pt != nullptr && at < nb; ++at) {
        shown.push_back(at);
        if (!Is_Open(list_pt[at])) {
            at += list_pt[at].desc_nb;
        }
    }
    return shown;
}

Tree_Step Tree_Key_Step(int nb, const DB_List* list_pt, int current, int key, int page) {
    const std::vector<int> shown = Tree_Shown(nb, list_pt);
    if (shown.empty()) {
        return {};
    }
    const int last = static_cast<int>(shown.size()) - 1;
    // The last shown record at or before the current one: itself, or the branch that hides it.
    const auto after = std::ranges::upper_bound(shown, current);
    const int row = after == shown.begin() ? -1 : static_cast<int>(after - shown.begin()) - 1;
    const auto go = [&](int to) { return Tree_Step{shown[static_cast<std::size_t>(std::clamp(to, 0, last))], false}; };
    if (row < 0) {
        return key == KEY_END || key == KEY_UP ? go(last) : go(0);
    }
    const int record = shown[static_cast<std::size_t>(row)];
    switch (key) {
        case KEY_UP:
            return go(row - 1);
        case KEY_DOWN:
            return go(row + 1);
        case KEY_PAGE_UP:
            return go(row - page);
        case KEY_PAGE_DOWN:
            return go(row + page);
        case KEY_HOME:
            return go(0);
        case KEY_END:
            return go(last);
        case KEY_LEFT:
            if (Is_Branch(list_pt[record]) && Is_Open(list_pt[record])) {
                return {record, true};
            }
            return {std::max(Parent_Of(list_pt, record), 0), false};
        case KEY_RIGHT:
            if (Is_Branch(list_pt[record]) && !Is_Open(list_pt[record])) {
                return {record, true};
            }
            return Is_Branch(list_pt[record]) ? go(row + 1) : Tree_Step{record, false};
        default:
            return {record, false};
    }
}

float Tree_Scroll_To(int row, float position, int box_height) {
    const int top = row == 0 ? 0 : FIRST_TOP + TREE_ROW_HEIGHT * row;
    const int bottom = FIRST_TOP + TREE_ROW_HEIGHT * (row + 1);
    const int now = static_cast<int>(position);
    if (top < now) {
        return static_cast<float>(top);
    }
    if (bottom > now + box_height) {
        return static_cast<float>(std::max(std::min(bottom - box_height, top), 0));
    }
    return position;
}

int Tree_Shown_Middle(int row) {
    return FIRST_TOP + TREE_ROW_HEIGHT * row + TREE_ROW_HEIGHT / 2;
}

void Tree_Expand_All(int nb, DB_List* list_pt, bool open) {
    for (int at = 0; list_pt != nullptr && at < nb; ++at) {
        if (Is_Branch(list_pt[at])) {
            list_pt[at].flag = static_cast<std::uint16_t>(open ? list_pt[at].flag | DB_FLAG_EXPANDED
                                                               : list_pt[at].flag & ~DB_FLAG_EXPANDED);
        }
    }
}

}  // namespace workbench

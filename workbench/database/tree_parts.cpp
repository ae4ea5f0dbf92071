#include "workbench/database/tree_parts.h"

#include <oleacc.h>

#include <cstddef>
#include <utility>

#include "workbench/database/tree_keys.h"
#include "workbench/wide_text.h"

namespace {

constexpr int row_height = 18;  // pixels

LONG State_Of(const DB_List& record, bool has_children, bool is_current) {
    LONG state = STATE_SYSTEM_SELECTABLE;
    const int check = record.state & DB_STATE_MASK;
    state |= check == DB_STATE_CHECKED ? STATE_SYSTEM_CHECKED : 0;
    state |= check == DB_STATE_PARTIAL ? STATE_SYSTEM_MIXED : 0;
    if (has_children) {
        state |= (record.flag & DB_FLAG_EXPANDED) != 0 ? STATE_SYSTEM_EXPANDED : STATE_SYSTEM_COLLAPSED;
    }
    return state | (is_current ? STATE_SYSTEM_SELECTED : 0);
}

}  // namespace

std::vector<Accessible_Part> Tree_Parts(const Tool_DB_List& tree, int current, HWND window) {
    std::vector<Accessible_Part> parts;
    const DB_List* const records = tree.List_Pt();
    if (records == nullptr || (tree.mode & DB_MODE_EDIT) != 0) {
        return parts;
    }
    RECT client = {};
    ::GetClientRect(window, &client);
    // The panel's window counts y upwards.
    const int top = client.bottom - (tree.list_box.y + tree.list_box.height);
    const std::vector<int> shown = Tree_Shown(tree.Nb(), records);
    for (std::size_t row = 0; row < shown.size(); ++row) {
        const int middle = Tree_Shown_Middle(static_cast<int>(row)) - static_cast<int>(tree.vertical.value);
        if (middle < 0 || middle >= tree.list_box.height) {
            continue;
        }
        const int at = shown[row];
        const DB_List& record = records[at];
        Accessible_Part part;
        part.name = Wide_Of_Panel(record.title != nullptr ? record.title : "");
        if (record.name != nullptr && record.name[0] != 0) {
            part.name += (part.name.empty() ? L"" : L": ") + Wide_Of_Panel(record.name);
        }
        part.value = L"level " + std::to_wstring(record.level);
        part.role = ROLE_SYSTEM_OUTLINEITEM;
        const bool has_children = at + 1 < tree.Nb() && records[at + 1].level > record.level;
        part.state = State_Of(record, has_children, at == current);
        part.place = {tree.list_box.x, top + middle - row_height / 2, tree.list_box.x + tree.list_box.width,
                      top + middle + row_height / 2};
        parts.push_back(std::move(part));
    }
    return parts;
}

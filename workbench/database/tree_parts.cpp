#include "workbench/database/tree_parts.h"

#include <oleacc.h>

#include <cstddef>
#include <utility>

#include "database/editor_places.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/database/tree_keys.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

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

/** What a row and a node have in common. */
Accessible_Part Part_Of(const DB_List& record, bool can_open, bool is_current) {
    Accessible_Part part;
    part.name = Wide_Of_Panel(record.title != nullptr ? record.title : "");
    if (record.name != nullptr && record.name[0] != 0) {
        part.name += (part.name.empty() ? L"" : L": ") + Wide_Of_Panel(record.name);
    }
    part.value = L"level " + std::to_wstring(record.level);
    part.level = record.level + 1;
    part.role = ROLE_SYSTEM_OUTLINEITEM;
    part.state = State_Of(record, can_open, is_current);
    return part;
}

/** The record whose node is under the pointer; -1: none. The first one is never painted highlighted. */
int Highlighted(const Tool_DB_List& editor) {
    int x = 0;
    int y = 0;
    const int record = Window_Pointer(editor.list_box.window, &x, &y) ? DB_Editor_Body_At(editor, x, y) : -1;
    return record > 0 ? record : -1;
}

/** The nodes of the diagram, as it was painted last. */
std::vector<Accessible_Part> Editor_Parts(const Tool_DB_List& editor, int client_height) {
    constexpr int toggle_children = 2;  // fewer cannot be folded away
    std::vector<Accessible_Part> parts;
    const Boxs& box = editor.list_box;
    const RECT view = {box.x, client_height - box.y - box.height, box.x + box.width, client_height - box.y};
    const int highlighted = Highlighted(editor);
    for (int at = 0; at < editor.Nb(); ++at) {
        const DB_List& record = editor.List_Pt()[at];
        DB_Node_Box place;
        if (!DB_Editor_Node_Box(editor, at, &place)) {
            continue;
        }
        const RECT node = {place.x, client_height - place.y - place.height, place.x + place.width,
                           client_height - place.y};
        RECT seen = {};
        if (::IntersectRect(&seen, &node, &view) == 0) {
            continue;
        }
        Accessible_Part part = Part_Of(record, record.child_nb >= toggle_children, false);
        part.state |= at == highlighted ? STATE_SYSTEM_HOTTRACKED : 0;
        part.place = seen;
        parts.push_back(std::move(part));
    }
    return parts;
}

}  // namespace

std::vector<Accessible_Part> Tree_Parts(const Tool_DB_List& tree, int current, HWND window) {
    std::vector<Accessible_Part> parts;
    const DB_List* const records = tree.List_Pt();
    if (records == nullptr) {
        return parts;
    }
    RECT client = {};
    ::GetClientRect(window, &client);
    if ((tree.mode & DB_MODE_EDIT) != 0) {
        return Editor_Parts(tree, client.bottom);
    }
    // The panel's window counts y upwards.
    const int top = client.bottom - (tree.list_box.y + tree.list_box.height);
    const std::vector<int> shown = Tree_Shown(tree.Nb(), records);
    for (std::size_t row = 0; row < shown.size(); ++row) {
        const int middle = Tree_Shown_Middle(static_cast<int>(row)) - static_cast<int>(tree.vertical.value);
        if (middle < 0 || middle >= tree.list_box.height) {
            continue;
        }
        const int at = shown[row];
        const bool has_children = at + 1 < tree.Nb() && records[at + 1].level > records[at].level;
        Accessible_Part part = Part_Of(records[at], has_children, at == current);
        part.place = {tree.list_box.x, top + middle - TREE_ROW_HEIGHT / 2, tree.list_box.x + tree.list_box.width,
                      top + middle + TREE_ROW_HEIGHT / 2};
        parts.push_back(std::move(part));
    }
    return parts;
}

}  // namespace workbench

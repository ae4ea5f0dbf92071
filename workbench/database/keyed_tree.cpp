#include "workbench/database/keyed_tree.h"

#include <algorithm>
#include <utility>

#include "base/drawing_dc.h"
#include "base/gdi_handles.h"
#include "database/editor_places.h"
#include "kits/dataset/dataset_host.h"
#include "workbench/database/tree_keys.h"

namespace workbench {

namespace {

constexpr int INDENTATION = 20;  // per level

/** Puts the pointer globals somewhere for as long as it lives. */
class Pointer_At {
  public:
    Pointer_At(HWND window, int x, int y) : kept_x(YCursor_X), kept_y(YCursor_Y) {
        RECT client = {};
        ::GetClientRect(window, &client);
        POINT point = {x, client.bottom - 1 - y};
        ::ClientToScreen(window, &point);
        YCursor_X = point.x;
        YCursor_Y = point.y;
    }
    ~Pointer_At() {
        YCursor_X = kept_x;
        YCursor_Y = kept_y;
    }
    Pointer_At(const Pointer_At&) = delete;
    Pointer_At& operator=(const Pointer_At&) = delete;

  private:
    int kept_x;
    int kept_y;
};

}  // namespace

Keyed_Tree::Keyed_Tree(Tool_DB_List& hosted, const Look& shared_look,
                       std::function<bool(const std::string&)> may_remove)
    : Panel_Of<Tool_DB_List>(hosted, [](Tool_DB_List& of) { return of.Height(1); }),
      tree(hosted),
      look(shared_look),
      removal_allowed(std::move(may_remove)) {}

void Keyed_Tree::Draw() {
    Panel_Of<Tool_DB_List>::Draw();
    Mark();
}

int Keyed_Tree::Click(int up_down) {
    const int result = Panel_Of<Tool_DB_List>::Click(up_down);
    is_marked = false;  // the mouse has taken over
    return result;
}

int Keyed_Tree::Motion(int up_down) {
    const int result = Panel_Of<Tool_DB_List>::Motion(up_down);
    if (result != 0) {
        Mark();
    }
    return result;
}

int Keyed_Tree::Scroll(int notches) {
    const int result = Panel_Of<Tool_DB_List>::Scroll(notches);
    Mark();
    return result;
}

void Keyed_Tree::Update(unsigned __int64 flags) {
    Panel_Of<Tool_DB_List>::Update(flags);
    current = std::min(current, tree.Nb() - 1);
    Mark();
}

int Keyed_Tree::Row_Of(int record) const {
    const std::vector<int> shown = Tree_Shown(tree.Nb(), tree.List_Pt());
    const auto found = std::ranges::lower_bound(shown, record);
    return found != shown.end() && *found == record ? static_cast<int>(found - shown.begin()) : -1;
}

int Keyed_Tree::Row_Y(int row) const {
    return static_cast<int>(tree.vertical.value) + tree.list_box.y + tree.list_box.height - Tree_Shown_Middle(row);
}

/** A frame around the current row. */
void Keyed_Tree::Mark() {
    const int row = is_marked && current >= 0 && !Is_Editor() ? Row_Of(current) : -1;
    if (row < 0) {
        return;
    }
    const Boxs& box = tree.list_box;
    const Drawing_DC drawing(box.window, "Keyed_Tree::Mark");
    if (const HDC dc = drawing.Get(); dc != nullptr) {
        const int middle = Row_Y(row);
        const Saved_DC saved(dc);
        ::IntersectClipRect(dc, box.x, box.y, box.x + box.width, box.y + box.height);
        const Gdi_Pen pen(::CreatePen(PS_SOLID, 1, look.accent));
        const Selected_Object selected(dc, pen.Get());
        const int left = box.x;
        const int right = box.x + box.width - 1;
        const int low = middle - TREE_ROW_HEIGHT / 2;
        const int high = middle + TREE_ROW_HEIGHT / 2 - 1;
        const POINT frame[] = {{left, low}, {right, low}, {right, high}, {left, high}, {left, low}};
        ::Polyline(dc, frame, 5);
    }
}

void Keyed_Tree::Show(int record) {
    current = record;
    const int row = Row_Of(record);
    if (row >= 0) {
        tree.vertical.value = Tree_Scroll_To(row, tree.vertical.value, tree.list_box.height);
        tree.vertical.Adjust();
    }
    Draw();
}

void Keyed_Tree::Go_To(int record) {
    is_marked = true;
    Show(record);
}

void Keyed_Tree::Expand_All(bool open) {
    Tree_Expand_All(tree.Nb(), tree.List_Pt(), open);
    Draw();
}

/** Checks or unchecks a row as a click on it does, and keeps the other marks. */
void Keyed_Tree::Check(int record) {
    Show(record);
    const int row = Row_Of(record);
    if (row < 0) {
        return;
    }
    // Beside the lead cell, which would open or close the branch.
    const int level = tree.List_Pt()[record].level;
    const int first = static_cast<int>(tree.horizontal.value) / INDENTATION;
    const int x = tree.list_box.x + INDENTATION * (first + 1 == level ? 3 : 1) + INDENTATION / 2;
    const Pointer_At pointer(tree.list_box.window, x, Row_Y(row));
    const int mode = std::exchange(tree.mode, tree.mode | DB_MODE_ADD);
    Panel_Of<Tool_DB_List>::Click(MOUSE_PRESS | MOUSE_LEFT);
    Panel_Of<Tool_DB_List>::Click(0);
    tree.mode = mode;
    Draw();
}

int Keyed_Tree::Remove() {
    POINT point = {YCursor_X, YCursor_Y};
    ::ScreenToClient(tree.list_box.window, &point);
    RECT client = {};
    ::GetClientRect(tree.list_box.window, &client);
    const int y = client.bottom - 1 - point.y;
    const std::string name = Class_At(tree, point.x, y);
    if (name.empty()) {
        return 1;  // in the editor the key is no one else's: it must not take a marker away
    }
    const bool is_allowed = !removal_allowed || removal_allowed(name);
    if (is_allowed) {
        // The question has moved the pointer.
        const Pointer_At pointer(tree.list_box.window, point.x, y);
        Panel_Of<Tool_DB_List>::Keyboard(KEY_DELETE);
    }
    return 1;
}

int Keyed_Tree::Keyboard(int key) {
    if (Is_Editor()) {
        return key == KEY_DELETE ? Remove() : Panel_Of<Tool_DB_List>::Keyboard(key);
    }
    if (tree.Nb() == 0) {
        return 0;
    }
    if (key == ' ' && current >= 0) {
        is_marked = true;
        Check(current);
        return 1;
    }
    switch (key) {
        case KEY_UP:
        case KEY_DOWN:
        case KEY_PAGE_UP:
        case KEY_PAGE_DOWN:
        case KEY_HOME:
        case KEY_END:
        case KEY_LEFT:
        case KEY_RIGHT:
            break;
        default:
            return Panel_Of<Tool_DB_List>::Keyboard(key);
    }
    const int page = std::max(tree.list_box.height / TREE_ROW_HEIGHT - 1, 1);
    const Tree_Step step = Tree_Key_Step(tree.Nb(), tree.List_Pt(), current, key, page);
    if (step.toggle) {
        tree.List_Pt()[step.record].flag ^= DB_FLAG_EXPANDED;
        Draw();  // numbers the rows and sizes the slider
    }
    Go_To(step.record);
    return 1;
}

std::string Class_At(const Tool_DB_List& editor, int x, int y) {
    const int record = DB_Editor_Body_At(editor, x, y);
    if (record <= 0) {  // none, or the root, which Delete leaves
        return {};
    }
    const DB_List& node = editor.List_Pt()[record];
    const char* text = node.name != nullptr ? node.name : node.title;
    return text != nullptr ? text : "?";
}

}  // namespace workbench

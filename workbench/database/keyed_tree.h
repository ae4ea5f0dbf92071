/** A database panel with a current row that keys move. The panel itself knows only the mouse. */
#pragma once

#include <functional>
#include <string>

#include "database/tool_db_list.h"
#include "workbench/panel_host.h"

namespace workbench {

class Keyed_Tree : public Panel_Of<Tool_DB_List> {
  public:
    /** @param may_remove asked in edit mode before the class of this name is taken out of the tree */
    Keyed_Tree(Tool_DB_List& hosted, const Look& shared_look, std::function<bool(const std::string&)> may_remove);
    void Draw() override;
    int Click(int up_down) override;
    int Motion(int up_down) override;
    int Scroll(int notches) override;
    /** Arrows, Page Up, Page Down, Home, End: other row. Space: checks or unchecks it. In edit mode only Delete. */
    int Keyboard(int key) override;
    void Update(unsigned __int64 flags) override;

    /** Opens or closes every branch and draws the panel. */
    void Expand_All(bool open);
    /** Makes a record the current row and scrolls to it. */
    void Go_To(int record);
    int Current() const { return current; }
    Tool_DB_List& Tree() { return tree; }

  private:
    bool Is_Editor() const { return (tree.mode & DB_MODE_EDIT) != 0; }
    void Mark();
    void Show(int record);
    int Row_Of(int record) const;
    /** The window's own y of a displayed row's middle. */
    int Row_Y(int row) const;
    void Check(int record);
    int Remove();

    Tool_DB_List& tree;
    const Look& look;
    std::function<bool(const std::string&)> removal_allowed;
    int current = -1;        // record of the marked row
    bool is_marked = false;  // from the first key on
};

/** Name or title of the class that Delete takes out of the tree with the pointer at a position of the editor; empty:
 *  none. @param x, y of the window's axis */
std::string Class_At(const Tool_DB_List& editor, int x, int y);

}  // namespace workbench

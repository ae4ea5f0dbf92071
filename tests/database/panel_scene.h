/** A database panel over a view of many leaves, in a window. Windows only. */
#pragma once

#include <string>
#include <vector>

#include "database/tool_db_fct.h"
#include "database/tool_db_list.h"
#include "tests/support/panel_fixture.h"

inline constexpr int PANEL_WIDTH = 340;
inline constexpr int PANEL_HEIGHT = 300;
inline constexpr int LEAVES = 40;

/** A branch with leaves that have names; the first title is wider than the panel unless it is to be narrow. The view
 *  writes down what is asked of it. */
class Wide_View : public Tool_DB_List {
  public:
    explicit Wide_View(int mode_word = 2) { mode = mode_word; }
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int, int, void*) override {
        calls.emplace_back("create");
        if (fails) {  // as after a growth without memory
            *nb = 7;
            *list_pt = nullptr;
            return 0;
        }
        for (int i = 0; i <= LEAVES; ++i) {
            DB_List* const record = DB_List_Append(nb, list_pt, {__FILE__, __LINE__});
            record->flag = i == 0 ? DB_FLAG_EXPANDED : DB_FLAG_LEAF;
            record->level = i == 0 ? 0 : 1;
            record->icon = DB_ICON_DEFAULT;
            DB_List_Text_Copy(&record->name, "name", "name", {__FILE__, __LINE__});
        }
        (*list_pt)->child_nb = LEAVES;
        (*list_pt)->desc_nb = LEAVES;
        DB_List_Text_Copy(&(*list_pt)->title, std::string(is_narrow ? 1 : 200, 'W').c_str(), "title",
                          {__FILE__, __LINE__});
        return 1;
    }
    void List_Select_From_DB(int nb, DB_List* list_pt) override {
        calls.emplace_back("from");
        for (int i = 1; list_pt != nullptr && i < nb; ++i) {
            list_pt[i].state = i == 3 ? DB_STATE_CHECKED : DB_STATE_NONE;
        }
    }
    void List_Select_To_DB(int nb, DB_List* list_pt) override {
        calls.emplace_back("to");
        checked.clear();
        for (int i = 0; list_pt != nullptr && i < nb; ++i) {
            if ((list_pt[i].state & DB_STATE_CHECKED) != 0) {
                checked.push_back(i);
            }
        }
    }
    bool fails = false;
    bool is_narrow = false;
    std::vector<std::string> calls;
    std::vector<int> checked;
};

class Panel_Scene : public Panel_Fixture {
  protected:
    Panel_Scene() : Panel_Fixture(Window_Axis::Up, PANEL_WIDTH, PANEL_HEIGHT) {
        Define_Dimensions();
        db_drag = {};
    }
    ~Panel_Scene() override { db_drag = {}; }
    void Show(Tool_DB_List& panel) {
        Boxs host = Host_Box(10, 10, PANEL_WIDTH - 20, PANEL_HEIGHT - 20);
        panel.Resize(&host);
        panel.Update(UPDATE_STRUCTURE);
        panel.Draw();
        messages.Take();
    }
    void Point_At_Row(const Tool_DB_List& panel, int row) {
        const Boxs& tree = panel.list_box;
        Point_At(tree.x + 150, tree.y + tree.height + static_cast<int>(panel.vertical.value) - 19 - 18 * row);
    }
};

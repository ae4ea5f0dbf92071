// The host ends a panel while an operation of it has called the host: nothing of the panel is touched any more.
#include <windows.h>

#include <algorithm>
#include <functional>
#include <new>
#include <string>
#include <utility>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "tests/database/file_scene.h"
#include "tests/database/panel_scene.h"
#include "tests/database/typed_name.h"

namespace {

/** A panel in pages of its own, which nobody can read once it has ended. */
template <class Panel>
class Own_Pages {
  public:
    template <class... Arguments>
    explicit Own_Pages(Arguments&&... arguments)
        : pages(::VirtualAlloc(nullptr, sizeof(Panel), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)),
          panel(new (pages) Panel(std::forward<Arguments>(arguments)...)) {}
    ~Own_Pages() {
        End();
        ::VirtualFree(pages, 0, MEM_RELEASE);
    }
    Own_Pages(const Own_Pages&) = delete;
    Own_Pages& operator=(const Own_Pages&) = delete;
    Panel& operator*() { return *panel; }
    Panel* operator->() { return panel; }
    bool Is_There() const { return panel != nullptr; }
    void End() {
        if (Panel* const ending = std::exchange(panel, nullptr)) {
            ending->~Panel();
            DWORD before = 0;
            ::VirtualProtect(pages, sizeof(Panel), PAGE_NOACCESS, &before);
        }
    }

  private:
    void* pages;
    Panel* panel;
};

/** Calls `ends` inside the given one of the calls of a view, counted from 1. */
class Ending_View : public Wide_View {
  public:
    explicit Ending_View(int mode_word = 2) : Wide_View(mode_word) {}
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override {
        const unsigned short result = Wide_View::List_Create_From_DB(nb, list_pt, level, parent, object);
        Call("create");
        return result;
    }
    void List_Select_From_DB(int nb, DB_List* list_pt) override {
        Wide_View::List_Select_From_DB(nb, list_pt);
        Call("from");
    }
    void List_Select_To_DB(int nb, DB_List* list_pt) override {
        Wide_View::List_Select_To_DB(nb, list_pt);
        Call("to");
    }
    static inline std::string ending_call;
    static inline std::function<void()> ends;

  private:
    static void Call(const char* call) {
        if (ends && ending_call == call) {
            std::exchange(ends, nullptr)();
        }
    }
};

class Panel_Ends : public Panel_Scene {
  protected:
    Panel_Ends() {
        typed_name = {};
        Variable_Define_Pointer("$WINDOW_CUR", &image);
    }
    ~Panel_Ends() override {
        requests.Answer_Never();
        typed_name = {};
        Ending_View::ends = nullptr;
        Variable_Undefine("$WINDOW_CUR");
    }
    Quorel_Window image;
};

TEST_F(Panel_Ends, inside_the_operations_of_its_view) {
    struct Case {
        const char* call;
        std::function<void(Ending_View&)> operation;
    };
    const auto press = [this](Buttons& button) { Point_At(button.x + 3, button.y + 3); };
    const Case cases[] = {
        {"create", [](Ending_View& panel) { panel.Update(UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D); }},
        {"from", [](Ending_View& panel) { panel.Update(UPDATE_WINDOW_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D); }},
        {"from", [](Ending_View& panel) { panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D); }},
        {"to",
         [&](Ending_View& panel) {
             press(panel.select_all);
             EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
         }},
        {"to",
         [&](Ending_View& panel) {
             press(panel.select_none);
             EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
         }},
        {"to",
         [this](Ending_View& panel) {
             Point_At_Row(panel, 3);
             EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
             EXPECT_EQ(panel.Click(RELEASE), 1);
         }},
    };
    for (const Case& one : cases) {
        Own_Pages<Ending_View> panel;
        Show(*panel);
        Ending_View::ending_call = one.call;
        Ending_View::ends = [&panel] { panel.End(); };
        one.operation(*panel);
        EXPECT_FALSE(panel.Is_There()) << one.call << " was not called";
        EXPECT_FALSE(db_drag.active);
    }
}

/** r(a(b, c), d(e)) of 2D classes. */
class Class_Panel_Ends : public Panel_Ends {
  protected:
    Class_Panel_Ends() {
        for (int i = 0; i < 6; ++i) {
            objects[i].Title_Set(std::string(1, "rabcde"[i]).c_str());
            objects[i].Name_Set("name");
        }
        for (const auto& [parent, child] : {std::pair{0, 1}, {1, 2}, {1, 3}, {0, 4}, {4, 5}}) {
            objects[parent].Child_Add(&objects[child]);
        }
        Variable_Define_Pointer("$DB_2D_ROOT_PT", &objects[0]);
    }
    ~Class_Panel_Ends() override { Variable_Undefine("$DB_2D_ROOT_PT"); }

    /** Ends the panel in the given one of the host's answers, counted from 1. */
    void End_In_Answer(Own_Pages<Tool_DB_Class>& panel, int answer) {
        answers = 0;
        requests.Answer_At_Once([this, &panel, answer](unsigned long long) {
            if (++answers == answer) {
                panel.End();
            }
        });
    }
    /** The requests since the last call: U an update, R a redraw. */
    std::string Told() {
        std::string told;
        for (const Panel_Request& request : requests.Take()) {
            told += request.kind == Panel_Request::Kind::Update ? 'U' : 'R';
        }
        return told;
    }
    void Point(Tool_DB_Class& panel, int record, Edit_Zone zone) {
        DB_Tree_Point at = Edit_Zone_Point(panel.List_Pt()[record], zone);
        at.x += zone == Edit_Zone::Body ? 100 : 0;
        panel.horizontal.value = static_cast<float>(std::max(at.x - 150, 0));
        panel.vertical.value = static_cast<float>(std::max(at.y - 60, 0));
        panel.Draw();
        Point_At(panel.list_box.x + SPACE_DIM - static_cast<int>(panel.horizontal.value) + at.x,
                 panel.list_box.y + panel.list_box.height + static_cast<int>(panel.vertical.value) - at.y);
    }
    Quorel_2D objects[6];
    int answers = 0;
};

TEST_F(Class_Panel_Ends, when_the_editor_tells_of_a_drop) {
    for (int answer = 1; answer <= 2; ++answer) {
        Own_Pages<Tool_DB_Class> panel(2 | DB_MODE_EDIT);
        Show(*panel);
        Point(*panel, 1, Edit_Zone::Children_Handle);
        ASSERT_EQ(panel->Click(LEFT_PRESS), 1);
        ASSERT_TRUE(db_drag.active);
        Point(*panel, 4, Edit_Zone::Children_Handle);
        End_In_Answer(panel, answer);
        EXPECT_EQ(panel->Click(RELEASE), 1);
        EXPECT_FALSE(panel.Is_There());
        EXPECT_EQ(objects[4].Child_Get_Nb(), 1 + answer) << "with the panel its drop ends";
        EXPECT_EQ(Told(), std::string("URU").substr(0, static_cast<std::size_t>(2 * answer - 1)));
        requests.Answer_Never();
        for (int i = 2; i <= 3; ++i) {
            objects[1].Child_Add(&objects[i]);
        }
    }
}

TEST_F(Class_Panel_Ends, when_the_editor_tells_of_a_class_taken_out) {
    Own_Pages<Tool_DB_Class> panel(2 | DB_MODE_EDIT);
    Show(*panel);
    Point(*panel, 1, Edit_Zone::Body);
    End_In_Answer(panel, 1);
    EXPECT_EQ(panel->Keyboard(KEY_DELETE), 0);
    EXPECT_FALSE(panel.Is_There());
    EXPECT_EQ(objects[1].Parent_Get_Pt(), nullptr);
    EXPECT_EQ(Told(), "U") << "no redraw after the end";
}

TEST_F(Class_Panel_Ends, while_the_dialog_is_open_and_when_the_new_name_is_told) {
    for (const bool in_dialog : {true, false}) {
        Own_Pages<Tool_DB_Class> panel(2 | DB_MODE_EDIT);
        Show(*panel);
        Point(*panel, 2, Edit_Zone::Body);
        typed_name = {};
        typed_name.typed = "typed";
        if (in_dialog) {
            typed_name.meanwhile = [&panel] { panel.End(); };
        } else {
            End_In_Answer(panel, 1);
        }
        EXPECT_EQ(panel->Click(RIGHT_PRESS), 1);
        EXPECT_FALSE(panel.Is_There());
        EXPECT_STREQ(objects[2].Name_Get(), in_dialog ? "name" : "typed");
        EXPECT_EQ(Told(), in_dialog ? "" : "U");
        requests.Answer_Never();
    }
}

TEST_F(Class_Panel_Ends, with_all_classes_while_the_dialog_is_open) {
    Own_Pages<Quorel_2D> root;  // whoever asks the class for its name afterwards is found out
    root->Name_Set("root");
    Variable_Define_Pointer("$DB_2D_ROOT_PT", &*root);
    Own_Pages<Tool_DB_Class> panel(2 | DB_MODE_EDIT);
    Show(*panel);
    Point(*panel, 0, Edit_Zone::Body);
    typed_name.typed = "typed";
    typed_name.meanwhile = [&] {
        Variable_Undefine("$DB_2D_ROOT_PT");
        root.End();
    };
    EXPECT_EQ(panel->Click(RIGHT_PRESS), 1);
    EXPECT_EQ(typed_name.asked, "root");
    EXPECT_TRUE(requests.Take_Updates().empty());
}

TEST_F(Class_Panel_Ends, when_the_selection_is_written) {
    for (int answer = 1; answer <= 4; ++answer) {
        for (Quorel_2D& object : objects) {
            object.Flag_Set_Off(0xFF, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        }
        Own_Pages<Tool_DB_Class> panel(2);
        Show(*panel);
        End_In_Answer(panel, answer);
        Point_At(panel->select_all.x + 3, panel->select_all.y + 3);
        EXPECT_EQ(panel->Click(LEFT_PRESS), 1);
        EXPECT_FALSE(panel.Is_There()) << answer;
        EXPECT_EQ(answers, answer) << "nothing more is told";
        requests.Answer_Never();
    }
}

TEST_F(Panel_Ends, when_the_file_view_writes_the_selection) {
    File_Scene files;
    files.Add_File("folder/file", 2);
    for (Quorel_2D_Frame& frame : files.frames) {
        files.Add_Object(&frame);
    }
    Own_Pages<Tool_DB_File> panel(2);
    Show(*panel);
    int answers = 0;
    requests.Answer_At_Once([&](unsigned long long) {
        answers++;
        panel.End();
    });
    Point_At(panel->select_all.x + 3, panel->select_all.y + 3);
    EXPECT_EQ(panel->Click(LEFT_PRESS), 1);
    EXPECT_FALSE(panel.Is_There());
    EXPECT_EQ(answers, 1) << "with the panel its writing ends";
    const unsigned short iterator = Iterator_Init("test", nullptr);
    EXPECT_NE(iterator, 0) << "its own was given back";
    Iterator_End(iterator);
}

}  // namespace

/** A class tree with the editor's diagram of it in a window. */
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_edit.h"
#include "database/tool_db_fct.h"
#include "tests/support/panel_fixture.h"

/** What differs between the dimensions, for tests. */
struct Scene_1D {
    using Object = Quorel_1D;
    static constexpr int DIMENSION = 1;
    static constexpr const char* ROOT = "$DB_1D_ROOT_PT";
};
struct Scene_2D {
    using Object = Quorel_2D;
    static constexpr int DIMENSION = 2;
    static constexpr const char* ROOT = "$DB_2D_ROOT_PT";
};
struct Scene_3D {
    using Object = Quorel_3D;
    static constexpr int DIMENSION = 3;
    static constexpr const char* ROOT = "$DB_3D_ROOT_PT";
};

template <class Dimension>
class Edit_Scene : public Panel_Fixture {
  public:
    using Object = typename Dimension::Object;
    static constexpr int BOX_X = 20;
    static constexpr int BOX_Y = 30;

  protected:
    Edit_Scene(int window_width, int window_height)
        : Panel_Fixture(Window_Axis::Up, window_width, window_height), view(Dimension::DIMENSION | DB_MODE_EDIT) {
        Define_Dimensions();
        db_drag = {};
        box = Host_Box(BOX_X, BOX_Y, window_width - 2 * BOX_X, window_height - 2 * BOX_Y);
        box.border = 1;
        box.Set_Color(90, 100, 110);
        vertical.style = STYLE_SLIDER_VERTICAL;
        horizontal.style = STYLE_SCROLL_BAR;
        for (Sliders* slider : {&vertical, &horizontal}) {
            slider->width = 4;
            slider->height = 4;
            slider->Init(window.Get());
        }
    }
    ~Edit_Scene() override {
        Records_Free();
        db_drag = {};
        Variable_Undefine(Dimension::ROOT);
    }

    /** A new object; appended to its parent. Its name is its title with an N before it. */
    Object* Class(Object* parent, const std::string& title) {
        objects.push_back(std::make_unique<Object>());
        Object* const object = objects.back().get();
        object->Title_Set(title.c_str());
        object->Name_Set(("N" + title).c_str());
        if (parent != nullptr) {
            parent->Child_Add(object);
        } else {
            root = object;
            Variable_Define_Pointer(Dimension::ROOT, root);
        }
        return object;
    }
    /** root(a(b, c(d, e), f), g) */
    void Make_Study() {
        Class(nullptr, "root");
        Object* const a = Class(root, "a");
        Class(a, "b");
        Object* const c = Class(a, "c");
        Class(c, "d");
        Class(c, "e");
        Class(a, "f");
        Class(root, "g");
        Build();
    }
    void Records_Free() {
        DB_Drag_Forget(&box);
        DB_List_Forget(list_pt);
        DB_Edit_Forget(list_pt);
        DB_List_Array_Free(&nb, &list_pt);
    }
    /** The records anew from the objects, as the panel does; they get their rows. */
    void Build() {
        Records_Free();
        view.List_Create_From_DB(&nb, &list_pt, 0, 0, nullptr);
        DB_List_Set_State(nb, list_pt);
        Edit_Rows_Assign(nb, list_pt);
    }
    /** The record of the object with a title; the test fails when there is none. */
    int Find(const std::string& title) const {
        for (int i = 0; i < nb; ++i) {
            if (title == list_pt[i].title) {
                return i;
            }
        }
        ADD_FAILURE() << "no record " << title;
        return 0;
    }
    Object* Object_Of(const std::string& title) const {
        const auto found = std::find_if(objects.begin(), objects.end(),
                                        [&](const auto& object) { return title == object->Title_Get(); });
        return found != objects.end() ? found->get() : nullptr;
    }
    /** "root(a(b,c),g)": the objects below one. */
    static std::string Text_Of(const Object* object) {
        std::string text = object->Title_Get();
        for (int i = 0; i < object->Child_Get_Nb(); ++i) {
            text += (i == 0 ? "(" : ",") + Text_Of(object->Child_Get_Pt(i));
            EXPECT_EQ(object->Child_Get_Pt(i)->Parent_Get_Pt(), object);
        }
        return object->Child_Get_Nb() > 0 ? text + ")" : text;
    }
    std::string Text() const { return Text_Of(root); }

    int Left() const { return box.x + SPACE_DIM - static_cast<int>(horizontal.value); }
    int Top() const { return box.y + box.height + static_cast<int>(vertical.value); }
    void Point_At_Tree(int x, int y) const { Point_At(Left() + x, Top() - y); }
    void Point_At_Zone(const std::string& title, Edit_Zone zone) const {
        const DB_List& row = list_pt[Find(title)];
        ASSERT_NE(row.row, DB_ROW_NONE) << title;
        const DB_Tree_Point at = zone == Edit_Zone::Body ? Edit_Cell(row) : Edit_Zone_Point(row, zone);
        const int inside = zone == Edit_Zone::Body ? 15 : 0;
        Point_At_Tree(at.x + inside, at.y + inside);
    }
    int Draw() { return DB_Edit_Draw(mode, &box, nb, list_pt, &horizontal, &vertical); }
    int Locate() { return DB_Edit_Locate(&box, nb, list_pt, &horizontal, &vertical); }
    int Click(int up_down) { return DB_Edit_Click_DB(mode, &box, up_down, nb, list_pt, &horizontal, &vertical); }
    int Key(int key) { return DB_Edit_Key_DB(mode, &box, key, nb, list_pt, &horizontal, &vertical); }
    int Motion(int up_down) { return DB_Edit_Motion_DB(mode, &box, up_down, nb, list_pt, &horizontal, &vertical); }

    int Press_On(const std::string& title, Edit_Zone zone, int code = LEFT_PRESS) {
        Point_At_Zone(title, zone);
        return Click(code);
    }
    int Release_On(const std::string& title, Edit_Zone zone) {
        Point_At_Zone(title, zone);
        return Click(RELEASE);
    }
    int Delete_On(const std::string& title) {
        Point_At_Zone(title, Edit_Zone::Body);
        return Key(KEY_DELETE);
    }

    std::vector<std::unique_ptr<Object>> objects;
    Object* root = nullptr;
    Tool_DB_Class view;
    int mode = Dimension::DIMENSION | DB_MODE_EDIT;
    int nb = 0;
    DB_List* list_pt = nullptr;
    Boxs box;
    Sliders horizontal;
    Sliders vertical;
};

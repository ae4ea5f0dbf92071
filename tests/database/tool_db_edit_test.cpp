#include "database/tool_db_edit.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_fct.h"
#include "tests/support/panel_fixture.h"

namespace {

constexpr int WIDTH = 1060;
constexpr int HEIGHT = 420;
constexpr int BOX_X = 12;
constexpr int BOX_Y = 30;
constexpr int BOX_WIDTH = 1010;
constexpr int BOX_HEIGHT = 370;

class Tool_DB_Edit_Test : public Panel_Fixture {
  protected:
    Tool_DB_Edit_Test() : Panel_Fixture(Window_Axis::Up, WIDTH, HEIGHT), view(2 | DB_MODE_EDIT) {
        Define_Dimensions();
        db_drag = {};
        box = Host_Box(BOX_X, BOX_Y, BOX_WIDTH, BOX_HEIGHT);
        box.border = 1;
        box.Set_Color(90, 100, 110);
        vertical.style = STYLE_SLIDER_VERTICAL;
        vertical.window = window.Get();
        horizontal.style = STYLE_SCROLL_BAR;
        horizontal.window = window.Get();
    }
    ~Tool_DB_Edit_Test() override {
        DB_List_Forget(list_pt);
        DB_Edit_Forget(list_pt);
        DB_List_Array_Free(&nb, &list_pt);
        db_drag = {};
    }
    Quorel_2D* Class(Quorel_2D* parent, const std::string& title, const std::string& name) {
        objects.push_back(std::make_unique<Quorel_2D>());
        Quorel_2D* object = objects.back().get();
        object->Title_Set(title.c_str());
        object->Name_Set(name.c_str());
        if (parent != nullptr) {
            parent->Child_Add(object);
        }
        return object;
    }
    void Build(Quorel_2D* root) {
        Variable_Define_Pointer("$DB_2D_ROOT_PT", root);
        DB_Edit_Forget(list_pt);
        DB_List_Array_Free(&nb, &list_pt);
        view.List_Create_From_DB(&nb, &list_pt, 0, 0, nullptr);
        DB_List_Set_State(nb, list_pt);
    }
    void Picture(const char* name) {
        const char* dir = std::getenv("DBEDIT_PICTURES");
        if (dir == nullptr) return;
        const Window_Picture p = Pixels();
        std::FILE* f = std::fopen((std::string(dir) + "/" + name + ".ppm").c_str(), "wb");
        std::fprintf(f, "P6 %d %d 255\n", p.width, p.height);
        for (auto v : p.pixels) { std::fputc((v >> 16) & 255, f); std::fputc((v >> 8) & 255, f); std::fputc(v & 255, f); }
        std::fclose(f);
    }

    std::vector<std::unique_ptr<Quorel_2D>> objects;
    Tool_DB_Class view;
    int nb = 0;
    DB_List* list_pt = nullptr;
    Boxs box;
    Sliders horizontal;
    Sliders vertical;
};

TEST_F(Tool_DB_Edit_Test, picture) {
    Quorel_2D* root = Class(nullptr, "patient", "Patient 0021, a long name that does not fit in the label at all");
    Quorel_2D* study = Class(root, "study", "Abdomen");
    Class(study, "series ct", "Axial 5 mm");
    Quorel_2D* b = Class(study, "series mr", "Coronal");
    Class(b, "slice", "one");
    Class(b, "slice", "two");
    Class(study, "series us", "");
    Class(root, "study", "Thorax");
    Build(root);
    Variable_Define_Pointer("$DEFAULT_ICON_PATH", std::getenv("DBEDIT_ICONS"));
    EXPECT_EQ(DB_Edit_Draw(2, &box, nb, list_pt, &horizontal, &vertical), 1);
    Picture("a");
    const DB_Tree_Point p = Edit_Zone_Point(list_pt[3], Edit_Zone::Parent_Handle);
    Point_At(BOX_X + SPACE_DIM + p.x, BOX_Y + BOX_HEIGHT - p.y);
    DB_Edit_Click_DB(2, &box, LEFT_PRESS, nb, list_pt, &horizontal, &vertical);
    Point_At(500, 60);
    DB_Edit_Motion_DB(2, &box, LEFT_DRAG, nb, list_pt, &horizontal, &vertical);
    Picture("b");
    list_pt[1].flag ^= DB_FLAG_EXPANDED;
    box.x = 100; box.width = 420;box.height=270;
    DB_Edit_Draw(2, &box, nb, list_pt, &horizontal, &vertical);
    horizontal.value=60;vertical.value=20;
    DB_Edit_Draw(2, &box, nb, list_pt, &horizontal, &vertical);
    Picture("c");
}

}  // namespace

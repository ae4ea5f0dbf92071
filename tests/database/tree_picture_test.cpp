// A tree in all its looks, written as pictures that people check by eye.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <string>

#include "database/tool_db_fct.h"
#include "kits/dataset/dataset_host.h"
#include "tests/database/tree_scene.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int WIDTH = 560;
constexpr int HEIGHT = 420;
constexpr int SPACE_DIM = 5;

struct Row {
    int level;
    const char* title;
    const char* name;
    const char* icon;
    std::uint16_t state;
};

constexpr Row ROWS[] = {
    {0, "C:\\studies\\abdomen", nullptr, "icon folder.tga", 0},
    {1, "File", "series_001.dcm", "modality ct.tga", 0},
    {2, "Frame", "1", "icon scout.tga", 2},
    {2, "Frame", "2 - 40", "icon volume.tga", 0},
    {2, "Frame", "41", "icon image.tga", 2},
    {1, "File", "cine.dcm", "modality us.tga", 0},
    {2, "Frame", "1", "icon cine.tga", 2},
    {1, "File", "closed.dcm", "modality mr.tga", 0},
    {2, "Frame", "1", "icon image.tga", 2},
    {1, "File", "partly.dcm", "modality nm.tga", 0},
    {2, "Frame", "no access", "icon image.tga", DB_STATE_NO_ACCESS},
    {2, "Frame", "no access, checked", "icon image.tga", DB_STATE_NO_ACCESS | DB_STATE_CHECKED},
    {0, "C:\\studies\\head", nullptr, "icon folder.tga", 0},
    {1, "Tabbed", "one\ttwo\tthree", "modality xa.tga", 2},
    {1, "Locked", "leaf of another class", "icon image.tga", 0},
    {0, nullptr, "a name alone", "icon folder.tga", 0},
    {1, "a title alone", nullptr, "icon folder.tga", 0},
    {2, "deep", "1", "icon folder.tga", 0},
    {3, "deeper", "2", "icon folder.tga", 0},
    {4, "deepest", "the last of its branch", "icon image.tga", 2},
    {3, "beside", "3", "icon image.tga", 0},
    {1, "end", "4", "icon image.tga", 0},
};

/** The built icons, beside this program. */
std::string Icon_Folder() {
    char path[MAX_PATH] = {};
    ::GetModuleFileNameA(nullptr, path, MAX_PATH - 1);
    const std::string program = path;
    return program.substr(0, program.find_last_of("/\\") + 1) + "icons";
}

void Sheet(unsigned short ground, const char* file) {
    const Test_Window window(WIDTH, HEIGHT, Window_Axis::Up);
    Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, SPACE_DIM);
    Variable_Define_Text("$DEFAULT_ICON_PATH", Icon_Folder().c_str());
    Tree_Scene tree;
    for (const Row& row : ROWS) {
        tree.Add(row.level, row.title, row.name);
        tree.rows.back().icon = row.icon;
        tree.rows.back().state = row.state;
    }
    tree.Finish();
    tree[7].flag = static_cast<std::uint16_t>(tree[7].flag & ~DB_FLAG_EXPANDED);
    tree[14].flag |= DB_FLAG_LOCKED;
    Boxs box;
    box.color = {ground, ground, ground, 0};
    box.x = 10;
    box.y = 30;
    box.width = WIDTH - 40;
    box.height = HEIGHT - 40;
    box.Init(window.Get());
    Sliders vertical;
    vertical.style = STYLE_SLIDER_VERTICAL;
    vertical.x = WIDTH - 26;
    vertical.y = 30;
    vertical.width = 16;
    vertical.height = HEIGHT - 40;
    vertical.Init(window.Get());
    Sliders horizontal;
    horizontal.style = STYLE_SCROLL_BAR;
    horizontal.x = 10;
    horizontal.y = 8;
    horizontal.width = WIDTH - 40;
    horizontal.height = 16;
    horizontal.Init(window.Get());
    EXPECT_EQ(DB_List_Draw(&box, tree.Nb(), tree.Pt(), &horizontal, &vertical), 1);
    vertical.Draw();
    horizontal.Draw();
    window.Point_At_Logical(250, 200);
    DB_List_Click(&box, MOUSE_PRESS | MOUSE_LEFT, tree.Nb(), tree.Pt(), &horizontal, &vertical);
    window.Point_At_Logical(420, 110);
    EXPECT_EQ(DB_List_Motion(&box, MOUSE_DRAG | MOUSE_LEFT, tree.Nb(), tree.Pt(), &horizontal, &vertical), 1);
    EXPECT_TRUE(Write_Png(file, window.Read()));
    DB_List_Forget(tree.Pt());
    Variable_Undefine("$INTERFACE_SPACE_DIM");
    Variable_Undefine("$DEFAULT_ICON_PATH");
}

TEST(Tree_Picture, is_written_on_grey) {
    Sheet(120, "database_tree_grey.png");
}
TEST(Tree_Picture, is_written_on_a_dark_ground) {
    Sheet(60, "database_tree_dark.png");
}

}  // namespace

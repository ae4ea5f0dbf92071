#include "workbench/database/tree_parts.h"

#include "base/gdi_handles.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>

#include "tests/database/edit_scene.h"

using namespace workbench;

namespace {

constexpr int WIDTH = 1500;  // pixels: four levels
constexpr int HEIGHT = 400;

/** root(a(b, c(d, e), f), g), in the panel that shows it, once as rows and once as a diagram. */
class Tree_Parts_Test : public Edit_Scene<Scene_2D> {
  protected:
    Tree_Parts_Test() : Edit_Scene<Scene_2D>(WIDTH, HEIGHT) { Make_Study(); }

    void Show(int panel_mode, int width = WIDTH, int height = HEIGHT) {
        view.mode = panel_mode;
        Boxs whole = Host_Box(0, 0, width, height);
        view.Resize(&whole);
        view.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
        view.Draw();
    }
    void Show_Editor(int width = WIDTH, int height = HEIGHT) {
        Show(Scene_2D::DIMENSION | DB_MODE_EDIT, width, height);
    }
    std::vector<Accessible_Part> Parts(int current = -1) const { return Tree_Parts(view, current, window.Get()); }
    /** The part of a class. */
    Accessible_Part Part(const std::wstring& title) const {
        for (const Accessible_Part& part : Parts()) {
            if (part.name.starts_with(title + L":")) {
                return part;
            }
        }
        ADD_FAILURE() << "nothing is told of this class";
        return {};
    }
    void Point_At_Part(const Accessible_Part& part) const {
        Point_At((part.place.left + part.place.right) / 2, HEIGHT - 1 - (part.place.top + part.place.bottom) / 2);
    }
    /** The record of a class in the panel. */
    DB_List& Record(const std::string& title) const {
        DB_List* const records = view.List_Pt();
        return *std::find_if(records, records + view.Nb(),
                             [&](const DB_List& record) { return title == record.title; });
    }
};

TEST_F(Tree_Parts_Test, the_editor_tells_every_node_with_its_level) {
    Show_Editor();
    const std::vector<Accessible_Part> parts = Parts();
    ASSERT_EQ(parts.size(), 8U);
    EXPECT_EQ(parts[0].name, L"root: Nroot");
    EXPECT_EQ(parts[0].value, L"level 0");
    EXPECT_EQ(parts[0].level, 1);
    for (const Accessible_Part& part : parts) {
        EXPECT_EQ(part.role, ROLE_SYSTEM_OUTLINEITEM);
    }
    EXPECT_EQ(Part(L"d").value, L"level 3");
    EXPECT_EQ(Part(L"d").level, 4);
}

TEST_F(Tree_Parts_Test, a_node_is_told_where_the_editor_has_it) {
    Show_Editor();
    // The editor takes out what is under the pointer.
    Point_At_Part(Part(L"c"));
    view.Keyboard(KEY_DELETE);
    EXPECT_EQ(Text(), "root(a(b,d,e,f),g)");
    view.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    view.Draw();
    EXPECT_EQ(Parts().size(), 7U);
    Point_At_Part(Part(L"g"));
    view.Keyboard(KEY_DELETE);
    EXPECT_EQ(Text(), "root(a(b,d,e,f))");
}

TEST_F(Tree_Parts_Test, nodes_are_as_large_as_they_are_painted) {
    Show_Editor();
    const Accessible_Part node = Part(L"b");
    EXPECT_EQ(node.place.right - node.place.left, EDIT_NODE_WIDTH);
    ASSERT_EQ(node.place.bottom - node.place.top, EDIT_NODE_HEIGHT);
    // Above the node there is ground; the first other pixel below is the node's edge.
    const auto pixel = [&](int y) { return Pixel(node.place.left + 20, HEIGHT - 1 - y); };
    const std::uint32_t ground = pixel(node.place.top - 5);
    int painted_top = node.place.top - 5;
    while (painted_top < HEIGHT - 1 && pixel(painted_top) == ground) {
        ++painted_top;
    }
    EXPECT_NEAR(painted_top, node.place.top, 2);
}

TEST_F(Tree_Parts_Test, the_node_under_the_pointer_is_told_as_highlighted) {
    Show_Editor();
    Point_At_Part(Part(L"e"));
    view.Motion(HOVER);
    for (const Accessible_Part& part : Parts()) {
        EXPECT_EQ((part.state & STATE_SYSTEM_HOTTRACKED) != 0, part.name == L"e: Ne");
    }
    Point_At_Part(Part(L"root"));  // the first node is never painted highlighted
    view.Motion(HOVER);
    for (const Accessible_Part& part : Parts()) {
        EXPECT_EQ(part.state & STATE_SYSTEM_HOTTRACKED, 0);
    }
}

TEST_F(Tree_Parts_Test, folded_nodes_of_the_editor_are_told_and_what_they_hide_is_not) {
    Class(Object_Of("f"), "h");
    Show_Editor();
    EXPECT_EQ(Part(L"a").state & (STATE_SYSTEM_EXPANDED | STATE_SYSTEM_COLLAPSED), STATE_SYSTEM_EXPANDED);
    EXPECT_EQ(Part(L"b").state & (STATE_SYSTEM_EXPANDED | STATE_SYSTEM_COLLAPSED), 0);
    EXPECT_EQ(Part(L"f").state & (STATE_SYSTEM_EXPANDED | STATE_SYSTEM_COLLAPSED), 0) << "one child cannot be folded";
    Record("a").flag = static_cast<std::uint16_t>(Record("a").flag & ~DB_FLAG_EXPANDED);
    view.Draw();
    EXPECT_EQ(Part(L"a").state & (STATE_SYSTEM_EXPANDED | STATE_SYSTEM_COLLAPSED), STATE_SYSTEM_COLLAPSED);
    std::vector<std::wstring> names;
    for (const Accessible_Part& part : Parts()) {
        names.push_back(part.name);
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"root: Nroot", L"a: Na", L"b: Nb", L"g: Ng"}));
}

TEST_F(Tree_Parts_Test, nodes_out_of_view_are_not_told_until_they_are_scrolled_to) {
    Show_Editor(500, 200);
    const auto has = [&](const std::wstring& name) {
        return std::ranges::count(Parts(), name, &Accessible_Part::name) != 0;
    };
    ASSERT_TRUE(has(L"root: Nroot"));
    ASSERT_FALSE(has(L"d: Nd"));
    const LONG before = Part(L"root").place.left;
    view.horizontal.value = 40.0F;
    EXPECT_LE(Part(L"root").place.left, before);
    view.horizontal.value = 3.0F * EDIT_CELL_WIDTH;
    view.vertical.value = static_cast<float>(EDIT_CELL_HEIGHT);
    EXPECT_TRUE(has(L"d: Nd"));
    EXPECT_FALSE(has(L"root: Nroot"));
    for (const Accessible_Part& part : Parts()) {
        EXPECT_GE(part.place.left, view.list_box.x);
        EXPECT_LE(part.place.right, view.list_box.x + view.list_box.width);
    }
}

TEST_F(Tree_Parts_Test, rows_are_told_with_their_marks) {
    Show(Scene_2D::DIMENSION);
    const std::vector<Accessible_Part> parts = Parts(1);
    ASSERT_EQ(parts.size(), 8U);
    EXPECT_EQ(parts[1].name, L"a: Na");
    EXPECT_EQ(parts[1].level, 2);
    EXPECT_NE(parts[1].state & STATE_SYSTEM_SELECTED, 0);
    EXPECT_EQ(parts[2].state & STATE_SYSTEM_SELECTED, 0);
    Record("d").state = DB_STATE_CHECKED;
    EXPECT_NE(Part(L"d").state & STATE_SYSTEM_CHECKED, 0);
    EXPECT_EQ(Part(L"e").state & STATE_SYSTEM_CHECKED, 0);
}

}  // namespace

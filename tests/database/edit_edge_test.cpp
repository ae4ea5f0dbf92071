// The class tree editor's diagram at the edges: of its box, of what is shown, of what is dragged.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/database/edit_scene.h"
#include "tests/support/import_hook.h"

namespace {

constexpr int WIDTH = 980;
constexpr int HEIGHT = 420;
constexpr std::uint32_t CONNECTOR = 0x808080;
constexpr std::uint32_t HIGHLIGHT = 0xE66464;

class Edit_Edge_Test : public Edit_Scene<Scene_2D> {
  protected:
    Edit_Edge_Test() : Edit_Scene(WIDTH, HEIGHT) {}
    ~Edit_Edge_Test() override { Variable_Undefine("$DEFAULT_ICON_PATH"); }
    /** A pixel of the tree. */
    std::uint32_t At(int x, int y) const { return Pixel(Left() + x, Top() - y); }
    std::uint32_t At_Zone(const std::string& title, Edit_Zone zone, int dx, int dy = 0) const {
        const DB_Tree_Point at = Edit_Zone_Point(list_pt[Find(title)], zone);
        return At(at.x + dx, at.y + dy);
    }
    /** A new box, and both scroll positions. */
    void View(int width, int height, int at_x, int at_y) {
        box.width = static_cast<short>(width);
        box.height = static_cast<short>(height);
        Draw();
        horizontal.value = static_cast<float>(at_x);
        vertical.value = static_cast<float>(at_y);
        window.Wipe();
        Draw();
        ASSERT_EQ(static_cast<int>(horizontal.value), at_x);
        ASSERT_EQ(static_cast<int>(vertical.value), at_y);
    }
    std::uint32_t Ground() const {
        const unsigned long color = box.color.get();
        return static_cast<std::uint32_t>((color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF));
    }
};

// ---------------- edges

TEST_F(Edit_Edge_Test, a_line_in_the_first_or_last_column_or_row_of_the_box_is_drawn) {
    Make_Study();
    View(SPACE_DIM + 290 + 1, 300, 0, 0);
    EXPECT_EQ(At(290, 100), CONNECTOR) << "the last column";
    View(300, 300, SPACE_DIM + 290, 0);
    EXPECT_EQ(At(290, 100), CONNECTOR) << "the first column";
    View(400, 4 * 50 + 30, 0, 0);
    EXPECT_EQ(At(310, 4 * 50 + 30), CONNECTOR) << "the lowest row";
    View(400, 20, 0, 4 * 50 + 30 - 1);
    EXPECT_EQ(At(310, 4 * 50 + 30), CONNECTOR) << "the uppermost row";
}

TEST_F(Edit_Edge_Test, handles_that_stand_out_of_a_node_are_drawn_when_the_node_is_out_of_view) {
    Make_Study();
    View(300, 300, SPACE_DIM + 295, 0);
    EXPECT_EQ(At_Zone("root", Edit_Zone::Toggle, EDIT_TOGGLE_RADIUS), 0U);
    View(SPACE_DIM + 330 - 4 + 1, 300, 0, 0);
    EXPECT_EQ(At_Zone("a", Edit_Zone::Parent_Handle, -EDIT_HANDLE_RADIUS), 0U);
}

// ---------------- looks

TEST_F(Edit_Edge_Test, a_drawing_of_everything_keeps_a_handle_s_look_under_the_pointer) {
    Make_Study();
    Draw();
    for (const Edit_Zone zone : {Edit_Zone::Parent_Handle, Edit_Zone::Children_Handle, Edit_Zone::Toggle}) {
        Point_At_Zone("a", zone);
        Motion(HOVER);
        Draw();
        EXPECT_EQ(At_Zone("a", zone, 2, 2), HIGHLIGHT) << static_cast<int>(zone);
    }
}

TEST_F(Edit_Edge_Test, a_toggle_s_strokes_reach_four_pixels_from_its_middle) {
    Make_Study();
    Draw();
    for (const int side : {-1, 1}) {
        EXPECT_EQ(At_Zone("a", Edit_Zone::Toggle, 4 * side), 0U);
        EXPECT_EQ(At_Zone("a", Edit_Zone::Toggle, 5 * side), Ground());
    }
}

TEST_F(Edit_Edge_Test, a_class_without_a_title_has_no_icon) {
    std::vector<unsigned char> bytes(18 + 4 * 16 * 16, 255);  // a white picture
    std::fill_n(bytes.begin(), 18, static_cast<unsigned char>(0));
    bytes[2] = 2;
    bytes[12] = bytes[14] = 16;
    bytes[16] = 32;
    bytes[17] = 0x28;
    std::FILE* const file = std::fopen("class .tga", "wb");
    ASSERT_NE(file, nullptr);
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    Variable_Define_Text("$DEFAULT_ICON_PATH", ".");
    Make_Study();
    Object_Of("b")->Title_Set("");
    const DB_Tree_Point cell = Edit_Cell(list_pt[Find("b")]);
    Draw();
    EXPECT_NE(At(cell.x + EDIT_NODE_WIDTH - 20, cell.y + 21), 0xAAAAAAU) << "white, tinted";
    std::remove("class .tga");
}

// ---------------- drags

TEST_F(Edit_Edge_Test, hidden_children_have_no_drag_lines) {
    Make_Study();
    list_pt[Find("root")].flag ^= DB_FLAG_EXPANDED;
    const auto dragged = [this](const char* title, Edit_Zone zone) {
        Draw();
        Press_On(title, zone);
        Point_At_Tree(400, 200);
        Motion(LEFT_DRAG);
        const Window_Picture picture = Pixels();
        Point_At_Tree(5, 300);
        Click(RELEASE);
        return picture;
    };
    EXPECT_EQ(dragged("root", Edit_Zone::Children_Handle), dragged("a", Edit_Zone::Parent_Handle))
        << "only the first child is shown";
}

TEST_F(Edit_Edge_Test, drag_lines_invert_the_high_bits_of_what_they_cross) {
    Make_Study();
    Draw();
    Press_On("g", Edit_Zone::Parent_Handle);
    const Window_Picture before = Pixels();
    Point_At_Tree(100, 330);
    Motion(LEFT_DRAG);
    const Window_Picture after = Pixels();
    int changed = 0;
    for (int row = 0; row < HEIGHT; ++row) {
        for (int x = 0; x < WIDTH; ++x) {
            const std::uint32_t difference = before.At(x, row) ^ after.At(x, row);
            changed += difference != 0 ? 1 : 0;
            ASSERT_TRUE(difference == 0 || difference == 0x808080U);
        }
    }
    EXPECT_NEAR(changed, 230, 3) << "as many pixels as the line has columns";
}

DWORD line_nb = 0;
BOOL(WINAPI* real_lines)(HDC, const POINT*, const DWORD*, DWORD) = nullptr;
BOOL WINAPI Lines(HDC dc, const POINT* points, const DWORD* counts, DWORD nb) {
    line_nb += nb;
    return real_lines(dc, points, counts, nb);
}

TEST_F(Edit_Edge_Test, a_drag_of_many_children_has_a_line_for_each) {
    Class(nullptr, "root");
    for (int i = 0; i < 150; ++i) {
        Class(root, std::to_string(i));
    }
    Build();
    Draw();
    Press_On("root", Edit_Zone::Children_Handle);
    const Import_Hook hook("", "gdi32.dll", "PolyPolyline", reinterpret_cast<void*>(&Lines));
    ASSERT_TRUE(hook.Is_Set());
    real_lines = reinterpret_cast<decltype(real_lines)>(hook.Original());
    line_nb = 0;
    Point_At_Tree(400, 200);
    Motion(LEFT_DRAG);
    EXPECT_EQ(line_nb, 150U);
}

}  // namespace

// How the class tree editor's diagram looks: nodes, handles, lines, drag feedback and the look under the pointer.
#include "database/tool_db_edit_paint.h"

#include <cstdio>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/database/edit_scene.h"
#include "tests/support/gdi_recorder.h"
#include "tests/support/import_hook.h"

namespace {

constexpr int WIDTH = 980;
constexpr int HEIGHT = 420;
constexpr int ICON_SIZE = 16;

constexpr std::uint32_t GROUND = 0x5A646E;  // 90, 100, 110
constexpr std::uint32_t NAME_GROUND = 0x646400;
constexpr std::uint32_t HIGHLIGHT = 0xE66464;
constexpr std::uint32_t DRAGGED = 0xFFFF00;
constexpr std::uint32_t CONNECTOR = 0x808080;

/** A white picture file in the present folder; gone at the end. */
class Icon_File {
  public:
    explicit Icon_File(const std::string& title) : path("class " + title + ".tga") {
        std::vector<unsigned char> bytes(18, 0);
        bytes[2] = 2;
        bytes[12] = bytes[14] = ICON_SIZE;
        bytes[16] = 32;
        bytes[17] = 0x28;
        bytes.resize(18 + 4 * ICON_SIZE * ICON_SIZE, 255);
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    ~Icon_File() { std::remove(path.c_str()); }
    Icon_File(const Icon_File&) = delete;
    Icon_File& operator=(const Icon_File&) = delete;

  private:
    std::string path;
};

class Edit_Paint_Test : public Edit_Scene<Scene_2D> {
  protected:
    Edit_Paint_Test() : Edit_Scene(WIDTH, HEIGHT) {}
    ~Edit_Paint_Test() override { Variable_Undefine("$DEFAULT_ICON_PATH"); }

    /** A pixel of the tree. */
    std::uint32_t At(int x, int y) const { return Pixel(Left() + x, Top() - y); }
    std::uint32_t At(const DB_Tree_Point& point, int dx = 0, int dy = 0) const {
        return At(point.x + dx, point.y + dy);
    }
    DB_Tree_Point Cell(const std::string& title) const { return Edit_Cell(list_pt[Find(title)]); }
    DB_Tree_Point Zone(const std::string& title, Edit_Zone zone) const {
        return Edit_Zone_Point(list_pt[Find(title)], zone);
    }
    /** Tree points of the pixels in which two pictures differ. */
    std::set<std::pair<int, int>> Changed(const Window_Picture& before, const Window_Picture& after) const {
        std::set<std::pair<int, int>> changed;
        for (int row = 0; row < before.height; ++row) {
            for (int x = 0; x < before.width; ++x) {
                if (before.At(x, row) != after.At(x, row)) {
                    changed.insert({x - Left(), Top() - (HEIGHT - 1 - row)});
                }
            }
        }
        return changed;
    }
    void Hover(const std::string& title, Edit_Zone zone) {
        Point_At_Zone(title, zone);
        Motion(HOVER);
    }
    void Hover_Nothing() {
        Point_At_Tree(320, 340);
        Motion(HOVER);
    }
    void Icons_Here() { Variable_Define_Text("$DEFAULT_ICON_PATH", "."); }
    /** Where a node's icon lies: one of its pixels. */
    std::uint32_t Icon_Pixel(const std::string& title) const { return At(Cell(title), EDIT_NODE_WIDTH - 20, 21); }
};

// ---------------- nodes

TEST_F(Edit_Paint_Test, a_node_is_a_framed_box_below_the_gap_of_its_cell) {
    Make_Study();
    EXPECT_EQ(Draw(), 1);
    for (const char* title : {"root", "a", "b", "c", "g"}) {
        const DB_Tree_Point cell = Cell(title);
        for (const int x : {0, EDIT_NODE_WIDTH - 1}) {
            EXPECT_NE(At(cell, x, 11), GROUND) << title;
            EXPECT_NE(At(cell, x, 50), GROUND) << title;
        }
        EXPECT_EQ(At(cell, 100, 10), GROUND) << "the gap above " << title;
        EXPECT_EQ(At(cell, EDIT_NODE_WIDTH + 20, 45), GROUND);
        EXPECT_EQ(At(cell, EDIT_NODE_WIDTH - 20, 40), NAME_GROUND) << "the name's label";
        EXPECT_NE(At(cell, EDIT_NODE_WIDTH - 40, 20), NAME_GROUND) << "the title";
    }
}

TEST_F(Edit_Paint_Test, texts_are_drawn_for_title_and_name) {
    Make_Study();
    Draw();
    const Window_Picture with = Pixels();
    Object_Of("b")->Name_Set(nullptr);
    Draw();
    const auto name = Changed(with, Pixels());
    ASSERT_FALSE(name.empty());
    const DB_Tree_Point cell = Cell("b");
    for (const auto& [x, y] : name) {
        EXPECT_TRUE(x >= cell.x + 6 && x < cell.x + EDIT_NODE_WIDTH && y >= cell.y + 31 && y <= cell.y + 50) << y;
    }
    Object_Of("b")->Title_Set("");
    const Window_Picture before = Pixels();
    Draw();
    const auto title = Changed(before, Pixels());
    ASSERT_FALSE(title.empty());
    for (const auto& [x, y] : title) {
        EXPECT_TRUE(x >= cell.x && x < cell.x + EDIT_NODE_WIDTH && y >= cell.y + 11 && y <= cell.y + 31) << y;
    }
}

TEST_F(Edit_Paint_Test, the_icon_of_the_title_is_tinted_by_the_class_code) {
    const Icon_File icon("b");
    Icons_Here();
    Make_Study();
    const std::pair<int, std::uint32_t> cases[] = {
        {0x2000, 0xAAAAAA}, {0x203F, 0xAAAAAA}, {0x2040, 0x82B4B4}, {0x2FFE, 0x82B4B4}, {0x2FFF, 0xAAAAAA}};
    for (const auto& [code, tint] : cases) {
        Object_Of("b")->class_a = code;
        Draw();
        EXPECT_EQ(Icon_Pixel("b"), tint) << code;
    }
    Hover("b", Edit_Zone::Body);
    EXPECT_EQ(Icon_Pixel("b"), HIGHLIGHT);
    EXPECT_NE(Icon_Pixel("c"), HIGHLIGHT) << "there is no icon file for it";
    Draw();
    EXPECT_EQ(Icon_Pixel("b"), HIGHLIGHT) << "a drawing of everything keeps the look under the pointer";
    Hover_Nothing();
    EXPECT_EQ(Icon_Pixel("b"), 0xAAAAAAU);
}

TEST_F(Edit_Paint_Test, only_nodes_in_view_are_made) {
    Make_Study();
    Draw();
    Take_Counters();
    Draw();
    EXPECT_EQ(Take_Counters().draws, 2U * 6) << "a box and a label for each node, but for the two beyond the edge";
}

TEST_F(Edit_Paint_Test, positions_beyond_16_bits_do_not_come_back_on_the_other_side) {
    // Column 199 is 65670 pixels right: cut to 16 bits that is column 0.
    Object* above = Class(nullptr, "0");
    for (int level = 1; level < 210; ++level) {
        above = Class(above, std::to_string(level));
    }
    for (int row = 1; row < 1400; ++row) {
        Class(root, "r" + std::to_string(row));
    }
    Build();
    messages.Listen(false);
    Draw();
    Take_Counters();
    Draw();
    const unsigned int first = Take_Counters().draws;
    EXPECT_EQ(first, 2U * (3 + 7));
    Point_At_Zone("2", Edit_Zone::Body);
    EXPECT_EQ(Locate(), 20);
    // and at the far end the picture is right too
    horizontal.value = 209 * 330;
    vertical.value = 0.0F;
    Draw();
    EXPECT_EQ(At(Cell("209"), EDIT_NODE_WIDTH - 20, 40), NAME_GROUND);
    EXPECT_LE(Cell("209").x - static_cast<int>(horizontal.value), WIDTH);
    horizontal.value = 0.0F;
    vertical.value = 1399 * 50;
    Draw();
    EXPECT_EQ(At(Cell("r1399"), EDIT_NODE_WIDTH - 20, 40), NAME_GROUND);
    // a drag of all children, most of them far away
    horizontal.value = 0.0F;
    vertical.value = 0.0F;
    Draw();
    Take_Counters();
    Press_On("0", Edit_Zone::Children_Handle);
    EXPECT_EQ(Take_Counters().draws, 2U * 8) << "the children in view";
}

TEST_F(Edit_Paint_Test, nothing_is_drawn_outside_the_box) {
    Make_Study();
    box.x = 123;
    box.y = 77;
    box.width = 401;
    box.height = 183;
    Draw();
    vertical.value = 33.0F;
    horizontal.value = 111.0F;
    window.Wipe();
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    Point_At_Tree(200, 140);
    Motion(LEFT_DRAG);
    Hover("a", Edit_Zone::Toggle);
    DB_Draw_Circle(&box, box.x, box.y, 20, 0, 0xFF);
    const Window_Picture picture = Pixels();
    for (int row = 0; row < HEIGHT; ++row) {
        for (int x = 0; x < WIDTH; ++x) {
            const int y = HEIGHT - 1 - row;
            const bool inside = x >= box.x && x < box.x + box.width && y >= box.y && y < box.y + box.height;
            ASSERT_EQ(picture.At(x, row) == Panel_Window::MARKER, !inside) << x << ", " << y;
        }
    }
}

// ---------------- handles

TEST_F(Edit_Paint_Test, what_changes_under_the_pointer_is_what_is_hit) {
    Make_Study();
    Draw();
    Hover_Nothing();
    const Window_Picture plain = Pixels();
    int zones = 0;
    for (int i = 0; i < nb; ++i) {
        for (const Edit_Zone zone : {Edit_Zone::Parent_Handle, Edit_Zone::Children_Handle, Edit_Zone::Toggle}) {
            const DB_Tree_Point middle = Edit_Zone_Point(list_pt[i], zone);
            if (!Has_Edit_Zone(i, list_pt[i], zone) || Left() + middle.x + 10 > box.x + box.width) {
                continue;
            }
            Point_At_Tree(middle.x, middle.y);
            EXPECT_EQ(Motion(HOVER), 1);
            const int radius = zone == Edit_Zone::Toggle ? EDIT_TOGGLE_RADIUS : EDIT_HANDLE_RADIUS;
            EXPECT_EQ(At(middle, 2, 2), HIGHLIGHT) << list_pt[i].title;
            const auto changed = Changed(plain, Pixels());
            EXPECT_GT(changed.size(), static_cast<std::size_t>(2 * radius * radius));
            for (const auto& [x, y] : changed) {
                Point_At_Tree(x, y);
                ASSERT_EQ(Locate(), Edit_Code(i, zone)) << x << ", " << y;
            }
            Hover_Nothing();
            ASSERT_EQ(Pixels(), plain) << "nothing of the look stays behind at " << list_pt[i].title;
            ++zones;
        }
    }
    EXPECT_EQ(zones, 10);
}

TEST_F(Edit_Paint_Test, a_handle_is_a_ring_in_the_boxs_colour_about_the_middle_line) {
    Make_Study();
    Draw();
    const DB_Tree_Point handle = Zone("c", Edit_Zone::Parent_Handle);
    EXPECT_EQ(handle.y, 50 + 30);
    EXPECT_EQ(At(handle), GROUND);
    for (const auto& [dx, dy] : {std::pair{6, 0}, {-6, 0}, {0, 6}, {0, -6}}) {
        EXPECT_EQ(At(handle, dx, dy), 0U) << dx << ", " << dy;
    }
    EXPECT_NE(At(handle, 0, 7), 0U);
    EXPECT_NE(At(handle, 0, -7), 0U);
}

TEST_F(Edit_Paint_Test, a_toggle_shows_a_minus_a_plus_or_red) {
    Make_Study();
    const int a = Find("a");
    Draw();
    const DB_Tree_Point toggle = Zone("a", Edit_Zone::Toggle);
    EXPECT_EQ(toggle.x, 330 + 290);
    EXPECT_EQ(At(toggle, 3, 0), 0U);
    EXPECT_EQ(At(toggle, 0, 3), GROUND) << "minus";
    EXPECT_EQ(At(toggle, 8, 0), 0U);
    list_pt[a].flag ^= DB_FLAG_EXPANDED;
    Draw();
    EXPECT_EQ(At(toggle, 3, 0), 0U);
    EXPECT_EQ(At(toggle, 0, 3), 0U) << "plus";
    list_pt[a].flag |= DB_FLAG_LOCKED;
    Draw();
    EXPECT_EQ(At(toggle, 8, 0), 0xFF0000U) << "red outline";
    Hover("a", Edit_Zone::Toggle);
    EXPECT_EQ(At(toggle, 8, 0), 0xFF0000U);
    EXPECT_EQ(At(toggle, 4, 4), HIGHLIGHT);
    Hover_Nothing();
    EXPECT_EQ(At(toggle, 8, 0), 0xFF0000U);
    EXPECT_EQ(At(toggle, 4, 4), GROUND);
}

TEST_F(Edit_Paint_Test, circles_and_toggles_can_be_drawn_alone) {
    Make_Study();
    Draw();
    DB_Draw_Circle(&box, 300, 100, 9, 0x0000FF, 0x00FF00);
    EXPECT_EQ(Pixel(300, 100), 0x00FF00U);
    for (const auto& [dx, dy] : {std::pair{9, 0}, {-9, 0}, {0, 9}, {0, -9}}) {
        EXPECT_EQ(Pixel(300 + dx, 100 + dy), 0xFF0000U);
    }
    DB_Draw_Expand(&box, &list_pt[Find("a")], &horizontal, &vertical, 0x00FF00, DB_EXPAND_COLLAPSED);
    EXPECT_EQ(At(Zone("a", Edit_Zone::Toggle), 0, 3), 0U);
    EXPECT_EQ(At(Zone("a", Edit_Zone::Toggle), 3, 3), 0x00FF00U);
}

// ---------------- lines

TEST_F(Edit_Paint_Test, lines_join_parents_and_children) {
    Make_Study();
    Draw();
    const int middle = 30;
    EXPECT_EQ(At(265, middle), CONNECTOR) << "root to its first child";
    EXPECT_EQ(At(310, middle), CONNECTOR);
    for (int y = middle + 10; y <= 4 * 50 + middle; ++y) {
        ASSERT_EQ(At(290, y), CONNECTOR) << "down to g";
    }
    EXPECT_EQ(At(310, 4 * 50 + middle), CONNECTOR);
    EXPECT_EQ(At(290, 4 * 50 + middle + 1), GROUND);
    EXPECT_EQ(At(330 + 290, 3 * 50 + middle - 5), CONNECTOR) << "a to f";
    EXPECT_EQ(At(330 + 290, 3 * 50 + middle + 1), GROUND);
    EXPECT_EQ(At(310, 50 + middle), GROUND) << "no child of root there";
    list_pt[Find("root")].flag ^= DB_FLAG_EXPANDED;
    Draw();
    EXPECT_EQ(At(290, 80), GROUND) << "collapsed";
    EXPECT_EQ(At(310, middle), CONNECTOR);
}

TEST_F(Edit_Paint_Test, a_line_passes_through_a_view_without_either_of_its_ends) {
    Class(nullptr, "root");
    Object* const a = Class(root, "a");
    for (int i = 0; i < 40; ++i) {
        Class(a, "a" + std::to_string(i));
    }
    Class(root, "last");
    Build();
    Draw();
    vertical.value = 600.0F;
    Draw();
    EXPECT_EQ(At(290, 700), CONNECTOR);
    EXPECT_EQ(At(290, 600 + 5), CONNECTOR);
}

// ---------------- hover

TEST_F(Edit_Paint_Test, hover_draws_only_what_changes) {
    const Icon_File icon("c");
    Icons_Here();
    Make_Study();
    Draw();
    Hover_Nothing();
    const Window_Picture plain = Pixels();
    Take_Counters();
    Hover("c", Edit_Zone::Body);
    EXPECT_EQ(Take_Counters().draws, 2U) << "one node";
    const DB_Tree_Point cell = Cell("c");
    for (const auto& [x, y] : Changed(plain, Pixels())) {
        EXPECT_TRUE(x >= cell.x && x < cell.x + EDIT_NODE_WIDTH && y >= cell.y && y <= cell.y + 50);
    }
    {
        const Import_Counter gdi("", "gdi32.dll");
        Point_At_Tree(cell.x + 40, cell.y + 40);
        EXPECT_EQ(Motion(HOVER), 0) << "the same zone";
        EXPECT_EQ(gdi.Calls() - gdi.Calls("DPtoLP"), 0U) << gdi.Text();
    }
    EXPECT_EQ(Take_Counters().draws, 0U);
    Hover("b", Edit_Zone::Body);
    EXPECT_EQ(Take_Counters().draws, 4U) << "the one before and the one now";
    Hover_Nothing();
    EXPECT_EQ(Pixels(), plain);
}

TEST_F(Edit_Paint_Test, the_body_of_record_0_has_no_look) {
    Make_Study();
    Draw();
    const Window_Picture plain = Pixels();
    Take_Counters();
    Hover("root", Edit_Zone::Body);
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_EQ(Pixels(), plain);
}

TEST_F(Edit_Paint_Test, a_record_that_is_no_longer_there_is_not_redrawn) {
    Make_Study();
    Draw();
    Hover("g", Edit_Zone::Body);
    nb -= 1;
    Hover("c", Edit_Zone::Body);
    nb += 1;
    Hover_Nothing();
}

// ---------------- drag

TEST_F(Edit_Paint_Test, a_pressed_node_is_highlighted_and_its_handle_yellow) {
    const Icon_File icon("c");
    Icons_Here();
    Make_Study();
    Draw();
    Hover("c", Edit_Zone::Parent_Handle);
    Press_On("c", Edit_Zone::Parent_Handle);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle)), DRAGGED);
    EXPECT_EQ(Icon_Pixel("c"), HIGHLIGHT);
    // over its own body and away again: plain, the handle still yellow
    Point_At_Zone("c", Edit_Zone::Body);
    Motion(LEFT_DRAG);
    Point_At_Tree(320, 340);
    Motion(LEFT_DRAG);
    EXPECT_EQ(Icon_Pixel("c"), 0xAAAAAAU);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle), 2, -3), DRAGGED);
    // a dragged handle has no other look
    Point_At_Zone("c", Edit_Zone::Parent_Handle);
    Motion(LEFT_DRAG);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle), 2, 2), DRAGGED);
    Point_At_Tree(320, 340);
    Motion(LEFT_DRAG);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle), 2, -2), DRAGGED);
    Click(RELEASE);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle)), GROUND);
}

TEST_F(Edit_Paint_Test, the_feedback_is_a_line_from_each_dragged_handle_and_leaves_nothing_behind) {
    Make_Study();
    Draw();
    Hover_Nothing();
    const Window_Picture plain = Pixels();
    Press_On("a", Edit_Zone::Children_Handle);
    for (const char* title : {"b", "c", "f"}) {
        EXPECT_EQ(At(Zone(title, Edit_Zone::Parent_Handle)), DRAGGED) << title;
    }
    Hover_Nothing();
    const Window_Picture pressed = Pixels();
    for (const auto& [x, y] : {std::pair{100, 300}, {400, 120}, {620, 30}, {35, 35}, {500, 350}}) {
        Point_At_Tree(x, y);
        EXPECT_EQ(Motion(LEFT_DRAG), 1);
        EXPECT_EQ(db_drag.current.x, x);
        EXPECT_EQ(db_drag.current.y, y);
    }
    const auto lines = Changed(pressed, Pixels());
    EXPECT_GT(lines.size(), 200U);
    const DB_Tree_Point from = Zone("f", Edit_Zone::Parent_Handle);
    EXPECT_TRUE(lines.count({(from.x + 500) / 2, (from.y + 350) / 2}) == 1 ||
                lines.count({(from.x + 500) / 2, (from.y + 350) / 2 + 1}) == 1 ||
                lines.count({(from.x + 500) / 2, (from.y + 350) / 2 - 1}) == 1)
        << "half way between handle and pointer";
    Point_At_Tree(320, 340);
    Motion(LEFT_DRAG);
    EXPECT_EQ(DB_Edit_Drag(&box, nb, list_pt, &horizontal, &vertical), 1);
    EXPECT_EQ(Motion(HOVER), 1) << "a motion without buttons takes the lines away and, as the drag goes on, draws them";
    Point_At_Tree(320, 340);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_EQ(Pixels(), plain);
}

TEST_F(Edit_Paint_Test, hover_under_the_lines_does_not_smear_them) {
    Make_Study();
    Draw();
    Hover_Nothing();
    Press_On("d", Edit_Zone::Parent_Handle);
    Point_At_Tree(320, 340);
    Motion(LEFT_DRAG);
    const Window_Picture before = Pixels();
    Point_At_Zone("a", Edit_Zone::Children_Handle);  // the line ends in what is highlighted
    Motion(LEFT_DRAG);
    Point_At_Zone("c", Edit_Zone::Body);
    Motion(LEFT_DRAG);
    Point_At_Tree(320, 340);
    Motion(LEFT_DRAG);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(Edit_Paint_Test, a_scrolled_drawing_covers_the_lines) {
    Make_Study();
    box.height = 150;
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    Point_At_Tree(320, 120);
    Motion(LEFT_DRAG);
    vertical.value = 40.0F;
    Draw();
    const Window_Picture drawn = Pixels();
    Point_At_Tree(320, 120);
    Motion(LEFT_DRAG);
    EXPECT_NE(Pixels(), drawn);
    Point_At_Tree(320, 180);
    Motion(LEFT_DRAG);
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle), 2, -3), DRAGGED);
    db_drag.active = false;  // as the panel does for a motion without buttons
    Draw();
    EXPECT_EQ(At(Zone("c", Edit_Zone::Parent_Handle)), GROUND) << "dragged no longer";
}

// ---------------- sliders

TEST_F(Edit_Paint_Test, sliders_follow_the_size_of_the_diagram) {
    Make_Study();
    Draw();
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE) << "five rows fit";
    EXPECT_EQ(vertical.value, 0.0F);
    EXPECT_EQ(horizontal.style, STYLE_SCROLL_BAR);
    EXPECT_EQ(horizontal.maximum, static_cast<float>(4 * 330 + 2 * SPACE_DIM - box.width));
    box.height = 200;
    Draw();
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL);
    EXPECT_EQ(vertical.maximum, 255.0F - 200.0F);
    vertical.value = 90.0F;
    Draw();
    EXPECT_EQ(vertical.value, 55.0F) << "a position beyond the end comes back";
    vertical.value = -12.0F;
    Draw();
    EXPECT_EQ(vertical.value, 0.0F);
    vertical.value = 50.0F;
    list_pt[Find("root")].flag ^= DB_FLAG_EXPANDED;
    list_pt[Find("a")].flag ^= DB_FLAG_EXPANDED;
    Draw();
    EXPECT_EQ(vertical.value, 0.0F);
    EXPECT_EQ(vertical.style, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE);
}

// ---------------- upkeep

TEST_F(Edit_Paint_Test, everything_taken_from_gdi_is_given_back) {
    Make_Study();
    Draw();
    const Import_Counter counter("", "gdi32.dll");
    const Gdi_Recorder recorder("Kit_Widgets.dll");
    for (int i = 0; i < 3; ++i) {
        Draw();
        Hover("c", Edit_Zone::Body);
        Hover("a", Edit_Zone::Toggle);
        Hover("a", Edit_Zone::Children_Handle);
        Press_On("a", Edit_Zone::Children_Handle);
        Point_At_Tree(320, 340);
        Motion(LEFT_DRAG);
        Click(RELEASE);
    }
    std::uint64_t created = 0;
    for (const std::string& function : Import_Names("", "gdi32.dll")) {
        created += function.rfind("Create", 0) == 0 ? counter.Calls(function.c_str()) : 0;
    }
    EXPECT_GE(created, 100U);
    EXPECT_EQ(created, counter.Calls("DeleteObject") + counter.Calls("DeleteDC")) << counter.Text();
    EXPECT_EQ(counter.Calls("SelectObject") % 2, 0U);
    EXPECT_EQ(counter.Calls("SaveDC"), counter.Calls("RestoreDC"));
    EXPECT_EQ(Gdi_Recorder::Unbalanced(), "");
}

TEST_F(Edit_Paint_Test, every_device_context_may_be_missing) {
    Make_Study();
    Draw();
    messages.Listen(false);
    for (int n = 1; n <= 40; ++n) {
        const Gdi_Recorder recorder("Kit_Widgets.dll");
        Gdi_Recorder::Get_DC_Fail(n);
        Draw();
        Hover("c", Edit_Zone::Body);
        Press_On("c", Edit_Zone::Children_Handle);
        Point_At_Tree(320, 340);
        Motion(LEFT_DRAG);
        Click(RELEASE);
        Gdi_Recorder::Get_DC_Fail(0);
        Click(RELEASE);
        EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << n;
    }
    Hover_Nothing();
    Draw();
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)");
    EXPECT_EQ(list_pt[Find("g")].row, 4);
}

TEST_F(Edit_Paint_Test, the_fonts_are_made_once) {
    Make_Study();
    Draw();
    const Import_Counter counter("Kit_Widgets.dll", "gdi32.dll");
    box.font_scale = 30;
    Draw();
    EXPECT_EQ(counter.Calls("CreateFontIndirectA"), 0U);
}

}  // namespace

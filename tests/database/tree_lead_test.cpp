// What the drawing of tree rows asks for: the lead cell of every kind of row, and the ground.
#include <utility>
#include <vector>

#include "tests/database/tree_fixture.h"
#include "tests/database/widget_calls.h"
#include "tests/support/import_hook.h"

namespace {

using Tree_Lead_Test = Tree_Fixture;
using Leads = std::vector<Lead_Call>;

/** The rectangles that are filled. One at a time. */
class Fill_Recorder {
  public:
    Fill_Recorder() : hook("", "user32.dll", "FillRect", reinterpret_cast<void*>(&Fill)) {
        EXPECT_TRUE(hook.Is_Set());
        now = this;
    }
    ~Fill_Recorder() { now = nullptr; }
    Fill_Recorder(const Fill_Recorder&) = delete;
    Fill_Recorder& operator=(const Fill_Recorder&) = delete;
    std::vector<RECT> rects;

  private:
    static int WINAPI Fill(HDC dc, const RECT* rect, HBRUSH brush) {
        now->rects.push_back(*rect);
        return reinterpret_cast<decltype(&Fill)>(now->hook.Original())(dc, rect, brush);
    }
    static inline Fill_Recorder* now = nullptr;
    Import_Hook hook;
};

TEST_F(Tree_Lead_Test, every_kind_of_row_has_its_lead_cell) {
    for (const int level : {0, 1, 1, 1, 1, 0, 1, 0, 1}) {
        tree.Add(level);
    }
    Tidy();
    tree[2].state = DB_STATE_NO_ACCESS;
    tree[3].state = DB_STATE_NO_ACCESS | DB_STATE_CHECKED;
    tree[4].flag |= DB_FLAG_LOCKED;
    tree[5].flag = 0;  // collapsed
    tree[7].flag = DB_FLAG_LAST;
    Widget_Calls calls;
    Draw();
    const int x = BOX_X + SPACE_DIM;
    const auto y = [](int row) { return BOX_Y + BOX_HEIGHT - 19 - 18 * row; };
    // a leaf's flag: a sibling follows; a branch's: its row
    EXPECT_EQ(calls.leads, (Leads{{"Expand", 0, x, x + 20, y(0) - 8, y(0) + 8},
                                  {"Leaf", 1, x + 20, x + 40, y(1) - 9, y(1) + 9},
                                  {"No_Access", 1, x + 20, x + 40, y(2) - 9, y(2) + 9},
                                  {"No_Access", 1, x + 20, x + 40, y(3) - 9, y(3) + 9},
                                  {"No_Access", 0, x + 20, x + 40, y(4) - 9, y(4) + 9},
                                  {"Collapse", 5, x, x + 20, y(5) - 8, y(5) + 8},
                                  {"Collapse", 6, x, x + 20, y(6) - 8, y(6) + 8}}));
    calls.leads.clear();
    tree[7].flag |= DB_FLAG_EXPANDED;
    tree[8].state = DB_STATE_NO_ACCESS;
    tree[0].state = DB_STATE_NO_ACCESS;  // a branch too
    tree[5].flag |= DB_FLAG_LAST | DB_FLAG_LOCKED;
    Draw();
    ASSERT_EQ(calls.leads.size(), 8U);
    EXPECT_EQ(calls.leads[0], (Lead_Call{"No_Access", 1, x, x + 20, y(0) - 9, y(0) + 9}));
    EXPECT_EQ(calls.leads[5], (Lead_Call{"No_Access", 0, x, x + 20, y(5) - 9, y(5) + 9}));
    EXPECT_EQ(calls.leads[6], (Lead_Call{"Expand", 6, x, x + 20, y(6) - 8, y(6) + 8}));
    EXPECT_EQ(calls.leads[7], (Lead_Call{"No_Access", 0, x + 20, x + 40, y(7) - 9, y(7) + 9}));
}

TEST_F(Tree_Lead_Test, the_last_leaf_of_a_branch_ends_its_line) {
    Make_Branch(2);
    Widget_Calls calls;
    Draw();
    ASSERT_EQ(calls.leads.size(), 3U);
    EXPECT_EQ(calls.leads[1].kind, "Leaf");
    EXPECT_EQ(calls.leads[1].flag, 1);
    EXPECT_EQ(calls.leads[2].kind, "Leaf");
    EXPECT_EQ(calls.leads[2].flag, 0);
}

TEST_F(Tree_Lead_Test, a_scrolled_tree_tells_branches_their_rows) {
    for (int i = 0; i < 30; ++i) {
        tree.Add(0);
        tree.Add(1);
    }
    Tidy();
    for (int i = 0; i < 60; i += 2) {
        tree[i].flag = static_cast<std::uint16_t>(tree[i].flag & ~DB_FLAG_EXPANDED);
    }
    vertical.value = 60.0F;
    Widget_Calls calls;
    Draw();
    ASSERT_EQ(vertical.value, 60.0F);
    ASSERT_EQ(calls.leads.size(), static_cast<std::size_t>(BOX_HEIGHT / 18 + 2)) << "first to first + height / 18 + 1";
    const int x = BOX_X + SPACE_DIM;
    int row = 3;
    for (const Lead_Call& lead : calls.leads) {
        const int y = BOX_Y + BOX_HEIGHT + 60 - 19 - 18 * row;
        EXPECT_EQ(lead, (Lead_Call{"Collapse", row, x, x + 20, y - 8, y + 8}));
        ++row;
    }
}

TEST_F(Tree_Lead_Test, the_ground_is_one_pixel_larger_than_the_box_on_every_side) {
    Make_Flat(3);
    const Fill_Recorder fills;
    Draw();
    ASSERT_EQ(fills.rects.size(), 1U);
    const RECT& ground = fills.rects[0];
    EXPECT_EQ(ground.left, BOX_X - 1);
    EXPECT_EQ(ground.top, BOX_Y - 1);
    EXPECT_EQ(ground.right, BOX_X + BOX_WIDTH + 1);
    EXPECT_EQ(ground.bottom, BOX_Y + BOX_HEIGHT + 1);
}

TEST_F(Tree_Lead_Test, the_ground_reaches_every_edge_of_the_box_and_no_further) {
    Make_Flat(1);
    window.Wipe();
    Draw();
    const Window_Picture picture = Pixels();
    const int right = BOX_X + BOX_WIDTH - 1;
    const int upper = BOX_Y + BOX_HEIGHT - 1;
    for (const auto& [x, y] : {std::pair{BOX_X, BOX_Y}, {right, BOX_Y}, {BOX_X, upper}, {right, upper}}) {
        EXPECT_EQ(picture.At(x, window.Row(y)), Ground()) << x << ", " << y;
    }
    for (const auto& [x, y] :
         {std::pair{BOX_X - 1, BOX_Y}, {right + 1, BOX_Y}, {right, BOX_Y - 1}, {right, upper + 1}}) {
        EXPECT_EQ(picture.At(x, window.Row(y)), Panel_Window::MARKER) << x << ", " << y;
    }
}

// ---------------- sliders, redrawing

using Thumbs = std::vector<std::pair<float, float>>;
Thumbs thumbs;  ///< visible and total of each call for the watched slider
const Sliders* watched = nullptr;
void (*real_thumb)(Sliders*, float, float) = nullptr;
void Thumb(Sliders* slider, float visible, float total) {
    if (slider == watched) {
        thumbs.emplace_back(visible, total);
    }
    real_thumb(slider, visible, total);
}

TEST_F(Tree_Lead_Test, the_thumb_is_the_visible_part_of_the_tree) {
    const Import_Hook hook("", "Kit_Widgets.dll", "_ZN7Sliders11Larg_AdjustEff", reinterpret_cast<void*>(&Thumb));
    ASSERT_TRUE(hook.Is_Set());
    real_thumb = reinterpret_cast<decltype(real_thumb)>(hook.Original());
    Make_Branch(29);
    watched = &vertical;
    thumbs.clear();
    Draw();
    EXPECT_EQ(thumbs, (Thumbs{{200.0F, 31.0F * 18}}));
    tree[0].flag = 0;
    thumbs.clear();
    Draw();
    EXPECT_EQ(thumbs, (Thumbs{{200.0F, 200.0F}})) << "all of it is in view";
    watched = &horizontal;
    tree[0].title = tree.Keep("a title that is certainly wider than the box of this test, whatever the font");
    DB_List_Forget(tree.Pt());
    thumbs.clear();
    Draw();
    const int width = DB_List_Text_Pos(&box, tree.Nb(), tree.Pt()) + 2 * SPACE_DIM;
    EXPECT_EQ(thumbs, (Thumbs{{static_cast<float>(BOX_WIDTH), static_cast<float>(width)}}));
    watched = nullptr;
}

TEST_F(Tree_Lead_Test, the_end_of_a_drag_takes_the_band_away_and_its_range_is_shown_at_once) {
    Make_Flat(9);
    Draw();
    const Window_Picture before = Pixels();
    Point_At_Row(2);
    Click(LEFT_PRESS);
    Point_At_Row(5, 180);
    Motion(LEFT_DRAG);
    ASSERT_NE(Pixels(), before);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_FALSE(db_drag.band_shown);
    EXPECT_EQ(Pixels(), before);
    Select_Range();
    const Window_Picture selected = Pixels();
    EXPECT_NE(selected, before);
    Draw();
    EXPECT_EQ(Pixels(), selected);
}

}  // namespace

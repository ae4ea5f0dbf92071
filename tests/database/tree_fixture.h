/** A drawn tree with its sliders and a pointer, for the tests of the tree's operations. Windows only. */
#pragma once

#include "database/tool_db_fct.h"
#include "database/tool_db_fct_paint.h"
#include "tests/database/tree_scene.h"
#include "tests/support/panel_fixture.h"

inline constexpr int WIDTH = 420;
inline constexpr int HEIGHT = 260;
inline constexpr int BOX_X = 30;
inline constexpr int BOX_Y = 20;
inline constexpr int BOX_WIDTH = 300;
inline constexpr int BOX_HEIGHT = 200;

inline bool shift_held = false;
inline bool control_held = false;

inline int Key(int virtual_key) {
    return (virtual_key == VK_SHIFT && shift_held) || (virtual_key == VK_CONTROL && control_held) ? 1 : 0;
}

using Records = std::vector<int>;

/** Keys are held by shift_held and control_held. */
class Tree_Fixture : public Panel_Fixture {
  protected:
    Tree_Scene tree;
    Boxs box;
    Sliders vertical;
    Sliders horizontal;

    Tree_Fixture() : Panel_Fixture(Window_Axis::Up, WIDTH, HEIGHT) {
        Define_Dimensions();
        Input_Source source;
        source.key = Key;
        Input_Source_Set(source);
        shift_held = control_held = false;
        db_drag = {};
        box = Host_Box(BOX_X, BOX_Y, BOX_WIDTH, BOX_HEIGHT);
        Place(vertical, BOX_X + BOX_WIDTH + 6, BOX_Y, 16, BOX_HEIGHT, STYLE_SLIDER_VERTICAL);
        Place(horizontal, BOX_X, BOX_Y - 18, BOX_WIDTH, 16, STYLE_SCROLL_BAR);
        Variable_Define_Text("$DEFAULT_ICON_PATH", ".");
    }
    ~Tree_Fixture() override {
        DB_List_Forget(tree.Pt());
        db_drag = {};
        Input_Source_Set({});
        Variable_Undefine("$DEFAULT_ICON_PATH");
    }
    void Place(Sliders& slider, int x, int y, int width, int height, unsigned int style) const {
        slider.style = style;
        slider.x = static_cast<short>(x);
        slider.y = static_cast<short>(y);
        slider.width = static_cast<short>(width);
        slider.height = static_cast<short>(height);
        slider.maximum = 100000.0F;  // any position may be set before the first drawing
        slider.Init(window.Get());
    }
    /** A flat list of leaves, all unchecked. */
    void Make_Flat(int nb) {
        for (int i = 0; i < nb; ++i) {
            tree.Add(0, "Frame", "1");
        }
        Tidy();
    }
    /** Branch 0 with leaves 1 to `leaf_nb`. */
    void Make_Branch(int leaf_nb) {
        for (int i = 0; i <= leaf_nb; ++i) {
            tree.Add(i == 0 ? 0 : 1, "Frame", "1");
        }
        Tidy();
    }
    void Tidy() {
        tree.Finish();
        Tree_Uncheck(tree.Nb(), tree.Pt());
    }
    int Draw() { return DB_List_Draw(&box, tree.Nb(), tree.Pt(), &horizontal, &vertical); }
    int Click(int up_down) { return DB_List_Click(&box, up_down, tree.Nb(), tree.Pt(), &horizontal, &vertical); }
    int Motion(int up_down) { return DB_List_Motion(&box, up_down, tree.Nb(), tree.Pt(), &horizontal, &vertical); }
    int Select_Range(int mode = 2) {
        return DB_List_Select_Range(&box, mode, tree.Nb(), tree.Pt(), &horizontal, &vertical);
    }
    /** Puts the pointer on a point in tree coordinates. */
    void Point_At_Tree(int x, int y) const {
        Point_At(x + BOX_X + SPACE_DIM - Tree_Pixels(horizontal.value),
                 BOX_Y + BOX_HEIGHT + Tree_Pixels(vertical.value) - y);
    }
    void Point_At_Row(int row, int x = 100) const { Point_At_Tree(x, Tree_Row_Middle(row)); }
    /** Press and release. @return what the release gave */
    int Click_Rows(int from, int to) {
        Point_At_Row(from);
        EXPECT_EQ(Click(LEFT_PRESS), 0);
        Point_At_Row(to);
        return Click(RELEASE);
    }
    std::vector<int> Checked() {
        std::vector<int> records;
        for (int i = 0; i < tree.Nb(); ++i) {
            if (tree[i].state == DB_STATE_CHECKED) {
                records.push_back(i);
            }
        }
        return records;
    }
    int Measured(Tree_Font font, const char* text) const {
        const Drawing_DC dc(box.window, "test");
        return Gdi_Text_Measurer(dc.Get(), Tree_Fonts::For(box)).Width(font, text);
    }
    std::uint32_t Ground() const {
        const unsigned long color = box.color.get();
        return static_cast<std::uint32_t>((color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF));
    }
};

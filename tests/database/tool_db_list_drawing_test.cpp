// What a database panel shows after each operation: always what a drawing of everything would show.
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/database/panel_scene.h"
#include "tests/support/import_hook.h"

namespace {

/** The memory that is given back. One at a time. */
class Freed_Memory {
  public:
    Freed_Memory() : hook("", "msvcrt.dll", "free", reinterpret_cast<void*>(&Free)) {
        EXPECT_TRUE(hook.Is_Set());
        real_free = reinterpret_cast<decltype(real_free)>(
            reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA("msvcrt.dll"), "free")));
    }
    /** Begins to look for this block. */
    static void Look_For(const void* block) {
        wanted = block;
        found = false;
    }
    static bool Found() { return found; }

  private:
    static void Free(void* memory) {
        found = found || (memory != nullptr && memory == wanted);
        real_free(memory);
    }
    static inline const void* wanted = nullptr;
    static inline bool found = false;
    static inline void (*real_free)(void*) = nullptr;
    Import_Hook hook;
};

/** A view whose host rebuilds the panel while it writes the selection. */
class Rebuilt_View : public Wide_View {
  public:
    void List_Select_To_DB(int nb, DB_List* list_pt) override {
        Wide_View::List_Select_To_DB(nb, list_pt);
        Freed_Memory::Look_For(list_pt);
        Update(UPDATE_STRUCTURE);
        was_freed = Freed_Memory::Found();
    }
    bool was_freed = false;
};

class Panel_Drawing : public Panel_Scene {
  protected:
    /** The window shows what a drawing of everything shows. */
    bool Is_Up_To_Date(Tool_DB_List& panel) const {
        const Window_Picture shown = Pixels();
        panel.Draw();
        return shown == Pixels();
    }
    bool Is_Thumb_Up_To_Date(Sliders& slider) const {
        const Window_Picture shown = Pixels();
        slider.Draw();
        return shown == Pixels();
    }
    void Point_Into(const Tools& widget) const { Point_At(widget.x + widget.width / 2, widget.y + widget.height / 2); }
};

TEST_F(Panel_Drawing, a_new_panel_has_its_styles_and_first_ranges) {
    Wide_View panel;
    Boxs host = Host_Box(10, 10, PANEL_WIDTH - 20, PANEL_HEIGHT - 20);
    panel.Resize(&host);
    EXPECT_EQ(panel.panel_box.style, STYLE_FRAMED_BOX);
    EXPECT_EQ(panel.list_box.style, 0x40U) << "filled, without a border";
    EXPECT_EQ(panel.warning[0].style, STYLE_FLAT);
    EXPECT_EQ(panel.warning[1].style, STYLE_FLAT);
    EXPECT_EQ(panel.vertical.style, STYLE_SLIDER_VERTICAL);
    EXPECT_EQ(panel.horizontal.style, STYLE_SCROLL_BAR);
    EXPECT_EQ(panel.vertical.minimum, 0.0F);
    EXPECT_EQ(panel.vertical.maximum, 100.0F);
    EXPECT_EQ(panel.horizontal.minimum, 0.0F);
    EXPECT_EQ(panel.horizontal.maximum, 300.0F);
    EXPECT_EQ(panel.vertical.step, 18.0F);
    EXPECT_EQ(panel.horizontal.step, 20.0F);
}

TEST_F(Panel_Drawing, a_rebuild_shows_the_new_tree_from_its_beginning) {
    Wide_View panel;
    Show(panel);
    panel.vertical.value = 90.0F;
    panel.horizontal.value = 40.0F;
    panel.Draw();
    panel.Update(UPDATE_STRUCTURE);
    EXPECT_EQ(panel.vertical.value, 0.0F);
    EXPECT_EQ(panel.horizontal.value, 0.0F);
    EXPECT_TRUE(Is_Up_To_Date(panel));
}

TEST_F(Panel_Drawing, a_new_selection_is_shown) {
    Wide_View panel;
    Show(panel);
    const Window_Picture before = Pixels();
    panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_NE(Pixels(), before);
    EXPECT_TRUE(Is_Up_To_Date(panel));
}

TEST_F(Panel_Drawing, the_buttons_show_their_work) {
    Wide_View panel;
    Show(panel);
    const Window_Picture none = Pixels();
    Point_Into(panel.select_all);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    EXPECT_NE(Pixels(), none);
    panel.Leave();
    EXPECT_TRUE(Is_Up_To_Date(panel));
    Point_Into(panel.select_none);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    panel.Leave();
    EXPECT_TRUE(Is_Up_To_Date(panel));
    EXPECT_EQ(Pixels(), none);
}

TEST_F(Panel_Drawing, leaving_takes_the_hover_look_of_either_button_away) {
    Wide_View panel;
    Show(panel);
    for (Buttons* const button : {&panel.select_all, &panel.select_none}) {
        Point_Into(*button);
        panel.Motion(HOVER);
        EXPECT_EQ(button->state, 1);
        panel.Leave();
        EXPECT_EQ(button->state, 0);
    }
    EXPECT_TRUE(Is_Up_To_Date(panel));
}

TEST_F(Panel_Drawing, the_wheel_moves_tree_and_thumb) {
    Wide_View panel;
    Show(panel);
    const Window_Picture start = Pixels();
    Point_Into(panel.list_box);
    EXPECT_EQ(panel.Scroll(-3), 1);
    EXPECT_NE(Pixels(), start);
    EXPECT_TRUE(Is_Up_To_Date(panel)) << "the vertical slider";
    Point_Into(panel.horizontal);
    EXPECT_EQ(panel.Scroll(-2), 1);
    EXPECT_TRUE(Is_Up_To_Date(panel)) << "the horizontal slider";
}

TEST_F(Panel_Drawing, a_drag_that_ends_outside_leaves_no_band) {
    Wide_View panel;
    Show(panel);
    const Window_Picture before = Pixels();
    Point_At_Row(panel, 2);
    panel.Click(LEFT_PRESS);
    Point_At(panel.list_box.x + 40, panel.list_box.y + 30);
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    ASSERT_NE(Pixels(), before);
    Point_At(1, 1);
    EXPECT_EQ(panel.Motion(HOVER), 1);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(Panel_Drawing, a_drag_beside_the_tree_moves_tree_thumb_and_band) {
    struct Case {
        Boxs Tool_DB_List::*zone;
        Sliders Tool_DB_List::*slider;
        float from;
        float to;
    };
    for (const Case& each : {Case{&Tool_DB_List::bottom_zone, &Tool_DB_List::vertical, 30.0F, 33.0F},
                             {&Tool_DB_List::top_zone, &Tool_DB_List::vertical, 30.0F, 27.0F},
                             {&Tool_DB_List::top_zone, &Tool_DB_List::vertical, 1.0F, 0.0F},
                             {&Tool_DB_List::right_zone, &Tool_DB_List::horizontal, 30.0F, 33.0F},
                             {&Tool_DB_List::left_zone, &Tool_DB_List::horizontal, 30.0F, 27.0F},
                             {&Tool_DB_List::left_zone, &Tool_DB_List::horizontal, 1.0F, 0.0F}}) {
        Wide_View panel;
        Show(panel);
        (panel.*each.slider).value = each.from;
        panel.Draw();
        Point_At_Row(panel, 4);
        panel.Click(LEFT_PRESS);
        const Boxs& zone = panel.*each.zone;
        const Boxs& tree = panel.list_box;
        const bool is_vertical = each.slider == &Tool_DB_List::vertical;
        const int x = is_vertical ? tree.x + 60 : each.to > each.from ? zone.x + zone.width - 2 : zone.x + 1;
        const int y = !is_vertical ? tree.y + 60 : each.to > each.from ? zone.y + 1 : zone.y + zone.height - 2;
        Point_At(x, y);
        db_drag.current = {-1, -1};
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        EXPECT_EQ((panel.*each.slider).value, each.to);
        EXPECT_TRUE(Is_Thumb_Up_To_Date(panel.*each.slider));
        EXPECT_TRUE(db_drag.band_shown);
        EXPECT_EQ(db_drag.current.x, x - tree.x - SPACE_DIM + static_cast<int>(panel.horizontal.value));
        EXPECT_EQ(db_drag.current.y, tree.y + tree.height - y + static_cast<int>(panel.vertical.value));
        const Window_Picture shown = Pixels();
        panel.Draw();
        DB_List_Draw_Box(&panel.list_box, &panel.horizontal, &panel.vertical);
        EXPECT_EQ(Pixels(), shown);
        db_drag = {};
    }
}

TEST_F(Panel_Drawing, a_disabled_horizontal_slider_is_not_scrolled) {
    Wide_View panel;
    panel.is_narrow = true;
    Show(panel);
    ASSERT_EQ(panel.horizontal.style, STYLE_SCROLL_BAR | STYLE_INACTIVE);
    Point_At_Row(panel, 4);
    panel.Click(LEFT_PRESS);
    for (const Boxs* const zone : {&panel.right_zone, &panel.left_zone}) {
        Point_At(zone == &panel.right_zone ? zone->x + zone->width - 2 : zone->x + 1, panel.list_box.y + 60);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 0);
    }
}

TEST_F(Panel_Drawing, records_live_until_a_selection_is_written_whoever_rebuilds_the_panel) {
    const Freed_Memory freed;
    Rebuilt_View panel;
    Show(panel);
    Point_At_Row(panel, 4);
    panel.Click(LEFT_PRESS);
    EXPECT_EQ(panel.Click(RELEASE), 1);
    EXPECT_EQ(panel.checked, std::vector<int>{4});
    EXPECT_FALSE(panel.was_freed);
    Point_Into(panel.select_all);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    EXPECT_FALSE(panel.was_freed);
    Freed_Memory::Look_For(panel.List_Pt());
    panel.Update(UPDATE_STRUCTURE);
    EXPECT_TRUE(Freed_Memory::Found()) << "otherwise a rebuild gives them back";
}

}  // namespace

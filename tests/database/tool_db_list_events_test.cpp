#include "database/tool_db_list.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "database/edit_diagram.h"
#include "database/tool_db_class.h"
#include "database/tool_db_edit.h"
#include "database/tool_db_fct.h"
#include "tests/database/panel_scene.h"
#include "tests/database/typed_name.h"
#include "tests/support/import_hook.h"

namespace {

using Panel_Events = Panel_Scene;
using Calls = std::vector<std::string>;

TEST_F(Panel_Events, a_click_on_a_row_is_applied_and_written_at_the_release_only) {
    Wide_View panel;
    Show(panel);
    panel.calls.clear();
    Point_At_Row(panel, 4);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    EXPECT_EQ(panel.calls, Calls{});
    EXPECT_TRUE(db_drag.active);
    Point_At_Row(panel, 6);
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    EXPECT_TRUE(db_drag.band_shown);
    EXPECT_EQ(panel.Click(RELEASE), 1);
    EXPECT_EQ(panel.calls, (Calls{"to"}));
    EXPECT_EQ(panel.checked, (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(panel.List_Pt()[0].state, DB_STATE_PARTIAL);
    EXPECT_EQ(panel.Click(RELEASE), 1) << "the pointer is in the tree";
    EXPECT_EQ(panel.calls, (Calls{"to"})) << "a second release applies nothing";
}

TEST_F(Panel_Events, a_release_outside_the_tree_applies_nothing) {
    Wide_View panel;
    Show(panel);
    panel.calls.clear();
    Point_At_Row(panel, 4);
    panel.Click(LEFT_PRESS);
    Point_At(1, 1);
    EXPECT_EQ(panel.Click(RELEASE), 0);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(panel.Motion(HOVER), 1) << "it ended the drag";
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(panel.Motion(HOVER), 0);
    EXPECT_EQ(panel.calls, Calls{});
}

TEST_F(Panel_Events, a_release_over_another_panel_ends_nothing) {
    for (const bool is_empty : {false, true}) {
        Wide_View panel;
        Show(panel);
        if (is_empty) {
            panel.List_Free(&panel);
        }
        Wide_View copy(panel);  // shows the same records
        Wide_View other;
        Show(other);
        Point_At_Row(other, 4);
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        ASSERT_TRUE(db_drag.active) << "also in an empty tree";
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        for (Wide_View* const foreign : {&copy, &other}) {
            foreign->calls.clear();
            EXPECT_EQ(foreign->Click(RELEASE), 1) << "the pointer is in its tree";
            EXPECT_EQ(foreign->Motion(HOVER), 1);
            EXPECT_EQ(foreign->calls, Calls{});
            EXPECT_TRUE(db_drag.active);
        }
        panel.calls.clear();
        EXPECT_EQ(panel.Click(RELEASE), 1);
        EXPECT_FALSE(db_drag.active);
        EXPECT_EQ(panel.calls, (Calls{"to"}));
    }
}

TEST_F(Panel_Events, a_press_in_another_panel_leaves_no_band_behind) {
    Wide_View other;
    Show(other);
    Wide_View panel;
    Show(panel);
    const Window_Picture before = Pixels();
    Point_At_Row(panel, 4);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    Point_At_Row(panel, 8);
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    ASSERT_TRUE(db_drag.band_shown);
    ASSERT_NE(Pixels(), before);
    EXPECT_EQ(other.Click(LEFT_PRESS), 1) << "the release of the first drag went astray";
    EXPECT_FALSE(db_drag.band_shown) << "the band is not in this tree";
    Point_At(1, 1);
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 0);
    EXPECT_EQ(Pixels(), before) << "its own panel takes it away";
    EXPECT_TRUE(db_drag.Is_Of(&other.list_box));
    panel.calls.clear();
    Point_At_Row(panel, 8);
    EXPECT_EQ(panel.Click(RELEASE), 1);
    EXPECT_EQ(panel.calls, Calls{}) << "its drag is lost";
}

TEST_F(Panel_Events, the_end_of_the_panel_that_took_a_drag_over_leaves_the_former_band_to_be_taken_away) {
    Wide_View panel;
    Show(panel);
    const Window_Picture before = Pixels();
    Point_At_Row(panel, 4);
    panel.Click(LEFT_PRESS);
    Point_At_Row(panel, 8);
    panel.Motion(LEFT_DRAG);
    ASSERT_NE(Pixels(), before);
    {
        Wide_View other(panel);
        EXPECT_EQ(other.Click(LEFT_PRESS), 1);
        ASSERT_TRUE(db_drag.Is_Of(&other.list_box));
    }
    EXPECT_FALSE(db_drag.active);
    Point_At(1, 1);
    panel.Motion(HOVER);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(Panel_Events, the_release_of_one_of_two_held_buttons_is_a_release) {
    for (const int still_held : {MOUSE_LEFT, MOUSE_RIGHT}) {
        Wide_View panel;
        Show(panel);
        panel.calls.clear();
        Point_At_Row(panel, 4);
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        EXPECT_EQ(panel.Click(still_held), 1);
        EXPECT_EQ(panel.calls, (Calls{"to"})) << still_held;
        EXPECT_FALSE(db_drag.active) << still_held;
        EXPECT_EQ(panel.Click(still_held), 1);
        EXPECT_FALSE(db_drag.active) << "it begins no drag";
        panel.calls.clear();
        for (const Buttons* const button : {&panel.select_all, &panel.select_none}) {
            Point_At(button->x + 3, button->y + 3);
            EXPECT_EQ(panel.Click(still_held), 0) << still_held;
        }
        EXPECT_EQ(panel.calls, Calls{}) << still_held;
    }
}

TEST_F(Panel_Events, a_copy_that_ends_or_is_built_anew_leaves_the_drag_of_the_other) {
    Wide_View panel;
    Show(panel);
    Point_At_Row(panel, 4);
    panel.Click(LEFT_PRESS);
    {
        Wide_View copy(panel);
        copy.Update(UPDATE_STRUCTURE);
    }
    EXPECT_TRUE(db_drag.active);
    panel.Update(UPDATE_STRUCTURE);
    EXPECT_FALSE(db_drag.active) << "its rows are others now";
}

TEST_F(Panel_Events, delete_counts_by_the_low_16_bits_of_the_key) {
    Wide_View panel(2 | DB_MODE_EDIT);
    Show(panel);
    panel.calls.clear();
    EXPECT_EQ(panel.Keyboard(KEY_DELETE | 0x51000000), 0);
    EXPECT_EQ(panel.calls, (Calls{"create", "from"}));
    EXPECT_EQ(panel.Keyboard(0x182E), 0);
    EXPECT_EQ(panel.calls, (Calls{"create", "from"}));
}

TEST_F(Panel_Events, reading_the_selection_derives_the_marks_of_branches) {
    Wide_View panel;
    Show(panel);
    EXPECT_EQ(panel.List_Pt()[0].state, DB_STATE_NONE);
    panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_1D);
    EXPECT_EQ(panel.List_Pt()[0].state, DB_STATE_PARTIAL);
    panel.Update(UPDATE_STRUCTURE);
    EXPECT_EQ(panel.List_Pt()[0].state, DB_STATE_NONE);
    Quorel_Window image;
    Variable_Define_Pointer("$WINDOW_CUR", &image);
    panel.Update(UPDATE_WINDOW_CUR);
    EXPECT_EQ(panel.List_Pt()[0].state, DB_STATE_PARTIAL);
    Variable_Undefine("$WINDOW_CUR");
}

TEST_F(Panel_Events, the_wheel_over_the_horizontal_slider_scrolls_that_one) {
    Wide_View panel;
    Show(panel);
    const Sliders& slider = panel.horizontal;
    Point_At(slider.x + slider.width / 2, slider.y + slider.height / 2);
    EXPECT_EQ(panel.Scroll(-2), 1);
    EXPECT_EQ(slider.value, 40.0F);
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_EQ(slider.value, 20.0F);
    EXPECT_EQ(panel.vertical.value, 0.0F);
}

TEST_F(Panel_Events, a_held_thumb_scrolls_until_the_button_is_released) {
    for (const int mode : {2, 2 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        const Sliders& slider = panel.horizontal;
        Point_At(slider.x + 4, slider.y + slider.height / 2);
        EXPECT_EQ(panel.Motion(HOVER), 0) << "a pointer over the slider is not taken";
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        const float before = slider.value;
        Point_At(slider.x + 60, slider.y + slider.height / 2);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        EXPECT_GT(slider.value, before);
        const float after = slider.value;
        panel.Leave();
        Point_At(slider.x + 90, slider.y + slider.height / 2);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 0) << "leaving ends the slider's drag";
        EXPECT_EQ(slider.value, after);
    }
}

TEST_F(Panel_Events, the_thumb_is_painted_where_a_press_or_a_held_pointer_takes_it) {
    for (Sliders Tool_DB_List::*const member : {&Tool_DB_List::vertical, &Tool_DB_List::horizontal}) {
        Wide_View panel;
        Show(panel);
        Sliders& slider = panel.*member;
        const bool is_vertical = (slider.style & STYLE_VERTICAL) != 0;
        const auto point_at = [&](int along) {  // pixels from the visual top or left
            Point_At(slider.x + (is_vertical ? slider.width / 2 : along),
                     slider.y + (is_vertical ? slider.height - 1 - along : slider.height / 2));
        };
        const auto painted = [&] {
            const Window_Picture shown = Pixels();
            slider.Draw();
            return shown == Pixels();
        };
        point_at((is_vertical ? slider.height : slider.width) - 8);
        panel.Motion(HOVER);
        ASSERT_TRUE(painted());
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        EXPECT_GT(slider.value, 0.0F) << "a page on";
        EXPECT_TRUE(painted()) << "after a press beside the thumb";
        slider.value = 0.0F;
        panel.Draw();
        point_at(8);
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        for (const int along : {20, 32}) {
            const float before = slider.value;
            point_at(along);
            EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
            EXPECT_GT(slider.value, before);
            EXPECT_TRUE(painted()) << "while it is held at " << along;
        }
        panel.Leave();
    }
}

/** Two records of the editor, always in the same memory: a system that gives freed memory out again. */
class Same_Memory_View : public Wide_View {
  public:
    Same_Memory_View() : Wide_View(2 | DB_MODE_EDIT) {}
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int, int, void*) override {
        for (DB_List& record : block) {
            record = {};
            record.object = &object;
            record.flag = DB_FLAG_EXPANDED;
        }
        block[0].child_nb = block[0].desc_nb = 1;
        block[1].level = 1;
        *nb = 2;
        *list_pt = block;
        return 2;
    }
    static void Free(void* memory) {
        if (memory != block) {
            real_free(memory);
        }
    }
    static inline void (*real_free)(void*) = nullptr;

  private:
    static inline Quorel_2D object;
    static inline DB_List block[2];
};

TEST_F(Panel_Events, a_new_panel_in_an_earlier_ones_memory_begins_without_its_marks) {
    Same_Memory_View::real_free = reinterpret_cast<void (*)(void*)>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA("msvcrt.dll"), "free")));
    const Import_Hook keeping("", "msvcrt.dll", "free", reinterpret_cast<void*>(&Same_Memory_View::Free));
    ASSERT_TRUE(keeping.Is_Set());
    auto first = std::make_unique<Same_Memory_View>();
    Show(*first);
    const Boxs& tree = first->list_box;
    const int x = tree.x + SPACE_DIM + EDIT_NODE_WIDTH;  // the root's handle for children
    const int y = tree.y + tree.height - EDIT_MIDDLE_Y;
    const std::uint32_t plain = Pixel(x, y);
    EXPECT_EQ(Move(*first, x, y), 1);
    const std::uint32_t highlighted = Pixel(x, y);
    ASSERT_NE(highlighted, plain);
    const DB_List* const place = first->List_Pt();
    first.reset();
    Same_Memory_View second;
    Show(second);
    ASSERT_EQ(second.List_Pt(), place);
    EXPECT_EQ(Pixel(x, y), plain);
    EXPECT_EQ(Move(second, x, y), 1);
    EXPECT_EQ(Pixel(x, y), highlighted) << "highlighted anew";
}

TEST_F(Panel_Events, the_buttons_of_the_editor_have_no_hover_look) {
    Wide_View panel(2 | DB_MODE_EDIT);
    Show(panel);
    Point_At(panel.select_all.x + 5, panel.select_all.y + 5);
    const Window_Picture before = Pixels();
    EXPECT_EQ(panel.Motion(HOVER), 0);
    EXPECT_EQ(panel.select_all.state, 0);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(Panel_Events, a_drawing_paints_every_widget_of_its_mode_once) {
    // frame, two sliders, and the two buttons or the two labels of the warning; the tree is painted without widgets
    for (const int mode : {2, 2 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        Take_Counters();
        panel.Draw();
        EXPECT_EQ(Take_Counters().draws, 5U);
    }
}

TEST_F(Panel_Events, delete_paints_the_tree_s_box_and_both_sliders_after_the_rebuild) {
    for (const int dimension : {1, 2, 3}) {
        Wide_View panel(dimension | DB_MODE_EDIT);
        Show(panel);
        panel.calls.clear();
        Take_Counters();
        panel.Keyboard(KEY_DELETE);
        EXPECT_EQ(panel.calls, (Calls{"create", "from"}));
        EXPECT_EQ(Take_Counters().draws, 2U + 1U + 2U) << "the rebuild's sliders, the box, the sliders";
    }
}

TEST_F(Panel_Events, a_new_place_keeps_the_scroll_position_and_puts_the_warning_in_place_of_the_buttons) {
    Wide_View panel;
    Show(panel);
    panel.vertical.value = 150.0F;
    panel.horizontal.value = 400.0F;
    Boxs host = Host_Box(10, 10, PANEL_WIDTH - 30, PANEL_HEIGHT - 30);
    panel.Resize(&host);
    panel.Draw();
    EXPECT_EQ(panel.vertical.value, 150.0F);
    EXPECT_EQ(panel.horizontal.value, 400.0F);
    EXPECT_EQ(panel.warning[0].x, panel.select_all.x);
    EXPECT_EQ(panel.warning[0].width, 80);
    EXPECT_EQ(panel.warning[1].x, panel.warning[0].x + 80);
    EXPECT_EQ(panel.warning[1].width, (panel.select_all.width - 40) * 2);
    EXPECT_EQ(panel.warning[1].y, panel.select_all.y);
}

TEST_F(Panel_Events, a_drag_in_the_side_zones_scrolls_sideways_by_the_mode_s_step) {
    for (const int mode : {2, 2 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        const float step = mode == 2 ? 3.0F : 12.0F;
        panel.horizontal.value = 100.0F;
        panel.vertical.value = 50.0F;
        panel.Draw();
        ASSERT_EQ(panel.horizontal.value, 100.0F) << "the tree is not wide enough";
        db_drag.active = true;
        db_drag.owner = &panel.list_box;
        const int middle = panel.list_box.y + panel.list_box.height / 2;
        Point_At(panel.right_zone.x + panel.right_zone.width - 2, middle);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        EXPECT_EQ(panel.horizontal.value, 100.0F + step);
        Point_At(panel.left_zone.x + 1, middle);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
        EXPECT_EQ(panel.horizontal.value, 100.0F - step);
        EXPECT_EQ(panel.vertical.value, 50.0F);
        panel.horizontal.value = 1.0F;
        panel.Motion(LEFT_DRAG);
        EXPECT_EQ(panel.horizontal.value, 0.0F) << "never beyond the start";
    }
}

TEST_F(Panel_Events, every_operation_bears_a_failed_creation_and_the_next_one_succeeds) {
    for (const int mode : {1, 2, 3, 2 | DB_MODE_ADD, 1 | DB_MODE_EDIT, 2 | DB_MODE_EDIT, 3 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        panel.fails = true;
        panel.Update(UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D);
        EXPECT_EQ(panel.Nb(), 7);
        EXPECT_EQ(panel.List_Pt(), nullptr);
        EXPECT_EQ(panel.vertical.value, 0.0F);
        panel.Draw();
        Point_At_Row(panel, 3);
        for (const int code : {LEFT_PRESS, RELEASE, RIGHT_PRESS, RELEASE}) {
            EXPECT_EQ(panel.Click(code), 1);
            EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
            EXPECT_EQ(panel.Motion(HOVER), 1);
        }
        EXPECT_FALSE(db_drag.active);
        EXPECT_EQ(panel.Scroll(-1), 1);
        EXPECT_EQ(panel.Keyboard(KEY_DELETE), 0);
        panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_3D);
        for (Buttons* button : {&panel.select_all, &panel.select_none}) {
            Point_At(button->x + 3, button->y + 3);
            EXPECT_EQ(panel.Click(LEFT_PRESS), (mode & DB_MODE_EDIT) != 0 ? 0 : 1);
        }
        panel.Leave();
        {
            const Wide_View copy(panel);
            EXPECT_EQ(copy.Nb(), 7);
        }
        panel.List_Free(&panel);
        EXPECT_EQ(panel.Nb(), 0);
        panel.fails = false;
        panel.Update(UPDATE_STRUCTURE);
        EXPECT_EQ(panel.Nb(), LEAVES + 1);
        EXPECT_NE(panel.List_Pt(), nullptr);
    }
}

// ---------------- the editor, with a host's answer

enum class Answer { Never, At_Once, Queued };

/** root(a(b, c, d), e(f)) of 2D classes, shown by a panel in edit mode. */
class Editor_Events : public Panel_Events, public testing::WithParamInterface<Answer> {
  protected:
    Editor_Events() : panel(2 | DB_MODE_EDIT) {
        for (int i = 0; i < 7; ++i) {
            objects[i].Title_Set(std::string(1, "rabcdef"[i]).c_str());
        }
        for (const auto& [parent, child] : {std::pair{0, 1}, {1, 2}, {1, 3}, {1, 4}, {0, 5}, {5, 6}}) {
            objects[parent].Child_Add(&objects[child]);
        }
        Variable_Define_Pointer("$DB_2D_ROOT_PT", &objects[0]);
        typed_name = {};
        typed_name.typed = "new";
        Boxs host = Host_Box(0, 0, PANEL_WIDTH, PANEL_HEIGHT);
        panel.Resize(&host);
        panel.Update(UPDATE_STRUCTURE);
        panel.Draw();
        const auto update = [this](unsigned long long flags) { panel.Update(flags); };
        if (GetParam() == Answer::At_Once) {
            requests.Answer_At_Once(update);
        } else if (GetParam() == Answer::Queued) {
            requests.Answer_Queued(update);
        }
        requests.Take();
    }
    ~Editor_Events() override {
        requests.Answer_Never();
        Variable_Undefine("$DB_2D_ROOT_PT");
    }
    std::string Text(const Quorel_2D& object) const {
        std::string text = object.Title_Get();
        for (int i = 0; i < object.Child_Get_Nb(); ++i) {
            text += (i == 0 ? "(" : ",") + Text(*object.Child_Get_Pt(i));
        }
        return object.Child_Get_Nb() > 0 ? text + ")" : text;
    }
    std::string Titles() const {
        std::string titles;
        for (int i = 0; i < panel.Nb(); ++i) {
            titles += panel.List_Pt()[i].title;
        }
        return titles;
    }
    /** Scrolls a zone of a class into view and puts the pointer on it. */
    void Point(char title, Edit_Zone zone) {
        int i = 0;
        while (i < panel.Nb() && panel.List_Pt()[i].title[0] != title) {
            ++i;
        }
        ASSERT_LT(i, panel.Nb()) << title;
        const DB_List& row = panel.List_Pt()[i];
        DB_Tree_Point at = Edit_Zone_Point(row, zone);
        if (zone == Edit_Zone::Body) {
            at.x += 100;
        }
        panel.horizontal.value = static_cast<float>(std::max(at.x - 150, 0));
        panel.vertical.value = static_cast<float>(std::max(at.y - 60, 0));
        panel.Draw();
        Point_At(panel.list_box.x + SPACE_DIM - static_cast<int>(panel.horizontal.value) + at.x,
                 panel.list_box.y + panel.list_box.height + static_cast<int>(panel.vertical.value) - at.y);
        ASSERT_EQ(panel.list_box.Select(MOUSE_ASK), 1) << title;
    }
    void Drop(char from, Edit_Zone zone, char onto) {
        Point(from, zone);
        EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
        EXPECT_TRUE(db_drag.active);
        Point(onto, Edit_Zone::Children_Handle);
        EXPECT_EQ(panel.Click(RELEASE), 1);
        EXPECT_FALSE(db_drag.active);
    }
    /** The host's late answers change nothing more. */
    void Settle() {
        requests.Deliver();
        EXPECT_EQ(panel.Motion(HOVER), 1);
    }

    Quorel_2D objects[7];
    Tool_DB_Class panel;
};

TEST_P(Editor_Events, a_drop_moves_the_class_and_the_panel_shows_it) {
    Drop('c', Edit_Zone::Parent_Handle, 'e');
    EXPECT_EQ(Text(objects[0]), "r(a(b,d),e(f,c))");
    EXPECT_EQ(Titles(), "rabdefc");
    EXPECT_EQ(requests.Take_Updates(), (std::vector<unsigned long long>{0x402}));
    Settle();
    EXPECT_EQ(Titles(), "rabdefc");
}

TEST_P(Editor_Events, dropped_children_move_all_and_the_host_hears_of_each) {
    Drop('a', Edit_Zone::Children_Handle, 'e');
    EXPECT_EQ(Text(objects[0]), "r(a,e(f,b,c,d))");
    EXPECT_EQ(Titles(), "raefbcd");
    EXPECT_EQ(requests.Take_Updates(), (std::vector<unsigned long long>{0x402, 0x402, 0x402}));
    Settle();
    EXPECT_EQ(Titles(), "raefbcd");
}

TEST_P(Editor_Events, delete_takes_the_class_out_and_the_panel_shows_it) {
    Point('a', Edit_Zone::Body);
    EXPECT_EQ(panel.Keyboard(KEY_DELETE), 0);
    EXPECT_EQ(Text(objects[0]), "r(b,c,d,e(f))");
    EXPECT_EQ(Titles(), "rbcdef");
    EXPECT_EQ(requests.Take_Updates(), (std::vector<unsigned long long>{0x402}));
    Settle();
    EXPECT_EQ(Titles(), "rbcdef");
}

TEST_P(Editor_Events, a_new_name_is_shown_by_the_host_s_answer) {
    Point('b', Edit_Zone::Body);
    EXPECT_EQ(panel.Click(RIGHT_PRESS), 1);
    EXPECT_STREQ(objects[2].Name_Get(), "new");
    EXPECT_EQ(requests.Take_Updates(), (std::vector<unsigned long long>{0x402}));
    Settle();
    const char* const shown = panel.List_Pt()[2].name;
    if (GetParam() == Answer::Never) {
        EXPECT_EQ(shown, nullptr);
    } else {
        EXPECT_STREQ(shown, "new");
    }
}

TEST_P(Editor_Events, a_drop_rebuilds_and_reads_the_selection_of_its_dimension) {
    objects[6].Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    panel.List_Pt()[1].flag = 0;  // a rebuild opens every branch again
    Drop('c', Edit_Zone::Parent_Handle, 'e');
    EXPECT_NE(panel.List_Pt()[1].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(panel.List_Pt()[5].state, DB_STATE_CHECKED);
    EXPECT_EQ(panel.vertical.value, 0.0F);
    EXPECT_EQ(panel.horizontal.value, 0.0F);
    EXPECT_NE(panel.List_Pt(), nullptr);
    EXPECT_EQ(db_drag.owner, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Hosts, Editor_Events, testing::Values(Answer::Never, Answer::At_Once, Answer::Queued));

}  // namespace

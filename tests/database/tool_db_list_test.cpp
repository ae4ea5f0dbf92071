#include "database/tool_db_list.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "database/tool_db_fct.h"
#include "tests/support/panel_fixture.h"

namespace {

constexpr int WIDTH = 340;
constexpr int HEIGHT = 300;
constexpr int ROWS = 40;

/** A view of a flat tree that writes down what is asked of it. */
class Test_View : public Tool_DB_List {
  public:
    explicit Test_View(int mode_word = 2) { mode = mode_word; }
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override {
        calls.emplace_back("create");
        EXPECT_EQ(level, 0);
        EXPECT_EQ(parent, 0);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(*nb, 0);
        EXPECT_EQ(*list_pt, nullptr);
        for (int i = 0; i < row_nb; ++i) {
            DB_List* const record = DB_List_Append(nb, list_pt, {__FILE__, __LINE__});
            record->flag = i == 0 ? DB_FLAG_EXPANDED : DB_FLAG_LEAF;
            record->level = i == 0 ? 0 : 1;
            record->icon = DB_ICON_DEFAULT;
            if (i == 0) {
                record->child_nb = static_cast<std::uint16_t>(row_nb - 1);
                record->desc_nb = record->child_nb;
            }
        }
        return static_cast<unsigned short>(row_nb);
    }
    void List_Select_From_DB(int nb, DB_List* list_pt) override {
        calls.emplace_back("from");
        EXPECT_EQ(nb, Nb());
        EXPECT_EQ(list_pt, List_Pt());
    }
    void List_Select_To_DB(int nb, DB_List* list_pt) override {
        calls.emplace_back("to");
        states.clear();
        for (int i = 0; i < nb; ++i) {
            states.push_back(list_pt[i].state);
        }
        if (on_write) {
            on_write();
            for (int i = 0; i < nb; ++i) {
                list_pt[i].state ^= DB_STATE_CHECKED;  // a view that still holds the records after a rebuild
            }
        }
    }
    std::vector<std::string> Take() { return std::exchange(calls, {}); }

    int row_nb = ROWS;
    std::vector<std::string> calls;
    std::vector<std::uint16_t> states;
    std::function<void()> on_write;
};

using Calls = std::vector<std::string>;

class Tool_DB_List_Test : public Panel_Fixture {
  protected:
    Tool_DB_List_Test() : Panel_Fixture(Window_Axis::Up, WIDTH, HEIGHT) {
        Define_Dimensions();
        db_drag = {};
    }
    ~Tool_DB_List_Test() override { db_drag = {}; }
    /** Lays a panel out over most of the window and builds its records. */
    void Show(Tool_DB_List& panel) {
        Boxs host = Host_Box(10, 10, WIDTH - 20, HEIGHT - 20);
        EXPECT_EQ(panel.Resize(&host), 1);
        panel.Update(UPDATE_STRUCTURE);
        messages.Take();
    }
    void Point_Into(const Tools& widget) { Point_At(widget.x + widget.width / 2, widget.y + widget.height / 2); }
    int Press_Into(Tool_DB_List& panel, const Tools& widget) {
        Point_Into(widget);
        return panel.Click(LEFT_PRESS);
    }
};

TEST_F(Tool_DB_List_Test, height_without_rows_is_the_button_row_two_spaces_and_two_borders) {
    Test_View panel;
    EXPECT_EQ(panel.Height(0), BUTTON_DIM_SML + 2 * SPACE_DIM + 2 * BORDER_DIM);
    EXPECT_EQ(panel.Height(7), BUTTON_DIM_SML + 2 * SPACE_DIM + 2 * BORDER_DIM + 7 * 18);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in Tool_DB_List::Height()"},
                                                           {TRACE_LEVEL, "in Tool_DB_List::Height()"}}));
}

TEST_F(Tool_DB_List_Test, a_new_panel_has_no_records) {
    const Test_View panel;
    EXPECT_EQ(panel.Nb(), 0);
    EXPECT_EQ(panel.List_Pt(), nullptr);
}

TEST_F(Tool_DB_List_Test, entry_traces_of_draw_click_and_keyboard) {
    Test_View panel;
    Show(panel);
    panel.Draw();
    Point_At(0, 0);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 0);
    EXPECT_EQ(panel.Keyboard(KEY_HOME), 0);
    EXPECT_EQ(messages.Take(),
              (std::vector<Panel_Message>{{TRACE_LEVEL, "in Tool_DB_List::Draw()"},
                                          {TRACE_LEVEL, "in Tool_DB_List::Click(up_down=0x00000012)"},
                                          {TRACE_LEVEL, "in Tool_DB_List::Keyboard(key=0x00000824)"}}));
}

TEST_F(Tool_DB_List_Test, a_structure_update_builds_the_records_and_returns_to_the_start) {
    Test_View panel;
    Show(panel);
    EXPECT_EQ(panel.Take(), (Calls{"create"}));
    EXPECT_EQ(panel.Nb(), ROWS);
    panel.vertical.value = 60.0F;
    panel.horizontal.value = 5.0F;
    panel.row_nb = 3;
    panel.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_3D);  // whatever the level
    EXPECT_EQ(panel.Take(), (Calls{"create"}));
    EXPECT_EQ(panel.Nb(), 3);
    EXPECT_EQ(panel.vertical.value, 0.0F);
    EXPECT_EQ(panel.horizontal.value, 0.0F);
    // The derivation ran: the last leaf is a last child.
    EXPECT_NE(panel.List_Pt()[2].flag & DB_FLAG_LAST, 0);
}

TEST_F(Tool_DB_List_Test, a_selection_update_needs_any_level_bit) {
    Test_View panel;
    Show(panel);
    panel.Take();
    panel.Update(UPDATE_SELECTION);
    EXPECT_EQ(panel.Take(), Calls{});
    for (const unsigned __int64 level : {UPDATE_LEVEL_1D, UPDATE_LEVEL_2D, UPDATE_LEVEL_3D}) {
        panel.Update(UPDATE_SELECTION | level);
        EXPECT_EQ(panel.Take(), (Calls{"from"}));
    }
    panel.Update(UPDATE_LEVEL_2D);
    EXPECT_EQ(panel.Take(), Calls{});
}

TEST_F(Tool_DB_List_Test, a_window_update_without_a_window_does_nothing_and_the_other_steps_still_run) {
    Test_View panel;
    Show(panel);
    panel.Take();
    panel.Update(UPDATE_WINDOW_CUR);
    EXPECT_EQ(panel.Take(), Calls{});
    EXPECT_EQ(messages.Take(), std::vector<Panel_Message>{});
    panel.Update(UPDATE_STRUCTURE | UPDATE_WINDOW_CUR | UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_EQ(panel.Take(), (Calls{"create", "from"}));
}

TEST_F(Tool_DB_List_Test, a_window_whose_selection_is_fixed_greys_both_buttons) {
    Test_View panel;
    Show(panel);
    Quorel_Window image;
    Variable_Define_Pointer("$WINDOW_CUR", &image);
    messages.Take();
    for (const unsigned __int64 bit : {0x10000ULL, 0x100000ULL, 0x100000000ULL}) {
        image.class_a = CLASS_WINDOW_LOCKED;
        panel.Update(bit);
        EXPECT_EQ(panel.select_all.style, STYLE_INACTIVE);
        EXPECT_EQ(panel.select_none.style, STYLE_INACTIVE);
        panel.Take();
        EXPECT_EQ(Press_Into(panel, panel.select_all), 0);
        EXPECT_EQ(panel.Take(), Calls{});
        image.class_a = CLASS_WINDOW;
        panel.Update(bit);
        EXPECT_EQ(panel.select_all.style, STYLE_BUTTON);
        EXPECT_EQ(panel.select_none.style, STYLE_BUTTON);
    }
    EXPECT_EQ(messages.Take().front(), (Panel_Message{TRACE_LEVEL, "in Tool_DB_List::Draw()"}));
    Variable_Undefine("$WINDOW_CUR");
}

TEST_F(Tool_DB_List_Test, select_all_checks_every_record_and_keeps_the_other_state_bits) {
    Test_View panel;
    Show(panel);
    panel.Take();
    panel.List_Pt()[1].flag |= DB_FLAG_LOCKED;
    panel.List_Pt()[2].state = DB_STATE_NO_ACCESS | DB_STATE_PARTIAL;
    EXPECT_EQ(Press_Into(panel, panel.select_all), 1);
    EXPECT_EQ(panel.Take(), (Calls{"to"}));
    std::vector<std::uint16_t> all(ROWS, DB_STATE_CHECKED);
    all[2] = DB_STATE_NO_ACCESS | DB_STATE_CHECKED;
    EXPECT_EQ(panel.states, all);
    EXPECT_EQ(panel.select_all.state, 0) << "the button still looks pressed";

    EXPECT_EQ(Press_Into(panel, panel.select_none), 1);
    EXPECT_EQ(panel.Take(), (Calls{"to"}));
    std::vector<std::uint16_t> none(ROWS, DB_STATE_NONE);
    none[2] = DB_STATE_NO_ACCESS;
    EXPECT_EQ(panel.states, none);
    EXPECT_EQ(panel.select_none.state, 0);
}

TEST_F(Tool_DB_List_Test, the_buttons_act_on_the_press_and_not_on_the_release) {
    Test_View panel;
    Show(panel);
    panel.Take();
    Point_Into(panel.select_all);
    EXPECT_EQ(panel.Click(RELEASE), 0);
    EXPECT_EQ(panel.Take(), Calls{});
}

TEST_F(Tool_DB_List_Test, records_live_on_while_a_view_writes_and_the_host_rebuilds) {
    Test_View panel;
    Show(panel);
    panel.on_write = [&panel] {
        panel.on_write = nullptr;
        panel.row_nb = 5;
        panel.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    };
    EXPECT_EQ(Press_Into(panel, panel.select_all), 1);
    EXPECT_EQ(panel.Nb(), 5);
}

TEST_F(Tool_DB_List_Test, in_edit_mode_the_buttons_neither_draw_nor_react) {
    Test_View panel(2 | DB_MODE_EDIT);
    Show(panel);
    panel.Take();
    EXPECT_EQ(Press_Into(panel, panel.select_all), 0);
    EXPECT_EQ(Press_Into(panel, panel.select_none), 0);
    EXPECT_EQ(panel.Take(), Calls{});
    for (const int key : {KEY_HOME, KEY_ESCAPE, 0x2E, 0x61, KEY_BACKSPACE}) {
        EXPECT_EQ(panel.Keyboard(key), 0);
    }
    EXPECT_EQ(panel.Take(), Calls{});
}

TEST_F(Tool_DB_List_Test, delete_rebuilds_in_edit_mode_only_and_the_host_goes_on) {
    Test_View browser(3);
    Show(browser);
    browser.Take();
    EXPECT_EQ(browser.Keyboard(KEY_DELETE), 0);
    EXPECT_EQ(browser.Take(), Calls{});
    Test_View editor(3 | DB_MODE_EDIT);
    Show(editor);
    editor.Take();
    EXPECT_EQ(editor.Keyboard(KEY_DELETE), 0);
    EXPECT_EQ(editor.Take(), (Calls{"create", "from"}));
    Test_View other(5 | DB_MODE_EDIT);  // no dimension: no update
    Show(other);
    other.Take();
    EXPECT_EQ(other.Keyboard(KEY_DELETE), 0);
    EXPECT_EQ(other.Take(), Calls{});
}

TEST_F(Tool_DB_List_Test, drawing_alternates_the_warning_lines_of_all_panels) {
    Test_View first(2 | DB_MODE_EDIT);
    Test_View second(2 | DB_MODE_EDIT);
    Show(first);
    Show(second);
    first.Draw();
    const std::string begin = first.warning[1].name;
    second.Draw();
    const std::string next = second.warning[1].name;
    first.Draw();
    EXPECT_EQ(first.warning[1].name, begin);
    second.Draw();
    EXPECT_EQ(second.warning[1].name, next);
    const std::string lines[] = {"Please make sure you know what you are doing!",
                                 "Pressing: \"Update DB\" will reset all changes made here."};
    EXPECT_TRUE((begin == lines[0] && next == lines[1]) || (begin == lines[1] && next == lines[0]));
    EXPECT_STREQ(first.warning[0].name, " Warning!");
    Test_View browser;
    Show(browser);
    browser.Draw();  // takes no turn
    first.Draw();
    EXPECT_EQ(first.warning[1].name, begin);
}

TEST_F(Tool_DB_List_Test, the_warning_title_is_yellow_and_one_size_larger) {
    Test_View panel(2 | DB_MODE_EDIT);
    Boxs host = Host_Box(10, 10, 300, 200);
    host.font_scale = 14;
    host.border = 3;
    panel.Resize(&host);
    EXPECT_EQ(panel.warning[0].font_scale, 15);
    EXPECT_EQ(panel.warning[1].font_scale, 14);
    EXPECT_EQ(panel.warning[0].color.get(), 0x00FFFFUL);
    EXPECT_EQ(panel.warning[1].color.get(), 0x000100UL);
    EXPECT_EQ(panel.warning[0].style, STYLE_FLAT);
    for (const Tools* widget : {static_cast<Tools*>(&panel.list_box), static_cast<Tools*>(&panel.vertical),
                                static_cast<Tools*>(&panel.select_none), static_cast<Tools*>(&panel.warning[1])}) {
        EXPECT_EQ(widget->border, 3);
    }
    EXPECT_EQ(panel.panel_box.style, STYLE_FRAMED_BOX);
    EXPECT_EQ(panel.vertical.step, 18.0F);
    EXPECT_EQ(panel.horizontal.step, 20.0F);
    EXPECT_EQ(panel.spare_box.width, 0);
}

TEST_F(Tool_DB_List_Test, copies_share_the_records_until_one_is_rebuilt) {
    Test_View panel;
    Show(panel);
    DB_List* const records = panel.List_Pt();
    {
        Test_View copy(panel);
        EXPECT_EQ(copy.List_Pt(), records);
        EXPECT_EQ(copy.Nb(), ROWS);
        EXPECT_EQ(copy.mode, panel.mode);
        copy.List_Free(&copy);
        EXPECT_EQ(copy.Nb(), 0);
        EXPECT_EQ(panel.List_Pt(), records);
        Test_View assigned;
        assigned = panel;
        EXPECT_EQ(assigned.List_Pt(), records);
    }
    EXPECT_EQ(panel.Nb(), ROWS);
    EXPECT_EQ(panel.List_Pt()[ROWS - 1].level, 1);
}

TEST_F(Tool_DB_List_Test, freeing_the_records_of_nobody_is_harmless) {
    Test_View panel;
    panel.List_Free(nullptr);
    panel.List_Free(&panel);
    EXPECT_EQ(panel.Nb(), 0);
}

TEST_F(Tool_DB_List_Test, the_wheel_scrolls_the_slider_below_the_pointer_else_the_tree) {
    Test_View panel;
    Show(panel);
    panel.Draw();
    panel.horizontal.style = STYLE_SCROLL_BAR;
    panel.horizontal.maximum = 500.0F;
    Point_Into(panel.list_box);
    EXPECT_EQ(panel.Scroll(-2), 1);
    EXPECT_EQ(panel.vertical.value, 36.0F);
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_EQ(panel.vertical.value, 18.0F);
    Point_Into(panel.select_all);
    EXPECT_EQ(panel.Scroll(-1), 1);
    EXPECT_EQ(panel.vertical.value, 36.0F);
    Point_At(2, 2);
    EXPECT_EQ(panel.Scroll(-1), 0);
    EXPECT_EQ(panel.vertical.value, 36.0F);
}

TEST_F(Tool_DB_List_Test, a_press_beside_the_thumb_scrolls_the_tree) {
    Test_View panel;
    Show(panel);
    panel.Draw();
    Point_At(panel.vertical.x + panel.vertical.width / 2, panel.vertical.y + 3);
    EXPECT_EQ(panel.Click(LEFT_PRESS), 1);
    EXPECT_GT(panel.vertical.value, 0.0F);
}

TEST_F(Tool_DB_List_Test, leaving_takes_the_hover_look_away) {
    Test_View panel;
    Show(panel);
    panel.Draw();
    Point_Into(panel.select_all);
    EXPECT_EQ(panel.Motion(HOVER), 0);
    EXPECT_EQ(panel.select_all.state, 1);
    panel.Leave();
    EXPECT_EQ(panel.select_all.state, 0);
}

class Drag_Test : public Tool_DB_List_Test, public testing::WithParamInterface<int> {
  protected:
    /** A panel whose tree is larger than its box in both directions, with a drag on it. */
    void Begin(Test_View& panel) {
        Show(panel);
        panel.Draw();
        panel.vertical.style = STYLE_SLIDER_VERTICAL;
        panel.vertical.maximum = 5000.0F;
        panel.vertical.value = 200.0F;
        panel.horizontal.style = STYLE_SCROLL_BAR;
        panel.horizontal.maximum = 5000.0F;
        panel.horizontal.value = 100.0F;
        db_drag.active = true;
        db_drag.owner = &panel.list_box;
        db_drag.current = {1000, 1000};
    }
    int Step() const { return (GetParam() & DB_MODE_EDIT) != 0 ? 12 : 3; }
};

TEST_P(Drag_Test, a_drag_in_the_lower_zone_scrolls_down_by_the_mode_s_step) {
    Test_View panel(GetParam());
    Begin(panel);
    Point_At(panel.list_box.x + 100, panel.bottom_zone.y + 2);
    const float before = panel.vertical.value;
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    EXPECT_EQ(panel.vertical.value, before + static_cast<float>(Step()));
}

TEST_P(Drag_Test, a_drag_in_the_upper_zone_scrolls_up) {
    Test_View panel(GetParam());
    Begin(panel);
    Point_At(panel.list_box.x + 100, panel.top_zone.y + panel.top_zone.height - 1);
    const float before = panel.vertical.value;
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    EXPECT_EQ(panel.vertical.value, before - static_cast<float>(Step()));
}

TEST_P(Drag_Test, a_drag_over_the_middle_scrolls_nothing) {
    Test_View panel(GetParam());
    Begin(panel);
    Point_Into(panel.list_box);
    EXPECT_EQ(panel.Motion(LEFT_DRAG), 1);
    EXPECT_EQ(panel.vertical.value, 200.0F);
}

TEST_P(Drag_Test, a_disabled_slider_is_not_scrolled) {
    Test_View panel(GetParam());
    Begin(panel);
    panel.vertical.style = STYLE_SLIDER_VERTICAL | STYLE_INACTIVE;
    panel.horizontal.style = STYLE_SCROLL_BAR | STYLE_INACTIVE;
    Point_At(panel.list_box.x + 100, panel.bottom_zone.y + 2);
    panel.Motion(LEFT_DRAG);
    EXPECT_EQ(panel.vertical.value, 200.0F);
    EXPECT_EQ(db_drag.current.y, 1000);
}

TEST_P(Drag_Test, a_motion_without_a_button_ends_the_drag) {
    Test_View panel(GetParam());
    Begin(panel);
    Point_At(1, 1);
    EXPECT_EQ(panel.Motion(0), 1);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(panel.Take(), (Calls{"create"})) << "a drag that ends elsewhere applies nothing";
}

TEST_P(Drag_Test, another_panel_does_not_scroll) {
    Test_View panel(GetParam());
    Begin(panel);
    Test_View other(GetParam());
    Show(other);
    other.vertical.style = STYLE_SLIDER_VERTICAL;
    other.vertical.maximum = 5000.0F;
    other.vertical.value = 77.0F;
    Point_At(other.list_box.x + 100, other.bottom_zone.y + 2);
    other.Motion(LEFT_DRAG);
    EXPECT_EQ(other.vertical.value, 77.0F);
    other.Motion(0);
    EXPECT_TRUE(db_drag.active);
}

TEST_P(Drag_Test, freeing_the_records_ends_the_drag) {
    Test_View panel(GetParam());
    Begin(panel);
    panel.Update(UPDATE_STRUCTURE);
    EXPECT_FALSE(db_drag.active);
}

INSTANTIATE_TEST_SUITE_P(Modes, Drag_Test, testing::Values(2, 2 | DB_MODE_EDIT));

}  // namespace

#include "workbench/parts/keyboard_control.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "host/kit_widgets.h"
#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

/** Writes down what is done with it. */
struct Cursor_Double : Image_Cursor {
    void Cursor_Set(bool on) override { is_on = on && can_be_on; }
    bool Is_Cursor() const override { return is_on; }
    void Cursor_Move(int dx, int dy) override { moved += std::to_string(dx) + "," + std::to_string(dy) + " "; }
    void Cursor_Act(bool erase) override { acted += erase ? "erase " : "paint "; }
    void Pen_Set(bool down) override { is_down = down; }
    bool Is_Pen_Down() const override { return is_down; }
    void Cursor_Pick() override { acted += "pick "; }
    int Cursor_X() const override { return 2; }
    int Cursor_Y() const override { return 1; }

    bool can_be_on = true;
    bool is_on = false;
    bool is_down = false;
    std::string moved;
    std::string acted;
};

class Keyboard : public ::testing::Test {
  protected:
    Keyboard() { scene.Open(1); }
    static bool Took(std::vector<int>& taken, bool takes, int key) {
        if (takes) {
            taken.push_back(key);
        }
        return takes;
    }
    Keyboard_Host Host() {
        Keyboard_Host host;
        host.is_shift = [this] { return is_shift; };
        host.is_over_tool = [this] { return is_over_tool; };
        host.tool_key = [this](int key) { return Took(tool_keys, is_over_tool && tool_takes, key); };
        host.database_panel_key = [this](int key) { return Took(column_keys, column_takes, key); };
        host.is_class_undo = [this] { return is_class_undo; };
        host.focus = [this] { return pane; };
        host.focus_set = [this](Pane wanted) { pane = wanted; };
        host.database_key = [this](int key) { return Took(database_keys, true, key); };
        host.tool_accept = [this] { return is_tool_busy; };
        host.tool_cancel = [this] { return is_tool_busy; };
        host.tool_step_back = [this] { return is_tool_busy; };
        host.tag_set = [this](int tag) { set += "tag " + std::to_string(tag) + " "; };
        host.brush_set = [this](int brush) { set += "brush " + std::to_string(brush) + " "; };
        host.marker_set = [this](int marker) { set += "marker " + std::to_string(marker) + " "; };
        host.slices_show = [this] { ++slices_shown; };
        host.cross_set = [this](const Shown_Voxel& voxel) { cross = {voxel.x, voxel.y, voxel.slice}; };
        host.execute = [this](const Command_Call& call) { run.push_back(call.command); };
        host.brush_nb = 8;
        return host;
    }

    Work_Scene scene;
    Cursor_Double cursor;
    Pane pane = Pane::None;
    bool is_shift = false;
    bool is_over_tool = false;
    bool tool_takes = true;
    bool column_takes = false;
    bool is_class_undo = false;
    bool is_tool_busy = false;
    int slices_shown = 0;
    std::string set;
    std::vector<int> tool_keys;
    std::vector<int> column_keys;
    std::vector<int> database_keys;
    std::vector<int> cross;
    std::vector<Command> run;
    Keyboard_Control keyboard{scene.work, scene.values, scene.dialogs, cursor, Host()};
};

TEST_F(Keyboard, a_key_goes_to_the_panel_under_the_pointer_and_no_further) {
    is_over_tool = true;
    pane = Pane::Tag;
    keyboard.Key(KEY_RIGHT);
    EXPECT_EQ(tool_keys, std::vector<int>{KEY_RIGHT});
    EXPECT_EQ(set, "");
    tool_takes = false;
    keyboard.Key(KEY_RIGHT);
    EXPECT_NE(set, "") << "what the panel does not use, the marked part does";
}

TEST_F(Keyboard, a_key_of_nobody_is_a_command_and_shift_makes_it_another) {
    const int key = 'B';
    const auto plain = Command_Of_Key(key, Key_Context::Window, false);
    ASSERT_TRUE(plain);
    keyboard.Key(key);
    EXPECT_EQ(run, std::vector<Command>{plain->command});
    column_takes = true;
    keyboard.Key(key);
    EXPECT_EQ(run.size(), 1U) << "the database column under the pointer has used it";
    EXPECT_EQ(column_keys, std::vector<int>{key});
}

TEST_F(Keyboard, the_marked_part_comes_before_the_column_under_the_pointer) {
    pane = Pane::Tag;
    column_takes = true;
    keyboard.Key(KEY_RIGHT);
    EXPECT_TRUE(column_keys.empty());
    EXPECT_EQ(set, "tag " + std::to_string(scene.values.Tag_Cur() + 1) + " ");
}

TEST_F(Keyboard, arrows_lead_through_brushes_and_markers) {
    scene.values.Brush_Cur_Set(2);
    scene.values.Marker_Cur_Set(1);
    pane = Pane::Brush;
    keyboard.Key(KEY_RIGHT);
    pane = Pane::Marker;
    keyboard.Key(KEY_UP);
    EXPECT_EQ(set, "brush 3 marker 5 ");
    pane = Pane::Database;
    keyboard.Key(KEY_UP);
    EXPECT_EQ(database_keys, std::vector<int>{KEY_UP});
}

TEST_F(Keyboard, undo_is_of_the_class_tree_but_over_a_tool) {
    is_class_undo = true;
    const auto undo = [this] {
        run.clear();
        for (int key = 0; key < 0x1000 && run.empty(); ++key) {
            const auto call = Command_Of_Key(key, Key_Context::Class_Editor, false);
            const auto other = Command_Of_Key(key, Key_Context::Window, false);
            if (call && (!other || other->command != call->command)) {
                keyboard.Key(key);
                return other && !run.empty() ? run.front() == call->command : !run.empty();
            }
        }
        return false;
    };
    EXPECT_TRUE(undo());
    is_over_tool = true;
    tool_takes = false;
    EXPECT_FALSE(undo());
}

TEST_F(Keyboard, escape_drops_what_the_tool_does_first_then_the_cursor_and_the_mark) {
    pane = Pane::Image;
    cursor.is_on = true;
    is_tool_busy = true;
    keyboard.Key(KEY_ESCAPE);
    EXPECT_TRUE(cursor.is_on);
    EXPECT_EQ(pane, Pane::Image);
    is_tool_busy = false;
    keyboard.Key(KEY_ESCAPE);
    EXPECT_FALSE(cursor.is_on);
    EXPECT_EQ(pane, Pane::None);
    const auto escape = Command_Of_Key(KEY_ESCAPE, Key_Context::Window, false);
    EXPECT_EQ(run.size(), escape ? 1U : 0U) << "it goes on to what closes messages";
}

TEST_F(Keyboard, the_cursor_comes_with_the_slices_and_the_mark_or_says_why_not) {
    keyboard.Cursor_Set(true);
    EXPECT_TRUE(keyboard.Is_Cursor());
    EXPECT_EQ(slices_shown, 1);
    EXPECT_EQ(pane, Pane::Image);
    keyboard.Cursor_Set(false);
    EXPECT_EQ(scene.dialogs.told.back(), "The keyboard cursor is off");
    cursor.can_be_on = false;
    Work_Scene empty;
    Keyboard_Control without(empty.work, empty.values, empty.dialogs, cursor, Host());
    without.Cursor_Set(true);
    EXPECT_EQ(empty.dialogs.told.back(), "Open an image volume first");
}

TEST_F(Keyboard, arrows_move_the_cursor_by_one_and_with_shift_by_ten) {
    pane = Pane::Image;
    keyboard.Key(KEY_LEFT);
    EXPECT_EQ(cursor.moved, "") << "there is none";
    cursor.is_on = true;
    keyboard.Key(KEY_LEFT);
    keyboard.Key(KEY_DOWN);
    is_shift = true;
    keyboard.Key(KEY_RIGHT);
    keyboard.Key(KEY_UP);
    EXPECT_EQ(cursor.moved, "-1,0 0,1 10,0 0,-10 ");
}

TEST_F(Keyboard, without_a_cursor_its_keys_say_how_it_begins) {
    keyboard.Cursor_Act(false);
    keyboard.Cursor_Pen_Set(true);
    keyboard.Cursor_Pick();
    keyboard.Cross_To_Cursor();
    EXPECT_EQ(cursor.acted, "");
    EXPECT_FALSE(cursor.is_down);
    EXPECT_TRUE(cross.empty());
    EXPECT_EQ(scene.dialogs.told.back(), "I starts the keyboard cursor in the image");
    cursor.is_on = true;
    scene.work.slice = 3;
    keyboard.Cursor_Act(true);
    keyboard.Cursor_Pick();
    keyboard.Cross_To_Cursor();
    keyboard.Cursor_Pen_Set(true);
    EXPECT_EQ(cursor.acted, "erase pick ");
    EXPECT_EQ(cross, (std::vector<int>{2, 1, 3}));
    EXPECT_TRUE(keyboard.Is_Pen_Down());
}

TEST_F(Keyboard, backspace_and_enter_belong_to_the_tool_while_it_does_something) {
    cursor.is_on = true;
    is_tool_busy = true;
    keyboard.Cursor_Act(true);
    keyboard.Cursor_Pen_Set(true);
    EXPECT_EQ(cursor.acted, "");
    EXPECT_FALSE(cursor.is_down);
    keyboard.Cursor_Act(false);
    EXPECT_EQ(cursor.acted, "paint ");
}

}  // namespace

// Placing, traces, notifications and steps; what the pointer, the wheel and keys do stands in the event test.
#include "panels/tool_propagate.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "tests/panels/propagate_fixture.h"

// ---------------- placing

TEST_F(Propagate_Panel, a_new_panel_asks_for_nothing_and_draws_nothing) {
    Quiet();
    Tool_Propagate fresh;
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(stage.Take_Messages().empty());
}

TEST_F(Propagate_Panel, a_panel_without_frames_shows_its_three_widgets_inactive) {
    panel.Draw();
    Expect_Picture(0, 0, LIST_OFF, OFF, OFF, "new");
}

TEST_F(Propagate_Panel, laying_out_keeps_what_is_active) {
    const struct {
        int item;
        unsigned int up;
        unsigned int down;
    } cases[] = {{0, 0, OFF}, {2, 0, 0}, {4, OFF, 0}};
    for (const auto& one : cases) {
        Show(one.item);
        Lay_Out();
        stage.Wipe();
        panel.Draw();
        Expect_Picture(5, one.item, LIST_ON, one.up, one.down, "laid out again");
    }
}

TEST_F(Propagate_Panel, down_stands_left_and_up_right_in_every_host_box) {
    Show(2);
    for (int width = -30; width < 300; width += 7) {
        Boxs box = stage.Host_Box(4, 3, width, 50);
        panel.Resize(&box);
        panel.Draw();
        const Propagate_Layout layout =
            Propagate_Layout_Make({4, 3, static_cast<short>(width), 50}, PROPAGATE_SPACE, PROPAGATE_LIST_DIM);
        if (layout.up.width > 0) {
            Show(2);
            Point_At_Middle(layout.down);
            EXPECT_EQ(panel.Click(PRESS), 1);
            EXPECT_EQ(Shown_Item(), 1) << "down is the previous frame";
            Show(2);
            Point_At_Middle(layout.up);
            EXPECT_EQ(panel.Click(PRESS), 1);
            EXPECT_EQ(Shown_Item(), 3) << "up is the next frame";
        }
    }
}

TEST_F(Propagate_Panel, the_height_is_row_space_and_title) {
    Quiet();
    EXPECT_EQ(panel.Height(), PROPAGATE_LIST_DIM + PROPAGATE_SPACE + PROPAGATE_TITLE_DIM);
    EXPECT_EQ(Variable_Look_Ups("$INTERFACE_TOOL_FONT_SCALE"), 1U) << "looked up and not used";
    Variable_Set("$INTERFACE_TOOL_FONT_SCALE", 99);
    EXPECT_EQ(panel.Height(), PROPAGATE_LIST_DIM + PROPAGATE_SPACE + PROPAGATE_TITLE_DIM);
}

TEST_F(Propagate_Panel, laying_out_looks_up_a_dimension_that_decides_nothing) {
    Quiet();
    Lay_Out();
    EXPECT_EQ(Variable_Look_Ups("$INTERFACE_BUTTON_DIM_BIG"), 1U);
    Variable_Set("$INTERFACE_BUTTON_DIM_BIG", 2);
    Lay_Out();
    panel.Draw();
    Expect_Picture(0, 0, LIST_OFF, OFF, OFF, "another dimension");
}

// ---------------- traces

TEST_F(Propagate_Panel, set_resize_and_scroll_are_always_traced_and_set_names_the_brush_panel) {
    for (int level : {-128, 0, 5, 6, 127}) {
        Flag_Trace = static_cast<signed char>(level);
        Quiet();
        EXPECT_EQ(panel.Set(nullptr), 1);
        Lay_Out();
        EXPECT_EQ(panel.Scroll(3), 1);
        EXPECT_EQ(Lines_Of(stage.Take_Messages()),
                  (std::vector<std::string>{"16 in Tool_Brush::Set()", "16 in Tool_Propagate::Resize(dim=296x48)",
                                            "16 in Tool_Propagate::Scroll()"}))
            << level;
    }
}

TEST_F(Propagate_Panel, the_other_entries_are_traced_from_level_6_on) {
    const auto all = [this] {
        Quiet();
        panel.Click(0);
        panel.Keyboard(0x12345821);
        panel.Draw();
        panel.Height();
        panel.Update(0x1234567890000000ULL);
        panel.Motion(1);
        panel.Leave();
        panel.Propagate(-1);
        return Lines_Of(stage.Take_Messages());
    };
    Flag_Trace = 5;
    EXPECT_TRUE(all().empty());
    Flag_Trace = 6;
    EXPECT_EQ(all(), (std::vector<std::string>{"16 in Tool_Propagate::Click(up_down=0x00000000)",
                                               "16 in Tool_Propagate::Keyboard(key=0x12345821)",
                                               "16 in Tool_Propagate::Draw()", "16 in Tool_Propagate::Height()",
                                               "16 in Tool_Propagate::Update(flag:1234567890000000)"}));
}

// ---------------- notifications

TEST_F(Propagate_Panel, before_a_function_is_set_there_are_no_frames) {
    Window_Frame_Set(&host.window, volume.At(2));
    panel.Draw();
    panel.Update(UPDATE_ALL);
    Expect_Picture(0, 0, LIST_OFF, OFF, OFF, "without a function");
    panel.Set(Function);
    EXPECT_EQ(panel.Propagate(1), 0) << "setting refreshes nothing";
    EXPECT_TRUE(stage.Take_Changes().empty());
}

TEST_F(Propagate_Panel, list_and_buttons_follow_the_shown_frame) {
    panel.Draw();
    panel.Set(Function);
    for (int item : {0, 1, 4, 3, 0, 4}) {
        Window_Frame_Set(&host.window, volume.At(item));
        panel.Update(UPDATE_FRAME_CUR);
        const auto updated = stage.Read();
        EXPECT_TRUE(updated == Picture(5, item, LIST_ON, item < 4 ? 0 : OFF, item > 0 ? 0 : OFF)) << item;
        panel.Draw();
        EXPECT_TRUE(stage.Read() == updated) << "a fresh drawing shows the same";
    }
}

TEST_F(Propagate_Panel, one_frame_gives_an_active_list_and_two_inactive_buttons) {
    Stage_Volume single(1);
    Show(2);
    panel.Draw();
    Window_Frame_Set(&host.window, single.At(0));
    panel.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    Expect_Picture(1, 0, LIST_ON, OFF, OFF, "one frame");
    Window_Frame_Set(&host.window, nullptr);
}

TEST_F(Propagate_Panel, an_empty_window_a_missing_one_and_an_orphan_frame_give_no_frames) {
    Quorel_2D orphan;
    const std::vector<std::function<void()>> losses = {
        [this] { Window_Frame_Set(&host.window, nullptr); },
        [] { Variable_Define_Pointer("$WINDOW_CUR", nullptr); },
        [] { Variable_Undefine("$FRAME_CUR"); },
        [this, &orphan] { Window_Frame_Set(&host.window, &orphan); },
        [this] { panel.Set(nullptr); },
    };
    for (const auto& lose : losses) {
        Show(2);
        panel.Draw();
        lose();
        panel.Update(UPDATE_FRAME_CUR);
        const auto shown = stage.Read();
        EXPECT_TRUE(shown == Picture(5, 2, LIST_OFF, OFF, OFF));
        Quiet();
        EXPECT_EQ(panel.Propagate(1), 0);
        EXPECT_TRUE(stage.Take_Changes().empty());
        Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX);
        Variable_Define_Pointer("$WINDOW_CUR", &host.window);
        Window_Frame_Set(&host.window, nullptr);
        panel.Update(UPDATE_FRAME_CUR);
    }
}

TEST_F(Propagate_Panel, another_number_of_frames_grows_the_list_and_draws_it_once) {
    Show(2);
    Stage_Volume longer(12);
    Window_Frame_Set(&host.window, longer.At(11));
    panel.Update(UPDATE_FRAME_CUR);
    EXPECT_EQ(Widget_Counters_Get().inits, 1U);
    EXPECT_EQ(Widget_Counters_Get().draws, 2U) << "the list and the button that became inactive";
    EXPECT_EQ(Widget_Counters_Get().adjusts, 1U);
    EXPECT_EQ(Widget_Counters_Get().clears, 1U) << "below the inactive button";
    stage.Wipe();
    panel.Draw();
    Expect_Picture(12, 11, LIST_ON, OFF, 0, "twelve frames");
    Window_Frame_Set(&host.window, nullptr);
}

TEST_F(Propagate_Panel, what_does_not_change_is_not_touched) {
    Show(2);
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 1U) << "the list's item";
    EXPECT_EQ(Painted(), 1U);
    EXPECT_EQ(Widget_Counters_Get().inits, 0U);
    Window_Frame_Set(&host.window, nullptr);
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(Widget_Counters_Get().clears, 3U);
    EXPECT_EQ(Widget_Counters_Get().draws, 3U);
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(Widget_Counters_Get().draws, 3U);
}

TEST_F(Propagate_Panel, a_window_that_shows_no_frame_of_the_volume_stands_at_the_first_item) {
    Quorel_2D stray;
    stray.Parent_Set_Pt(&volume.object);  // names the volume without being one of its frames
    Show(3);
    Window_Frame_Set(&host.window, &stray);
    panel.Update(UPDATE_FRAME_CUR);
    panel.Draw();
    Expect_Picture(5, 0, LIST_ON, 0, OFF, "not found");
    Window_Frame_Set(&host.window, nullptr);
}

TEST_F(Propagate_Panel, of_all_64_flags_two_are_read_alone_and_two_as_a_pair) {
    constexpr int bit_all = 60;
    constexpr int bit_frame = 21;
    for (int bit = 0; bit < 64; bit++) {
        Show(1);
        Window_Frame_Set(&host.window, volume.At(4));
        Quiet();
        panel.Update(1ULL << bit);
        const bool read = bit == bit_all || bit == bit_frame;
        EXPECT_EQ(Variable_Look_Ups(nullptr) > 0, read) << bit;
        EXPECT_EQ(Painted() > 0, read) << bit;
        EXPECT_EQ(panel.Propagate(1), read ? 0 : RESULT) << bit << ": at the last frame once it is known";
    }
    for (const auto& [flags, read] : {std::pair<unsigned __int64, bool>{0x402, true},
                                      {0x400, false},
                                      {0x2, false},
                                      {0x404, false},
                                      {0x401, false},
                                      {0x102, false},
                                      {0x403, true},
                                      {0, false}}) {
        Show(1);
        Window_Frame_Set(&host.window, volume.At(4));
        Quiet();
        panel.Update(flags);
        EXPECT_EQ(Variable_Look_Ups(nullptr) > 0, read) << flags;
        EXPECT_EQ(Painted() > 0, read) << flags;
    }
}

// ---------------- propagate

TEST_F(Propagate_Panel, a_step_moves_then_runs_the_function_on_the_former_and_the_new_frame) {
    for (bool at_once : {false, true}) {
        stage.on_change = nullptr;
        if (at_once) {
            Answer_At_Once();
        }
        for (int direction : {1, -1}) {
            Show(2);
            runs.clear();
            EXPECT_EQ(panel.Propagate(direction), RESULT);
            ASSERT_EQ(runs.size(), 1U);
            EXPECT_EQ(runs[0].shown, volume.At(2)) << "also when the host has told of the new frame meanwhile";
            EXPECT_EQ(runs[0].target, volume.At(2 + direction));
            EXPECT_EQ(stage.Take_Changes(),
                      (std::vector<Frame_Change>{{&host.window, volume.At(2 + direction), volume.At(2)}}));
            EXPECT_EQ(Shown_Item(), 2 + direction);
        }
    }
}

TEST_F(Propagate_Panel, steps_in_a_row_go_from_frame_to_frame) {
    Show(0);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(panel.Propagate(1), RESULT);
        EXPECT_EQ(runs.back().shown, volume.At(i));
        EXPECT_EQ(runs.back().target, volume.At(i + 1));
    }
    EXPECT_EQ(panel.Propagate(1), 0);
    for (int i = 4; i > 0; i--) {
        EXPECT_EQ(panel.Propagate(-1), RESULT);
        EXPECT_EQ(runs.back().shown, volume.At(i));
        EXPECT_EQ(runs.back().target, volume.At(i - 1));
    }
    EXPECT_EQ(panel.Propagate(-1), 0);
    EXPECT_EQ(runs.size(), 8U);
}

TEST_F(Propagate_Panel, the_first_and_the_last_frame_end_the_way_without_moving) {
    for (const auto& [item, direction] : {std::pair{4, 1}, {0, -1}, {4, 3}, {0, -7}}) {
        Show(item);
        EXPECT_EQ(panel.Propagate(direction), 0);
        EXPECT_TRUE(stage.Take_Changes().empty());
        EXPECT_EQ(Painted(), 0U);
        EXPECT_TRUE(runs.empty());
        Point_At_Middle(direction > 0 ? Layout().up : Layout().down);
        EXPECT_EQ(panel.Click(PRESS), 0) << "the button is inactive";
    }
}

TEST_F(Propagate_Panel, the_focus_is_locked_and_the_wait_cursor_shown_for_the_run_only) {
    Show(2);
    EXPECT_FALSE(Wait_Cursor_Shown(false));
    panel.Propagate(1);
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(runs[0].lock, 1);
    EXPECT_TRUE(runs[0].wait_cursor);
    EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
    EXPECT_FALSE(Wait_Cursor_Shown(false));
}

TEST_F(Propagate_Panel, without_the_lock_variable_the_function_runs_all_the_same) {
    Show(2);
    Variable_Undefine("$INTERFACE_LOCK_FOCUS");
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_TRUE(runs.at(0).wait_cursor);
}

TEST_F(Propagate_Panel, an_exception_of_the_function_ends_at_the_panel) {
    Show(1);
    const std::vector<std::function<int()>> throwers = {[]() -> int { throw std::runtime_error("no"); },
                                                        []() -> int { throw 5; }};
    for (std::size_t i = 0; i < throwers.size(); i++) {
        during = throwers[i];
        EXPECT_EQ(panel.Propagate(1), 0);
        EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
        EXPECT_FALSE(Wait_Cursor_Shown(false));
        EXPECT_EQ(Shown_Item(), 2 + static_cast<int>(i)) << "the frame has moved";
        const std::string what = i == 0 ? ": no" : "";
        EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{FAILURE_TEXT + what});
    }
    during = nullptr;
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_EQ(runs.back().shown, volume.At(3)) << "the next step starts from there";
    during = throwers[0];
    Point_At_Middle(Layout().down);
    EXPECT_EQ(panel.Click(PRESS), 1);
}

TEST_F(Propagate_Panel, without_a_function_the_frame_moves_before_the_warning) {
    for (bool at_once : {false, true}) {
        Show(2);
        panel.Set(nullptr);
        Quiet();
        std::vector<std::string> lines_at_change = {"not changed"};
        stage.on_change = [&] {
            lines_at_change = Lines_Of(stage.Take_Messages());
            if (at_once) {
                panel.Update(UPDATE_FRAME_CUR);
            }
        };
        EXPECT_EQ(panel.Propagate(-1), 0);
        EXPECT_TRUE(lines_at_change.empty()) << "moved first";
        EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{WARNING_TEXT});
        EXPECT_EQ(Shown_Item(), 1);
        EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
        stage.on_change = nullptr;
    }
}

TEST_F(Propagate_Panel, without_a_window_the_item_moves_alone) {
    Show(1);
    stage.Wipe();
    panel.Draw();
    Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    Widget_Counters_Reset();
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 1U) << "the list";
    EXPECT_EQ(Painted(), 1U);
    EXPECT_TRUE(stage.Take_Changes().empty());
    EXPECT_TRUE(stage.Take_Messages().empty());
    EXPECT_TRUE(runs.empty());
    Expect_Picture(5, 2, LIST_ON, 0, 0, "item 2");
}

TEST_F(Propagate_Panel, without_frames_the_item_runs_away_quietly) {
    for (int i = 0; i < 40000; i++) {
        ASSERT_EQ(panel.Propagate(1), 0);
    }
    for (int direction : {INT_MAX, INT_MIN, 0, -5}) {
        EXPECT_EQ(panel.Propagate(direction), 0);
    }
    panel.Draw();
    EXPECT_TRUE(stage.Take_Changes().empty());
    Show(3);
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_EQ(runs.back().target, volume.At(4));
}

TEST_F(Propagate_Panel, an_item_without_a_frame_changes_nothing_and_runs_nothing) {
    Show(1);
    EXPECT_EQ(panel.Propagate(7), 0);
    EXPECT_TRUE(stage.Take_Changes().empty());
    EXPECT_TRUE(runs.empty());
    EXPECT_TRUE(stage.Take_Messages().empty());
    Show(1);
    panel.Set(nullptr);
    Quiet();
    EXPECT_EQ(panel.Propagate(7), 0);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{WARNING_TEXT});
    EXPECT_TRUE(stage.Take_Changes().empty());
}

TEST_F(Propagate_Panel, a_function_that_changes_the_frame_itself_leaves_the_list_at_what_is_shown) {
    for (bool at_once : {false, true}) {
        stage.on_change = nullptr;
        if (at_once) {
            Answer_At_Once();
        }
        Show(1);
        panel.Draw();
        during = [this] {
            Fct_Change_Child(&host.window, volume.At(4), volume.At(2));
            return 1;
        };
        EXPECT_EQ(panel.Propagate(1), 1);
        during = nullptr;
        EXPECT_EQ(Shown_Item(), 4);
        EXPECT_EQ(panel.Propagate(1), 0) << "the list stands at the last frame";
        runs.clear();
        EXPECT_EQ(panel.Propagate(-1), RESULT);
        EXPECT_EQ(runs[0].target, volume.At(3));
        // Who tells the panel of the change gets the true frame; otherwise it goes on from the step's own target.
        EXPECT_EQ(runs[0].shown, at_once ? volume.At(4) : volume.At(2));
    }
}

TEST_F(Propagate_Panel, a_window_or_volume_that_vanishes_with_the_change_ends_the_step) {
    Show(1);
    stage.on_change = [this] {
        Variable_Define_Pointer("$WINDOW_CUR", nullptr);
        panel.Update(UPDATE_FRAME_CUR);
    };
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_TRUE(runs.empty());
    Variable_Define_Pointer("$WINDOW_CUR", &host.window);
    stage.on_change = nullptr;

    panel.Update(UPDATE_FRAME_CUR);
    stage.on_change = [this] {
        Window_Frame_Set(&host.window, nullptr);
        panel.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
    };
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_TRUE(runs.empty());
    stage.on_change = nullptr;
    Quiet();
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_TRUE(stage.Take_Changes().empty());
}

TEST_F(Propagate_Panel, the_function_runs_on_the_frames_of_the_step_wherever_the_focus_went_with_the_change) {
    Stage_Volume other(7);
    Quorel_Window second;
    second.class_b = 3;
    Window_Frame_Set(&second, other.At(6));
    for (const bool told : {false, true}) {
        Variable_Define_Pointer("$WINDOW_CUR", &host.window);
        Show(1);
        runs.clear();
        stage.on_change = [this, told, &second] {
            Variable_Define_Pointer("$WINDOW_CUR", &second);
            if (told) {
                panel.Update(UPDATE_FRAME_CUR);
            }
        };
        EXPECT_EQ(panel.Propagate(1), RESULT) << told;
        ASSERT_EQ(runs.size(), 1U) << told;
        EXPECT_EQ(runs[0].shown, volume.At(1)) << told;
        EXPECT_EQ(runs[0].target, volume.At(2)) << told;
        stage.on_change = nullptr;
        Quiet();
        Point_At_Arrow(true);
        EXPECT_EQ(panel.Click(PRESS), 1);
        // The list stood at the item that the window of the step shows.
        Quorel_2D* const next = told ? other.At(3) : volume.At(3);
        EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&second, next, volume.At(2)}})) << told;
        Window_Frame_Set(&second, other.At(6));
    }
    Variable_Define_Pointer("$WINDOW_CUR", &host.window);
    Window_Frame_Set(&second, nullptr);
}

TEST_F(Propagate_Panel, the_list_follows_the_window_of_the_step_although_the_focus_left_it_during_the_run) {
    Stage_Volume other(7);
    Quorel_Window second;
    second.class_b = 3;
    for (const bool told : {false, true}) {
        Window_Frame_Set(&second, other.At(0));
        Show(1);
        panel.Draw();
        during = [this, told, &second] {
            Window_Frame_Set(&host.window, volume.At(4));  // without a word
            Variable_Define_Pointer("$WINDOW_CUR", &second);
            if (told) {
                panel.Update(UPDATE_FRAME_CUR);  // of another window: no news of the step's
            }
            return 6;
        };
        EXPECT_EQ(panel.Propagate(1), 6) << told;
        during = nullptr;
        Quiet();
        Point_At_Arrow(false);
        EXPECT_EQ(panel.Click(PRESS), 1) << told;
        Quorel_2D* const before = told ? other.At(3) : volume.At(3);
        EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&second, before, volume.At(2)}})) << told;
        Variable_Define_Pointer("$WINDOW_CUR", &host.window);
    }
    Window_Frame_Set(&second, nullptr);
}

TEST_F(Propagate_Panel, a_window_or_volume_that_vanishes_during_the_run_is_not_touched_again) {
    auto closed = std::make_unique<Quorel_Window>();
    closed->class_b = 5;
    Variable_Define_Pointer("$WINDOW_CUR", closed.get());
    Window_Frame_Set(closed.get(), volume.At(1));
    panel.Set(Function);
    panel.Update(UPDATE_FRAME_CUR);
    during = [&closed] {  // closed without a word
        Window_Frame_Set(closed.get(), nullptr);
        Variable_Define_Pointer("$WINDOW_CUR", nullptr);
        closed.reset();
        return 8;
    };
    EXPECT_EQ(panel.Propagate(1), 8);
    Variable_Define_Pointer("$WINDOW_CUR", &host.window);

    auto lost = std::make_unique<Stage_Volume>(3);
    Window_Frame_Set(&host.window, lost->At(0));
    panel.Update(UPDATE_FRAME_CUR);
    during = [this, &lost] {
        Window_Frame_Set(&host.window, nullptr);
        lost.reset();
        panel.Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D);
        return 9;
    };
    EXPECT_EQ(panel.Propagate(1), 9);
    during = nullptr;
    Quiet();
    EXPECT_EQ(panel.Propagate(1), 0);
    EXPECT_TRUE(stage.Take_Changes().empty());
    Show(3);
    panel.Propagate(1);
    EXPECT_EQ(runs.back().shown, volume.At(3));
}

TEST_F(Propagate_Panel, a_function_may_take_itself_away_or_step_on) {
    Show(0);
    during = [this] {
        panel.Set(nullptr);
        return 3;
    };
    EXPECT_EQ(panel.Propagate(1), 3);
    Show(1);
    int depth = 0;
    during = [this, &depth] { return ++depth < 3 ? panel.Propagate(1) : 6; };
    EXPECT_EQ(panel.Propagate(1), 6);
    EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
    EXPECT_FALSE(Wait_Cursor_Shown(false));
}

TEST_F(Propagate_Panel, an_update_during_the_run_may_tell_of_another_volume_in_the_same_window) {
    Stage_Volume other(7);
    Show(1);
    panel.Draw();
    during = [this, &other] {
        Window_Frame_Set(&host.window, other.At(3));
        panel.Update(UPDATE_FRAME_CUR);
        return 2;
    };
    EXPECT_EQ(panel.Propagate(1), 2);
    during = nullptr;
    Quiet();
    Point_At_Arrow(true);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&host.window, other.At(4), other.At(3)}}))
        << "the list stood at the frame that was told of";
    Window_Frame_Set(&host.window, nullptr);
}

TEST_F(Propagate_Panel, an_update_during_the_run_may_tell_of_the_frame_shown_before) {
    // The function steps back, and the host tells of it: the frame is the one that the panel had known all the time.
    Show(1);
    during = [this] {
        Fct_Change_Child(&host.window, volume.At(1), volume.At(2));
        panel.Update(UPDATE_FRAME_CUR);
        return 1;
    };
    EXPECT_EQ(panel.Propagate(1), 1);
    during = nullptr;
    runs.clear();
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_EQ(runs[0].shown, volume.At(1)) << "not the target of the step before";
    EXPECT_EQ(runs[0].target, volume.At(2));
}

TEST_F(Propagate_Panel, a_step_inside_the_run_leaves_the_panel_at_the_frame_it_went_to) {
    Show(0);
    int depth = 0;
    during = [this, &depth] { return ++depth < 3 ? panel.Propagate(1) : 6; };
    EXPECT_EQ(panel.Propagate(1), 6);
    during = nullptr;
    runs.clear();
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_EQ(runs[0].shown, volume.At(3));
    EXPECT_EQ(runs[0].target, volume.At(4));
}

// What the pointer, the wheel and keys do to the propagate panel; copies; events in any order.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <random>
#include <tuple>
#include <utility>

#include "panels/tool_propagate.h"
#include "tests/panels/propagate_fixture.h"

// ---------------- events

TEST_F(Propagate_Panel, a_release_is_ignored) {
    Show(2);
    for (const Pixel_Rectangle& place : {Layout().down, Layout().list, Layout().up}) {
        Point_At_Middle(place);
        for (const int still_held : {0, 0x10, 0x20, 0x40, 0x70}) {
            EXPECT_EQ(panel.Click(still_held), 0) << still_held;
        }
    }
    EXPECT_TRUE(runs.empty());
    EXPECT_TRUE(stage.Take_Changes().empty());
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Propagate_Panel, every_pixel_answers_for_the_widget_that_stands_there) {
    picked_item = DROP_LIST_NONE;
    const Propagate_Layout layout = Layout();
    const auto inside = [](const Pixel_Rectangle& place, int x, int y) {
        return x >= place.x && x < place.x + place.width && y >= place.y && y < place.y + place.height;
    };
    for (int y : {HOST.y + 0, HOST.y + 3, HOST.y + 4, HOST.y + 23, HOST.y + 24, HOST.y + 40}) {
        for (int x = 0; x < stage.width; x++) {
            Show(2);
            runs.clear();
            stage.Point_At(x, y);
            const bool button = inside(layout.up, x, y) || inside(layout.down, x, y);
            ASSERT_EQ(panel.Click(PRESS), button || inside(layout.list, x, y) ? 1 : 0) << x << ", " << y;
            ASSERT_EQ(runs.size(), button ? 1U : 0U) << x << ", " << y;
        }
    }
}

TEST_F(Propagate_Panel, a_pick_in_the_list_shows_that_frame_and_propagates_nothing) {
    Show(2);
    panel.Draw();
    picked_item = 4;
    Point_At_Middle(Layout().list);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&host.window, volume.At(4), volume.At(2)}}));
    EXPECT_TRUE(runs.empty());
    picked_item = 1;
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&host.window, volume.At(1), volume.At(2)}}))
        << "a jump does not refresh the frame that the panel takes for shown";
    panel.Draw();
    panel.Leave();
    Expect_Picture(5, 1, LIST_ON, 0, 0, "the pick");
    picked_item = 3;
    EXPECT_EQ(panel.Click(PRESS), 1);
    Expect_Picture(5, 3, LIST_ON, 0, 0, "a pick shows at once");
    stage.Take_Changes();
    picked_item = DROP_LIST_NONE;
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_TRUE(stage.Take_Changes().empty());
    EXPECT_EQ(panel.Propagate(1), RESULT) << "no pick, and the list stands where it stood";
    EXPECT_EQ(runs.back().target, volume.At(4));
}

TEST_F(Propagate_Panel, the_list_s_arrows_jump_too) {
    Show(2);
    Point_At_Arrow(true);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(Shown_Item(), 3);
    Point_At_Arrow(false);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(Shown_Item(), 1);
    EXPECT_TRUE(runs.empty());
}

TEST_F(Propagate_Panel, a_jump_without_window_or_frame_stays_in_the_list) {
    Show(2);
    Point_At_Arrow(true);
    Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_TRUE(stage.Take_Changes().empty());
    Variable_Define_Pointer("$WINDOW_CUR", &host.window);
    Show(4);
    while (volume.object.Child_Get_Nb() > 2) {
        volume.object.Child_Remove(volume.object.Child_Get_Nb() - 1);
    }
    Point_At_Arrow(false);
    EXPECT_EQ(panel.Click(PRESS), 1);
    EXPECT_TRUE(stage.Take_Changes().empty()) << "frames that the panel was not told of losing";
}

TEST_F(Propagate_Panel, eight_keys_over_the_list_are_used) {
    const std::vector<std::pair<int, int>> used = {{0x821, 0}, {0x822, 4}, {0x823, 4}, {0x824, 0},
                                                   {0x825, 1}, {0x827, 3}, {0x82D, 1}, {0x82E, 3}};
    Point_At_Middle(Layout().list);
    for (int key = 0; key < 0x900; key++) {
        Show(2);
        const auto one =
            std::find_if(used.begin(), used.end(), [key](const auto& entry) { return entry.first == key; });
        Key_In_Hand_Set(key);
        const int answer = panel.Keyboard(key);
        Key_In_Hand_Set(0);
        ASSERT_EQ(answer, one != used.end() ? 1 : 0) << key;
        ASSERT_EQ(Shown_Item(), one != used.end() ? one->second : 2) << key;
    }
    EXPECT_TRUE(runs.empty());
    Show(2);
    Key_In_Hand_Set(KEY_LEFT);
    EXPECT_EQ(panel.Keyboard(0x7FFF0825), 1) << "the low 16 bits count";
    Key_In_Hand_Set(0);
    EXPECT_EQ(Shown_Item(), 1);
}

TEST_F(Propagate_Panel, keys_elsewhere_are_not_used) {
    Show(2);
    for (const Pixel_Rectangle& place : {Layout().down, Layout().up}) {
        Point_At_Middle(place);
        EXPECT_EQ(panel.Keyboard(KEY_LEFT), 0);
    }
    EXPECT_EQ(Shown_Item(), 2);
}

TEST_F(Propagate_Panel, a_key_leaves_the_buttons_as_they_are_and_the_wheel_refreshes_them) {
    Show(3);
    panel.Draw();
    Point_At_Middle(Layout().list);
    Key_In_Hand_Set(KEY_END);
    EXPECT_EQ(panel.Keyboard(KEY_END), 1);
    Key_In_Hand_Set(0);
    Expect_Picture(5, 4, LIST_ON, 0, 0, "the up button is still active");
    panel.Draw();
    EXPECT_EQ(panel.Scroll(0), 1);
    Expect_Picture(5, 4, LIST_ON, OFF, 0, "the wheel");
    for (const auto& [key, up, down] : {std::tuple{KEY_HOME, 0U, OFF}, {KEY_END, OFF, 0U}}) {
        Show(2);
        Key_In_Hand_Set(key);
        EXPECT_EQ(panel.Keyboard(key), 1);
        Key_In_Hand_Set(0);
        Lay_Out();
        panel.Draw();
        Expect_Picture(5, key == KEY_HOME ? 0 : 4, LIST_ON, up, down, "a layout refreshes them too");
    }
}

TEST_F(Propagate_Panel, the_wheel_over_the_list_goes_to_earlier_frames_when_turned_forward) {
    Point_At_Middle(Layout().list);
    for (const auto& [notches, item] : {std::pair{1, 1}, {-1, 3}, {5, 0}, {-5, 4}, {INT_MIN, 4}, {INT_MAX, 0}}) {
        Show(2);
        EXPECT_EQ(panel.Scroll(notches), 1);
        EXPECT_EQ(Shown_Item(), item) << notches;
        EXPECT_EQ(stage.Take_Changes(), (std::vector<Frame_Change>{{&host.window, volume.At(item), volume.At(2)}}));
    }
    EXPECT_TRUE(runs.empty());
    Show(2);
    Point_At_Middle(Layout().up);
    EXPECT_EQ(panel.Scroll(1), 1);
    EXPECT_EQ(Shown_Item(), 2);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Propagate_Panel, motion_and_leave_give_feedback_and_leave_no_trace) {
    Show(2);
    panel.Draw();
    const auto before = stage.Read();
    for (const Pixel_Rectangle& place : {Layout().down, Layout().list, Layout().up}) {
        Point_At_Middle(place);
        EXPECT_EQ(panel.Motion(0), 0);
        EXPECT_FALSE(stage.Read() == before);
        panel.Leave();
        EXPECT_TRUE(stage.Read() == before);
    }
    Widget_Counters_Reset();
    panel.Leave();
    EXPECT_EQ(Painted(), 0U);
}

// ---------------- copies and storms

TEST_F(Propagate_Panel, a_copy_goes_its_own_way) {
    Show(1);
    auto copy = std::make_unique<Tool_Propagate>(panel);
    EXPECT_EQ(copy->Propagate(1), RESULT);
    EXPECT_EQ(runs.back().shown, volume.At(1));
    Tool_Propagate other;
    other = *copy;
    copy.reset();
    EXPECT_EQ(other.Propagate(1), RESULT);
    EXPECT_EQ(runs.back().shown, volume.At(2));
    EXPECT_EQ(runs.back().target, volume.At(3));
}

TEST_F(Propagate_Panel, a_storm_of_events_in_any_order_is_survived) {
    std::mt19937 random(31);
    const auto any = [&random](int nb) { return static_cast<int>(random() % static_cast<unsigned int>(nb)); };
    std::vector<std::unique_ptr<Stage_Volume>> volumes;
    for (int i = 0; i < 3; i++) {
        volumes.push_back(std::make_unique<Stage_Volume>(i * 4 + 1));
    }
    const auto show_any = [&] {
        Stage_Volume& one = *volumes[static_cast<std::size_t>(any(3))];
        Window_Frame_Set(&host.window, any(5) == 0 ? nullptr : one.At(any(one.object.Child_Get_Nb())));
    };
    during = [&] {
        if (any(3) == 0) {
            show_any();
        }
        if (any(3) == 0) {
            panel.Update(UPDATE_ALL);
        }
        if (any(5) == 0) {
            throw 1;
        }
        return 2;
    };
    stage.on_change = [&] {
        if (any(2) == 0) {
            panel.Update(UPDATE_FRAME_CUR);
        }
    };
    for (int step = 0; step < 8000; step++) {
        stage.Point_At(any(stage.width), any(stage.height));
        switch (any(12)) {
            case 0: {
                Boxs box = stage.Host_Box(any(40) - 20, any(30) - 20, any(340) - 20, any(70) - 20);
                panel.Resize(&box);
                break;
            }
            case 1:
                panel.Draw();
                break;
            case 2:
            case 3:
                picked_item = any(12) - 1;
                panel.Click(any(2) == 0 ? PRESS : static_cast<int>(random()));
                break;
            case 4:
                panel.Motion(any(2));
                break;
            case 5:
                panel.Update(any(2) == 0 ? 1ULL << any(64) : UPDATE_ALL);
                break;
            case 6:
                Key_In_Hand_Set(0x820 + any(16));
                panel.Keyboard(0x820 + any(16));
                Key_In_Hand_Set(0);
                break;
            case 7:
                panel.Scroll(any(7) - 3);
                break;
            case 8:
                show_any();
                break;
            case 9:
                panel.Set(any(3) == 0 ? nullptr : Function);
                break;
            case 10:
                panel.Propagate(any(5) - 2);
                break;
            default:
                Variable_Define_Pointer("$WINDOW_CUR", any(3) == 0 ? nullptr : &host.window);
                panel.Leave();
        }
        ASSERT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
    }
    stage.on_change = nullptr;
    Window_Frame_Set(&host.window, nullptr);
}

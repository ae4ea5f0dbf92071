// The host destroys the panel inside each call that leads out of it: nothing of the panel is touched afterwards.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "tests/panels/ending_panel.h"
#include "tests/panels/propagate_fixture.h"

namespace {

std::function<int()> while_open;

int Run_Drop_List(const Drop_List_Request& /*request*/) {
    return while_open();
}

using Ending = Ending_Panel<Tool_Propagate>;

class Propagate_Ends : public Propagate_Panel {
  protected:
    ~Propagate_Ends() override { while_open = nullptr; }

    struct Way {
        const char* name;
        std::function<void(Propagate_Ends&, Ending&)> go;
    };
    /** Every operation that makes another frame the shown one. */
    static std::vector<Way> Ways() {
        return {
            {"a pick in the list",
             [](Propagate_Ends& self, Ending& panel) {
                 picked_item = 4;
                 self.Point_At_Middle(self.Layout().list);
                 EXPECT_EQ(panel->Click(PRESS), 1);
             }},
            {"an arrow of the list",
             [](Propagate_Ends& self, Ending& panel) {
                 self.Point_At_Arrow(true);
                 EXPECT_EQ(panel->Click(PRESS), 1);
             }},
            {"the button Up",
             [](Propagate_Ends& self, Ending& panel) {
                 self.Point_At_Middle(self.Layout().up);
                 EXPECT_EQ(panel->Click(PRESS), 1);
             }},
            {"the button Down",
             [](Propagate_Ends& self, Ending& panel) {
                 self.Point_At_Middle(self.Layout().down);
                 EXPECT_EQ(panel->Click(PRESS), 1);
             }},
            {"Propagate", [](Propagate_Ends&, Ending& panel) { EXPECT_EQ(panel->Propagate(1), 0); }},
            {"the wheel",
             [](Propagate_Ends& self, Ending& panel) {
                 self.Point_At_Middle(self.Layout().list);
                 EXPECT_EQ(panel->Scroll(1), 1);
             }},
            {"a key",
             [](Propagate_Ends& self, Ending& panel) {
                 self.Point_At_Middle(self.Layout().list);
                 Key_In_Hand_Set(KEY_RIGHT);
                 EXPECT_EQ(panel->Keyboard(KEY_RIGHT), 1);
                 Key_In_Hand_Set(0);
             }},
        };
    }
};

}  // namespace

TEST_F(Propagate_Ends, while_the_drop_list_is_open) {
    Drop_List_Runner_Set(Run_Drop_List);
    for (const int answer : {3, DROP_LIST_NONE}) {
        Show(2);
        Ending ending(panel);
        while_open = [&ending, answer] {
            ending.End();
            return answer;
        };
        Point_At_Middle(Layout().list);
        EXPECT_EQ(ending->Click(PRESS), 1);
        EXPECT_TRUE(ending.Is_Untouched()) << answer;
        EXPECT_TRUE(stage.Take_Changes().empty()) << answer;
        EXPECT_TRUE(runs.empty()) << answer;
    }
}

TEST_F(Propagate_Ends, while_the_frame_changes) {
    for (const Way& way : Ways()) {
        Show(2);
        Ending ending(panel);
        stage.on_change = [&ending] { ending.End(); };
        way.go(*this, ending);
        stage.on_change = nullptr;
        EXPECT_TRUE(ending.Has_Ended()) << way.name;
        EXPECT_TRUE(ending.Is_Untouched()) << way.name;
        EXPECT_TRUE(runs.empty()) << way.name;
        EXPECT_EQ(stage.Take_Changes().size(), 1U) << way.name;
    }
}

TEST_F(Propagate_Ends, during_the_run) {
    for (const int direction : {1, -1}) {
        Show(2);
        Ending ending(panel);
        during = [&ending] {
            ending.End();
            return 5;
        };
        EXPECT_EQ(ending->Propagate(direction), 5);
        EXPECT_TRUE(ending.Is_Untouched()) << direction;
        EXPECT_EQ(Variable_Number("$INTERFACE_LOCK_FOCUS", -1), 0);
        EXPECT_FALSE(Wait_Cursor_Shown(false));
    }
    for (const Pixel_Rectangle& place : {Layout().up, Layout().down}) {
        Show(2);
        Ending ending(panel);
        during = [&ending] {
            ending.End();
            return 5;
        };
        Point_At_Middle(place);
        EXPECT_EQ(ending->Click(PRESS), 1);
        EXPECT_TRUE(ending.Is_Untouched());
    }
}

TEST_F(Propagate_Ends, during_a_run_that_fails) {
    Show(2);
    Ending ending(panel);
    during = [&ending]() -> int {
        ending.End();
        throw std::runtime_error("closed");
    };
    EXPECT_EQ(ending->Propagate(1), 0);
    EXPECT_TRUE(ending.Is_Untouched());
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{FAILURE_TEXT + std::string(": closed")});
}

TEST_F(Propagate_Ends, while_the_user_reads_a_warning) {
    const auto throwing = []() -> int { throw 5; };
    for (const bool has_function : {false, true}) {
        Show(2);
        panel.Set(has_function ? Function : nullptr);
        during = throwing;
        Ending ending(panel);
        const auto end = [](void* context, HWND, int level, const char*) {
            if (level == MESSAGE_WARNING) {
                static_cast<Ending*>(context)->End();
            }
        };
        Message_Receiver_Add(end, &ending, true);
        EXPECT_EQ(ending->Propagate(1), 0);
        Message_Receiver_Remove(end, &ending);
        EXPECT_TRUE(ending.Has_Ended()) << has_function;
        EXPECT_TRUE(ending.Is_Untouched()) << has_function;
    }
}

TEST_F(Propagate_Ends, a_copy_that_ends_meanwhile_ends_nothing) {
    Show(1);
    Ending ending(panel);
    during = [this, &ending] {
        ending.End();
        const Tool_Propagate assigned(panel);
        panel = assigned;
        return RESULT;
    };
    EXPECT_EQ(panel.Propagate(1), RESULT);
    during = nullptr;
    EXPECT_EQ(panel.Propagate(1), RESULT);
    EXPECT_EQ(runs.back().shown, volume.At(2)) << "the panel went on from its target";
}

// The class tree editor, and the host it asks, without memory.
#include <string>

#include "tests/database/edit_calls.h"
#include "tests/kits/common/failing_memory.h"

namespace {

TEST_F(Tool_DB_Edit_Test, every_failed_allocation_leaves_the_tree_whole) {
    Make_Study();
    Draw();
    messages.Listen(false);
    Request_Listener_Set({});  // nothing of the test itself allocates while the editor is at work
    const std::string whole = Text();
    int moved = 0;
    int failures = 0;
    for (bool ended = false; !ended;) {
        int pressed = 0;
        int released = 0;
        {
            const Failing_Allocation failing(failures + 1);
            Point_At_Zone("c", Edit_Zone::Children_Handle);
            pressed = Click(LEFT_PRESS);
            Point_At_Zone("root", Edit_Zone::Children_Handle);
            released = Click(RELEASE);
            ended = !Failing_Allocation::Happened();
        }
        failures += ended ? 0 : 1;
        EXPECT_EQ(pressed, 1);
        if (released == 2) {
            moved++;
            EXPECT_EQ(Text(), "root(a(b,c,f),g,d,e)");
            Object_Of("c")->Child_Add(Object_Of("d"));
            Object_Of("c")->Child_Add(Object_Of("e"));
        }
        EXPECT_EQ(Text(), whole);
        EXPECT_FALSE(db_drag.active);
    }
    EXPECT_GE(failures, 2);
    EXPECT_GE(moved, 1);
    messages.Listen(true);
}

TEST_F(Tool_DB_Edit_Test, a_host_without_memory_for_a_child_loses_none) {
    for (const bool deletes : {true, false}) {
        int failures = 0;
        bool ended = false;
        while (!ended) {
            objects.clear();
            Make_Study();  // fresh objects: a list of four children has no room left
            Class(root, "h");
            if (!deletes) {
                Class(root, "i");
            }
            Build();
            Draw();
            messages.Take();
            messages.Listen(false);
            if (!deletes) {
                Press_On("b", Edit_Zone::Parent_Handle);
                Point_At_Zone("root", Edit_Zone::Children_Handle);
            } else {
                Point_At_Zone("a", Edit_Zone::Body);
            }
            bool done = false;
            {
                const Allocation_Fault fault("Kit_Dataset.dll", failures + 1);
                done = deletes ? Key(KEY_DELETE) == 1 : Click(RELEASE) == 2;
                ended = !Allocation_Fault::Happened();
            }
            messages.Listen(true);
            const std::string text = Text();
            for (const char* title : {"b", "c", "d", "e", "f", "g", "h"}) {
                EXPECT_NE(text.find(title), std::string::npos) << title << " is lost: " << text;
            }
            if (deletes && !done) {
                EXPECT_EQ(text, "root(a(b,c(d,e),f),g,h)") << "also those that had been moved";
            }
            failures += ended ? 0 : 1;
            ASSERT_LT(failures, 50);
        }
        EXPECT_GE(failures, 1);
    }
}

}  // namespace

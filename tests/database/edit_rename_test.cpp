// Renaming classes in the class tree editor.
#include <string>

#include "database/tool_db_dialog_rename.h"
#include "tests/database/edit_calls.h"

namespace {

TEST_F(Tool_DB_Edit_Test, a_right_press_on_a_body_renames) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.Name_All(objects);
    typed_name.typed = "Liver";
    EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_EQ(typed_name.asked, "Nc");
    EXPECT_EQ(calls.Take(), Together({{"name(c, Liver)"}, Told("c", "0x402", "0x3fff")}));
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Liver");
}

TEST_F(Tool_DB_Edit_Test, cancel_or_a_failed_dialog_leave_the_name) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    typed_name.typed = "Liver";
    for (const int end : {2, 0, -1}) {
        typed_name.answer = end;
        EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    }
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Nc");
}

TEST_F(Tool_DB_Edit_Test, the_root_can_be_renamed_and_empty_ground_renames_nothing) {
    Make_Study();
    Draw();
    typed_name.typed = "Patient";
    Press_On("root", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_STREQ(root->Name_Get(), "Patient");
    typed_name.typed = "wrong";
    Point_At_Tree(320, 300);
    ASSERT_EQ(Locate(), 0);
    EXPECT_EQ(Click(RIGHT_PRESS), 1);
    EXPECT_STREQ(root->Name_Get(), "Patient");
}

TEST_F(Tool_DB_Edit_Test, a_name_longer_than_the_dialog_is_kept_unless_something_is_typed) {
    Make_Study();
    Draw();
    const std::string whole(400, 'x');
    Object_Of("c")->Name_Set(whole.c_str());
    Tree_Calls calls;
    typed_name.typed = whole.substr(0, DIALOG_RENAME_SIZE - 1);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(typed_name.asked, typed_name.typed);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Object_Of("c")->Name_Get(), whole);
    typed_name.typed = "y" + typed_name.typed.substr(1);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(Object_Of("c")->Name_Get(), typed_name.typed);
}

TEST_F(Tool_DB_Edit_Test, a_long_name_of_high_bytes_reaches_the_dialog) {
    Make_Study();
    Draw();
    const std::string whole(400, '\x80');  // a character of its own each, in a code page of single bytes
    Object_Of("c")->Name_Set(whole.c_str());
    typed_name.answer = 2;
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(typed_name.asked, whole.substr(0, DIALOG_RENAME_SIZE - 1));
}

TEST_F(Tool_DB_Edit_Test, a_class_that_the_host_took_away_while_the_dialog_was_open_is_left_alone) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    typed_name.typed = "Liver";
    typed_name.meanwhile = [this] {
        std::erase_if(objects, [](const auto& object) { return std::string("g") == object->Title_Get(); });
        Build();
    };
    EXPECT_EQ(Press_On("g", Edit_Zone::Body, RIGHT_PRESS), 1);
    for (const std::string& call : calls.Take()) {
        EXPECT_EQ(call.rfind("name", 0), std::string::npos) << call;
    }
}

TEST_F(Tool_DB_Edit_Test, a_typed_name_is_not_lost_when_the_host_gives_the_class_another_one_meanwhile) {
    Make_Study();
    Draw();
    typed_name.typed = "Liver";
    typed_name.meanwhile = [this] { Object_Of("c")->Name_Set("CT 12"); };
    EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Liver");
}

TEST_F(Tool_DB_Edit_Test, a_missing_name_is_shown_empty) {
    Make_Study();
    Draw();
    Object_Of("c")->Name_Set(nullptr);
    typed_name.typed = "now";
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(typed_name.asked, "");
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "now");
}

TEST_F(Tool_DB_Edit_Test, the_records_may_be_rebuilt_while_the_dialog_is_open) {
    Make_Study();
    Draw();
    typed_name.typed = "Liver";
    typed_name.meanwhile = [this] {
        Object_Of("a")->Child_Remove(0);
        Build();
    };
    EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Liver");
}

}  // namespace

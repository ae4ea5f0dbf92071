#include "database/tool_db_edit.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "database/tool_db_dialog_rename.h"
#include "database/tool_db_list.h"
#include "tests/database/edit_scene.h"
#include "tests/database/host_calls.h"
#include "tests/database/plain_tree.h"
#include "tests/kits/common/failing_memory.h"

namespace {

using Texts_List = std::vector<std::string>;

int WIDTH = 900;
int HEIGHT = 420;

// -------------------------------------------------------------------------------------------------- what is asked of
// the host's objects

int (*real_insert)(Quorel*, int, Quorel*) = nullptr;
int (*real_remove)(Quorel*, int) = nullptr;
void (*real_name)(Quorel*, const char*) = nullptr;

std::string Name(const Quorel* object) {
    return object != nullptr && object->Title_Get() != nullptr ? object->Title_Get() : "-";
}
int Insert(Quorel* parent, int position, Quorel* object) {
    Host_Calls::current->Add("insert(" + Name(parent) + ", " + std::to_string(position) + ", " + Name(object) + ")");
    return real_insert(parent, position, object);
}
int Remove(Quorel* parent, int position) {
    Host_Calls::current->Add("remove(" + Name(parent) + ", " + std::to_string(position) + ")");
    return real_remove(parent, position);
}
void Name_Set(Quorel* object, const char* text) {
    Host_Calls::current->Add("name(" + Name(object) + ", " + text + ")");
    real_name(object, text);
}

/** Adds the tree operations and Name_Set to the calls that are written down. */
class Tree_Calls : public Host_Calls {
  public:
    Tree_Calls()
        : insert("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_InsertEiPS_", reinterpret_cast<void*>(&Insert)),
          remove("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_RemoveEi", reinterpret_cast<void*>(&Remove)),
          name("", "Kit_Dataset.dll", "_ZN6Quorel8Name_SetEPKc", reinterpret_cast<void*>(&Name_Set)) {
        EXPECT_TRUE(insert.Is_Set() && remove.Is_Set() && name.Is_Set());
        real_insert = reinterpret_cast<decltype(real_insert)>(insert.Original());
        real_remove = reinterpret_cast<decltype(real_remove)>(remove.Original());
        real_name = reinterpret_cast<decltype(real_name)>(name.Original());
    }
    template <class Objects>
    void Name_All(const Objects& objects) {
        for (const auto& object : objects) {
            Host_Calls::Name(object.get(), object->Title_Get());
        }
    }

  private:
    Import_Hook insert;
    Import_Hook remove;
    Import_Hook name;
};

/** The calls after a change of a parent. */
Calls Told(const std::string& object, const std::string& update, const std::string& redraw) {
    return {"on(" + object + ", 0x50, 8, 268435456)", "update(" + update + ", -, -, -)",
            "redraw(" + redraw + ", -, -, -)"};
}
Calls Together(std::initializer_list<Calls> parts) {
    Calls all;
    for (const Calls& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// ------------------------------------------------------------------------------------------------------- the user's
// name

std::string asked;  ///< what the dialog showed
std::string typed;  ///< what the user types
int answer = 1;     ///< how the dialog ends
std::function<void()> meanwhile;
int Ask(char* buffer) {
    asked = buffer;
    std::strncpy(buffer, typed.c_str(), DIALOG_RENAME_SIZE - 1);
    buffer[DIALOG_RENAME_SIZE - 1] = 0;
    if (meanwhile) {
        meanwhile();
    }
    return answer;
}

class Tool_DB_Edit_Test : public Edit_Scene<Scene_2D> {
  protected:
    Tool_DB_Edit_Test() : Edit_Scene(WIDTH, HEIGHT) {
        DB_Edit_Ask_Name = Ask;
        asked = "never";
        typed = "";
        answer = 1;
        meanwhile = nullptr;
    }
};

// ----------------------------------------------------------------------------------------------------------------
// traces

TEST_F(Tool_DB_Edit_Test, every_event_operation_traces_its_name) {
    Make_Study();
    Draw();
    messages.Take();
    Point_At_Tree(320, 300);
    Locate();
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Click(LEFT_PRESS);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Click_DB(up_down=0x00000012)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Key(KEY_DELETE);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Key_DB(key=0x0000082e)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Motion(HOVER);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Motion_DB(up_down=0x00000000)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
}

TEST_F(Tool_DB_Edit_Test, without_a_device_context_the_operation_is_named_and_nothing_changes) {
    Make_Study();
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    const DB_Tree_Point before = db_drag.current;
    box.window = nullptr;
    messages.Take();
    const auto failure = [](const char* label) {
        return Panel_Message{TRACE_LEVEL, "Y_setup(" + std::string(label) + ") GetDC failed"};
    };
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Edit_Draw")}));
    EXPECT_EQ(list_pt[Find("c")].row, 1) << "the rows are still those of the last drawing";
    EXPECT_EQ(Locate(), 0);
    EXPECT_EQ(messages.Take().back(), failure("tool_db_edit::DB_Edit_Locate"));
    EXPECT_EQ(Click(LEFT_PRESS), 1);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    messages.Take();
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    EXPECT_EQ(messages.Take()[1], failure("tool_db_edit::DB_Edit_Motion"));
    EXPECT_EQ(db_drag.current.x, before.x);
    EXPECT_EQ(db_drag.current.y, before.y);
    EXPECT_EQ(DB_Edit_Drag(&box, nb, list_pt, &horizontal, &vertical), 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Edit_Drag")}));
    DB_Draw_Circle(&box, 50, 50, 6, 0, 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Draw_Circle")}));
    DB_Draw_Expand(&box, list_pt, &horizontal, &vertical, 0, 1);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Draw_Expand")}));
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)");
}

// ------------------------------------------------------------------------------------------------------------------
// zones

TEST_F(Tool_DB_Edit_Test, the_pointer_finds_every_zone_of_a_scrolled_diagram) {
    Make_Study();
    messages.Listen(false);
    box.height = 180;
    Draw();
    vertical.value = 37.0F;
    horizontal.value = 61.0F;
    Draw();
    ASSERT_EQ(vertical.value, 37.0F);
    std::map<int, int> seen;
    for (int y = box.y; y < box.y + box.height; y += 2) {
        for (int x = box.x; x < box.x + box.width; x += 2) {
            Point_At(x, y);
            const Edit_Hit hit = Edit_Hit_At(nb, list_pt, {x - Left(), Top() - y});
            const int code = Locate();
            ASSERT_EQ(code, hit.code) << x << ", " << y;
            seen[code]++;
        }
    }
    EXPECT_GT(seen.size(), 12U);
    EXPECT_GT(seen[Edit_Code(Find("a"), Edit_Zone::Toggle)], 8);
}

// ------------------------------------------------------------------------------------------------------------------
// drags

TEST_F(Tool_DB_Edit_Test, a_press_on_a_parent_handle_begins_a_drag_and_a_drop_moves_the_node_to_the_end) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.Name_All(objects);
    EXPECT_EQ(Press_On("b", Edit_Zone::Parent_Handle), 1);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(calls.Take(), Together({{"remove(a, 0)", "insert(c, 2, b)"}, Told("c", "0x402", "0x3fff")}));
    EXPECT_EQ(Text(), "root(a(c(d,e,b),f),g)");
    EXPECT_EQ(Object_Of("c")->Flag_Get_Bit(-1, 8, 0x10000000), 0x50);
    EXPECT_EQ(Object_Of("a")->Flag_Get_Bit(-1, 8, 0x10000000), 0) << "only the new parent is flagged";
}

TEST_F(Tool_DB_Edit_Test, a_press_on_a_children_handle_drags_all_children_in_order) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.Name_All(objects);
    EXPECT_EQ(Press_On("c", Edit_Zone::Children_Handle), 1);
    EXPECT_EQ(Release_On("root", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(calls.Take(), Together({{"remove(c, 0)", "insert(root, 2, d)"},
                                      Told("root", "0x402", "0x3fff"),
                                      {"remove(c, 0)", "insert(root, 3, e)"},
                                      Told("root", "0x402", "0x3fff")}));
    EXPECT_EQ(Text(), "root(a(b,c,f),g,d,e)");
}

TEST_F(Tool_DB_Edit_Test, hidden_children_are_dragged_too) {
    Make_Study();
    list_pt[Find("a")].flag ^= DB_FLAG_EXPANDED;
    Draw();
    ASSERT_EQ(list_pt[Find("f")].row, DB_ROW_NONE);
    Press_On("a", Edit_Zone::Children_Handle);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    EXPECT_EQ(Release_On("root", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Text(), "root(a,g,b,c(d,e),f)");
}

TEST_F(Tool_DB_Edit_Test, the_root_is_not_among_its_own_children) {
    Make_Study();
    Draw();
    Press_On("root", Edit_Zone::Children_Handle);
    Tree_Calls calls;
    EXPECT_EQ(Release_On("root", Edit_Zone::Children_Handle), 2);
    const Calls made = calls.Take();
    EXPECT_EQ(
        std::count_if(made.begin(), made.end(), [](const std::string& call) { return call.rfind("insert", 0) == 0; }),
        2);
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)") << "each was moved to the end, in order";
}

TEST_F(Tool_DB_Edit_Test, a_drop_on_the_parent_whose_only_child_it_is_changes_nothing) {
    Class(nullptr, "root");
    Class(Class(root, "a"), "b");
    Class(root, "g");
    Build();
    Draw();
    Tree_Calls calls;
    Press_On("b", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2) << "kept: the panel rebuilds all the same";
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Text(), "root(a(b),g)");
}

TEST_F(Tool_DB_Edit_Test, a_drop_anywhere_but_on_a_children_handle_is_ignored) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    for (const Edit_Zone zone : {Edit_Zone::Body, Edit_Zone::Parent_Handle, Edit_Zone::Toggle}) {
        Press_On("b", Edit_Zone::Parent_Handle);
        EXPECT_EQ(Release_On(zone == Edit_Zone::Toggle ? "c" : "g", zone), 1);
        EXPECT_FALSE(db_drag.active);
    }
    // a node without children has no children handle
    Press_On("b", Edit_Zone::Parent_Handle);
    const DB_Tree_Point at = Edit_Zone_Point(list_pt[Find("g")], Edit_Zone::Children_Handle);
    Point_At_Tree(at.x, at.y);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)");
    // and the drag is over: a later release moves nothing
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    EXPECT_EQ(calls.Take(), Calls{});
}

TEST_F(Tool_DB_Edit_Test, a_release_without_a_drag_does_nothing) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    EXPECT_EQ(calls.Take(), Calls{});
}

TEST_F(Tool_DB_Edit_Test, a_drag_that_ended_outside_the_diagram_moves_nothing_later) {
    Make_Study();
    Draw();
    Press_On("b", Edit_Zone::Parent_Handle);
    Motion(LEFT_DRAG);
    db_drag.active = false;  // what the panel does for a motion without buttons
    Draw();
    Motion(HOVER);
    Tree_Calls calls;
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    db_drag.active = true;  // another drag of the same records, which is not the editor's
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    EXPECT_EQ(calls.Take(), Calls{});
}

TEST_F(Tool_DB_Edit_Test, a_drop_into_the_own_subtree_is_the_hosts_to_refuse) {
    Make_Study();
    Draw();
    Press_On("a", Edit_Zone::Parent_Handle);
    Tree_Calls calls;
    calls.Name_All(objects);
    messages.Take_Reports();
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(calls.Take(), Together({{"remove(root, 0)", "insert(c, 2, a)"}, Told("c", "0x402", "0x3fff")}));
    const std::vector<Panel_Message> reports = messages.Take_Reports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].level, MESSAGE_WARNING);
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)") << "put back where it was";
    // onto itself, with all its siblings
    Build();
    Draw();
    Press_On("a", Edit_Zone::Children_Handle);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Text(), "root(a(c(d,e,b,f)),g)");
}

TEST_F(Tool_DB_Edit_Test, a_drag_over_a_rebuild_is_forgotten) {
    Make_Study();
    Draw();
    Press_On("b", Edit_Zone::Parent_Handle);
    Build();
    Draw();
    EXPECT_FALSE(db_drag.active);
    Tree_Calls calls;
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    EXPECT_EQ(calls.Take(), Calls{});
}

TEST_F(Tool_DB_Edit_Test, a_host_that_rebuilds_at_once_does_no_harm) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.on_update = [this](unsigned __int64) {
        for (int i = 0; i < nb; ++i) {
            list_pt[i].object = nullptr;  // whoever looks at the old records finds nothing
        }
        Build();
        Draw();
    };
    Press_On("c", Edit_Zone::Children_Handle);
    EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Text(), "root(a(b,c,f,d,e),g)");
    EXPECT_EQ(Delete_On("a"), 1);
    EXPECT_EQ(Text(), "root(b,c,f,d,e,g)");
    typed = "new name";
    EXPECT_EQ(Press_On("b", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("b")->Name_Get(), "new name");
    EXPECT_EQ(std::string(list_pt[Find("b")].name), "new name");
}

TEST_F(Tool_DB_Edit_Test, a_press_on_a_toggle_hides_and_shows_children_and_draws_the_sliders) {
    Make_Study();
    Draw();
    const int a = Find("a");
    Take_Counters();
    EXPECT_EQ(Press_On("a", Edit_Zone::Toggle), 1);
    EXPECT_EQ(list_pt[a].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(list_pt[Find("b")].row, 0) << "the first child stays";
    EXPECT_EQ(list_pt[Find("c")].row, DB_ROW_NONE);
    EXPECT_EQ(list_pt[Find("g")].row, 1);
    const Widget_Counters counters = Take_Counters();
    EXPECT_EQ(counters.clears, 2U);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Press_On("a", Edit_Zone::Toggle), 1);
    EXPECT_NE(list_pt[a].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(list_pt[Find("g")].row, 4);
}

TEST_F(Tool_DB_Edit_Test, other_presses_on_a_body_do_nothing) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    for (const int code : {LEFT_PRESS, MOUSE_PRESS | MOUSE_MIDDLE, LEFT_PRESS | MOUSE_RIGHT}) {
        EXPECT_EQ(Press_On("b", Edit_Zone::Body, code), 1);
        EXPECT_FALSE(db_drag.active);
    }
    EXPECT_EQ(asked, "never");
    EXPECT_EQ(calls.Take(), Calls{});
}

// -----------------------------------------------------------------------------------------------------------------
// rename

TEST_F(Tool_DB_Edit_Test, a_right_press_on_a_body_renames) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.Name_All(objects);
    typed = "Liver";
    EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_EQ(asked, "Nc");
    EXPECT_EQ(calls.Take(), Together({{"name(c, Liver)"}, Told("c", "0x402", "0x3fff")}));
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Liver");
}

TEST_F(Tool_DB_Edit_Test, cancel_or_a_failed_dialog_leave_the_name) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    typed = "Liver";
    for (const int end : {2, 0, -1}) {
        answer = end;
        EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    }
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Nc");
}

TEST_F(Tool_DB_Edit_Test, the_root_can_be_renamed_and_empty_ground_renames_nothing) {
    Make_Study();
    Draw();
    typed = "Patient";
    Press_On("root", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_STREQ(root->Name_Get(), "Patient");
    typed = "wrong";
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
    typed = whole.substr(0, DIALOG_RENAME_SIZE - 1);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(asked, typed);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Object_Of("c")->Name_Get(), whole);
    typed = "y" + typed.substr(1);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(Object_Of("c")->Name_Get(), typed);
}

TEST_F(Tool_DB_Edit_Test, a_long_name_is_cut_before_a_character_that_does_not_fit) {
    Make_Study();
    Draw();
    Object_Of("c")->Name_Set((std::string(254, 'x') + "\xC3\xA9" + "tail").c_str());
    answer = 2;
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(asked, std::string(254, 'x'));
}

TEST_F(Tool_DB_Edit_Test, a_missing_name_is_shown_empty) {
    Make_Study();
    Draw();
    Object_Of("c")->Name_Set(nullptr);
    typed = "now";
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(asked, "");
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "now");
}

TEST_F(Tool_DB_Edit_Test, the_records_may_be_rebuilt_while_the_dialog_is_open) {
    Make_Study();
    Draw();
    typed = "Liver";
    meanwhile = [this] {
        Object_Of("a")->Child_Remove(0);
        Build();
    };
    EXPECT_EQ(Press_On("c", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("c")->Name_Get(), "Liver");
}

TEST_F(Tool_DB_Edit_Test, the_dialog_is_the_real_one_unless_replaced) {
    EXPECT_EQ(ask_before, Dialog_Rename);
}

// -----------------------------------------------------------------------------------------------------------------
// delete

TEST_F(Tool_DB_Edit_Test, a_deleted_node_leaves_its_children_in_its_place) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    calls.Name_All(objects);
    EXPECT_EQ(Delete_On("a"), 1);
    EXPECT_EQ(calls.Take(),
              Together({{"remove(a, 2)", "insert(root, 1, f)", "remove(a, 1)", "insert(root, 1, c)", "remove(a, 0)",
                         "insert(root, 1, b)", "on(root, 0x50, 8, 268435456)", "remove(root, 0)"},
                        {"update(0x402, -, -, -)", "redraw(0x3fff, -, -, -)"}}));
    EXPECT_EQ(Text(), "root(b,c(d,e),f,g)");
    Object* const a = Object_Of("a");
    ASSERT_NE(a, nullptr) << "the object lives on";
    EXPECT_EQ(a->Parent_Get_Pt(), nullptr);
    EXPECT_EQ(a->Child_Get_Nb(), 0);
    EXPECT_STREQ(a->Name_Get(), "Na");
}

TEST_F(Tool_DB_Edit_Test, the_root_cannot_be_deleted_whatever_it_hangs_on) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    EXPECT_EQ(Delete_On("root"), 0);
    Quorel_2D above;
    above.Child_Add(root);
    calls.Take();
    EXPECT_EQ(Delete_On("root"), 0);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(root->Parent_Get_Pt(), &above);
}

TEST_F(Tool_DB_Edit_Test, delete_acts_with_its_key_on_a_body_only) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    Point_At_Zone("c", Edit_Zone::Body);
    for (const int key : {0x2E, KEY_BACKSPACE, KEY_INSERT, 0x182E, 0}) {
        EXPECT_EQ(Key(key), 0);
    }
    for (const Edit_Zone zone : {Edit_Zone::Parent_Handle, Edit_Zone::Children_Handle, Edit_Zone::Toggle}) {
        Point_At_Zone("c", zone);
        EXPECT_EQ(Key(KEY_DELETE), 0);
    }
    Point_At_Tree(320, 300);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(Delete_On("c"), 1);
}

TEST_F(Tool_DB_Edit_Test, an_object_that_its_parent_does_not_know_is_left_alone) {
    Make_Study();
    Draw();
    Object* const c = Object_Of("c");
    Object_Of("a")->Child_Remove(c);
    c->Parent_Set_Pt(Object_Of("a"));
    Tree_Calls calls;
    EXPECT_EQ(Delete_On("c"), 0);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(c->Parent_Get_Pt(), Object_Of("a"));
}

// -------------------------------------------------------------------------------------------------------------
// dimensions

template <class Dimension>
class Every_Dimension : public Edit_Scene<Dimension> {
  protected:
    Every_Dimension() : Edit_Scene<Dimension>(WIDTH, HEIGHT) { DB_Edit_Ask_Name = Ask; }
};
using Dimensions = testing::Types<Scene_1D, Scene_2D, Scene_3D>;
TYPED_TEST_SUITE(Every_Dimension, Dimensions);

TYPED_TEST(Every_Dimension, tells_the_host_by_its_own_flags) {
    this->Make_Study();
    ASSERT_EQ(this->Draw(), 1);
    Tree_Calls calls;
    calls.Name_All(this->objects);
    const std::string update = "0x40" + std::string(TypeParam::DIMENSION == 1   ? "1"
                                                    : TypeParam::DIMENSION == 2 ? "2"
                                                                                : "4");
    const std::string redraw = TypeParam::DIMENSION == 3 ? "0x3fff0000" : "0x3fff";
    this->Press_On("d", Edit_Zone::Parent_Handle);
    EXPECT_EQ(this->Release_On("a", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(calls.Take(), Together({{"remove(c, 0)", "insert(a, 3, d)"}, Told("a", update, redraw)}));
    this->Build();
    calls.Take();
    EXPECT_EQ(this->Delete_On("g"), 1);
    EXPECT_EQ(calls.Take(), Together({{"on(root, 0x50, 8, 268435456)", "remove(root, 1)"},
                                      {"update(" + update + ", -, -, -)", "redraw(" + redraw + ", -, -, -)"}}));
    this->Build();
    calls.Take();
    typed = "other";
    answer = 1;
    this->Press_On("b", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(calls.Take(), Together({{"name(b, other)"}, Told("b", update, redraw)}));
    EXPECT_EQ(this->Text(), "root(a(b,c(e),f,d))");
}

TEST_F(Tool_DB_Edit_Test, another_dimension_changes_and_shows_nothing) {
    Make_Study();
    Draw();
    mode = DB_MODE_EDIT;
    Tree_Calls calls;
    Take_Counters();
    Press_On("b", Edit_Zone::Parent_Handle);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    Press_On("a", Edit_Zone::Toggle);
    Press_On("b", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(Delete_On("c"), 0);
    EXPECT_EQ(Motion(HOVER), 0);
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(asked, "never");
}

TEST_F(Tool_DB_Edit_Test, records_without_an_object_or_without_an_array_are_harmless) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    list_pt[Find("c")].object = nullptr;
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2);
    Press_On("b", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Delete_On("c"), 0);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(calls.Take(), Calls{});
    DB_List* const kept = std::exchange(list_pt, nullptr);
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(Locate(), 0);
    EXPECT_EQ(Click(LEFT_PRESS), 1);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    list_pt = kept;
}

// -----------------------------------------------------------------------------------------------------------------
// memory

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

// ------------------------------------------------------------------------------------------------------------ random
// edits

class Random_Edits : public Tool_DB_Edit_Test {
  protected:
    static constexpr int NODE_NB = 40;

    Random_Edits() : plain(NODE_NB) {
        box.width = 40;
        box.height = 40;
        messages.Listen(false);
        for (int i = 0; i < NODE_NB; ++i) {
            const int below = i == 0 ? -1 : static_cast<int>(random() % static_cast<unsigned>(i));
            Class(i == 0 ? nullptr : objects[Plain_Tree::At(below)].get(), std::to_string(i));
            plain.name[Plain_Tree::At(i)] = "N" + std::to_string(i);
            if (i > 0) {
                plain.Append(i, below);
            }
        }
        Build();
    }
    /** A node that has children, now and then any. */
    int Pick_Parent() {
        std::vector<int> parents(1, Pick());
        for (int i = 0; i < NODE_NB; ++i) {
            if (!plain.children[Plain_Tree::At(i)].empty()) {
                parents.push_back(i);
            }
        }
        return parents[random() % parents.size()];
    }
    int Pick() { return static_cast<int>(random() % NODE_NB); }
    /** Scrolls a node's zone to the middle of the box and points there. */
    bool Point(int node, Edit_Zone zone) {
        for (int i = 0; i < nb; ++i) {
            if (list_pt[i].object == objects[Plain_Tree::At(node)].get() && list_pt[i].row != DB_ROW_NONE &&
                Edit_Zone_Exists(i, list_pt[i], zone)) {
                DB_Tree_Point at = Edit_Zone_Point(list_pt[i], zone);
                at.x += zone == Edit_Zone::Body ? 100 : 0;
                horizontal.value = static_cast<float>(std::max(0, at.x - 10));
                vertical.value = static_cast<float>(std::max(0, at.y - 20));
                Point_At_Tree(at.x, at.y);
                EXPECT_EQ(Locate(), Edit_Code(i, zone));
                return true;
            }
        }
        return false;
    }
    void Drop_One(int node, int below) {
        if (Point(node, Edit_Zone::Parent_Handle)) {
            Click(LEFT_PRESS);
            const bool lands = Point(below, Edit_Zone::Children_Handle);
            if (lands) {
                plain.Drop(node, below);
                drops++;
            }
            EXPECT_EQ(Click(RELEASE), lands ? 2 : 1);
        }
    }
    void Drop_All(int of, int below) {
        if (Point(of, Edit_Zone::Children_Handle)) {
            Click(LEFT_PRESS);
            if (Point(below, Edit_Zone::Children_Handle)) {
                for (const int child : std::vector<int>(plain.children[Plain_Tree::At(of)])) {
                    plain.Drop(child, below);
                }
                drops++;
            }
            Click(RELEASE);
        }
    }
    void Take_Out(int node) {
        if (Point(node, Edit_Zone::Body)) {
            const bool taken = node != 0;
            if (taken) {
                const Taken before = {node, plain.parent[Plain_Tree::At(node)], plain.Position(node),
                                      static_cast<int>(plain.children[Plain_Tree::At(node)].size())};
                plain.Take_Out(node);
                taken_out.push_back(before);
            }
            EXPECT_EQ(Key(KEY_DELETE), taken ? 1 : 0);
            EXPECT_EQ(objects[Plain_Tree::At(node)]->Parent_Get_Pt(), nullptr);
        }
    }
    /** The inverse of the last deletion, by the host's own operations; other edits may have come between. */
    void Undo() {
        if (taken_out.empty()) {
            return;
        }
        const Taken last = taken_out.back();
        taken_out.pop_back();
        const int below =
            last.parent < 0 || (last.parent != 0 && plain.parent[Plain_Tree::At(last.parent)] < 0) ? 0 : last.parent;
        const int room = static_cast<int>(plain.children[Plain_Tree::At(below)].size());
        const int position = std::min(last.position, room);
        const int child_nb = std::min(last.child_nb, room - position);
        Quorel_2D* const object = objects[Plain_Tree::At(last.node)].get();
        Quorel_2D* const parent = objects[Plain_Tree::At(below)].get();
        for (int i = 0; i < child_nb; ++i) {
            const int child = plain.children[Plain_Tree::At(below)][Plain_Tree::At(position)];
            plain.Take(child);
            plain.Append(child, last.node);
            object->Child_Add(parent->Child_Get_Pt(position));
        }
        plain.Put(last.node, below, position);
        parent->Child_Insert(position, object);
        undos++;
    }
    void Rename(int node) {
        if (Point(node, Edit_Zone::Body)) {
            typed = "name " + std::to_string(random() % 1000);
            plain.name[Plain_Tree::At(node)] = typed;
            EXPECT_EQ(Click(RIGHT_PRESS), 1);
        }
    }

    struct Taken {
        int node;
        int parent;
        int position;
        int child_nb;
    };
    std::mt19937 random{20260517};
    Plain_Tree plain;
    std::vector<Taken> taken_out;
    int drops = 0;
    int undos = 0;
};

TEST_F(Random_Edits, agree_with_a_plain_model_and_lose_nothing) {
    constexpr int EDIT_NB = 10000;
    for (int edit = 0; edit < EDIT_NB; ++edit) {
        switch (random() % 8) {
            case 0:
            case 1:
            case 2:
                Drop_One(Pick(), Pick_Parent());
                break;
            case 3:
                Drop_All(Pick_Parent(), Pick_Parent());
                break;
            case 4:
                Take_Out(Pick());
                break;
            case 5:
                Rename(Pick());
                break;
            default:
                Undo();
                break;
        }
        ASSERT_EQ(Text(), plain.Text(0)) << "edit " << edit;
        int reached = static_cast<int>(taken_out.size());
        for (int i = 0; i < NODE_NB; ++i) {
            ASSERT_EQ(objects[Plain_Tree::At(i)]->Name_Get(), plain.name[Plain_Tree::At(i)]);
            reached += plain.Is_Below(i, 0) ? 1 : 0;
        }
        ASSERT_EQ(reached, NODE_NB) << "edit " << edit;
        Build();
        ASSERT_EQ(nb + static_cast<int>(taken_out.size()), NODE_NB);
    }
    EXPECT_GT(drops, 1000);
    EXPECT_GT(undos, 300);
}

}  // namespace

// Dragging nodes of the class tree editor to another parent.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/database/edit_calls.h"

namespace {

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

TEST_F(Tool_DB_Edit_Test, what_the_host_takes_away_during_a_drop_is_left_alone) {
    for (const char* const taken : {"e", "a"}) {
        Make_Study();
        Draw();
        Tree_Calls calls;
        calls.on_update = [&](unsigned __int64) {
            Object* const object = Object_Of(taken);
            if (Object* const parent = object->Parent_Get_Pt()) {
                parent->Child_Remove(object);
            }
        };
        Press_On("c", Edit_Zone::Children_Handle);
        EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2);
        const Calls made = calls.Take();
        EXPECT_EQ(std::count(made.begin(), made.end(), "redraw(0x3fff, -, -, -)"), 1) << "only the first one was moved";
        EXPECT_EQ(Text_Of(Object_Of("c")), *taken == 'e' ? "c" : "c(e)");
        EXPECT_EQ(Text(), *taken == 'e' ? "root(a(b,c,f,d),g)" : "root(g)");
        Records_Free();
        objects.clear();
    }
}

TEST_F(Tool_DB_Edit_Test, classes_outside_the_hosts_tree_are_moved_and_renamed_too) {
    Make_Study();
    Draw();
    Variable_Undefine(Scene_2D::ROOT);
    Press_On("c", Edit_Zone::Children_Handle);
    EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Text(), "root(a(b,c,f,d,e),g)");
    typed_name.typed = "new";
    EXPECT_EQ(Press_On("b", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("b")->Name_Get(), "new");
}

TEST_F(Tool_DB_Edit_Test, a_motion_over_a_copy_of_the_panel_leaves_the_lines_of_a_drag) {
    Make_Study();
    Draw();
    Press_On("b", Edit_Zone::Parent_Handle);
    Point_At_Tree(300, 330);
    ASSERT_EQ(Motion(LEFT_DRAG), 1);
    const Window_Picture with_lines = Pixels();
    Boxs copy = box;
    copy.x += 40;
    copy.width -= 40;
    DB_Edit_Motion_DB(mode, &copy, 0, nb, list_pt, &horizontal, &vertical);
    EXPECT_EQ(Pixels(), with_lines);
}

TEST_F(Tool_DB_Edit_Test, a_motion_over_another_panel_leaves_the_nodes_of_a_drag) {
    Make_Study();
    Draw();
    int other_nb = 0;
    DB_List* other_pt = nullptr;
    view.List_Create_From_DB(&other_nb, &other_pt, 0, 0, nullptr);
    Edit_Rows_Assign(other_nb, other_pt);
    Press_On("b", Edit_Zone::Parent_Handle);
    ASSERT_EQ(Motion(LEFT_DRAG), 1);
    const Window_Picture with_lines = Pixels();
    Boxs other = box;
    Point_At_Zone("g", Edit_Zone::Body);
    for (const int code : {LEFT_DRAG, HOVER}) {
        EXPECT_EQ(DB_Edit_Motion_DB(mode, &other, code, other_nb, other_pt, &horizontal, &vertical), 0) << code;
        EXPECT_EQ(Pixels(), with_lines) << code;
    }
    Point_At_Zone("c", Edit_Zone::Children_Handle);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Text(), "root(a(c(d,e,b),f),g)");
    EXPECT_EQ(DB_Edit_Motion_DB(mode, &other, HOVER, other_nb, other_pt, &horizontal, &vertical), 1)
        << "without a drag its nodes are highlighted again";
    DB_Edit_Forget(other_pt);
    DB_List_Array_Free(&other_nb, &other_pt);
}

TEST_F(Tool_DB_Edit_Test, in_a_box_without_pixels_no_line_is_drawn) {
    Make_Study();
    Draw();
    Press_On("b", Edit_Zone::Parent_Handle);
    const short width = box.width;
    box.width = 0;
    EXPECT_EQ(DB_Edit_Drag(&box, nb, list_pt, &horizontal, &vertical), 0);
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    box.width = width;
    EXPECT_EQ(DB_Edit_Drag(&box, nb, list_pt, &horizontal, &vertical), 1);
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
    typed_name.typed = "new name";
    EXPECT_EQ(Press_On("b", Edit_Zone::Body, RIGHT_PRESS), 1);
    EXPECT_STREQ(Object_Of("b")->Name_Get(), "new name");
    EXPECT_EQ(std::string(list_pt[Find("b")].name), "new name");
}

}  // namespace

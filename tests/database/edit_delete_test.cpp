// Taking classes out of the tree in the class tree editor.
#include "tests/database/edit_calls.h"

namespace {

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

TEST_F(Tool_DB_Edit_Test, delete_counts_by_the_low_16_bits_of_the_key) {
    Make_Study();
    Draw();
    Point_At_Zone("c", Edit_Zone::Body);
    EXPECT_EQ(Key(KEY_DELETE | 0x51000000), 1);
    EXPECT_EQ(Text(), "root(a(b,d,e,f),g)");
}

TEST_F(Tool_DB_Edit_Test, delete_leaves_nodes_that_are_scrolled_out_of_sight) {
    Make_Study();
    box.y += 200;
    box.height -= 200;
    Draw();
    Tree_Calls calls;
    const int g = Find("g");
    const DB_Tree_Point at = Edit_Cell(list_pt[g]);
    Point_At_Tree(at.x + 15, at.y + 25);
    ASSERT_EQ(Locate(), Edit_Code(g, Edit_Zone::Body)) << "by its position alone the node is there";
    ASSERT_EQ(box.Select(MOUSE_ASK), 0);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    EXPECT_EQ(calls.Take(), Calls{});
    vertical.value = 150.0F;
    EXPECT_EQ(Delete_On("g"), 1) << "in sight";
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

}  // namespace

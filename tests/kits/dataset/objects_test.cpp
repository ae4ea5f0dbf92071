#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "tests/kits/common/message_sink.h"

namespace {

std::vector<const Quorel_2D*> Children(const Quorel_2D& object) {
    std::vector<const Quorel_2D*> children;
    for (int i = 0; i < object.Child_Get_Nb(); ++i) {
        children.push_back(object.Child_Get_Pt(i));
    }
    return children;
}

using List = std::vector<const Quorel_2D*>;

/** What an editor of the tree does when a node is dropped on another one. */
void Drop(Quorel_2D& node, Quorel_2D& target) {
    node.Parent_Get_Pt()->Child_Remove(&node);
    target.Child_Add(&node);
}

class Tree : public testing::Test {
  protected:
    void SetUp() override {
        root.Child_Add(&a);
        root.Child_Add(&b);
        root.Child_Add(&c);
        b.Child_Add(&d);
        d.Child_Add(&e);
    }

    Quorel_2D root, a, b, c, d, e;  // root(a, b(d(e)), c)
    Message_Sink sink;
};

}  // namespace

TEST_F(Tree, children_are_appended_and_know_their_parent) {
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    EXPECT_EQ(a.Parent_Get_Pt(), &root);
    EXPECT_EQ(e.Parent_Get_Pt(), &d);
    EXPECT_EQ(root.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(root.Child_Get_Id(&b), 1);
    EXPECT_EQ(root.Child_Get_Id(&d), -1);
    EXPECT_EQ(root.Child_Get_Id(nullptr), -1);
    EXPECT_EQ(root.Child_Get_Pt(-1), nullptr);
    EXPECT_EQ(root.Child_Get_Pt(3), nullptr);
}

TEST_F(Tree, inserting_goes_before_the_position_and_is_clamped) {
    Quorel_2D x, y, z;
    EXPECT_EQ(root.Child_Insert(1, &x), 1);
    EXPECT_EQ(root.Child_Insert(-5, &y), 1);
    EXPECT_EQ(root.Child_Insert(99, &z), 1);
    EXPECT_EQ(Children(root), (List{&y, &a, &x, &b, &c, &z}));
    EXPECT_EQ(x.Parent_Get_Pt(), &root);
}

TEST_F(Tree, removing_unlinks_and_the_object_lives_on) {
    EXPECT_EQ(root.Child_Remove(&b), 1);
    EXPECT_EQ(Children(root), (List{&a, &c}));
    EXPECT_EQ(b.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(Children(b), (List{&d}));
    EXPECT_EQ(root.Child_Remove(&b), 0);
    EXPECT_EQ(root.Child_Remove(2), 0);
    EXPECT_EQ(root.Child_Remove(-1), 0);
    EXPECT_EQ(root.Child_Remove(1), 1);
    EXPECT_EQ(Children(root), (List{&a}));
}

TEST_F(Tree, removing_keeps_a_parent_link_that_names_another_object) {
    d.Parent_Set_Pt(&c);
    b.Child_Remove(&d);
    EXPECT_EQ(d.Parent_Get_Pt(), &c);
}

TEST_F(Tree, an_object_added_elsewhere_leaves_its_first_parent) {
    EXPECT_EQ(c.Child_Add(&d), 1);
    EXPECT_EQ(Children(b), List{});
    EXPECT_EQ(Children(c), (List{&d}));
    EXPECT_EQ(d.Parent_Get_Pt(), &c);
    EXPECT_EQ(root.Child_Insert(3, &a), 1) << "within one parent it moves";
    EXPECT_EQ(Children(root), (List{&b, &c, &a}));
    EXPECT_EQ(root.Child_Insert(0, &a), 1);
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    EXPECT_EQ(root.Child_Insert(1, &a), 1);
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(Tree, a_drop_on_another_branch_moves_the_branch) {
    Drop(d, c);
    EXPECT_EQ(Children(c), (List{&d}));
    EXPECT_EQ(Children(d), (List{&e}));
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(Tree, a_drop_into_the_own_branch_puts_the_node_back_where_it_was) {
    b.Name_Set("Bone");
    for (Quorel_2D* target : {&d, &e, &b}) {
        sink.messages.clear();
        root.Child_Remove(&b);
        EXPECT_EQ(target->Child_Add(&b), 0);
        EXPECT_EQ(Children(root), (List{&a, &b, &c}));
        EXPECT_EQ(b.Parent_Get_Pt(), &root);
        EXPECT_EQ(Children(b), (List{&d}));
        EXPECT_EQ(Children(e), List{});
        ASSERT_EQ(sink.messages.size(), 1U);
        EXPECT_EQ(sink.messages[0].level, MESSAGE_WARNING);
        EXPECT_EQ(sink.messages[0].text.rfind("\xF1\x05WARNING:\x02 ", 0), 0U);
        EXPECT_NE(sink.messages[0].text.find("\"Bone\""), std::string::npos);
    }
}

TEST_F(Tree, put_back_at_the_first_and_the_last_position) {
    Quorel_2D under_a, under_c;
    a.Child_Add(&under_a);
    c.Child_Add(&under_c);
    Drop(a, under_a);
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    Drop(c, under_c);
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
}

TEST_F(Tree, a_refused_object_that_was_not_removed_stays) {
    EXPECT_EQ(e.Child_Add(&b), 0);
    EXPECT_EQ(e.Child_Insert(0, &root), 0);
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    EXPECT_EQ(root.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(sink.messages.size(), 2U);
    EXPECT_EQ(root.Child_Add(nullptr), 0);
    EXPECT_EQ(sink.messages.size(), 2U) << "nothing to add is not worth a warning";
}

TEST_F(Tree, a_refused_object_whose_former_parent_is_gone_becomes_a_root) {
    auto parent = std::make_unique<Quorel_2D>();
    Quorel_2D node, below;
    parent->Child_Add(&node);
    node.Child_Add(&below);
    parent->Child_Remove(&node);
    parent.reset();
    EXPECT_EQ(below.Child_Add(&node), 0);
    EXPECT_EQ(node.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(Children(below), List{});
}

TEST_F(Tree, a_refused_object_is_not_put_back_below_itself) {
    root.Child_Remove(&b);
    d.Child_Remove(&e);
    e.Child_Add(&root);  // the former parent of b
    e.Parent_Get_Pt();
    d.Child_Add(&e);  // b(d(e(root))): b has no place under root now
    EXPECT_EQ(d.Child_Add(&b), 0);
    EXPECT_EQ(b.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(Children(root), (List{&a, &c}));
}

TEST_F(Tree, deleting_a_class_lifts_its_children_into_its_place) {
    Quorel_2D d2, d3;
    b.Child_Add(&d2);
    b.Child_Add(&d3);
    // As the tree editor deletes: the parent link first, children from the last to the first.
    b.Parent_Set_Pt(nullptr);
    const int position = root.Child_Get_Id(&b);
    for (int i = b.Child_Get_Nb() - 1; i >= 0; --i) {
        Quorel_2D* child = b.Child_Get_Pt(i);
        b.Child_Remove(i);
        EXPECT_EQ(root.Child_Insert(position + 1, child), 1);
    }
    root.Child_Remove(position);
    EXPECT_EQ(Children(root), (List{&a, &d, &d2, &d3, &c}));
    EXPECT_EQ(b.Child_Get_Nb(), 0);
    EXPECT_EQ(d3.Parent_Get_Pt(), &root);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(Tree, a_parent_link_that_was_cleared_hides_no_ring) {
    b.Parent_Set_Pt(nullptr);  // still a child of root
    EXPECT_EQ(e.Child_Add(&root), 0);
    EXPECT_EQ(Children(e), List{});
}

TEST_F(Tree, a_destroyed_child_leaves_and_its_children_become_roots) {
    Quorel_2D grandchild;
    {
        Quorel_2D passing;
        root.Child_Insert(0, &passing);
        passing.Child_Add(&grandchild);
        EXPECT_EQ(root.Child_Get_Nb(), 4);
    }
    EXPECT_EQ(Children(root), (List{&a, &b, &c}));
    EXPECT_EQ(grandchild.Parent_Get_Pt(), nullptr);
    EXPECT_EQ(root.Child_Add(&grandchild), 1);
}

TEST_F(Tree, random_moves_keep_it_a_tree) {
    constexpr int node_nb = 60;
    std::vector<std::unique_ptr<Quorel_2D>> nodes;
    for (int i = 0; i < node_nb; ++i) {
        nodes.push_back(std::make_unique<Quorel_2D>());
    }
    std::mt19937 generator(3);
    for (int round = 0; round < 20000; ++round) {
        Quorel_2D& node = *nodes[generator() % node_nb];
        Quorel_2D& target = *nodes[generator() % node_nb];
        switch (generator() % 4) {
            case 0:
                target.Child_Add(&node);
                break;
            case 1:
                target.Child_Insert(static_cast<int>(generator() % 5) - 1, &node);
                break;
            case 2:
                if (node.Parent_Get_Pt() != nullptr) {
                    Drop(node, target);
                }
                break;
            default:
                target.Child_Remove(static_cast<int>(generator() % 4));
                break;
        }
        if (round % 200 == 0) {
            nodes[generator() % node_nb] = std::make_unique<Quorel_2D>();
        }
    }
    int linked = 0;
    int with_parent = 0;
    for (const auto& node : nodes) {
        linked += node->Child_Get_Nb();
        with_parent += node->Parent_Get_Pt() != nullptr ? 1 : 0;
        for (int i = 0; i < node->Child_Get_Nb(); ++i) {
            ASSERT_EQ(node->Child_Get_Pt(i)->Parent_Get_Pt(), node.get());
        }
        int depth = 0;
        for (const Quorel_2D* above = node.get(); above != nullptr; above = above->Parent_Get_Pt()) {
            ASSERT_LE(++depth, node_nb) << "a ring";
        }
    }
    EXPECT_EQ(linked, with_parent);
    EXPECT_GT(sink.messages.size(), 100U) << "many of these moves are refused";
}

TEST(Object, flags_are_kept_per_group_and_mask) {
    Quorel_2D object;
    EXPECT_EQ(object.Flag_Get_Bit(0x70, 4, 512), 0);
    object.Flag_Set_Off(0x10, 4, 512);
    object.Flag_Set_On(0x50, 4, 512);
    object.Flag_Set_On(0x50, 8, 0x10000000);
    EXPECT_EQ(object.Flag_Get_Bit(0x10, 4, 512), 0x10);
    EXPECT_EQ(object.Flag_Get_Bit(0x30, 4, 512), 0x10);
    EXPECT_EQ(object.Flag_Get_Bit(0x20, 4, 512), 0);
    object.Flag_Set_Off(0x30, 4, 512);
    EXPECT_EQ(object.Flag_Get_Bit(0x70, 4, 512), FLAG_CHANGED);
    EXPECT_EQ(object.Flag_Get_Bit(0x70, 8, 0x10000000), 0x50);
    EXPECT_EQ(object.Flag_Get_Bit(0x70, 4, 8), 0);
    object.Flag_Set_On(0x20, 4, 512);
    EXPECT_EQ(object.Flag_Get_Bit(0x70, 4, 512), FLAG_CHANGED | FLAG_PARTLY_SELECTED);
}

TEST(Object, texts_are_copied_and_may_be_null) {
    Quorel_1D object;
    EXPECT_EQ(object.Title_Get(), nullptr);
    EXPECT_EQ(object.Name_Get(), nullptr);
    char text[] = "Title";
    object.Title_Set(text);
    object.Name_Set("Name");
    text[0] = 'X';
    EXPECT_STREQ(object.Title_Get(), "Title");
    EXPECT_STREQ(object.Name_Get(), "Name");
    object.Title_Set(object.Title_Get());
    EXPECT_STREQ(object.Title_Get(), "Title");
    object.Name_Set(nullptr);
    EXPECT_EQ(object.Name_Get(), nullptr);
    object.Name_Set("");
    EXPECT_STREQ(object.Name_Get(), "");
}

TEST(Object, classes_have_their_codes_and_icons) {
    Quorel_1D one;
    Quorel_2D two;
    Quorel_3D three;
    const Quorel_Window window;
    EXPECT_EQ(one.Class_A_Get(), 0x1FFF);
    EXPECT_EQ(two.Class_A_Get(), 0x2FFF);
    EXPECT_EQ(three.Class_A_Get(), 0x3FFF);
    EXPECT_EQ(window.Class_A_Get(), CLASS_WINDOW);
    EXPECT_EQ(one.Icon_Get(), nullptr);
    EXPECT_EQ(two.Icon_2D_Get(), nullptr);
    EXPECT_EQ(three.Icon_Get(), nullptr);
    std::copy_n("icon anchor.tga", 16, two.icon);
    EXPECT_STREQ(two.Icon_2D_Get(), "icon anchor.tga");
    two.class_b = 12;
    EXPECT_EQ(two.Class_B_Get(), 12);
}

TEST(Object, is_destroyed_through_its_base) {
    std::unique_ptr<Quorel> object = std::make_unique<Quorel_2D>();
    object->Name_Set("frees its memory");
    object->Flag_Set_On(1, 2, 3);
    static_assert(!std::is_copy_constructible_v<Quorel_2D>);
}

TEST(Object, the_child_that_a_window_shows_has_a_position) {
    Quorel_2D volume, first, second, stranger;
    Quorel_Window window;
    volume.Child_Add(&first);
    volume.Child_Add(&second);
    EXPECT_EQ(volume.Child_Get_Cur(&window), -1);
    Window_Frame_Set(&window, &second);
    EXPECT_EQ(volume.Child_Get_Cur(&window), 1);
    Window_Frame_Set(&window, &stranger);
    EXPECT_EQ(volume.Child_Get_Cur(&window), -1);
    EXPECT_EQ(volume.Child_Get_Cur(nullptr), -1);
    EXPECT_EQ(volume.Child_Get_Cur(All_Windows()), -1);
    Window_Frame_Set(&window, nullptr);
}

TEST(Object, a_destroyed_volume_leaves_the_windows_that_show_it) {
    Quorel_Window first;
    Quorel_2D stays;
    auto second = std::make_unique<Quorel_Window>();
    Quorel_Window third;
    auto volume = std::make_unique<Quorel_2D>();
    first.volume = second->volume = volume.get();
    third.volume = &stays;
    second.reset();
    volume.reset();
    EXPECT_EQ(first.volume, nullptr);
    EXPECT_EQ(third.volume, &stays);
}

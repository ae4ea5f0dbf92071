#include "workbench/model/class_tree.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

using namespace workbench;

namespace {

Class_Tree Study() {
    Class_Tree tree("root", "Root");
    tree.Add("a", "A", "root");
    tree.Add("b", "B", "a");
    tree.Add("c", "C", "a");
    tree.Add("d", "D", "c");
    tree.Add("e", "E", "c");
    tree.Add("g", "G", "root");
    return tree;
}

std::string Text(const Class_Tree& tree, const std::string& id) {
    std::string text = id;
    for (const std::string& child : tree.Children(id)) {
        text += (text.size() == id.size() ? "(" : ",") + Text(tree, child);
    }
    return text.size() == id.size() ? text : text + ")";
}
std::string Text(const Class_Tree& tree) {
    return Text(tree, tree.Root());
}

/** A tree with the ids 0 to nb - 1 and random parents; those of `out` are left out. */
Class_Tree Random_Tree(std::mt19937& random, int nb, const std::set<int>& out = {}) {
    std::vector<int> order;
    for (int i = 1; i < nb; ++i) {
        order.insert(order.begin() + static_cast<int>(random() % (order.size() + 1)), i);
    }
    Class_Tree tree("0", "name 0");
    std::vector<std::string> in(1, "0");
    for (const int i : order) {
        if (!out.contains(i)) {
            tree.Add(std::to_string(i), "name " + std::to_string(random() % 4), in[random() % in.size()]);
            in.push_back(std::to_string(i));
        }
    }
    return tree;
}

TEST(Class_Tree_Test, keeps_places_and_names) {
    const Class_Tree tree = Study();
    EXPECT_EQ(Text(tree), "root(a(b,c(d,e)),g)");
    EXPECT_EQ(tree.Place("e"), (Class_Place{"c", 1}));
    EXPECT_EQ(tree.Place("root"), Class_Place{});
    EXPECT_EQ(tree.Name("d"), "D");
    EXPECT_EQ(tree.Name("x"), "");
    EXPECT_TRUE(tree.Is_In("e"));
    EXPECT_FALSE(tree.Is_In("x"));
}

TEST(Class_Tree_Test, refuses_what_is_no_class_of_its_own) {
    Class_Tree tree = Study();
    EXPECT_FALSE(tree.Add("", "X", "root"));
    EXPECT_FALSE(tree.Add("a", "X", "root"));
    EXPECT_FALSE(tree.Add("x", "X", "y"));
    EXPECT_EQ(tree, Study());
}

TEST(Class_Tree_Test, actions_that_do_not_fit_change_nothing_and_say_why) {
    Class_Tree tree = Study();
    EXPECT_EQ(tree.Apply(Class_Move{"x", {}, {"root", 0}}), "class \"x\" is not known");
    EXPECT_EQ(tree.Apply(Class_Move{"d", {"c", 1}, {"root", 0}}), "class \"d\" is in another place");
    EXPECT_EQ(tree.Apply(Class_Move{"d", {"c", 0}, {"x", 0}}), "class \"x\" is not known");
    EXPECT_EQ(tree.Apply(Class_Move{"d", {"c", 0}, {"root", 3}}), "class \"root\" has no place 3");
    EXPECT_EQ(tree.Apply(Class_Move{"d", {"c", 0}, {"c", 2}}), "class \"c\" has no place 2");
    EXPECT_EQ(tree.Apply(Class_Move{"d", {"c", 0}, {"root", -1}}), "class \"root\" has no place -1");
    EXPECT_EQ(tree.Apply(Class_Move{"a", {"root", 0}, {"e", 0}}), "class \"a\" cannot hang below itself");
    EXPECT_EQ(tree.Apply(Class_Move{"a", {"root", 0}, {"a", 0}}), "class \"a\" cannot hang below itself");
    EXPECT_EQ(tree.Apply(Class_Move{"root", {}, {"a", 0}}), "class \"root\" is the root and stays");
    EXPECT_EQ(tree.Apply(Class_Rename{"d", "X", "Y"}), "class \"d\" is called \"D\", not \"X\"");
    EXPECT_EQ(tree.Apply(Class_Rename{"x", "X", "Y"}), "class \"x\" is not known");
    EXPECT_EQ(tree, Study());
}

TEST(Class_Tree_Test, actions_move_rename_and_take_out) {
    Class_Tree tree = Study();
    EXPECT_EQ(tree.Apply(Class_Move{"c", {"a", 1}, {"root", 1}}), "");
    EXPECT_EQ(tree.Apply(Class_Move{"b", {"a", 0}, {}}), "");
    EXPECT_EQ(tree.Apply(Class_Move{"a", {"root", 0}, {"root", 2}}), "");
    EXPECT_EQ(tree.Apply(Class_Rename{"e", "E", "E2"}), "");
    EXPECT_EQ(Text(tree), "root(c(d,e),g,a)");
    EXPECT_FALSE(tree.Is_In("b"));
    EXPECT_EQ(tree.Name("b"), "B");
    EXPECT_EQ(tree.Name("e"), "E2");
}

TEST(Class_Tree_Difference_Test, of_equal_trees_is_empty) {
    Class_Tree tree = Study();
    EXPECT_TRUE(Class_Tree_Difference(tree, Study()).empty());
}

TEST(Class_Tree_Difference_Test, of_one_move_is_one_move) {
    Class_Tree now = Study();
    Class_Tree wanted = Study();
    const Class_Action move = Class_Move{"d", {"c", 0}, {"root", 2}};
    wanted.Apply(move);
    EXPECT_EQ(Class_Tree_Difference(now, wanted), std::vector<Class_Action>{move});
}

TEST(Class_Tree_Difference_Test, of_a_child_that_goes_to_the_end_of_many_is_one_move) {
    Class_Tree now("root", "");
    for (int i = 0; i < 3000; ++i) {
        now.Add(std::to_string(i), "", "root");
    }
    Class_Tree wanted = now;
    wanted.Apply(Class_Move{"0", {"root", 0}, {"root", 2999}});
    EXPECT_EQ(Class_Tree_Difference(now, wanted).size(), 1U);
    EXPECT_EQ(now, wanted);
}

TEST(Class_Tree_Difference_Test, of_a_deletion_moves_the_children_up_and_the_class_out) {
    Class_Tree now = Study();
    Class_Tree wanted("root", "Root");
    for (const auto& [id, parent] : {std::pair{"a", "root"}, {"b", "a"}, {"d", "a"}, {"e", "a"}, {"g", "root"}}) {
        wanted.Add(id, Study().Name(id), parent);
    }
    const std::vector<Class_Action> actions = Class_Tree_Difference(now, wanted);
    EXPECT_EQ(actions.size(), 3U);
    EXPECT_EQ(Text(now), "root(a(b,d,e),g)");
    EXPECT_EQ(now.Place("c"), Class_Place{});
}

TEST(Class_Tree_Difference_Test, random_trees_are_turned_into_each_other_and_back_without_a_cycle) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        const int nb = 2 + static_cast<int>(random() % 30);
        std::set<int> out;
        for (int i = 1; i < nb; ++i) {
            if (random() % 5 == 0) {
                out.insert(i);
            }
        }
        const Class_Tree start = Random_Tree(random, nb);
        const Class_Tree wanted = Random_Tree(random, nb, out);
        Class_Tree now = start;
        const std::vector<Class_Action> actions = Class_Tree_Difference(now, wanted);
        ASSERT_EQ(Text(now), Text(wanted));
        // Each action fits where it stands, both ways: Apply refuses what would make a cycle.
        Class_Tree replayed = start;
        for (const Class_Action& action : actions) {
            ASSERT_EQ(replayed.Apply(action), "");
        }
        ASSERT_EQ(replayed, now);
        for (auto action = actions.rbegin(); action != actions.rend(); ++action) {
            ASSERT_EQ(replayed.Apply(Class_Action_Inverse(*action)), "");
        }
        ASSERT_EQ(replayed, start);
    }
}

TEST(Class_Tree_Difference_Test, adds_classes_that_were_not_known) {
    Class_Tree now = Study();
    Class_Tree wanted = Study();
    wanted.Add("new", "New", "c");
    const std::vector<Class_Action> actions = Class_Tree_Difference(now, wanted);
    EXPECT_EQ(actions, (std::vector<Class_Action>{Class_Move{"new", {}, {"c", 2}}}));
    EXPECT_EQ(now.Name("new"), "New");
}

}  // namespace

#include "database/class_surgery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

/** A tree object that can refuse to take children, as one without memory does. */
struct Node {
    explicit Node(const char* text) : name(text) {}
    Node* Parent_Get_Pt() const { return parent; }
    void Parent_Set_Pt(Node* object) { parent = object; }
    int Child_Get_Nb() const { return static_cast<int>(children.size()); }
    Node* Child_Get_Pt(int i) const {
        return i >= 0 && i < Child_Get_Nb() ? children[static_cast<std::size_t>(i)] : nullptr;
    }
    int Child_Get_Id(const Node* object) const {
        const auto found = std::find(children.begin(), children.end(), object);
        return found != children.end() ? static_cast<int>(found - children.begin()) : -1;
    }
    void Child_Add(Node* object) { Child_Insert(Child_Get_Nb(), object); }
    void Child_Insert(int position, Node* object) {
        if (Child_Get_Nb() < room) {
            children.insert(children.begin() + position, object);
            object->parent = this;
        }
    }
    void Child_Remove(int position) {
        Node* const object = Child_Get_Pt(position);
        children.erase(children.begin() + position);
        if (object->parent == this) {
            object->parent = nullptr;
        }
    }
    void Child_Remove(Node* object) { Child_Remove(Child_Get_Id(object)); }
    std::string Text() const {
        std::string text = name;
        for (const Node* child : children) {
            text += (child == children.front() ? "(" : ",") + child->Text();
        }
        return children.empty() ? text : text + ")";
    }

    std::string name;
    int room = 100;
    Node* parent = nullptr;
    std::vector<Node*> children;
};

/** r(a(b, c, d), e) */
class Class_Surgery : public testing::Test {
  protected:
    Class_Surgery() {
        r.Child_Add(&a);
        r.Child_Add(&e);
        a.Child_Add(&b);
        a.Child_Add(&c);
        a.Child_Add(&d);
    }
    Node r{"r"}, a{"a"}, b{"b"}, c{"c"}, d{"d"}, e{"e"};
};

TEST_F(Class_Surgery, an_object_taken_out_leaves_its_children_in_its_place) {
    std::string before_removal;
    EXPECT_TRUE(Class_Take_Out(a, [&](const Node& parent) { before_removal = parent.Text(); }));
    EXPECT_EQ(before_removal, "r(a,b,c,d,e)");
    EXPECT_EQ(r.Text(), "r(b,c,d,e)");
    EXPECT_EQ(a.parent, nullptr);
    EXPECT_FALSE(Class_Take_Out(a, [](const Node&) { FAIL(); })) << "it has no parent any more";
    EXPECT_FALSE(Class_Take_Out(r, [](const Node&) { FAIL(); }));
}

TEST_F(Class_Surgery, without_room_everything_is_as_before) {
    for (int room = 2; room < 5; ++room) {
        r.room = room;
        EXPECT_FALSE(Class_Take_Out(a, [](const Node&) { FAIL(); })) << room;
        EXPECT_EQ(r.Text(), "r(a(b,c,d),e)") << room;
        EXPECT_EQ(a.parent, &r);
        EXPECT_EQ(b.parent, &a);
    }
    r.room = 5;
    EXPECT_TRUE(Class_Take_Out(a, [](const Node&) {}));
}

TEST_F(Class_Surgery, an_object_is_appended_once) {
    EXPECT_TRUE(Class_Append(c, e));
    EXPECT_EQ(r.Text(), "r(a(b,d),e(c))");
    EXPECT_FALSE(Class_Append(c, e)) << "the only child already";
    EXPECT_TRUE(Class_Append(b, e));
    EXPECT_TRUE(Class_Append(c, e)) << "to the end";
    EXPECT_EQ(r.Text(), "r(a(d),e(b,c))");
    Node loose("x");
    EXPECT_TRUE(Class_Append(loose, a));
    EXPECT_EQ(r.Text(), "r(a(d,x),e(b,c))");
}

TEST_F(Class_Surgery, below_is_told_by_address_alone_and_to_a_depth) {
    auto* const gone = new Node("gone");
    a.Child_Add(gone);
    EXPECT_TRUE(Class_Is_Below<Node>(&r, gone, 2));
    EXPECT_FALSE(Class_Is_Below<Node>(&r, gone, 1));
    a.Child_Remove(gone);
    delete gone;
    EXPECT_FALSE(Class_Is_Below<Node>(&r, gone, 10)) << "the address of an object that is no more";
    EXPECT_TRUE(Class_Is_Below<Node>(&r, &r, 0));
    EXPECT_FALSE(Class_Is_Below<Node>(nullptr, &r, 10));
    EXPECT_FALSE(Class_Is_Below<Node>(nullptr, nullptr, 10));
}

}  // namespace

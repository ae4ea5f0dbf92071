// The class tree editor driven by the pointer, with every change noted, taken back and done again.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/database/edit_scene.h"
#include "tests/database/plain_tree.h"
#include "tests/database/typed_name.h"
#include "workbench/database/class_history.h"

using namespace workbench;

namespace {

constexpr int NODE_NB = 30;
constexpr int EDIT_NB = 10000;
constexpr int WINDOW = 300;  // pixels, both ways

/** Opens one tree beside data, whatever its dimension. */
std::string Open_Tree(Class_History& history, Quorel_1D* root, const std::filesystem::path& data) {
    history.Begin(root, nullptr);
    return history.Open(nullptr, data);
}
std::string Open_Tree(Class_History& history, Quorel_2D* root, const std::filesystem::path& data) {
    history.Begin(nullptr, nullptr);
    return history.Open(root, data);
}
std::string Open_Tree(Class_History& history, Quorel_3D* root, const std::filesystem::path& data) {
    history.Begin(nullptr, root);
    return history.Open(nullptr, data);
}

template <class Dimension>
class Journalled_Edits : public Edit_Scene<Dimension> {
  public:
    using Scene = Edit_Scene<Dimension>;
    using Object = typename Dimension::Object;

  protected:
    Journalled_Edits() : Scene(WINDOW, WINDOW), plain(1, Plain_Tree(NODE_NB)) {
        typed_name = {};
        this->messages.Listen(false);
        folder = std::filesystem::temp_directory_path() / ("edits_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(folder);
        Make();
        for (int i = 0; i < NODE_NB; ++i) {
            plain[0].name[Plain_Tree::At(i)] = "N" + std::to_string(i);
            if (i > 0) {
                plain[0].Append(i, Parent_Of(i));
            }
        }
        EXPECT_EQ(Open_Tree(history, this->root, folder / "data"), "");
        this->Build();
    }
    ~Journalled_Edits() override {
        std::error_code code;
        std::filesystem::remove_all(folder, code);
    }
    static int Parent_Of(int node) { return node * 7 % 11 % node; }
    void Make() {
        for (int i = 0; i < NODE_NB; ++i) {
            this->Class(i == 0 ? nullptr : this->objects[Plain_Tree::At(Parent_Of(i))].get(), std::to_string(i));
        }
    }
    Plain_Tree& Now() { return plain[at]; }
    int Pick() { return static_cast<int>(random() % NODE_NB); }
    /** A node with children, now and then any. */
    int Pick_Parent() {
        std::vector<int> parents(1, Pick());
        for (int i = 0; i < NODE_NB; ++i) {
            if (!Now().children[Plain_Tree::At(i)].empty()) {
                parents.push_back(i);
            }
        }
        return parents[random() % parents.size()];
    }
    /** Scrolls a node's zone into the box and points there. @return false: the node has no such zone now */
    bool Point(int node, Edit_Zone zone) {
        for (int i = 0; i < this->nb; ++i) {
            if (this->list_pt[i].object == this->objects[Plain_Tree::At(node)].get() &&
                this->list_pt[i].row != DB_ROW_NONE && Has_Edit_Zone(i, this->list_pt[i], zone)) {
                DB_Tree_Point place = Edit_Zone_Point(this->list_pt[i], zone);
                place.x += zone == Edit_Zone::Body ? 100 : 0;
                this->horizontal.value = static_cast<float>(std::max(0, place.x - 50));
                this->vertical.value = static_cast<float>(std::max(0, place.y - 50));
                this->Point_At_Tree(place.x, place.y);
                return true;
            }
        }
        return false;
    }
    /** The editor's change is made; what the model makes of it is `changed`. */
    void Done(const Plain_Tree& changed) {
        const bool is_changed = Text_Of(changed) != Text_Of(Now());
        ASSERT_EQ(history.Note(), is_changed);
        if (is_changed) {
            plain.resize(at + 1, Plain_Tree(0));
            plain.push_back(changed);
            ++at;
        }
    }
    void Drop(int node, Edit_Zone handle, int below) {
        Plain_Tree changed = Now();
        if (!Point(node, handle)) {
            return;
        }
        this->Click(LEFT_PRESS);
        if (Point(below, Edit_Zone::Children_Handle)) {
            const std::vector<int> moved =
                handle == Edit_Zone::Parent_Handle ? std::vector<int>(1, node) : Now().children[Plain_Tree::At(node)];
            for (const int child : moved) {
                changed.Drop(child, below);
            }
        }
        this->Click(RELEASE);
        Done(changed);
    }
    void Take_Out(int node) {
        if (node != 0 && Point(node, Edit_Zone::Body)) {
            Plain_Tree changed = Now();
            changed.Take_Out(node);
            EXPECT_EQ(this->Key(KEY_DELETE), 1);
            Done(changed);
        }
    }
    void Rename(int node) {
        if (Point(node, Edit_Zone::Body)) {
            Plain_Tree changed = Now();
            typed_name.typed = "name " + std::to_string(random() % 1000);
            changed.name[Plain_Tree::At(node)] = typed_name.typed;
            this->Click(RIGHT_PRESS);
            Done(changed);
        }
    }
    void Back_And_Forth() {
        for (unsigned int times = random() % 4; times > 0; --times) {
            ASSERT_EQ(history.Undo().has_value(), at > 0);
            at -= at > 0 ? 1 : 0;
        }
        for (unsigned int times = random() % 3; times > 0; --times) {
            ASSERT_EQ(history.Redo().has_value(), at + 1 < plain.size());
            at += at + 1 < plain.size() ? 1 : 0;
        }
    }
    /** The tree of the model with the names of what is in it. */
    static std::string Text_Of(const Plain_Tree& tree) {
        std::string text = tree.Text(0);
        for (int i = 0; i < static_cast<int>(tree.name.size()); ++i) {
            text += tree.Is_Below(i, 0) ? " " + tree.name[Plain_Tree::At(i)] : " -";
        }
        return text;
    }
    std::string Text_Of_Objects(const std::vector<std::unique_ptr<Object>>& of) const {
        std::string text = Scene::Text_Of(of[0].get());
        for (const auto& object : of) {
            const Object* above = object.get();
            int depth = 0;
            for (; above != nullptr && above != of[0].get(); above = above->Parent_Get_Pt()) {
                EXPECT_LT(++depth, NODE_NB) << "a cycle";
                if (depth >= NODE_NB) {
                    return "a cycle";
                }
            }
            text += above != nullptr ? std::string(" ") + object->Name_Get() : " -";
        }
        return text;
    }

    std::filesystem::path folder;
    std::mt19937 random{20261121};
    Class_History history;
    std::vector<Plain_Tree> plain;  ///< the model after each step
    std::size_t at = 0;             ///< which of them is now
};

using Dimensions = testing::Types<Scene_1D, Scene_2D, Scene_3D>;
TYPED_TEST_SUITE(Journalled_Edits, Dimensions);

TYPED_TEST(Journalled_Edits, agree_with_a_plain_model_through_undo_redo_and_a_new_start) {
    std::size_t steps_most = 0;
    int undone = 0;
    for (int edit = 0; edit < EDIT_NB; ++edit) {
        switch (this->random() % 10) {
            case 0:
            case 1:
            case 2:
                this->Drop(this->Pick(), Edit_Zone::Parent_Handle, this->Pick_Parent());
                break;
            case 3:
            case 4:
                this->Drop(this->Pick_Parent(), Edit_Zone::Children_Handle, this->Pick_Parent());
                break;
            case 5:
                this->Take_Out(this->Pick());
                break;
            case 6:
            case 7:
                this->Rename(this->Pick());
                break;
            default:
                // Takes back as many steps as come between, so that deleted classes return.
                this->Back_And_Forth();
                ++undone;
                break;
        }
        if (edit % 97 == 0) {
            while (this->at > 0) {
                ASSERT_TRUE(this->history.Undo());
                --this->at;
            }
        }
        steps_most = std::max(steps_most, this->at);
        ASSERT_EQ(this->Text_Of_Objects(this->objects), this->Text_Of(this->Now())) << "edit " << edit;
        this->Build();
    }
    EXPECT_GT(steps_most, 20U);
    EXPECT_GT(undone, 1000);
    for (int i = 0; i < 60 && this->at < 20; ++i) {
        this->Drop(this->Pick(), Edit_Zone::Parent_Handle, this->Pick_Parent());
        this->Rename(this->Pick());
        this->Build();
    }
    ASSERT_EQ(this->history.Save(), "");

    // The next start, with objects as they were built.
    const std::string before = this->Text_Of_Objects(this->objects);
    std::vector<std::unique_ptr<typename TypeParam::Object>> former;
    former.swap(this->objects);
    this->Make();
    this->Build();
    Class_History next;
    EXPECT_EQ(Open_Tree(next, this->root, this->folder / "data"), "");
    EXPECT_EQ(this->Text_Of_Objects(this->objects), before);
    while (next.Undo()) {
    }
    EXPECT_EQ(this->Text_Of_Objects(this->objects), this->Text_Of(this->plain[0]));
    this->Records_Free();
    former.clear();
}

}  // namespace

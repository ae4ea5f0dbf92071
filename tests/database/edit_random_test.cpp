// Many random edits against a plain model of the tree.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/database/edit_calls.h"
#include "tests/database/plain_tree.h"

namespace {

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
                Has_Edit_Zone(i, list_pt[i], zone)) {
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
            typed_name.typed = "name " + std::to_string(random() % 1000);
            plain.name[Plain_Tree::At(node)] = typed_name.typed;
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
    constexpr int edit_nb = 10000;
    for (int edit = 0; edit < edit_nb; ++edit) {
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

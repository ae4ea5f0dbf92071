#include "workbench/database/class_tree_objects.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/class_journal.h"

using namespace workbench;

namespace {

constexpr Class_Kind KIND = Class_Kind::Classes_3D;
constexpr int OBJECT_NB = 30;

/** Objects with numbers for ids, hanging on each other at random. */
class Class_Tree_Objects_Test : public testing::Test {
  protected:
    Class_Tree_Objects_Test() {
        for (int i = 0; i < OBJECT_NB; ++i) {
            objects.push_back(std::make_unique<Quorel_3D>());
            objects.back()->Name_Set(("name " + std::to_string(i)).c_str());
            ids[objects.back().get()] = std::to_string(i);
            if (i > 0) {
                objects[random() % static_cast<std::size_t>(i)]->Child_Add(objects.back().get());
            }
        }
    }
    Class_Tree Read() const {
        return Class_Tree_Read<Quorel_3D>(
            *objects[0],
            [this](const Quorel_3D& object) {
                const auto found = ids.find(&object);
                return found != ids.end() ? found->second : std::string();
            },
            [](const Quorel_3D& object) { return std::string(object.Name_Get()); });
    }
    static void Name_Set(Quorel_3D& object, const std::string& name) { object.Name_Set(name.c_str()); }
    Quorel_3D* Object_Of(const std::string& id) const {
        const std::size_t at = static_cast<std::size_t>(std::stoi(id));
        return at < objects.size() ? objects[at].get() : nullptr;
    }
    void Do(const Class_Step& step, bool redo) const {
        for (const Class_Action& action : Class_Step_Actions(step, redo)) {
            EXPECT_TRUE(Class_Action_Do<Quorel_3D>(
                action, [this](const std::string& id) { return Object_Of(id); }, Name_Set));
        }
    }
    /** In the tree: only there can the editor drop something. */
    bool Is_In(const Quorel_3D* object) const {
        while (object != nullptr && object != objects[0].get()) {
            object = object->Parent_Get_Pt();
        }
        return object != nullptr;
    }
    /** What the editor's delete key does. */
    static void Take_Out(Quorel_3D* object) {
        Quorel_3D* const parent = object->Parent_Get_Pt();
        const int position = parent->Child_Get_Id(object);
        for (int i = object->Child_Get_Nb() - 1; i >= 0; --i) {
            parent->Child_Insert(position + 1, object->Child_Get_Pt(i));
        }
        parent->Child_Remove(position);
    }

    std::mt19937 random{3};
    std::vector<std::unique_ptr<Quorel_3D>> objects;
    std::map<const Quorel_3D*, std::string> ids;
};

TEST_F(Class_Tree_Objects_Test, a_tree_is_read_as_it_hangs) {
    const Class_Tree tree = Read();
    EXPECT_EQ(tree.Size(), OBJECT_NB);
    for (const auto& [object, id] : ids) {
        EXPECT_EQ(tree.Name(id), object->Name_Get());
        if (const Quorel_3D* const parent = object->Parent_Get_Pt(); parent != nullptr) {
            EXPECT_EQ(tree.Place(id), (Class_Place{ids[parent], parent->Child_Get_Id(object)}));
        }
    }
}

TEST_F(Class_Tree_Objects_Test, objects_without_an_id_are_left_out) {
    Quorel_3D stranger;
    Quorel_3D below;
    stranger.Child_Add(&below);
    const Class_Tree before = Read();
    objects[0]->Child_Add(&stranger);
    EXPECT_EQ(Read(), before);
}

TEST_F(Class_Tree_Objects_Test, an_action_with_an_unknown_object_does_nothing) {
    const Class_Tree before = Read();
    const auto none = [](const std::string&) -> Quorel_3D* { return nullptr; };
    EXPECT_FALSE(Class_Action_Do<Quorel_3D>(Class_Move{"1", before.Place("1"), {"0", 0}}, none, Name_Set));
    EXPECT_FALSE(Class_Action_Do<Quorel_3D>(Class_Rename{"1", "a", "b"}, none, Name_Set));
    const auto only_1 = [this](const std::string& id) { return id == "1" ? Object_Of(id) : nullptr; };
    EXPECT_FALSE(Class_Action_Do<Quorel_3D>(Class_Move{"1", before.Place("1"), {"0", 0}}, only_1, Name_Set));
    EXPECT_EQ(Read(), before);
}

TEST_F(Class_Tree_Objects_Test, edits_of_objects_are_taken_back_and_done_again_through_the_journal) {
    Class_Journal journal;
    journal.Adopt(KIND, Read());
    std::vector<Class_Tree> trees(1, Read());
    for (int edit = 0; edit < 400; ++edit) {
        Quorel_3D* const object = objects[1 + random() % (OBJECT_NB - 1)].get();
        Quorel_3D* const other = objects[random() % OBJECT_NB].get();
        switch (random() % 5) {
            case 0:
                if (Is_In(object)) {
                    object->Name_Set(std::to_string(random()).c_str());
                }
                break;
            case 1:
                if (object->Parent_Get_Pt() != nullptr && random() % 4 == 0) {
                    Take_Out(object);
                }
                break;
            default:
                if (Is_In(other)) {
                    other->Child_Add(object);  // the kit refuses what would be a cycle
                }
                break;
        }
        if (journal.Note(KIND, Read())) {
            trees.push_back(Read());
        }
        // A few steps back and forth in between.
        for (unsigned int back = random() % 3; back > 0 && edit % 7 == 0; --back) {
            if (const Class_Step* const step = journal.Undo()) {
                Do(*step, false);
                trees.pop_back();
            }
            ASSERT_EQ(Read(), trees.back());
        }
    }
    ASSERT_GT(trees.size(), 100U);
    const std::size_t last = trees.size() - 1;
    for (std::size_t at = last; at > 0; --at) {
        Do(*journal.Undo(), false);
        ASSERT_EQ(Read(), trees[at - 1]) << at;
    }
    EXPECT_EQ(journal.Undo(), nullptr);
    for (std::size_t at = 1; at <= last; ++at) {
        Do(*journal.Redo(), true);
        ASSERT_EQ(Read(), trees[at]) << at;
    }
}

}  // namespace

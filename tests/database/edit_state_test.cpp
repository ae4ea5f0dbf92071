// The editor's state over several lists of records, and what the host's objects look like while one is taken out.
#include <string>
#include <vector>

#include "tests/database/edit_scene.h"
#include "tests/support/import_hook.h"

namespace {

constexpr int STATE_WIDTH = 900;
constexpr int STATE_HEIGHT = 420;

/** A second list of records of the same classes, as another panel has it. */
class Edit_State_Test : public Edit_Scene<Scene_2D> {
  protected:
    Edit_State_Test() : Edit_Scene(STATE_WIDTH, STATE_HEIGHT) {
        Make_Study();
        view.List_Create_From_DB(&other_nb, &other, 0, 0, nullptr);
        Edit_Rows_Assign(other_nb, other);
    }
    ~Edit_State_Test() override {
        DB_List_Forget(other);
        DB_Edit_Forget(other);
        DB_List_Array_Free(&other_nb, &other);
    }
    int Draw_Other() { return DB_Edit_Draw(mode, &box, other_nb, other, &horizontal, &vertical); }
    int Motion_Other(int up_down) {
        return DB_Edit_Motion_DB(mode, &box, up_down, other_nb, other, &horizontal, &vertical);
    }
    int Click_Other(int up_down) {
        return DB_Edit_Click_DB(mode, &box, up_down, other_nb, other, &horizontal, &vertical);
    }

    int other_nb = 0;
    DB_List* other = nullptr;
};

TEST_F(Edit_State_Test, the_same_zone_of_other_records_is_highlighted_too) {
    Draw();
    Point_At_Zone("c", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Motion(HOVER), 1);
    const Window_Picture highlighted = Pixels();
    Draw_Other();
    ASSERT_NE(Pixels(), highlighted) << "nothing of the other list is under the pointer yet";
    EXPECT_EQ(Motion_Other(HOVER), 1);
    EXPECT_EQ(Pixels(), highlighted);
    EXPECT_EQ(Motion_Other(HOVER), 0);
}

TEST_F(Edit_State_Test, drag_lines_of_other_records_are_not_erased_here) {
    Draw_Other();
    Point_At_Zone("c", Edit_Zone::Parent_Handle);
    Click_Other(LEFT_PRESS);
    Point_At_Tree(500, 250);
    EXPECT_EQ(Motion_Other(LEFT_DRAG), 1);
    const Window_Picture expected = Pixels();
    DB_List_Forget(other);
    DB_Edit_Forget(other);

    // the same, after a drag on the first list whose lines are still shown
    Draw();
    Point_At_Zone("f", Edit_Zone::Parent_Handle);
    Click(LEFT_PRESS);
    Point_At_Tree(100, 300);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    Draw_Other();
    Point_At_Zone("c", Edit_Zone::Parent_Handle);
    Click_Other(LEFT_PRESS);
    Point_At_Tree(500, 250);
    EXPECT_EQ(Motion_Other(LEFT_DRAG), 1);
    EXPECT_EQ(Pixels(), expected);
}

// ---------------- taking out

const Quorel_2D* watched = nullptr;
std::vector<const Quorel_2D*> parents_seen;  ///< the watched object's parent at each of the host's tree operations
int (*real_insert)(Quorel*, int, Quorel*) = nullptr;
int (*real_remove)(Quorel*, int) = nullptr;

int Insert(Quorel* parent, int position, Quorel* object) {
    parents_seen.push_back(watched->Parent_Get_Pt());
    return real_insert(parent, position, object);
}
int Remove(Quorel* parent, int position) {
    parents_seen.push_back(watched->Parent_Get_Pt());
    return real_remove(parent, position);
}

TEST_F(Edit_State_Test, an_object_has_lost_its_parent_before_anything_else_is_moved) {
    Draw();
    watched = Object_Of("a");
    parents_seen.clear();
    {
        const Import_Hook insert("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_InsertEiPS_",
                                 reinterpret_cast<void*>(&Insert));
        const Import_Hook remove("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_RemoveEi", reinterpret_cast<void*>(&Remove));
        ASSERT_TRUE(insert.Is_Set() && remove.Is_Set());
        real_insert = reinterpret_cast<decltype(real_insert)>(insert.Original());
        real_remove = reinterpret_cast<decltype(real_remove)>(remove.Original());
        EXPECT_EQ(Delete_On("a"), 1);
    }
    EXPECT_EQ(parents_seen, (std::vector<const Quorel_2D*>(7, nullptr))) << "three children out and in, then itself";
    EXPECT_EQ(Text(), "root(b,c(d,e),f,g)");
}

}  // namespace

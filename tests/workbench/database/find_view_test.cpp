#include "workbench/database/find_view.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "tests/database/file_scene.h"

using namespace workbench;

namespace {

constexpr int SELECTED = FLAG_SELECTED;
constexpr int GROUP = FLAG_GROUP_SELECTION;
constexpr int MASK = FLAG_MASK_SELECTION;

void Select(Quorel& object, bool on) {
    if (on) {
        object.Flag_Set_On(SELECTED, GROUP, MASK);
    } else {
        object.Flag_Set_Off(SELECTED, GROUP, MASK);
    }
}
bool Is_Selected(const Quorel& object) {
    return object.Flag_Get_Bit(SELECTED, GROUP, MASK) != 0;
}

/** "title|name|label=value ..." of every row. */
std::vector<std::string> Texts(const Find_View& view) {
    std::vector<std::string> texts;
    for (int i = 0; i < view.Nb(); ++i) {
        const DB_List& row = view.List_Pt()[i];
        std::string text =
            std::string(row.title != nullptr ? row.title : "-") + "|" + (row.name != nullptr ? row.name : "-");
        for (int column = 0; column < row.column_nb; ++column) {
            text += std::string("|") + row.column_label[column] + "=" + row.column_value[column];
        }
        texts.push_back(text);
    }
    return texts;
}

using Rows = std::vector<std::string>;

class Find_View_Test : public testing::Test {
  protected:
    Find_View_Test() : files(2) {
        scene.Add_File("C:\\head\\one.dcm", 2);
        scene.Add_File("C:\\head\\two.dcm", {&scene.Add_Frame(1, 1, 512, 512, 0x4D52)});
        scene.Add_File("C:\\knee\\three.dcm", 1);
        for (Quorel_2D_Frame& frame : scene.frames) {
            scene.Add_Object(&frame);
        }
        view.Source_Set(&files);
    }
    Rows Find(const std::string& typed) {
        view.Words_Set(typed);
        view.Update(UPDATE_STRUCTURE);
        return Texts(view);
    }
    std::vector<bool> Selection() const {
        std::vector<bool> selection;
        for (const Quorel_2D& object : scene.objects) {
            selection.push_back(Is_Selected(object));
        }
        return selection;
    }

    File_Scene scene;
    Tool_DB_File files;
    Find_View view;
};

TEST_F(Find_View_Test, lists_frames_of_matching_files_with_place_and_modality) {
    EXPECT_EQ(Find("ONE"), (Rows{"Frame|1 (64x32)|In=C:\\head / one.dcm|Modality=CT",
                                 "Frame|2 (64x32)|In=C:\\head / one.dcm|Modality=CT"}));
    EXPECT_EQ(Find("mr"), (Rows{"Frame|1 (512x512)|In=C:\\head / two.dcm|Modality=MR"}));
    EXPECT_EQ(Find("512 head").size(), 1U);
    EXPECT_EQ(Find("512 knee"), Rows{});
    EXPECT_EQ(Find("file").size(), 4U);
    EXPECT_EQ(Find(""), Rows{});
}

TEST_F(Find_View_Test, rows_are_selectable_leaves_of_one_level) {
    Find("head");
    ASSERT_EQ(view.Nb(), 3);
    for (int i = 0; i < 3; ++i) {
        const DB_List& row = view.List_Pt()[i];
        EXPECT_EQ(row.flag & ~DB_FLAG_LAST, DB_FLAG_LEAF);
        EXPECT_EQ(row.level | row.parent | row.child_nb | row.desc_nb, 0);
        EXPECT_STREQ(row.icon, "icon image.tga");
    }
    EXPECT_EQ(view.Source_Row(0), 2);
    EXPECT_EQ(view.Source_Row(2), 5);
    EXPECT_EQ(view.Source_Row(3), -1);
    EXPECT_EQ(view.Source_Row(-1), -1);
}

TEST_F(Find_View_Test, found_rows_show_the_selection_and_follow_it) {
    Select(scene.objects[1], true);
    Find("head");
    ASSERT_EQ(view.Nb(), 3);
    EXPECT_EQ(view.List_Pt()[0].state, 0);
    EXPECT_EQ(view.List_Pt()[1].state, DB_STATE_CHECKED);
    Select(scene.objects[1], false);
    Select(scene.objects[2], true);
    view.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_EQ(view.List_Pt()[0].state, 0);
    EXPECT_EQ(view.List_Pt()[1].state, 0);
    EXPECT_EQ(view.List_Pt()[2].state, DB_STATE_CHECKED);
}

TEST_F(Find_View_Test, checking_writes_listed_rows_and_leaves_the_others) {
    Select(scene.objects[0], true);
    Select(scene.objects[3], true);  // the knee: not listed
    Find("head");
    view.List_Pt()[0].state = DB_STATE_NONE;
    view.List_Pt()[2].state = DB_STATE_CHECKED;
    view.List_Select_To_DB(view.Nb(), view.List_Pt());
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, true, true}));
}

TEST_F(Find_View_Test, host_that_answers_at_once_keeps_every_mark) {
    Find("head");
    for (int i = 0; i < view.Nb(); ++i) {
        view.List_Pt()[i].state = DB_STATE_CHECKED;
    }
    Request_Listener listener;
    listener.context = &view;
    listener.update = [](void* context, unsigned __int64 flags, void*, void*) {
        static_cast<Find_View*>(context)->Update(flags);
    };
    Request_Listener_Set(listener);
    view.List_Select_To_DB(view.Nb(), view.List_Pt());
    Request_Listener_Set({});
    EXPECT_EQ(Selection(), (std::vector<bool>{true, true, true, false}));
}

TEST_F(Find_View_Test, classes_are_found_by_title_and_by_the_classes_above) {
    std::deque<Quorel_3D> classes(5);
    const char* const title[] = {"Body", "Head", "Brain", "Skull", "Liver"};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        classes[i].Title_Set(title[i]);
    }
    classes[0].Child_Add(&classes[1]);
    classes[1].Child_Add(&classes[2]);
    classes[1].Child_Add(&classes[3]);
    classes[0].Child_Add(&classes[4]);
    classes[3].class_a = 5;  // locked
    Variable_Define_Pointer("$DB_3D_ROOT_PT", &classes[0]);
    Tool_DB_Class structures(3);
    view.Source_Set(&structures);
    EXPECT_EQ(view.mode, 3);
    EXPECT_EQ(Find("brain"), (Rows{"Brain|-|In=Body / Head"}));
    EXPECT_EQ(Find("head"), (Rows{"Brain|-|In=Body / Head", "Skull|-|In=Body / Head"}));
    EXPECT_NE(view.List_Pt()[1].flag & DB_FLAG_LOCKED, 0);
    Select(classes[4], true);
    for (int i = 0; i < 2; ++i) {
        view.List_Pt()[i].state = DB_STATE_CHECKED;
    }
    view.List_Select_To_DB(view.Nb(), view.List_Pt());
    EXPECT_TRUE(Is_Selected(classes[2]));
    EXPECT_FALSE(Is_Selected(classes[3]));
    EXPECT_TRUE(Is_Selected(classes[4]));
    view.Source_Set(nullptr);
    Variable_Undefine("$DB_3D_ROOT_PT");
}

TEST_F(Find_View_Test, without_a_source_there_are_no_rows) {
    view.Source_Set(nullptr);
    EXPECT_EQ(Find("head"), Rows{});
    view.List_Select_From_DB(view.Nb(), view.List_Pt());
    view.List_Select_To_DB(view.Nb(), view.List_Pt());
    view.List_Select_To_DB(3, nullptr);
}

}  // namespace

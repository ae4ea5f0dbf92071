#include "workbench/database/patient_view.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "database/tool_db_file.h"
#include "tests/database/file_scene.h"

using namespace workbench;

namespace {

using volumes::File_Origin;
using Rows = std::vector<std::string>;

File_Origin Origin(const std::string& patient, const std::string& date, int series, int instance) {
    File_Origin origin;
    origin.patient_name = patient;
    origin.patient_id = "id of " + patient;
    origin.study = "1.2." + date;
    origin.study_date = date;
    origin.series = "1.2.3." + std::to_string(series);
    origin.series_number = series;
    origin.series_text = "t1";
    origin.instance_number = instance;
    return origin;
}

class Patient_View_Test : public testing::Test {
  protected:
    void Add(const std::string& path, const File_Origin& origin, int frame_nb = 1) {
        File_Scene::File& file = scene.Add_File(path, frame_nb);
        origins[&file.record] = origin;
        for (Quorel_2D_Frame* const frame : file.frames) {
            scene.Add_Object(frame);
        }
    }
    /** "level title|name (children below)" of every row. */
    Rows Listed() {
        view.Source_Set(&files);
        view.Update(UPDATE_STRUCTURE);
        Rows texts;
        for (int i = 0; i < view.Nb(); ++i) {
            const DB_List& row = view.List_Pt()[i];
            std::string text = std::string(row.level * 2U, ' ') + row.title;
            text += row.name != nullptr ? std::string("|") + row.name : "";
            text += " " + std::to_string(row.child_nb) + "/" + std::to_string(row.desc_nb);
            texts.push_back(text);
        }
        return texts;
    }
    std::vector<bool> Selection() const {
        std::vector<bool> selection;
        for (const Quorel_2D& object : scene.objects) {
            selection.push_back(object.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0);
        }
        return selection;
    }

    File_Scene scene;
    std::map<const void*, File_Origin> origins;
    Tool_DB_File files{2};
    Patient_View view{[this](const void* record) {
        const auto found = origins.find(record);
        return found != origins.end() ? &found->second : nullptr;
    }};
};

TEST_F(Patient_View_Test, images_stand_below_their_series_study_and_patient) {
    Add("C:\\a\\4.dcm", Origin("Doe Jane", "2004-01-19", 2, 2));
    Add("C:\\a\\3.dcm", Origin("Doe Jane", "2004-01-19", 10, 1));
    Add("C:\\a\\2.dcm", Origin("Doe Jane", "2003-12-31", 2, 1));
    Add("C:\\b\\1.dcm", Origin("Doe Jane", "2004-01-19", 2, 1));
    Add("C:\\b\\0.dcm", Origin("Bell Ann", "2005-01-01", 1, 1), 2);
    EXPECT_EQ(Listed(), (Rows{"Bell Ann|id of Bell Ann 1/4", "  Study|2005-01-01 1/3", "    Series|1: t1 2/2",
                              "      Image|1 (64x32) 0/0", "      Image|2 (64x32) 0/0", "Doe Jane|id of Doe Jane 2/9",
                              "  Study|2003-12-31 1/2", "    Series|2: t1 1/1", "      Image|2.dcm 0/0",
                              "  Study|2004-01-19 2/5", "    Series|2: t1 2/2", "      Image|1.dcm 0/0",
                              "      Image|4.dcm 0/0", "    Series|10: t1 1/1", "      Image|3.dcm 0/0"}));
    const DB_List* const rows = view.List_Pt();
    EXPECT_EQ(rows[1].parent, 0);
    EXPECT_EQ(rows[9].parent, 5);
    EXPECT_EQ(rows[13].parent, 9);
    EXPECT_EQ(rows[14].parent, 13);
    EXPECT_NE(rows[5].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(rows[7].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_STREQ(rows[7].icon, "modality ct.tga");
    EXPECT_EQ(rows[7].modality, 0x4354);
    EXPECT_STREQ(rows[0].icon, DB_ICON_DEFAULT);
}

TEST_F(Patient_View_Test, files_that_name_nobody_come_last_each_by_itself) {
    Add("C:\\a\\brain.nii", {}, 2);
    Add("C:\\a\\head.nii", {});
    Add("C:\\a\\z.dcm", Origin("Doe Jane", "", 0, 0));
    File_Origin nameless = Origin("", "", 0, 0);
    nameless.patient_id.clear();
    nameless.series_text.clear();
    Add("C:\\a\\n.dcm", nameless);
    EXPECT_EQ(Listed(),
              (Rows{"Patient without a name 1/3", "  Study|without date 1/2", "    Series|without number 1/1",
                    "      Image|n.dcm 0/0", "Doe Jane|id of Doe Jane 1/3", "  Study|without date 1/2",
                    "    Series|t1 1/1", "      Image|z.dcm 0/0", "File|brain.nii 2/2", "  Image|1 (64x32) 0/0",
                    "  Image|2 (64x32) 0/0", "File|head.nii 1/1", "  Image|head.nii 0/0"}));
}

TEST_F(Patient_View_Test, patients_of_one_name_are_told_apart_by_their_number) {
    Add("C:\\a\\1.dcm", Origin("Doe Jane", "2004-01-19", 1, 1));
    File_Origin other = Origin("Doe Jane", "2004-01-19", 1, 1);
    other.patient_id = "another";
    Add("C:\\a\\2.dcm", other);
    const Rows rows = Listed();
    ASSERT_EQ(rows.size(), 8U);
    EXPECT_EQ(rows[0], "Doe Jane|another 1/3");
    EXPECT_EQ(rows[4], "Doe Jane|id of Doe Jane 1/3");
}

TEST_F(Patient_View_Test, checking_images_selects_their_frames_and_a_branch_shows_what_is_below) {
    Add("C:\\a\\2.dcm", Origin("Doe Jane", "2004-01-19", 2, 1));
    Add("C:\\a\\1.dcm", Origin("Doe Jane", "2004-01-19", 1, 1));
    Add("C:\\a\\0.dcm", Origin("Bell Ann", "2005-01-01", 1, 1));
    ASSERT_EQ(Listed().size(), 10U);
    view.List_Pt()[7].state = DB_STATE_CHECKED;  // 1.dcm
    view.List_Select_To_DB(view.Nb(), view.List_Pt());
    EXPECT_EQ(Selection(), (std::vector<bool>{false, true, false}));
    view.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_EQ(view.List_Pt()[7].state & DB_STATE_MASK, DB_STATE_CHECKED);
    EXPECT_EQ(view.List_Pt()[6].state & DB_STATE_MASK, DB_STATE_CHECKED) << "its series";
    EXPECT_NE(view.List_Pt()[5].state & DB_STATE_MASK, DB_STATE_CHECKED) << "of two series one";
    EXPECT_EQ(view.List_Pt()[3].state & DB_STATE_MASK, DB_STATE_NONE);
}

TEST_F(Patient_View_Test, images_of_a_series_are_in_the_order_of_their_numbers_whatever_their_folder) {
    Add("C:\\a\\1.dcm", Origin("Doe Jane", "2004-01-19", 1, 3));
    Add("C:\\b\\2.dcm", Origin("Doe Jane", "2004-01-19", 1, 1));
    Add("C:\\c\\3.dcm", Origin("Doe Jane", "2004-01-19", 1, 2));
    EXPECT_EQ(Listed(), (Rows{"Doe Jane|id of Doe Jane 1/5", "  Study|2004-01-19 1/4", "    Series|1: t1 3/3",
                              "      Image|2.dcm 0/0", "      Image|3.dcm 0/0", "      Image|1.dcm 0/0"}));
}

}  // namespace

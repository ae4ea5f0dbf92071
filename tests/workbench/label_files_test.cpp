#include "workbench/model/label_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "workbench/volumes/message_text.h"

using namespace volumes;
using namespace workbench;

namespace {

namespace fs = std::filesystem;

TEST(Label_Path_Proposed, is_the_images_folder_and_name) {
    const fs::path folder = fs::temp_directory_path() / "study";
    EXPECT_EQ(Label_Path_Proposed(folder / "head.nii.gz", "head.nii.gz"), folder / "head_labels.nii.gz");
    EXPECT_EQ(Label_Path_Proposed(folder / "HEAD.2.NII", "x"), folder / "HEAD.2_labels.nii.gz");
    EXPECT_EQ(Label_Path_Proposed(folder / "head.hdr", "x"), folder / "head_labels.nii.gz");
    EXPECT_TRUE(Label_Path_Proposed("head.nii", "x").is_absolute());
}

TEST(Label_Path_Proposed, of_a_file_of_a_series_is_the_title_of_the_series) {
    const fs::path folder = fs::temp_directory_path() / "study";
    EXPECT_EQ(Label_Path_Proposed(folder / "IM000001", "MR 3: t1 sagittal"), folder / "MR 3 t1 sagittal_labels.nii.gz");
    EXPECT_EQ(Label_Path_Proposed(folder / "a.dcm", "..\\a/b*c?. "), folder / ".. a b c_labels.nii.gz");
    EXPECT_EQ(Label_Path_Proposed(folder / "a.dcm", " : "), folder / "a_labels.nii.gz");
    const std::string long_title = std::string(79, 'x') + "\xC3\xA9" + "tail";
    EXPECT_EQ(Label_Path_Proposed(folder / "a.dcm", long_title), folder / (std::string(79, 'x') + "_labels.nii.gz"));
}

class Label_Files : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("label_files_test_" + std::to_string(std::random_device{}()));
        fs::create_directories(folder);
        labels = folder / "head.nii.gz";
        text = folder / "head.labels.txt";
    }
    void TearDown() override {
        std::error_code ignored;
        for (const fs::path& file : {labels, text}) {
            File_Read_Only_Set(file, false);
        }
        fs::remove_all(folder, ignored);
    }
    static void Put(const fs::path& file, const std::string& content) {
        std::ofstream(file, std::ios::binary) << content;
    }
    fs::path folder;
    fs::path labels;
    fs::path text;
};

TEST_F(Label_Files, nothing_speaks_against_new_files_and_against_files_as_they_were_known) {
    EXPECT_TRUE(Save_Doubts_Of(labels, {}).Is_None());
    Put(labels, "abc");
    Put(text, "def");
    EXPECT_TRUE(Save_Doubts_Of(labels, Label_Stamps_Of(labels)).Is_None());
}

TEST_F(Label_Files, a_file_that_somebody_wrote_is_told_also_of_the_same_size_and_time) {
    Put(labels, "abc");
    Put(text, "def");
    const Label_Stamps known = Label_Stamps_Of(labels);
    const auto time = fs::last_write_time(labels);
    Put(labels, "abd");
    fs::last_write_time(labels, time);
    Save_Doubts doubts = Save_Doubts_Of(labels, known);
    EXPECT_EQ(doubts.changed, "head.nii.gz was written by another program since it was read or saved here.");
    EXPECT_TRUE(doubts.is_theirs);
    Put(text, "longer");
    doubts = Save_Doubts_Of(labels, known);
    EXPECT_EQ(doubts.changed,
              "head.nii.gz and head.labels.txt were written by another program since they were read or saved here.");
    Put(labels, "abc");
    doubts = Save_Doubts_Of(labels, known);
    EXPECT_EQ(doubts.changed, "head.labels.txt was written by another program since it was read or saved here.");
    EXPECT_FALSE(doubts.is_theirs);
}

TEST_F(Label_Files, a_file_that_was_only_touched_or_is_gone_is_no_doubt) {
    Put(labels, "abc");
    const Label_Stamps known = Label_Stamps_Of(labels);
    fs::last_write_time(labels, fs::last_write_time(labels) + std::chrono::hours(1));
    EXPECT_TRUE(Save_Doubts_Of(labels, known).Is_None());
    fs::remove(labels);
    EXPECT_TRUE(Save_Doubts_Of(labels, known).Is_None());
}

TEST_F(Label_Files, a_file_that_appeared_is_somebodys) {
    Put(labels, "abc");
    EXPECT_TRUE(Save_Doubts_Of(labels, {}).is_theirs);
}

TEST_F(Label_Files, protection_is_told_taken_away_and_brought_back) {
    Put(labels, "abc");
    EXPECT_FALSE(File_Is_Read_Only(labels));
    ASSERT_EQ(File_Read_Only_Set(labels, true), "");
    EXPECT_TRUE(File_Is_Read_Only(labels));
    EXPECT_EQ(Save_Doubts_Of(labels, Label_Stamps_Of(labels)).read_only,
              "head.nii.gz is protected: it may only be read.");
    ASSERT_EQ(File_Read_Only_Set(labels, false), "");
    EXPECT_FALSE(File_Is_Read_Only(labels));
    EXPECT_FALSE(File_Is_Read_Only(folder / "absent"));
    EXPECT_FALSE(File_Read_Only_Set(folder / "absent", true).empty());
}

TEST_F(Label_Files, of_two_unreadable_states_size_and_time_decide) {
    File_Stamp was = {true, false, 3, 0, 7};
    File_Stamp now = was;
    EXPECT_FALSE(File_Is_Changed(was, now));
    now.time = 8;
    EXPECT_TRUE(File_Is_Changed(was, now));
    now = was;
    now.size = 4;
    EXPECT_TRUE(File_Is_Changed(was, now));
}

}  // namespace

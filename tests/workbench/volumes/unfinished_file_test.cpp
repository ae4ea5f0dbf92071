#include "workbench/volumes/unfinished_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/output_file.h"

using namespace volumes;

namespace {

namespace fs = std::filesystem;

class Unfinished_File : public testing::Test {
  protected:
    /** What a program leaves that is ended while it writes. */
    fs::path Leave(const char* name, std::uint32_t mark, std::chrono::minutes age = {}) {
        fs::path left = Unfinished_Name(folder / name, mark);
        File_Put(left, Bytes(3, 'x'));
        fs::last_write_time(left, fs::file_time_type::clock::now() - age);
        return left;
    }
    Temporary_Folder folder;
};

TEST_F(Unfinished_File, the_name_tells_whose_it_is_and_gives_its_target_back) {
    const fs::path target = folder / "labels.nii.gz";
    const fs::path name = Unfinished_Name(target, 0x1A2BU);
    EXPECT_EQ(name.filename().string(), "labels.nii.gz.workbench-00001a2b.part");
    EXPECT_EQ(Unfinished_Target(name), target);
}

TEST_F(Unfinished_File, a_users_file_is_never_taken_for_one) {
    for (const char* name :
         {"labels.nii.gz", "labels.nii.gz.part0", "labels.workbench-1a2b.part", "a.part",
          "labels.workbench-00001A2B.part", "labels.workbench-0000xyzw.part", "labels.workbench-00001a2b.part2",
          ".workbench-00001a2b.part", "workbench-00001a2b.part"}) {
        EXPECT_EQ(Unfinished_Target(folder / name), fs::path()) << name;
    }
}

TEST_F(Unfinished_File, the_next_save_removes_what_a_killed_one_left_and_nothing_else) {
    const fs::path left = Leave("labels.nii.gz", 1);
    const fs::path of_others = Leave("other.nii.gz", 2, std::chrono::minutes(2));
    const fs::path of_others_now = Leave("third.nii.gz", 3);
    const fs::path of_user = folder / "labels.nii.gz.part0";
    File_Put(of_user, Bytes(3, 'x'));
    Output_File out(folder / "labels.nii.gz");
    ASSERT_TRUE(out.Write(Bytes(5, 'y')));
    ASSERT_TRUE(out.Commit());
    EXPECT_EQ(Unfinished_Remove(folder / "labels.nii.gz"), 2);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_FALSE(fs::exists(of_others));
    EXPECT_TRUE(fs::exists(of_others_now)) << "its program may be just renaming it";
    EXPECT_TRUE(fs::exists(of_user));
    EXPECT_EQ(File_Get(folder / "labels.nii.gz"), Bytes(5, 'y'));
}

TEST_F(Unfinished_File, what_is_being_written_stays) {
    Output_File running(folder / "labels.nii.gz");
    ASSERT_TRUE(running.Write(Bytes(3, 'x')));
    EXPECT_EQ(Unfinished_Remove(folder / "labels.nii.gz"), 0);
    Output_File other(folder / "labels.nii.gz");
    ASSERT_TRUE(other.Commit());
    EXPECT_TRUE(running.Commit()) << running.Error();
    EXPECT_EQ(File_Get(folder / "labels.nii.gz"), Bytes(3, 'x'));
    EXPECT_EQ(folder.Entry_Nb(), 1U);
}

TEST_F(Unfinished_File, a_folder_that_cannot_be_listed_is_no_failure) {
    EXPECT_EQ(Unfinished_Remove(folder / "none" / "labels.nii.gz"), 0);
}

}  // namespace

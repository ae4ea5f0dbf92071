#include "workbench/volumes/ahead_reading.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <vector>

#include "tests/workbench/volumes/loading.h"

using namespace volumes;

namespace {

class Images_Read_Ahead : public testing::Test {
  protected:
    void SetUp() override { File_Put(paths.front(), Small_File().File()); }
    /** A file that takes far longer than the first question of how far it is. It takes no room on most disks. */
    void Make_Long() {
        Nifti_Bytes large = Small_File();
        large.dim = {3, 512, 512, 800, 1, 1, 1, 1};
        File_Put(paths.front(), large.File());
        std::filesystem::resize_file(paths.front(), 352 + std::uintmax_t{512} * 512 * 800);
    }
    std::unique_ptr<Ahead_Reading> Begun() const {
        return std::make_unique<Ahead_Reading>(paths, Load_Limits{}, WHOLE_ALWAYS);
    }
    const Temporary_Folder folder;
    std::vector<std::filesystem::path> paths{folder / "small.nii"};
};

TEST_F(Images_Read_Ahead, are_what_reading_at_once_gives) {
    const Image_Folder now = Image_Folder_Open(paths);
    const Image_Folder then = Begun()->Take({});
    ASSERT_EQ(now.volumes.size(), 1U);
    ASSERT_EQ(then.volumes.size(), 1U);
    EXPECT_FALSE(then.is_cancelled);
    EXPECT_EQ(then.volumes[0].volume.levels, now.volumes[0].volume.levels);
    EXPECT_EQ(then.volumes[0].path, now.volumes[0].path);
    EXPECT_EQ(then.files, now.files);
}

TEST_F(Images_Read_Ahead, have_the_limits_that_were_given) {
    const Image_Folder read = Ahead_Reading(paths, {11, nullptr}, WHOLE_ALWAYS).Take({});
    EXPECT_TRUE(read.volumes.empty());
    ASSERT_EQ(read.problems.size(), 1U);
    EXPECT_NE(read.problems[0].reason.find("11 bytes in all are allowed"), std::string::npos)
        << read.problems[0].reason;
}

TEST_F(Images_Read_Ahead, tell_what_cannot_be_read) {
    paths.push_back(folder / "missing.nii");
    const Image_Folder read = Begun()->Take({});
    EXPECT_EQ(read.volumes.size(), 1U);
    EXPECT_EQ(read.problems.size(), 1U);
}

TEST_F(Images_Read_Ahead, are_those_of_the_paths_they_were_begun_with) {
    const auto begun = Begun();
    EXPECT_TRUE(begun->Is_Of(paths));
    EXPECT_FALSE(begun->Is_Of({}));
    const std::vector<std::filesystem::path> more = {paths.front(), paths.front()};
    EXPECT_FALSE(begun->Is_Of(more));
    const std::vector<std::filesystem::path> other = {folder / "other.nii"};
    EXPECT_FALSE(begun->Is_Of(other));
}

TEST_F(Images_Read_Ahead, can_be_given_up_while_somebody_waits_for_them) {
    Make_Long();
    const auto begun = Begun();
    std::vector<double> told;
    const Image_Folder read = begun->Take([&](double share) {
        told.push_back(share);
        return told.size() < 2;
    });
    EXPECT_TRUE(read.is_cancelled);
    ASSERT_GE(told.size(), 2U) << "the file was read before anybody could ask";
    EXPECT_LE(told[0], told[1]);
    EXPECT_LT(told[1], 1.0);
}

TEST_F(Images_Read_Ahead, that_nobody_takes_are_given_up) {
    Make_Long();
    const auto begin = std::chrono::steady_clock::now();
    Begun().reset();
    const auto dropped = std::chrono::steady_clock::now() - begin;
    const auto again = std::chrono::steady_clock::now();
    Begun()->Take({});
    EXPECT_LT(dropped, (std::chrono::steady_clock::now() - again) / 2);
}

}  // namespace

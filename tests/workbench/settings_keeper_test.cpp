#include "workbench/model/settings_keeper.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <system_error>

using namespace workbench;

namespace {

class Settings_Kept : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() / ("settings_keeper_" + std::to_string(std::random_device{}()));
        file = folder / "settings.txt";
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::filesystem::path folder;
    std::filesystem::path file;
};

TEST_F(Settings_Kept, the_next_start_has_what_was_kept) {
    Settings_Keeper keeper;
    keeper.Open(file);
    EXPECT_FALSE(keeper.Now().is_wheel_turned);
    keeper.Now().is_wheel_turned = true;
    Recent_Add(keeper.Now().recent, "/data/head.nii");
    EXPECT_TRUE(keeper.Keep());
    Settings_Keeper next;
    next.Open(file);
    EXPECT_TRUE(next.Now().is_wheel_turned);
    EXPECT_EQ(next.Now().recent.size(), 1U);
    EXPECT_EQ(next.Ignored(), 0);
    EXPECT_EQ(next.File(), file);
}

TEST_F(Settings_Kept, without_a_file_nothing_is_written_and_nothing_fails) {
    Settings_Keeper keeper;
    keeper.Open({});
    keeper.Now().is_light = true;
    EXPECT_TRUE(keeper.Keep());
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(Settings_Kept, lines_that_are_not_understood_are_counted) {
    std::filesystem::create_directories(folder);
    std::ofstream(file) << "workbench settings\ntheme light\nnonsense 3\n";
    Settings_Keeper keeper;
    keeper.Open(file);
    EXPECT_EQ(keeper.Ignored(), 1);
    EXPECT_TRUE(keeper.Now().is_light);
}

TEST_F(Settings_Kept, a_file_that_cannot_be_written_is_told) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "no_folder") << "a file";
    Settings_Keeper keeper;
    keeper.Open(folder / "no_folder" / "settings.txt");
    EXPECT_FALSE(keeper.Keep());
}

TEST_F(Settings_Kept, a_secret_in_the_file_is_never_replaced) {
    std::filesystem::create_directories(folder);
    Settings_Keeper first;
    Settings_Keeper second;
    first.Open(file);
    second.Open(file);
    first.Now().archive_secret = std::string(64, 'a');
    EXPECT_TRUE(first.Keep());
    EXPECT_TRUE(second.Keep());  // has none itself
    EXPECT_EQ(Settings_Load(file).archive_secret, std::string(64, 'a'));
    second.Now().archive_secret = std::string(64, 'b');
    EXPECT_TRUE(second.Keep());
    EXPECT_EQ(Settings_Load(file).archive_secret, std::string(64, 'a'));
    EXPECT_EQ(second.Now().archive_secret, std::string(64, 'a'));
    Settings_Keeper third;
    third.Open(file);
    third.Now().archive_secret.clear();
    third.Secret_Read();
    EXPECT_EQ(third.Now().archive_secret, std::string(64, 'a'));
}

}  // namespace

#include "workbench/model/text_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

using namespace workbench;

namespace {

class Text_File : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() / ("text_file_test_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(folder);
        file = folder / "a.txt";
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::string Get(const std::filesystem::path& path) const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    std::size_t File_Nb() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    std::filesystem::path folder;
    std::filesystem::path file;
    std::string text;
};

TEST_F(Text_File, what_was_written_is_read_byte_by_byte) {
    const std::string written("a\r\nb\n\0c\x1A\xFF", 9);
    EXPECT_EQ(Text_File_Write(file, written), "");
    EXPECT_EQ(Text_File_Read(file, 9, text), "");
    EXPECT_EQ(text, written);
    EXPECT_EQ(Text_File_Write(file, ""), "");
    EXPECT_EQ(Text_File_Read(file, 9, text), "");
    EXPECT_EQ(text, "");
    EXPECT_EQ(File_Nb(), 1U);
}

TEST_F(Text_File, a_file_that_is_missing_too_large_or_a_folder_gives_nothing) {
    text = "before";
    EXPECT_EQ(Text_File_Read(file, 100, text), "cannot be read");
    EXPECT_EQ(text, "");
    EXPECT_EQ(Text_File_Write(file, "12345"), "");
    EXPECT_EQ(Text_File_Read(file, 4, text), "is too large");
    EXPECT_EQ(text, "");
    EXPECT_FALSE(Text_File_Read(folder, 100, text).empty());
}

TEST_F(Text_File, a_file_that_cannot_be_written_tells_why_and_leaves_nothing_behind) {
    EXPECT_NE(Text_File_Write(folder / "none" / "a.txt", "x").find("cannot be"), std::string::npos);
    std::filesystem::create_directories(file / "occupied");
    EXPECT_EQ(Text_File_Write(file, "x"), "is a folder, not a file");
    EXPECT_EQ(File_Nb(), 1U);
}

TEST_F(Text_File, kept_aside_under_a_name_that_is_free) {
    std::filesystem::path kept;
    for (const char* content : {"one", "two", "three"}) {
        EXPECT_EQ(Text_File_Write(file, content), "");
        EXPECT_EQ(Text_File_Keep_Aside(file, ".damaged", &kept), "");
        EXPECT_EQ(Get(kept), content);
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_EQ(kept, folder / "a.txt.damaged3");
    EXPECT_EQ(Get(folder / "a.txt.damaged"), "one");
    EXPECT_EQ(Text_File_Keep_Aside(file, ".damaged").substr(0, 22), "cannot be kept aside: ");
}

}  // namespace

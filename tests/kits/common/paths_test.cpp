#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/kit_common.h"

namespace {

struct Parts {
    std::string directory;
    std::string name;
    std::string extension;
    bool operator==(const Parts&) const = default;
};

void PrintTo(const Parts& parts, std::ostream* out) {
    *out << '[' << parts.directory << '|' << parts.name << '|' << parts.extension << ']';
}

Parts Split(const std::string& path) {
    std::vector<char> directory(path.size() + 1, '#');
    std::vector<char> name(path.size() + 1, '#');
    std::vector<char> extension(path.size() + 1, '#');
    Get_Generic_Name(path.c_str(), directory.data(), name.data(), extension.data());
    return {directory.data(), name.data(), extension.data()};
}

}  // namespace

TEST(Path, is_split_at_both_separators) {
    EXPECT_EQ(Split("C:\\data\\brain.nii"), (Parts{"C:\\data", "brain", ".nii"}));
    EXPECT_EQ(Split("/data/brain.nii"), (Parts{"/data", "brain", ".nii"}));
    EXPECT_EQ(Split("C:/data\\sub/brain.nii"), (Parts{"C:/data\\sub", "brain", ".nii"}));
}

TEST(Path, joins_again_from_its_parts) {
    const Parts parts = Split("/a.b/c.d/e.f.g");
    EXPECT_EQ(parts.directory + "/" + parts.name + parts.extension, "/a.b/c.d/e.f.g");
    EXPECT_EQ(parts.extension, ".g");
}

TEST(Path, without_a_directory_has_an_empty_one) {
    EXPECT_EQ(Split("brain.nii"), (Parts{"", "brain", ".nii"}));
}

TEST(Path, without_an_extension_has_an_empty_one) {
    EXPECT_EQ(Split("/a.b/brain"), (Parts{"/a.b", "brain", ""}));
    EXPECT_EQ(Split("/a/.hidden"), (Parts{"/a", ".hidden", ""}));
    EXPECT_EQ(Split("brain."), (Parts{"", "brain", "."}));
}

TEST(Path, that_names_a_directory_has_no_name) {
    EXPECT_EQ(Split("/a/b/"), (Parts{"/a/b", "", ""}));
    EXPECT_EQ(Split("C:\\"), (Parts{"C:", "", ""}));
    EXPECT_EQ(Split("C:brain.nii"), (Parts{"C:", "brain", ".nii"}));
    EXPECT_EQ(Split(""), (Parts{"", "", ""}));
}

TEST(Path, outputs_that_are_null_are_skipped) {
    char name[32] = "#";
    Get_Generic_Name("C:\\x\\Kit_Panels.dll", nullptr, name, nullptr);
    EXPECT_STREQ(name, "Kit_Panels");
    Get_Generic_Name("C:\\x\\y.z", nullptr, nullptr, nullptr);
    Get_Generic_Name(nullptr, nullptr, name, nullptr);
    EXPECT_STREQ(name, "");
}

TEST(Path, may_be_as_long_as_the_system_allows) {
    const std::string directory(PATH_SIZE - 10, 'd');
    EXPECT_EQ(Split(directory + "/n.e"), (Parts{directory, "n", ".e"}));
}

#include "workbench/model/label_description_file.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>

#include "workbench/model/text_file.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

using namespace workbench;

namespace {

constexpr Label_Extent EXTENT = {10, 10, 10};
constexpr std::string_view NEWER_TEXT = "label description 7\ntags in another way\n";

class Label_Description_File : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() / ("label_file_test_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(folder);
        labels = folder / "head.nii.gz";
        file = folder / "head.labels.txt";
        description.tags = {{3, 0x010203, true, false, true, 5.0F, {}, "Three"}};
        description.markers = {{0, 0x040506, Label_Voxel{1, 2, 9}, "Here"}};
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    void Put(std::string_view text) const { EXPECT_EQ(Text_File_Write(file, text), ""); }
    std::string Get(const std::filesystem::path& path) const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    std::size_t File_Nb() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    std::string Save() { return Label_Description_Save(labels, description, EXTENT, kept); }
    Label_Description_Loading Load() const { return Label_Description_Load(labels, EXTENT); }

    std::filesystem::path folder;
    std::filesystem::path labels;
    std::filesystem::path file;
    Label_Description description;
    std::string kept = "before";
};

TEST(Label_Description_Path_Test, stands_beside_the_volume) {
    EXPECT_EQ(Label_Description_Path("scans/head.nii.gz").generic_string(), "scans/head.labels.txt");
    EXPECT_EQ(Label_Description_Path("head.nii"), "head.labels.txt");
    EXPECT_EQ(Label_Description_Path("HEAD.NII.GZ"), "HEAD.labels.txt");
    EXPECT_EQ(Label_Description_Path("head.v2.nii"), "head.v2.labels.txt");
    EXPECT_EQ(Label_Description_Path("head.gz"), "head.labels.txt");
    EXPECT_EQ(Label_Description_Path("head.niigz"), "head.niigz.labels.txt");
    EXPECT_EQ(Label_Description_Path("gz"), "gz.labels.txt");
}

TEST_F(Label_Description_File, is_written_beside_the_volume_and_read_back) {
    EXPECT_FALSE(Load().is_there);
    EXPECT_EQ(Load().warning, "");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "");
    EXPECT_EQ(Get(file), Label_Description_Text(description));
    const Label_Description_Loading loading = Load();
    EXPECT_TRUE(loading.is_there);
    EXPECT_EQ(loading.warning, "");
    EXPECT_EQ(loading.description, description);
    description.tags[0].name = "Third";
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "") << "a description that is understood is replaced";
    EXPECT_EQ(Load().description, description);
    EXPECT_EQ(File_Nb(), 1U);
}

TEST_F(Label_Description_File, lines_left_out_are_told_in_one_warning_and_the_file_is_kept_at_the_next_save) {
    const std::string damaged = Label_Description_Text(description) + "tag 4 #01\nmarker 9\n";
    Put(damaged);
    const Label_Description_Loading loading = Load();
    EXPECT_TRUE(loading.is_there);
    EXPECT_EQ(loading.description, description);
    EXPECT_EQ(loading.warning,
              "head.labels.txt: 2 lines were left out; the first is line 6: a colour like #F0CE60 is expected.");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "The former head.labels.txt is kept as head.labels.txt.damaged.");
    EXPECT_EQ(Get(folder / "head.labels.txt.damaged"), damaged);
    EXPECT_EQ(Load().warning, "");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "");
    Put(Label_Description_Text(description) + "nonsense\n");
    EXPECT_EQ(Load().warning, "head.labels.txt: 1 line was left out, line 6: \"tag\" or \"marker\" is expected.");
}

TEST_F(Label_Description_File, a_marker_outside_the_volume_is_left_out) {
    description.markers[0].place->row = 10;
    Put(Label_Description_Text(description));
    EXPECT_EQ(Load().warning, "head.labels.txt: 1 line was left out, line 5: the marker lies outside the labels.");
    EXPECT_EQ(Load().description.tags, description.tags);
}

TEST_F(Label_Description_File, a_later_version_is_refused_and_not_lost_by_saving) {
    Put(NEWER_TEXT);
    const Label_Description_Loading loading = Load();
    EXPECT_FALSE(loading.is_there);
    EXPECT_EQ(loading.warning,
              "Names, colours, thresholds and markers are as they were: head.labels.txt was written by a later version "
              "of this program.");
    EXPECT_EQ(Get(file), NEWER_TEXT);
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "The former head.labels.txt is kept as head.labels.txt.newer.");
    EXPECT_EQ(Get(folder / "head.labels.txt.newer"), NEWER_TEXT);
    EXPECT_EQ(Load().description, description);
}

TEST_F(Label_Description_File, a_file_of_another_kind_or_size_is_refused_and_not_lost_by_saving) {
    Put("my notes");
    EXPECT_EQ(Load().warning,
              "Names, colours, thresholds and markers are as they were: head.labels.txt is no description of labels.");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Get(folder / "head.labels.txt.damaged"), "my notes");
    Put(std::string(5U << 20U, ' '));
    EXPECT_EQ(Load().warning, "Names, colours, thresholds and markers are as they were: head.labels.txt is too large.");
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(kept, "The former head.labels.txt is kept as head.labels.txt.damaged2.");
}

TEST_F(Label_Description_File, where_it_cannot_be_written_the_reason_is_told) {
    std::filesystem::create_directories(file / "occupied");
    EXPECT_EQ(
        Save(),
        "The labels are saved, but not their names, colours, thresholds and markers: head.labels.txt is a folder, "
        "not a file.");
    EXPECT_TRUE(std::filesystem::exists(file / "occupied"));
    EXPECT_EQ(File_Nb(), 1U);
    EXPECT_EQ(Load().warning.substr(0, 72), "Names, colours, thresholds and markers are as they were: head.labels.txt");
    labels = folder / "none" / "head.nii";
    EXPECT_NE(Save().find("head.labels.txt cannot be created"), std::string::npos) << Save();
}

#if !defined(_WIN32)
// A limit on the size of files stands in for a full disk.
TEST_F(Label_Description_File, a_full_disk_leaves_the_former_file_where_file_sizes_can_be_limited) {
    EXPECT_EQ(Save(), "");
    const std::string former_text = Get(file);
    for (int number = 10; number < 60; ++number) {
        description.tags.push_back({number, 0x010203, true, true, false, {}, {}, "More"});
    }
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto former_handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{400, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string error = Save();
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, former_handler);
    EXPECT_EQ(error,
              "The labels are saved, but not their names, colours, thresholds and markers: head.labels.txt cannot be "
              "written: File too large.");
    EXPECT_EQ(Get(file), former_text);
    EXPECT_EQ(File_Nb(), 1U);
    EXPECT_EQ(Save(), "") << "once there is room";
    EXPECT_EQ(Load().description, description);
}
#endif

}  // namespace

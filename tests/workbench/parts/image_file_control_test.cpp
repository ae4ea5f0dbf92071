// The image in a file of another format: what is asked, and what stands in the file.
#include "workbench/parts/image_file_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <sys/resource.h>

#include <csignal>
#endif
#include <fstream>
#include <iterator>

#include "tests/workbench/parts/work_scene.h"

using namespace workbench;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string Text_Of(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class Image_File_Watch : public ::testing::Test, protected Work_Scene {
  protected:
    /** Every voxel another level, in a file whose columns and rows are turned for display. */
    static volumes::Volume Turned_Image() {
        volumes::Volume volume = Image();
        volume.affine = {{{0.75, 0, 0, -3}, {0, 0.5, 0.25, 4}, {0, 0, 2, 11}}};
        volume.affine_source = volumes::Affine_Source::Sform;
        volume.spacing = {0.75, 0.5, 2};
        volume.levels = {};
        for (int at = 0; at < NX * NY * NZ; ++at) {
            volume.levels.Append(std::vector<std::int32_t>{at * 13 - 100});
        }
        volume.level_min = -100;
        volume.level_max = (NX * NY * NZ - 1) * 13 - 100;
        return volume;
    }
    void Open_Turned() {
        volumes::Image_Folder opened;
        volumes::Folder_Volume& one = opened.volumes.emplace_back();
        one.title = "turned";
        one.path = folder / "image0.nii";
        one.volume = Turned_Image();
        work.volumes.Take(std::move(opened), {}, work.session);
        ASSERT_TRUE(work.session.Order().flip_x || work.session.Order().flip_y);
    }

    Image_File_Control files{work, dialogs};
};

TEST_F(Image_File_Watch, without_an_image_nothing_is_asked) {
    files.Image_Save_As();
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_THAT(dialogs.told, ElementsAre("There is no image to save"));
}

TEST_F(Image_File_Watch, what_was_saved_is_read_back_voxel_for_voxel_in_its_place) {
    Open_Turned();
    const volumes::Volume source = Turned_Image();
    for (const char* const name : {"copy.nrrd", "copy.mha"}) {
        dialogs.files = {folder / name};
        files.Image_Save_As();
        EXPECT_THAT(dialogs.warned, IsEmpty());
        const volumes::Load_Result read = volumes::Volume_Load(folder / name);
        ASSERT_TRUE(read.volume.has_value()) << read.error;
        EXPECT_EQ(read.volume->levels, source.levels) << name;
        EXPECT_EQ(read.volume->nx, NX);
        EXPECT_EQ(read.volume->ny, NY);
        EXPECT_EQ(read.volume->nz, NZ);
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                EXPECT_NEAR(read.volume->affine[row][column], source.affine[row][column], 1e-9) << name;
            }
        }
    }
    EXPECT_EQ(dialogs.told.back(), "The image was saved to copy.mha");
    EXPECT_THAT(dialogs.run, ElementsAre("Saving copy.nrrd", "Saving copy.mha"));
}

TEST_F(Image_File_Watch, a_name_is_proposed_and_gets_an_ending) {
    Open(1);
    dialogs.files = {folder / "copy"};
    files.Image_Save_As();
    EXPECT_THAT(dialogs.asked, ElementsAre("Save image as: image0.nrrd"));
    EXPECT_TRUE(fs::exists(folder / "copy.nrrd"));
}

TEST_F(Image_File_Watch, files_of_the_work_and_other_formats_are_not_written_over) {
    Open(1);
    const fs::path label_file = folder / "mine.nrrd";
    std::ofstream(label_file) << "labels";
    work.session.Label_Path_Set(label_file);
    const fs::path strange = folder / "copy.txt";
    dialogs.files = {label_file, strange, std::nullopt};
    files.Image_Save_As();
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("is open here"), HasSubstr("ends neither in .nrrd")));
    EXPECT_THAT(dialogs.asked, SizeIs(3));
    EXPECT_EQ(Text_Of(label_file), "labels");
    EXPECT_FALSE(fs::exists(strange));
    EXPECT_THAT(dialogs.told, IsEmpty());
}

TEST_F(Image_File_Watch, what_is_protected_stays) {
    Open(1);
    const fs::path path = folder / "copy.mha";
    std::ofstream(path) << "theirs";
    fs::permissions(path, fs::perms::owner_read);
    dialogs.files = {path, std::nullopt};
    files.Image_Save_As();
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("is protected")));
    EXPECT_EQ(Text_Of(path), "theirs");
    fs::permissions(path, fs::perms::owner_all);
}

TEST_F(Image_File_Watch, given_up_leaves_the_former_file_and_no_other) {
    Open(1);
    const fs::path path = folder / "copy.nrrd";
    std::ofstream(path) << "former";
    dialogs.files = {path};
    dialogs.is_given_up = true;
    files.Image_Save_As();
    EXPECT_THAT(dialogs.told, ElementsAre("Saving was given up"));
    EXPECT_THAT(dialogs.warned, IsEmpty());
    EXPECT_EQ(Text_Of(path), "former");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
}

#if !defined(_WIN32)
// A limit on the size of files stands in for a full disk.
TEST_F(Image_File_Watch, a_full_disk_is_told_and_leaves_the_former_file) {
    Open_Turned();
    const fs::path path = folder / "copy.mha";
    std::ofstream(path) << "former";
    dialogs.files = {path};
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto former_handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{50, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    files.Image_Save_As();
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, former_handler);
    EXPECT_THAT(dialogs.warned, ElementsAre(HasSubstr("copy.mha cannot be written: File too large")));
    EXPECT_EQ(Text_Of(path), "former");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
}
#endif

}  // namespace

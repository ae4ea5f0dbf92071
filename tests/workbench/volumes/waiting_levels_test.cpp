#include "workbench/volumes/waiting_levels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/listed_by_heads.h"
#include "tests/workbench/volumes/loading.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Waiting_Series : public testing::Test {
  protected:
    static constexpr std::int32_t OUTSIDE = LEVEL_OUTSIDE;

    static Dicom_Bytes Slice(int z, std::uint8_t value) {
        Dicom_Bytes bytes;
        bytes.Pixels_8({value, value}, 2, 1).Place(0, 0, z);
        bytes.Text(TAG_INSTANCE, "UI", "1.2.3.4." + std::to_string(z + 1));
        return bytes;
    }
    std::filesystem::path Path(int z) const { return folder / (std::to_string(z) + ".dcm"); }
    void Write(int z, const Bytes& bytes) { File_Put(Path(z), bytes); }
    /** Three slices of two pixels, listed. */
    void SetUp() override {
        for (int z = 0; z < 3; ++z) {
            Write(z, Slice(z, static_cast<std::uint8_t>(10 * (z + 1))).File());
        }
        List();
    }
    void List() {
        const std::filesystem::path path = folder.path;
        listed = Image_Folder_Open(std::span(&path, 1), {}, {}, 0);
        ASSERT_EQ(listed.volumes.size(), 1U);
        ASSERT_FALSE(listed.volumes[0].waiting.empty());
    }
    Levels_Result Read(const Load_Limits& limits = {}, const Load_Progress& progress = {}) {
        return Waiting_Levels_Read(Waiting_Of(listed, listed.volumes[0]), progress, limits);
    }
    static std::vector<std::string> Reasons(const Levels_Result& result) {
        std::vector<std::string> reasons;
        for (const Folder_Problem& problem : result.problems) {
            EXPECT_TRUE(problem.is_opened);
            reasons.push_back(problem.path.filename().string() + ' ' + problem.reason);
        }
        return reasons;
    }
    Temporary_Folder folder;
    Image_Folder listed;
};

TEST_F(Waiting_Series, is_read_in_the_order_of_its_slices) {
    const Levels_Result read = Read();
    ASSERT_TRUE(read.volume) << read.error;
    Expect_Sound(*read.volume);
    EXPECT_THAT(read.volume->levels, ElementsAre(10, 10, 20, 20, 30, 30));
    EXPECT_EQ(read.volume->level_min, 10);
    EXPECT_EQ(read.volume->level_max, 30);
    EXPECT_THAT(read.problems, IsEmpty());
}

TEST_F(Waiting_Series, is_as_it_is_when_it_is_read_at_once) {
    const std::filesystem::path path = folder.path;
    EXPECT_EQ(Expect_Same_By_Heads(path, Image_Folder_Open(std::span(&path, 1))), 1);
    EXPECT_TRUE(Image_Folder_Open(std::span(&path, 1), {}, {}, 1 << 20).volumes[0].waiting.empty())
        << "no folder of that size waits";
}

TEST_F(Waiting_Series, has_an_empty_slice_where_a_file_is_gone_cut_or_packed) {
    std::filesystem::remove(Path(0));
    const Bytes bytes = Slice(1, 20).File();
    Write(1, Bytes(bytes.begin(), bytes.end() - 2));
    Levels_Result read = Read();
    ASSERT_TRUE(read.volume) << read.error;
    EXPECT_THAT(read.volume->levels, ElementsAre(OUTSIDE, OUTSIDE, OUTSIDE, OUTSIDE, 30, 30));
    EXPECT_EQ(read.volume->level_min, 30);
    EXPECT_THAT(Reasons(read),
                ElementsAre("0.dcm does not exist: its slice is empty", HasSubstr(": its slice is empty")));
    Write(1, Gzip(bytes));
    read = Read();
    EXPECT_THAT(Reasons(read).at(1), "1.dcm is packed by now: its slice is empty");
}

TEST_F(Waiting_Series, takes_no_other_image_for_a_slice) {
    const auto is_refused = [this](const Dicom_Bytes& other) {
        Write(1, other.File());
        const Levels_Result read = Read();
        return read.volume && read.volume->levels[2] == OUTSIDE &&
               Reasons(read).at(0) == "1.dcm holds another image than when the folder was opened: its slice is empty";
    };
    EXPECT_FALSE(is_refused(Slice(1, 99))) << "with other pixels it is the same image";
    EXPECT_TRUE(is_refused(Slice(1, 20).Text(TAG_INSTANCE, "UI", "1.2.3.4.9")));
    EXPECT_TRUE(is_refused(Slice(1, 20).Place(0, 0, 1.5)));
    EXPECT_TRUE(is_refused(Slice(1, 20).Pixels_8({1, 2, 3, 4}, 2, 2)));
    EXPECT_TRUE(is_refused(Slice(1, 20).Text(TAG_PHOTOMETRIC, "CS", "MONOCHROME1")));
    EXPECT_TRUE(is_refused(
        Slice(1, 20).Pixels_8({1, 2, 3, 4, 5, 6}, 2, 1).Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "RGB")));
    EXPECT_TRUE(is_refused(Slice(1, 20).Pixels_8({1, 2, 3, 4}, 2, 1).Text(TAG_FRAMES, "IS", "2")));
}

TEST_F(Waiting_Series, of_which_nothing_can_be_read_is_no_volume) {
    for (int z = 0; z < 3; ++z) {
        std::filesystem::remove(Path(z));
    }
    const Levels_Result read = Read();
    EXPECT_FALSE(read.volume);
    EXPECT_EQ(read.error, "cannot be read any more: 0.dcm does not exist");
}

TEST_F(Waiting_Series, in_colours_has_black_slices_where_files_are_gone) {
    for (int z = 0; z < 3; ++z) {
        Dicom_Bytes bytes = Slice(z, 1);
        bytes.Text(TAG_PHOTOMETRIC, "CS", "RGB").Short(TAG_SAMPLES, 3).Pixels_8({1, 2, 3, 4, 5, 6}, 2, 1);
        Write(z, bytes.Short(TAG_SAMPLES, 3).Text(TAG_PHOTOMETRIC, "CS", "RGB").File());
    }
    List();
    std::filesystem::remove(Path(2));
    const Levels_Result read = Read();
    ASSERT_TRUE(read.volume) << read.error;
    EXPECT_THAT(read.volume->levels, ElementsAre(0x030201, 0x060504, 0x030201, 0x060504, 0, 0));
}

TEST_F(Waiting_Series, of_several_scales_keeps_to_one_without_the_slice_that_is_gone) {
    Write(2, Slice(2, 30).Text(TAG_SLOPE, "DS", "0.5").Text(TAG_INTERCEPT, "DS", "0").File());
    const Levels_Result read = Read();
    ASSERT_TRUE(read.volume) << read.error;
    EXPECT_EQ(read.volume->slope, 0.5);
    EXPECT_THAT(read.volume->levels, ElementsAre(20, 20, 40, 40, 30, 30));
    std::filesystem::remove(Path(2));
    const Levels_Result without = Read();
    ASSERT_TRUE(without.volume) << without.error;
    EXPECT_EQ(without.volume->slope, 1);
    EXPECT_THAT(without.volume->levels, ElementsAre(10, 10, 20, 20, OUTSIDE, OUTSIDE));
}

TEST_F(Waiting_Series, needs_room_for_all_its_slices) {
    Load_Limits limits;
    limits.decoded_bytes = 1000;
    for (int z = 0; z < 3; ++z) {
        Dicom_Bytes bytes = Slice(z, 1);
        Write(z, bytes.Pixels_8(std::vector<std::uint8_t>(200, 5), 20, 10).File());
    }
    List();
    const Levels_Result read = Read(limits);
    EXPECT_FALSE(read.volume);
    EXPECT_EQ(read.error, "needs more memory than the limit of 1000 bytes");
    limits.decoded_bytes = 1200;
    EXPECT_TRUE(Read(limits).volume);
}

TEST_F(Waiting_Series, can_be_given_up) {
    double last = -1;
    const Levels_Result read = Read({}, [&](double share) {
        EXPECT_GE(share, last);
        last = share;
        return false;
    });
    EXPECT_FALSE(read.volume);
    EXPECT_TRUE(read.is_cancelled);
    EXPECT_GE(last, 0.0);
}

TEST_F(Waiting_Series, with_two_files_of_one_identifier_is_looked_into_at_once) {
    Write(7, Slice(0, 10).File());
    const std::filesystem::path path = folder.path;
    const Image_Folder with_copy = Image_Folder_Open(std::span(&path, 1), {}, {}, 0);
    ASSERT_EQ(with_copy.volumes.size(), 1U);
    EXPECT_EQ(with_copy.volumes[0].volume.nz, 3);
    ASSERT_EQ(with_copy.problems.size(), 1U);
    EXPECT_EQ(with_copy.problems[0].reason, "holds the same image as 0.dcm");
    EXPECT_EQ(Expect_Same_By_Heads(path, Image_Folder_Open(std::span(&path, 1))), 1);
}

TEST_F(Waiting_Series, is_given_up_while_heads_are_read) {
    const std::filesystem::path path = folder.path;
    const Image_Folder given_up = Image_Folder_Open(
        std::span(&path, 1), [](double) { return false; }, {}, 0);
    EXPECT_TRUE(given_up.is_cancelled);
    EXPECT_THAT(given_up.volumes, IsEmpty());
}

TEST_F(Waiting_Series, beside_other_files_is_listed_while_these_are_read) {
    Nifti_Bytes nifti;
    nifti.dim = {3, 2, 1, 1, 1, 1, 1, 1};
    nifti.Add(std::uint8_t{1});
    nifti.Add(std::uint8_t{2});
    File_Put(folder / "0a.nii", nifti.File());
    File_Put(folder / "frames.dcm", Slice(0, 1).Pixels_8({1, 2, 3, 4}, 2, 1).Text(TAG_FRAMES, "IS", "2").File());
    File_Put(folder / "text.txt", Bytes(300, 'x'));
    const std::filesystem::path path = folder.path;
    double last = -1;
    const auto rises = [&](double share) {
        EXPECT_GE(share, last);
        EXPECT_LE(share, 1.0);
        last = share;
        return true;
    };
    listed = Image_Folder_Open(std::span(&path, 1), rises, {}, 0);
    ASSERT_EQ(listed.volumes.size(), 3U);
    EXPECT_EQ(std::ranges::count_if(listed.volumes, [](const auto& one) { return !one.waiting.empty(); }), 1);
    EXPECT_EQ(Expect_Same_By_Heads(path, Image_Folder_Open(std::span(&path, 1))), 1);
    EXPECT_EQ(last, 1.0);
}

}  // namespace

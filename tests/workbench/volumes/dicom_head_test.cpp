#include "workbench/volumes/dicom_head.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/workbench/volumes/coded_frames.h"
#include "tests/workbench/volumes/dicom_bytes.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/dicom_series.h"

using namespace volumes;

namespace {

class Dicom_Heads : public testing::Test {
  protected:
    Dicom_Head Read(const Bytes& bytes) {
        const std::filesystem::path path = folder / "file";
        File_Put(path, bytes);
        return Dicom_Head_Read(path, room);
    }
    /** The head beside what reading the whole file gives. */
    void Expect_Same(const Bytes& bytes, const Bytes& whole_bytes) {
        const Dicom_Head head = Read(bytes);
        const Dicom_Result whole = Dicom_Read(whole_bytes);
        ASSERT_TRUE(whole.image) << whole.error;
        ASSERT_TRUE(head.image);
        const Dicom_Image& image = *whole.image;
        EXPECT_EQ(head.image->volume.nx, image.volume.nx);
        EXPECT_EQ(head.image->volume.ny, image.volume.ny);
        EXPECT_EQ(head.image->volume.spacing, image.volume.spacing);
        EXPECT_EQ(head.image->volume.affine, image.volume.affine);
        EXPECT_EQ(head.image->volume.encoding, image.volume.encoding);
        EXPECT_TRUE(head.image->volume.levels.empty());
        EXPECT_EQ(head.image->moment, image.moment);
        EXPECT_EQ(Identity_Of(*head.image), Identity_Of(image));
        EXPECT_EQ(head.image->origin.series, image.origin.series);
        EXPECT_EQ(head.image->origin.instance_number, image.origin.instance_number);
        EXPECT_EQ(head.warnings, whole.warnings);
    }
    void Expect_Same(const Bytes& bytes) { Expect_Same(bytes, bytes); }
    static Dicom_Bytes Slice() {
        Dicom_Bytes bytes;
        bytes.Pixels_16(std::vector<std::uint16_t>(64 * 32, 7), 64, 32).Place(3, 4, 5);
        bytes.Text(TAG_PIXEL_SPACING, "DS", "0.5\\0.25");
        return bytes;
    }
    Temporary_Folder folder;
    Reading_Room room;
};

TEST_F(Dicom_Heads, say_the_same_as_the_whole_file) {
    Expect_Same(Slice().File());
    Expect_Same(Slice().Text(TAG_PHOTOMETRIC, "CS", "MONOCHROME1").File());
}

TEST_F(Dicom_Heads, are_there_although_the_pixels_are_cut_off) {
    const Bytes bytes = Slice().File();
    const Bytes cut(bytes.begin(), bytes.end() - 64 * 32);
    ASSERT_FALSE(Dicom_Read(cut).image);
    Expect_Same(cut, bytes);
}

TEST_F(Dicom_Heads, longer_than_what_is_read_at_first_are_read_to_their_end) {
    for (const std::size_t length : {std::size_t{15'000}, std::size_t{16'000}, std::size_t{100'000}}) {
        // Before the place and the size of the picture.
        Expect_Same(Slice().Raw(0x00091010, "OB", Bytes(length, 1)).File());
    }
    EXPECT_FALSE(Read(Slice().Raw(0x00091010, "OB", Bytes(1'100'000, 1)).File()).image) << "is read whole";
}

TEST_F(Dicom_Heads, end_anywhere_in_what_is_read_at_first) {
    // Every element of the head, and the tag of the pixels, comes to lie across the end of the first piece once.
    const std::size_t plain = Slice().File().size() - 64 * 32 * 2;
    constexpr std::size_t first_piece = std::size_t{1} << 14U;
    for (std::size_t length = first_piece - plain - 40; length <= first_piece; length += 2) {
        const Dicom_Head head = Read(Slice().Raw(0x00091010, "OB", Bytes(length, 1)).File());
        ASSERT_TRUE(head.image) << length;
        ASSERT_EQ(head.image->volume.nx, 64) << length;
        ASSERT_EQ(head.image->place.corner[2], 5) << length;
        ASSERT_EQ(head.image->volume.spacing[0], 0.25) << length;
    }
}

TEST_F(Dicom_Heads, of_compressed_files_are_read) {
    Expect_Same(
        Dicom_Bytes().Syntax(Dicom_Bytes::RUN_LENGTH).Fragments({Run_Length_Of({{10, 20, 30, 40, 50, 60}})}).File());
}

TEST_F(Dicom_Heads, leave_to_the_whole_file_what_is_not_one_plain_picture) {
    EXPECT_FALSE(Read(Bytes(500, 'x')).image);
    EXPECT_FALSE(Read({}).image);
    EXPECT_FALSE(Dicom_Head_Read(folder / "absent", room).image);
    EXPECT_FALSE(Read(Gzip(Slice().File())).image);
    EXPECT_FALSE(Read(Slice().Remove(TAG_ROWS).File()).image);
    EXPECT_FALSE(Read(Slice().Remove(TAG_PIXELS).File()).image);
    // An element of a high number before the place: what stands behind it would be missed.
    Bytes disordered = Slice().File();
    const std::vector<std::uint8_t> place = {0x20, 0x00, 0x32, 0x00};
    const auto at = std::search(disordered.begin(), disordered.end(), place.begin(), place.end());
    const std::vector<std::uint8_t> high = {0x00, 0x90, 0x10, 0x10, 'L', 'O', 2, 0, 'x', ' '};
    disordered.insert(at, high.begin(), high.end());
    ASSERT_TRUE(Dicom_Read(disordered).image);
    EXPECT_FALSE(Read(disordered).image);
    EXPECT_FALSE(Read(Slice().Text(TAG_FRAMES, "IS", "2").File()).image);
    EXPECT_FALSE(Read(Slice().Text(TAG_FRAMES, "IS", "2000000000").File()).image);
    EXPECT_FALSE(
        Read(Slice().Short(TAG_BITS_ALLOCATED, 32).Short(TAG_BITS_STORED, 32).Short(TAG_HIGH_BIT, 31).File()).image);
    EXPECT_FALSE(Read(Slice().Sequence(0x52009229, {Dicom_Bytes().Clear().Elements()}).File()).image);
}

}  // namespace

// JPEG 2000 pictures of which a part is missing, and those that would take more than they are worth.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "tests/workbench/volumes/coded_frames.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/dicom_reader.h"

using namespace volumes;

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* TOLD = "was decoded with errors (frame 1): its picture may be damaged";
constexpr const char* NOT_READ = "(frame 1: its beginning is damaged or of a form that is not read)";

Bytes Stream_Of(const std::string& digits) {
    Bytes stream;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        stream.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(at, 2), nullptr, 16)));
    }
    return stream;
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes whole;
    for (const Bytes& part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

// All by opj_compress. 8 bits, 6 x 5 pixels in two tiles of 3 x 5.
const Bytes END = Stream_Of("ffd9");
const Bytes TILES_HEAD = Stream_Of(
    "ff4fff510029000000000006000000050000000000000000000000030000000500000000000000000001070101ff52000c0000000100000404"
    "0001ff5c00044040ff640025000143726561746564206279204f70656e4a5045472076657273696f6e20322e352e30");
const Bytes LEFT_TILE = Stream_Of("ff90000a0000000000210001ff93df80801201eccf5ecf5ec75bc2880e254df97f");
const Bytes RIGHT_TILE = Stream_Of("ff90000a0001000000200001ff93cfb43c11f885fbfd9a985125bdc58581a13f");
// The same of two resolutions, each in a part of its own: of the left tile, then of the right one.
const Bytes PARTS_HEAD = Stream_Of(
    "ff4fff510029000000000006000000050000000000000000000000030000000500000000000000000001070101ff52000c0000000100010404"
    "0001ff5c00074040484850ff640025000143726561746564206279204f70656e4a5045472076657273696f6e20322e352e30");
const Bytes LEFT_COARSE = Stream_Of("ff90000a0000000000180002ff93df8038069079ba03fedf");
const Bytes LEFT_FINE = Stream_Of("ff90000a00000000000f0102ff9380");
const Bytes RIGHT_COARSE = Stream_Of("ff90000a0001000000150002ff93cfb4100d6565c0");
const Bytes RIGHT_FINE = Stream_Of("ff90000a0001000000160102ff93c1f3840008b60dd9");
// 512 x 512 pixels of 0.
const Bytes BLACK = Stream_Of(
    "ff4fff510029000000000200000002000000000000000000000002000000020000000000000000000001070101ff52000c0000000100050404"
    "0001ff5c00134040484850484850484850484850484850ff640025000143726561746564206279204f70656e4a5045472076657273696f6e20"
    "322e352e30ff90000a00000000001d0001ff93df8038115054aff4c87f8080808080ffd9");

constexpr std::size_t SIDES_AT = 8;        // of the picture: width, height
constexpr std::size_t TILE_SIDES_AT = 24;  // width, height
constexpr std::size_t COMPONENT_NB_AT = 40;

const std::vector<std::int32_t>& Tile_Levels() {
    static const std::vector<std::int32_t> levels = {0,   20,  40,  60,  80,  100, 30,  50,  70,  90,
                                                     110, 130, 60,  80,  100, 120, 140, 160, 90,  110,
                                                     130, 150, 170, 190, 120, 140, 160, 180, 200, 220};
    return levels;
}

Dicom_Bytes File_Of(const Bytes& stream, std::uint16_t width = CODED_WIDTH, std::uint16_t height = CODED_HEIGHT) {
    Bytes even = stream;
    even.resize(even.size() + even.size() % 2, 0);
    Dicom_Bytes bytes;
    bytes.Syntax("1.2.840.10008.1.2.4.90").Short(TAG_SIGNED, 0).Short(TAG_BITS_ALLOCATED, 8).Short(TAG_BITS_STORED, 8);
    return bytes.Short(TAG_HIGH_BIT, 7).Short(TAG_COLUMNS, width).Short(TAG_ROWS, height).Fragments({even});
}

/** Whether a picture is told to be damaged, or is none. */
bool Is_Told(const Bytes& stream) {
    const Dicom_Result result = Dicom_Read(File_Of(stream).File());
    return !result.image || std::ranges::count(result.warnings, TOLD) == 1;
}

Bytes With_Number(Bytes stream, std::size_t at, std::uint32_t number) {
    for (int byte = 3; byte >= 0; --byte) {
        stream[at++] = static_cast<std::uint8_t>(number >> 8 * byte);
    }
    return stream;
}

TEST(Dicom_Jpeg_2000, tiles_make_up_a_picture) {
    for (const Bytes& stream :
         {Joined({TILES_HEAD, LEFT_TILE, RIGHT_TILE, END}), Joined({TILES_HEAD, RIGHT_TILE, LEFT_TILE, END}),
          Joined({PARTS_HEAD, LEFT_COARSE, LEFT_FINE, RIGHT_COARSE, RIGHT_FINE, END}),
          Joined({PARTS_HEAD, LEFT_COARSE, RIGHT_COARSE, LEFT_FINE, RIGHT_FINE, END})}) {
        const Dicom_Result result = Dicom_Read(File_Of(stream).File());
        ASSERT_TRUE(result.image) << result.error;
        EXPECT_EQ(result.image->volume.levels, Tile_Levels());
        EXPECT_THAT(result.warnings, IsEmpty());
    }
}

TEST(Dicom_Jpeg_2000, a_last_part_may_reach_to_the_end) {
    constexpr std::size_t size_at = 6;
    for (const std::size_t filling : {0U, 3U}) {
        const Bytes stream = Joined({TILES_HEAD, LEFT_TILE, With_Number(RIGHT_TILE, size_at, 0), END, Bytes(filling)});
        const Dicom_Result result = Dicom_Read(File_Of(stream).File());
        ASSERT_TRUE(result.image) << result.error;
        EXPECT_EQ(result.image->volume.levels, Tile_Levels());
        EXPECT_THAT(result.warnings, IsEmpty());
    }
    EXPECT_TRUE(Is_Told(Joined({TILES_HEAD, With_Number(LEFT_TILE, size_at, 0), RIGHT_TILE, END})));
}

TEST(Dicom_Jpeg_2000, missing_tiles_are_told) {
    EXPECT_TRUE(Is_Told(Joined({TILES_HEAD, LEFT_TILE, END})));
    EXPECT_TRUE(Is_Told(Joined({TILES_HEAD, RIGHT_TILE, END})));
    EXPECT_TRUE(Is_Told(Joined({TILES_HEAD, END})));
    EXPECT_TRUE(Is_Told(Joined({PARTS_HEAD, LEFT_COARSE, LEFT_FINE, RIGHT_COARSE, END})));
    EXPECT_TRUE(Is_Told(Joined({PARTS_HEAD, LEFT_COARSE, RIGHT_COARSE, RIGHT_FINE, END})));
    EXPECT_TRUE(Is_Told(Joined({PARTS_HEAD, LEFT_FINE, RIGHT_COARSE, RIGHT_FINE, END})));
}

TEST(Dicom_Jpeg_2000, two_joined_streams_are_told) {
    const Bytes tiles = Joined({TILES_HEAD, LEFT_TILE, RIGHT_TILE, END});
    EXPECT_TRUE(Is_Told(Joined({tiles, tiles})));
    EXPECT_TRUE(Is_Told(Joined({tiles, Bytes(2), tiles})));
    const Coded_Sample& boxed = Coded_Sample_Of("JPEG 2000 file colours");
    const Bytes& stream = boxed.stream;
    const Bytes mark = Stream_Of("6a703263");
    const Bytes picture(std::search(stream.begin(), stream.end(), mark.begin(), mark.end()) - 4, stream.end());
    for (const Bytes& more : {picture, stream}) {
        const Dicom_Result result = Dicom_Read(Coded_File(boxed, {Joined({stream, more})}).File());
        EXPECT_TRUE(!result.image || std::ranges::count(result.warnings, TOLD) == 1);
    }
}

TEST(Dicom_Jpeg_2000, a_file_may_have_parts_behind_its_picture_but_no_rubbish) {
    const Coded_Sample& boxed = Coded_Sample_Of("JPEG 2000 file colours");
    const Bytes& stream = boxed.stream;
    const Bytes note = Stream_Of("0000000a786d6c203c2f");  // of the kind "xml "
    for (const Bytes& more : {Bytes(), note, Joined({note, note}), Bytes(4), Joined({note, Bytes(12)})}) {
        const Dicom_Result result = Dicom_Read(Coded_File(boxed, {Joined({stream, more})}).File());
        ASSERT_TRUE(result.image) << result.error;
        EXPECT_EQ(result.image->volume.levels, boxed.levels);
        EXPECT_THAT(result.warnings, IsEmpty());
    }
    const Bytes cut(note.begin(), note.end() - 2);
    for (const Bytes& more : {cut, Bytes({0, 0, 0, 0, 1, 2, 3, 4}), Bytes({9, 9})}) {
        EXPECT_THAT(Dicom_Read(Coded_File(boxed, {Joined({stream, more})}).File()).warnings, ElementsAre(TOLD));
    }
}

TEST(Dicom_Jpeg_2000, a_picture_of_one_value_takes_few_bytes) {
    constexpr std::uint16_t side = 512;
    const Dicom_Result result = Dicom_Read(File_Of(BLACK, side, side).File());
    ASSERT_TRUE(result.image) << result.error;
    EXPECT_THAT(result.image->volume.levels, Each(0));
    EXPECT_THAT(result.warnings, IsEmpty());
}

TEST(Dicom_Jpeg_2000, what_would_take_more_than_it_is_worth_is_refused) {
    const Bytes tiles = Joined({TILES_HEAD, LEFT_TILE, RIGHT_TILE, END});
    const auto error_of = [](const Bytes& stream, std::uint16_t width, std::uint16_t height) {
        const Dicom_Result result = Dicom_Read(File_Of(stream, width, height).File());
        EXPECT_FALSE(result.image.has_value());
        return result.error;
    };
    const auto with_sides = [](const Bytes& stream, std::size_t at, std::uint32_t width, std::uint32_t height) {
        return With_Number(With_Number(stream, at, width), at + 4, height);
    };
    // Tiles of no size, and too many of them: 4097 where 4096 would do.
    EXPECT_THAT(error_of(with_sides(tiles, TILE_SIDES_AT, 0, 5), 6, 5), HasSubstr(NOT_READ));
    EXPECT_THAT(error_of(with_sides(tiles, TILE_SIDES_AT, 3, 0), 6, 5), HasSubstr(NOT_READ));
    const Bytes many = with_sides(tiles, TILE_SIDES_AT, 1, 1);
    EXPECT_THAT(error_of(with_sides(many, SIDES_AT, 241, 17), 241, 17), HasSubstr(NOT_READ));
    EXPECT_TRUE(Is_Told(with_sides(many, SIDES_AT, 64, 64)));
    // Sides that no file can tell, and a picture of many pixels from few bytes.
    EXPECT_THAT(error_of(with_sides(tiles, SIDES_AT, 65536, 5), 6, 5), HasSubstr(NOT_READ));
    const Bytes large = with_sides(with_sides(tiles, SIDES_AT, 20000, 20000), TILE_SIDES_AT, 20000, 20000);
    EXPECT_THAT(error_of(large, 20000, 20000), HasSubstr(NOT_READ));
    for (const unsigned components : {0U, 2U, 4U}) {
        Bytes other = tiles;
        other[COMPONENT_NB_AT + 1] = static_cast<std::uint8_t>(components);
        EXPECT_THAT(error_of(other, 6, 5), HasSubstr(NOT_READ));
    }
}

}  // namespace

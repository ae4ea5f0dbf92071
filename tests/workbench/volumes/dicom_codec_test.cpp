// Pixels that a codec has compressed, and those of one bit and of floating-point numbers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "tests/workbench/volumes/coded_frames.h"
#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/dicom_reader.h"

using namespace volumes;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* TOLD = "was decoded with errors (frame 1): its picture may be damaged";

Dicom_Result Read(const Dicom_Bytes& bytes) {
    Dicom_Result result = Dicom_Read(bytes.File());
    EXPECT_EQ(result.error, "");
    if (result.image) {
        Expect_Sound(result.image->volume);
    }
    return result;
}

std::vector<std::int32_t> Levels_Of(const Dicom_Bytes& bytes) {
    const Dicom_Result result = Read(bytes);
    const Voxel_Levels levels = result.image ? result.image->volume.levels : Voxel_Levels();
    return {levels.begin(), levels.end()};
}

std::string Error_Of(const Dicom_Bytes& bytes) {
    const Dicom_Result result = Dicom_Read(bytes.File());
    EXPECT_FALSE(result.image.has_value());
    return result.error;
}

/** The first `size` bytes. */
Bytes Cut(const Bytes& stream, std::size_t size) {
    return {stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size)};
}

TEST(Dicom_Codec, frames_of_every_codec_are_what_other_programs_decode) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        SCOPED_TRACE(sample.name);
        const Dicom_Result result = Read(Coded_File(sample, {sample.stream}));
        ASSERT_TRUE(result.image);
        const Volume& volume = result.image->volume;
        EXPECT_EQ(volume.levels, sample.levels);
        EXPECT_EQ(volume.color, sample.Is_Color());
        EXPECT_EQ(volume.scalar_type, sample.Is_Color() ? "rgb24" : "uint" + std::to_string(sample.bits_allocated));
        EXPECT_THAT(result.warnings, IsEmpty());
    }
}

TEST(Dicom_Codec, a_stream_cut_anywhere_is_refused_or_told) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        SCOPED_TRACE(sample.name);
        // JPEG-LS ends with a byte of filling; bytes of filling before an end marker are no loss.
        std::size_t whole = sample.stream.size();
        whole -= sample.stream.back() == 0 ? 1 : 0;
        for (std::size_t size = 0; size < whole; ++size) {
            const Dicom_Result result = Dicom_Read(Coded_File(sample, {Cut(sample.stream, size)}).File());
            EXPECT_TRUE(!result.image || std::ranges::count(result.warnings, TOLD) == 1) << size << " bytes";
        }
    }
}

TEST(Dicom_Codec, bytes_behind_the_end_are_told_and_filling_is_not) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        if (sample.name == "JPEG 2000 file colours") {
            continue;  // parts of the file may follow the picture
        }
        SCOPED_TRACE(sample.name);
        Bytes longer = sample.stream;
        longer.insert(longer.end(), 4, 0);
        EXPECT_THAT(Read(Coded_File(sample, {longer})).warnings, IsEmpty());
        longer.insert(longer.end(), {1, 2, 3, 4});
        const Dicom_Result result = Read(Coded_File(sample, {longer}));
        ASSERT_TRUE(result.image);
        EXPECT_EQ(result.image->volume.levels, sample.levels);
        EXPECT_THAT(result.warnings, ElementsAre(TOLD));
    }
}

TEST(Dicom_Codec, damaged_streams_end_in_a_picture_or_a_reason) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        SCOPED_TRACE(sample.name);
        for (std::size_t at = 0; at < sample.stream.size(); ++at) {
            for (const int flipped : {0x01, 0x80, 0xFF}) {
                Bytes damaged = sample.stream;
                damaged[at] ^= static_cast<std::uint8_t>(flipped);
                const Dicom_Result result = Dicom_Read(Coded_File(sample, {damaged}).File());
                ASSERT_NE(result.image.has_value(), !result.error.empty());
                if (result.image) {
                    Expect_Sound(result.image->volume);
                }
            }
        }
    }
}

TEST(Dicom_Codec, errors_that_the_codec_meets_are_told) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG baseline 8");
    Bytes damaged = sample.stream;
    // In the middle of the coded data a marker that does not belong there.
    damaged[damaged.size() - 8] = 0xFF;
    damaged[damaged.size() - 7] = 0xD3;
    const Dicom_Result result = Read(Coded_File(sample, {damaged}));
    EXPECT_THAT(result.warnings, ElementsAre(TOLD));
}

TEST(Dicom_Codec, a_size_of_its_own_is_refused) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        SCOPED_TRACE(sample.name);
        EXPECT_THAT(Error_Of(Coded_File(sample, {sample.stream}).Short(TAG_ROWS, 4)),
                    HasSubstr("cannot be decoded (frame 1: its own size is 6 x 5 pixels of "));
        EXPECT_THAT(Error_Of(Coded_File(sample, {sample.stream}).Short(TAG_COLUMNS, 60000)), HasSubstr("its own size"));
    }
    const Coded_Sample& grey = Coded_Sample_Of("JPEG baseline 8");
    const Coded_Sample& colours = Coded_Sample_Of("JPEG baseline colours");
    EXPECT_THAT(Error_Of(Coded_File(colours, {grey.stream})), HasSubstr("6 x 5 pixels of 1 sample)"));
    EXPECT_THAT(Error_Of(Coded_File(grey, {colours.stream})), HasSubstr("6 x 5 pixels of 3 samples)"));
}

TEST(Dicom_Codec, frames_that_differ_in_depth_are_refused) {
    const Coded_Sample& deep = Coded_Sample_Of("JPEG lossless 16");
    const Bytes& flat = Coded_Sample_Of("JPEG baseline 8").stream;
    EXPECT_THAT(Error_Of(Coded_File(deep, {deep.stream, flat}, 2)),
                HasSubstr("(frame 2: another size or depth than the file says)"));
}

TEST(Dicom_Codec, depth_is_the_streams) {
    // 16 bits told, 12 there: sign and lookup go by those that are there.
    const Coded_Sample& sample = Coded_Sample_Of("JPEG extended 12");
    Dicom_Bytes bytes = Coded_File(sample, {sample.stream});
    bytes.Short(TAG_BITS_STORED, 16).Short(TAG_HIGH_BIT, 15).Short(TAG_SIGNED, 1);
    std::vector<std::int32_t> wanted = sample.levels;
    for (std::int32_t& level : wanted) {
        level -= level >= 2048 ? 4096 : 0;
    }
    EXPECT_EQ(Levels_Of(bytes), wanted);
}

TEST(Dicom_Codec, fragments_are_joined_and_told_apart) {
    for (const Coded_Sample& sample : Coded_Samples()) {
        SCOPED_TRACE(sample.name);
        Bytes even = sample.stream;  // fragments are of even length, and only the last may be filled
        even.resize(even.size() + even.size() % 2, 0);
        const std::size_t half = even.size() / 4 * 2;
        const Bytes first = Cut(even, half);
        const Bytes second(even.begin() + static_cast<std::ptrdiff_t>(half), even.end());
        EXPECT_EQ(Levels_Of(Coded_File(sample, {first, second})), sample.levels);
        std::vector<std::int32_t> twice = sample.levels;
        twice.insert(twice.end(), sample.levels.begin(), sample.levels.end());
        EXPECT_EQ(Levels_Of(Coded_File(sample, {first, second, even}, 2)), twice);
        EXPECT_EQ(Levels_Of(Coded_File(sample, {even, first, second}, 2)), twice);
        EXPECT_THAT(Error_Of(Coded_File(sample, {even}, 2)), HasSubstr("fewer compressed frames"));
        EXPECT_EQ(Levels_Of(Coded_File(sample, {even, first, second}, 0)), twice);
    }
}

TEST(Dicom_Codec, many_frames_keep_their_order) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG 2000 16");
    const Coded_Sample& lossy = Coded_Sample_Of("JPEG 2000 lossy 12");
    Bytes other = lossy.stream;
    constexpr std::size_t depth_at = 42;  // the highest bit's number
    ASSERT_EQ(other[depth_at], 11);
    other[depth_at] = 15;
    const std::vector<std::int32_t> changed = Levels_Of(Coded_File(sample, {other}));
    ASSERT_NE(changed, sample.levels);
    constexpr int frames = 60;
    std::vector<Bytes> streams;
    std::vector<std::int32_t> wanted;
    for (int frame = 0; frame < frames; ++frame) {
        const bool is_other = frame % 3 == 1 || frame > 50;
        streams.push_back(is_other ? other : sample.stream);
        const std::vector<std::int32_t>& levels = is_other ? changed : sample.levels;
        wanted.insert(wanted.end(), levels.begin(), levels.end());
    }
    EXPECT_EQ(Levels_Of(Coded_File(sample, streams, frames)), wanted);
    streams[40].resize(20);
    streams[44].resize(20);
    EXPECT_THAT(Error_Of(Coded_File(sample, streams, frames)), HasSubstr("(frame 41: "));
}

TEST(Dicom_Codec, progress_rises_to_its_end_and_may_give_up) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG-LS 16");
    const Bytes file = Coded_File(sample, std::vector<Bytes>(30, sample.stream), 30).File();
    std::vector<double> told;
    const Dicom_Result whole = Dicom_Read(file, {}, [&](double done) {
        told.push_back(done);
        return true;
    });
    ASSERT_TRUE(whole.image);
    EXPECT_FALSE(whole.is_cancelled);
    ASSERT_FALSE(told.empty());
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_EQ(told.back(), 1.0);
    const Dicom_Result given_up = Dicom_Read(file, {}, [](double) { return false; });
    EXPECT_TRUE(given_up.is_cancelled);
    EXPECT_FALSE(given_up.image);
    EXPECT_EQ(given_up.error, "was given up");
}

TEST(Dicom_Codec, room_is_asked_for_before_anything_is_decoded) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG-LS 16");
    const Dicom_Result result = Dicom_Read(Coded_File(sample, {sample.stream}).File(), Load_Limits{50});
    EXPECT_THAT(result.error, HasSubstr("needs more memory than the limit"));
}

TEST(Dicom_Codec, pictures_of_very_many_scans_are_refused) {
    const Coded_Sample& sample = Coded_Sample_Of("JPEG baseline 8");
    constexpr std::array<std::uint8_t, 2> scan_mark = {0xFF, 0xDA};
    const auto scan = std::search(sample.stream.begin(), sample.stream.end(), scan_mark.begin(), scan_mark.end());
    ASSERT_NE(scan, sample.stream.end());
    const auto end = sample.stream.end() - 2;
    const Bytes one(scan, end);
    for (const int scans : {100, 101}) {
        Bytes stream(sample.stream.begin(), scan);
        for (int at = 0; at < scans; ++at) {
            stream.insert(stream.end(), one.begin(), one.end());
        }
        stream.insert(stream.end(), end, sample.stream.end());
        stream.resize(stream.size() + stream.size() % 2, 0);
        const Dicom_Result result = Dicom_Read(Coded_File(sample, {stream}).File());
        EXPECT_EQ(result.error.find("more than 100 scans") != std::string::npos, scans > 100) << result.error;
    }
}

TEST(Dicom_Codec, other_compression_is_named) {
    for (const auto& [uid, name] : {std::pair("1.2.840.10008.1.2.4.92", "JPEG 2000 "),
                                    std::pair("1.2.840.10008.1.2.4.100", "MPEG2 Main Profile")}) {
        EXPECT_THAT(Error_Of(Dicom_Bytes().Fragments({{1, 2, 3, 4}}).Syntax(uid)),
                    HasSubstr(std::string("compressed in a way that is not decoded (") + name));
    }
}

// Pixels of one bit

TEST(Dicom_Codec, pixels_of_one_bit_follow_without_gaps) {
    Dicom_Bytes bytes;
    bytes.Short(TAG_COLUMNS, 3).Short(TAG_ROWS, 3).Text(TAG_FRAMES, "IS", "3").Short(TAG_SIGNED, 0);
    bytes.Short(TAG_BITS_ALLOCATED, 1).Short(TAG_BITS_STORED, 1).Short(TAG_HIGH_BIT, 0);
    // The lowest bit is the first pixel: 27 of them.
    bytes.Raw(TAG_PIXELS, "OB", {0b10101001, 0b00000011, 0b11111000, 0b00000101});
    const std::vector<std::int32_t> levels = Levels_Of(bytes);
    EXPECT_THAT(levels, ElementsAre(1, 0, 0, 1, 0, 1, 0, 1, 1,  //
                                    1, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                    0, 1, 1, 1, 1, 1, 1, 0, 1));
    // They have no sign, whatever the file says.
    bytes.Short(TAG_SIGNED, 1);
    EXPECT_EQ(Levels_Of(bytes), levels);
    bytes.Raw(TAG_PIXELS, "OB", {1, 2});
    EXPECT_THAT(Error_Of(bytes), HasSubstr("has fewer pixels than it says (2 of 4 bytes)"));
}

// Floating-point pixels

template <class Real>
Bytes Reals(const std::vector<Real>& values) {
    Bytes bytes(values.size() * sizeof(Real));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

Dicom_Bytes Real_File(std::uint16_t bits) {
    Dicom_Bytes bytes;
    bytes.Remove(TAG_PIXELS).Remove(TAG_BITS_STORED).Remove(TAG_HIGH_BIT).Remove(TAG_SIGNED);
    return bytes.Short(TAG_COLUMNS, 2).Short(TAG_ROWS, 2).Short(TAG_BITS_ALLOCATED, bits);
}

std::vector<double> Greys_Of(const Volume& volume) {
    std::vector<double> greys;
    for (const std::int32_t level : volume.levels) {
        greys.push_back(level == LEVEL_OUTSIDE ? std::numeric_limits<double>::infinity() : volume.grey(level));
    }
    return greys;
}

TEST(Dicom_Codec, floating_point_pixels_are_greys) {
    Dicom_Bytes bytes = Real_File(32);
    bytes.Raw(TAG_FLOAT_PIXELS, "OF", Reals<float>({-1.5F, 0.25F, 8.0F, 2.5F}));
    const Dicom_Result single = Read(bytes);
    ASSERT_TRUE(single.image);
    EXPECT_EQ(single.image->volume.scalar_type, "float32");
    const std::vector<double> wanted = {-1.5, 0.25, 8.0, 2.5};
    const std::vector<double> found = Greys_Of(single.image->volume);
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        EXPECT_NEAR(found[at], wanted[at], single.image->volume.max_error + 1e-9);
    }
    constexpr std::uint32_t double_pixels = 0x7FE00009;
    Dicom_Bytes wide = Real_File(64);
    wide.Raw(double_pixels, "OD", Reals<double>({1e5, 3e5, -7.0, 2e5})).Text(TAG_SLOPE, "DS", "2");
    const Dicom_Result twice = Read(wide);
    ASSERT_TRUE(twice.image);
    EXPECT_EQ(twice.image->volume.scalar_type, "float64");
    EXPECT_THAT(Greys_Of(twice.image->volume), ElementsAre(2e5, 6e5, -14.0, 4e5));
    wide.Short(TAG_BITS_ALLOCATED, 32);
    EXPECT_THAT(Error_Of(wide), HasSubstr("floating-point pixels of 32 bits"));
}

TEST(Dicom_Codec, floating_point_padding_is_outside_and_no_number_is_told) {
    constexpr std::uint32_t padding = 0x00280122;
    Dicom_Bytes bytes = Real_File(32);
    bytes.Raw(padding, "FL", Reals<float>({-1000.0F}));
    bytes.Raw(TAG_FLOAT_PIXELS, "OF", Reals<float>({3.0F, -1000.0F, 4.0F, 5.0F}));
    const Dicom_Result padded = Read(bytes);
    ASSERT_TRUE(padded.image);
    EXPECT_THAT(Greys_Of(padded.image->volume), ElementsAre(3.0, std::numeric_limits<double>::infinity(), 4.0, 5.0));
    EXPECT_THAT(padded.warnings, IsEmpty());
    bytes.Raw(TAG_FLOAT_PIXELS, "OF", Reals<float>({3.0F, -1000.0F, NAN, 5.0F}));
    EXPECT_THAT(Read(bytes).warnings,
                Contains(HasSubstr("has 1 voxel that is no number; it is shown black and counts nowhere")));
}

TEST(Dicom_Codec, floating_point_padding_is_taken_to_its_last_bit) {
    constexpr std::uint32_t padding = 0x00280122;
    constexpr std::uint32_t double_padding = 0x00280123;
    constexpr std::uint32_t double_pixels = 0x7FE00009;
    constexpr double outside = std::numeric_limits<double>::infinity();
    constexpr double moderate = 1e6;  // others have no neighbour that is not far from all other values
    for (const float value : {-999.9F, -std::numeric_limits<float>::max(), 1e-7F / 3.0F}) {
        Dicom_Bytes bytes = Real_File(32);
        bytes.Raw(padding, "FL", Reals<float>({value}));
        const float other = std::abs(value) < moderate ? std::nextafter(value, 0.0F) : 3.0F;
        bytes.Raw(TAG_FLOAT_PIXELS, "OF", Reals<float>({1.0F, value, other, 2.0F}));
        const Dicom_Result result = Read(bytes);
        ASSERT_TRUE(result.image);
        const std::vector<double> greys = Greys_Of(result.image->volume);
        EXPECT_EQ(greys[1], outside) << value;
        EXPECT_EQ(std::ranges::count(greys, outside), 1) << value;
    }
    for (const double value : {-999.9, -std::numeric_limits<double>::max() / 3.0, 1.0 / 3.0}) {
        Dicom_Bytes bytes = Real_File(64);
        bytes.Raw(double_padding, "FD", Reals<double>({value}));
        const double other = std::abs(value) < moderate ? std::nextafter(value, 0.0) : 3.0;
        bytes.Raw(double_pixels, "OD", Reals<double>({1.0, value, other, 2.0}));
        const Dicom_Result result = Read(bytes);
        ASSERT_TRUE(result.image);
        const std::vector<double> greys = Greys_Of(result.image->volume);
        EXPECT_EQ(greys[1], outside) << value;
        EXPECT_EQ(std::ranges::count(greys, outside), 1) << value;
    }
}

}  // namespace

#include "workbench/volumes/nifti_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/workbench/volumes/loading.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/message_text.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// --- values

template <class Value>
struct Type_Case {
    int datatype;
    const char* name;
    std::vector<Value> values;
    bool exact;
};

// Loads the values in every version, byte order and scale, and compares grey with the plain formula.
template <class Value>
void Check_Type(const Type_Case<Value>& type) {
    double smallest = std::numeric_limits<double>::infinity();
    double largest = -smallest;
    for (const Value value : type.values) {
        smallest = std::min(smallest, static_cast<double>(value));
        largest = std::max(largest, static_cast<double>(value));
    }
    for (const int version : {1, 2}) {
        for (const bool big : {false, true}) {
            for (const std::array<double, 2> scale : {std::array{0.0, 9.0}, {1.0, 0.0}, {0.25, -7.0}, {-2.0, 3.0}}) {
                for (const bool compressed : {false, true}) {
                    SCOPED_TRACE(testing::Message()
                                 << type.name << " version " << version << " big " << big << " slope " << scale[0]);
                    Nifti_Bytes bytes;
                    bytes.version = version;
                    bytes.big = big;
                    bytes.dim = {1, static_cast<std::int64_t>(type.values.size()), 1, 1, 1, 1, 1, 1};
                    bytes.datatype = type.datatype;
                    bytes.bitpix = 8 * static_cast<int>(sizeof(Value));
                    bytes.slope = scale[0];
                    bytes.intercept = scale[1];
                    for (const Value value : type.values) {
                        bytes.Add(value);
                    }
                    const Load_Result result = Load(compressed ? Gzip(bytes.File()) : bytes.File());
                    ASSERT_THAT(result.error, IsEmpty());
                    const Volume& volume = *result.volume;
                    Expect_Sound(volume);
                    EXPECT_EQ(volume.scalar_type, type.name);
                    const double slope = scale[0] == 0 ? 1 : scale[0];
                    const double intercept = scale[0] == 0 ? 0 : scale[1];
                    const double step = (largest - smallest) / 65535 * std::fabs(slope);
                    EXPECT_NEAR(volume.max_error, type.exact ? 0 : step / 2, step * 1e-9);
                    for (std::size_t i = 0; i < type.values.size(); ++i) {
                        const double expected = static_cast<double>(type.values[i]) * slope + intercept;
                        const double rounding = std::max(std::fabs(expected), std::fabs(smallest * slope)) * 1.3e-7;
                        EXPECT_NEAR(volume.grey(volume.levels[i]), expected, volume.max_error + rounding)
                            << "voxel " << i;
                        if (type.exact) {
                            EXPECT_EQ(static_cast<double>(volume.levels[i]), static_cast<double>(type.values[i]));
                        }
                    }
                    if (!type.exact) {
                        EXPECT_EQ(volume.level_min, 0);
                        EXPECT_EQ(volume.level_max, 65535);
                    }
                }
            }
        }
    }
}

TEST(Nifti_Reader, keeps_the_values_of_integers_that_fit) {
    Check_Type<std::uint8_t>({2, "uint8", {0, 1, 127, 128, 255}, true});
    Check_Type<std::int8_t>({256, "int8", {0, 1, -1, 127, -128}, true});
    Check_Type<std::int16_t>({4, "int16", {0, 1, -1, 258, 32767, -32768}, true});
    Check_Type<std::uint16_t>({512, "uint16", {0, 1, 258, 32768, 65535}, true});
    Check_Type<std::int32_t>(
        {8, "int32", {0, 1, -1, 0x01020304, LEVEL_LARGEST, std::numeric_limits<std::int32_t>::min()}, true});
    Check_Type<std::uint32_t>({768, "uint32", {0, 1, 0x01020304, LEVEL_LARGEST}, true});
    Check_Type<std::int64_t>(
        {1024, "int64", {0, 1, -1, LEVEL_LARGEST, std::numeric_limits<std::int32_t>::min()}, true});
    Check_Type<std::uint64_t>({1280, "uint64", {0, 1, 0x01020304, LEVEL_LARGEST}, true});
}

TEST(Nifti_Reader, quantises_integers_that_do_not_fit) {
    Check_Type<std::int32_t>({8, "int32", {0, 5000, 1000000, LEVEL_LARGEST + 1}, false});
    Check_Type<std::uint32_t>({768, "uint32", {0, 5000, 1000000, 4000000000U}, false});
    Check_Type<std::int64_t>(
        {1024, "int64", {0, -7, 1234567890123456789, std::numeric_limits<std::int64_t>::min() + 1}, false});
    Check_Type<std::int64_t>({1024,
                              "int64",
                              {3, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()},
                              false});
    Check_Type<std::uint64_t>(
        {1280, "uint64", {0, 7, 1234567890123456789, std::numeric_limits<std::uint64_t>::max() - 1}, false});
}

TEST(Nifti_Reader, quantises_real_numbers) {
    Check_Type<float>({16, "float32", {0.0F, 0.1F, 0.2F, 1.0F, 0.333F}, false});
    Check_Type<float>({16, "float32", {-1000.5F, 3071.25F, 12.125F, 13.0F}, false});
    Check_Type<double>({64, "float64", {0.0, 0.1, -0.2, 1e-12, 0.75}, false});
    Check_Type<double>({64, "float64", {1e20, -1e20, 3.3e19}, false});
}

TEST(Nifti_Reader, separates_neighbours_in_a_narrow_range_of_huge_integers) {
    Nifti_Bytes bytes;
    bytes.datatype = 1280;
    bytes.bitpix = 64;
    bytes.dim = {1, 3, 1, 1, 1, 1, 1, 1};
    const std::uint64_t huge = std::uint64_t{1} << 63U;  // a double has no room for these last digits
    bytes.Add(huge);
    bytes.Add(huge + 1);
    bytes.Add(huge + 2);
    const Load_Result result = Load(bytes.File());
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_THAT(result.volume->levels, ElementsAre(0, 32768, 65535));
}

TEST(Nifti_Reader, gives_one_level_to_a_constant_image) {
    for (const int datatype : {16, 64, 1280}) {
        Nifti_Bytes bytes;
        bytes.datatype = datatype;
        bytes.bitpix = datatype == 16 ? 32 : 64;
        bytes.dim = {1, 2, 1, 1, 1, 1, 1, 1};
        for (int i = 0; i < 2; ++i) {
            if (datatype == 16) {
                bytes.Add(5e9F);
            } else if (datatype == 64) {
                bytes.Add(5e9);
            } else {
                bytes.Add(std::uint64_t{5000000000});
            }
        }
        const Load_Result result = Load(bytes.File());
        ASSERT_THAT(result.error, IsEmpty());
        Expect_Sound(*result.volume);
        EXPECT_THAT(result.volume->levels, ElementsAre(0, 0));
        EXPECT_EQ(result.volume->grey(0), 5e9F);
        EXPECT_EQ(result.volume->max_error, 0);
        EXPECT_EQ(result.volume->level_max, 0);
    }
}

TEST(Nifti_Reader, counts_values_that_are_no_number_and_leaves_them_outside) {
    const float nan = std::nanf("");
    const float infinity = std::numeric_limits<float>::infinity();
    Nifti_Bytes bytes;
    bytes.datatype = 16;
    bytes.bitpix = 32;
    bytes.dim = {1, 6, 1, 1, 1, 1, 1, 1};
    for (const float value : {2.0F, nan, infinity, 4.0F, -infinity, 3.0F}) {
        bytes.Add(value);
    }
    const Load_Result result = Load(bytes.File());
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_EQ(result.volume->nonfinite_nb, 3U);
    EXPECT_THAT(result.volume->levels, ElementsAre(2, LEVEL_OUTSIDE, LEVEL_OUTSIDE, 4, LEVEL_OUTSIDE, 3));
    EXPECT_EQ(result.volume->grey(2), 2.0F);
    EXPECT_TRUE(std::isnan(result.volume->grey(LEVEL_OUTSIDE)));
    ASSERT_EQ(result.warnings.size(), 1U);
    EXPECT_EQ(result.warnings[0], "test.nii has 3 voxels that are no number; they are shown black and count nowhere.");
}

TEST(Nifti_Reader, survives_nothing_but_no_numbers_and_the_whole_range_of_double) {
    Nifti_Bytes bytes;
    bytes.datatype = 64;
    bytes.bitpix = 64;
    bytes.dim = {1, 3, 1, 1, 1, 1, 1, 1};
    const double largest = std::numeric_limits<double>::max();
    for (const std::array<double, 3> values : {std::array{std::nan(""), std::nan(""), std::nan("")},
                                               {-largest, 0.0, largest},
                                               {0.0, std::numeric_limits<double>::denorm_min(), 0.0}}) {
        for (const double slope : {0.0, 1e30, 1e-30}) {
            bytes.voxels.clear();
            bytes.slope = slope;
            for (const double value : values) {
                bytes.Add(value);
            }
            const Load_Result result = Load(bytes.File());
            ASSERT_THAT(result.error, IsEmpty());
            Expect_Sound(*result.volume);
            if (values[2] == largest) {
                EXPECT_THAT(result.volume->levels, ElementsAre(0, 1, 2));
            }
        }
    }
}

TEST(Nifti_Reader, packs_colours) {
    for (const bool alpha : {false, true}) {
        Nifti_Bytes bytes;
        bytes.datatype = alpha ? 2304 : 128;
        bytes.bitpix = alpha ? 32 : 24;
        bytes.slope = 5;  // means nothing for colours
        bytes.dim = {2, 2, 1, 1, 1, 1, 1, 1};
        for (const std::array<std::uint8_t, 3> color : {std::array<std::uint8_t, 3>{1, 2, 3}, {250, 128, 7}}) {
            for (const std::uint8_t component : color) {
                bytes.Add(component);
            }
            if (alpha) {
                bytes.Add(std::uint8_t{255});
            }
        }
        const Load_Result result = Load(bytes.File());
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_TRUE(result.volume->color);
        EXPECT_THAT(result.volume->levels, ElementsAre(0x030201, 0x0780FA));
        EXPECT_EQ(result.volume->slope, 1);
        EXPECT_EQ(result.volume->level_min, 1);
        EXPECT_EQ(result.volume->level_max, 250);
        EXPECT_NEAR(result.volume->grey(0xFFFFFF), 255, 1e-4);
    }
}

// --- structure

TEST(Nifti_Reader, keeps_file_order_and_multiplies_further_dimensions) {
    Nifti_Bytes bytes;
    bytes.dim = {6, 2, 3, 2, 2, 1, 2, 1};
    bytes.pixdim[4] = 2;
    bytes.units = 2 + 8;
    for (int i = 0; i < 48; ++i) {
        bytes.Add(static_cast<std::uint8_t>(i));
    }
    const Load_Result result = Load(bytes.File());
    ASSERT_THAT(result.error, IsEmpty());
    const Volume& volume = *result.volume;
    EXPECT_EQ(volume.nt, 4);
    EXPECT_EQ(volume.time_step, 2);
    EXPECT_EQ(volume.levels[volume.Index(1, 2, 1, 3)], 47);
    EXPECT_EQ(volume.levels[volume.Index(1, 0, 0, 0)], 1);
    EXPECT_EQ(volume.levels[volume.Index(0, 1, 0, 0)], 2);
    EXPECT_EQ(volume.levels[volume.Index(0, 0, 1, 0)], 6);
    EXPECT_EQ(volume.levels[volume.Index(0, 0, 0, 1)], 12);
}

TEST(Nifti_Reader, loads_pairs_and_analyze) {
    for (const int version : {0, 1, 2}) {
        for (const bool compressed : {false, true}) {
            Nifti_Bytes bytes = Small_File();
            bytes.version = version;
            bytes.pair = true;
            bytes.vox_offset = 3;
            Bytes image(3 + bytes.voxels.size(), 99);
            std::copy(bytes.voxels.begin(), bytes.voxels.end(), image.begin() + 3);
            const Load_Result result =
                compressed ? Load_Pair(Gzip(bytes.Header()), Gzip(image)) : Load_Pair(bytes.Header(), image);
            ASSERT_THAT(result.error, IsEmpty());
            EXPECT_EQ(result.volume->levels[11], 110);
            image.pop_back();
            EXPECT_EQ(Load_Pair(bytes.Header(), image).error, "test.img is truncated: 11 of 12 voxels present.");
            EXPECT_EQ(Load_Pair(bytes.Header(), Bytes(2)).error, "test.img is truncated: 0 of 12 voxels present.");
            EXPECT_EQ(Load(bytes.Header()).error, "test.nii is only a header; the file with its voxels is missing.");
        }
    }
}

TEST(Nifti_Reader, finds_the_other_file_of_a_pair) {
    Nifti_Bytes bytes = Small_File();
    bytes.pair = true;
    Temporary_Folder folder;
    File_Put(folder / "plain.hdr", bytes.Header());
    File_Put(folder / "plain.img", bytes.voxels);
    File_Put(folder / "packed.hdr.gz", Gzip(bytes.Header()));
    File_Put(folder / "packed.img.gz", Gzip(bytes.voxels));
    File_Put(folder / "alone.hdr", bytes.Header());
    File_Put(folder / "alone.img.txt", bytes.voxels);
    File_Put(folder / "lonely.img", bytes.voxels);
    for (const char* name : {"plain.hdr", "plain.img", "packed.hdr.gz", "packed.img.gz"}) {
        const Load_Result result = Volume_Load(folder / name);
        EXPECT_THAT(result.error, IsEmpty());
        ASSERT_TRUE(result.volume.has_value());
        EXPECT_EQ(result.volume->levels[3], 30);
    }
    EXPECT_EQ(Volume_Load(folder / "alone.hdr").error,
              "alone.hdr is only a header; the file with its voxels is missing.");
    EXPECT_EQ(Volume_Load(folder / "lonely.img").error, "lonely.img is not a NIfTI file.");
}

TEST(Nifti_Reader, passes_over_extensions) {
    for (const bool compressed : {false, true}) {
        Nifti_Bytes bytes = Small_File();
        bytes.vox_offset = 352 + 16 + 32;
        bytes.extension = {1, 0, 0, 0};
        bytes.extension.resize(4 + 48);
        bytes.extension[4] = 16;
        bytes.extension[4 + 16] = 32;
        const auto load = [&] { return Load(compressed ? Gzip(bytes.File()) : bytes.File()); };
        Load_Result result = load();
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_THAT(result.warnings, IsEmpty());
        EXPECT_EQ(result.volume->levels[2], 20);
        for (const std::uint8_t wrong : Bytes{0, 8, 17, 48, 255}) {
            bytes.extension[4 + 16] = wrong;
            result = load();
            ASSERT_THAT(result.error, IsEmpty());
            EXPECT_EQ(result.volume->levels[2], 20) << "the voxels' place does not depend on extensions";
            EXPECT_THAT(result.warnings, ElementsAre(HasSubstr("extension of an impossible size")));
        }
        bytes.vox_offset = 352 + 16 + 3;
        bytes.extension.resize(4 + 16 + 3);
        result = load();
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_EQ(result.volume->levels[2], 20);
        EXPECT_THAT(result.warnings, ElementsAre(HasSubstr("extension that is too short")));
    }
}

// --- progress, names

TEST(Nifti_Reader, reports_rising_progress) {
    Nifti_Bytes bytes;
    bytes.dim = {3, 200, 200, 100, 1, 1, 1, 1};
    bytes.voxels.resize(4000000);
    for (const bool compressed : {false, true}) {
        std::vector<double> fractions;
        const Load_Result result = Load(compressed ? Gzip(bytes.File()) : bytes.File(), {}, [&](double fraction) {
            fractions.push_back(fraction);
            return true;
        });
        ASSERT_TRUE(result.volume.has_value());
        EXPECT_GE(fractions.size(), 5U);
        EXPECT_EQ(fractions.front(), 0.0);
        EXPECT_EQ(fractions.back(), 1.0);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    }
}

TEST(Nifti_Reader, stops_when_told_at_any_report) {
    Nifti_Bytes bytes;
    bytes.dim = {3, 200, 200, 100, 1, 1, 1, 1};
    bytes.voxels.resize(4000000);
    const Bytes file = Gzip(bytes.File());
    bool cancelled = true;
    int stop_at = 0;
    for (; cancelled; ++stop_at) {
        int call = 0;
        const Load_Result result = Load(file, {}, [&](double) { return call++ < stop_at; });
        cancelled = call > stop_at;
        EXPECT_EQ(result.cancelled, cancelled);
        EXPECT_EQ(result.volume.has_value(), !cancelled);
        EXPECT_EQ(result.error, cancelled ? "Loading test.nii was cancelled." : "");
    }
    EXPECT_GE(stop_at, 5);
}

TEST(Nifti_Reader, keeps_exceptions_of_the_progress_callback_inside) {
    const Load_Result result = Load(Small_File().File(), {}, [](double) -> bool { throw std::runtime_error("no"); });
    EXPECT_FALSE(result.volume.has_value());
    EXPECT_EQ(result.error, "test.nii could not be loaded: no.");
}

TEST(Nifti_Reader, loads_files_with_any_name) {
    Temporary_Folder folder;
    const std::u8string name = u8"Schädel-скан 日本.nii.gz";
    const std::string text(name.begin(), name.end());
    File_Put(folder / std::filesystem::path(name), Gzip(Small_File().File()));
    const std::u8string folder_name = folder.path.u8string();
    const std::string whole = std::string(folder_name.begin(), folder_name.end()) + "/" + text;
    const Load_Result result = Volume_Load(Path_From_Utf8(whole));
    EXPECT_THAT(result.error, IsEmpty());
    EXPECT_TRUE(result.volume.has_value());
    std::filesystem::remove(Path_From_Utf8(whole));
    EXPECT_EQ(Volume_Load(Path_From_Utf8(whole)).error, text + " does not exist.");
}

}  // namespace

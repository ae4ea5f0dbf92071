#include "workbench/volumes/text_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include <zlib.h>

#include "tests/workbench/volumes/loading.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/nifti_writer.h"
#include "workbench/volumes/text_header_reader.h"
#include "workbench/volumes/text_header_writer.h"

using namespace volumes;

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

Bytes Of(const std::string& text) {
    return {text.begin(), text.end()};
}

/** Numbers 0, 100, 200 ... of two bytes. */
std::string Shorts(int count, bool big) {
    std::string bytes;
    for (int i = 0; i < count; ++i) {
        const int value = 100 * i - 300;
        const char low = static_cast<char>(value & 0xFF);
        const char high = static_cast<char>(value >> 8 & 0xFF);
        bytes += big ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

std::string Packed(const std::string& plain, int window) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::string packed(plain.size() + 1000, '\0');
    std::string input = plain;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

Load_Result Load_Text(const std::string& text, const std::string& data = {}, const Load_Limits& limits = {}) {
    const Bytes bytes = Of(text);
    const Bytes voxels = Of(data);
    Memory_Source source(bytes, "test.nrrd");
    Memory_Source data_source(voxels, "test.raw");
    return Text_Header_Load(source, data.empty() ? nullptr : &data_source, {}, limits);
}

std::vector<std::int32_t> Levels(int count) {
    std::vector<std::int32_t> levels;
    for (int i = 0; i < count; ++i) {
        levels.push_back(100 * i - 300);
    }
    return levels;
}

const std::string nrrd_head =
    "NRRD0004\n# a comment: with colon\ntype: short\ndimension: 3\nspace: left-posterior-superior\nsizes: 3 2 4\n"
    "space directions: (0.5,0,0) (0, 0, 2) (0,-1.5,0)\nkinds: domain domain domain\nkey:=value: 3\n";
const std::string nrrd_place = "space origin: (10,20,-30)\n";

const std::string meta_head =
    "ObjectType = Image\nNDims = 3\nBinaryData = True\nBinaryDataByteOrderMSB = False\n"
    "TransformMatrix = 1 0 0 0 0 1 0 -1 0\nOffset = 10 20 -30\nCenterOfRotation = 0 0 0\n"
    "ElementSpacing = 0.5 2 1.5\nDimSize = 3 2 4\nElementType = MET_SHORT\n";

void Place_Check(const Volume& volume) {
    const Affine expected = {{{-0.5, 0, 0, -10}, {0, 0, 1.5, -20}, {0, 2, 0, -30}}};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            EXPECT_NEAR(volume.affine[row][column], expected[row][column], 1e-12) << row << ", " << column;
        }
    }
    EXPECT_EQ(volume.spacing, (std::array<double, 3>{0.5, 2.0, 1.5}));
    EXPECT_EQ(volume.affine_source, Affine_Source::Sform);
}

}  // namespace

TEST(Text_Header, an_nrrd_file_gives_its_voxels_and_its_place) {
    const Load_Result result =
        Load_Text(nrrd_head + "endian: little\nencoding: raw\n" + nrrd_place + "\n" + Shorts(24, false));
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_EQ(result.volume->nx, 3);
    EXPECT_EQ(result.volume->ny, 2);
    EXPECT_EQ(result.volume->nz, 4);
    EXPECT_EQ(result.volume->levels, Levels(24));
    EXPECT_EQ(result.volume->encoding, "NRRD, little-endian");
    EXPECT_EQ(result.volume->scalar_type, "int16");
    Place_Check(*result.volume);
}

TEST(Text_Header, an_nrrd_file_may_be_packed_big_endian_or_of_windows_line_ends) {
    const std::string head = nrrd_head + nrrd_place + "encoding: gzip\nendian: big\n\n";
    const Load_Result packed = Load_Text(head + Packed(Shorts(24, true), 31));
    ASSERT_THAT(packed.error, IsEmpty());
    EXPECT_EQ(packed.volume->levels, Levels(24));
    EXPECT_EQ(packed.volume->encoding, "NRRD, big-endian, compressed");
    std::string lines;
    for (const char letter : nrrd_head + nrrd_place + "encoding: raw\nendian: little\n\n") {
        lines += letter == '\n' ? "\r\n" : std::string(1, letter);
    }
    const Load_Result windows = Load_Text(lines + Shorts(24, false));
    ASSERT_THAT(windows.error, IsEmpty());
    EXPECT_EQ(windows.volume->levels, Levels(24));
    Place_Check(*windows.volume);
}

TEST(Text_Header, voxels_may_stand_in_a_file_of_their_own_behind_other_bytes) {
    const std::string head = nrrd_head + "endian: little\nencoding: raw\ndata file: test.raw\n";
    EXPECT_EQ(Load_Text(head, Shorts(24, false)).volume->levels, Levels(24));
    EXPECT_EQ(Load_Text(head + "byte skip: 5\n", "12345" + Shorts(24, false)).volume->levels, Levels(24));
    EXPECT_EQ(Load_Text(head + "byte skip: -1\n", "1234567" + Shorts(24, false)).volume->levels, Levels(24));
    EXPECT_EQ(Load_Text(head + "line skip: 2\nbyte skip: 1\n", "one\ntwo\n3" + Shorts(24, false)).volume->levels,
              Levels(24));
    EXPECT_THAT(Load_Text(head).error, HasSubstr("the file with its voxels is missing"));
    EXPECT_THAT(Load_Text(head, Shorts(23, false)).error, HasSubstr("23 of 24 voxels present"));
    EXPECT_THAT(Load_Text(head + "byte skip: -1\n", Shorts(23, false)).error, HasSubstr("shorter than its voxels"));
    const std::string meta = meta_head + "HeaderSize = -1\nElementDataFile = x.raw\n";
    EXPECT_EQ(Load_Text(meta, "123" + Shorts(24, false)).volume->levels, Levels(24));
}

TEST(Text_Header, a_meta_image_gives_its_voxels_and_its_place) {
    const Load_Result result = Load_Text(meta_head + "ElementDataFile = LOCAL\n" + Shorts(24, false));
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_EQ(result.volume->levels, Levels(24));
    EXPECT_EQ(result.volume->encoding, "MetaImage, little-endian");
    Place_Check(*result.volume);
    const Load_Result packed =
        Load_Text(meta_head + "CompressedData = True\nElementDataFile = LOCAL\n" + Packed(Shorts(24, false), 15));
    ASSERT_THAT(packed.error, IsEmpty());
    EXPECT_EQ(packed.volume->levels, Levels(24));
}

TEST(Text_Header, colours_and_times_have_axes_of_their_own) {
    const std::string colors =
        "NRRD0005\ntype: uchar\ndimension: 4\nsizes: 3 2 1 2\nkinds: RGB-color domain domain domain\n"
        "spacings: nan 0.5 0.5 2\nencoding: raw\n\n";
    const Load_Result color = Load_Text(colors + "abcdefghijkl");
    ASSERT_THAT(color.error, IsEmpty());
    EXPECT_TRUE(color.volume->color);
    EXPECT_EQ(color.volume->levels[1], 'd' | 'e' << 8 | 'f' << 16);
    EXPECT_EQ(color.volume->spacing, (std::array<double, 3>{0.5, 0.5, 2.0}));
    EXPECT_EQ(color.volume->affine_source, Affine_Source::Spacing);
    const Load_Result times = Load_Text(
        "ObjectType = Image\nNDims = 4\nDimSize = 2 1 1 3\nElementType = MET_UCHAR\nElementDataFile = LOCAL\nabcdef");
    ASSERT_THAT(times.error, IsEmpty());
    EXPECT_EQ(times.volume->nt, 3);
    const Load_Result flat = Load_Text("NRRD0004\ntype: uchar\ndimension: 2\nsizes: 3 2\nencoding: raw\n\nabcdef");
    ASSERT_THAT(flat.error, IsEmpty());
    EXPECT_EQ(flat.volume->nz, 1);
}

TEST(Text_Header, what_cannot_be_read_is_told) {
    const auto error = [](const std::string& from, const std::string& to) {
        std::string text = nrrd_head + "endian: little\nencoding: raw\n\n";
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        return Load_Text(text + Shorts(24, false)).error;
    };
    EXPECT_THAT(error("encoding: raw", "encoding: bzip2"), HasSubstr("encoding \"bzip2\""));
    EXPECT_THAT(error("type: short", "type: block"), HasSubstr("type \"block\""));
    EXPECT_THAT(error("dimension: 3", "dimension: 7"), HasSubstr("7 dimensions"));
    EXPECT_THAT(error("sizes: 3 2 4", "sizes: 3 0 4"), HasSubstr("a size of \"0\""));
    EXPECT_THAT(error("sizes: 3 2 4", "sizes: 3 2 99999999999"), HasSubstr("a size of"));
    EXPECT_THAT(error("sizes: 3 2 4", "sizes: 2000000000 2000000000 2000000000"), HasSubstr("too large"));
    EXPECT_THAT(error("(0.5,0,0)", "(0.5,0)"), HasSubstr("direction"));
    EXPECT_THAT(error("endian: little", "data file: LIST"), HasSubstr("several files"));
    EXPECT_THAT(error("endian: little", "byte skip: -7"), HasSubstr("cannot be"));
    EXPECT_THAT(Load_Text("something else").error, HasSubstr("neither an NRRD file nor a MetaImage"));
    EXPECT_THAT(Load_Text("NRRD0004\ntype: short\nsizes: 3").error, HasSubstr("dimensions"));
    EXPECT_THAT(Load_Text("NRRD0004\n" + std::string(2U << 20U, 'x')).error, HasSubstr("no end"));
    Load_Limits limits;
    limits.decoded_bytes = 40;
    EXPECT_THAT(Load_Text(nrrd_head + "encoding: raw\n\n" + Shorts(24, false), {}, limits).error,
                HasSubstr("too large"));
    EXPECT_THAT(Load_Text("ObjectType = Image\nNDims = 3\nDimSize = 1 1 1\nElementType = MET_CHAR\n").error,
                HasSubstr("no end"));
    EXPECT_THAT(Load_Text("ObjectType = Tube\nNDims = 3\nElementDataFile = LOCAL\n").error, HasSubstr("\"tube\""));
}

TEST(Text_Header, damaged_and_cut_files_give_a_sentence_and_no_volume) {
    const std::string plain = meta_head + "ElementDataFile = LOCAL\n" + Shorts(24, false);
    const std::string gzip = nrrd_head + "endian: little\nencoding: gzip\n\n" + Packed(Shorts(24, false), 31);
    const std::string zlib =
        meta_head + "CompressedData = True\nElementDataFile = LOCAL\n" + Packed(Shorts(24, false), 15);
    for (const std::string& whole : {plain, gzip, zlib}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Load_Result result = Load_Text(whole.substr(0, size));
            EXPECT_FALSE(result.volume.has_value()) << size;
            EXPECT_EQ(result.volume.has_value(), result.error.empty());
        }
        for (std::size_t at = 0; at < whole.size(); ++at) {
            std::string changed = whole;
            changed[at] = static_cast<char>(changed[at] ^ 0x15);
            const Load_Result result = Load_Text(changed);
            EXPECT_EQ(result.volume.has_value(), result.error.empty());
            if (result.volume) {
                Expect_Sound(*result.volume);
            }
        }
    }
    for (const auto& [whole, sum] : {std::pair{gzip, 8}, {zlib, 4}}) {
        std::string wrong_sum = whole;
        wrong_sum[wrong_sum.size() - static_cast<std::size_t>(sum)] ^= 1;
        EXPECT_FALSE(Load_Text(wrong_sum).volume.has_value());
    }
}

TEST(Text_Header, what_is_written_is_read_back_in_its_place) {
    Temporary_Folder folder;
    Volume source =
        std::move(Load_Text(nrrd_head + nrrd_place + "endian: little\nencoding: raw\n\n" + Shorts(24, false)).volume)
            .value();
    source.affine[0][1] = 0.25;  // oblique
    std::vector<std::uint8_t> labels(24);
    for (std::size_t at = 0; at < labels.size(); ++at) {
        labels[at] = static_cast<std::uint8_t>(at * 11);
    }
    for (const char* const name : {"labels.nrrd", "labels.MHA"}) {
        const auto path = folder / name;
        ASSERT_THAT(Text_Header_Labels_Write(path, source, labels), IsEmpty());
        const Load_Result read = Volume_Load(path);  // by its content
        ASSERT_THAT(read.error, IsEmpty()) << name;
        EXPECT_EQ(read.volume->levels, std::vector<std::int32_t>(labels.begin(), labels.end()));
        EXPECT_EQ(read.volume->scalar_type, "uint8");
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                EXPECT_NEAR(read.volume->affine[row][column], source.affine[row][column], 1e-12) << name;
            }
        }
        ASSERT_THAT(Text_Header_Image_Write(path, source), IsEmpty());  // over the former one
        const Load_Result image = Volume_Load(path);
        ASSERT_THAT(image.error, IsEmpty()) << name;
        EXPECT_EQ(image.volume->levels, source.levels);
        EXPECT_EQ(image.volume->scalar_type, "int16");
    }
    EXPECT_THAT(Text_Header_Labels_Write(folder / "labels.txt", source, labels), HasSubstr("neither in .nrrd"));
    EXPECT_FALSE(Text_Header_Labels_Write(folder / "labels.mha", source, std::vector<std::uint8_t>(3)).empty());
}

TEST(Text_Header, greys_that_are_no_whole_numbers_are_written_as_real_ones) {
    Temporary_Folder folder;
    Volume source =
        std::move(Load_Text(nrrd_head + "endian: little\nencoding: raw\n\n" + Shorts(24, false)).volume).value();
    source.slope = 0.25;
    source.nt = 2;
    source.nz = 2;
    source.levels.Set(5, LEVEL_OUTSIDE);
    source.nonfinite_nb = 1;
    for (const char* const name : {"image.nrrd", "image.mha"}) {
        const auto path = folder / name;
        ASSERT_THAT(Text_Header_Image_Write(path, source), IsEmpty());
        const Load_Result read = Volume_Load(path);
        ASSERT_THAT(read.error, IsEmpty()) << name;
        EXPECT_EQ(read.volume->scalar_type, "float32");
        EXPECT_EQ(read.volume->nt, 2);
        for (std::size_t at = 0; at < source.levels.size(); ++at) {
            const float grey = read.volume->grey(read.volume->levels[at]);
            EXPECT_TRUE(at == 5 ? std::isnan(grey) : grey == source.grey(source.levels[at])) << at;
        }
    }
    Volume color;
    color.nx = color.ny = color.nz = color.nt = 1;
    color.color = true;
    color.levels = {0x030201};
    for (const char* const name : {"color.nrrd", "color.mha"}) {
        ASSERT_THAT(Text_Header_Image_Write(folder / name, color), IsEmpty());
        const Load_Result read = Volume_Load(folder / name);
        ASSERT_THAT(read.error, IsEmpty()) << name;
        EXPECT_TRUE(read.volume->color);
        EXPECT_EQ(read.volume->levels, color.levels);
    }
}

TEST(Text_Header, a_header_finds_its_voxels_beside_it) {
    Temporary_Folder folder;
    const auto write = [&](const char* name, const std::string& text) {
        std::ofstream(folder / name, std::ios::binary) << text;
    };
    write("image.mhd", meta_head + "ElementDataFile = image.raw\n");
    EXPECT_THAT(Volume_Load(folder / "image.mhd").error, HasSubstr("image.raw does not exist"));
    write("image.raw", Shorts(24, false));
    const Load_Result result = Volume_Load(folder / "image.mhd");
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_EQ(result.volume->levels, Levels(24));
    std::filesystem::create_directory(folder / "inner");
    for (const char* const elsewhere : {"inner/x.raw", "..\\x.raw", "/etc/x.raw", "c:x.raw", "..", "image.raw:x"}) {
        write("image.mhd", meta_head + "ElementDataFile = " + elsewhere + "\n");
        EXPECT_THAT(Volume_Load(folder / "image.mhd").error, HasSubstr("only from a file beside it")) << elsewhere;
    }
    write("image.mhd", meta_head + "ElementDataFile = inner\n");
    EXPECT_THAT(Volume_Load(folder / "image.mhd").error, HasSubstr("is a folder"));
}

TEST(Text_Header, labels_are_written_as_their_name_says) {
    Temporary_Folder folder;
    Volume source =
        std::move(Load_Text(nrrd_head + nrrd_place + "endian: little\nencoding: raw\n\n" + Shorts(24, false)).volume)
            .value();
    source.nt = 2;
    std::vector<std::uint8_t> labels(48);
    for (std::size_t at = 0; at < labels.size(); ++at) {
        labels[at] = static_cast<std::uint8_t>(at);
    }
    for (const auto& [name, encoding] :
         {std::pair{"a.nrrd", "NRRD"}, {"a.MHA", "MetaImage"}, {"a.nii.gz", "NIfTI-1"}}) {
        ASSERT_THAT(Label_Volume_Write(folder / name, source, labels), IsEmpty());
        const Load_Result read = Volume_Load(folder / name);
        ASSERT_THAT(read.error, IsEmpty()) << name;
        EXPECT_THAT(read.volume->encoding, HasSubstr(encoding));
        EXPECT_EQ(read.volume->nt, 2);
        EXPECT_EQ(read.volume->levels, std::vector<std::int32_t>(labels.begin(), labels.end()));
    }
}

TEST(Text_Header, a_folder_gives_its_volumes_and_passes_over_the_voxels_of_their_headers) {
    Temporary_Folder folder;
    const auto write = [&](const char* name, const std::string& text) {
        std::ofstream(folder / name, std::ios::binary) << text;
    };
    write("a.mhd", meta_head + "ElementDataFile = a.raw\n");
    write("a.raw", Shorts(24, false));
    write("b.NRRD", nrrd_head + "endian: little\nencoding: raw\n\n" + Shorts(24, false));
    write("lonely.raw", Shorts(24, false));
    const std::vector<std::filesystem::path> paths = {folder.path};
    const Image_Folder opened = Image_Folder_Open(paths);
    ASSERT_EQ(opened.volumes.size(), 2U);
    EXPECT_EQ(opened.volumes[0].volume.levels, Levels(24));
    EXPECT_EQ(opened.volumes[1].volume.levels, Levels(24));
    ASSERT_EQ(opened.problems.size(), 1U);
    EXPECT_EQ(opened.problems[0].path.filename(), "lonely.raw");
}

#include "workbench/volumes/nifti_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/volumes/failing_allocation.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/nifti_reader.h"

#if !defined(_WIN32)
#include <sys/resource.h>

#include <csignal>
#endif

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A source with a geometry in which every field differs from every other.
Nifti_Bytes Source_Bytes(int version = 1) {
    Nifti_Bytes bytes;
    bytes.version = version;
    bytes.dim = {4, 5, 4, 3, 2, 1, 1, 1};
    bytes.pixdim = {-1, 0.5, 0.75, 2.5, 1.5, 0, 0, 0};
    bytes.units = 2 + 8;
    bytes.qform_code = 1;
    bytes.sform_code = 3;
    bytes.quatern = {0.25, -0.5, 0.125};
    bytes.qoffset = {-90, -126.5, -72};
    bytes.srow = {0.5, 0.25, 0.125, -90, -0.25, 0.75, 0.375, -126.5, 0.0625, -0.125, 2.5, -72};
    bytes.voxels.resize(120);
    return bytes;
}

Volume Source(int version = 1) {
    const Bytes file = Source_Bytes(version).File();
    Memory_Source source(file, "source.nii");
    Load_Result result = Volume_Load(source, nullptr);
    EXPECT_THAT(result.error, IsEmpty());
    return std::move(result.volume).value();
}

template <class Label>
std::vector<Label> Labels(std::size_t count) {
    std::vector<Label> labels(count);
    for (std::size_t i = 0; i < count; ++i) {
        labels[i] = static_cast<Label>(i * 521);
    }
    return labels;
}

template <class Label>
void Check_Round_Trip(int version, const char* name, std::size_t count) {
    Temporary_Folder folder;
    const Volume source = Source(version);
    const std::vector<Label> labels = Labels<Label>(count);
    ASSERT_THAT(Label_Volume_Write(folder / name, source, std::span<const Label>(labels)), IsEmpty());
    EXPECT_EQ(folder.Entry_Nb(), 1U) << "nothing else is left there";
    const Load_Result result = Volume_Load(folder / name);
    ASSERT_THAT(result.error, IsEmpty());
    // The source's matrix is sheared, its steps are a little longer than the voxel sizes: it leads to an atlas.
    EXPECT_THAT(result.warnings, IsEmpty());
    const Volume& volume = *result.volume;
    EXPECT_EQ(volume.scalar_type, sizeof(Label) == 1 ? "uint8" : "uint16");
    EXPECT_EQ(volume.nx, 5);
    EXPECT_EQ(volume.ny, 4);
    EXPECT_EQ(volume.nz, 3);
    EXPECT_EQ(volume.nt, count == 60 ? 1 : 2);
    EXPECT_EQ(volume.spacing, source.spacing);
    EXPECT_EQ(volume.affine, source.affine);
    EXPECT_EQ(volume.affine_source, source.affine_source);
    EXPECT_EQ(volume.slope, 1);
    EXPECT_EQ(volume.intercept, 0);
    EXPECT_EQ(std::vector<Label>(volume.levels.begin(), volume.levels.end()), labels);
}

TEST(Nifti_Writer, writes_what_the_reader_reads) {
    for (const int version : {1, 2}) {
        for (const char* name : {"labels.nii", "labels.nii.gz"}) {
            for (const std::size_t count : {60U, 120U}) {
                Check_Round_Trip<std::uint8_t>(version, name, count);
                Check_Round_Trip<std::uint16_t>(version, name, count);
            }
        }
    }
}

TEST(Nifti_Writer, repeats_the_geometry_fields_byte_for_byte) {
    Temporary_Folder folder;
    const Bytes original = Source_Bytes().File();
    const std::vector<std::uint8_t> labels = Labels<std::uint8_t>(120);
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii", Source(), labels), IsEmpty());
    const Bytes plain = File_Get(folder / "labels.nii");
    ASSERT_EQ(plain.size(), 352U + 120U);
    const auto same = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            EXPECT_EQ(plain[i], original[i]) << "byte " << i;
        }
    };
    same(0, 4);
    same(40, 56);    // dimensions
    same(70, 74);    // voxel type
    same(76, 96);    // voxel sizes
    same(108, 112);  // position of the voxels
    same(123, 124);  // units
    same(252, 328);  // qform, sform
    same(344, 352);
    EXPECT_EQ(plain[68] + 256 * plain[69], 1002) << "intent: labels";
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii.gz", Source(), labels), IsEmpty());
    const Bytes coded = File_Get(folder / "labels.nii.gz");
    EXPECT_EQ(Gunzip(coded), plain);
}

TEST(Nifti_Writer, writes_the_affine_of_a_volume_without_stored_fields) {
    Temporary_Folder folder;
    Volume source;
    source.nx = 3;
    source.ny = 2;
    source.nz = 1;
    source.nt = 1;
    source.spacing = {2, 3, 4};
    source.affine = {{{2, 0, 0, -5}, {0, 0, 4, -6}, {0, -3, 0, -7}}};
    const std::vector<std::uint8_t> labels = Labels<std::uint8_t>(6);
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii", source, labels), IsEmpty());
    const Load_Result result = Volume_Load(folder / "labels.nii");
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_EQ(result.volume->affine, source.affine);
    EXPECT_EQ(result.volume->spacing, source.spacing);
    EXPECT_EQ(result.volume->affine_source, Affine_Source::Sform);
}

TEST(Nifti_Writer, writes_many_labels) {
    Temporary_Folder folder;
    Volume source;
    source.nx = 1000;
    source.ny = 1001;
    source.nz = 1;
    source.nt = 1;
    source.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    const std::vector<std::uint16_t> labels = Labels<std::uint16_t>(1001000);
    for (const char* name : {"labels.nii", "labels.nii.gz"}) {
        ASSERT_THAT(Label_Volume_Write(folder / name, source, labels), IsEmpty());
        const Load_Result result = Volume_Load(folder / name);
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_TRUE(
            std::equal(labels.begin(), labels.end(), result.volume->levels.begin(), result.volume->levels.end()));
    }
}

TEST(Nifti_Writer, replaces_a_former_file) {
    Temporary_Folder folder;
    File_Put(folder / "labels.nii", Bytes(10000, 'x'));
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii", Source(), Labels<std::uint8_t>(60)), IsEmpty());
    EXPECT_TRUE(Volume_Load(folder / "labels.nii").volume.has_value());
    EXPECT_EQ(folder.Entry_Nb(), 1U);
}

TEST(Nifti_Writer, leaves_a_foreign_temporary_file_alone) {
    Temporary_Folder folder;
    File_Put(folder / "labels.nii.part0", Bytes(3, 'x'));
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii", Source(), Labels<std::uint8_t>(60)), IsEmpty());
    EXPECT_EQ(File_Get(folder / "labels.nii.part0"), Bytes(3, 'x'));
    EXPECT_EQ(folder.Entry_Nb(), 2U);
}

TEST(Nifti_Writer, says_why_a_file_cannot_be_written) {
    Temporary_Folder folder;
    std::filesystem::create_directory(folder / "taken.nii");
    const Volume source = Source();
    const std::vector<std::uint8_t> labels = Labels<std::uint8_t>(60);
    EXPECT_EQ(Label_Volume_Write(folder / "taken.nii", source, labels), "taken.nii is a folder, not a file.");
    EXPECT_THAT(Label_Volume_Write(folder / "absent" / "labels.nii", source, labels),
                HasSubstr("labels.nii cannot be created: "));
    EXPECT_EQ(Label_Volume_Write({}, source, labels), "The file has no name.");
    EXPECT_EQ(Label_Volume_Write(folder / "labels.nii", source, std::span(labels).first(59)),
              "labels.nii cannot be written: there are 59 labels for 60 voxels.");
    EXPECT_EQ(folder.Entry_Nb(), 1U);
    Volume large = source;
    large.nx = 32768;
    EXPECT_THAT(Label_Volume_Write(folder / "labels.nii", large, labels), HasSubstr("32768 voxels does not fit"));
}

TEST(Nifti_Writer, keeps_the_former_file_when_memory_fails) {
    Temporary_Folder folder;
    const Volume source = Source();
    const std::vector<std::uint8_t> labels = Labels<std::uint8_t>(60);
    const std::filesystem::path path = folder / "labels.nii.gz";
    File_Put(path, Bytes(7, 'x'));
    long long fail_at = 0;
    for (bool happened = true; happened; ++fail_at) {
        std::string error;
        {
            const Failing_Allocation failure(fail_at);
            error = Label_Volume_Write(path, source, labels);
            happened = failure.Happened();
        }
        ASSERT_EQ(error.empty(), !happened) << fail_at << ": a failure is told, and is one";
        ASSERT_EQ(folder.Entry_Nb(), 1U) << fail_at;
        if (happened) {
            ASSERT_EQ(File_Get(path), Bytes(7, 'x')) << fail_at;
        }
    }
    EXPECT_TRUE(Volume_Load(path).volume.has_value());
    EXPECT_GT(fail_at, 5);
}

TEST(Nifti_Writer, writes_files_with_any_name) {
    Temporary_Folder folder;
    const std::u8string name = u8"étiquettes-метки 標識.nii.gz";
    const std::filesystem::path path = folder / std::filesystem::path(name);
    ASSERT_THAT(Label_Volume_Write(path, Source(), Labels<std::uint8_t>(60)), IsEmpty());
    EXPECT_TRUE(Volume_Load(path).volume.has_value());
    EXPECT_EQ(folder.Entry_Nb(), 1U);
    EXPECT_EQ(Label_Volume_Write(path, Source(), Labels<std::uint8_t>(1)).substr(0, name.size()),
              std::string(name.begin(), name.end()));
}

#if !defined(_WIN32)
// A limit on the size of files stands in for a full disk.
TEST(Nifti_Writer, keeps_the_former_file_when_the_disk_is_full_where_file_sizes_can_be_limited) {
    Temporary_Folder folder;
    const Volume source = Source();
    File_Put(folder / "labels.nii", Bytes(7, 'x'));
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto former_handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{400, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string error = Label_Volume_Write(folder / "labels.nii", source, Labels<std::uint8_t>(60));
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, former_handler);
    EXPECT_EQ(error, "labels.nii cannot be written: File too large.");
    EXPECT_EQ(File_Get(folder / "labels.nii"), Bytes(7, 'x'));
    EXPECT_EQ(folder.Entry_Nb(), 1U);
}
#endif

}  // namespace

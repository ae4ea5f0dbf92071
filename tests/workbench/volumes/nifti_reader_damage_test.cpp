// What the reader does with files that are damaged, hostile or none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/workbench/volumes/failing_allocation.h"
#include "tests/workbench/volumes/loading.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/nifti_reader.h"

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Nifti_Reader_Damage, says_what_is_wrong_with_a_file_that_is_none) {
    Temporary_Folder folder;
    std::filesystem::create_directory(folder / "folder.nii");
    EXPECT_EQ(Volume_Load(folder / "absent.nii").error, "absent.nii does not exist.");
    EXPECT_EQ(Volume_Load(folder / "folder.nii").error, "folder.nii is a folder, not a file.");
    EXPECT_THAT(Volume_Load({}).error, HasSubstr("The file "));
    EXPECT_EQ(Load({}).error, "test.nii is empty.");
    EXPECT_EQ(Load(Bytes(5000, 'x')).error, "test.nii is not a NIfTI file.");
    EXPECT_EQ(Load(Gzip(Bytes(5000, 'x'))).error, "test.nii is not a NIfTI file.");
    Nifti_Bytes bytes = Small_File();
    bytes.dim[0] = 9;
    EXPECT_EQ(Load(bytes.File()).error, "test.nii has 9 dimensions, and 1 to 7 are possible.");
}

TEST(Nifti_Reader_Damage, notices_truncation_at_every_byte) {
    for (const int version : {1, 2}) {
        Nifti_Bytes bytes = Small_File();
        bytes.version = version;
        const Bytes whole = bytes.File();
        for (std::size_t size = 1; size < whole.size(); ++size) {
            const Load_Result result = Load(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
            ASSERT_FALSE(result.volume.has_value()) << size;
            ASSERT_THAT(result.error, HasSubstr("test.nii is truncated: ")) << size;
            const std::size_t missing = whole.size() - size;
            if (missing <= 12) {
                ASSERT_EQ(result.error,
                          "test.nii is truncated: " + std::to_string(12 - missing) + " of 12 voxels present.");
            }
        }
    }
}

TEST(Nifti_Reader_Damage, notices_truncation_of_compressed_files_at_every_byte) {
    Nifti_Bytes bytes;
    bytes.dim = {3, 20, 10, 10, 1, 1, 1, 1};
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        bytes.Add(static_cast<std::uint8_t>(random() % 16));
    }
    const Bytes whole = Gzip(bytes.File());
    ASSERT_TRUE(Load(whole).volume.has_value());
    for (std::size_t size = 2; size < whole.size(); ++size) {
        const Load_Result result = Load(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        ASSERT_FALSE(result.volume.has_value()) << size;
        ASSERT_THAT(result.error, HasSubstr("test.nii is truncated: ")) << size;
    }
    EXPECT_EQ(Load(Bytes(whole.begin(), whole.end() - 8)).error,
              "test.nii is truncated: all 2,000 voxels are present, but not the checksum at its end.");
}

TEST(Nifti_Reader_Damage, notices_every_changed_bit_of_a_compressed_file) {
    const Bytes whole = Gzip(Small_File().File());
    const Voxel_Levels levels = Load(whole).volume->levels;
    int harmless_nb = 0;
    constexpr std::size_t gzip_header_size = 10;  // of which some bits mean nothing
    for (std::size_t bit = 8 * gzip_header_size; bit < 8 * whole.size(); ++bit) {
        Bytes changed = whole;
        changed[bit / 8] = static_cast<std::uint8_t>(changed[bit / 8] ^ (1U << (bit % 8)));
        // A few changes mean the same content, such as another of several equal places to copy from.
        const Load_Result result = Load(changed);
        if (result.volume) {
            ++harmless_nb;
            ASSERT_EQ(result.volume->levels, levels) << "bit " << bit;
        }
    }
    EXPECT_LT(harmless_nb, 30);
    Bytes changed = whole;
    changed[changed.size() - 5] ^= 1U;
    EXPECT_EQ(Load(changed).error, "test.nii is corrupt: its checksum does not fit its data, 12 of 12 voxels present.");
    changed = whole;
    changed[changed.size() - 1] ^= 1U;
    EXPECT_EQ(Load(changed).error, "test.nii is corrupt: its checksum does not fit its data, 12 of 12 voxels present.");
    changed = whole;
    changed[10] = 0xFF;  // a block of a kind that does not exist
    EXPECT_THAT(Load(changed).error, HasSubstr("test.nii is corrupt: its compressed data are damaged"));
}

TEST(Nifti_Reader_Damage, tolerates_foreign_bytes_behind_compressed_content) {
    for (const Bytes& garbage : {Bytes(1, 'x'), Bytes(1000), Bytes{0x1F}, Bytes{0x1F, 0x00}}) {
        Bytes file = Gzip(Small_File().File());
        file.insert(file.end(), garbage.begin(), garbage.end());
        const Load_Result result = Load(file);
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_THAT(result.warnings, ElementsAre(HasSubstr("foreign data")));
    }
}

TEST(Nifti_Reader_Damage, joins_gzip_members) {
    const Bytes content = Small_File().File();
    for (const std::size_t cut : {std::size_t{0}, std::size_t{3}, std::size_t{348}, std::size_t{360}, content.size()}) {
        Bytes file = Gzip(std::span(content).first(cut));
        const Bytes second = Gzip(std::span(content).subspan(cut));
        file.insert(file.end(), second.begin(), second.end());
        const Load_Result result = Load(file);
        ASSERT_THAT(result.error, IsEmpty());
        EXPECT_EQ(result.volume->levels[11], 110);
        EXPECT_THAT(result.warnings, IsEmpty());
    }
}

TEST(Nifti_Reader_Damage, takes_no_memory_for_claims_that_the_file_does_not_keep) {
    constexpr std::size_t fixed_buffers = 2U * 1024U * 1024U;
    for (const int version : {1, 2}) {
        for (const bool compressed : {false, true}) {
            Nifti_Bytes bytes = Small_File();
            bytes.version = version;
            bytes.dim = {3, 1000, 1000, 500, 1, 1, 1, 1};
            const Bytes file = compressed ? Gzip(bytes.File()) : bytes.File();
            const Failing_Allocation watch(Failing_Allocation::NEVER);
            const Load_Result result = Load(file);
            EXPECT_EQ(result.error, "test.nii is truncated: 12 of 500,000,000 voxels present.");
            EXPECT_LT(watch.Largest(), fixed_buffers);
        }
    }
}

TEST(Nifti_Reader_Damage, compares_the_plain_files_size_with_its_claims_before_reading) {
    Nifti_Bytes bytes;
    bytes.dim = {3, 200, 200, 100, 1, 1, 1, 1};
    bytes.voxels.resize(3999999);
    std::vector<double> fractions;
    const Load_Result result = Load(bytes.File(), {}, [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    });
    EXPECT_EQ(result.error, "test.nii is truncated: 3,999,999 of 4,000,000 voxels present.");
    EXPECT_THAT(fractions, ElementsAre(0.0));
}

TEST(Load_Limits_Of_Files, leave_room_for_what_was_saved_of_an_open_image_however_large_it_is) {
    constexpr std::uint64_t usual = std::uint64_t{2} << 30U;
    Volume image;
    EXPECT_EQ(Limits_Beside(image).decoded_bytes, usual);
    image.nx = 1024;
    image.ny = 1024;
    image.nz = 256;
    image.nt = 1;
    EXPECT_EQ(Limits_Beside(image).decoded_bytes, usual);
    image.nz = 3000;
    EXPECT_EQ(Limits_Beside(image).decoded_bytes, std::uint64_t{3000} << 23U);
    image.nt = 2;
    EXPECT_EQ(Limits_Beside(image).decoded_bytes, std::uint64_t{3000} << 24U);
    EXPECT_EQ(Limits_Beside(image).share, nullptr);
}

TEST(Nifti_Reader_Damage, refuses_what_is_beyond_the_limit) {
    Nifti_Bytes bytes = Small_File();
    const Load_Limits limits{24};  // twelve levels of two bytes
    EXPECT_THAT(Load(bytes.File(), limits).error, HasSubstr("too large")) << "position of the voxels";
    bytes.pair = true;
    const Bytes header = bytes.Header();
    for (const std::uint64_t most : {23, 24}) {
        Memory_Source source(header, "test.hdr");
        Memory_Source image(bytes.voxels, "test.img");
        const Load_Result result = Volume_Load(source, &image, {}, Load_Limits{most});
        EXPECT_EQ(result.volume.has_value(), most == 24) << result.error;
    }
    bytes.pair = false;
    bytes.dim = {3, 32767, 32767, 2, 1, 1, 1, 1};
    EXPECT_EQ(Load(bytes.File()).error,
              "test.nii is too large: its 2,147,352,578 voxels would need 2 bytes of memory each, and 2.0 GiB in all "
              "are allowed.");
    bytes.version = 2;
    bytes.dim = {1, 2, 1, 1, 1, 1, 1, 1};
    bytes.vox_offset = 9e18;
    EXPECT_THAT(Load(bytes.File()).error, HasSubstr("too large: its voxels would begin behind"));
}

TEST(Nifti_Reader_Damage, takes_from_a_share_what_its_levels_take_and_gives_it_back) {
    const Bytes file = Small_File().File();
    for (const std::uint64_t most : {23, 24}) {
        Memory_Share share(most);
        Load_Limits limits;
        limits.share = &share;
        const Load_Result result = Load(file, limits);
        EXPECT_EQ(result.volume.has_value(), most == 24);
        EXPECT_EQ(share.Left(), most);
        if (!result.volume) {
            EXPECT_THAT(result.error, HasSubstr("does not fit beside the other images"));
        }
    }
}

TEST(Nifti_Reader_Damage, gives_up_on_endless_data_behind_the_voxels) {
    Bytes content = Small_File().File();
    content.resize(content.size() + (std::size_t{8} << 20U));
    const Bytes file = Gzip(content);
    EXPECT_TRUE(Load(file).volume.has_value());
    EXPECT_THAT(Load(file, Load_Limits{1U << 20U}).error, HasSubstr("other data follow its voxels"));
}

TEST(Nifti_Reader_Damage, survives_ten_thousand_random_changes) {
    std::mt19937 random(20240607);
    std::vector<Bytes> files;
    for (const int version : {1, 2}) {
        for (const bool big : {false, true}) {
            Nifti_Bytes bytes;
            bytes.version = version;
            bytes.big = big;
            bytes.datatype = big ? 16 : 4;
            bytes.bitpix = big ? 32 : 16;
            bytes.slope = 2;
            bytes.sform_code = 1;
            bytes.qform_code = 1;
            bytes.quatern = {0.1, 0.2, 0.3};
            bytes.srow = {1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7};
            bytes.extension = {1, 0, 0, 0};
            bytes.extension.resize(20);
            bytes.extension[big ? 7 : 4] = 16;
            bytes.vox_offset = (version == 2 ? 544 : 352) + 16;
            bytes.voxels.resize(48);
            files.push_back(bytes.File());
            files.push_back(Gzip(bytes.File()));
        }
    }
    const Load_Limits limits{1U << 20U};
    int loaded_nb = 0;
    for (int round = 0; round < 10000; ++round) {
        Bytes file = files[random() % files.size()];
        const unsigned change_nb = 1 + random() % 4;
        for (unsigned change = 0; change < change_nb; ++change) {
            file[random() % file.size()] = static_cast<std::uint8_t>(random());
        }
        const Load_Result result = Load(file, limits);
        ASSERT_NE(result.volume.has_value(), !result.error.empty());
        if (result.volume) {
            ++loaded_nb;
            Expect_Sound(*result.volume);
        }
    }
    EXPECT_GT(loaded_nb, 500);
    EXPECT_LT(loaded_nb, 9500);
}

TEST(Nifti_Reader_Damage, survives_the_failure_of_every_allocation) {
    Nifti_Bytes bytes;
    bytes.datatype = 64;
    bytes.bitpix = 64;
    for (int i = 0; i < 12; ++i) {
        bytes.Add(1.5 * i);
    }
    const Bytes file = Gzip(bytes.File());
    long long fail_at = 0;
    for (bool happened = true; happened; ++fail_at) {
        Load_Result result;
        Memory_Source source(file, "a name that is too long to be kept without memory.nii.gz");
        {
            const Failing_Allocation failure(fail_at);
            result = Volume_Load(source, nullptr);
            happened = failure.Happened();
        }
        ASSERT_EQ(result.volume.has_value(), !happened) << fail_at;
        if (happened) {
            ASSERT_THAT(result.error, testing::AnyOf(HasSubstr("needs more memory than is free"), "Out of memory."));
        }
    }
    EXPECT_GT(fail_at, 5);
}

}  // namespace

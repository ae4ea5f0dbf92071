// Compares every level of compressed files with what the codecs' own programs decode. What the set looks like stands in
// witness/make_compressed.py.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "tests/workbench/volumes/loading.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/dicom_reader.h"

// Set by the build: the folder of the files; empty when the programs are not installed.
#if !defined(KIT_CODEC_FOLDER)
#error "the build names the folder"
#endif

using namespace volumes;

namespace {

Volume Volume_Of(const std::filesystem::path& path, bool is_warned) {
    Dicom_Result result = Dicom_Read(File_Get(path));
    EXPECT_EQ(result.error, "") << path;
    EXPECT_TRUE(result.others.empty()) << path;
    if (!result.image) {
        return {};
    }
    const auto has_errors = [](const std::string& warning) { return warning.starts_with("was decoded with errors"); };
    EXPECT_EQ(std::ranges::any_of(result.warnings, has_errors), is_warned) << path;
    Expect_Sound(result.image->volume);
    return std::move(result.image->volume);
}

void Pair_Compare(const std::filesystem::path& compressed, const std::filesystem::path& plain, bool is_warned) {
    const Volume found = Volume_Of(compressed, is_warned);
    const Volume wanted = Volume_Of(plain, false);
    EXPECT_EQ(found.nx, wanted.nx);
    EXPECT_EQ(found.ny, wanted.ny);
    EXPECT_EQ(found.nz, wanted.nz);
    EXPECT_EQ(found.nt, wanted.nt);
    EXPECT_EQ(found.color, wanted.color);
    EXPECT_EQ(found.slope, wanted.slope);
    EXPECT_EQ(found.intercept, wanted.intercept);
    EXPECT_EQ(found.scalar_type, wanted.scalar_type);
    EXPECT_TRUE(found.levels == wanted.levels);
}

void Values_Compare(const std::filesystem::path& compressed, const std::filesystem::path& raw) {
    const Volume found = Volume_Of(compressed, false);
    const Bytes bytes = File_Get(raw);
    std::vector<std::int32_t> wanted(bytes.size() / sizeof(std::int32_t));
    std::memcpy(wanted.data(), bytes.data(), wanted.size() * sizeof(std::int32_t));
    EXPECT_TRUE(found.levels == wanted);
}

TEST(Codec_Witness, every_level_is_what_the_codecs_own_programs_decode_if_installed) {
    const std::filesystem::path folder = KIT_CODEC_FOLDER;
    if (folder.empty()) {
        GTEST_SKIP() << "dcmtk, libopenjp2-tools or python3-pydicom was not there when the build was configured";
    }
    std::ifstream manifest(folder / "manifest.txt");
    std::size_t compared_nb = 0;
    std::string kind;
    std::string compressed;
    std::string plain;
    while (manifest >> kind >> compressed >> plain) {
        SCOPED_TRACE(compressed);
        if (kind != "raw") {
            Pair_Compare(folder / compressed, folder / plain, kind == "warned");
        } else {
            Values_Compare(folder / compressed, folder / plain);
        }
        ++compared_nb;
    }
    std::cout << compared_nb << " files compared\n";
    EXPECT_GE(compared_nb, 80U);
}

}  // namespace

// Real images of the distribution, compared with what a script of a few lines reads in them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/nifti_writer.h"
#include "workbench/volumes/volume_statistics.h"

using namespace volumes;

// Set by the build: the folder of the images, and the folder with the script's answers; empty when they are not
// installed.
#ifndef KIT_VOLUMES_FOLDER
#define KIT_VOLUMES_FOLDER ""
#endif
#ifndef KIT_VOLUMES_ANSWERS
#define KIT_VOLUMES_ANSWERS ""
#endif

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using Answers = std::map<std::string, std::vector<std::string>>;

Answers Answers_Read(const std::filesystem::path& path) {
    Answers answers;
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string key;
        words >> key;
        for (std::string word; words >> word;) {
            answers[key].push_back(word);
        }
    }
    return answers;
}

class Installed_Volumes : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        if (std::string(KIT_VOLUMES_FOLDER).empty()) {
            GTEST_SKIP() << "the package mricron-data, or Python 3, was not there when the build was configured";
        }
        path = std::filesystem::path(KIT_VOLUMES_FOLDER) / (std::string(GetParam()) + ".nii.gz");
    }
    std::filesystem::path path;
};

TEST_P(Installed_Volumes, are_read_as_the_script_reads_them_if_installed) {
    Answers answers = Answers_Read(std::filesystem::path(KIT_VOLUMES_ANSWERS) / (std::string(GetParam()) + ".txt"));
    ASSERT_EQ(answers.size(), 10U);
    const Load_Result result = Volume_Load(path);
    ASSERT_THAT(result.error, IsEmpty());
    EXPECT_THAT(result.warnings, IsEmpty());
    const Volume& volume = *result.volume;
    const auto number = [&](const char* key, std::size_t i) { return std::stod(answers[key].at(i)); };
    EXPECT_EQ(volume.nx, number("size", 0));
    EXPECT_EQ(volume.ny, number("size", 1));
    EXPECT_EQ(volume.nz, number("size", 2));
    EXPECT_EQ(volume.nt, number("size", 3));
    EXPECT_EQ(volume.scalar_type, answers["type"].at(0));
    ASSERT_GT(number("sform_code", 0), 0);
    EXPECT_EQ(volume.affine_source, Affine_Source::Sform);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(volume.affine[i / 4][i % 4], number("srow", i));
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(volume.spacing[i], number("spacing", i));
    }
    EXPECT_EQ(volume.slope, number("scale", 0) == 0 ? 1 : number("scale", 0));
    EXPECT_EQ(volume.intercept, number("scale", 1));
    EXPECT_EQ(volume.level_min, number("range", 0));
    EXPECT_EQ(volume.level_max, number("range", 1));
    std::int64_t sum = 0;
    std::int64_t weighted = 0;
    for (std::size_t i = 0; i < volume.levels.size(); ++i) {
        sum += volume.levels[i];
        weighted += static_cast<std::int64_t>(i % 65521 + 1) * volume.levels[i];
    }
    EXPECT_EQ(std::to_string(sum), answers["sum"].at(0));
    EXPECT_EQ(std::to_string(weighted), answers["sum"].at(1));

    const Volume_Statistics statistics = Volume_Statistics_Compute(volume);
    EXPECT_NEAR(statistics.mean,
                volume.grey(0) + volume.slope * static_cast<double>(sum) / static_cast<double>(volume.levels.size()),
                1e-9);
    EXPECT_NEAR(statistics.sd, number("sd", 0) * volume.slope, 1e-9);
    EXPECT_EQ(statistics.window_low, number("percentiles", 0) * volume.slope + volume.intercept);
    EXPECT_EQ(statistics.window_high, number("percentiles", 1) * volume.slope + volume.intercept);
}

TEST_P(Installed_Volumes, are_overlaid_exactly_by_their_labels_if_installed) {
    const Load_Result source = Volume_Load(path);
    ASSERT_THAT(source.error, IsEmpty());
    const Voxel_Levels& levels = source.volume->levels;
    const std::vector<std::uint16_t> labels(levels.begin(), levels.end());
    Temporary_Folder folder;
    ASSERT_THAT(Label_Volume_Write(folder / "labels.nii.gz", *source.volume, labels), IsEmpty());
    const Load_Result copy = Volume_Load(folder / "labels.nii.gz");
    ASSERT_THAT(copy.error, IsEmpty());
    EXPECT_EQ(copy.volume->levels, levels);
    EXPECT_EQ(copy.volume->affine, source.volume->affine);
    EXPECT_EQ(copy.volume->spacing, source.volume->spacing);
}

TEST_P(Installed_Volumes, say_how_much_of_them_is_there_when_cut_off_if_installed) {
    Bytes file = File_Get(path);
    file.resize(file.size() / 2);
    Memory_Source source(file, "half.nii.gz");
    const Load_Result result = Volume_Load(source, nullptr);
    EXPECT_FALSE(result.volume.has_value());
    EXPECT_THAT(result.error, testing::MatchesRegex("half.nii.gz is truncated: .*,.*,.* of 7,109,137 voxels present."));
}

INSTANTIATE_TEST_SUITE_P(Of_The_Distribution, Installed_Volumes, testing::Values("ch2", "ch2bet"),
                         [](const auto& parameter) { return std::string(parameter.param); });

}  // namespace

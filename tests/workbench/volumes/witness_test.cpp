// Compares every voxel and the place of generated files with what independent programs read in them. What the sets
// look like stands in witness/witness.py.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/volumes/loading.h"
#include "tests/workbench/volumes/nifti_bytes.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/message_text.h"

using namespace volumes;

namespace {

struct Expected_Volume {
    std::array<std::int32_t, 3> size{};
    std::vector<double> affine;  // empty: not compared
    std::string source;
    std::string values;  // a file's name
    double error = 0.0;
    std::optional<int> color_error;  // of a component; nothing: grey values
};

struct Item {
    std::string path;
    bool is_dicom = false;
    std::vector<Expected_Volume> volumes;
    std::multiset<std::string> told;
};

std::vector<Item> Manifest_Read(const std::filesystem::path& folder) {
    std::ifstream file(folder / "manifest.txt");
    std::vector<Item> items;
    for (std::string line; std::getline(file, line);) {
        const std::size_t space = line.find(' ');
        const std::string word = line.substr(0, space);
        const std::string rest = space == std::string::npos ? "" : line.substr(space + 1);
        std::istringstream numbers(rest);
        if (word == "item") {
            items.push_back({rest, false, {}, {}});
        } else if (word == "dicom") {
            items.back().is_dicom = true;
        } else if (word == "told") {
            items.back().told.insert(rest);
        } else if (word == "volume") {
            Expected_Volume& volume = items.back().volumes.emplace_back();
            numbers >> volume.size[0] >> volume.size[1] >> volume.size[2];
        } else if (word == "affine") {
            for (double number = 0; numbers >> number;) {
                items.back().volumes.back().affine.push_back(number);
            }
        } else if (word == "source") {
            items.back().volumes.back().source = rest;
        } else if (word == "values") {
            items.back().volumes.back().values = rest;
        } else if (word == "error") {
            numbers >> items.back().volumes.back().error;
        } else if (word == "colours") {
            numbers >> items.back().volumes.back().color_error.emplace();
        } else {
            ADD_FAILURE() << "an unknown line: " << line;
        }
    }
    return items;
}

/** The largest difference of a component of two packed colours. */
int Color_Difference(std::int32_t left, std::int32_t right) {
    int worst = 0;
    for (const int bits : {0, 8, 16}) {
        worst = std::max(worst, std::abs((left >> bits & 0xFF) - (right >> bits & 0xFF)));
    }
    return worst;
}

std::vector<double> Values_Of(const std::filesystem::path& path) {
    const Bytes bytes = File_Get(path);
    std::vector<double> values(bytes.size() / sizeof(double));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(double));
    return values;
}

/** Largest distance of a grey value from the witness's; infinite where only one of them says "outside". */
double Worst_Of(const Volume& volume, const std::vector<double>& values) {
    double worst = 0.0;
    for (std::size_t at = 0; at < values.size(); ++at) {
        const std::int32_t level = volume.levels[at];
        if (std::isnan(values[at]) || level == LEVEL_OUTSIDE) {
            worst = std::isnan(values[at]) && level == LEVEL_OUTSIDE ? worst : INFINITY;
            continue;
        }
        worst = std::max(worst, volume.color ? Color_Difference(level, static_cast<std::int32_t>(values[at]))
                                             : std::abs(level * volume.slope + volume.intercept - values[at]));
    }
    return worst;
}

double Largest_Of(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) {
        largest = std::isnan(value) ? largest : std::max(largest, std::abs(value));
    }
    return largest;
}

void Volume_Compare(const Volume& volume, const Expected_Volume& expected, const std::filesystem::path& folder) {
    const std::array<std::int32_t, 3> size = {volume.nx, volume.ny, volume.nz};
    ASSERT_EQ(size, expected.size);
    const std::map<std::string, Affine_Source> sources = {
        {"sform", Affine_Source::Sform}, {"qform", Affine_Source::Qform}, {"spacing", Affine_Source::Spacing}};
    EXPECT_EQ(volume.affine_source, sources.at(expected.source));
    for (std::size_t at = 0; at < expected.affine.size(); ++at) {
        const double wanted = expected.affine[at];
        // Single precision is what most files keep it in; lengths of some hundred millimetres.
        EXPECT_NEAR(volume.affine[at / 4][at % 4], wanted, 1e-5 + std::abs(wanted) * 1e-6) << "matrix element " << at;
    }
    const std::vector<double> values = Values_Of(folder / expected.values);
    ASSERT_EQ(volume.levels.size(), values.size());
    ASSERT_EQ(volume.color, expected.color_error.has_value());
    if (volume.color) {
        EXPECT_LE(Worst_Of(volume, values), *expected.color_error);
        return;
    }
    Expect_Sound(volume);
    const double rounding = Largest_Of(values) * 1e-12;
    EXPECT_LE(volume.max_error, expected.error + rounding) << "a larger error than there has to be";
    EXPECT_LE(Worst_Of(volume, values), volume.max_error + rounding) << "a larger error than is told";
}

std::multiset<std::string> Told_Of(const Image_Folder& opened) {
    std::multiset<std::string> told;
    for (const Folder_Problem& problem : opened.problems) {
        told.insert(File_Name_Text(problem.path) + ' ' + problem.reason);
    }
    return told;
}

TEST(Witness, every_voxel_and_place_is_what_others_read) {
    const std::filesystem::path folder = KIT_WITNESS_FOLDER;
    const std::vector<Item> items = Manifest_Read(folder);
    ASSERT_GE(items.size(), 500U);
    std::size_t compared_nb = 0;
    for (const Item& item : items) {
        if (item.is_dicom && !KIT_WITNESS_DICOM) {
            continue;
        }
        SCOPED_TRACE(item.path);
        const std::filesystem::path path = folder / item.path;
        const Image_Folder opened = Image_Folder_Open(std::span(&path, 1));
        EXPECT_EQ(Told_Of(opened), item.told);
        EXPECT_EQ(opened.volumes.size(), item.volumes.size());
        for (std::size_t at = 0; at < std::min(opened.volumes.size(), item.volumes.size()); ++at) {
            SCOPED_TRACE("volume " + std::to_string(at));
            Volume_Compare(opened.volumes[at].volume, item.volumes[at], folder);
        }
        ++compared_nb;
    }
    std::cout << compared_nb << " items compared\n";
}

}  // namespace

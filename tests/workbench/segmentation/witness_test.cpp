// Compares operations voxel by voxel with what SciPy finds in the same volumes; witness.py says which.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"
#include "workbench/segmentation/label_comparison.h"
#include "workbench/segmentation/region_edits.h"
#include "workbench/segmentation/tag_shape.h"
#include "workbench/segmentation/tag_statistics.h"

using namespace workbench::segmentation;

namespace {

const std::filesystem::path FOLDER = KIT_SEGMENTATION_WITNESS;

template <class Value>
std::vector<Value> Values_Of(const std::string& name) {
    std::ifstream file(FOLDER / name, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<Value> values(bytes.size() / sizeof(Value));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Value));
    return values;
}

struct Answer {
    std::string operation;
    double number = 0.0;
    std::string file;
};
struct Case {
    Label_Scene scene;
    std::vector<Answer> answers;
};

std::map<std::string, Case> Cases_Read() {
    std::map<std::string, Case> cases;
    std::ifstream manifest(FOLDER / "manifest.txt");
    for (std::string line; std::getline(manifest, line);) {
        std::istringstream words(line);
        std::string name;
        Answer answer;
        words >> name >> answer.operation;
        if (answer.operation == "grid") {
            Label_Scene& scene = cases[name].scene;
            words >> scene.grid.width >> scene.grid.height >> scene.grid.slices;
            words >> scene.grid.spacing[0] >> scene.grid.spacing[1] >> scene.grid.spacing[2];
            scene.tags = Values_Of<std::uint8_t>(name + ".tags");
            scene.levels = Values_Of<std::int32_t>(name + ".levels");
            EXPECT_EQ(scene.tags.size(), scene.grid.Voxel_Nb());
        } else {
            words >> answer.number >> answer.file;
            cases[name].answers.push_back(answer);
        }
    }
    return cases;
}

void Near(double found, double expected) {
    EXPECT_NEAR(found, expected, 1e-6 * std::max(1.0, std::abs(expected)));
}

void Regions_Check(const Label_Scene& scene, const Answer& answer) {
    const Edit_Input input = scene.Input();
    const Region_Map map = Regions_Of_Tag(input, 1, answer.number == 6 ? Neighbours::Faces : Neighbours::Corners,
                                          Step_Progress(input.progress));
    std::vector<std::int32_t> numbers(scene.tags.size());
    for (int z = 0; z < scene.grid.slices; ++z) {
        for (int y = 0; y < scene.grid.height; ++y) {
            for (const Region_Run& run : map.Row(y, z)) {
                for (int x = run.begin; x < run.end; ++x) {
                    numbers[scene.grid.Index(x, y, z)] = static_cast<std::int32_t>(run.region) + 1;
                }
            }
        }
    }
    EXPECT_TRUE(numbers == Values_Of<std::int32_t>(answer.file));
}

void Numbers_Check(const Label_Scene& scene, const Answer& answer) {
    const std::vector<double> expected = Values_Of<double>(answer.file);
    ASSERT_EQ(expected.size(), 12U);
    const auto rows = Tag_Statistics(scene.Input(), {});
    const Tag_Numbers& row = rows->back();
    const std::vector<double> found = {static_cast<double>(row.voxel_nb),
                                       row.milliliters,
                                       row.greys.mean,
                                       row.greys.deviation,
                                       row.greys.least,
                                       row.greys.greatest,
                                       row.greys.median,
                                       row.greys.percentiles[0],
                                       row.greys.percentiles[1],
                                       static_cast<double>(row.region_nb),
                                       static_cast<double>(row.first_slice),
                                       static_cast<double>(row.last_slice)};
    for (std::size_t at = 0; at < expected.size(); ++at) {
        EXPECT_NEAR(found[at], expected[at], 1e-9 * std::max(1.0, std::abs(expected[at]))) << "number " << at;
    }
}

void Agreement_Check(const Label_Scene& scene, const std::vector<std::uint8_t>& other, const Answer& answer) {
    const std::vector<double> expected = Values_Of<double>(answer.file);
    ASSERT_EQ(expected.size(), 8U);
    const auto found = Labels_Compare(scene.Input(), 1, other, 1);
    ASSERT_TRUE(found->distances.has_value());
    Near(static_cast<double>(found->one_nb), expected[0]);
    Near(static_cast<double>(found->other_nb), expected[1]);
    Near(static_cast<double>(found->common_nb), expected[2]);
    Near(found->dice, expected[3]);
    Near(found->jaccard, expected[4]);
    Near(found->distances->hausdorff, expected[5]);
    Near(found->distances->hausdorff_95, expected[6]);
    Near(found->distances->mean, expected[7]);
}

std::optional<Label_Edit> Edit_Of(const Edit_Input& input, const Answer& answer) {
    if (answer.operation == "grow") {
        return Tag_Grow(input, 1, answer.number);
    }
    if (answer.operation == "shrink") {
        return Tag_Shrink(input, 1, answer.number);
    }
    if (answer.operation == "smooth") {
        return Tag_Smooth(input, 1, answer.number);
    }
    if (answer.operation == "between") {
        return Slices_Between_Fill(input, 1);
    }
    if (answer.operation == "holes") {
        return Holes_Fill(input, 1, answer.number == 3 ? Hole_Kind::In_Space : Hole_Kind::Per_Slice);
    }
    return std::nullopt;
}

}  // namespace

TEST(Segmentation_Witness, operations_find_what_an_independent_program_finds) {
    const std::map<std::string, Case> cases = Cases_Read();
    ASSERT_GE(cases.size(), 8U);
    std::set<std::string> compared;
    for (const auto& [name, one] : cases) {
        for (const Answer& answer : one.answers) {
            SCOPED_TRACE(name + " " + answer.operation + " " + std::to_string(answer.number));
            compared.insert(answer.operation);
            if (answer.operation == "regions") {
                Regions_Check(one.scene, answer);
            } else if (answer.operation == "numbers") {
                Numbers_Check(one.scene, answer);
            } else if (answer.operation == "agreement") {
                Agreement_Check(one.scene, Values_Of<std::uint8_t>(name + ".other.0"), answer);
            } else if (answer.operation != "other") {
                const std::optional<Label_Edit> edit = Edit_Of(one.scene.Input(), answer);
                ASSERT_TRUE(edit.has_value());
                const std::vector<std::uint8_t> after = one.scene.After(*edit);
                const std::vector<std::uint8_t> expected = Values_Of<std::uint8_t>(answer.file);
                ASSERT_EQ(after.size(), expected.size());
                std::size_t different = 0;
                for (std::size_t at = 0; at < after.size(); ++at) {
                    different += after[at] != expected[at] ? 1 : 0;
                }
                EXPECT_EQ(different, 0U);
            }
        }
    }
    EXPECT_EQ(compared.size(), 9U);
}

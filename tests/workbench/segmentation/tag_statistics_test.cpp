#include "workbench/segmentation/tag_statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/workbench/segmentation/label_scene.h"
#include "workbench/volumes/volume.h"

using namespace workbench::segmentation;

namespace {

double Percentile(const std::vector<double>& ascending, double percent) {
    const double place = static_cast<double>(ascending.size() - 1) * percent / 100.0;
    const auto before = static_cast<std::size_t>(std::floor(place));
    const std::size_t after = std::min(before + 1, ascending.size() - 1);
    return ascending[before] + (place - std::floor(place)) * (ascending[after] - ascending[before]);
}

void Greys_Check(const Grey_Numbers& numbers, std::vector<double> greys, const std::vector<double>& percents) {
    ASSERT_EQ(numbers.voxel_nb, greys.size());
    std::ranges::sort(greys);
    double mean = 0.0;
    for (const double grey : greys) {
        mean += grey / static_cast<double>(greys.size());
    }
    double squares = 0.0;
    for (const double grey : greys) {
        squares += (grey - mean) * (grey - mean);
    }
    const double scale = std::max(std::abs(greys.front()), std::abs(greys.back())) + 1e-300;
    EXPECT_NEAR(numbers.mean, mean, 1e-12 * scale);
    EXPECT_NEAR(numbers.deviation, std::sqrt(squares / static_cast<double>(greys.size())), 1e-12 * scale);
    EXPECT_NEAR(numbers.least, greys.front(), 1e-14 * scale);
    EXPECT_NEAR(numbers.greatest, greys.back(), 1e-14 * scale);
    EXPECT_NEAR(numbers.median, Percentile(greys, 50.0), 1e-14 * scale);
    ASSERT_EQ(numbers.percentiles.size(), percents.size());
    for (std::size_t at = 0; at < percents.size(); ++at) {
        EXPECT_NEAR(numbers.percentiles[at], Percentile(greys, percents[at]), 1e-12 * scale);
    }
}

}  // namespace

TEST(Tag_Statistics, numbers_are_those_of_the_sorted_greys) {
    for (unsigned int seed = 0; seed < 24; ++seed) {
        Label_Scene scene = Random_Scene(seed, 9, 7, 5, 4);
        scene.grid.spacing = {0.5, 0.5, 2.0};
        for (std::int32_t& level : scene.levels) {
            level = seed % 3 == 0 ? level * 20'000'000 : level * 11;  // too far apart for a table, or not
        }
        scene.levels[3] = volumes::LEVEL_OUTSIDE;
        Edit_Input input = scene.Input();
        input.slices = {0, static_cast<int>(seed % 5)};
        Statistics_Request request;
        request.scale = seed % 2 == 0 ? Grey_Scale{0.25, -1000.0} : Grey_Scale{-3.0, 7.0};
        request.percentiles = {0.0, 5.0, 33.3, 95.0, 100.0};
        const auto rows = Tag_Statistics(input, request);
        ASSERT_TRUE(rows.has_value());
        int before = -1;
        std::uint64_t voxel_nb = 0;
        for (const Tag_Numbers& row : *rows) {
            EXPECT_GT(row.tag, before);
            before = row.tag;
            std::vector<double> greys;
            std::uint64_t nb = 0;
            for (std::size_t at = 0; at < scene.grid.Index(0, 0, input.slices.last + 1); ++at) {
                if (scene.tags[at] == row.tag) {
                    ++nb;
                    if (scene.levels[at] != volumes::LEVEL_OUTSIDE) {
                        greys.push_back(scene.levels[at] * request.scale.slope + request.scale.intercept);
                    }
                }
            }
            EXPECT_EQ(row.voxel_nb, nb);
            EXPECT_DOUBLE_EQ(row.milliliters, static_cast<double>(nb) * 0.0005);
            Greys_Check(row.greys, greys, request.percentiles);
            voxel_nb += nb;
        }
        EXPECT_EQ(voxel_nb, scene.grid.Index(0, 0, input.slices.last + 1));
    }
}

TEST(Tag_Statistics, a_large_sum_loses_nothing) {
    // Levels far from 0 that differ by one: sums of squares of the levels themselves would not tell them apart.
    Label_Scene scene = Scene_Of(1000, 1000, 1);
    for (std::size_t at = 0; at < scene.levels.size(); ++at) {
        scene.levels[at] = 2'000'000'000 + static_cast<std::int32_t>(at % 2);
    }
    const auto rows = Tag_Statistics(scene.Input(), {});
    ASSERT_EQ(rows->size(), 1U);
    EXPECT_EQ((*rows)[0].greys.mean, 2'000'000'000.5);
    EXPECT_EQ((*rows)[0].greys.deviation, 0.5);
    EXPECT_EQ((*rows)[0].greys.median, 2'000'000'000.5);
}

TEST(Tag_Statistics, regions_and_extent_are_told_for_the_slices_that_are_worked_on) {
    Label_Scene scene = Scene_Of(4, 4, 6);
    scene.tags[scene.grid.Index(0, 0, 1)] = 1;
    scene.tags[scene.grid.Index(1, 1, 2)] = 1;
    scene.tags[scene.grid.Index(3, 3, 4)] = 1;
    scene.grid.spacing = {2.0, 3.0, 1.0};
    Statistics_Request request;
    auto rows = Tag_Statistics(scene.Input(), request);
    ASSERT_EQ(rows->size(), 2U);
    const Tag_Numbers& one = (*rows)[1];
    EXPECT_EQ(one.region_nb, 2U);
    EXPECT_EQ(one.first_slice, 1);
    EXPECT_EQ(one.last_slice, 4);
    EXPECT_EQ(one.slice_voxels, (std::vector<std::uint64_t>{0, 1, 1, 0, 1, 0}));
    EXPECT_EQ(Slice_Area(one, 2, scene.grid), 6.0);
    request.neighbours = Neighbours::Faces;
    EXPECT_EQ((*Tag_Statistics(scene.Input(), request))[1].region_nb, 3U);
    Edit_Input input = scene.Input();
    input.slices = {2, 3};
    EXPECT_EQ((*Tag_Statistics(input, request))[1].first_slice, 2);
    EXPECT_EQ((*Tag_Statistics(input, request))[1].last_slice, 2);
    input.levels = {};
    EXPECT_EQ((*Tag_Statistics(input, request))[1].greys.voxel_nb, 0U);
    input.progress = [](double fraction) { return fraction < 0.2; };
    EXPECT_FALSE(Tag_Statistics(input, request).has_value());
}

TEST(Tag_Statistics, a_table_names_its_units_and_quotes_names) {
    Label_Scene scene = Scene_Of(2, 1, 2);
    scene.tags = {0, 3, 3, 3};
    scene.levels = {10, 20, 30, volumes::LEVEL_OUTSIDE};
    scene.grid.spacing = {10.0, 10.0, 5.0};
    Statistics_Request request;
    request.percentiles = {25.0};
    const auto rows = Tag_Statistics(scene.Input(), request);
    const Csv_Words words = {{"Background", "", "", "Liver, \"left\""}, "HU"};
    EXPECT_EQ(Statistics_Csv(*rows, request, words),
              "TAG,Name,Voxels,Volume (ml),Mean (HU),SD (HU),Minimum (HU),Median (HU),Maximum (HU),Percentile 25 (HU),"
              "Regions,First slice,Last slice\n"
              "0,Background,1,0.5,10,0,10,10,10,10,1,1,1\n"
              "3,\"Liver, \"\"left\"\"\",3,1.5,25,5,20,25,30,22.5,1,1,2\n");
    EXPECT_EQ(Areas_Csv(*rows, scene.grid, words),
              "Slice,Background (mm²),\"Liver, \"\"left\"\" (mm²)\"\n1,100,100\n2,0,200\n");
    scene.levels = {10, volumes::LEVEL_OUTSIDE, volumes::LEVEL_OUTSIDE, volumes::LEVEL_OUTSIDE};
    const auto without = Tag_Statistics(scene.Input(), request);
    EXPECT_EQ(
        Statistics_Csv(std::span(*without).subspan(1), request, {}),
        "TAG,Name,Voxels,Volume (ml),Mean,SD,Minimum,Median,Maximum,Percentile 25,Regions,First slice,Last slice\n"
        "3,,3,1.5,,,,,,,1,1,2\n");
}

// Levels that are made and counted while more voxels are read.
#include "workbench/volumes/narrow_collector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

#include "tests/workbench/volumes/loading.h"
#include "workbench/volumes/level_builder.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/volume_statistics.h"

using namespace volumes;

namespace {

/** The value of a voxel, byte by byte. */
std::int32_t Plain_Value(const std::uint8_t* bytes, Voxel_Type type, Byte_Order order) {
    if (type == Voxel_Type::Uint8) {
        return bytes[0];
    }
    if (type == Voxel_Type::Int8) {
        return bytes[0] >= 128 ? bytes[0] - 256 : bytes[0];
    }
    const int low = order == Byte_Order::Little ? bytes[0] : bytes[1];
    const int high = order == Byte_Order::Little ? bytes[1] : bytes[0];
    const int value = high * 256 + low;
    return type == Voxel_Type::Int16 && value >= 32768 ? value - 65536 : value;
}

std::vector<std::uint8_t> Random_Bytes(std::size_t nb, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(nb);
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

TEST(Narrow_Collector, makes_and_counts_the_levels_of_every_type) {
    constexpr std::size_t voxel_nb = 1'200'007;
    for (const Voxel_Type type : {Voxel_Type::Uint8, Voxel_Type::Int8, Voxel_Type::Int16, Voxel_Type::Uint16}) {
        for (const Byte_Order order : {Byte_Order::Little, Byte_Order::Big}) {
            const std::size_t voxel_size = Voxel_Type_Size(type);
            const std::vector<std::uint8_t> bytes = Random_Bytes(voxel_nb * voxel_size, 3);
            std::vector<std::int32_t> expected(voxel_nb);
            std::map<std::int32_t, std::uint64_t> times;
            for (std::size_t at = 0; at < voxel_nb; ++at) {
                expected[at] = Plain_Value(&bytes[at * voxel_size], type, order);
                ++times[expected[at]];
            }
            Level_Builder builder(type, order, voxel_nb);
            builder.Reserve(voxel_nb);
            ASSERT_TRUE(builder.Is_Collecting());
            builder.Append(std::span(bytes).first(1000 * voxel_size));
            builder.Append(std::span(bytes).subspan(1000 * voxel_size));
            EXPECT_EQ(builder.Voxel_Nb(), voxel_nb);
            Volume volume;
            builder.Finish(1, 0, volume);
            EXPECT_TRUE(std::ranges::equal(volume.levels, expected));
            EXPECT_EQ(volume.level_min, times.begin()->first);
            EXPECT_EQ(volume.level_max, times.rbegin()->first);
            const std::optional<Level_Tally>& tally = builder.Tally();
            ASSERT_TRUE(tally);
            ASSERT_EQ(tally->lowest, volume.level_min);
            for (std::size_t at = 0; at < tally->times.size(); ++at) {
                EXPECT_EQ(tally->times[at], times[tally->lowest + static_cast<std::int32_t>(at)]);
            }
        }
    }
}

TEST(Narrow_Collector, few_voxels_or_an_unknown_number_take_no_tables) {
    Level_Builder few(Voxel_Type::Int16, Byte_Order::Little, 1000);
    few.Reserve(1000);
    EXPECT_FALSE(few.Is_Collecting());
    Level_Builder unknown(Voxel_Type::Int16, Byte_Order::Little, 4'000'000);
    unknown.Reserve(3'000'000);
    EXPECT_FALSE(unknown.Is_Collecting());
    Level_Builder wide(Voxel_Type::Int32, Byte_Order::Little, 4'000'000);
    wide.Reserve(4'000'000);
    EXPECT_FALSE(wide.Is_Collecting());
}

TEST(Narrow_Collector, what_is_given_up_in_the_middle_ends) {
    const std::vector<std::uint8_t> bytes = Random_Bytes(std::size_t{8} << 20U, 4);
    for (int round = 0; round < 10; ++round) {
        Level_Builder builder(Voxel_Type::Int16, Byte_Order::Little, bytes.size());
        builder.Reserve(bytes.size());
        builder.Append(bytes);  // half of what was announced; the sanitizers find who writes on
    }
}

TEST(Narrow_Collector, statistics_of_a_tally_are_those_of_the_levels) {
    std::vector<std::uint8_t> bytes(2'400'000);
    std::mt19937 random(8);
    std::normal_distribution<double> value(500, 90);
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        const auto level = static_cast<std::int16_t>(value(random));
        std::memcpy(&bytes[at], &level, 2);
    }
    Level_Builder builder(Voxel_Type::Int16, Byte_Order::Little, bytes.size() / 2);
    builder.Reserve(bytes.size() / 2);
    builder.Append(bytes);
    Volume volume;
    volume.nx = static_cast<std::int32_t>(bytes.size() / 2);
    volume.ny = volume.nz = volume.nt = 1;
    builder.Finish(-0.5, 3, volume);
    ASSERT_TRUE(builder.Tally());
    const Volume_Statistics counted = Volume_Statistics_Compute(volume);
    const Volume_Statistics told = Volume_Statistics_Compute(volume, &*builder.Tally());
    EXPECT_EQ(told.count, counted.count);
    EXPECT_EQ(told.min, counted.min);
    EXPECT_EQ(told.max, counted.max);
    EXPECT_EQ(told.mean, counted.mean);
    EXPECT_EQ(told.sd, counted.sd);
    EXPECT_EQ(told.window_low, counted.window_low);
    EXPECT_EQ(told.window_high, counted.window_high);
}

TEST(Narrow_Collector, a_file_cut_off_tells_how_far_it_came) {
    Nifti_Bytes bytes;
    bytes.datatype = 4;
    bytes.bitpix = 16;
    bytes.dim = {3, 200, 100, 100, 1, 1, 1, 1};
    bytes.voxels = Random_Bytes(4'000'000, 5);
    const Bytes whole = Gzip(bytes.File());
    EXPECT_TRUE(Load(whole).tally);
    bytes.voxels.resize(3'000'001);
    EXPECT_THAT(Load(Gzip(bytes.File())).error, testing::HasSubstr("1,500,000 of 2,000,000 voxels present"));
}

}  // namespace

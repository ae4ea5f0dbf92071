// Histograms of slices, and counts of voxels, when memory is missing.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "tests/kits/common/failing_memory.h"
#include "workbench/frame_counter.h"
#include "workbench/slice_frames.h"
#include "workbench/volumes/narrow_collector.h"

using namespace workbench;

namespace {

constexpr int SIDE = 8;  // pixels

volumes::Volume Image_Of(int slice_nb) {
    volumes::Volume made;
    made.nx = made.ny = SIDE;
    made.nz = slice_nb;
    made.nt = 1;
    made.levels = volumes::Voxel_Levels(std::vector<std::int32_t>(static_cast<std::size_t>(SIDE * SIDE * slice_nb), 3));
    made.level_max = 5;
    return made;
}

TEST(Counting_Memory, a_histogram_without_memory_is_a_failure_and_no_empty_histogram) {
    const volumes::Volume image = Image_Of(1);
    int histogram_nb = 0;
    const int failed = Fail_Each_Allocation([&] {
        std::unique_ptr<Slice_Frame> frame;
        Level_Room room;
        bool is_refused = false;
        try {
            frame = Slice_Frame_Make(image, 0, 1);
            Slice_Histogram_Build(*frame, 0, image.level_max, nullptr, room);
        } catch (const std::bad_alloc&) {
            is_refused = true;
        }
        const bool has_histogram = frame != nullptr && frame->histogram != nullptr;
        EXPECT_NE(is_refused, has_histogram);
        histogram_nb += has_histogram ? 1 : 0;
    });
    EXPECT_GE(failed, 4) << "frame, room, record, counts";
    EXPECT_GE(histogram_nb, 1);
}

TEST(Counting_Memory, what_cannot_be_counted_at_all_is_no_lack_of_memory) {
    volumes::Volume image = Image_Of(1);
    std::unique_ptr<Slice_Frame> frame = Slice_Frame_Make(image, 0, 1);
    const Level_Room levels(SIDE * SIDE, 3);
    EXPECT_NO_THROW(Frame_Histogram_Of(*frame, levels.data(), 1.0F, {0.0F, 0.0F, 10}, nullptr));
    EXPECT_EQ(frame->histogram, nullptr);
}

TEST(Counting_Memory, without_room_for_a_thread_it_is_counted_on_the_own_one) {
    const volumes::Volume image = Image_Of(3);
    std::vector<Slices_To_Count> wanted;
    wanted.push_back(Slices_To_Count_Of(image));
    Frame_Counter counter;
    {
        const Failing_Allocation failing(1);
        EXPECT_NO_THROW(counter.Begin(std::move(wanted)));
        ASSERT_TRUE(Failing_Allocation::Happened());
    }
    std::optional<std::vector<Slices_To_Count>> taken = counter.Take();
    ASSERT_TRUE(taken) << "done when it returns";
    ASSERT_EQ(taken->size(), 1U);
    for (const auto& frame : taken->front().frames) {
        EXPECT_NE(frame->histogram, nullptr);
    }
    EXPECT_FALSE(counter.Is_Busy());
}

TEST(Counting_Memory, voxels_that_are_counted_while_more_are_read_take_no_more_of_it) {
    constexpr std::size_t block = 1000;  // bytes
    constexpr std::size_t block_nb = 500;
    std::vector<std::uint16_t> codes(block * block_nb);
    volumes::Narrow_Collector collector(volumes::Voxel_Type::Uint8, volumes::Byte_Order::Little, {}, codes);
    const auto give = [&](std::size_t from, std::size_t to) {
        for (std::size_t at = from; at < to; ++at) {
            std::fill_n(collector.Room().begin(), block, static_cast<std::uint8_t>(at % 2));
            collector.Take(block);
        }
    };
    // More than wait at once: the thread has begun, for which the system takes memory of its own.
    constexpr std::size_t begun = 10;
    give(0, begun);
    bool is_short = false;
    {
        const Failing_Allocation failing(1);
        give(begun, block_nb);
        is_short = Failing_Allocation::Happened();
    }
    EXPECT_FALSE(is_short);
    EXPECT_EQ(collector.Finish().times, (std::vector<std::uint64_t>{codes.size() / 2, codes.size() / 2}));
}

TEST(Counting_Memory, memory_that_is_missing_for_voxels_as_they_are_read_is_told_as_nothing_else) {
    constexpr std::size_t block = 100;  // bytes
    std::vector<std::uint16_t> codes(2 * block);
    int whole_nb = 0;
    const int failed = Fail_Each_Allocation([&] {
        volumes::Level_Tally tally;
        try {
            volumes::Narrow_Collector collector(volumes::Voxel_Type::Uint8, volumes::Byte_Order::Little, {}, codes);
            for (int part = 0; part < 2; ++part) {
                std::fill_n(collector.Room().begin(), block, static_cast<std::uint8_t>(4));
                collector.Take(block);
            }
            tally = collector.Finish();
        } catch (const std::bad_alloc&) {
            return;
        }
        ASSERT_EQ(tally.times.size(), 1U);
        EXPECT_EQ(tally.times.front(), codes.size());
        ++whole_nb;
    });
    EXPECT_GE(failed, 5) << "table of counts, blocks, their lists, banks, what is returned";
    EXPECT_GE(whole_nb, 1);
}

}  // namespace

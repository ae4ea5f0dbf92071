// Histograms that are counted while everything else goes on.
#include "workbench/slice_frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "workbench/frame_counter.h"

using namespace workbench;

namespace {

constexpr int WIDTH = 8;  // pixels
constexpr int HEIGHT = 4;

/** Slices of which each holds its own number only. */
volumes::Folder_Volume Opened(int slice_nb) {
    volumes::Folder_Volume made;
    made.volume.nx = WIDTH;
    made.volume.ny = HEIGHT;
    made.volume.nz = slice_nb;
    made.volume.nt = 1;
    for (int slice = 0; slice < slice_nb; ++slice) {
        made.volume.levels.Append(std::vector<std::int32_t>(WIDTH * HEIGHT, slice));
    }
    made.volume.level_max = slice_nb - 1;
    return made;
}

/** Two volumes, and their slices to be counted. */
struct Two_Volumes {
    std::vector<volumes::Folder_Volume> opened;
    std::vector<Slices_To_Count> slices;
    explicit Two_Volumes(int first_nb = 6) {
        opened.push_back(Opened(first_nb));
        opened.push_back(Opened(4));
        slices = Slices();
    }
    std::vector<Slices_To_Count> Slices() const {
        std::vector<Slices_To_Count> made;
        for (const volumes::Folder_Volume& one : opened) {
            made.push_back(Slices_To_Count_Of(one.volume));
        }
        return made;
    }
};

/** Whether the histogram counts the pixels of this slice of an opened volume, and nothing else. */
void Expect_Counted(const Slice_Frame& frame, int slice) {
    const Histo_Record* const record = frame.histogram;
    ASSERT_NE(record, nullptr);
    ASSERT_GE(record->nb_bins, 4);
    for (int bin = 0; bin < record->nb_bins; ++bin) {
        const std::uint32_t expected = bin == slice ? WIDTH * HEIGHT : 0;
        EXPECT_EQ(record->counts[bin], expected) << slice << " " << bin;
    }
}

TEST(Slice_Frames, every_slice_of_every_volume_gets_its_histogram) {
    Two_Volumes two;
    ASSERT_EQ(two.slices.size(), 2U);
    ASSERT_EQ(two.slices[0].frames.size(), 6U);
    ASSERT_EQ(two.slices[1].frames.size(), 4U);
    EXPECT_EQ(two.slices[1].frames[0]->histogram, nullptr) << "not counted yet";
    EXPECT_TRUE(Slices_Count(two.slices));
    for (int slice = 0; slice < 4; ++slice) {
        const Slice_Frame& frame = *two.slices[1].frames[static_cast<std::size_t>(slice)];
        EXPECT_TRUE(frame.Voxels().Is_At(two.opened[1].volume.levels.View().subspan(
            static_cast<std::size_t>(WIDTH * HEIGHT * slice), WIDTH * HEIGHT)));
        EXPECT_EQ(frame.levels, nullptr) << "the frame must keep no levels of its own";
        Expect_Counted(frame, slice);
    }
}

TEST(Slice_Frames, the_share_that_is_done_grows_to_all_of_it) {
    Two_Volumes two;
    std::vector<double> told;
    EXPECT_TRUE(Slices_Count(two.slices, [&](double done) {
        told.push_back(done);
        return true;
    }));
    ASSERT_FALSE(told.empty());
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_GE(told.front(), 0.0);
    EXPECT_EQ(told.back(), 1.0);
}

TEST(Slice_Frames, giving_up_ends_it_and_is_not_asked_again) {
    Two_Volumes two;
    int asked = 0;
    EXPECT_FALSE(Slices_Count(two.slices, [&](double) { return ++asked < 1; }));
    EXPECT_EQ(asked, 1);
}

TEST(Slice_Frames, another_thread_counts_them_and_this_one_gives_up) {
    for (int round = 0; round < 20; ++round) {
        Two_Volumes two;
        std::atomic<bool> is_asked = false;
        std::atomic<bool> is_given_up = false;
        bool is_done = true;
        std::thread worker([&] {
            is_done = Slices_Count(two.slices, [&](double) {
                is_asked = true;
                while (!is_given_up) {
                    std::this_thread::yield();
                }
                return false;
            });
        });
        while (!is_asked) {
            std::this_thread::yield();
        }
        is_given_up = true;
        worker.join();
        EXPECT_FALSE(is_done);
    }
}

std::vector<Slices_To_Count> Waited_For(Frame_Counter& counter) {
    std::optional<std::vector<Slices_To_Count>> taken;
    while (!(taken = counter.Take())) {
        EXPECT_TRUE(counter.Is_Busy());
        EXPECT_GE(counter.Share(), 0.0);
        EXPECT_LE(counter.Share(), 1.0);
        std::this_thread::yield();
    }
    return std::move(*taken);
}

TEST(Frame_Counter, counts_beside_its_caller_and_hands_over_once) {
    const Two_Volumes two;
    Frame_Counter counter;
    EXPECT_FALSE(counter.Is_Busy());
    EXPECT_FALSE(counter.Take());
    counter.Begin(two.Slices());
    const std::vector<Slices_To_Count> taken = Waited_For(counter);
    EXPECT_FALSE(counter.Is_Busy());
    EXPECT_FALSE(counter.Take()) << "handed over already";
    ASSERT_EQ(taken.size(), 2U);
    for (int slice = 0; slice < 6; ++slice) {
        Expect_Counted(*taken[0].frames[static_cast<std::size_t>(slice)], slice);
    }
}

TEST(Frame_Counter, nothing_reads_the_levels_when_it_was_cancelled) {
    Frame_Counter counter;
    for (int round = 0; round < 5; ++round) {
        auto image = std::make_unique<volumes::Volume>();
        image->nx = image->ny = 512;
        image->nz = 400;  // so many that the worker is far from its end
        image->nt = 1;
        image->levels = volumes::Voxel_Levels::Of_Range(image->Index(0, 0, image->nz), 0, 9, false);
        image->level_max = 9;
        std::vector<Slices_To_Count> wanted;
        wanted.push_back(Slices_To_Count_Of(*image));
        counter.Begin(std::move(wanted));
        while (counter.Share() == 0.0 && counter.Is_Busy()) {
            std::this_thread::yield();
        }
        ASSERT_LT(counter.Share(), 0.9) << "nothing would be left to read";
        counter.Cancel();
        image.reset();  // the levels go: whoever reads on is found by the sanitizers
        EXPECT_FALSE(counter.Is_Busy());
        EXPECT_FALSE(counter.Take()) << "results of images that are closed";
    }
}

TEST(Frame_Counter, what_is_begun_later_takes_the_place_of_what_was_counted) {
    const Two_Volumes former(400);
    const Two_Volumes two;
    Frame_Counter counter;
    counter.Begin(former.Slices());
    counter.Begin(two.Slices());
    const std::vector<Slices_To_Count> taken = Waited_For(counter);
    ASSERT_EQ(taken.size(), 2U);
    EXPECT_EQ(taken[0].frames.size(), 6U);
    Expect_Counted(*taken[1].frames[3], 3);
}

TEST(Frame_Counter, its_end_in_the_middle_waits_for_the_worker) {
    const Two_Volumes two(400);
    for (int round = 0; round < 20; ++round) {
        Frame_Counter counter;
        counter.Begin(two.Slices());
    }
    SUCCEED() << "with a worker left behind the sanitizers would find it";
}

}  // namespace

// Histograms that are made while images are read, beside the window's thread.
#include "workbench/slice_frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

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

std::vector<volumes::Folder_Volume> Two_Volumes() {
    std::vector<volumes::Folder_Volume> opened;
    opened.push_back(Opened(6));
    opened.push_back(Opened(4));
    return opened;
}

TEST(Slice_Frames, every_slice_of_every_volume_gets_a_frame_with_its_histogram) {
    const std::vector<volumes::Folder_Volume> opened = Two_Volumes();
    const std::vector<Slice_Frames> made = Slice_Frames_Make(opened);
    ASSERT_EQ(made.size(), 2U);
    ASSERT_EQ(made[0].size(), 6U);
    ASSERT_EQ(made[1].size(), 4U);
    for (int slice = 0; slice < 4; ++slice) {
        Slice_Frame& frame = *made[1][static_cast<std::size_t>(slice)];
        EXPECT_TRUE(frame.Voxels().Is_At(
            opened[1].volume.levels.View().subspan(static_cast<std::size_t>(WIDTH * HEIGHT * slice), WIDTH * HEIGHT)));
        EXPECT_EQ(frame.levels, nullptr) << "the frame must keep no levels of its own";
        const Histo_Record* const record = frame.Histogram_Get();
        ASSERT_NE(record, nullptr);
        ASSERT_GE(record->nb_bins, 4);
        for (int bin = 0; bin < record->nb_bins; ++bin) {
            const std::uint32_t expected = bin == slice ? WIDTH * HEIGHT : 0;
            EXPECT_EQ(record->counts[bin], expected) << slice << " " << bin;
        }
    }
}

TEST(Slice_Frames, the_share_that_is_done_grows_to_all_of_it) {
    const std::vector<volumes::Folder_Volume> opened = Two_Volumes();
    std::vector<double> told;
    EXPECT_FALSE(Slice_Frames_Make(opened, [&](double done) {
                     told.push_back(done);
                     return true;
                 }).empty());
    ASSERT_FALSE(told.empty());
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_GE(told.front(), 0.0);
    EXPECT_EQ(told.back(), 1.0);
}

TEST(Slice_Frames, giving_up_ends_it_and_is_not_asked_again) {
    const std::vector<volumes::Folder_Volume> opened = Two_Volumes();
    int asked = 0;
    EXPECT_TRUE(Slice_Frames_Make(opened, [&](double) { return ++asked < 1; }).empty());
    EXPECT_EQ(asked, 1);
}

TEST(Slice_Frames, another_thread_makes_them_and_this_one_gives_up) {
    const std::vector<volumes::Folder_Volume> opened = Two_Volumes();
    for (int round = 0; round < 20; ++round) {
        std::atomic<bool> is_asked = false;
        std::atomic<bool> is_given_up = false;
        std::vector<Slice_Frames> made;
        std::thread worker([&] {
            made = Slice_Frames_Make(opened, [&](double) {
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
        EXPECT_TRUE(made.empty());
    }
}

}  // namespace

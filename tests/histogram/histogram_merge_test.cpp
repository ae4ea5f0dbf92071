#include "histogram/histogram_merge.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

/** A record over vectors; grey, or colour with all five arrays. */
class Record {
  public:
    Record(float origin, float bin_width, std::vector<std::uint32_t> values, bool color = false) {
        arrays[0] = std::move(values);
        record.nb_bins = static_cast<std::uint16_t>(arrays[0].size());
        record.origin = origin;
        record.bin_width = bin_width;
        record.counts = arrays[0].data();
        if (color) {
            Color_Add();
            for (std::size_t a = 1; a < arrays.size(); ++a) {
                for (std::size_t bin = 0; bin < arrays[a].size(); ++bin) {
                    arrays[a][bin] = arrays[0][bin] * static_cast<std::uint32_t>(a) + 7U;
                }
            }
        }
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    void Color_Add() {
        for (std::size_t a = 1; a < arrays.size(); ++a) {
            arrays[a].assign(arrays[0].size(), 0);
        }
        record.flags |= HISTO_COLOR;
        record.counts_red = arrays[1].data();
        record.counts_green = arrays[2].data();
        record.counts_blue = arrays[3].data();
        record.counts_component0 = arrays[4].data();
    }

    Histo_Record record;
    std::array<std::vector<std::uint32_t>, 5> arrays;
};

using Record_Ptr = std::unique_ptr<Record>;

Record_Ptr Empty_On(const Histogram_Grid& grid) {
    return std::make_unique<Record>(grid.origin, grid.bin_width, std::vector<std::uint32_t>(grid.nb_bins));
}

/** The rule as it is said: frame by frame, bin by bin. */
void Merge_Plainly(Histo_Record& record, const Histo_Record& frame) {
    for (int i = 0; i < frame.nb_bins; ++i) {
        const float position =
            ((static_cast<float>(i) + 0.5F) * frame.bin_width + frame.origin - record.origin) / record.bin_width;
        if (!(position > -2147483520.0F && position < 2147483520.0F)) {
            continue;
        }
        const int target = static_cast<int>(position);
        if (target < 0 || target >= frame.nb_bins || target >= record.nb_bins) {
            continue;
        }
        record.counts[target] += frame.counts[i];
        if ((frame.flags & HISTO_COLOR) != 0) {
            record.counts_red[target] += frame.counts_red[i];
            record.counts_green[target] += frame.counts_green[i];
            record.counts_blue[target] += frame.counts_blue[i];
            record.counts_component0[target] += frame.counts_component0[i];
        }
    }
}

std::vector<std::uint32_t> Ramp(int nb) {
    std::vector<std::uint32_t> values(static_cast<std::size_t>(nb));
    for (int i = 0; i < nb; ++i) {
        values[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(i * i + 1);
    }
    return values;
}

Histogram_Extent Extent_Of(std::initializer_list<const Histo_Record*> frames) {
    Histogram_Extent extent;
    for (const Histo_Record* frame : frames) {
        extent.Add(*frame);
    }
    return extent;
}

TEST(Histogram_Grid_Choose, counts_one_level_more_than_the_extent) {
    const Record frame(0.0F, 1.0F, Ramp(256));
    const Histogram_Grid grid = Histogram_Grid_Choose(Extent_Of({&frame.record, &frame.record}), 4096);
    EXPECT_EQ(grid.nb_bins, 257);
    EXPECT_EQ(grid.bin_width, 1.0F);
    EXPECT_EQ(grid.origin, 0.0F);
}

TEST(Histogram_Grid_Choose, takes_the_smallest_whole_factor_within_the_limit) {
    const Record frame(0.0F, 1.0F, Ramp(256));
    const Histogram_Grid grid = Histogram_Grid_Choose(Extent_Of({&frame.record}), 100);
    EXPECT_EQ(grid.nb_bins, 85);
    EXPECT_EQ(grid.bin_width, 3.0F);
}

TEST(Histogram_Grid_Choose, agrees_with_counting_the_factor_up_one_by_one) {
    std::mt19937 random(11);
    for (int round = 0; round < 2000; ++round) {
        Histogram_Extent extent;
        extent.lowest_origin = static_cast<float>(static_cast<int>(random() % 2000) - 1000) * 0.37F;
        extent.highest_edge = extent.lowest_origin + static_cast<float>(random() % 100000) * 0.11F;
        extent.finest_width = 0.01F + static_cast<float>(random() % 1000) * 0.013F;
        const auto limit = static_cast<std::uint16_t>(1 + random() % 5000);
        const float span = (extent.highest_edge - extent.lowest_origin + 1.0F) / extent.finest_width;
        int factor = 1;
        while (static_cast<int>(span / static_cast<float>(factor)) > limit) {
            ++factor;
        }
        const Histogram_Grid grid = Histogram_Grid_Choose(extent, limit);
        ASSERT_EQ(grid.nb_bins, static_cast<std::uint16_t>(static_cast<int>(span / static_cast<float>(factor))));
        ASSERT_EQ(grid.bin_width, extent.finest_width * static_cast<float>(factor));
    }
}

TEST(Histogram_Grid_Choose, has_no_largest_factor) {
    for (const float width : {1e-6F, 1e-9F, 1e-15F}) {
        SCOPED_TRACE(width);
        Histogram_Extent extent;
        extent.lowest_origin = 0.0F;
        extent.highest_edge = 1000000.0F;
        extent.finest_width = width;
        const Histogram_Grid grid = Histogram_Grid_Choose(extent, 4096);
        EXPECT_EQ(grid.nb_bins, 4096);
        EXPECT_NEAR(grid.bin_width, 1000001.0F / 4096.0F, 0.1F) << "the bins cover the extent";
    }
    Histogram_Extent extent;
    extent.lowest_origin = 0.0F;
    extent.highest_edge = 1000000.0F;
    extent.finest_width = 1e-30F;
    EXPECT_LE(Histogram_Grid_Choose(extent, 4096).nb_bins, 4096) << "also beyond all factors";
}

TEST(Histogram_Grid_Choose, survives_extents_without_a_positive_span) {
    Histogram_Extent extent;
    extent.lowest_origin = 5.0F;
    extent.highest_edge = 3.0F;
    extent.finest_width = 2.0F;
    EXPECT_EQ(Histogram_Grid_Choose(extent, 100).nb_bins, 1);
    EXPECT_EQ(Histogram_Grid_Choose(extent, 100).bin_width, 2.0F);
    for (const float width : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        extent.highest_edge = 30.0F;
        extent.finest_width = width;
        EXPECT_EQ(Histogram_Grid_Choose(extent, 100).nb_bins, 1);
        EXPECT_EQ(Histogram_Grid_Choose(extent, 100).bin_width, 1.0F);
    }
}

TEST(Histogram_Grid_Choose, gives_no_bins_for_a_limit_of_none) {
    const Record frame(0.0F, 0.001F, Ramp(4000));
    EXPECT_EQ(Histogram_Grid_Choose(Extent_Of({&frame.record}), 0).nb_bins, 0);
}

TEST(Histogram_Extent, is_not_valid_before_the_first_frame) {
    EXPECT_FALSE(Histogram_Extent().Is_Valid());
    const Record frame(2.0F, 0.5F, Ramp(10));
    const Histogram_Extent extent = Extent_Of({&frame.record});
    EXPECT_TRUE(extent.Is_Valid());
    EXPECT_EQ(extent.highest_edge, 7.0F) << "its own bin width counts";
}

TEST(Histogram_Merger, puts_every_bin_of_equal_grids_in_its_place) {
    const Record frame(0.0F, 1.0F, Ramp(256));
    const Record_Ptr merged = Empty_On(Histogram_Grid_Choose(Extent_Of({&frame.record, &frame.record}), 4096));
    {
        Histogram_Merger merger(merged->record);
        merger.Add(frame.record);
        merger.Add(frame.record);
    }
    for (std::size_t bin = 0; bin < 256; ++bin) {
        ASSERT_EQ(merged->arrays[0][bin], 2 * frame.arrays[0][bin]);
    }
    EXPECT_EQ(merged->arrays[0][256], 0U);
}

TEST(Histogram_Merger, drops_bins_beyond_the_record) {
    const Record frame(0.0F, 1.0F, std::vector<std::uint32_t>(256, 1));
    const Record_Ptr merged = Empty_On({0.0F, 3.0F, 85});
    Histogram_Merger(merged->record).Add(frame.record);
    for (const std::uint32_t count : merged->arrays[0]) {
        ASSERT_EQ(count, 3U);
    }
}

TEST(Histogram_Merger, does_not_split_a_wide_bin) {
    const Record frame(0.0F, 4.0F, {10, 20, 30, 40, 50, 60, 70, 80});
    const Record_Ptr merged = Empty_On({0.0F, 1.0F, 32});
    Histogram_Merger(merged->record).Add(frame.record);
    EXPECT_EQ(merged->arrays[0][2], 10U);
    EXPECT_EQ(merged->arrays[0][6], 20U);
    EXPECT_EQ(merged->arrays[0][10], 0U) << "its target is beyond the frame's own bin count";
}

TEST(Histogram_Merger, drops_a_frame_far_above_the_lowest_origin) {
    const Record frame(1000.0F, 1.0F, std::vector<std::uint32_t>(10, 5));
    const Record_Ptr merged = Empty_On({0.0F, 1.0F, 1011});
    Histogram_Merger(merged->record).Add(frame.record);
    EXPECT_EQ(Histogram_Max_Count(merged->record), 0U);
}

TEST(Histogram_Merger, is_identical_to_the_plain_rule_on_random_grids) {
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        std::vector<Record_Ptr> frames;
        Histogram_Extent extent;
        const int frame_nb = 1 + static_cast<int>(random() % 12);
        for (int f = 0; f < frame_nb; ++f) {
            if (f > 0 && random() % 2 == 0) {  // a run of one grid
                const Histo_Record& last = frames.back()->record;
                std::vector<std::uint32_t> values(last.nb_bins);
                for (auto& value : values) {
                    value = static_cast<std::uint32_t>(random());
                }
                frames.push_back(
                    std::make_unique<Record>(last.origin, last.bin_width, std::move(values), random() % 3 == 0));
            } else {
                std::vector<std::uint32_t> values(random() % 700);
                for (auto& value : values) {
                    value = static_cast<std::uint32_t>(random());
                }
                const float origin =
                    static_cast<float>(static_cast<int>(random() % 4000) - 2000) * (random() % 2 == 0 ? 0.1F : 1.0F);
                const float width = random() % 3 == 0 ? 1.0F : 0.001F + static_cast<float>(random() % 3000) * 0.0017F;
                frames.push_back(std::make_unique<Record>(origin, width, std::move(values), random() % 3 == 0));
            }
            extent.Add(frames.back()->record);
        }
        const Histogram_Grid grid = Histogram_Grid_Choose(extent, static_cast<std::uint16_t>(random() % 3000));
        const Record_Ptr fast = Empty_On(grid);
        const Record_Ptr plain = Empty_On(grid);
        fast->Color_Add();
        plain->Color_Add();
        {
            Histogram_Merger merger(fast->record);
            for (const Record_Ptr& frame : frames) {
                merger.Add(frame->record);
            }
        }
        for (const Record_Ptr& frame : frames) {
            Merge_Plainly(plain->record, frame->record);
        }
        for (std::size_t a = 0; a < 5; ++a) {
            ASSERT_EQ(fast->arrays[a], plain->arrays[a]) << "round " << round << " array " << a;
        }
    }
}

TEST(Histogram_Merger, sums_runs_of_any_length_also_with_frames_that_lack_components) {
    std::mt19937 random(8);
    enum Kind { GREY, COLOR, INCOMPLETE };
    for (int round = 0; round < 300; ++round) {
        const Record_Ptr fast = Empty_On({0.0F, 1.0F, 40});
        const Record_Ptr plain = Empty_On({0.0F, 1.0F, 40});
        fast->Color_Add();
        plain->Color_Add();
        std::vector<Record_Ptr> frames;
        const bool mixed = round % 2 == 0;
        for (int f = 0; f < 1 + round % 13; ++f) {
            const Kind kind = mixed ? static_cast<Kind>(random() % 3) : static_cast<Kind>(round % 3);
            std::vector<std::uint32_t> values(40);
            for (auto& value : values) {
                value = static_cast<std::uint32_t>(random());
            }
            frames.push_back(std::make_unique<Record>(0.0F, 1.0F, std::move(values), kind != GREY));
            Histo_Record& frame = frames.back()->record;
            if (kind == INCOMPLETE) {
                frame.flags &= static_cast<decltype(frame.flags)>(~HISTO_COLOR);
                Merge_Plainly(plain->record, frame);
                frame.flags |= HISTO_COLOR;
                frame.counts_green = nullptr;
            } else {
                Merge_Plainly(plain->record, frame);
            }
        }
        {
            Histogram_Merger merger(fast->record);
            for (const Record_Ptr& frame : frames) {
                merger.Add(frame->record);
            }
        }
        for (std::size_t a = 0; a < 5; ++a) {
            ASSERT_EQ(fast->arrays[a], plain->arrays[a]) << "round " << round << " array " << a;
        }
    }
}

TEST(Histogram_Merger, spreads_wide_bins_like_the_plain_rule_whatever_their_number) {
    std::mt19937 random(9);
    for (const int nb_bins : {1, 2, 3, 4, 5, 7, 8, 9, 1000, 65535}) {
        for (const float record_width : {1.0F, 0.5F, 0.25F, 0.3F, 3.0F}) {
            std::vector<std::uint32_t> values(static_cast<std::size_t>(nb_bins));
            for (auto& value : values) {
                value = static_cast<std::uint32_t>(random());
            }
            const float width = record_width * (1.0F + static_cast<float>(random() % 100 + 1) * 0.013F);
            const Record frame(static_cast<float>(random() % 50) * -0.7F, width, std::move(values), true);
            Histogram_Grid grid;
            grid.origin = -20.0F;
            grid.bin_width = record_width;
            grid.nb_bins = 50000;
            const Record_Ptr fast = Empty_On(grid);
            const Record_Ptr plain = Empty_On(grid);
            fast->Color_Add();
            plain->Color_Add();
            Histogram_Merger(fast->record).Add(frame.record);
            Merge_Plainly(plain->record, frame.record);
            for (std::size_t a = 0; a < 5; ++a) {
                ASSERT_EQ(fast->arrays[a], plain->arrays[a]) << nb_bins << " bins on a width of " << record_width;
            }
        }
    }
}

TEST(Histogram_Merger, survives_frames_with_impossible_numbers) {
    const float bad[] = {
        std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1.0F, 0.0F, 1e38F, -1e38F};
    for (const float origin : bad) {
        for (const float width : bad) {
            const Record frame(origin, width, Ramp(50));
            const Record_Ptr fast = Empty_On({0.0F, 1.0F, 60});
            const Record_Ptr plain = Empty_On({0.0F, 1.0F, 60});
            Histogram_Merger(fast->record).Add(frame.record);
            Merge_Plainly(plain->record, frame.record);
            EXPECT_EQ(fast->arrays[0], plain->arrays[0]) << origin << " " << width;
        }
    }
}

TEST(Histogram_Max_Count, looks_at_every_array_of_a_colour_record_only) {
    Record record(0.0F, 1.0F, {1, 2, 3}, true);
    record.arrays[3][1] = 99;
    EXPECT_EQ(Histogram_Max_Count(record.record), 99U);
    record.record.flags = 0;
    EXPECT_EQ(Histogram_Max_Count(record.record), 3U);
    record.record.nb_bins = 0;
    EXPECT_EQ(Histogram_Max_Count(record.record), 0U);
}

}  // namespace

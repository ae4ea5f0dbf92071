#include "histogram/tool_histo_compute.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <random>

#include "histogram/tool_histo_paint.h"
#include "kits/common/messages.h"
#include "tests/histogram/histo_scene.h"
#include "tests/support/import_hook.h"

namespace {

std::vector<std::uint32_t> Rising(int n, std::uint32_t first = 1) {
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(n));
    std::iota(counts.begin(), counts.end(), first);
    return counts;
}

std::vector<std::uint32_t> Copy(const std::uint32_t* counts, int n) {
    return {counts, counts + n};
}

class Histo_Computation : public testing::Test {
  protected:
    ~Histo_Computation() override { EXPECT_EQ(Iterator_Open_Nb(), 0); }

    const Histo_Record& Record() const { return *panel.data->record; }
    std::vector<std::uint32_t> Counts() const { return Copy(Record().counts, Record().nb_bins); }

    Histo_Scene scene;
    Tool_Histo panel;
};

/** The rule as it is said, bin by bin and array by array. */
struct Plain_Merge {
    std::vector<std::uint32_t> counts[5];
    float origin = 1000000.0F;
    float bin_width = 1000000.0F;
    bool color = false;

    Plain_Merge(const std::vector<std::unique_ptr<Scene_Object>>& objects, int limit) {
        float highest = -1000000.0F;
        for (const auto& one : objects) {
            const Histo_Record& frame = one->record;
            origin = std::min(origin, frame.origin);
            bin_width = std::min(bin_width, frame.bin_width);
            highest = std::max(highest, static_cast<float>(frame.nb_bins) * frame.bin_width + frame.origin);
        }
        const float span = (highest - origin + 1.0F) / bin_width;
        int factor = 1;
        while (static_cast<int>(span / static_cast<float>(factor)) > limit) {
            ++factor;
        }
        const auto nb = static_cast<std::size_t>(span / static_cast<float>(factor));
        bin_width = bin_width * static_cast<float>(factor);
        for (auto& array : counts) {
            array.assign(nb, 0);
        }
        for (const auto& one : objects) {
            Add(*one);
        }
    }
    void Add(const Scene_Object& one) {
        const Histo_Record& frame = one.record;
        const bool has_color = (frame.flags & HISTO_COLOR) != 0;
        color = color || has_color;
        for (int i = 0; i < frame.nb_bins; ++i) {
            const float position =
                ((static_cast<float>(i) + 0.5F) * frame.bin_width + frame.origin - origin) / bin_width;
            const int target = static_cast<int>(position);
            if (target < 0 || target >= frame.nb_bins || target >= static_cast<int>(counts[0].size())) {
                continue;
            }
            for (std::size_t a = 0; a < (has_color ? 5U : 1U); ++a) {
                counts[a][static_cast<std::size_t>(target)] += one.counts[a][static_cast<std::size_t>(i)];
            }
        }
    }
};

}  // namespace

TEST_F(Histo_Computation, two_frames_of_one_grid_fall_bin_into_bin_and_the_span_has_one_bin_more) {
    scene.Add_Grey({}, Rising(256));
    scene.Add_Grey({}, Rising(256, 1000));
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().nb_bins, 257);
    EXPECT_EQ(Record().bin_width, 1.0F);
    EXPECT_EQ(Record().origin, 0.0F);
    for (int bin = 0; bin < 256; ++bin) {
        EXPECT_EQ(Record().counts[bin], static_cast<std::uint32_t>(bin + 1 + bin + 1000));
    }
    EXPECT_EQ(Record().counts[256], 0U);
    EXPECT_EQ(Record().max_count, 256U + 1255U);
    EXPECT_EQ(Variable_Number("$GLI_HISTO_BINS_NB", -1), 257);
}

TEST_F(Histo_Computation, a_limit_of_100_bins_triples_the_width_and_drops_what_passes_the_last_bin) {
    scene.Add_Grey({}, std::vector<std::uint32_t>(256, 1));
    scene.Add_Grey({}, std::vector<std::uint32_t>(256, 1));
    Variable_Set("$GLI_HISTO_BINS_MAX", 100);
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().nb_bins, 85);
    EXPECT_EQ(Record().bin_width, 3.0F);
    EXPECT_EQ(Counts(), std::vector<std::uint32_t>(85, 6)) << "frame bin 255 would be record bin 85";
    EXPECT_EQ(Variable_Number("$GLI_HISTO_BINS_NB", -1), 85);
}

TEST_F(Histo_Computation, a_wide_frame_bin_goes_whole_to_the_bin_of_its_centre) {
    scene.Add_Grey({}, std::vector<std::uint32_t>(12, 0));
    scene.Add_Grey({0.0F, 3.0F}, {10, 20, 30, 40});
    ASSERT_EQ(Histo_Compute(panel), 1);
    ASSERT_EQ(Record().nb_bins, 13);
    // Centres 1.5, 4.5, 7.5 and 10.5: the targets 4, 7 and 10 are beyond the frame's own four bins.
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Histo_Computation, a_short_frame_far_above_the_others_contributes_nothing) {
    scene.Add_Grey({}, Rising(20));
    scene.Add_Grey({1000.0F, 1.0F}, std::vector<std::uint32_t>(10, 5));
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().nb_bins, 1011);
    EXPECT_EQ(std::accumulate(Record().counts, Record().counts + 1011, 0U), 210U);
}

TEST_F(Histo_Computation, colour_arrays_begin_with_the_first_colour_frame) {
    scene.Add_Grey({}, {100, 100, 100});
    scene.Add_Color({}, {1, 2, 3});
    scene.Add_Grey({}, {10, 10, 10});
    scene.Add_Color({}, {1, 0, 0});
    ASSERT_EQ(Histo_Compute(panel), 1);
    ASSERT_EQ(Record().flags, HISTO_COLOR);
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{112, 112, 113, 0}));
    EXPECT_EQ(Copy(Record().counts_red, 4), (std::vector<std::uint32_t>{4, 4, 6, 0}));
    EXPECT_EQ(Copy(Record().counts_green, 4), (std::vector<std::uint32_t>{6, 6, 9, 0}));
    EXPECT_EQ(Copy(Record().counts_blue, 4), (std::vector<std::uint32_t>{8, 8, 12, 0}));
    EXPECT_EQ(Copy(Record().counts_component0, 4), (std::vector<std::uint32_t>{10, 10, 15, 0}));
    EXPECT_EQ(Record().max_count, 113U);
}

TEST_F(Histo_Computation, the_largest_count_of_any_array_is_the_scale_of_a_colour_record) {
    scene.Add_Color({}, {7, 2});
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().max_count, 35U) << "the fourth array";
    scene.objects[0]->counts[2][1] = 99;
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().max_count, 99U);
}

TEST_F(Histo_Computation, a_grey_computation_after_a_colour_one_has_no_colour_arrays) {
    scene.Add_Grey({}, {1, 2});
    Scene_Object& color = scene.Add_Color({}, {7, 2});
    ASSERT_EQ(Histo_Compute(panel), 1);
    color.Select(false);
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().flags, 0);
    EXPECT_EQ(Record().counts_red, nullptr);
    EXPECT_EQ(Record().counts_component0, nullptr);
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{1, 2, 0}));
    EXPECT_EQ(Record().max_count, 2U);
}

TEST_F(Histo_Computation, frames_that_share_their_descriptor_give_it_as_the_source) {
    scene.Add_Grey({}, {1}, "T1");
    scene.Add_Grey({}, {1}, "T1");
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "T1");
    EXPECT_STREQ(panel.x_label, "Pixel Intensity");
    EXPECT_STREQ(panel.y_label, "Nb of Pixels");
}

TEST_F(Histo_Computation, frames_of_two_descriptors_give_mix) {
    scene.Add_Grey({}, {1}, "T1");
    scene.Add_Grey({}, {1}, "T2");
    scene.Add_Grey({}, {1}, "T1");
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "mix");
}

TEST_F(Histo_Computation, a_frame_without_descriptor_after_one_with_it_gives_mix) {
    scene.Add_Grey({}, {1}, "T1");
    scene.Add_Grey({}, {1});
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "mix");
}

TEST_F(Histo_Computation, a_frame_without_descriptor_before_one_with_it_changes_nothing) {
    scene.Add_Grey({}, {1});
    scene.Add_Grey({}, {1}, "T1");
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "T1");
}

TEST_F(Histo_Computation, a_frame_without_histogram_still_mixes_the_descriptor) {
    scene.Add_Grey({}, {1}, "T1");
    scene.Add_Frame("T2");
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "mix");
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{1, 0}));
}

TEST_F(Histo_Computation, the_source_keeps_its_text_when_no_frame_has_a_descriptor) {
    scene.Add_Grey({}, {1}, "T1");
    ASSERT_EQ(Histo_Compute(panel), 1);
    scene.objects[0]->object.descriptor = nullptr;
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_STREQ(panel.source_label, "T1");
}

TEST_F(Histo_Computation, a_descriptor_longer_than_the_label_is_cut) {
    const std::string text(200, 'd');
    scene.Add_Grey({}, {1}, text.c_str());
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(std::string(panel.source_label), text.substr(0, HISTO_LABEL_SIZE - 1));
}

TEST_F(Histo_Computation, without_selected_frames_the_panel_ends_without_a_record) {
    Scene_Object& one = scene.Add_Grey({}, {1, 2, 3});
    ASSERT_EQ(Histo_Compute(panel), 1);
    one.Select(false);
    EXPECT_EQ(Histo_Compute(panel), 0);
    EXPECT_EQ(panel.data->record, nullptr);
    EXPECT_EQ(Histo_Paint(panel), 0);
    EXPECT_EQ(Histo_Cursor(panel), 0);
}

TEST_F(Histo_Computation, frames_of_another_window_do_not_count) {
    scene.Add_Grey({}, {1, 2, 3});
    Quorel_2D other_volume;
    Quorel_Window other;
    other.volume = &other_volume;
    Variable_Define_Pointer("$WINDOW_CUR", &other);
    EXPECT_EQ(Histo_Compute(panel), 0);
    EXPECT_EQ(panel.data->record, nullptr);
}

TEST_F(Histo_Computation, without_a_window_the_record_stays_as_it_was) {
    scene.Add_Grey({}, {4, 5});
    ASSERT_EQ(Histo_Compute(panel), 1);
    const Histo_Record* record = panel.data->record;
    Variable_Set("$GLI_COLOR_COMPONENT", 3);
    Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    EXPECT_EQ(Histo_Compute(panel), 0);
    EXPECT_EQ(panel.data->record, record);
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{4, 5, 0}));
    EXPECT_EQ(panel.color_component, 0) << "returns before it reads the component";
}

TEST_F(Histo_Computation, frames_without_histogram_leave_an_emptied_record_with_its_old_numbers) {
    Scene_Object& one = scene.Add_Color({2.0F, 0.5F}, {4, 5}, "old");
    ASSERT_EQ(Histo_Compute(panel), 1);
    const Histo_Record before = Record();
    one.Histogram_Drop();
    one.object.descriptor = "new";
    EXPECT_EQ(Histo_Compute(panel), 0);
    ASSERT_NE(panel.data->record, nullptr);
    EXPECT_FALSE(panel.data->Has_Counts());
    EXPECT_EQ(Record().flags, 0);
    EXPECT_EQ(Record().counts_red, nullptr);
    EXPECT_EQ(Record().counts_green, nullptr);
    EXPECT_EQ(Record().counts_blue, nullptr);
    EXPECT_EQ(Record().counts_component0, nullptr);
    EXPECT_EQ(Record().nb_bins, before.nb_bins);
    EXPECT_EQ(Record().origin, before.origin);
    EXPECT_EQ(Record().bin_width, before.bin_width);
    EXPECT_EQ(Record().max_count, before.max_count);
    EXPECT_STREQ(panel.source_label, "old");
    EXPECT_EQ(Histo_Paint(panel), 0);
    EXPECT_EQ(Histo_Cursor(panel), 0);
    EXPECT_EQ(panel.Fit_Gaussian(), 0);
    EXPECT_EQ(panel.Fit_Derivative(3), 0);
}

TEST_F(Histo_Computation, without_a_free_iterator_the_record_is_freed) {
    scene.Add_Grey({}, {4, 5});
    ASSERT_EQ(Histo_Compute(panel), 1);
    std::vector<unsigned short> taken;
    while (const unsigned short handle = Iterator_Init("test", nullptr)) {
        taken.push_back(handle);
    }
    EXPECT_EQ(Histo_Compute(panel), 0);
    EXPECT_EQ(panel.data->record, nullptr);
    EXPECT_EQ(Iterator_Open_Nb(), static_cast<int>(taken.size()));
    for (const unsigned short handle : taken) {
        Iterator_End(handle);
    }
}

TEST_F(Histo_Computation, the_colour_component_is_copied_on_every_call_that_has_a_window) {
    Variable_Set("$GLI_COLOR_COMPONENT", 3);
    EXPECT_EQ(Histo_Compute(panel), 0);
    EXPECT_EQ(panel.color_component, 3);
    scene.Add_Grey({}, {4, 5});
    Variable_Set("$GLI_COLOR_COMPONENT", 200);
    EXPECT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(panel.color_component, 200);
}

TEST_F(Histo_Computation, the_grey_level_selection_restricts_nothing) {
    scene.Add_Grey({}, Rising(10));
    ASSERT_EQ(Histo_Compute(panel), 1);
    const std::vector<std::uint32_t> all = Counts();
    Variable_Set("$SELECT_GLI_MIN", 3);
    Variable_Set("$SELECT_GLI_MAX", 5);
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Counts(), all);
}

TEST_F(Histo_Computation, a_limit_of_0_gives_a_record_of_0_bins) {
    scene.Add_Grey({}, {4, 5});
    Variable_Set("$GLI_HISTO_BINS_MAX", 0);
    EXPECT_EQ(Histo_Compute(panel), 1);
    EXPECT_TRUE(panel.data->Has_Counts());
    EXPECT_EQ(Record().nb_bins, 0);
    EXPECT_EQ(Record().max_count, 0U);
    EXPECT_EQ(panel.Fit_Gaussian(), 1);
    EXPECT_EQ(panel.Fit_Derivative(3), 1);
    EXPECT_EQ(panel.data->peak_nb, 0);
}

TEST_F(Histo_Computation, a_span_that_is_not_positive_gives_one_bin_of_the_finest_width) {
    Scene_Object& one = scene.Add_Grey({5.0F, -2.0F}, {4, 5});
    ASSERT_EQ(Histo_Compute(panel), 0) << "its upper edge lies below its origin: as if there were no histogram";
    one.record.bin_width = 0.0F;
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().nb_bins, 1);
    EXPECT_EQ(Record().bin_width, 1.0F);
    EXPECT_EQ(Variable_Number("$GLI_HISTO_BINS_NB", -1), 1);
    one.record.bin_width = std::nanf("");
    ASSERT_EQ(Histo_Compute(panel), 0);
}

TEST_F(Histo_Computation, sums_wrap_at_32_bits) {
    scene.Add_Grey({}, {0xFFFFFFFFU, 1});
    scene.Add_Grey({}, {3, 1});
    ASSERT_EQ(Histo_Compute(panel), 1);
    EXPECT_EQ(Record().counts[0], 2U);
}

TEST_F(Histo_Computation, the_first_message_is_the_trace_and_there_is_no_other) {
    std::vector<std::string> texts;
    const auto receive = [](void* context, HWND, int level, const char* text) {
        static_cast<std::vector<std::string>*>(context)->push_back(std::to_string(level) + " " + text);
    };
    Message_Receiver_Add(receive, &texts, true);
    EXPECT_EQ(Histo_Compute(panel), 0);
    scene.Add_Grey({}, {1});
    EXPECT_EQ(Histo_Compute(panel), 1);
    Message_Receiver_Remove(receive, &texts);
    EXPECT_EQ(texts, (std::vector<std::string>(2, "16 in Histo_Compute()")));
}

TEST_F(Histo_Computation, equals_the_rule_said_bin_by_bin_on_random_frames) {
    std::mt19937 random(7);
    const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    for (int round = 0; round < 200; ++round) {
        Histo_Scene mixed;
        const int frame_nb = between(1, 6);
        for (int f = 0; f < frame_nb; ++f) {
            std::vector<std::uint32_t> counts(static_cast<std::size_t>(between(1, 300)));
            for (auto& count : counts) {
                count = random() >> 2U;
            }
            const Scene_Grid grid = {static_cast<float>(between(-200, 200)) * 0.37F,
                                     static_cast<float>(between(1, 40)) * 0.11F};
            between(0, 2) == 0 ? mixed.Add_Color(grid, counts) : mixed.Add_Grey(grid, counts);
        }
        const int limit = between(1, 500);
        Variable_Set("$GLI_HISTO_BINS_MAX", limit);
        const Plain_Merge plain(mixed.objects, limit);
        ASSERT_EQ(Histo_Compute(panel), 1);
        ASSERT_EQ(Record().origin, plain.origin);
        ASSERT_EQ(Record().bin_width, plain.bin_width);
        ASSERT_EQ(Counts(), plain.counts[0]) << "round " << round;
        ASSERT_EQ(Record().flags != 0, plain.color);
        if (plain.color) {
            const int nb = Record().nb_bins;
            ASSERT_EQ(Copy(Record().counts_red, nb), plain.counts[1]);
            ASSERT_EQ(Copy(Record().counts_green, nb), plain.counts[2]);
            ASSERT_EQ(Copy(Record().counts_blue, nb), plain.counts[3]);
            ASSERT_EQ(Copy(Record().counts_component0, nb), plain.counts[4]);
        }
    }
}

TEST_F(Histo_Computation, what_a_copy_computes_the_other_panel_sees) {
    scene.Add_Grey({}, {4, 5});
    Tool_Histo copy(panel);
    ASSERT_EQ(Histo_Compute(copy), 1);
    EXPECT_EQ(Counts(), (std::vector<std::uint32_t>{4, 5, 0}));
}

namespace {

/** A host whose frames keep their counts only as long as an iterator runs over them. */
Histo_Scene* frames_of_iterator = nullptr;
Import_Hook iterator_end;
int passes_ended = 0;
char common_descriptor[16] = "";

void Counts_Go_With_The_Iterator(unsigned short handle) {
    reinterpret_cast<void (*)(unsigned short)>(iterator_end.Original())(handle);
    if (++passes_ended == 2) {
        for (const auto& one : frames_of_iterator->objects) {
            std::fill(one->counts[0].begin(), one->counts[0].end(), 0U);
        }
        std::strcpy(common_descriptor, "gone");
    }
}

}  // namespace

TEST_F(Histo_Computation, all_counts_and_texts_are_read_before_the_iterator_ends) {
    std::strcpy(common_descriptor, "CT");
    for (int frame = 0; frame < 7; ++frame) {
        scene.Add_Grey({}, Rising(50), common_descriptor);
    }
    frames_of_iterator = &scene;
    passes_ended = 0;
    iterator_end =
        Import_Hook("", "Kit_Dataset.dll", "_Z12Iterator_Endt", reinterpret_cast<void*>(Counts_Go_With_The_Iterator));
    ASSERT_TRUE(iterator_end.Is_Set());
    const int result = Histo_Compute(panel);
    iterator_end = {};
    ASSERT_EQ(result, 1);
    EXPECT_EQ(passes_ended, 2);
    EXPECT_STREQ(panel.source_label, "CT");
    for (int bin = 0; bin < 50; ++bin) {
        ASSERT_EQ(Record().counts[bin], 7U * static_cast<std::uint32_t>(bin + 1)) << bin;
    }
}

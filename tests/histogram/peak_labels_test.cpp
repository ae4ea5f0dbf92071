#include "histogram/peak_labels.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Requests = std::vector<Peak_Label_Request>;

/** Texts of shown labels may not touch, and stay inside. */
void Expect_Legible(const Requests& requests, const std::vector<Peak_Label_Place>& places, int width, int height) {
    ASSERT_EQ(requests.size(), places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (!places[i].shown) {
            continue;
        }
        ASSERT_GE(places[i].left, 0);
        ASSERT_GE(places[i].bottom, 0);
        ASSERT_LE(places[i].left + requests[i].width, width);
        ASSERT_LE(places[i].bottom + requests[i].height, height);
        // Over its own peak.
        ASSERT_LE(places[i].left, requests[i].column);
        ASSERT_GE(places[i].left + requests[i].width, requests[i].column);
        for (std::size_t j = 0; j < i; ++j) {
            if (places[j].shown) {
                const bool apart_x = places[i].left + requests[i].width + PEAK_LABEL_APART <= places[j].left ||
                                     places[j].left + requests[j].width + PEAK_LABEL_APART <= places[i].left;
                const bool apart_y = places[i].bottom + requests[i].height <= places[j].bottom ||
                                     places[j].bottom + requests[j].height <= places[i].bottom;
                ASSERT_TRUE(apart_x || apart_y) << i << " and " << j;
            }
        }
    }
}

int Shown_Nb(const std::vector<Peak_Label_Place>& places) {
    int nb = 0;
    for (const Peak_Label_Place& place : places) {
        nb += place.shown ? 1 : 0;
    }
    return nb;
}

}  // namespace

TEST(Peak_Labels_Test, a_lone_label_stands_centred_over_its_peak) {
    const auto places = Peak_Labels_Place(Requests{{100, 40, 30, 12}}, 300, 200);
    ASSERT_TRUE(places[0].shown);
    EXPECT_EQ(places[0].left, 85);
    EXPECT_EQ(places[0].bottom, 40 + PEAK_LABEL_GAP);
}

TEST(Peak_Labels_Test, the_higher_peak_keeps_its_place) {
    const Requests requests = {{100, 40, 30, 12}, {104, 44, 30, 12}};
    const auto places = Peak_Labels_Place(requests, 300, 200);
    EXPECT_EQ(places[1].left, 104 - 15);
    EXPECT_EQ(places[1].bottom, 44 + PEAK_LABEL_GAP);
    EXPECT_TRUE(places[0].shown);
    Expect_Legible(requests, places, 300, 200);
}

TEST(Peak_Labels_Test, a_top_above_the_area_has_its_label_at_the_upper_edge) {
    const auto places = Peak_Labels_Place(Requests{{100, 200, 30, 12}, {200, 195, 30, 12}}, 300, 200);
    EXPECT_EQ(places[0].bottom, 188);
    EXPECT_EQ(places[1].bottom, 188);
}

TEST(Peak_Labels_Test, peaks_out_of_view_have_none) {
    const Requests requests = {{-1, 40, 30, 12}, {300, 40, 30, 12}, {50, -1, 30, 12}};
    EXPECT_EQ(Shown_Nb(Peak_Labels_Place(requests, 300, 200)), 0);
}

TEST(Peak_Labels_Test, labels_at_the_sides_move_inside) {
    const Requests requests = {{0, 40, 30, 12}, {299, 40, 30, 12}};
    const auto places = Peak_Labels_Place(requests, 300, 200);
    EXPECT_EQ(places[0].left, 0);
    EXPECT_EQ(places[1].left, 270);
}

TEST(Peak_Labels_Test, no_room_no_label) {
    EXPECT_EQ(Shown_Nb(Peak_Labels_Place(Requests{{10, 4, 30, 12}}, 29, 200)), 0);
    EXPECT_EQ(Shown_Nb(Peak_Labels_Place(Requests{{10, 4, 30, 12}}, 300, 11)), 0);
    EXPECT_EQ(Shown_Nb(Peak_Labels_Place(Requests{{10, 4, 0, 12}}, 300, 100)), 0);
    // 40 peaks on one column: as many as there are lines near it.
    const Requests crowd(40, {150, 20, 30, 12});
    const auto places = Peak_Labels_Place(crowd, 300, 200);
    EXPECT_GE(Shown_Nb(places), 8);
    EXPECT_LT(Shown_Nb(places), 40);
    Expect_Legible(crowd, places, 300, 200);
}

TEST(Peak_Labels_Test, sixty_peaks_side_by_side_are_all_named) {
    Requests requests;
    for (int peak = 0; peak < 60; ++peak) {
        requests.push_back({30 * peak + 20, 100 + 7 * (peak % 9), 34, 14});
    }
    const auto places = Peak_Labels_Place(requests, 1800, 900);
    EXPECT_EQ(Shown_Nb(places), 60);
    Expect_Legible(requests, places, 1800, 900);
}

TEST(Peak_Labels_Test, in_a_small_plot_the_highest_peaks_are_named_and_the_curves_stay_visible) {
    constexpr int width = 240;
    constexpr int height = 100;
    Requests requests;
    for (int peak = 0; peak < 60; ++peak) {
        requests.push_back({4 * peak + 2, 10 + peak, 25, 11});
    }
    const auto places = Peak_Labels_Place(requests, width, height);
    EXPECT_GT(Shown_Nb(places), 5);
    EXPECT_LE(Shown_Nb(places) * 25 * 11, width * height / 4);
    EXPECT_TRUE(places[59].shown);
    EXPECT_FALSE(places[0].shown);
    Expect_Legible(requests, places, width, height);
}

TEST(Peak_Labels_Test, random_crowds_stay_legible) {
    std::mt19937 random(3);
    const auto pick = [&](int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); };
    for (int round = 0; round < 300; ++round) {
        const int width = pick(1, 900);
        const int height = pick(1, 500);
        Requests requests(static_cast<std::size_t>(pick(0, 100)));
        for (auto& request : requests) {
            request = {pick(-20, width + 20), pick(-1, height), pick(4, 60), pick(8, 30)};
        }
        Expect_Legible(requests, Peak_Labels_Place(requests, width, height), width, height);
    }
}

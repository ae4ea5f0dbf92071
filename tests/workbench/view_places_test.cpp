#include "workbench/model/view_places.h"

#include <gtest/gtest.h>

#include <vector>

using namespace workbench;

namespace {

constexpr int GAP = 2;
const std::vector<View_Arrangement> ALL = {View_Arrangement::One, View_Arrangement::Three, View_Arrangement::Four};
const std::vector<Pixel_Rect> ROOMS = {{10, 20, 810, 620}, {0, 0, 300, 900}, {5, 5, 8, 7}, {5, 5, 5, 5}};

int Area(const Pixel_Rect& of) {
    return (of.right - of.left) * (of.bottom - of.top);
}

TEST(View_Places, views_lie_in_the_room_and_apart) {
    for (const Pixel_Rect& room : ROOMS) {
        for (const View_Arrangement arrangement : ALL) {
            for (int large = 0; large < PLANE_VIEW_NB; ++large) {
                const Views_Shown shown = {arrangement, large, false};
                const auto places = View_Places(room, shown, GAP);
                std::vector<Pixel_Rect> used;
                for (int view = 0; view < ALL_VIEW_NB; ++view) {
                    const Pixel_Rect& place = places[static_cast<std::size_t>(view)];
                    if (!shown.Has(view)) {
                        EXPECT_TRUE(place.Is_Empty());
                        continue;
                    }
                    EXPECT_EQ(Area(Rect_Common(place, room)), Area(place));
                    for (const Pixel_Rect& other : used) {
                        EXPECT_TRUE(Rect_Common(place, other).Is_Empty());
                    }
                    used.push_back(place);
                }
            }
        }
    }
}

TEST(View_Places, one_view_has_all_of_the_room) {
    for (int large = 0; large < PLANE_VIEW_NB; ++large) {
        const auto places = View_Places(ROOMS[0], {View_Arrangement::One, large, false}, GAP);
        EXPECT_EQ(Area(places[static_cast<std::size_t>(large)]), Area(ROOMS[0]));
    }
}

TEST(View_Places, the_large_one_of_three_is_the_chosen_one) {
    for (const std::size_t room : {0U, 1U}) {
        for (int large = 0; large < PLANE_VIEW_NB; ++large) {
            const auto places = View_Places(ROOMS[room], {View_Arrangement::Three, large, false}, GAP);
            for (int view = 0; view < PLANE_VIEW_NB; ++view) {
                if (view != large) {
                    EXPECT_GT(Area(places[static_cast<std::size_t>(large)]),
                              2 * Area(places[static_cast<std::size_t>(view)]));
                }
            }
        }
    }
}

TEST(View_Places, four_are_of_one_size_with_the_table_at_the_lower_right) {
    const auto places = View_Places(ROOMS[0], {View_Arrangement::Four, 1, false}, GAP);
    for (const Pixel_Rect& place : places) {
        EXPECT_NEAR(Area(place), 399 * 299, 1200);
    }
    EXPECT_EQ(places[1].left, ROOMS[0].left);
    EXPECT_EQ(places[1].top, ROOMS[0].top);
    EXPECT_EQ(places[TABLE_VIEW].right, ROOMS[0].right);
    EXPECT_EQ(places[TABLE_VIEW].bottom, ROOMS[0].bottom);
}

}  // namespace

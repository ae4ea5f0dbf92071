#include "workbench/model/update_delivery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

using namespace workbench;

namespace {

TEST(Update_Delivery, delivers_at_once) {
    Update_Delivery delivery;
    std::vector<unsigned long long> heard;
    delivery.Announce(5, [&](unsigned long long flags) { heard.push_back(flags); });
    EXPECT_EQ(heard, std::vector<unsigned long long>{5});
    EXPECT_EQ(delivery.Depth(), 0);
}

TEST(Update_Delivery, delivers_an_announcement_made_inside_before_the_outer_one_ends) {
    Update_Delivery delivery;
    std::vector<int> order;
    const auto inner = [&](unsigned long long) { order.push_back(2); };
    delivery.Announce(1, [&](unsigned long long) {
        order.push_back(1);
        delivery.Announce(2, inner);
        order.push_back(3);
    });
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(Update_Delivery, listeners_that_answer_for_ever_are_stopped_and_nothing_stays_behind) {
    Update_Delivery delivery;
    int calls = 0;
    int deepest = 0;
    std::function<void(unsigned long long)> answer = [&](unsigned long long) {
        ++calls;
        deepest = std::max(deepest, delivery.Depth());
        delivery.Announce(1, answer);
    };
    delivery.Announce(1, answer);
    EXPECT_EQ(deepest, Update_Delivery::MAX_DEPTH);
    EXPECT_LE(calls, Update_Delivery::MAX_DEPTH * (Update_Delivery::MAX_ROUNDS + 1));
    int later = 0;
    delivery.Announce(8, [&](unsigned long long flags) {
        EXPECT_EQ(flags, 8U);
        ++later;
    });
    EXPECT_EQ(later, 1);
}

TEST(Update_Delivery, flags_that_came_too_deep_are_delivered_afterwards_together) {
    Update_Delivery delivery;
    std::vector<unsigned long long> heard;
    std::function<void(unsigned long long)> nest = [&](unsigned long long flags) {
        heard.push_back(flags);
        if (heard.size() <= Update_Delivery::MAX_DEPTH) {
            delivery.Announce(1ULL << heard.size(), nest);
            delivery.Announce(0x100ULL << heard.size(), [&](unsigned long long) {});
        }
    };
    delivery.Announce(1, nest);
    ASSERT_GT(heard.size(), static_cast<std::size_t>(Update_Delivery::MAX_DEPTH));
    EXPECT_EQ(heard.back() & 0x10U, 0x10U);
}

}  // namespace

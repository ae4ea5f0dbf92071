#include "workbench/volumes/work_share.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/workbench/volumes/failing_allocation.h"

using namespace volumes;

namespace {

class Work_Share_Test : public testing::TestWithParam<std::size_t> {};

TEST_P(Work_Share_Test, every_piece_is_done_once) {
    std::vector<std::atomic<int>> done(500);
    std::size_t told = 0;
    EXPECT_TRUE(Work_Share(
        done.size(), GetParam(), [&](std::size_t at) { ++done[at]; },
        [&](std::size_t count) {
            EXPECT_GE(count, told);
            told = count;
            return true;
        }));
    for (const std::atomic<int>& one : done) {
        EXPECT_EQ(one, 1);
    }
    EXPECT_EQ(told, done.size());
    EXPECT_TRUE(Work_Share(0, GetParam(), [](std::size_t) { FAIL(); }, {}));
}

TEST_P(Work_Share_Test, the_first_failure_in_order_is_thrown_on) {
    for (int turn = 0; turn < 20; ++turn) {
        std::atomic<std::size_t> done = 0;
        try {
            Work_Share(200, GetParam(),
                       [&](std::size_t at) {
                           ++done;
                           if (at % 50 == 20) {
                               throw std::runtime_error(std::to_string(at));
                           }
                       },
                       {});
            FAIL() << "nothing was thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "20");
        }
        EXPECT_LT(done, 200U);
    }
}

TEST_P(Work_Share_Test, giving_up_ends_it_soon) {
    std::atomic<std::size_t> done = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Work_Share(
        10000, GetParam(),
        [&](std::size_t) {
            ++done;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        },
        [](std::size_t count) { return count < 3; }));
    EXPECT_LT(done, 5000U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

INSTANTIATE_TEST_SUITE_P(threads, Work_Share_Test, testing::Values(1, 2, 7));

TEST(Work_Share, what_fails_after_giving_up_is_not_thrown) {
    std::atomic<bool> is_given_up = false;
    EXPECT_FALSE(Work_Share(
        2, 2,
        [&](std::size_t at) {
            while (at == 1 && !is_given_up) {
                std::this_thread::yield();
            }
            if (at == 1) {
                throw std::runtime_error("late");
            }
        },
        [&](std::size_t count) {
            is_given_up = is_given_up || count > 0;
            return count == 0;
        }));
}

TEST(Work_Share, without_memory_for_threads_fewer_or_none_do_it_all) {
    std::vector<std::atomic<int>> done(20);
    const std::function<void(std::size_t)> work = [&done](std::size_t at) { ++done[at]; };
    for (const int fail_at : {0, 1, 2, 3}) {
        const Failing_Allocation failure(fail_at);
        EXPECT_TRUE(Work_Share(done.size(), 4, work, {}));
        EXPECT_TRUE(failure.Happened());
    }
    for (const std::atomic<int>& one : done) {
        EXPECT_EQ(one, 4);
    }
}

TEST(Work_Share, threads_are_as_many_as_are_of_use) {
    EXPECT_EQ(Work_Thread_Nb(1), 1U);
    EXPECT_GE(Work_Thread_Nb(100), 1U);
    EXPECT_LE(Work_Thread_Nb(100), 16U);
}

}  // namespace

// Random bytes as events, host answers and messages: nothing may break under the sanitizers, and all is given back.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/headless_windows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

TEST(Histogram_Storm, survives_random_events_and_answers) {
    std::mt19937 random(20);
    std::vector<std::uint8_t> bytes;
    for (int storm = 0; storm < 200; ++storm) {
        bytes.resize(100 + random() % 900);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        ASSERT_EQ(LLVMFuzzerTestOneInput(bytes.data(), bytes.size()), 0);
        ASSERT_EQ(Headless_Objects_Living(), 0U) << "after storm " << storm;
    }
}

// Streams of right and wrong calls: errors, never a crash.
#include <gtest/gtest.h>

#include <random>

#include "tests/c_interface/call_stream.h"
#include "tests/support/panel_window.h"

#if !defined(_WIN32)
#include "tests/c_interface/own_windows.h"
#endif

namespace {

constexpr int STREAMS = 40;
constexpr std::size_t STREAM_BYTES = 3000;

TEST(Storm, any_stream_of_calls_ends_with_errors_and_nothing_worse) {
#if defined(_WIN32)
    constexpr bool has_modal_loops = false;  // a list would wait for a user
#else
    constexpr bool has_modal_loops = true;
#endif
    const Panel_Window window(Window_Axis::Down, 300, 200);
    for (unsigned seed = 1; seed <= STREAMS; ++seed) {
        std::mt19937 random(seed);
        std::vector<std::uint8_t> bytes(STREAM_BYTES);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random() >> 24);
        }
        SCOPED_TRACE(seed);
        Call_Stream stream(bytes.data(), bytes.size(), window.Get(), has_modal_loops);
#if !defined(_WIN32)
        const Own_Windows windows(stream);
#endif
        stream.Run();
    }
}

}  // namespace

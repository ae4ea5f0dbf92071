// Mixed events on all panels of one process: memory and objects of the window system must stay as they are after the
// beginning. The environment variable KIT_SOAK_EVENTS sets another number of events; scripts/soak runs a million.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "tests/faults/fault_gate.h"
#include "tests/faults/gui_objects.h"
#include "tests/soak/soak_host.h"

namespace {

constexpr long SHORT_RUN = 10000;
constexpr long SAMPLE_NB = 20;
// Fonts of rare sizes, icons and stores of the libraries are made once for the process, the last of them late.
constexpr long WARM_UP_LEAST = 8000;
constexpr long WARM_UP_PART = 5;  // of the events
constexpr int LATE_STORES = 16;   // blocks and GDI objects that may still come in all, each once
constexpr int LATE_STEPS = 4;     // of the samples in which some came; what leaks comes in nearly every one
constexpr unsigned int SEED = 20261;
constexpr unsigned long long PRIVATE_GROWTH = 6U << 20U;  // bytes that a fragmented heap may add, however long the run

long running_event = 0;

LONG WINAPI On_Crash(EXCEPTION_POINTERS* what) {
    std::fprintf(stderr, "crash %08lx at event %ld of seed %u\n", what->ExceptionRecord->ExceptionCode, running_event,
                 SEED);
    std::fflush(stderr);
    return EXCEPTION_EXECUTE_HANDLER;
}

struct Sample {
    long blocks;
    int gdi;
    int windows;
    unsigned long long bytes;
    static Sample Now() { return {Fault_Gate::Live_Block_Nb(), Gdi_Object_Nb(), Window_Nb(), Private_Byte_Nb()}; }
    bool Holds_More_Than(const Sample& other) const { return blocks > other.blocks || gdi > other.gdi; }
    void Print(long event) const {
        std::printf("  event %8ld: %ld blocks of the modules, %d GDI objects, %d windows, %llu KiB private\n", event,
                    blocks, gdi, windows, bytes / 1024);
        std::fflush(stdout);
    }
};

}  // namespace

TEST(Soak, a_short_run_because_a_million_events_take_minutes_leaves_memory_and_objects_flat) {
    ::SetUnhandledExceptionFilter(On_Crash);
    const char* wanted = std::getenv("KIT_SOAK_EVENTS");
    const long event_nb = wanted != nullptr ? std::atol(wanted) : SHORT_RUN;
    ASSERT_GT(event_nb, 0);
    const Fault_Gate gate({"Kit_Panels.dll", "Kit_Widgets.dll", "Kit_Graph.dll", "Kit_Dataset.dll", "Kit_Common.dll"});
    Soak_Host host(SEED);
    host.Warm_Up();
    const long warm_up = std::max(WARM_UP_LEAST, event_nb / WARM_UP_PART);
    for (long i = 0; i < warm_up; i++) {
        running_event = i - warm_up;
        host.Event();
    }
    host.Home();
    const Sample first = Sample::Now();
    first.Print(0);
    Sample most = first;
    int grown_nb = 0;
    const auto begin = std::chrono::steady_clock::now();
    const long step = std::max(1L, event_nb / SAMPLE_NB);
    for (long event = 1; event <= event_nb; event++) {
        running_event = event;
        host.Event();
        if (event % step == 0) {
            host.Home();
            const Sample now = Sample::Now();
            now.Print(event);
            EXPECT_LE(now.blocks, first.blocks + LATE_STORES);
            EXPECT_LE(now.gdi, first.gdi + LATE_STORES);
            if (now.Holds_More_Than(most)) {
                ++grown_nb;
                most.blocks = std::max(most.blocks, now.blocks);
                most.gdi = std::max(most.gdi, now.gdi);
            }
            EXPECT_EQ(now.windows, first.windows);
            EXPECT_LE(now.bytes, first.bytes + PRIVATE_GROWTH);
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::printf("  %ld events in %.1f s;", event_nb, seconds);
    for (const long nb : host.Kinds()) {
        std::printf(" %ld", nb);
    }
    std::printf(
        " clicks, motions, wheel, keys, leaves, updates, drawings, layouts, host changes, enlarged window, analyses, "
        "dialogs, copies\n");
    EXPECT_LE(grown_nb, LATE_STEPS);
    EXPECT_EQ(Iterator_Open_Nb(), 0);
}

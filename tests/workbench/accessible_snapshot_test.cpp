#include "workbench/accessible_snapshot.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/workbench/automation_client.h"
#include "tests/workbench/told_window.h"

using namespace workbench;

namespace {

Accessible_Source Example(DWORD* thread) {
    Accessible_Source source;
    source.role = 7;
    source.name = [thread] {
        *thread = ::GetCurrentThreadId();
        return std::wstring(L"Name");
    };
    source.parts = [] { return std::vector<Accessible_Part>{{L"Part", L"", 8, 0, {1, 2, 3, 4}, 0}}; };
    return source;
}

class Accessible_Snapshots : public testing::Test {
  protected:
    Accessible_Snapshots() {
        EXPECT_TRUE(window.Make());
        window.Place({100, 50, 300, 150});
        window.Accessible_Set(Example(&thread));
    }
    Told_Window window;
    DWORD thread = 0;
};

TEST_F(Accessible_Snapshots, the_windows_own_thread_answers_another_one) {
    std::optional<Accessible_Snapshot> told;
    Automation_Client::Beside([&] { told = Accessible_Snapshot_Ask(window.Handle()); });
    ASSERT_TRUE(told);
    EXPECT_EQ(thread, ::GetCurrentThreadId());
    EXPECT_EQ(told->name, L"Name");
    EXPECT_EQ(told->role, 7);
    EXPECT_EQ(told->place.left, 100);
    ASSERT_EQ(told->parts.size(), 1U);
    EXPECT_EQ(told->parts[0].place.left, 101);
    EXPECT_EQ(told->parts[0].place.bottom, 54);
}

TEST_F(Accessible_Snapshots, asked_by_its_own_thread_it_answers_at_once) {
    EXPECT_TRUE(Accessible_Snapshot_Ask(window.Handle()));
}

TEST_F(Accessible_Snapshots, without_a_source_or_a_window_there_is_no_answer) {
    Told_Window plain;
    ASSERT_TRUE(plain.Make());
    EXPECT_FALSE(Accessible_Snapshot_Ask(plain.Handle()));
    EXPECT_FALSE(Accessible_Snapshot_Ask(nullptr));
}

TEST_F(Accessible_Snapshots, an_exception_is_no_answer) {
    Accessible_Source source;
    source.parts = []() -> std::vector<Accessible_Part> { throw std::runtime_error("no parts"); };
    window.Accessible_Set(source);
    EXPECT_FALSE(Accessible_Snapshot_Ask(window.Handle()));
}

TEST_F(Accessible_Snapshots, a_number_that_nobody_asks_under_is_ignored) {
    const UINT message = ::RegisterWindowMessageW(L"Workbench_Accessible_Snapshot");
    EXPECT_EQ(::SendMessageW(window.Handle(), message, 123456, 0), 0);
    EXPECT_EQ(thread, 0U) << "the window was not even asked";
}

}  // namespace

#include "workbench/crash_report.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string_view>
#include <utility>

using namespace workbench;

namespace {

namespace fs = std::filesystem;

constexpr const char* FOLDER_VARIABLE = "KIT_CRASH_FOLDER";
constexpr const char* NO_FOLDER = "none";
constexpr DWORD STATUS_CRASHED = 3;

/** What a program does that is about to crash; run as a process of its own. */
class Crash_Child : public ::testing::Test {
  protected:
    void SetUp() override {
        const char* folder = std::getenv(FOLDER_VARIABLE);
        if (folder == nullptr) {
            GTEST_SKIP() << "only as a process of its own";
        }
        Crash_Report_Install(std::string_view(folder) == NO_FOLDER ? "" : folder, "7.8.9");
        for (int at = 1; at <= 60; ++at) {
            Activity_Note("step " + std::to_string(at));
        }
    }
};

TEST_F(Crash_Child, DISABLED_writes_to_nowhere) {
    volatile std::uintptr_t nowhere = 0;
    *reinterpret_cast<volatile int*>(nowhere) = 1;
}
TEST_F(Crash_Child, DISABLED_calls_nowhere) {
    void (*volatile nowhere)() = nullptr;
    nowhere();
}
TEST_F(Crash_Child, DISABLED_throws_what_nobody_handles) {
    throw std::runtime_error("the disk is made of cheese");
}
TEST_F(Crash_Child, DISABLED_aborts) {
    std::abort();
}

class Crash_Report : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("crash_report_test_" + std::to_string(std::random_device{}()));
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    /** Starts a program that crashes. */
    static PROCESS_INFORMATION Child_Start(const std::string& test, const std::wstring& reports) {
        wchar_t program[MAX_PATH] = {};
        ::GetModuleFileNameW(nullptr, program, MAX_PATH);
        ::SetEnvironmentVariableW(L"KIT_CRASH_FOLDER", reports.c_str());
        std::wstring line = L"\"" + std::wstring(program) +
                            L"\" --gtest_also_run_disabled_tests --gtest_catch_exceptions=0 "
                            L"--gtest_filter=Crash_Child.DISABLED_" +
                            std::wstring(test.begin(), test.end());
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        PROCESS_INFORMATION process = {};
        EXPECT_NE(
            ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process), 0);
        ::SetEnvironmentVariableW(L"KIT_CRASH_FOLDER", nullptr);
        return process;
    }
    /** @return its status */
    static DWORD Child_End(const PROCESS_INFORMATION& process) {
        EXPECT_EQ(::WaitForSingleObject(process.hProcess, 120000), WAIT_OBJECT_0);
        DWORD status = 0;
        ::GetExitCodeProcess(process.hProcess, &status);
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
        return status;
    }
    /** @return the only report that the crash left, whole */
    std::string Report_Of(const std::string& test) {
        EXPECT_NE(Child_End(Child_Start(test, folder.wstring())), 0U);
        const std::vector<fs::path> reports = Crash_Reports_Take(folder);
        EXPECT_EQ(reports.size(), 1U);
        EXPECT_TRUE(Crash_Reports_Take(folder).empty()) << "told once";
        std::ifstream in(reports.empty() ? fs::path() : reports.front(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    /** Waits for the box of a program that has no folder. @return its text; empty: none came */
    static std::wstring Box_Answer(const PROCESS_INFORMATION& process) {
        const ULONGLONG end = ::GetTickCount64() + 60000;
        while (::GetTickCount64() < end && ::WaitForSingleObject(process.hProcess, 20) == WAIT_TIMEOUT) {
            if (const HWND label = Label_Of(process.dwProcessId); label != nullptr) {
                wchar_t text[1000] = {};
                ::SendMessageW(label, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
                ::PostMessageW(::GetParent(label), WM_COMMAND, IDOK, 0);
                return text;
            }
        }
        return {};
    }
    struct Label_Search {
        DWORD process = 0;
        HWND found = nullptr;
    };
    /** The child window with the sentence, in the box of a program; its icon has none. */
    static HWND Label_Of(DWORD process) {
        Label_Search search{process, nullptr};
        const auto look_at_box = [](HWND box, LPARAM to) -> BOOL {
            DWORD owner = 0;
            ::GetWindowThreadProcessId(box, &owner);
            if (owner == reinterpret_cast<Label_Search*>(to)->process) {
                ::EnumChildWindows(box, &Look_At_Child, to);
            }
            return TRUE;
        };
        ::EnumWindows(look_at_box, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }
    static BOOL CALLBACK Look_At_Child(HWND child, LPARAM to) {
        wchar_t kind[16] = {};
        ::GetClassNameW(child, kind, static_cast<int>(std::size(kind)));
        if (::_wcsicmp(kind, L"static") == 0 && ::SendMessageW(child, WM_GETTEXTLENGTH, 0, 0) > 20) {
            reinterpret_cast<Label_Search*>(to)->found = child;
        }
        return TRUE;
    }
    static bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
    static void Expect_Common(const std::string& report) {
        EXPECT_TRUE(report.starts_with("workbench crash report 1\ntime 20")) << report;
        EXPECT_TRUE(Has(report, "\nversion 7.8.9\n"));
        EXPECT_TRUE(Has(report, "\nlast commands and changes (50)\n"));
        EXPECT_FALSE(Has(report, " step 10\n"));
        EXPECT_TRUE(Has(report, " step 11\n"));
        EXPECT_TRUE(Has(report, " step 60\n"));
        EXPECT_TRUE(report.ends_with("end\n")) << report;
        // The stack reaches from the place down to the program's beginning.
        const std::string own = "workbench_host_test.exe+0x";
        const std::size_t stack = report.find("\nstack\n");
        ASSERT_NE(stack, std::string::npos);
        std::size_t frames = 0;
        for (std::size_t at = report.find(own, stack); at != std::string::npos; at = report.find(own, at + 1)) {
            ++frames;
        }
        EXPECT_GE(frames, 4U) << report;
    }
    fs::path folder;
};

TEST_F(Crash_Report, of_an_access_violation_tells_time_version_place_stack_and_the_last_fifty_steps) {
    const std::string report = Report_Of("writes_to_nowhere");
    Expect_Common(report);
    EXPECT_TRUE(Has(report, "\nfault access violation, writing 0x0\nat\n  workbench_host_test.exe+0x")) << report;
}

TEST_F(Crash_Report, of_a_call_to_nowhere_has_the_caller) {
    const std::string report = Report_Of("calls_nowhere");
    Expect_Common(report);
    EXPECT_TRUE(Has(report, "a call to nowhere\n")) << report;
}

TEST_F(Crash_Report, of_an_exception_says_what_it_said) {
    const std::string report = Report_Of("throws_what_nobody_handles");
    Expect_Common(report);
    EXPECT_TRUE(Has(report, "\nfault C++ exception: the disk is made of cheese\n")) << report;
}

TEST_F(Crash_Report, of_an_abort_is_written) {
    const std::string report = Report_Of("aborts");
    Expect_Common(report);
    EXPECT_TRUE(Has(report, "\nfault abort\n")) << report;
}

TEST_F(Crash_Report, before_the_folder_is_known_is_a_box_that_says_what_happened_and_a_status) {
    for (const auto& [test, said] : {std::pair("throws_what_nobody_handles", L"the disk is made of cheese"),
                                     std::pair("writes_to_nowhere", L"access violation, writing 0x0")}) {
        const PROCESS_INFORMATION process = Child_Start(test, L"none");
        const std::wstring text = Box_Answer(process);
        EXPECT_NE(text.find(said), std::wstring::npos) << test;
        const DWORD status = Child_End(process);
        EXPECT_NE(status, 0U);
        EXPECT_TRUE(status == STATUS_CRASHED || std::string_view(test) == "writes_to_nowhere");
    }
}

TEST_F(Crash_Report, nothing_is_told_when_nothing_happened) {
    EXPECT_TRUE(Crash_Reports_Take(folder).empty());
}

}  // namespace

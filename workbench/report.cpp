#include "workbench/report.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

#include "workbench/wide_text.h"

namespace workbench {

Report::~Report() {
    if (file != nullptr) {
        std::fclose(file);
    }
}

bool Report::Open(const std::string& path) {
    file = ::_wfopen(Wide_Of_Utf8(path).c_str(), L"ab");
    return file != nullptr;
}

void Report::Line(std::string text) {
    if (file == nullptr) {
        return;
    }
    std::ranges::replace(text, '\n', ' ');
    std::fprintf(file, "%s\n", text.c_str());
    std::fflush(file);
}

void Report::Time(const char* what) {
    FILETIME made = {};
    FILETIME other = {};
    FILETIME now = {};
    if (file == nullptr || ::GetProcessTimes(::GetCurrentProcess(), &made, &other, &other, &other) == 0) {
        return;
    }
    ::GetSystemTimeAsFileTime(&now);
    const auto ticks = [](const FILETIME& time) {  // of 100 nanoseconds
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32U | time.dwLowDateTime);
    };
    constexpr std::int64_t ticks_per_ms = 10'000;
    Line("time " + std::string(what) + " " + std::to_string((ticks(now) - ticks(made)) / ticks_per_ms));
}

}  // namespace workbench

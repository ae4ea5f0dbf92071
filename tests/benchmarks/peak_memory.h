/** The most memory that this process has had in the machine's memory so far. */
#pragma once

#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on
#else
#include <sys/resource.h>
#endif

/** In MB; 0 when the system does not tell. */
inline double Peak_Memory() {
    constexpr double megabyte = 1e6;
#ifdef _WIN32
    PROCESS_MEMORY_COUNTERS counters = {};
    const BOOL is_told = ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
    return is_told != FALSE ? static_cast<double>(counters.PeakWorkingSetSize) / megabyte : 0.0;
#else
    rusage usage = {};
    return ::getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<double>(usage.ru_maxrss) * 1024.0 / megabyte : 0.0;
#endif
}

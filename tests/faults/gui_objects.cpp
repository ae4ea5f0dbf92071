#include "tests/faults/gui_objects.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace {

// The table of the process's GDI handles, which the system keeps readable for every process. Wine answers no
// GetGuiResources, but it has this table.
struct Gdi_Entry {
    std::uint64_t object;
    std::uint32_t owner;
    std::uint16_t generation;
    std::uint8_t type;  // 0: free
    std::uint8_t flags;
    std::uint64_t user;
};
static_assert(sizeof(Gdi_Entry) == 24);
constexpr std::size_t GDI_ENTRY_NB = 65536;
constexpr std::size_t TABLE_IN_PEB = 0xF8;  // on x86-64

const Gdi_Entry* Gdi_Table() {
    using Peb_Function = const unsigned char*(WINAPI*)();
    const auto get = reinterpret_cast<Peb_Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA("ntdll.dll"), "RtlGetCurrentPeb")));
    const unsigned char* peb = get();
    return *reinterpret_cast<const Gdi_Entry* const*>(peb + TABLE_IN_PEB);
}

BOOL CALLBACK Window_Count(HWND window, LPARAM sum) {
    ++*reinterpret_cast<int*>(sum);
    ::EnumChildWindows(
        window,
        [](HWND, LPARAM inner) -> BOOL {
            ++*reinterpret_cast<int*>(inner);
            return TRUE;
        },
        sum);
    return TRUE;
}

}  // namespace

int Gdi_Object_Nb() {
    const DWORD told = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    if (told != 0) {
        return static_cast<int>(told);
    }
    int nb = 0;
    const Gdi_Entry* table = Gdi_Table();
    for (std::size_t i = 0; i < GDI_ENTRY_NB; i++) {
        nb += table[i].type != 0 ? 1 : 0;
    }
    return nb;
}

int Window_Nb() {
    int nb = 0;
    ::EnumThreadWindows(::GetCurrentThreadId(), Window_Count, reinterpret_cast<LPARAM>(&nb));
    return nb;
}

unsigned long long Private_Byte_Nb() {
    // Wine does not fill in what GetProcessMemoryInfo tells of it.
    unsigned long long sum = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const unsigned char* place = nullptr; ::VirtualQuery(place, &region, sizeof region) != 0;
         place = static_cast<const unsigned char*>(region.BaseAddress) + region.RegionSize) {
        sum += region.State == MEM_COMMIT && region.Type == MEM_PRIVATE ? region.RegionSize : 0;
    }
    return sum;
}

#include "tests/faults/fault_gate.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <unordered_map>

namespace {

// A watched function and what it returns when it fails.
struct Watched {
    const char* dll;
    const char* function;
    std::int64_t failure;
};
constexpr const char* GDI = "gdi32.dll";
constexpr const char* USER = "user32.dll";
constexpr Watched WATCHED[] = {
    {GDI, "CreateCompatibleDC", 0},
    {GDI, "CreateCompatibleBitmap", 0},
    {GDI, "CreateBitmap", 0},
    {GDI, "CreateDIBSection", 0},
    {GDI, "CreateDIBPatternBrushPt", 0},
    {GDI, "CreateFontA", 0},
    {GDI, "CreateFontIndirectA", 0},
    {GDI, "CreatePen", 0},
    {GDI, "CreateSolidBrush", 0},
    {GDI, "CreateRectRgn", 0},
    {GDI, "CreateRectRgnIndirect", 0},
    {GDI, "SelectObject", 0},
    {GDI, "GetStockObject", 0},
    {GDI, "GetObjectA", 0},
    {GDI, "SaveDC", 0},
    {GDI, "BitBlt", 0},
    {GDI, "PatBlt", 0},
    {GDI, "SetDIBitsToDevice", 0},
    {GDI, "StretchDIBits", 0},
    {GDI, "DPtoLP", 0},
    {GDI, "LPtoDP", 0},
    {GDI, "Ellipse", 0},
    {GDI, "Rectangle", 0},
    {GDI, "LineTo", 0},
    {GDI, "MoveToEx", 0},
    {GDI, "Polygon", 0},
    {GDI, "Polyline", 0},
    {GDI, "PolyPolyline", 0},
    {GDI, "SetPixel", -1},
    {GDI, "TextOutA", 0},
    {GDI, "TextOutW", 0},
    {GDI, "ExtTextOutA", 0},
    {GDI, "ExtTextOutW", 0},
    {GDI, "GetTextExtentPoint32A", 0},
    {GDI, "GetTextExtentPoint32W", 0},
    {GDI, "GetTextExtentExPointA", 0},
    {GDI, "GetTextExtentExPointW", 0},
    {GDI, "GetTextMetricsA", 0},
    {GDI, "GetTextMetricsW", 0},
    {GDI, "GetCharABCWidthsW", 0},
    {GDI, "GetClipRgn", -1},
    {GDI, "GetClipBox", 0},
    {GDI, "SelectClipRgn", 0},
    {GDI, "IntersectClipRect", 0},
    {GDI, "SetBkMode", 0},
    {GDI, "SetMapMode", 0},
    {GDI, "SetROP2", 0},
    {GDI, "SetTextAlign", -1},
    {GDI, "SetTextColor", -1},
    {GDI, "SetViewportOrgEx", 0},
    {GDI, "SetWindowOrgEx", 0},
    {GDI, "GetDeviceCaps", 0},
    {USER, "GetDC", 0},
    {USER, "BeginPaint", 0},
    {USER, "FillRect", 0},
    {USER, "InvertRect", 0},
    {USER, "DrawTextA", 0},
    {USER, "CreateWindowExA", 0},
    {USER, "CreateWindowExW", 0},
    {USER, "RegisterClassA", 0},
    {USER, "RegisterClassW", 0},
    {USER, "RegisterClassExA", 0},
    {USER, "DialogBoxIndirectParamA", -1},
    {USER, "GetDlgItem", 0},
    {USER, "GetWindowRect", 0},
    {USER, "GetClientRect", 0},
    {USER, "GetCursorPos", 0},
    {USER, "ClientToScreen", 0},
    {USER, "ScreenToClient", 0},
    {USER, "MapWindowPoints", 0},
    {USER, "LoadCursorA", 0},
    {USER, "LoadIconA", 0},
    {USER, "InvalidateRect", 0},
    {USER, "SetWindowPos", 0},
    {USER, "PostMessageA", 0},
    {USER, "TrackMouseEvent", 0},
    {USER, "GetCapture", 0},
    {USER, "GetActiveWindow", 0},
    {USER, "SetForegroundWindow", 0},
    {USER, "GetClassLongPtrA", 0},
    {USER, "SetTimer", 0},
    {USER, "SetPropA", 0},
    {"msvcrt.dll", "fopen", 0},
};
constexpr int WATCHED_NB = static_cast<int>(sizeof WATCHED / sizeof *WATCHED);
constexpr const char* ALLOCATORS[] = {"malloc", "calloc", "realloc", "_strdup"};

struct Module_Range {
    std::uintptr_t begin;
    std::uintptr_t end;
    std::string name;
};

struct State {
    bool armed = false;
    bool keep = false;
    bool happened = false;
    int countdown = 0;
    DWORD thread = 0;
    std::vector<Fault_Call> calls;
    std::vector<Module_Range> modules;
    std::unordered_map<const void*, std::size_t> live;
};
State state;

int Module_Of(const void* from) {
    const auto place = reinterpret_cast<std::uintptr_t>(from);
    for (std::size_t i = 0; i < state.modules.size(); i++) {
        if (place >= state.modules[i].begin && place < state.modules[i].end) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

/** The call fails. */
bool Fails(int function, const void* from) {
    if (!state.armed || ::GetCurrentThreadId() != state.thread) {
        return false;
    }
    if (state.keep) {
        state.calls.push_back({function, Module_Of(from), from, function >= WATCHED_NB});
    }
    if (state.countdown == 0 || --state.countdown != 0) {
        return false;
    }
    state.happened = true;
    return true;
}

int Gate(int function, const void* from) {
    // What the caller finds as the reason belongs to the system, not to this bookkeeping.
    const DWORD reason = ::GetLastError();
    const bool fails = Fails(function, from);
    ::SetLastError(fails ? ERROR_NOT_ENOUGH_MEMORY : reason);
    return fails ? 1 : 0;
}

// ---------------- allocations

const void* Caller(void* return_address) {
    return return_address;
}
void* Taken(void* memory, std::size_t size) {
    if (memory != nullptr && ::GetCurrentThreadId() == state.thread) {
        state.live[memory] = size;
    }
    return memory;
}
void Given(const void* memory) {
    if (memory != nullptr && ::GetCurrentThreadId() == state.thread) {
        state.live.erase(memory);
    }
}

void* Malloc_Gate(std::size_t size) {
    return Fails(WATCHED_NB, Caller(__builtin_return_address(0))) ? nullptr : Taken(std::malloc(size), size);
}
void* Calloc_Gate(std::size_t nb, std::size_t size) {
    return Fails(WATCHED_NB + 1, Caller(__builtin_return_address(0))) ? nullptr
                                                                      : Taken(std::calloc(nb, size), nb * size);
}
void* Realloc_Gate(void* memory, std::size_t size) {
    if (Fails(WATCHED_NB + 2, Caller(__builtin_return_address(0)))) {
        return nullptr;
    }
    Given(memory);
    return Taken(std::realloc(memory, size), size);
}
char* Strdup_Gate(const char* text) {
    if (Fails(WATCHED_NB + 3, Caller(__builtin_return_address(0)))) {
        return nullptr;
    }
    return static_cast<char*>(Taken(::_strdup(text), std::strlen(text) + 1));
}
void Free_Gate(void* memory) {
    Given(memory);
    std::free(memory);
}

// ---------------- gateways

constexpr std::size_t GATEWAY_SIZE = 128;

/** Code that asks the gate and then goes on to the function or returns its failure. Every argument register is kept. */
void Gateway_Write(unsigned char* code, int function, const void* original, std::int64_t failure) {
    const auto put = [&code](std::initializer_list<unsigned char> bytes) {
        for (const unsigned char byte : bytes) {
            *code++ = byte;
        }
    };
    const auto put_value = [&code](auto value) {
        std::memcpy(code, &value, sizeof value);
        code += sizeof value;
    };
    put({0x41, 0x51, 0x41, 0x50, 0x52, 0x51});  // push r9, r8, rdx, rcx
    put({0x48, 0x83, 0xEC, 0x68});              // sub rsp, 0x68
    put({0x0F, 0x11, 0x44, 0x24, 0x20});        // movups [rsp + 0x20], xmm0 and so on
    put({0x0F, 0x11, 0x4C, 0x24, 0x30});
    put({0x0F, 0x11, 0x54, 0x24, 0x40});
    put({0x0F, 0x11, 0x5C, 0x24, 0x50});
    put({0xB9});  // mov ecx, function
    put_value(function);
    put({0x48, 0x8B, 0x94, 0x24, 0x88, 0x00, 0x00, 0x00});  // mov rdx, [rsp + 0x88]: the return address
    put({0x48, 0xB8});                                      // mov rax, gate
    put_value(reinterpret_cast<std::uint64_t>(&Gate));
    put({0xFF, 0xD0});  // call rax
    put({0x0F, 0x10, 0x44, 0x24, 0x20});
    put({0x0F, 0x10, 0x4C, 0x24, 0x30});
    put({0x0F, 0x10, 0x54, 0x24, 0x40});
    put({0x0F, 0x10, 0x5C, 0x24, 0x50});
    put({0x48, 0x83, 0xC4, 0x68});              // add rsp, 0x68
    put({0x59, 0x5A, 0x41, 0x58, 0x41, 0x59});  // pop rcx, rdx, r8, r9
    put({0x85, 0xC0, 0x75, 0x0C});              // test eax, eax; jnz over the next twelve bytes
    put({0x48, 0xB8});                          // mov rax, original
    put_value(reinterpret_cast<std::uint64_t>(original));
    put({0xFF, 0xE0});  // jmp rax
    put({0x48, 0xB8});  // mov rax, failure
    put_value(failure);
    put({0xC3});  // ret
}

Module_Range Range_Of(const std::string& name) {
    const auto* base = reinterpret_cast<const unsigned char*>(::GetModuleHandleA(name.c_str()));
    if (base == nullptr) {
        return {0, 0, name};
    }
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* header = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto begin = reinterpret_cast<std::uintptr_t>(base);
    return {begin, begin + header->OptionalHeader.SizeOfImage, name};
}

}  // namespace

Fault_Gate::Fault_Gate(const std::vector<std::string>& modules) {
    state = {};
    state.thread = ::GetCurrentThreadId();
    for (const std::string& name : modules) {
        state.modules.push_back(Range_Of(name));
    }
    const std::size_t size = modules.size() * WATCHED_NB * GATEWAY_SIZE;
    code = static_cast<unsigned char*>(::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    unsigned char* place = code;
    void* const replacements[] = {reinterpret_cast<void*>(&Malloc_Gate), reinterpret_cast<void*>(&Calloc_Gate),
                                  reinterpret_cast<void*>(&Realloc_Gate), reinterpret_cast<void*>(&Strdup_Gate)};
    for (const std::string& name : modules) {
        for (int i = 0; i < WATCHED_NB; i++, place += GATEWAY_SIZE) {
            Import_Hook hook(name.c_str(), WATCHED[i].dll, WATCHED[i].function, place);
            if (hook.Is_Set()) {
                Gateway_Write(place, i, hook.Original(), WATCHED[i].failure);
                hooks.push_back(std::move(hook));
            }
        }
        for (int i = 0; i < 4; i++) {
            hooks.emplace_back(name.c_str(), "msvcrt.dll", ALLOCATORS[i], replacements[i]);
        }
        hooks.emplace_back(name.c_str(), "msvcrt.dll", "free", reinterpret_cast<void*>(&Free_Gate));
    }
}

Fault_Gate::~Fault_Gate() {
    hooks.clear();
    ::VirtualFree(code, 0, MEM_RELEASE);
    state = {};
}

void Fault_Gate::Arm(int n, bool keep_calls) {
    state.calls.clear();
    state.keep = keep_calls;
    state.happened = false;
    state.countdown = n;
    state.armed = true;
}

void Fault_Gate::Disarm() {
    state.armed = false;
}

bool Fault_Gate::Happened() {
    return state.happened;
}

const std::vector<Fault_Call>& Fault_Gate::Calls() {
    return state.calls;
}

std::string Fault_Gate::Name(const Fault_Call& call) {
    const char* function =
        call.function < WATCHED_NB ? WATCHED[call.function].function : ALLOCATORS[call.function - WATCHED_NB];
    const Module_Range& module = state.modules[static_cast<std::size_t>(call.module)];
    char text[160] = {};
    std::snprintf(text, sizeof text, "%s from %s+0x%llx", function, module.name.c_str(),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(call.from) - module.begin));
    return text;
}

long Fault_Gate::Live_Block_Nb() {
    return static_cast<long>(state.live.size());
}

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
constexpr const char* gdi = "gdi32.dll";
constexpr const char* user = "user32.dll";
constexpr Watched watched[] = {
    {gdi, "CreateCompatibleDC", 0},
    {gdi, "CreateCompatibleBitmap", 0},
    {gdi, "CreateBitmap", 0},
    {gdi, "CreateDIBSection", 0},
    {gdi, "CreateDIBPatternBrushPt", 0},
    {gdi, "CreateFontA", 0},
    {gdi, "CreateFontIndirectA", 0},
    {gdi, "CreatePen", 0},
    {gdi, "CreateSolidBrush", 0},
    {gdi, "CreateRectRgn", 0},
    {gdi, "CreateRectRgnIndirect", 0},
    {gdi, "SelectObject", 0},
    {gdi, "GetStockObject", 0},
    {gdi, "GetObjectA", 0},
    {gdi, "SaveDC", 0},
    {gdi, "BitBlt", 0},
    {gdi, "PatBlt", 0},
    {gdi, "SetDIBitsToDevice", 0},
    {gdi, "StretchDIBits", 0},
    {gdi, "DPtoLP", 0},
    {gdi, "LPtoDP", 0},
    {gdi, "Ellipse", 0},
    {gdi, "Rectangle", 0},
    {gdi, "LineTo", 0},
    {gdi, "MoveToEx", 0},
    {gdi, "Polygon", 0},
    {gdi, "Polyline", 0},
    {gdi, "PolyPolyline", 0},
    {gdi, "SetPixel", -1},
    {gdi, "TextOutA", 0},
    {gdi, "TextOutW", 0},
    {gdi, "ExtTextOutA", 0},
    {gdi, "ExtTextOutW", 0},
    {gdi, "GetTextExtentPoint32A", 0},
    {gdi, "GetTextExtentPoint32W", 0},
    {gdi, "GetTextExtentExPointA", 0},
    {gdi, "GetTextExtentExPointW", 0},
    {gdi, "GetTextMetricsA", 0},
    {gdi, "GetTextMetricsW", 0},
    {gdi, "GetCharABCWidthsW", 0},
    {gdi, "GetClipRgn", -1},
    {gdi, "GetClipBox", 0},
    {gdi, "SelectClipRgn", 0},
    {gdi, "IntersectClipRect", 0},
    {gdi, "SetBkMode", 0},
    {gdi, "SetMapMode", 0},
    {gdi, "SetROP2", 0},
    {gdi, "SetTextAlign", -1},
    {gdi, "SetTextColor", -1},
    {gdi, "SetViewportOrgEx", 0},
    {gdi, "SetWindowOrgEx", 0},
    {gdi, "GetDeviceCaps", 0},
    {user, "GetDC", 0},
    {user, "BeginPaint", 0},
    {user, "FillRect", 0},
    {user, "InvertRect", 0},
    {user, "DrawTextA", 0},
    {user, "CreateWindowExA", 0},
    {user, "CreateWindowExW", 0},
    {user, "RegisterClassA", 0},
    {user, "RegisterClassW", 0},
    {user, "RegisterClassExA", 0},
    {user, "DialogBoxIndirectParamA", -1},
    {user, "GetDlgItem", 0},
    {user, "GetWindowRect", 0},
    {user, "GetClientRect", 0},
    {user, "GetCursorPos", 0},
    {user, "ClientToScreen", 0},
    {user, "ScreenToClient", 0},
    {user, "MapWindowPoints", 0},
    {user, "LoadCursorA", 0},
    {user, "LoadIconA", 0},
    {user, "InvalidateRect", 0},
    {user, "SetWindowPos", 0},
    {user, "PostMessageA", 0},
    {user, "TrackMouseEvent", 0},
    {user, "GetCapture", 0},
    {user, "GetActiveWindow", 0},
    {user, "SetForegroundWindow", 0},
    {user, "GetClassLongPtrA", 0},
    {user, "SetTimer", 0},
    {user, "SetPropA", 0},
    {"msvcrt.dll", "fopen", 0},
};
constexpr int watched_nb = static_cast<int>(sizeof watched / sizeof *watched);
constexpr const char* allocators[] = {"malloc", "calloc", "realloc", "_strdup"};

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
        state.calls.push_back({function, Module_Of(from), from, function >= watched_nb});
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
    return Fails(watched_nb, Caller(__builtin_return_address(0))) ? nullptr : Taken(std::malloc(size), size);
}
void* Calloc_Gate(std::size_t nb, std::size_t size) {
    return Fails(watched_nb + 1, Caller(__builtin_return_address(0))) ? nullptr
                                                                      : Taken(std::calloc(nb, size), nb * size);
}
void* Realloc_Gate(void* memory, std::size_t size) {
    if (Fails(watched_nb + 2, Caller(__builtin_return_address(0)))) {
        return nullptr;
    }
    Given(memory);
    return Taken(std::realloc(memory, size), size);
}
char* Strdup_Gate(const char* text) {
    if (Fails(watched_nb + 3, Caller(__builtin_return_address(0)))) {
        return nullptr;
    }
    return static_cast<char*>(Taken(::_strdup(text), std::strlen(text) + 1));
}
void Free_Gate(void* memory) {
    Given(memory);
    std::free(memory);
}

// ---------------- gateways

constexpr std::size_t gateway_size = 128;

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
    const std::size_t size = modules.size() * watched_nb * gateway_size;
    code = static_cast<unsigned char*>(::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    unsigned char* place = code;
    void* const replacements[] = {reinterpret_cast<void*>(&Malloc_Gate), reinterpret_cast<void*>(&Calloc_Gate),
                                  reinterpret_cast<void*>(&Realloc_Gate), reinterpret_cast<void*>(&Strdup_Gate)};
    for (const std::string& name : modules) {
        for (int i = 0; i < watched_nb; i++, place += gateway_size) {
            Import_Hook hook(name.c_str(), watched[i].dll, watched[i].function, place);
            if (hook.Is_Set()) {
                Gateway_Write(place, i, hook.Original(), watched[i].failure);
                hooks.push_back(std::move(hook));
            }
        }
        for (int i = 0; i < 4; i++) {
            hooks.emplace_back(name.c_str(), "msvcrt.dll", allocators[i], replacements[i]);
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
        call.function < watched_nb ? watched[call.function].function : allocators[call.function - watched_nb];
    const Module_Range& module = state.modules[static_cast<std::size_t>(call.module)];
    char text[160] = {};
    std::snprintf(text, sizeof text, "%s from %s+0x%llx", function, module.name.c_str(),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(call.from) - module.begin));
    return text;
}

long Fault_Gate::Live_Block_Nb() {
    return static_cast<long>(state.live.size());
}

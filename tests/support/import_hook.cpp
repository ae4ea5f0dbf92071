#include "tests/support/import_hook.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>

// ---------------- import tables

namespace {

using Import_Visitor = std::function<void(const char* name, void** place)>;

template <typename Record>
Record* At(unsigned char* base, DWORD offset) {
    return reinterpret_cast<Record*>(base + offset);
}

/** Calls the visitor for every function that the module imports by name from the DLL. */
void Imports_Visit(const char* module, const char* dll, const Import_Visitor& visit) {
    auto* base = reinterpret_cast<unsigned char*>(::GetModuleHandleA(*module != 0 ? module : nullptr));
    if (base == nullptr) {
        return;
    }
    const auto* dos = At<IMAGE_DOS_HEADER>(base, 0);
    const auto* header = At<IMAGE_NT_HEADERS>(base, static_cast<DWORD>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) {
        return;
    }
    for (auto* from = At<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress); from->Name != 0; from++) {
        if (::lstrcmpiA(At<const char>(base, from->Name), dll) != 0 || from->OriginalFirstThunk == 0) {
            continue;
        }
        const auto* name = At<IMAGE_THUNK_DATA>(base, from->OriginalFirstThunk);
        auto* function = At<IMAGE_THUNK_DATA>(base, from->FirstThunk);
        for (; name->u1.AddressOfData != 0; name++, function++) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                const auto* by_name = At<IMAGE_IMPORT_BY_NAME>(base, static_cast<DWORD>(name->u1.AddressOfData));
                visit(reinterpret_cast<const char*>(by_name->Name), reinterpret_cast<void**>(&function->u1.Function));
            }
        }
    }
}

void Place_Write(void** place, void* value) {
    DWORD before = 0;
    ::VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
    *place = value;
    ::VirtualProtect(place, sizeof *place, before, &before);
}

}  // namespace

Import_Hook::Import_Hook(const char* module, const char* dll, const char* function, void* replacement) {
    Imports_Visit(module, dll, [&](const char* name, void** found) {
        if (place == nullptr && std::strcmp(name, function) == 0) {
            place = found;
        }
    });
    if (place != nullptr) {
        original = *place;
        Place_Write(place, replacement);
    }
}

Import_Hook::Import_Hook(Import_Hook&& other) noexcept
    : place(std::exchange(other.place, nullptr)), original(other.original) {}

Import_Hook& Import_Hook::operator=(Import_Hook&& other) noexcept {
    if (this != &other) {
        Remove();
        place = std::exchange(other.place, nullptr);
        original = other.original;
    }
    return *this;
}

void Import_Hook::Remove() {
    if (place != nullptr) {
        Place_Write(std::exchange(place, nullptr), original);
    }
}

std::vector<std::string> Import_Names(const char* module, const char* dll) {
    std::vector<std::string> names;
    Imports_Visit(module, dll, [&](const char* name, void**) { names.emplace_back(name); });
    return names;
}

// ---------------- counting

namespace {

// mov rax, counter; inc qword [rax]; mov rax, function; jmp rax. Register rax carries no argument.
constexpr std::size_t jump_size = 32;

void Jump_Write(unsigned char* code, const std::uint64_t* counter, const void* function) {
    const auto put = [&code](std::initializer_list<unsigned char> bytes) {
        for (const unsigned char byte : bytes) {
            *code++ = byte;
        }
    };
    const auto put_address = [&code](const void* address) {
        std::memcpy(code, &address, sizeof address);
        code += sizeof address;
    };
    put({0x48, 0xB8});
    put_address(counter);
    put({0x48, 0xFF, 0x00, 0x48, 0xB8});
    put_address(function);
    put({0xFF, 0xE0});
}

}  // namespace

Import_Counter::Import_Counter(const char* module, const char* dll) : names(Import_Names(module, dll)) {
    counts.resize(names.size());
    const std::size_t size = (names.size() + 1) * jump_size;
    code = static_cast<unsigned char*>(::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    for (std::size_t i = 0; i < names.size(); i++) {
        unsigned char* jump = code + i * jump_size;
        hooks.emplace_back(module, dll, names[i].c_str(), jump);
        Jump_Write(jump, &counts[i], hooks.back().Original());
    }
}

Import_Counter::~Import_Counter() {
    hooks.clear();
    ::VirtualFree(code, 0, MEM_RELEASE);
}

std::uint64_t Import_Counter::Calls() const {
    std::uint64_t sum = 0;
    for (const std::uint64_t count : counts) {
        sum += count;
    }
    return sum;
}

std::uint64_t Import_Counter::Calls(const char* function) const {
    for (std::size_t i = 0; i < names.size(); i++) {
        if (names[i] == function) {
            return counts[i];
        }
    }
    return 0;
}

void Import_Counter::Reset() {
    counts.assign(counts.size(), 0);
}

std::string Import_Counter::Text() const {
    std::string text;
    for (std::size_t i = 0; i < names.size(); i++) {
        if (counts[i] != 0) {
            text += (text.empty() ? "" : ", ") + names[i] + " " + std::to_string(counts[i]);
        }
    }
    return text;
}

// ---------------- allocations

namespace {

int fault_countdown = 0;  // 0: nothing fails
bool fault_happened = false;

bool Fails_Now() {
    if (fault_countdown == 0 || --fault_countdown != 0) {
        return false;
    }
    fault_happened = true;
    return true;
}

void* Malloc_Or_Fail(std::size_t size) {
    return Fails_Now() ? nullptr : std::malloc(size);
}
void* Calloc_Or_Fail(std::size_t nb, std::size_t size) {
    return Fails_Now() ? nullptr : std::calloc(nb, size);
}
void* Realloc_Or_Fail(void* memory, std::size_t size) {
    return Fails_Now() ? nullptr : std::realloc(memory, size);
}
char* Strdup_Or_Fail(const char* text) {
    return Fails_Now() ? nullptr : ::_strdup(text);
}

}  // namespace

Allocation_Fault::Allocation_Fault(const char* module, int n) {
    const std::array<std::pair<const char*, void*>, 4> replacements = {{
        {"malloc", reinterpret_cast<void*>(&Malloc_Or_Fail)},
        {"calloc", reinterpret_cast<void*>(&Calloc_Or_Fail)},
        {"realloc", reinterpret_cast<void*>(&Realloc_Or_Fail)},
        {"_strdup", reinterpret_cast<void*>(&Strdup_Or_Fail)},
    }};
    for (const auto& [function, replacement] : replacements) {
        hooks.emplace_back(module, "msvcrt.dll", function, replacement);
    }
    fault_happened = false;
    fault_countdown = n;
}

Allocation_Fault::~Allocation_Fault() {
    fault_countdown = 0;
}

bool Allocation_Fault::Happened() {
    return fault_happened;
}

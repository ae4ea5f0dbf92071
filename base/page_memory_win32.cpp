#include <windows.h>

#include <new>

#include "base/page_memory.h"

void* Page_Memory_Take(std::size_t bytes) {
    void* const memory = ::VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void Page_Memory_Give_Back(void* memory, std::size_t /*bytes*/) noexcept {
    ::VirtualFree(memory, 0, MEM_RELEASE);
}

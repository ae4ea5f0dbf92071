// The C library's heap gives large blocks back by itself, and the sanitizers watch over them there.
#include <new>

#include "base/page_memory.h"

void* Page_Memory_Take(std::size_t bytes) {
    return ::operator new(bytes);
}

void Page_Memory_Give_Back(void* memory, std::size_t /*bytes*/) noexcept {
    ::operator delete(memory);
}

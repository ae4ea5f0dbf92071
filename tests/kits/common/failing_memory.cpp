#include "tests/kits/common/failing_memory.h"

#include <cstdlib>
#include <new>

namespace {

int countdown = 0;  // 0: nothing fails
bool happened = false;

bool Fails_Now() {
    if (countdown == 0 || --countdown != 0) {
        return false;
    }
    happened = true;
    return true;
}

}  // namespace

Failing_Allocation::Failing_Allocation(int n) {
    happened = false;
    countdown = n;
}

Failing_Allocation::~Failing_Allocation() {
    countdown = 0;
}

bool Failing_Allocation::Happened() {
    return happened;
}

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t nb, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t nb, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);

void* __wrap_malloc(std::size_t size) {
    return Fails_Now() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(std::size_t nb, std::size_t size) {
    return Fails_Now() ? nullptr : __real_calloc(nb, size);
}
void* __wrap_realloc(void* memory, std::size_t size) {
    return Fails_Now() ? nullptr : __real_realloc(memory, size);
}
}

void* operator new(std::size_t size) {
    void* memory = Fails_Now() ? nullptr : __real_malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails_Now() ? nullptr : __real_malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

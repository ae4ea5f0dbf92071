#include "tests/workbench/volumes/failing_allocation.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {
bool active = false;
bool happened = false;
long long left = 0;
std::size_t largest = 0;

void* Allocate(std::size_t size) {
    if (active) {
        largest = std::max(largest, size);
        if (left-- == 0) {
            happened = true;
            throw std::bad_alloc();
        }
    }
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
}  // namespace

Failing_Allocation::Failing_Allocation(long long fail_at) {
    left = fail_at;
    largest = 0;
    happened = false;
    active = true;
}
Failing_Allocation::~Failing_Allocation() {
    active = false;
}
bool Failing_Allocation::Happened() const {
    return happened;
}
std::size_t Failing_Allocation::Largest() const {
    return largest;
}

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& none) noexcept {
    return operator new(size, none);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

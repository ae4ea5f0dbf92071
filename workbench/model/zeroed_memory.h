/** Memory that the system gives cleared, and only as it is touched: a large table of zeros takes no time and no room.
 */
#pragma once

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

namespace workbench {

/** For vectors that are made at their whole size, of numbers: elements without a value are zero. They are not, where a
 *  vector shrinks and grows again. */
template <class Number>
class Zeroed_Memory {
  public:
    using value_type = Number;
    Zeroed_Memory() = default;
    template <class Other>
    Zeroed_Memory(const Zeroed_Memory<Other>& /*other*/) noexcept {}  // as allocators are made of one another

    Number* allocate(std::size_t nb) {
        void* const memory =
            nb <= std::numeric_limits<std::size_t>::max() / sizeof(Number) ? std::calloc(nb, sizeof(Number)) : nullptr;
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<Number*>(memory);
    }
    void deallocate(Number* memory, std::size_t /*nb*/) noexcept { std::free(memory); }
    template <class Made>
    void construct(Made* /*at*/) noexcept {}
    template <class Made, class... Values>
    void construct(Made* at, Values&&... values) {
        ::new (static_cast<void*>(at)) Made(std::forward<Values>(values)...);
    }
    bool operator==(const Zeroed_Memory&) const = default;
};

}  // namespace workbench

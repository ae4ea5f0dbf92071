/** Memory that is written to before it is read, and so need not be cleared. */
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace volumes {

/** For vectors: elements that are added without a value have none until they are written. */
template <class Value>
class Unset_Memory : public std::allocator<Value> {
  public:
    template <class Other>
    struct rebind {
        using other = Unset_Memory<Other>;
    };
    Unset_Memory() = default;
    template <class Other>
    Unset_Memory(const Unset_Memory<Other>& /*other*/) noexcept {}  // as allocators are made of one another

    template <class Made>
    void construct(Made* at) noexcept {
        ::new (static_cast<void*>(at)) Made;
    }
    template <class Made, class... Values>
    void construct(Made* at, Values&&... values) {
        ::new (static_cast<void*>(at)) Made(std::forward<Values>(values)...);
    }
};

}  // namespace volumes

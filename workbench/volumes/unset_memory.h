/** Memory that is written to before it is read, and so need not be cleared. */
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "base/page_memory.h"

namespace volumes {

/** For vectors: elements that are added without a value have none until they are written. Large blocks go back to the
 *  system when they are freed: slices are read one by one and are put together afterwards. */
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

    Value* allocate(std::size_t nb) {
        const bool is_large = nb >= PAGE_MEMORY_FROM / sizeof(Value) && nb <= NB_MOST;
        return is_large ? static_cast<Value*>(Page_Memory_Take(nb * sizeof(Value)))
                        : std::allocator<Value>::allocate(nb);
    }
    void deallocate(Value* memory, std::size_t nb) noexcept {
        if (nb >= PAGE_MEMORY_FROM / sizeof(Value)) {
            Page_Memory_Give_Back(memory, nb * sizeof(Value));
        } else {
            std::allocator<Value>::deallocate(memory, nb);
        }
    }
    template <class Made>
    void construct(Made* at) noexcept {
        ::new (static_cast<void*>(at)) Made;
    }
    template <class Made, class... Values>
    void construct(Made* at, Values&&... values) {
        ::new (static_cast<void*>(at)) Made(std::forward<Values>(values)...);
    }

  private:
    static constexpr std::size_t NB_MOST = std::numeric_limits<std::size_t>::max() / sizeof(Value);
};

}  // namespace volumes

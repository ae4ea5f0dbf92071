#include "kits/common/block_cache.h"

#include <array>
#include <atomic>
#include <cstdlib>

namespace {

struct Block {
    void* memory = nullptr;
    std::size_t size = 0;
};

// Without constructors and destructors, so that matrices of any lifetime may use them.
constinit std::array<Block, BLOCK_CACHE_NB> blocks;
constinit std::atomic_flag is_busy = ATOMIC_FLAG_INIT;
constinit std::atomic<bool> is_closed = false;

class Visit {
  public:
    Visit() : is_mine(!is_busy.test_and_set(std::memory_order_acquire)) {}
    ~Visit() {
        if (is_mine) {
            is_busy.clear(std::memory_order_release);
        }
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    bool Is_Alone() const { return is_mine; }

  private:
    bool is_mine;
};

/** Empties the cache when the module goes. */
struct Closing {
    ~Closing() {
        is_closed = true;
        Block_Cache_Empty();
    }
};
const Closing CLOSING;

}  // namespace

void* Block_Cache_Take(std::size_t& size) {
    if (size < BLOCK_CACHE_SIZE_MIN || size > BLOCK_CACHE_SIZE_MAX) {
        return nullptr;
    }
    const Visit visit;
    if (!visit.Is_Alone()) {
        return nullptr;
    }
    for (Block& block : blocks) {
        if (block.memory != nullptr && block.size >= size && block.size / 2 <= size) {
            size = block.size;
            void* memory = block.memory;
            block = {};
            return memory;
        }
    }
    return nullptr;
}

bool Block_Cache_Keep(void* block, std::size_t size) {
    if (size < BLOCK_CACHE_SIZE_MIN || size > BLOCK_CACHE_SIZE_MAX || is_closed) {
        return false;
    }
    const Visit visit;
    if (!visit.Is_Alone()) {
        return false;
    }
    for (Block& place : blocks) {
        if (place.memory == nullptr) {
            place = {block, size};
            return true;
        }
    }
    // Full of other sizes: the ones that are asked for now are worth more.
    std::free(blocks.front().memory);
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        blocks[i - 1] = blocks[i];
    }
    blocks.back() = {block, size};
    return true;
}

void Block_Cache_Empty() {
    const Visit visit;
    if (!visit.Is_Alone()) {
        return;
    }
    for (Block& block : blocks) {
        std::free(block.memory);
        block = {};
    }
}

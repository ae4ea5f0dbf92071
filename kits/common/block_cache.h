/** Large blocks of the C heap that are kept when they are freed. The heap gives blocks of this size back to the system,
 * and every page of a fresh one costs a fault: a third of a step of a large peak fit. For the kit's own use. */
#pragma once

#include <cstddef>

/** Blocks of at least so many bytes are kept; below, the heap itself keeps the pages. */
inline constexpr std::size_t BLOCK_CACHE_SIZE_MIN = std::size_t{512} * 1024;
/** Larger blocks are not worth being kept. */
inline constexpr std::size_t BLOCK_CACHE_SIZE_MAX = std::size_t{8} * 1024 * 1024;
/** Number of blocks kept at once: what one step of a fit holds. */
inline constexpr std::size_t BLOCK_CACHE_NB = 3;

/** A kept block of at least `size` bytes and at most twice as many, with any contents, or null when there is none.
 * Never waits: another thread in here is as good as an empty cache. @param size wanted, then the block's own size */
void* Block_Cache_Take(std::size_t& size);
/** Keeps a block that malloc or calloc gave. @return false when there is no room, or at the module's end: the caller
 * frees it */
bool Block_Cache_Keep(void* block, std::size_t size);
/** Frees all that is kept. Also done when the module is unloaded; nothing is kept from then on. */
void Block_Cache_Empty();

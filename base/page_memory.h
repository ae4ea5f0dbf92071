/** Memory straight from the system, in pages. */
#pragma once

#include <cstddef>

/** Whoever keeps blocks of this size or more for a short time takes them here: heaps keep what was freed below some
 *  limit of theirs (a megabyte under Wine), and the program stays as large as it ever was. In bytes. */
inline constexpr std::size_t PAGE_MEMORY_FROM = std::size_t{128} << 10U;

/** @param bytes 1 or more @return memory whose content is not set, aligned for everything; Page_Memory_Give_Back ends
 *  it. Throws std::bad_alloc */
void* Page_Memory_Take(std::size_t bytes);
/** Gives it back to the system at once. @param bytes as they were taken */
void Page_Memory_Give_Back(void* memory, std::size_t bytes) noexcept;

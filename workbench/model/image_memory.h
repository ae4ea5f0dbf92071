/** How much memory the levels of all open images may take. */
#pragma once

#include <cstdint>

namespace workbench {

/** @param chosen_mib by the user; 0: nothing chosen, then it is a third of the machine's memory
 *  @param machine_bytes of memory; 0: not known @return bytes */
constexpr std::uint64_t Image_Memory_Of(int chosen_mib, std::uint64_t machine_bytes) {
    constexpr std::uint64_t mib = std::uint64_t{1} << 20U;
    constexpr std::uint64_t when_unknown = std::uint64_t{2} << 30U;
    if (chosen_mib > 0) {
        return static_cast<std::uint64_t>(chosen_mib) * mib;
    }
    return machine_bytes > 0 ? machine_bytes / 3 : when_unknown;
}

}  // namespace workbench

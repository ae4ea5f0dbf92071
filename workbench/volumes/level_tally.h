/** How often each level of a volume occurs. */
#pragma once

#include <cstdint>
#include <vector>

namespace volumes {

struct Level_Tally {
    std::int32_t lowest = 0;           ///< the level of the first number
    std::vector<std::uint64_t> times;  ///< of lowest, lowest + 1 ...; the first and the last level occur
};

}  // namespace volumes

/** Counts how often small numbers occur. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace volumes {

/** Counts in several tables in turn: neighbours are often alike, and must not wait for each other's store. For one
 *  thread. */
class Level_Banks {
  public:
    /** So many may be counted before the tables are emptied: their counts have 32 bits. */
    static constexpr std::size_t COUNTED_MOST = std::size_t{1} << 30U;
    /** Bytes that it takes. */
    static constexpr std::size_t Size(std::size_t number_nb) { return number_nb * BANKS * sizeof(std::uint32_t); }

    /** For the numbers from 0 on. Throws std::bad_alloc. */
    explicit Level_Banks(std::size_t number_nb) : counts(number_nb * BANKS) {}
    /** @param turn goes up by one from number to number */
    void Count(std::size_t number, std::size_t turn) { ++counts[number * BANKS + turn % BANKS]; }
    /** Adds the counts of the first numbers to `times`, one for each, and begins them anew. */
    void Empty_To(std::span<std::uint64_t> times) {
        auto count = counts.begin();
        for (std::uint64_t& of_number : times) {
            for (std::size_t bank = 0; bank < BANKS; ++bank) {
                of_number += std::exchange(*count++, 0U);
            }
        }
    }

  private:
    static constexpr std::size_t BANKS = 4;
    std::vector<std::uint32_t> counts;
};

}  // namespace volumes

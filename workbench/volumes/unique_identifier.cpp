#include "workbench/volumes/unique_identifier.h"

#include <algorithm>
#include <random>

namespace volumes {

std::string Decimal_Text(std::array<std::uint32_t, 4> words) {
    std::string digits;
    do {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : words) {
            rest = rest << 32U | word;
            word = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        digits += static_cast<char>('0' + rest);
    } while (std::ranges::any_of(words, [](std::uint32_t word) { return word != 0; }));
    std::ranges::reverse(digits);
    return digits;
}

std::string Unique_Identifier_New() {
    std::random_device random;
    std::array<std::uint32_t, 4> words{};
    for (std::uint32_t& word : words) {
        word = random();
    }
    // A random UUID: version 4 of variant 1.
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x00004000U;
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;
    return "2.25." + Decimal_Text(words);
}

}  // namespace volumes

#include "workbench/archive/secret_hash.h"

#include <algorithm>
#include <bit>
#include <random>

namespace workbench::archive {

namespace {

constexpr std::size_t BLOCK_SIZE = 64;  // bytes
constexpr std::size_t ROUND_NB = 64;
constexpr std::size_t SECRET_LENGTH = 64;  // letters

constexpr std::array<std::uint32_t, ROUND_NB> ROUND_CONSTANTS = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using State = std::array<std::uint32_t, 8>;

void Block_Take(State& state, std::string_view block) {
    std::array<std::uint32_t, ROUND_NB> words{};
    for (std::size_t at = 0; at < BLOCK_SIZE; ++at) {
        words[at / 4] = words[at / 4] << 8U | static_cast<std::uint8_t>(block[at]);
    }
    for (std::size_t at = 16; at < ROUND_NB; ++at) {
        const std::uint32_t early = words[at - 15];
        const std::uint32_t late = words[at - 2];
        words[at] = words[at - 16] + (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3U) + words[at - 7] +
                    (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10U);
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t at = 0; at < ROUND_NB; ++at) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) +
                                    ROUND_CONSTANTS[at] + words[at];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const State made = {a, b, c, d, e, f, g, h};
    for (std::size_t at = 0; at < made.size(); ++at) {
        state[at] += made[at];
    }
}

std::string_view Text_Of(const Hash_Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

Hash_Bytes Hash_Of(std::string_view bytes) {
    constexpr std::size_t length_size = 8;
    State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::string padded(bytes);
    padded += '\x80';
    padded.resize((padded.size() + length_size + BLOCK_SIZE - 1) / BLOCK_SIZE * BLOCK_SIZE, '\0');
    std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
    for (std::size_t at = 1; at <= length_size; ++at) {
        padded[padded.size() - at] = static_cast<char>(bits & 0xFFU);
        bits >>= 8U;
    }
    for (std::size_t at = 0; at < padded.size(); at += BLOCK_SIZE) {
        Block_Take(state, std::string_view(padded).substr(at, BLOCK_SIZE));
    }
    Hash_Bytes hash{};
    for (std::size_t at = 0; at < hash.size(); ++at) {
        hash[at] = static_cast<std::uint8_t>(state[at / 4] >> (8U * (3 - at % 4)) & 0xFFU);
    }
    return hash;
}

Hash_Bytes Secret_Hash_Of(std::string_view secret, std::string_view text) {
    std::string inner(secret);
    if (inner.size() > BLOCK_SIZE) {
        inner = Text_Of(Hash_Of(secret));
    }
    inner.resize(BLOCK_SIZE, '\0');
    std::string outer = inner;
    std::ranges::transform(inner, inner.begin(), [](char one) { return static_cast<char>(one ^ 0x36); });
    std::ranges::transform(outer, outer.begin(), [](char one) { return static_cast<char>(one ^ 0x5C); });
    const Hash_Bytes hash = Hash_Of(inner.append(text));
    return Hash_Of(outer.append(Text_Of(hash)));
}

std::string Secret_New() {
    constexpr std::string_view digits = "0123456789abcdef";
    std::random_device random;
    std::string secret;
    while (secret.size() < SECRET_LENGTH) {
        for (std::uint32_t word = random(), at = 0; at < 8; ++at, word >>= 4U) {
            secret += digits[word & 0xFU];
        }
    }
    return secret;
}

bool Is_Secret(std::string_view text) {
    return text.size() == SECRET_LENGTH && std::ranges::all_of(text, [](char letter) {
               return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
           });
}

}  // namespace workbench::archive

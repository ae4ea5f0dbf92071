/** A fuzzer's bytes as numbers. When they are used up, every number is zero. */
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

class Input_Bytes {
  public:
    Input_Bytes(const std::uint8_t* data, std::size_t size) : bytes(data, size) {}
    bool At_End() const { return bytes.empty(); }

    template <class Number>
    Number Take() {
        Number number{};
        const std::size_t size = sizeof number < bytes.size() ? sizeof number : bytes.size();
        std::memcpy(&number, bytes.data(), size);
        bytes = bytes.subspan(size);
        return number;
    }
    /** 0 .. limit - 1 */
    int Below(int limit) { return static_cast<int>(Take<std::uint16_t>() % static_cast<unsigned int>(limit)); }
    /** At most `most` bytes, without zeros. */
    std::string Text(int most) {
        std::string text;
        for (int left = Below(most + 1); left > 0 && !At_End(); --left) {
            const char character = Take<char>();
            text += character == 0 ? ' ' : character;
        }
        return text;
    }

  private:
    std::span<const std::uint8_t> bytes;
};

/** What must hold whatever the bytes are. */
inline void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

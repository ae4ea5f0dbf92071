/** Numbers in files of either byte order, read and written without regard to the machine's own order. */
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace volumes {

inline constexpr std::size_t BYTE_BITS = 8;

enum class Byte_Order { Little, Big };

namespace byte_order_detail {
template <std::size_t size>
struct Bits;
template <>
struct Bits<1> {
    using Type = std::uint8_t;
};
template <>
struct Bits<2> {
    using Type = std::uint16_t;
};
template <>
struct Bits<4> {
    using Type = std::uint32_t;
};
template <>
struct Bits<8> {
    using Type = std::uint64_t;
};
}  // namespace byte_order_detail

/** An integer or floating-point number of type `Value` from the sizeof(Value) bytes at `bytes` (any alignment). */
template <class Value>
requires std::is_arithmetic_v<Value> Value Value_Read(const std::uint8_t* bytes, Byte_Order order) {
    using Bits = typename byte_order_detail::Bits<sizeof(Value)>::Type;
    std::uint64_t bits = 0;
    if (order == Byte_Order::Little) {
        for (std::size_t i = 0; i < sizeof(Value); ++i) {
            bits |= static_cast<std::uint64_t>(bytes[i]) << (8U * i);
        }
    } else {
        for (std::size_t i = 0; i < sizeof(Value); ++i) {
            bits |= static_cast<std::uint64_t>(bytes[i]) << (8U * (sizeof(Value) - 1U - i));
        }
    }
    return std::bit_cast<Value>(static_cast<Bits>(bits));
}

/** Stores `value` into the sizeof(Value) bytes at `bytes` (any alignment). */
template <class Value>
requires std::is_arithmetic_v<Value>
void Value_Write(std::uint8_t* bytes, Value value, Byte_Order order) {
    using Bits = typename byte_order_detail::Bits<sizeof(Value)>::Type;
    const std::uint64_t bits = std::bit_cast<Bits>(value);
    for (std::size_t i = 0; i < sizeof(Value); ++i) {
        const std::size_t position = order == Byte_Order::Little ? i : sizeof(Value) - 1U - i;
        bytes[position] = static_cast<std::uint8_t>(bits >> (8U * i));
    }
}

}  // namespace volumes

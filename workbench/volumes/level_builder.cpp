#include "workbench/volumes/level_builder.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace volumes {

namespace {

// Makes room for `more` elements: by doubling, but never beyond what was announced.
template <class List>
std::size_t Grow(List& list, std::size_t more, std::uint64_t total) {
    const std::size_t old_size = list.size();
    if (list.capacity() - old_size < more) {
        const std::uint64_t doubled = std::min<std::uint64_t>(static_cast<std::uint64_t>(old_size) * 2, total);
        list.reserve(static_cast<std::size_t>(std::max<std::uint64_t>(doubled, old_size + more)));
    }
    list.resize(old_size + more);
    return old_size;
}

// Fewer voxels are not worth a thread and its tables.
constexpr std::size_t COLLECTED_LEAST = std::size_t{1} << 20U;

// Types whose every value is a level of 16 bits.
template <class Stored>
constexpr bool IS_NARROW = sizeof(Stored) <= 2;

template <class Stored>
Level_Code Code_Of_Type() {
    return Level_Code::For(std::numeric_limits<Stored>::min(), std::numeric_limits<Stored>::max(), false).value();
}

Level_Code Code_Of(Voxel_Type type) {
    switch (type) {
        case Voxel_Type::Uint8:
            return Code_Of_Type<std::uint8_t>();
        case Voxel_Type::Int8:
            return Code_Of_Type<std::int8_t>();
        case Voxel_Type::Int16:
            return Code_Of_Type<std::int16_t>();
        case Voxel_Type::Uint16:
            return Code_Of_Type<std::uint16_t>();
        default:
            return {};
    }
}

}  // namespace

Level_Builder::Level_Builder(Voxel_Type voxel_type, Byte_Order byte_order, std::uint64_t total)
    : type(voxel_type), order(byte_order), total_nb(total), code(Code_Of(voxel_type)) {}

void Level_Builder::Reserve(std::uint64_t voxels) {
    const auto count = static_cast<std::size_t>(std::min(voxels, total_nb));
    if (Voxel_Type_Size(type) <= sizeof(std::uint16_t)) {
        narrow.reserve(count);
        if (count == total_nb && count >= COLLECTED_LEAST) {
            narrow.resize(count);
            collector.emplace(type, order, code, narrow);
        }
    } else if (Voxel_Type_Size(type) <= sizeof(std::int32_t)) {
        levels.reserve(count);
    } else {
        wide.reserve(count);
    }
}

void Level_Builder::Take(std::size_t bytes) {
    collector->Take(bytes);
    voxel_nb += bytes / Voxel_Type_Size(type);
}

template <class Stored>
void Level_Builder::Append_As(std::span<const std::uint8_t> bytes) {
    const std::size_t count = bytes.size() / sizeof(Stored);
    const auto convert = [&](auto* out, Byte_Order fixed_order) {
        const std::uint8_t* from = bytes.data();
        for (std::size_t i = 0; i < count; ++i, from += sizeof(Stored)) {
            const Stored value = Value_Read<Stored>(from, fixed_order);
            if constexpr (sizeof(Stored) == 8) {
                out[i] = std::bit_cast<std::uint64_t>(value);
            } else if constexpr (sizeof(Stored) == 4) {
                out[i] = std::bit_cast<std::int32_t>(value);
            } else {
                out[i] = static_cast<std::uint16_t>(value - code.base);
            }
        }
    };
    const auto convert_to = [&](auto* out) {
        if (order == Byte_Order::Little) {  // the order known at compile time makes the loop several times faster
            convert(out, Byte_Order::Little);
        } else {
            convert(out, Byte_Order::Big);
        }
    };
    if constexpr (IS_NARROW<Stored>) {
        const std::size_t begin = Grow(narrow, count, total_nb);
        convert_to(narrow.data() + begin);
    } else if constexpr (sizeof(Stored) <= sizeof(std::int32_t)) {
        const std::size_t begin = Grow(levels, count, total_nb);
        convert_to(levels.data() + begin);
    } else {
        const std::size_t begin = Grow(wide, count, total_nb);
        convert_to(wide.data() + begin);
    }
    voxel_nb += count;
}

void Level_Builder::Append_Color(std::span<const std::uint8_t> bytes, std::size_t voxel_size) {
    const std::size_t count = bytes.size() / voxel_size;
    std::size_t at = Grow(levels, count, total_nb);
    const std::uint8_t* from = bytes.data();
    for (std::size_t i = 0; i < count; ++i, from += voxel_size, ++at) {
        levels[at] = from[0] | (from[1] << 8) | (from[2] << 16);
    }
    voxel_nb += count;
}

void Level_Builder::Append(std::span<const std::uint8_t> bytes) {
    while (collector && !bytes.empty()) {
        const std::span<std::uint8_t> room = collector->Room();
        const std::size_t part = std::min(room.size(), bytes.size());
        std::ranges::copy(bytes.first(part), room.begin());
        Take(part);
        bytes = bytes.subspan(part);
    }
    if (collector) {
        return;
    }
    switch (type) {
        case Voxel_Type::Uint8:
            return Append_As<std::uint8_t>(bytes);
        case Voxel_Type::Int8:
            return Append_As<std::int8_t>(bytes);
        case Voxel_Type::Int16:
            return Append_As<std::int16_t>(bytes);
        case Voxel_Type::Uint16:
            return Append_As<std::uint16_t>(bytes);
        case Voxel_Type::Int32:
            return Append_As<std::int32_t>(bytes);
        case Voxel_Type::Uint32:
            return Append_As<std::uint32_t>(bytes);
        case Voxel_Type::Int64:
            return Append_As<std::int64_t>(bytes);
        case Voxel_Type::Uint64:
            return Append_As<std::uint64_t>(bytes);
        case Voxel_Type::Float32:
            return Append_As<float>(bytes);
        case Voxel_Type::Float64:
            return Append_As<double>(bytes);
        case Voxel_Type::Rgb24:
        case Voxel_Type::Rgba32:
            return Append_Color(bytes, Voxel_Type_Size(type));
    }
}

}  // namespace volumes

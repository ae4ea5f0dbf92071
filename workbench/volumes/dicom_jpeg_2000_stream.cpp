#include "workbench/volumes/dicom_jpeg_2000_stream.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "workbench/volumes/byte_order.h"

namespace volumes {

namespace {

using Byte_Span = std::span<const std::uint8_t>;

constexpr std::uint16_t TILE_PART = 0xFF90;
constexpr std::uint16_t TILE_DATA = 0xFF93;
constexpr std::uint16_t END = 0xFFD9;
constexpr std::size_t MARK_SIZE = 2;
constexpr std::size_t TILE_HEAD_SIZE = 12;  // the mark, length, tile, length of the part, its number, number of parts

std::uint16_t Short_At(Byte_Span bytes, std::size_t at) {
    return Value_Read<std::uint16_t>(bytes.data() + at, Byte_Order::Big);
}

std::uint32_t Word_At(Byte_Span bytes, std::size_t at) {
    return Value_Read<std::uint32_t>(bytes.data() + at, Byte_Order::Big);
}

bool Begins_With(Byte_Span bytes, Byte_Span mark) {
    return bytes.size() >= mark.size() && std::ranges::equal(bytes.first(mark.size()), mark);
}

bool Is_Zeros(Byte_Span rest) {
    return std::ranges::all_of(rest, [](std::uint8_t byte) { return byte == 0; });
}

/** A part of a JP2 file. */
struct Box {
    std::string_view kind;
    Byte_Span content;
    bool is_whole = true;
};

/** Takes the first box off the bytes; no value: they begin with none. */
std::optional<Box> Box_Take(Byte_Span& bytes) {
    constexpr std::size_t head_size = 8;
    constexpr std::size_t wide_head_size = 16;
    if (bytes.size() < head_size) {
        return std::nullopt;
    }
    const std::string_view kind(reinterpret_cast<const char*>(bytes.data()) + 4, 4);
    std::size_t head = head_size;
    std::uint64_t length = Word_At(bytes, 0);
    if (length == 1 && bytes.size() >= wide_head_size) {
        head = wide_head_size;
        length = Value_Read<std::uint64_t>(bytes.data() + head_size, Byte_Order::Big);
    } else if (length == 0) {
        length = bytes.size();  // the last one reaches to the end
    }
    const bool is_named = std::ranges::all_of(kind, [](char letter) { return letter >= ' ' && letter <= '~'; });
    if (length < head || !is_named) {
        return std::nullopt;
    }
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(length, bytes.size()));
    const Box box{kind, bytes.subspan(head, taken - head), taken == length};
    bytes = bytes.subspan(taken);
    return box;
}

/** Whether other boxes or filling follow the box of the picture, and no other picture. */
bool Is_Sound_Rest(Byte_Span rest) {
    while (!Is_Zeros(rest)) {
        const std::optional<Box> box = Box_Take(rest);
        if (!box || !box->is_whole || box->kind == "jP  " || box->kind == "jp2c") {
            return false;
        }
    }
    return true;
}

/** The codestream, if there is one; its sizes are not read. */
std::optional<Jpeg_2000_Stream> Codestream_Of(Byte_Span packed) {
    if (Begins_With(packed, JPEG_2000_MARK)) {
        return Jpeg_2000_Stream{packed};
    }
    if (!Begins_With(packed, JPEG_2000_FILE_MARK)) {
        return std::nullopt;
    }
    std::optional<Box> box = Box_Take(packed);
    while (box && box->kind != "jp2c") {
        box = Box_Take(packed);
    }
    if (!box || !Begins_With(box->content, JPEG_2000_MARK)) {
        return std::nullopt;
    }
    return Jpeg_2000_Stream{box->content, true, box->is_whole && Is_Sound_Rest(packed)};
}

/** How many tiles a picture has in one direction; 0: that cannot be. */
std::uint64_t Tile_Nb(std::uint32_t end, std::uint32_t tile_begin, std::uint32_t tile_side) {
    return tile_side == 0 || end <= tile_begin
               ? 0
               : (static_cast<std::uint64_t>(end - tile_begin) + tile_side - 1) / tile_side;
}

/** Where tile parts are, of what tile, and which of its parts. */
class Tile_Parts {
  public:
    explicit Tile_Parts(const Jpeg_2000_Stream& stream) : bytes(stream.bytes), seen(stream.tile_nb) {}

    /** Goes through all of them. @return false: something is missing or too much */
    bool Are_Whole() {
        at = JPEG_2000_MARK.size() - MARK_SIZE;
        if (!Segments_Skip(TILE_PART)) {
            return false;
        }
        while (Is_Mark(TILE_PART)) {
            if (!Part_Skip()) {
                return false;
            }
        }
        return Is_Mark(END) && Is_Zeros(bytes.subspan(at + MARK_SIZE)) &&
               std::ranges::all_of(seen, [](const Tile& tile) { return tile.parts > 0 && tile.parts >= tile.told; });
    }

  private:
    struct Tile {
        unsigned parts = 0;
        unsigned told = 0;  // 0: nothing was
    };

    bool Is_Mark(std::uint16_t mark) const { return bytes.size() - at >= MARK_SIZE && Short_At(bytes, at) == mark; }

    /** Goes on to a mark, segment by segment. */
    bool Segments_Skip(std::uint16_t to) {
        while (!Is_Mark(to)) {
            constexpr std::size_t head_size = 4;
            constexpr std::size_t length_least = 2;
            if (bytes.size() - at < head_size || bytes[at] != 0xFF) {
                return false;
            }
            const std::size_t length = Short_At(bytes, at + MARK_SIZE);
            if (length < length_least || length > bytes.size() - at - MARK_SIZE) {
                return false;
            }
            at += MARK_SIZE + length;
        }
        return true;
    }

    /** Data that reach to the end mark: in coded data no mark of its height can be. */
    bool Last_Data_Skip() {
        at += TILE_HEAD_SIZE;
        if (!Segments_Skip(TILE_DATA)) {
            return false;
        }
        while (at < bytes.size() && !Is_Mark(END)) {
            ++at;
        }
        return true;
    }

    bool Part_Skip() {
        if (bytes.size() - at < TILE_HEAD_SIZE) {
            return false;
        }
        const std::size_t number = Short_At(bytes, at + 4);
        const std::uint32_t length = Word_At(bytes, at + 6);
        // Parts of one tile come in their order. Some programs tell one part too few.
        if (number >= seen.size() || bytes[at + 10] != seen[number].parts) {
            return false;
        }
        ++seen[number].parts;
        seen[number].told = std::max<unsigned>(seen[number].told, bytes[at + 11]);
        if (length == 0) {
            return Last_Data_Skip();
        }
        if (length < TILE_HEAD_SIZE + MARK_SIZE || length > bytes.size() - at) {
            return false;
        }
        at += length;
        return true;
    }

    Byte_Span bytes;
    std::size_t at = 0;
    std::vector<Tile> seen;
};

}  // namespace

// Contract: decoders make room by this header alone, before the first tile is there: one that promises more than the
// stream can hold would take all memory.
std::optional<Jpeg_2000_Stream> Jpeg_2000_Stream_Find(std::span<const std::uint8_t> packed) {
    constexpr std::size_t sizes_end = 42;
    constexpr std::uint32_t side_most = 65535;
    constexpr std::uint64_t tiles_most = 4096;
    constexpr std::uint16_t components_most = 3;
    std::optional<Jpeg_2000_Stream> stream = Codestream_Of(packed);
    if (!stream || stream->bytes.size() < sizes_end) {
        return std::nullopt;
    }
    const auto word = [&](std::size_t number) { return Word_At(stream->bytes, 8 + number * sizeof(std::uint32_t)); };
    const std::uint32_t right = word(0);
    const std::uint32_t bottom = word(1);
    const std::uint32_t left = word(2);
    const std::uint32_t top = word(3);
    const std::uint16_t components = Short_At(stream->bytes, 40);
    if (left >= right || top >= bottom || right - left > side_most || bottom - top > side_most || components == 0 ||
        components > components_most) {
        return std::nullopt;
    }
    const std::uint64_t tiles_across = Tile_Nb(right, word(6), word(4));
    const std::uint64_t tiles_down = Tile_Nb(bottom, word(7), word(5));
    if (tiles_across == 0 || tiles_down == 0 || tiles_across > tiles_most || tiles_down > tiles_most ||
        tiles_across * tiles_down > tiles_most) {
        return std::nullopt;
    }
    // A picture of one value takes some 200 bytes whatever its size: up to 4096 x 4096 pixels any length will do.
    constexpr std::uint64_t pixels_free = 4096U * 4096U;
    constexpr std::uint64_t pixels_of_byte = 65536;
    const std::uint64_t pixels = static_cast<std::uint64_t>(right - left) * (bottom - top);
    if (pixels > pixels_free && pixels / pixels_of_byte > stream->bytes.size()) {
        return std::nullopt;
    }
    stream->tile_nb = static_cast<std::uint32_t>(tiles_across * tiles_down);
    return stream;
}

bool Jpeg_2000_Is_Whole(const Jpeg_2000_Stream& stream) {
    return stream.has_sound_rest && Tile_Parts(stream).Are_Whole();
}

}  // namespace volumes

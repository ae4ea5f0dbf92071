#include "workbench/archive/stream_comments.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "workbench/volumes/byte_order.h"

namespace workbench::archive {

namespace {

constexpr std::uint8_t MARK = 0xFF;  // begins every marker
constexpr std::uint8_t JPEG_START = 0xD8;
constexpr std::uint8_t JPEG_END = 0xD9;  // of JPEG 2000, too
constexpr std::uint8_t JPEG_SCAN = 0xDA;
constexpr std::uint8_t JPEG_COMMENT = 0xFE;
constexpr std::uint8_t TILE_PART = 0x90;
constexpr std::uint8_t TILE_DATA = 0x93;
constexpr std::uint8_t TILE_COMMENT = 0x64;
constexpr std::uint8_t PACKET_START = 0x91;  // the two markers that may stand within the data of a tile part
constexpr std::uint8_t PACKET_HEADER_END = 0x92;
constexpr std::uint8_t DATA_MOST = 0x8F;      // more than this never follows the mark within coded data
constexpr std::size_t TILE_PART_LENGTH = 12;  // bytes of the segment with its marker; so is the next
constexpr std::size_t PACKET_LENGTH = 6;

/** Where the segment of the marker at `at` ends; no value: it does not lie within the stream. */
std::optional<std::size_t> Segment_End(std::span<const std::uint8_t> stream, std::size_t at) {
    if (stream.size() < at + 4) {
        return std::nullopt;
    }
    const std::size_t length = volumes::Value_Read<std::uint16_t>(&stream[at + 2], volumes::Byte_Order::Big);
    return length >= 2 && length <= stream.size() - at - 2 ? std::optional(at + 2 + length) : std::nullopt;
}

void Blank(std::span<std::uint8_t> stream, std::size_t from, std::size_t to) {
    std::ranges::fill(stream.subspan(from, to - from), std::uint8_t{0});
}

/** Segments of programs by which a codec knows how colours are meant: nothing else has room in those of that length. */
bool Is_About_Colours(std::uint8_t marker, std::span<const std::uint8_t> content) {
    struct Known {
        std::uint8_t marker;
        std::string_view name;
        std::size_t size;
    };
    constexpr std::array known = {
        Known{0xE0, std::string_view("JFIF\0", 5), 14},
        Known{0xE8, "mrfx", 5},
        Known{0xEE, "Adobe", 12},
    };
    return std::ranges::any_of(known, [&](const Known& one) {
        return one.marker == marker && one.size == content.size() &&
               std::equal(one.name.begin(), one.name.end(), content.begin(),
                          [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
    });
}

bool Is_Jpeg_Marker(std::uint8_t byte) {
    const bool is_restart = byte >= 0xD0 && byte <= 0xD7;
    return byte >= 0x80 && !is_restart;  // less follows within the data of a scan
}

/** Blanks the comments of a header. @return where the marker stands that ends it */
std::optional<std::size_t> Header_Blank(std::span<std::uint8_t> stream, std::size_t at, std::uint8_t end_marker) {
    while (at + 2 <= stream.size() && stream[at] == MARK) {
        if (stream[at + 1] == end_marker) {
            return at;
        }
        const std::optional<std::size_t> end = Segment_End(stream, at);
        if (!end) {
            return std::nullopt;
        }
        if (stream[at + 1] == TILE_COMMENT) {
            Blank(stream, std::min(at + 4, *end), *end);
        }
        at = *end;
    }
    return std::nullopt;
}

/** Where the marker stands that ends the data of a tile part; the end of the stream where none does. */
std::size_t Tile_Data_End(std::span<const std::uint8_t> stream, std::size_t at) {
    while (at + 2 <= stream.size()) {
        if (stream[at] != MARK || stream[at + 1] <= DATA_MOST) {
            ++at;
        } else if (stream[at + 1] == PACKET_START) {
            at += PACKET_LENGTH;  // its number may look like a marker
        } else if (stream[at + 1] == PACKET_HEADER_END) {
            at += 2;
        } else {
            return at;
        }
    }
    return stream.size();
}

/** Where the runs (PackBits) end that make so many bytes; no value: none end there. */
std::optional<std::size_t> Runs_End(std::span<const std::uint8_t> segment, std::size_t byte_nb) {
    constexpr std::uint8_t no_run = 128;
    std::size_t at = 0;
    while (byte_nb > 0 && at < segment.size()) {
        const std::uint8_t control = segment[at++];
        if (control == no_run) {
            continue;
        }
        const std::size_t made = control < no_run ? control + std::size_t{1} : std::size_t{257} - control;
        const std::size_t taken = control < no_run ? made : 1;
        if (made > byte_nb || taken > segment.size() - at) {
            return std::nullopt;
        }
        byte_nb -= made;
        at += taken;
    }
    return byte_nb == 0 ? std::optional(at) : std::nullopt;
}

}  // namespace

bool Is_Jpeg_Start(std::span<const std::uint8_t> stream) {
    return stream.size() >= 3 && stream[0] == MARK && stream[1] == JPEG_START && stream[2] == MARK;
}

bool Is_Jpeg_2000_Start(std::span<const std::uint8_t> stream) {
    return stream.size() >= 4 && stream[0] == MARK && stream[1] == 0x4F && stream[2] == MARK && stream[3] == 0x51;
}

std::optional<std::size_t> Jpeg_Comments_Blank(std::span<std::uint8_t> stream) {
    if (stream.size() < 4 || stream[0] != MARK || stream[1] != JPEG_START) {
        return std::nullopt;
    }
    std::size_t at = 2;
    while (at + 2 <= stream.size() && stream[at] == MARK) {
        const std::uint8_t marker = stream[at + 1];
        if (marker == MARK) {
            ++at;  // filling
            continue;
        }
        if (marker == JPEG_END) {
            return at + 2;
        }
        const std::optional<std::size_t> end = Segment_End(stream, at);
        if (!Is_Jpeg_Marker(marker) || !end) {
            return std::nullopt;
        }
        const bool is_of_program = marker >= 0xE0 && marker <= 0xEF;
        if (marker == JPEG_COMMENT ||
            (is_of_program && !Is_About_Colours(marker, stream.subspan(at + 4, *end - at - 4)))) {
            Blank(stream, at + 4, *end);
        }
        at = *end;
        if (marker == JPEG_SCAN) {
            while (at + 2 <= stream.size() && (stream[at] != MARK || !Is_Jpeg_Marker(stream[at + 1]))) {
                ++at;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> Jpeg_2000_Comments_Blank(std::span<std::uint8_t> stream) {
    if (!Is_Jpeg_2000_Start(stream)) {
        return std::nullopt;
    }
    std::optional<std::size_t> at = Header_Blank(stream, 2, TILE_PART);
    while (at && *at + TILE_PART_LENGTH <= stream.size() && stream[*at] == MARK && stream[*at + 1] == TILE_PART) {
        const std::optional<std::size_t> data = Header_Blank(stream, *at + TILE_PART_LENGTH, TILE_DATA);
        const std::size_t length = volumes::Value_Read<std::uint32_t>(&stream[*at + 6], volumes::Byte_Order::Big);
        if (!data) {
            return std::nullopt;
        }
        if (length == 0) {  // the last one: the marker that ends its data ends the picture, too
            at = Tile_Data_End(stream, *data + 2);
            break;
        }
        if (length > stream.size() - *at || *at + length < *data + 2 ||
            Tile_Data_End(stream.first(*at + length), *data + 2) != *at + length) {
            return std::nullopt;
        }
        *at += length;
    }
    const bool is_end = at && *at + 2 <= stream.size() && stream[*at] == MARK && stream[*at + 1] == JPEG_END;
    return is_end ? std::optional(*at + 2) : std::nullopt;
}

bool Run_Length_Blank(std::span<std::uint8_t> picture, const Run_Length_Form& form) {
    constexpr std::size_t header_length = 64;
    constexpr std::size_t segments_most = 15;
    const auto number = [&](std::size_t place) -> std::size_t {
        return volumes::Value_Read<std::uint32_t>(picture.data() + place * 4, volumes::Byte_Order::Little);
    };
    if (picture.size() < header_length || form.segment_nb > segments_most || number(0) != form.segment_nb ||
        number(1) != header_length) {
        return false;
    }
    Blank(picture, 4 + 4 * form.segment_nb, header_length);
    for (std::size_t segment = 1; segment <= form.segment_nb; ++segment) {
        const std::size_t begin = number(segment);
        const std::size_t end = segment < form.segment_nb ? number(segment + 1) : picture.size();
        if (end < begin || end > picture.size()) {
            return false;
        }
        const std::optional<std::size_t> runs_end = Runs_End(picture.subspan(begin, end - begin), form.pixel_nb);
        if (!runs_end) {
            return false;
        }
        Blank(picture, begin + *runs_end, end);
    }
    return true;
}

}  // namespace workbench::archive

#include "workbench/volumes/dicom_run_length.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "workbench/volumes/byte_order.h"

namespace volumes {

namespace {

constexpr std::size_t HEADER_SIZE = 64;  // bytes: a count and 15 offsets
constexpr std::size_t SEGMENT_MOST = 15;

/** Unpacks a segment into every `stride`-th byte from `first` on. @return true: all `count` bytes were there */
bool Segment_Decode(std::span<const std::uint8_t> packed, std::size_t count, std::span<std::uint8_t> bytes,
                    std::size_t first, std::size_t stride) {
    constexpr unsigned literal_most = 127;
    constexpr unsigned nothing = 128;
    std::size_t done = 0;
    std::size_t at = 0;
    while (done < count && at < packed.size()) {
        const unsigned control = packed[at++];
        if (control == nothing) {
            continue;
        }
        const bool is_literal = control <= literal_most;
        const std::size_t length = is_literal ? control + 1U : 257U - control;
        if (at + (is_literal ? length : 1) > packed.size()) {
            return false;
        }
        const std::size_t taken = std::min(length, count - done);
        for (std::size_t i = 0; i < taken; ++i, ++done) {
            bytes[first + done * stride] = packed[is_literal ? at + i : at];
        }
        at += is_literal ? length : 1;
    }
    return done == count;
}

}  // namespace

const char* Run_Length_Decode(const Pixel_Format& format, std::span<const std::uint8_t> packed,
                              std::span<std::uint8_t> bytes) {
    const auto samples = static_cast<std::size_t>(format.Sample_Nb());
    const auto sample_size = static_cast<std::size_t>(format.bits_allocated / 8);
    const std::size_t pixels = static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height);
    const std::size_t segments = samples * sample_size;
    if (packed.size() < HEADER_SIZE || bytes.size() != pixels * segments) {
        return "no table of segments";
    }
    if (segments > SEGMENT_MOST || Value_Read<std::uint32_t>(packed.data(), Byte_Order::Little) != segments) {
        return "a number of segments that does not fit the samples";
    }
    std::vector<std::size_t> begin(segments + 1);
    for (std::size_t segment = 0; segment < segments; ++segment) {
        begin[segment] =
            Value_Read<std::uint32_t>(packed.data() + (segment + 1) * sizeof(std::uint32_t), Byte_Order::Little);
    }
    begin[segments] = packed.size();
    for (std::size_t segment = 0; segment < segments; ++segment) {
        if (begin[segment] < HEADER_SIZE || begin[segment] > begin[segment + 1]) {
            return "segments out of order";
        }
        const std::size_t sample = segment / sample_size;
        const std::size_t byte = sample_size - 1 - segment % sample_size;
        const std::size_t first = format.is_planar ? sample * pixels * sample_size + byte : sample * sample_size + byte;
        const std::size_t stride = format.is_planar ? sample_size : segments;
        if (!Segment_Decode(packed.subspan(begin[segment], begin[segment + 1] - begin[segment]), pixels, bytes, first,
                            stride)) {
            return "a segment too short for its pixels";
        }
    }
    return nullptr;
}

}  // namespace volumes

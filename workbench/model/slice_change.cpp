#include "workbench/model/slice_change.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#define ZLIB_CONST
#include <zlib.h>

#include "workbench/model/changed_pixels.h"

namespace workbench {

namespace {

constexpr std::size_t PLAIN_MOST = 4096;  // bytes of runs that are not worth compressing
constexpr int FAST = 1;                   // zlib's level
constexpr std::uint64_t EACH_BYTE = 0x0101010101010101U;

void Number_Put(std::vector<std::uint8_t>& bytes, std::uint32_t number) {
    for (; number >= 0x80; number >>= 7U) {
        bytes.push_back(static_cast<std::uint8_t>(number | 0x80U));
    }
    bytes.push_back(static_cast<std::uint8_t>(number));
}

std::uint32_t Number_Take(std::span<const std::uint8_t>& bytes) {
    std::uint32_t number = 0;
    for (unsigned int shift = 0; !bytes.empty() && shift < 32; shift += 7) {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        number |= static_cast<std::uint32_t>(byte & 0x7FU) << shift;
        if (byte < 0x80) {
            break;
        }
    }
    return number;
}

std::vector<std::uint8_t> Compressed(const std::vector<std::uint8_t>& plain) {
    uLongf size = ::compressBound(static_cast<uLong>(plain.size()));
    std::vector<std::uint8_t> bytes(size);
    if (::compress2(bytes.data(), &size, plain.data(), static_cast<uLong>(plain.size()), FAST) != Z_OK) {
        return {};
    }
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

/** Per byte of bits: the eight pixels that they stand for. */
constexpr std::array<std::uint64_t, 256> Bytes_Of_Bits() {
    std::array<std::uint64_t, 256> bytes{};
    for (std::size_t bits = 0; bits < bytes.size(); ++bits) {
        for (unsigned int bit = 0; bit < 8; ++bit) {
            bytes[bits] |= (bits >> bit & 1U) != 0 ? std::uint64_t{0xFF} << (8 * bit) : 0;
        }
    }
    return bytes;
}
constexpr std::array<std::uint64_t, 256> BYTES_OF_BITS = Bytes_Of_Bits();
static_assert(std::endian::native == std::endian::little);

void Word_Write(std::uint64_t bits, std::uint8_t tag, std::uint8_t* pixels) {
    for (; bits != 0; bits >>= 8U, pixels += WORD_BYTES) {
        const std::uint64_t written = BYTES_OF_BITS[bits & 0xFFU];
        std::uint64_t eight = 0;
        std::memcpy(&eight, pixels, WORD_BYTES);
        eight = (eight & ~written) | (tag * EACH_BYTE & written);
        std::memcpy(pixels, &eight, WORD_BYTES);
    }
}

/** Calls `take` with TAG before, TAG after, and the words. */
template <class Take>
void Each_Layer(std::span<const std::uint8_t> packed, std::size_t layer_nb, Take take) {
    const std::size_t size = packed.size() / layer_nb;
    std::vector<std::uint64_t> words((size - LAYER_HEAD) / WORD_BYTES);
    for (std::size_t layer = 0; layer < layer_nb; ++layer) {
        const std::span<const std::uint8_t> bytes = packed.subspan(layer * size, size);
        std::memcpy(words.data(), &bytes[LAYER_HEAD], words.size() * WORD_BYTES);
        take(bytes[0], bytes[1], words);
    }
}

}  // namespace

Slice_Change::Slice_Change(int of_slice, std::span<const Voxel_Run> runs) : slice(of_slice), run_nb(runs.size()) {
    std::uint32_t end = 0;
    for (const Voxel_Run& run : runs) {
        Number_Put(packed, run.offset - end);
        Number_Put(packed, run.length);
        packed.push_back(run.before);
        packed.push_back(run.after);
        end = run.offset + run.length;
        voxel_nb += run.length;
    }
    if (packed.size() > PLAIN_MOST) {
        std::vector<std::uint8_t> smaller = Compressed(packed);
        if (!smaller.empty() && smaller.size() < packed.size()) {
            plain_size = packed.size();
            packed = std::move(smaller);
        }
    }
    packed.shrink_to_fit();
}

std::optional<Slice_Change> Slice_Change::Of_Difference(int slice, std::span<const std::uint8_t> before,
                                                        std::span<const std::uint8_t> after, const Tag_Flags* stays) {
    const std::size_t size = std::min(before.size(), after.size());
    const Pixel_Words before_words(before.first(size));
    const Pixel_Words after_words(after.first(size));
    const Changed_Pixels changed(before_words, after_words, stays);
    if (changed.Voxel_Nb() == 0) {
        return std::nullopt;
    }
    Slice_Change change;
    change.layer_nb = changed.Layers(change.packed);
    if (change.layer_nb == 0) {
        return Slice_Change(slice, changed.Runs());
    }
    change.slice = slice;
    change.voxel_nb = changed.Voxel_Nb();
    change.first_word = static_cast<std::uint32_t>(changed.First_Word());
    change.packed.shrink_to_fit();
    return change;
}

void Slice_Change::Apply(bool redo, std::span<std::uint8_t> pixels) const {
    if (layer_nb == 0) {
        for (const Voxel_Run& run : Packed_Runs()) {
            if (std::size_t{run.offset} + run.length <= pixels.size()) {
                std::ranges::fill(pixels.subspan(run.offset, run.length), redo ? run.after : run.before);
            }
        }
        return;
    }
    Each_Layer(packed, layer_nb, [&](std::uint8_t before, std::uint8_t after, std::span<const std::uint64_t> words) {
        const std::uint8_t tag = redo ? after : before;
        std::size_t pixel = std::size_t{first_word} * WORD_BITS;
        for (std::uint64_t bits : words) {
            if (pixel + WORD_BITS <= pixels.size()) {
                Word_Write(bits, tag, &pixels[pixel]);
            } else {
                for (std::size_t at = pixel; bits != 0 && at < pixels.size(); bits >>= 1U, ++at) {
                    pixels[at] = (bits & 1U) != 0 ? tag : pixels[at];
                }
            }
            pixel += WORD_BITS;
        }
    });
}

std::vector<Voxel_Run> Slice_Change::Runs() const {
    return layer_nb == 0 ? Packed_Runs() : Layer_Runs();
}

std::vector<Voxel_Run> Slice_Change::Layer_Runs() const {
    std::vector<Voxel_Run> runs;
    Each_Layer(packed, layer_nb, [&](std::uint8_t before, std::uint8_t after, std::span<const std::uint64_t> words) {
        const std::size_t first_run = runs.size();
        for (std::size_t at = 0; at < words.size() * WORD_BITS; ++at) {
            if ((words[at / WORD_BITS] >> (at % WORD_BITS) & 1U) == 0) {
                continue;
            }
            const auto offset = static_cast<std::uint32_t>(std::size_t{first_word} * WORD_BITS + at);
            if (runs.size() > first_run && runs.back().offset + runs.back().length == offset) {
                ++runs.back().length;
            } else {
                runs.push_back({offset, 1, before, after});
            }
        }
    });
    std::ranges::sort(runs, {}, &Voxel_Run::offset);
    return runs;
}

std::vector<Voxel_Run> Slice_Change::Packed_Runs() const {
    std::vector<std::uint8_t> plain;
    std::span<const std::uint8_t> bytes = packed;
    if (plain_size != 0) {
        plain.resize(plain_size);
        auto size = static_cast<uLongf>(plain_size);
        if (::uncompress(plain.data(), &size, packed.data(), static_cast<uLong>(packed.size())) != Z_OK) {
            throw std::bad_alloc();  // nothing else can go wrong with bytes of our own
        }
        bytes = plain;
    }
    std::vector<Voxel_Run> runs;
    runs.reserve(run_nb);
    std::uint32_t end = 0;
    while (bytes.size() > 3) {
        Voxel_Run run;
        run.offset = end + Number_Take(bytes);
        run.length = Number_Take(bytes);
        if (bytes.size() < 2) {
            break;
        }
        run.before = bytes[0];
        run.after = bytes[1];
        bytes = bytes.subspan(2);
        end = run.offset + run.length;
        runs.push_back(run);
    }
    return runs;
}

}  // namespace workbench

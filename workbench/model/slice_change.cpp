#include "workbench/model/slice_change.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#define ZLIB_CONST
#include <zlib.h>

namespace workbench {

namespace {

constexpr std::size_t PLAIN_MOST = 4096;  // bytes of runs that are not worth compressing
constexpr int FAST = 1;                   // zlib's level
constexpr std::size_t WORD_BITS = 64;
constexpr std::size_t WORD_BYTES = sizeof(std::uint64_t);
constexpr std::size_t LAYERS_MOST = 4;      // pairs of TAGs that get a bit for each pixel
constexpr std::size_t LAYER_HEAD = 2;       // bytes before a layer's words
constexpr std::size_t RUN_BYTES_LEAST = 4;  // that a packed run takes
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

__m128i Sixteen(const std::uint8_t* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

std::uint64_t Equal_Bits(__m128i a, __m128i b) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
}

/** A slice's pixels in words of 64; the last one is filled up with zeros. */
class Pixel_Words {
  public:
    explicit Pixel_Words(std::span<const std::uint8_t> of) : pixels(of) {
        const std::size_t whole = pixels.size() / WORD_BITS * WORD_BITS;
        std::ranges::copy(pixels.subspan(whole), rest.begin());
    }
    const std::uint8_t* Word(std::size_t at) const {
        return (at + 1) * WORD_BITS <= pixels.size() ? &pixels[at * WORD_BITS] : rest.data();
    }
    std::uint8_t operator[](std::size_t at) const { return pixels[at]; }
    std::size_t size() const { return pixels.size(); }
    std::size_t Word_Nb() const { return (pixels.size() + WORD_BITS - 1) / WORD_BITS; }

  private:
    std::span<const std::uint8_t> pixels;
    std::array<std::uint8_t, WORD_BITS> rest{};
};

/** The bits of a word of pixels. @param of_sixteen those of sixteen, given the first one's number */
template <class Of_Sixteen>
std::uint64_t Word_Bits(Of_Sixteen of_sixteen) {
    return of_sixteen(0) | of_sixteen(16) << 16U | of_sixteen(32) << 32U | of_sixteen(48) << 48U;
}

/** Where two words are equal. */
std::uint64_t Word_Equal(const std::uint8_t* a, const std::uint8_t* b) {
    return Word_Bits([=](std::size_t at) { return Equal_Bits(Sixteen(a + at), Sixteen(b + at)); });
}

/** Where a word is one TAG. */
std::uint64_t Word_Is(const std::uint8_t* word, std::uint8_t tag) {
    const __m128i wanted = _mm_set1_epi8(static_cast<char>(tag));
    return Word_Bits([=](std::size_t at) { return Equal_Bits(Sixteen(word + at), wanted); });
}

/** Which TAGs' pixels may change: a word at a time where few TAGs stay, or all but few. */
class Free_Tags {
  public:
    explicit Free_Tags(const Tag_Flags* of_stays) : stays(of_stays) {
        if (stays != nullptr) {
            const auto stay_nb = static_cast<std::size_t>(std::ranges::count_if(*stays, Is_Set));
            is_staying = stay_nb <= stays->size() / 2;
            few_nb = is_staying ? stay_nb : stays->size() - stay_nb;
            for (std::size_t tag = 0, at = 0; few_nb <= few.size() && tag < stays->size(); ++tag) {
                if (Is_Set((*stays)[tag]) == is_staying) {
                    few[at++] = static_cast<std::uint8_t>(tag);
                }
            }
        }
    }
    /** @return those of the bits whose pixels may change */
    std::uint64_t Of_Word(const std::uint8_t* word, std::uint64_t bits) const {
        if (few_nb > few.size()) {
            return Of_Each(word, bits);
        }
        std::uint64_t have_few = 0;
        for (std::size_t at = 0; at < few_nb; ++at) {
            have_few |= Word_Is(word, few[at]);
        }
        return bits & (is_staying ? ~have_few : have_few);
    }

  private:
    static bool Is_Set(std::uint8_t flag) { return flag != 0; }
    std::uint64_t Of_Each(const std::uint8_t* word, std::uint64_t bits) const {
        std::uint64_t kept = 0;
        for (; bits != 0; bits &= bits - 1) {
            const auto bit = static_cast<unsigned int>(std::countr_zero(bits));
            kept |= static_cast<std::uint64_t>(Is_Set((*stays)[word[bit]]) ? 0 : 1) << bit;
        }
        return kept;
    }

    const Tag_Flags* stays;
    std::array<std::uint8_t, 4> few{};  // the TAGs that stay, or the ones that do not
    std::size_t few_nb = 0;
    bool is_staying = true;
};

/** Which pixels of a slice change. */
class Changed_Bits {
  public:
    Changed_Bits(const Pixel_Words& of_before, const Pixel_Words& of_after, const Tag_Flags* stays)
        : before(of_before), after(of_after), words(before.Word_Nb()) {
        const Free_Tags free(stays);
        std::uint64_t carried = 0;  // the last bit of the word before
        for (std::size_t at = 0; at < words.size(); ++at) {
            std::uint64_t word = ~Word_Equal(before.Word(at), after.Word(at));
            word = word != 0 ? free.Of_Word(before.Word(at), word) : 0;
            words[at] = word;
            if (word != 0) {
                first = voxel_nb == 0 ? at : first;
                behind = at + 1;
                const bool is_whole =
                    ~word == 0;  // spares the counting of bits, which takes time without a machine's help
                const std::uint64_t begins = word & ~(word << 1U | carried);
                voxel_nb += is_whole ? WORD_BITS : static_cast<std::uint64_t>(std::popcount(word));
                stretch_nb += is_whole ? begins : static_cast<std::size_t>(std::popcount(begins));
            }
            carried = word >> (WORD_BITS - 1);
        }
    }

    std::uint64_t Voxel_Nb() const { return voxel_nb; }
    std::size_t First_Word() const { return first; }
    std::size_t Span_Bytes() const { return (behind - first) * WORD_BYTES; }
    /** No fewer bytes would runs take. */
    std::size_t Run_Bytes() const { return stretch_nb * RUN_BYTES_LEAST; }

    std::vector<Voxel_Run> Runs() const {
        std::vector<Voxel_Run> runs;
        runs.reserve(stretch_nb);
        for (std::size_t word = first; word < behind; ++word) {
            for (std::uint64_t bits = words[word]; bits != 0;) {
                const auto begin = static_cast<unsigned int>(std::countr_zero(bits));
                const auto end = begin + static_cast<unsigned int>(std::countr_one(bits >> begin));
                Stretch_Put(word, begin, end, runs);
                bits = end < WORD_BITS ? bits >> end << end : 0;
            }
        }
        return runs;
    }

    /** One layer for each pair of TAGs: before, after, and the words from the first to the last that change.
     *  @return how many; 0: too many, or they would take more than runs */
    std::size_t Layers(std::vector<std::uint8_t>& packed) const {
        std::vector<std::uint64_t> rest = words;
        std::uint64_t rest_nb = voxel_nb;
        for (std::size_t layer = 1; layer <= LAYERS_MOST; ++layer) {
            if (layer * (LAYER_HEAD + Span_Bytes()) >= Run_Bytes()) {
                return 0;
            }
            rest_nb -= Layer_Put(rest, packed);
            if (rest_nb == 0) {
                return layer;
            }
        }
        return 0;
    }

  private:
    /** Adds pixels of a word that all change, as runs of one pair of TAGs each. @param begin, end bits of the word */
    void Stretch_Put(std::size_t word, unsigned int begin, unsigned int end, std::vector<Voxel_Run>& runs) const {
        while (begin < end) {
            const std::size_t at = word * WORD_BITS + begin;
            const std::uint8_t from = before[at];
            const std::uint8_t to = after[at];
            const std::uint64_t same = Word_Is(before.Word(word), from) & Word_Is(after.Word(word), to);
            const unsigned int behind_run =
                std::min(end, begin + static_cast<unsigned int>(std::countr_one(same >> begin)));
            const bool is_longer = !runs.empty() && std::size_t{runs.back().offset} + runs.back().length == at &&
                                   runs.back().before == from && runs.back().after == to;
            if (is_longer) {
                runs.back().length += behind_run - begin;
            } else {
                runs.push_back({static_cast<std::uint32_t>(at), behind_run - begin, from, to});
            }
            begin = behind_run;
        }
    }
    /** Takes the pair of the first pixel that is left. @return its pixels */
    std::uint64_t Layer_Put(std::vector<std::uint64_t>& rest, std::vector<std::uint8_t>& packed) const {
        std::size_t start = first;
        while (rest[start] == 0) {
            ++start;
        }
        const std::size_t pixel = start * WORD_BITS + static_cast<std::size_t>(std::countr_zero(rest[start]));
        const std::uint8_t from = before[pixel];
        const std::uint8_t to = after[pixel];
        const std::size_t head = packed.size();
        packed.resize(head + LAYER_HEAD + Span_Bytes());
        packed[head] = from;
        packed[head + 1] = to;
        std::uint64_t nb = 0;
        for (std::size_t at = start; at < behind; ++at) {
            if (rest[at] != 0) {
                const std::uint64_t layer = rest[at] & Word_Is(before.Word(at), from) & Word_Is(after.Word(at), to);
                std::memcpy(&packed[head + LAYER_HEAD + (at - first) * WORD_BYTES], &layer, WORD_BYTES);
                rest[at] ^= layer;
                nb += static_cast<std::uint64_t>(std::popcount(layer));
            }
        }
        return nb;
    }

    const Pixel_Words& before;
    const Pixel_Words& after;
    std::vector<std::uint64_t> words;
    std::uint64_t voxel_nb = 0;
    std::size_t stretch_nb = 0;
    std::size_t first = 0;   // word with a pixel that changes
    std::size_t behind = 0;  // the last such word
};

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
    const Changed_Bits changed(before_words, after_words, stays);
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

#include "workbench/model/changed_pixels.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace workbench {

namespace {

constexpr std::size_t LAYERS_MOST = 4;      // pairs of TAGs that get a bit for each pixel
constexpr std::size_t RUN_BYTES_LEAST = 4;  // that a packed run takes

__m128i Sixteen(const std::uint8_t* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

std::uint64_t Equal_Bits(__m128i a, __m128i b) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
}

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

}  // namespace

Changed_Pixels::Changed_Pixels(const Pixel_Words& of_before, const Pixel_Words& of_after, const Tag_Flags* stays)
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
            const bool is_whole = ~word == 0;  // spares the counting of bits, which takes time without a machine's help
            const std::uint64_t begins = word & ~(word << 1U | carried);
            voxel_nb += is_whole ? WORD_BITS : static_cast<std::uint64_t>(std::popcount(word));
            stretch_nb += is_whole ? begins : static_cast<std::size_t>(std::popcount(begins));
        }
        carried = word >> (WORD_BITS - 1);
    }
}

std::vector<Voxel_Run> Changed_Pixels::Runs() const {
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

std::size_t Changed_Pixels::Layers(std::vector<std::uint8_t>& packed) const {
    const std::size_t run_bytes = stretch_nb * RUN_BYTES_LEAST;  // no fewer would runs take
    std::vector<std::uint64_t> rest = words;
    std::uint64_t rest_nb = voxel_nb;
    for (std::size_t layer = 1; layer <= LAYERS_MOST; ++layer) {
        if (layer * (LAYER_HEAD + Span_Bytes()) >= run_bytes) {
            return 0;
        }
        rest_nb -= Layer_Put(rest, packed);
        if (rest_nb == 0) {
            return layer;
        }
    }
    return 0;
}

void Changed_Pixels::Stretch_Put(std::size_t word, unsigned int begin, unsigned int end,
                                 std::vector<Voxel_Run>& runs) const {
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

std::uint64_t Changed_Pixels::Layer_Put(std::vector<std::uint64_t>& rest, std::vector<std::uint8_t>& packed) const {
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

}  // namespace workbench

#include "workbench/segmentation/level_bands.h"

#include <emmintrin.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "workbench/segmentation/cancelling.h"

namespace workbench::segmentation {

namespace {

constexpr std::int64_t BAND_TABLE_MOST = std::int64_t{1} << 16U;  // levels that a table is made for
constexpr std::uint16_t NO_TAG = 0x100;
constexpr std::size_t FEW_PIECES = 8;    // so many comparisons, of many voxels at a time, are faster than a table
constexpr std::size_t BLOCK_SIZE = 16;   // voxels that are compared at once
constexpr std::size_t PART_SIZE = 2048;  // voxels that stay in the fastest cache from band to band

/** The first level of a range whose grey value fulfils what all after it fulfil, one behind the range: none. */
template <class Fits>
std::int64_t First_Level(std::int64_t low, std::int64_t high, Fits fits) {
    std::int64_t begin = low;
    std::int64_t end = high + 1;
    while (begin < end) {
        const std::int64_t middle = begin + (end - begin) / 2;
        if (fits(static_cast<std::int32_t>(middle))) {
            end = middle;
        } else {
            begin = middle + 1;
        }
    }
    return begin;
}

/** Which TAG claims a level. */
class Level_Claims {
  public:
    explicit Level_Claims(std::span<const Tag_Levels_Claim> claims) {
        for (const Tag_Levels_Claim& claim : claims) {
            const std::int32_t high = std::min(claim.band.high, volumes::LEVEL_LARGEST);
            if (claim.band.low <= high) {
                Piece_Put({claim.band.low, std::int64_t{high} + 1, claim.tag});
            }
        }
        if (!pieces.empty() && pieces.back().end - pieces.front().begin <= BAND_TABLE_MOST) {
            const std::int64_t begin = pieces.front().begin;
            table.resize(static_cast<std::size_t>(pieces.back().end - begin), NO_TAG);
            for (const Piece& piece : pieces) {
                std::fill(table.begin() + static_cast<std::ptrdiff_t>(piece.begin - begin),
                          table.begin() + static_cast<std::ptrdiff_t>(piece.end - begin), piece.tag);
            }
        }
    }

    /** Writes over `tags` where a level is claimed. */
    void Apply(const volumes::Level_View& levels, std::span<std::uint8_t> tags) const {
        levels.Visit([&](const auto& own) {
            if (pieces.size() <= FEW_PIECES) {
                Apply_Few(own, tags);
            } else {
                table.empty() ? Apply_Search(own, 0, tags) : Apply_Table(own, tags);
            }
        });
    }

  private:
    struct Piece {
        std::int64_t begin;
        std::int64_t end;  // behind the last level
        std::uint8_t tag;
    };

    /** Puts a piece over those that are there, which keep ascending and apart. */
    void Piece_Put(const Piece& piece) {
        std::vector<Piece> kept;
        for (const Piece& old : pieces) {
            if (old.begin < std::min(old.end, piece.begin)) {
                kept.push_back({old.begin, std::min(old.end, piece.begin), old.tag});
            }
        }
        kept.push_back(piece);
        for (const Piece& old : pieces) {
            if (std::max(old.begin, piece.end) < old.end) {
                kept.push_back({std::max(old.begin, piece.end), old.end, old.tag});
            }
        }
        pieces = std::move(kept);
    }

    template <class Levels>
    void Apply_Few(const Levels& levels, std::span<std::uint8_t> tags) const {
        const std::size_t in_blocks = tags.size() / BLOCK_SIZE * BLOCK_SIZE;
        for (std::size_t begin = 0; begin < in_blocks; begin += PART_SIZE) {
            const std::size_t end = std::min(begin + PART_SIZE, in_blocks);
            for (const Piece& piece : pieces) {
                Piece_Apply(piece, levels, begin, tags.subspan(begin, end - begin));
            }
        }
        Apply_Search(levels, in_blocks, tags);
    }
    /** Sixteen voxels at once: compilers make of a loop nothing that keeps up with copying.
     *  @param first the level of the first of the TAGs @param tags a multiple of BLOCK_SIZE */
    static void Piece_Apply(const Piece& piece, const volumes::Wide_Levels& all_levels, std::size_t first,
                            std::span<std::uint8_t> tags) {
        const std::int32_t* levels = &all_levels[first];
        // Moved so that the band's first level is the smallest number, one comparison tells what lies outside.
        constexpr std::uint32_t smallest = 0x80000000U;
        const __m128i shift =
            _mm_set1_epi32(static_cast<std::int32_t>(smallest - static_cast<std::uint32_t>(piece.begin)));
        const __m128i last = _mm_set1_epi32(
            static_cast<std::int32_t>(smallest + static_cast<std::uint32_t>(piece.end - 1 - piece.begin)));
        const __m128i tag = _mm_set1_epi8(static_cast<char>(piece.tag));
        for (std::size_t at = 0; at < tags.size(); at += BLOCK_SIZE) {
            const auto outside = [&](std::size_t four) {
                const __m128i level = _mm_loadu_si128(reinterpret_cast<const __m128i*>(levels + at + four));
                return _mm_cmpgt_epi32(_mm_add_epi32(level, shift), last);
            };
            // All bits or none of each number, and so of each byte that it is narrowed to.
            const __m128i stays =
                _mm_packs_epi16(_mm_packs_epi32(outside(0), outside(4)), _mm_packs_epi32(outside(8), outside(12)));
            auto* block = reinterpret_cast<__m128i*>(&tags[at]);
            _mm_storeu_si128(block,
                             _mm_or_si128(_mm_and_si128(stays, _mm_loadu_si128(block)), _mm_andnot_si128(stays, tag)));
        }
    }
    /** The same for codes: eight in one instruction. */
    static void Piece_Apply(const Piece& piece, const volumes::Narrow_Levels& all_levels, std::size_t first,
                            std::span<std::uint8_t> tags) {
        const volumes::Level_Code& code = all_levels.Code();
        const std::int64_t code_last = volumes::Level_Code::LAST - (code.last == volumes::LEVEL_OUTSIDE ? 1 : 0);
        const std::int64_t low = std::max<std::int64_t>(piece.begin - code.base, 0);
        const std::int64_t high = std::min(piece.end - 1 - code.base, code_last);
        if (low > high) {
            return;
        }
        const std::uint16_t* codes = &all_levels.Codes()[first];
        const __m128i shift = _mm_set1_epi16(static_cast<std::int16_t>(low));
        const __m128i reach = _mm_set1_epi16(static_cast<std::int16_t>(high - low));
        const __m128i tag = _mm_set1_epi8(static_cast<char>(piece.tag));
        for (std::size_t at = 0; at < tags.size(); at += BLOCK_SIZE) {
            const auto inside = [&](std::size_t eight) {
                const __m128i one = _mm_loadu_si128(reinterpret_cast<const __m128i*>(codes + at + eight));
                // What is left of the distance to the first code beyond the piece's reach: nothing inside.
                return _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(one, shift), reach), _mm_setzero_si128());
            };
            const __m128i takes = _mm_packs_epi16(inside(0), inside(8));
            auto* block = reinterpret_cast<__m128i*>(&tags[at]);
            _mm_storeu_si128(block,
                             _mm_or_si128(_mm_andnot_si128(takes, _mm_loadu_si128(block)), _mm_and_si128(takes, tag)));
        }
    }
    template <class Levels>
    void Apply_Table(const Levels& levels, std::span<std::uint8_t> tags) const {
        const std::int64_t begin = pieces.front().begin;
        for (std::size_t at = 0; at < tags.size(); ++at) {
            const auto index = static_cast<std::uint64_t>(levels[at] - begin);
            const std::uint16_t tag = index < table.size() ? table[index] : NO_TAG;
            tags[at] = tag == NO_TAG ? tags[at] : static_cast<std::uint8_t>(tag);
        }
    }
    /** @param first where to begin */
    template <class Levels>
    void Apply_Search(const Levels& levels, std::size_t first, std::span<std::uint8_t> tags) const {
        for (std::size_t at = first; at < tags.size(); ++at) {
            const auto piece = std::upper_bound(pieces.begin(), pieces.end(), std::int64_t{levels[at]},
                                                [](std::int64_t level, const Piece& one) { return level < one.end; });
            if (piece != pieces.end() && piece->begin <= levels[at]) {
                tags[at] = piece->tag;
            }
        }
    }

    std::vector<Piece> pieces;  // ascending, none over another
    std::vector<std::uint16_t> table;
};

}  // namespace

Level_Band Level_Band_Of(const Grey_Band& band, const volumes::Volume& volume) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = volumes::LEVEL_LARGEST;
    if (volume.color) {
        return {};
    }
    const bool rises = volume.slope > 0;
    const auto reaches_low = [&](std::int32_t level) { return !band.low || volume.grey(level) >= *band.low; };
    const auto reaches_high = [&](std::int32_t level) { return !band.high || volume.grey(level) <= *band.high; };
    // Grey values run one way with the levels, so either end is where one of the comparisons turns.
    const std::int64_t first =
        rises ? First_Level(lowest, highest, reaches_low) : First_Level(lowest, highest, reaches_high);
    const std::int64_t behind =
        rises ? First_Level(lowest, highest, [&](std::int32_t level) { return !reaches_high(level); })
              : First_Level(lowest, highest, [&](std::int32_t level) { return !reaches_low(level); });
    if (behind <= first) {
        return {};
    }
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(behind - 1)};
}

std::optional<Label_Edit> Bands_Apply(const Edit_Input& input, std::span<const Tag_Levels_Claim> claims) {
    return Cancellable([&] {
        const Slice_Range slices = input.Slices();
        const Step_Progress progress(input.progress);
        const Level_Claims levels(claims);
        Edit_Builder builder(input);
        std::vector<std::uint8_t> after(input.grid.Slice_Size());
        for (int slice = slices.first; slice <= slices.last; ++slice) {
            progress.Report(slice - slices.first, slices.last - slices.first + 1);
            input.Slice_Copy(slice, after);
            levels.Apply(input.Slice_Levels(slice), after);
            builder.Slice_Set(slice, after);
        }
        progress.Report(1, 1);
        return builder.Take();
    });
}

}  // namespace workbench::segmentation

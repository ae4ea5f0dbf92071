// The rule is Map_Any: bin by bin. Every other path gives its bits and stands here for what it gains; measured on 4,096
// bins a frame, optimised, as times of the whole merge without that path over times with it:
//
//   sums of a run of frames of one grid, mapped once          3.6
//   four frames to a pass over the sums (1,000 frames)        1.5
//   Map_Monotone, targets in blocks of TARGETS_NB             3.3
//   Add_Consecutive, frames as wide as the record's bins      1.7
//   sums of a target in a register, ten frame bins to one     1.5; five bins to three 1.2
//   multiplication by an exact inverse, narrower frame bins   1.8
//   Map_Wide, frame bins wider than the record's              1.5 to 2.0
#include "histogram/histogram_merge.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace {

constexpr int BINS_MAX = 65535;  // nb_bins is 16 bits wide
constexpr int TARGETS_NB = 256;  // targets computed at a time: stays in the first-level cache
constexpr int ARRAYS_NB = 5;

using Count_Array = std::array<std::uint32_t, BINS_MAX + 1>;

// Sums of a run of frames that share a grid. One user-interface thread: no lock. Static, so that nothing of a merge can
// fail for want of memory; the 1.3 MB are not in the file, and the system gives a page only when a bin of it is
// counted: a grey histogram of 4,096 bins takes 16 KB.
std::array<Count_Array, ARRAYS_NB> run_sums;

struct Array_List {
    std::array<const std::uint32_t*, ARRAYS_NB> array{};
    int nb = 0;
};

Array_List Arrays_Of(const Histo_Record& frame) {
    Array_List list;
    list.array = {frame.counts, frame.counts_red, frame.counts_green, frame.counts_blue, frame.counts_component0};
    const bool complete =
        std::all_of(list.array.begin(), list.array.end(), [](const std::uint32_t* array) { return array != nullptr; });
    list.nb = frame.counts == nullptr ? 0 : ((frame.flags & HISTO_COLOR) != 0 && complete ? ARRAYS_NB : 1);
    return list;
}

float Position(int bin, float width, float offset, const Histo_Record& record) {
    return ((static_cast<float>(bin) + 0.5F) * width + offset - record.origin) / record.bin_width;
}

/** Half-open range of frame bins that are not dropped. Positions rise with the bin, so both ends are found by halving.
 */
struct Bin_Range {
    int first = 0;
    int end = 0;
};

template <class Test>
int First_Bin(int nb, Test test) {
    int low = 0;
    int high = nb;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (test(middle)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

Bin_Range Kept_Bins(const Histo_Record& frame, const Histo_Record& record) {
    const auto bound = static_cast<float>(std::min(frame.nb_bins, record.nb_bins));
    Bin_Range range;
    // Truncation toward zero: everything above -1 lands on bin 0 or higher.
    range.first =
        First_Bin(frame.nb_bins, [&](int bin) { return Position(bin, frame.bin_width, frame.origin, record) > -1.0F; });
    range.end = First_Bin(frame.nb_bins,
                          [&](int bin) { return Position(bin, frame.bin_width, frame.origin, record) >= bound; });
    return range;
}

void Add_Consecutive(std::uint32_t* target, const std::uint32_t* source, int nb) {
    for (int k = 0; k < nb; ++k) {
        target[k] += source[k];
    }
}

/** One pass over the sums for four frames: reading and writing the sums would take as long as reading the frames. */
void Add_Four(std::uint32_t* target, const std::array<const std::uint32_t*, 4>& source, int nb) {
    const auto [a, b, c, d] = source;
    for (int k = 0; k < nb; ++k) {
        target[k] += (a[k] + b[k]) + (c[k] + d[k]);
    }
}

void Add_By_Target(std::uint32_t* target, const std::uint32_t* source, const std::int32_t* index, int nb) {
    if (2 * (index[nb - 1] - index[0]) >= nb) {
        for (int k = 0; k < nb; ++k) {
            target[index[k]] += source[k];
        }
        return;
    }
    // Runs of bins with one target are summed in a register: adding bin by bin would wait for the store of the last
    // one.
    for (int k = 0; k < nb;) {
        const std::int32_t at = index[k];
        std::uint32_t sum = source[k];
        for (++k; k < nb && index[k] == at; ++k) {
            sum += source[k];
        }
        target[at] += sum;
    }
}

bool Is_Consecutive(const std::int32_t* index, int nb) {
    std::int32_t gap = 0;
    for (int k = 0; k < nb; ++k) {
        gap |= index[k] - index[0] - k;
    }
    return gap == 0;
}

/** True when the positions of the frame's bins are finite and rise with the bin. */
bool Is_Monotone(const Histo_Record& frame, const Histo_Record& record) {
    return frame.bin_width > 0.0F && record.bin_width > 0.0F && std::isfinite(frame.bin_width) &&
           std::isfinite(frame.origin) && std::isfinite(record.origin) && std::isfinite(record.bin_width);
}

struct Target_Arrays {
    std::array<std::uint32_t*, ARRAYS_NB> array{};
};

void Map_Any(const Array_List& source, int source_nb, const Histo_Record& frame, const Histo_Record& record,
             const Target_Arrays& target) {
    const auto bound = static_cast<float>(std::min(frame.nb_bins, record.nb_bins));
    for (int bin = 0; bin < frame.nb_bins; ++bin) {
        const float position = Position(bin, frame.bin_width, frame.origin, record);
        if (position > -1.0F && position < bound) {
            const int at = static_cast<int>(position);
            for (int a = 0; a < source_nb; ++a) {
                target.array[static_cast<std::size_t>(a)][at] += source.array[static_cast<std::size_t>(a)][bin];
            }
        }
    }
}

/** What the positions of a frame's bins depend on, four times each. */
struct Position_Terms {
    __m128 width;
    __m128 offset;
    __m128 origin;
    __m128 scale;  ///< the record's width, or its inverse
};

/** Adds the bins first .. end - 1 of a frame whose bins are wider than the record's: no two neighbours meet in one
 * target, so none waits for the store of the last one. The positions are those of Position, four at a time. */
template <bool INVERSE>
void Add_Spread(std::uint32_t* target, const std::uint32_t* source, Bin_Range kept, const Position_Terms& terms) {
    const float start = static_cast<float>(kept.first) + 0.5F;  // halves up to 65,535.5 are exact in single precision
    __m128 centre = _mm_add_ps(_mm_set1_ps(start), _mm_setr_ps(0.0F, 1.0F, 2.0F, 3.0F));
    const auto next_targets = [&] {
        const __m128 level = _mm_sub_ps(_mm_add_ps(_mm_mul_ps(centre, terms.width), terms.offset), terms.origin);
        centre = _mm_add_ps(centre, _mm_set1_ps(4.0F));
        return _mm_cvttps_epi32(INVERSE ? _mm_mul_ps(level, terms.scale) : _mm_div_ps(level, terms.scale));
    };
    int bin = kept.first;
    for (; bin + 4 <= kept.end; bin += 4) {
        const __m128i at = next_targets();
        const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(at));
        const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(at, at)));
        target[low & 0xFFFFFFFFU] += source[bin];
        target[low >> 32U] += source[bin + 1];
        target[high & 0xFFFFFFFFU] += source[bin + 2];
        target[high >> 32U] += source[bin + 3];
    }
    alignas(16) std::array<std::int32_t, 4> rest;
    _mm_store_si128(reinterpret_cast<__m128i*>(rest.data()), next_targets());
    for (std::size_t k = 0; bin < kept.end; ++bin, ++k) {
        target[rest[k]] += source[bin];
    }
}

/** Dividing by a power of two and multiplying by its inverse give the same bits; the multiplication is faster. */
bool Has_Exact_Inverse(float width) {
    int exponent = 0;
    return std::frexp(width, &exponent) == 0.5F && std::isnormal(1.0F / width);
}

void Map_Wide(const Array_List& source, int source_nb, const Histo_Record& frame, const Histo_Record& record,
              const Target_Arrays& target) {
    const Bin_Range kept = Kept_Bins(frame, record);
    const bool inverse = Has_Exact_Inverse(record.bin_width);
    const Position_Terms terms{_mm_set1_ps(frame.bin_width), _mm_set1_ps(frame.origin), _mm_set1_ps(record.origin),
                               _mm_set1_ps(inverse ? 1.0F / record.bin_width : record.bin_width)};
    for (std::size_t a = 0; a < static_cast<std::size_t>(source_nb); ++a) {
        if (inverse) {
            Add_Spread<true>(target.array[a], source.array[a], kept, terms);
        } else {
            Add_Spread<false>(target.array[a], source.array[a], kept, terms);
        }
    }
}

void Map_Monotone(const Array_List& source, int source_nb, const Histo_Record& frame, const Histo_Record& record,
                  const Target_Arrays& target) {
    const Bin_Range kept = Kept_Bins(frame, record);
    const float width = frame.bin_width;
    const float offset = frame.origin;
    const float record_origin = record.origin;
    const float record_width = record.bin_width;
    const bool exact_inverse = Has_Exact_Inverse(record_width);
    const float inverse = 1.0F / record_width;
    alignas(64) std::array<std::int32_t, TARGETS_NB> index;
    for (int first = kept.first; first < kept.end; first += TARGETS_NB) {
        const int nb = std::min(TARGETS_NB, kept.end - first);
        if (exact_inverse) {
            for (int k = 0; k < nb; ++k) {
                const float position =
                    ((static_cast<float>(first + k) + 0.5F) * width + offset - record_origin) * inverse;
                index[static_cast<std::size_t>(k)] = static_cast<std::int32_t>(position);
            }
        } else {
            for (int k = 0; k < nb; ++k) {
                const float position =
                    ((static_cast<float>(first + k) + 0.5F) * width + offset - record_origin) / record_width;
                index[static_cast<std::size_t>(k)] = static_cast<std::int32_t>(position);
            }
        }
        const bool consecutive = Is_Consecutive(index.data(), nb);
        for (int a = 0; a < source_nb; ++a) {
            std::uint32_t* to = target.array[static_cast<std::size_t>(a)];
            const std::uint32_t* from = source.array[static_cast<std::size_t>(a)] + first;
            if (consecutive) {
                Add_Consecutive(to + index[0], from, nb);
            } else {
                Add_By_Target(to, from, index.data(), nb);
            }
        }
    }
}

/** Maps arrays of `frame`'s grid into the record. */
void Map(const Array_List& source, const Histo_Record& frame, Histo_Record& record) {
    if (source.nb == 0 || record.counts == nullptr || record.nb_bins == 0) {
        return;
    }
    const Target_Arrays target{
        {record.counts, record.counts_red, record.counts_green, record.counts_blue, record.counts_component0}};
    const int source_nb = (record.flags & HISTO_COLOR) != 0 ? source.nb : 1;
    if (Is_Monotone(frame, record) && frame.bin_width > record.bin_width) {
        Map_Wide(source, source_nb, frame, record, target);
    } else if (Is_Monotone(frame, record)) {
        Map_Monotone(source, source_nb, frame, record, target);
    } else {
        Map_Any(source, source_nb, frame, record, target);
    }
}

}  // namespace

void Histogram_Extent::Add(const Histo_Record& frame) {
    const float edge = static_cast<float>(frame.nb_bins) * frame.bin_width + frame.origin;
    lowest_origin = frame.origin < lowest_origin ? frame.origin : lowest_origin;
    finest_width = frame.bin_width < finest_width ? frame.bin_width : finest_width;
    highest_edge = edge > highest_edge ? edge : highest_edge;
}

Histogram_Grid Histogram_Grid_Choose(const Histogram_Extent& extent, std::uint16_t limit) {
    Histogram_Grid grid;
    grid.origin = extent.lowest_origin;
    grid.nb_bins = 1;
    grid.bin_width = extent.finest_width > 0.0F ? extent.finest_width : 1.0F;
    const float span = (extent.highest_edge - extent.lowest_origin + 1.0F) / extent.finest_width;
    if (!(extent.finest_width > 0.0F) || !(span > 0.0F) || !std::isfinite(span)) {
        return grid;
    }
    // The bin count falls as the factor grows: the smallest factor that fits is found by halving instead of counting up
    // one by one.
    const auto fits = [&](std::int64_t factor) {
        return std::trunc(span / static_cast<float>(factor)) <= static_cast<float>(limit);
    };
    std::int64_t factor = 1;
    if (!fits(factor)) {
        std::int64_t too_small = factor;
        factor = 2;
        while (!fits(factor) && factor <= std::numeric_limits<std::int64_t>::max() / 2) {
            too_small = factor;
            factor *= 2;
        }
        while (factor - too_small > 1) {
            const std::int64_t middle = too_small + (factor - too_small) / 2;
            (fits(middle) ? factor : too_small) = middle;
        }
    }
    // Beyond all factors there is nothing that fits: the limit holds all the same.
    const float bins = std::trunc(span / static_cast<float>(factor));
    grid.nb_bins = static_cast<std::uint16_t>(std::min(bins, static_cast<float>(limit)));
    grid.bin_width = extent.finest_width * static_cast<float>(factor);
    return grid;
}

Histogram_Merger::Histogram_Merger(Histo_Record& target_record) : record(target_record) {}

Histogram_Merger::~Histogram_Merger() {
    Finish();
}

bool Histogram_Merger::Is_Of_Run(const Histo_Record& frame) const {
    return frame.nb_bins == run->nb_bins && frame.origin == run->origin && frame.bin_width == run->bin_width &&
           Arrays_Of(frame).nb == Arrays_Of(*run).nb;
}

void Histogram_Merger::Sum_Group() {
    const int array_nb = Arrays_Of(*run).nb;
    for (std::size_t a = 0; a < static_cast<std::size_t>(array_nb); ++a) {
        std::uint32_t* sum = run_sums[a].data();
        if (!summed) {
            std::fill_n(sum, run->nb_bins, 0U);
        }
        std::array<const std::uint32_t*, GROUP> source{};
        std::size_t source_nb = 0;
        for (const Histo_Record* frame : std::span(group).first(static_cast<std::size_t>(group_nb))) {
            source[source_nb++] = Arrays_Of(*frame).array[a];
        }
        if (source_nb == GROUP) {
            Add_Four(sum, source, run->nb_bins);
            continue;
        }
        for (const std::uint32_t* one : std::span(source).first(source_nb)) {
            Add_Consecutive(sum, one, run->nb_bins);
        }
    }
    summed = true;
    group_nb = 0;
}

void Histogram_Merger::Add(const Histo_Record& frame) {
    if (frame.counts == nullptr) {
        return;
    }
    if (run != nullptr && !Is_Of_Run(frame)) {
        Finish();
    }
    if (run == nullptr) {
        run = &frame;
    }
    group[static_cast<std::size_t>(group_nb++)] = &frame;
    if (group_nb == GROUP) {
        Sum_Group();
    }
}

void Histogram_Merger::Finish() {
    if (run == nullptr) {
        return;
    }
    Array_List source = Arrays_Of(*run);
    if (summed || group_nb > 1) {
        Sum_Group();
        for (int a = 0; a < source.nb; ++a) {
            source.array[static_cast<std::size_t>(a)] = run_sums[static_cast<std::size_t>(a)].data();
        }
    }
    Map(source, *run, record);
    run = nullptr;
    summed = false;
    group_nb = 0;
}

std::uint32_t Histogram_Max_Count(const Histo_Record& record) {
    const Array_List list = Arrays_Of(record);
    std::uint32_t largest = 0;
    for (int a = 0; a < list.nb; ++a) {
        const std::uint32_t* array = list.array[static_cast<std::size_t>(a)];
        for (int bin = 0; bin < record.nb_bins; ++bin) {
            largest = std::max(largest, array[bin]);
        }
    }
    return largest;
}

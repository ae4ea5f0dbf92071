#include "workbench/volumes/voxel_levels.h"

#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace volumes {

namespace {

struct Level_Range {
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    std::int32_t highest = std::numeric_limits<std::int32_t>::min();  // lower than the lowest: no level is inside
    bool has_outside = false;
};

Level_Range Range_Of(const Level_View& levels) {
    return levels.Visit([](const auto& own) {
        Level_Range range;
        std::uint32_t outside = 0;
        for (const std::int32_t level : own) {  // without a branch: several levels in one instruction
            const bool is_outside = level == LEVEL_OUTSIDE;
            outside |= is_outside ? 1U : 0U;
            range.lowest = std::min(range.lowest, level);
            range.highest = std::max(range.highest, is_outside ? std::numeric_limits<std::int32_t>::min() : level);
        }
        range.has_outside = outside != 0;
        return range;
    });
}

Level_Range Joined(const Level_Range& a, const Level_Range& b) {
    return {std::min(a.lowest, b.lowest), std::max(a.highest, b.highest), a.has_outside || b.has_outside};
}

bool Is_Fitting(const Level_Code& code, const Level_Range& range) {
    const bool has_range = range.lowest > range.highest || (code.Has(range.lowest) && code.Has(range.highest));
    return has_range && (!range.has_outside || code.last == LEVEL_OUTSIDE);
}

/** @return false: some level has no code */
template <class Levels>
bool Encode(const Levels& levels, const Level_Code& code, std::uint16_t* to) {
    const auto base = static_cast<std::uint32_t>(code.base);
    std::uint32_t wrong = 0;
    const std::size_t nb = levels.size();
    for (std::size_t at = 0; at < nb; ++at) {
        const std::int32_t level = levels[at];
        const std::uint32_t way = static_cast<std::uint32_t>(level) - base;
        const bool is_last = level == code.last;
        wrong |= !is_last && way >= Level_Code::LAST ? 1U : 0U;
        to[at] = is_last ? Level_Code::LAST : static_cast<std::uint16_t>(way);
    }
    return wrong == 0;
}

}  // namespace

std::optional<Level_Code> Level_Code::For(std::int32_t lowest, std::int32_t highest, bool has_outside) {
    const Level_Range range = {lowest, highest, has_outside};
    // Those of the usual types first: what comes later then mostly fits too.
    for (const std::int32_t base : {0, std::int32_t{std::numeric_limits<std::int16_t>::min()}}) {
        for (const std::int32_t last : {LEVEL_OUTSIDE, base + LAST}) {
            if (const Level_Code code = {base, last}; Is_Fitting(code, range)) {
                return code;
            }
        }
    }
    // The rest of the codes on both sides.
    const std::int64_t rest = std::max<std::int64_t>(LAST - 1 - (std::int64_t{highest} - lowest), 0);
    const auto base = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(lowest - rest / 2, std::numeric_limits<std::int32_t>::min(), LEVEL_LARGEST - LAST));
    for (const std::int32_t last : {LEVEL_OUTSIDE, base + LAST}) {
        if (const Level_Code code = {base, last}; Is_Fitting(code, range)) {
            return code;
        }
    }
    return std::nullopt;
}

bool operator==(const Level_View& a, const Level_View& b) {
    return a.size() == b.size() && a.Visit([&](const auto& own) {
        return b.Visit([&](const auto& other) { return std::equal(own.begin(), own.end(), other.begin()); });
    });
}

Voxel_Levels::Voxel_Levels(std::vector<std::int32_t>&& levels) {
    const Level_Range range = Range_Of(levels);
    if (Level_Code::For(range.lowest, range.highest, range.has_outside)) {
        Append(levels);
        return;
    }
    is_narrow = false;
    wide = std::move(levels);
}

Voxel_Levels Voxel_Levels::Of_Codes(Level_Codes&& codes, const Level_Code& code) {
    Voxel_Levels made;
    made.codes = std::move(codes);
    made.code = code;
    return made;
}

Voxel_Levels Voxel_Levels::Of_Wide(std::vector<std::int32_t>&& levels) {
    Voxel_Levels made;
    made.is_narrow = false;
    made.wide = std::move(levels);
    return made;
}

Voxel_Levels Voxel_Levels::Of_Range(std::size_t nb, std::int32_t lowest, std::int32_t highest, bool has_outside) {
    Voxel_Levels made;
    made.Room_Make(lowest, highest, has_outside);
    if (made.is_narrow) {
        made.codes.resize(nb, made.code.Code(lowest));
    } else {
        made.wide.resize(nb, lowest);
    }
    return made;
}

void Voxel_Levels::reserve(std::size_t nb) {
    is_narrow ? codes.reserve(nb) : wide.reserve(nb);
}

void Voxel_Levels::Room_Make(std::int32_t lowest, std::int32_t highest, bool has_outside) {
    const Level_Range added = {lowest, highest, has_outside};
    if (!is_narrow || (!codes.empty() && Is_Fitting(code, added))) {
        return;
    }
    const Level_Range all = Joined(Range_Of(View()), added);
    const std::optional<Level_Code> wanted = Level_Code::For(all.lowest, all.highest, all.has_outside);
    if (!wanted) {
        Widen(codes.capacity());
        return;
    }
    for (std::uint16_t& one : codes) {
        one = wanted->Code(code.Level(one));
    }
    code = *wanted;
}

void Voxel_Levels::Widen(std::size_t capacity) {
    wide.reserve(capacity);
    wide.resize(codes.size());
    View().Copy_To(wide);
    is_narrow = false;
    Level_Codes().swap(codes);
}

void Voxel_Levels::Append(const Level_View& levels) {
    levels.Visit([&](const auto& own) {
        if constexpr (std::is_same_v<std::decay_t<decltype(own)>, Narrow_Levels>) {
            if (is_narrow && (codes.empty() || code == own.Code())) {
                code = own.Code();
                codes.insert(codes.end(), own.Codes().begin(), own.Codes().end());
                return;
            }
        }
        const Level_Range range = Range_Of(own);
        Room_Make(range.lowest, range.highest, range.has_outside);
        if (is_narrow) {
            const std::size_t begin = codes.size();
            codes.resize(begin + own.size());
            Encode(own, code, codes.data() + begin);
        } else {
            wide.insert(wide.end(), own.begin(), own.end());
        }
    });
}

void Voxel_Levels::Set(std::size_t at, std::int32_t level) {
    if (is_narrow && !code.Has(level)) {
        const bool is_outside = level == LEVEL_OUTSIDE;
        const Level_Range none;
        Room_Make(is_outside ? none.lowest : level, is_outside ? none.highest : level, is_outside);
    }
    if (is_narrow) {
        codes[at] = code.Code(level);
    } else {
        wide[at] = level;
    }
}

void Voxel_Levels::Put(std::size_t at, std::span<const std::int32_t> levels) {
    if (at > size() || levels.size() > size() - at) {
        throw std::out_of_range("more levels than there is room for");
    }
    if (!is_narrow) {
        std::ranges::copy(levels, wide.begin() + static_cast<std::ptrdiff_t>(at));
    } else if (!Encode(levels, code, codes.data() + at)) {
        throw std::out_of_range("a level beyond the range that there is room for");
    }
}

}  // namespace volumes

#include "workbench/segmentation/label_counts.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include "workbench/volumes/volume.h"
#include "workbench/volumes/work_share.h"

namespace workbench::segmentation {

namespace {

constexpr std::int64_t COUNT_TABLE_MOST = 65536;  // levels that are counted in a table instead of being sorted
constexpr std::size_t PIECE_VOXELS = std::size_t{1} << 21U;
constexpr std::size_t WORD_SIZE = sizeof(std::uint64_t);
constexpr std::uint64_t EACH_BYTE = 0x0101010101010101U;

/** The end of the voxels that have the TAG of the first one. */
std::size_t Run_End(std::span<const std::uint8_t> tags, std::size_t at) {
    const std::uint8_t tag = tags[at];
    while (at + WORD_SIZE <= tags.size()) {
        std::uint64_t word = 0;
        std::memcpy(&word, &tags[at], WORD_SIZE);
        if (word != tag * EACH_BYTE) {
            break;
        }
        at += WORD_SIZE;
    }
    while (at < tags.size() && tags[at] == tag) {
        ++at;
    }
    return at;
}

struct Level_Ends {
    std::int32_t least = std::numeric_limits<std::int32_t>::max();
    std::int32_t greatest = std::numeric_limits<std::int32_t>::min();

    void Take(std::int32_t low, std::int32_t high) {
        least = std::min(least, low);
        greatest = std::max(greatest, high);
    }
    void Take(volumes::Wide_Levels levels) {
        for (const std::int32_t level : levels) {
            if (level <= volumes::LEVEL_LARGEST) {
                Take(level, level);
            }
        }
    }
    void Take(const volumes::Narrow_Levels& levels) {
        // Moved by one where the last code means outside, it becomes 0 and does not count as the greatest.
        const bool has_outside = levels.Code().last == volumes::LEVEL_OUTSIDE;
        const auto moved = static_cast<std::uint16_t>(has_outside ? 1 : 0);
        std::uint16_t low = volumes::Level_Code::LAST;
        std::uint16_t high = 0;
        for (const std::uint16_t code : levels.Codes()) {
            low = std::min(low, code);
            high = std::max(high, static_cast<std::uint16_t>(code + moved));
        }
        if (!has_outside || low != volumes::Level_Code::LAST) {
            Take(levels.Code().Level(low), levels.Code().Level(static_cast<std::uint16_t>(high - moved)));
        }
    }
};

/** Slices that are counted at a time. */
struct Pieces {
    Slice_Range slices;
    int each = 1;
    std::size_t nb = 0;

    explicit Pieces(const Edit_Input& input) : slices(input.Slices()) {
        each = static_cast<int>(
            std::max<std::size_t>(PIECE_VOXELS / std::max<std::size_t>(input.grid.Slice_Size(), 1), 1));
        const int slice_nb = std::max(slices.last - slices.first + 1, 0);
        nb = static_cast<std::size_t>((slice_nb + each - 1) / each);
    }
    /** Calls `take` with each slice of a piece. */
    template <class Take>
    void Visit(std::size_t piece, Take take) const {
        const int begin = slices.first + static_cast<int>(piece) * each;
        for (int z = begin; z <= std::min(begin + each - 1, slices.last); ++z) {
            take(z);
        }
    }
};

Level_Ends Ends_Of(const Edit_Input& input, const Pieces& pieces, std::size_t threads, const Step_Progress& progress) {
    Level_Ends all;
    if (input.levels.empty()) {
        return all;
    }
    std::vector<Level_Ends> ends(pieces.nb);
    Pieces_Share(pieces.nb, threads, progress, [&](std::size_t piece) {
        pieces.Visit(
            piece, [&](int z) { input.Slice_Levels(z).Visit([&](const auto& levels) { ends[piece].Take(levels); }); });
    });
    for (const Level_Ends& one : ends) {
        all.Take(one.least, one.greatest);
    }
    return all;
}

/** Counts of pieces that are not being counted right now: as many as threads have ever been busy at a time. */
class Spare_Counts {
  public:
    explicit Spare_Counts(const Level_Ends& level_ends) : ends(level_ends) {}
    std::unique_ptr<Level_Counts> Take() {
        const std::lock_guard lock(mutex);
        if (spare.empty()) {
            return std::make_unique<Level_Counts>(ends.least, ends.greatest);
        }
        std::unique_ptr<Level_Counts> taken = std::move(spare.back());
        spare.pop_back();
        return taken;
    }
    void Give(std::unique_ptr<Level_Counts> counts) {
        const std::lock_guard lock(mutex);
        spare.push_back(std::move(counts));
    }
    Level_Counts Sum() {
        const std::lock_guard lock(mutex);
        Level_Counts sum = spare.empty() ? Level_Counts() : std::move(*spare.front());
        for (std::size_t at = 1; at < spare.size(); ++at) {
            sum.Add(*spare[at]);
            spare[at].reset();
        }
        return sum;
    }

  private:
    Level_Ends ends;
    std::mutex mutex;
    std::vector<std::unique_ptr<Level_Counts>> spare;
};

using Slice_Counts = std::array<std::uint64_t, TAG_MAX>;

void Slice_Count(const Edit_Input& input, int slice, Slice_Counts& voxels, Level_Counts& levels) {
    const std::span<const std::uint8_t> tags = input.Slice_Tags(slice);
    const volumes::Level_View own = input.levels.empty() ? volumes::Level_View() : input.Slice_Levels(slice);
    for (std::size_t at = 0; at < tags.size();) {
        const std::size_t end = Run_End(tags, at);
        voxels[tags[at]] += end - at;
        if (!own.empty()) {
            levels.Add(tags[at], own.subspan(at, end - at));
        }
        at = end;
    }
}

}  // namespace

Level_Counts::Level_Counts(std::int32_t least, std::int32_t greatest)
    : first(least), size(greatest >= least ? std::int64_t{greatest} - least + 1 : 0) {}

void Level_Counts::Add(std::uint8_t tag, const volumes::Level_View& levels) {
    if (size > COUNT_TABLE_MOST) {
        std::ranges::copy_if(levels, std::back_inserter(lists[tag]),
                             [](std::int32_t level) { return level <= volumes::LEVEL_LARGEST; });
        return;
    }
    std::vector<std::uint64_t>& table = tables[tag];
    if (table.empty()) {
        table.resize(static_cast<std::size_t>(size));
    }
    levels.Visit([&](const auto& own) {
        for (std::size_t at = 0; at < own.size(); ++at) {
            const std::int32_t level = own[at];
            if (level <= volumes::LEVEL_LARGEST) {
                ++table[static_cast<std::size_t>(std::int64_t{level} - first)];
            }
        }
    });
}

void Level_Counts::Add(const Level_Counts& other) {
    for (std::size_t tag = 0; tag < tables.size(); ++tag) {
        tables[tag].resize(std::max(tables[tag].size(), other.tables[tag].size()));
        for (std::size_t at = 0; at < other.tables[tag].size(); ++at) {
            tables[tag][at] += other.tables[tag][at];
        }
        lists[tag].insert(lists[tag].end(), other.lists[tag].begin(), other.lists[tag].end());
    }
}

std::vector<Level_Count> Level_Counts::Take(std::uint8_t tag) {
    std::vector<Level_Count> counts;
    for (std::size_t at = 0; at < tables[tag].size(); ++at) {
        if (tables[tag][at] != 0) {
            counts.push_back({static_cast<std::int32_t>(first + static_cast<std::int64_t>(at)), tables[tag][at]});
        }
    }
    std::ranges::sort(lists[tag]);
    for (const std::int32_t level : lists[tag]) {
        if (counts.empty() || counts.back().level != level) {
            counts.push_back({level, 0});
        }
        ++counts.back().nb;
    }
    tables[tag] = {};
    lists[tag] = {};
    return counts;
}

Label_Counts Labels_Count(const Edit_Input& input, std::size_t threads, const Step_Progress& progress) {
    const Pieces pieces(input);
    Spare_Counts spare(Ends_Of(input, pieces, threads, progress.Part(0.0, 0.2)));
    std::vector<Slice_Counts> slices(static_cast<std::size_t>(std::max(input.grid.slices, 0)));
    Pieces_Share(pieces.nb, threads, progress.Part(0.2, 1.0), [&](std::size_t piece) {
        std::unique_ptr<Level_Counts> levels = spare.Take();
        pieces.Visit(piece, [&](int z) { Slice_Count(input, z, slices[static_cast<std::size_t>(z)], *levels); });
        spare.Give(std::move(levels));
    });
    Label_Counts counts;
    counts.levels = spare.Sum();
    for (std::size_t tag = 0; tag < counts.slice_voxels.size(); ++tag) {
        const auto has = [tag](const Slice_Counts& slice) { return slice[tag] != 0; };
        if (std::ranges::any_of(slices, has)) {
            std::vector<std::uint64_t>& voxels = counts.slice_voxels[tag];
            voxels.resize(slices.size());
            std::ranges::transform(slices, voxels.begin(), [tag](const Slice_Counts& slice) { return slice[tag]; });
        }
    }
    return counts;
}

void Pieces_Share(std::size_t count, std::size_t threads, const Step_Progress& progress,
                  const std::function<void(std::size_t)>& work) {
    if (count == 0) {
        return;
    }
    const bool is_done = volumes::Work_Share(count, std::min(threads, count), work, [&](std::size_t done) {
        try {
            progress.Report(static_cast<std::int64_t>(done), static_cast<std::int64_t>(count));
            return true;
        } catch (const Edit_Cancelled&) {
            return false;
        }
    });
    if (!is_done) {
        throw Edit_Cancelled();
    }
}

}  // namespace workbench::segmentation

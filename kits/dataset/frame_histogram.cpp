#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <utility>

#include "kits/dataset/dataset_host.h"

namespace {

constexpr int BIN_NB_MAX = 65535;
constexpr int COLOR_BIN_NB = 256;

struct Free_Memory {
    void operator()(void* memory) const { std::free(memory); }
};
using Count_Array = std::unique_ptr<std::uint32_t[], Free_Memory>;

Count_Array Counts_Zeroed(std::size_t nb) {
    return Count_Array(static_cast<std::uint32_t*>(std::calloc(nb, sizeof(std::uint32_t))));
}

void Record_Free(Histo_Record* record) {
    if (record == nullptr) {
        return;
    }
    std::free(record->counts);
    std::free(record->counts_red);
    std::free(record->counts_green);
    std::free(record->counts_blue);
    std::free(record->counts_component0);
    std::free(record);
}

struct Free_Record {
    void operator()(Histo_Record* record) const { Record_Free(record); }
};
using Record = std::unique_ptr<Histo_Record, Free_Record>;

/** An empty record with its arrays; null without memory. */
Record Record_Make(int nb_bins, float origin, float bin_width, bool color) {
    Record record(static_cast<Histo_Record*>(std::calloc(1, sizeof(Histo_Record))));
    if (record == nullptr) {
        return nullptr;
    }
    record->flags = color ? HISTO_COLOR : 0;
    record->nb_bins = static_cast<std::uint16_t>(nb_bins);
    record->origin = origin;
    record->bin_width = bin_width;
    const auto nb = static_cast<std::size_t>(nb_bins);
    record->counts = Counts_Zeroed(nb).release();
    bool complete = record->counts != nullptr;
    if (color) {
        for (std::uint32_t** counts :
             {&record->counts_red, &record->counts_green, &record->counts_blue, &record->counts_component0}) {
            *counts = Counts_Zeroed(nb).release();
            complete = complete && *counts != nullptr;
        }
    }
    return complete ? std::move(record) : nullptr;
}

bool Is_Usable(const Histo_Grid& grid) {
    return grid.nb_bins >= 1 && grid.nb_bins <= BIN_NB_MAX && std::isfinite(grid.origin) &&
           std::isfinite(grid.bin_width) && grid.bin_width > 0.0F;
}

std::uint32_t Largest(const std::uint32_t* counts, int nb) {
    return counts != nullptr ? *std::max_element(counts, counts + nb) : 0;
}

/** Levels to bins of a grid. */
struct Level_Scale {
    double scale;   // bins per level
    double offset;  // bin of level 0
    int nb_bins;

    Level_Scale(const Level_Frame& frame, const Histo_Grid& grid) : nb_bins(grid.nb_bins) {
        const double width = grid.bin_width;
        scale = static_cast<double>(frame.slope) / width;
        // Origin and width are single precision numbers: a level on a bin's lower edge may come out a trace too low. A
        // quarter of the distance between levels never reaches the next level.
        const double edge = std::abs(grid.origin / width) + nb_bins;
        const double slack = std::min(std::max(edge * 2.4e-7, 1.0 / 1024), std::abs(scale) / 4);
        offset = (static_cast<double>(frame.intercept) - static_cast<double>(grid.origin)) / width + slack;
    }

    /** The bin of a level, -1 outside the grid. */
    int Bin(std::int32_t level) const {
        const double bin = static_cast<double>(level) * scale + offset;
        return bin >= 0.0 && bin < static_cast<double>(nb_bins) ? static_cast<int>(bin) : -1;
    }
};

/** Calls `take` with the levels that count: all without a mask, else those of the first plane where the mask is set. */
template <typename Take>
void Visit_Levels(const Level_Frame& frame, const unsigned char* mask, Take take) {
    const std::size_t plane = std::size_t{frame.width} * frame.height;
    if (mask == nullptr) {
        const std::size_t nb = plane * frame.slices * frame.times;
        for (std::size_t i = 0; i < nb; ++i) {
            take(frame.levels[i], i);
        }
        return;
    }
    for (std::size_t i = 0; i < plane; ++i) {
        if (mask[i] != 0) {
            take(frame.levels[i], i);
        }
    }
}

/** Counts equal levels first and finds the bin of each once: most frames have far fewer levels than pixels.
 *  @return false when the levels are spread too far or memory is missing */
bool Count_By_Level(const Level_Frame& frame, const unsigned char* mask, const Level_Scale& scale,
                    std::uint32_t* counts) {
    constexpr std::int64_t level_nb_max = 1 << 20;
    constexpr std::size_t bank_nb = 4;  // neighbours of equal level must not wait for each other's store
    std::int32_t lowest = INT32_MAX;
    std::int32_t highest = INT32_MIN;
    Visit_Levels(frame, mask, [&](std::int32_t level, std::size_t) {
        lowest = std::min(lowest, level);
        highest = level < SAMPLE_OUTSIDE ? std::max(highest, level) : highest;
    });
    if (lowest > highest) {
        return true;
    }
    const std::int64_t level_nb = std::int64_t{highest} - lowest + 1;
    if (level_nb > level_nb_max) {
        return false;
    }
    const auto nb = static_cast<std::size_t>(level_nb);
    const Count_Array by_level = Counts_Zeroed(nb * bank_nb);
    if (by_level == nullptr) {
        return false;
    }
    std::uint32_t* const banks = by_level.get();
    Visit_Levels(frame, mask, [=](std::int32_t level, std::size_t i) {
        if (level > highest) {
            return;  // outside the image
        }
        // The four counts of a level stand side by side, in one cache line.
        ++banks[static_cast<std::size_t>(std::int64_t{level} - lowest) * bank_nb + i % bank_nb];
    });
    for (std::size_t i = 0; i < nb; ++i) {
        const std::uint32_t* bank = banks + i * bank_nb;
        const std::uint32_t count = bank[0] + bank[1] + bank[2] + bank[3];
        const int bin = count > 0 ? scale.Bin(static_cast<std::int32_t>(lowest + static_cast<std::int64_t>(i))) : -1;
        if (bin >= 0) {
            counts[bin] += count;
        }
    }
    return true;
}

Record Build_Grey(const Level_Frame& frame, const Histo_Grid& grid, const unsigned char* mask) {
    Record record = Record_Make(grid.nb_bins, grid.origin, grid.bin_width, false);
    if (record == nullptr) {
        return nullptr;
    }
    const Level_Scale scale(frame, grid);
    std::uint32_t* counts = record->counts;
    if (!Count_By_Level(frame, mask, scale, counts)) {
        Visit_Levels(frame, mask, [&](std::int32_t level, std::size_t) {
            const int bin = scale.Bin(level);
            if (bin >= 0) {
                ++counts[bin];
            }
        });
    }
    return record;
}

Record Build_Color(const Level_Frame& frame, const unsigned char* mask) {
    Record record = Record_Make(COLOR_BIN_NB, 0.0F, 1.0F, true);
    if (record == nullptr) {
        return nullptr;
    }
    Histo_Record& arrays = *record;
    Visit_Levels(frame, mask, [&](std::int32_t level, std::size_t) {
        const auto packed = static_cast<std::uint32_t>(level);
        const std::uint32_t red = packed & 0xFF;
        const std::uint32_t green = packed >> 8 & 0xFF;
        const std::uint32_t blue = packed >> 16 & 0xFF;
        ++arrays.counts_red[red];
        ++arrays.counts_green[green];
        ++arrays.counts_blue[blue];
        ++arrays.counts[std::max({red, green, blue})];
    });
    std::copy(arrays.counts, arrays.counts + COLOR_BIN_NB, arrays.counts_component0);
    return record;
}

/** Whether a merge of frames on the grid keeps its bins: it counts one grey level more than they cover, in these very
 * steps of single precision. */
bool Is_Kept_By_Merge(const Histo_Grid& grid, std::int64_t most) {
    const float edge = static_cast<float>(grid.nb_bins) * grid.bin_width + grid.origin;
    return std::trunc((edge - grid.origin + 1.0F) / grid.bin_width) <= static_cast<float>(most);
}

}  // namespace

Histo_Grid Histo_Grid_Of_Levels(std::int32_t lowest, std::int32_t highest, float slope, float intercept,
                                int most_bins) {
    if (lowest > highest) {
        std::swap(lowest, highest);
    }
    Histo_Grid grid;
    const double step = std::abs(static_cast<double>(slope));
    const auto level_nb = static_cast<std::int64_t>(highest) - lowest + 1;
    const std::int64_t most = std::clamp(most_bins, 1, BIN_NB_MAX);
    const double first = slope < 0.0F ? highest : lowest;  // the level with the lowest value
    const auto with_bins_of = [&](std::int64_t levels_per_bin) {
        Histo_Grid joined = grid;
        joined.bin_width = static_cast<float>(step * static_cast<double>(levels_per_bin));
        joined.nb_bins = static_cast<int>((level_nb + levels_per_bin - 1) / levels_per_bin);
        return joined;
    };
    const std::int64_t fewest = (level_nb + most - 1) / most;
    if (const float width = with_bins_of(fewest).bin_width;
        !std::isfinite(width) || width <= 0.0F || !std::isfinite(intercept)) {
        // All levels have one value.
        grid.origin = std::isfinite(intercept) ? intercept : 0.0F;
        return grid;
    }
    grid.origin = static_cast<float>(first * static_cast<double>(slope) + static_cast<double>(intercept));
    // The smallest number that fits, by halving; all levels in one bin is the most that joining can do.
    std::int64_t too_few = fewest - 1;
    std::int64_t enough = level_nb;
    while (enough - too_few > 1) {
        const std::int64_t middle = too_few + (enough - too_few) / 2;
        (Is_Kept_By_Merge(with_bins_of(middle), most) ? enough : too_few) = middle;
    }
    return with_bins_of(enough);
}

int Frame_Histogram_Build(Level_Frame* frame, const Histo_Grid& grid, const unsigned char* mask) {
    if (frame == nullptr) {
        return 0;
    }
    Frame_Histogram_Free(frame);
    const bool has_levels =
        frame->levels != nullptr && frame->width != 0 && frame->height != 0 && frame->slices != 0 && frame->times != 0;
    if (!has_levels || !(frame->color || Is_Usable(grid))) {
        return 0;
    }
    Record record = frame->color ? Build_Color(*frame, mask) : Build_Grey(*frame, grid, mask);
    if (record == nullptr) {
        return 0;
    }
    for (const std::uint32_t* counts :
         {record->counts, record->counts_red, record->counts_green, record->counts_blue, record->counts_component0}) {
        record->max_count = std::max(record->max_count, Largest(counts, record->nb_bins));
    }
    frame->histogram_built = frame->histogram = record.release();
    return 1;
}

void Frame_Histogram_Free(Quorel_2D_Frame* frame) {
    if (frame == nullptr) {
        return;
    }
    Record_Free(frame->histogram_built);
    frame->histogram_built = nullptr;
    frame->histogram = nullptr;
}

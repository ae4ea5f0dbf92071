#include "workbench/segmentation/voxel_regions.h"

#include <algorithm>

namespace workbench::segmentation {

/** Joins the runs of each row with those of the rows before it. A run's `region` is the number of an earlier run of its
 *  region meanwhile, or its own. */
class Region_Finder {
  public:
    Region_Finder(const Voxel_Box& box, Neighbours touching) : is_wide(touching == Neighbours::Corners) {
        map.box = box;
        if (!box.Is_Empty()) {
            map.row_begin.reserve(box.Row_Nb() + 1);
        }
        map.row_begin.push_back(0);
    }

    void Row_Add(int y, int z, std::span<const std::uint8_t> row) {
        const auto first = row.begin();
        for (auto at = std::ranges::find(row, std::uint8_t{1}); at != row.end();) {
            const auto end = std::find(at, row.end(), std::uint8_t{0});
            map.runs.push_back({map.box.begin[0] + static_cast<int>(at - first),
                                map.box.begin[0] + static_cast<int>(end - first),
                                static_cast<std::uint32_t>(map.runs.size())});
            at = std::find(end, row.end(), std::uint8_t{1});
        }
        map.row_begin.push_back(map.runs.size());
        Join(y - 1, z);
        Join(y, z - 1);
        if (is_wide) {
            Join(y - 1, z - 1);
            Join(y + 1, z - 1);
        }
    }

    Region_Map Take() {
        std::size_t run = 0;
        for (int z = map.box.begin[2]; z < map.box.end[2]; ++z) {
            for (int y = map.box.begin[1]; y < map.box.end[1]; ++y) {
                for (const std::size_t row_end = map.row_begin[Row_Of(y, z) + 1]; run < row_end; ++run) {
                    Number(run, y, z);
                }
            }
        }
        return std::move(map);
    }

  private:
    std::size_t Row_Of(int y, int z) const {
        return static_cast<std::size_t>(z - map.box.begin[2]) * static_cast<std::size_t>(map.box.Height()) +
               static_cast<std::size_t>(y - map.box.begin[1]);
    }

    /** The first run of a run's region. */
    std::uint32_t Root(std::uint32_t run) {
        while (map.runs[run].region != run) {
            map.runs[run].region = map.runs[map.runs[run].region].region;
            run = map.runs[run].region;
        }
        return run;
    }

    /** Joins the last row's runs with those of a row before it. */
    void Join(int y, int z) {
        if (!map.box.Has(map.box.begin[0], y, z)) {
            return;
        }
        const std::size_t row = Row_Of(y, z);
        std::size_t other = map.row_begin[row];
        const std::size_t other_end = map.row_begin[row + 1];
        std::size_t run = map.row_begin[map.row_begin.size() - 2];
        const int reach = is_wide ? 1 : 0;
        while (other < other_end && run < map.runs.size()) {
            const Region_Run& one = map.runs[run];
            const Region_Run& two = map.runs[other];
            if (one.begin < two.end + reach && two.begin < one.end + reach) {
                const std::uint32_t left = Root(static_cast<std::uint32_t>(run));
                const std::uint32_t right = Root(static_cast<std::uint32_t>(other));
                map.runs[std::max(left, right)].region = std::min(left, right);
            }
            if (map.runs[run].end < map.runs[other].end) {
                ++run;
            } else {
                ++other;
            }
        }
    }

    /** From the first run to the number of the region: earlier runs have theirs already. */
    void Number(std::size_t at, int y, int z) {
        Region_Run& run = map.runs[at];
        if (run.region == at) {
            run.region = static_cast<std::uint32_t>(map.regions.size());
            map.regions.push_back({0, {run.begin, y, z}});
        } else {
            run.region = map.runs[run.region].region;
        }
        map.regions[run.region].voxel_nb += static_cast<std::uint64_t>(run.end - run.begin);
    }

    Region_Map map;
    bool is_wide;
};

std::span<const Region_Run> Region_Map::Row(int y, int z) const {
    if (box.Is_Empty() || !box.Has(box.begin[0], y, z)) {
        return {};
    }
    const std::size_t row = static_cast<std::size_t>(z - box.begin[2]) * static_cast<std::size_t>(box.Height()) +
                            static_cast<std::size_t>(y - box.begin[1]);
    return std::span(runs).subspan(row_begin[row], row_begin[row + 1] - row_begin[row]);
}

std::uint32_t Region_Map::At(const Voxel_Place& place) const {
    for (const Region_Run& run : Row(place.y, place.z)) {
        if (place.x >= run.begin && place.x < run.end) {
            return run.region;
        }
    }
    return NONE;
}

std::uint32_t Region_Map::Largest() const {
    const auto found = std::ranges::max_element(regions, {}, &Region::voxel_nb);
    return found == regions.end() ? NONE : static_cast<std::uint32_t>(found - regions.begin());
}

Region_Map Regions_Find(const Voxel_Box& box, const Region_Row& row, Neighbours neighbours,
                        const Step_Progress& progress) {
    Region_Finder finder(box, neighbours);
    std::vector<std::uint8_t> marks(box.Is_Empty() ? 0 : static_cast<std::size_t>(box.Width()));
    for (int z = box.begin[2]; !box.Is_Empty() && z < box.end[2]; ++z) {
        progress.Report(z - box.begin[2], box.Depth());
        for (int y = box.begin[1]; y < box.end[1]; ++y) {
            row(y, z, marks);
            finder.Row_Add(y, z, marks);
        }
    }
    return finder.Take();
}

Region_Map Regions_Of_Tag(const Edit_Input& input, std::uint8_t tag, Neighbours neighbours,
                          const Step_Progress& progress) {
    const Voxel_Box box = Box_Of_Tag(input, tag);
    return Regions_Find(
        box,
        [&](int y, int z, std::span<std::uint8_t> row) {
            const std::uint8_t* tags = &input.tags[input.grid.Index(box.begin[0], y, z)];
            for (std::size_t x = 0; x < row.size(); ++x) {
                row[x] = tags[x] == tag ? 1 : 0;
            }
        },
        neighbours, progress);
}

}  // namespace workbench::segmentation

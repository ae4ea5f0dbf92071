#include "tests/workbench/segmentation/plain_edits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace workbench::segmentation {

namespace {

constexpr double SAME = 1.0 + 1e-6;  // squared distances that differ by rounding alone

std::ptrdiff_t Nb(const std::vector<bool>& voxels) {
    return std::ranges::count(voxels, true);
}

}  // namespace

Voxel_Place Plain_Edits::Place(std::size_t at) const {
    const int in_volume = static_cast<int>(at);
    return {in_volume % grid.width, in_volume / grid.width % grid.height, in_volume / grid.width / grid.height};
}

bool Plain_Edits::Is_Worked(std::size_t at) const {
    return Place(at).z >= slices.first && Place(at).z <= slices.last;
}

bool Plain_Edits::May_Change(std::size_t at) const {
    return Is_Worked(at) && locked[tags[at]] == 0 && (!only_inside || tags[at] == *only_inside);
}

Plain_Tags Plain_Edits::Changed(const std::function<std::uint8_t(std::size_t)>& wanted) const {
    Plain_Tags after = tags;
    for (std::size_t at = 0; at < after.size(); ++at) {
        if (May_Change(at)) {
            after[at] = wanted(at);
        }
    }
    return after;
}

Plain_Edits::Voxels Plain_Edits::Reached(const Voxels& fits, const std::vector<std::size_t>& seeds, bool corners,
                                         bool in_slice) const {
    Voxels reached(tags.size());
    std::vector<std::size_t> todo;
    const auto see = [&](std::size_t at) {
        if (fits[at] && !reached[at]) {
            reached[at] = true;
            todo.push_back(at);
        }
    };
    std::ranges::for_each(seeds, see);
    while (!todo.empty()) {
        const Voxel_Place from = Place(todo.back());
        todo.pop_back();
        for (int step = 0; step < 27; ++step) {
            const int dx = step % 3 - 1;
            const int dy = step / 3 % 3 - 1;
            const int dz = step / 9 - 1;
            if ((corners || std::abs(dx) + std::abs(dy) + std::abs(dz) == 1) && (!in_slice || dz == 0) &&
                grid.Has(from.x + dx, from.y + dy, from.z + dz)) {
                see(grid.Index(from.x + dx, from.y + dy, from.z + dz));
            }
        }
    }
    return reached;
}

std::vector<Plain_Edits::Voxels> Plain_Edits::Regions(std::uint8_t tag, bool corners) const {
    Voxels left(tags.size());
    for (std::size_t at = 0; at < left.size(); ++at) {
        left[at] = tags[at] == tag && Is_Worked(at);
    }
    std::vector<Voxels> regions;
    for (std::size_t at = 0; at < left.size(); ++at) {
        if (left[at]) {
            regions.push_back(Reached(left, {at}, corners, false));
            for (std::size_t other = 0; other < left.size(); ++other) {
                left[other] = left[other] && !regions.back()[other];
            }
        }
    }
    return regions;
}

Plain_Tags Plain_Edits::Without(const Voxels& gone, std::uint8_t to) const {
    return Changed([&](std::size_t at) { return gone[at] ? to : tags[at]; });
}

Plain_Tags Plain_Edits::Bands(std::span<const Tag_Levels_Claim> claims) const {
    return Changed([&](std::size_t at) {
        std::uint8_t wanted = tags[at];
        for (const Tag_Levels_Claim& claim : claims) {
            wanted = levels[at] >= claim.band.low && levels[at] <= claim.band.high ? claim.tag : wanted;
        }
        return wanted;
    });
}

Plain_Tags Plain_Edits::Fill(std::size_t seed, std::uint8_t tag, const Level_Band& band, bool corners) const {
    Voxels fits(tags.size());
    for (std::size_t at = 0; at < fits.size(); ++at) {
        fits[at] =
            Is_Worked(at) && levels[at] >= band.low && levels[at] <= band.high && (May_Change(at) || tags[at] == tag);
    }
    return Without(Reached(fits, {seed}, corners, false), tag);
}

Plain_Tags Plain_Edits::Keep_Largest(std::uint8_t tag, bool corners) const {
    const std::vector<Voxels> regions = Regions(tag, corners);
    std::ptrdiff_t most = 0;
    const Voxels* largest = nullptr;
    for (const Voxels& region : regions) {
        if (Nb(region) > most) {
            most = Nb(region);
            largest = &region;
        }
    }
    return Changed([&](std::size_t at) {
        return tags[at] == tag && largest != nullptr && !(*largest)[at] ? std::uint8_t{0} : tags[at];
    });
}

Plain_Tags Plain_Edits::Drop_Below(std::uint8_t tag, double mm3, bool corners) const {
    Voxels gone(tags.size());
    for (const Voxels& region : Regions(tag, corners)) {
        if (static_cast<double>(Nb(region)) * grid.spacing[0] * grid.spacing[1] * grid.spacing[2] < mm3 - 1e-6) {
            for (std::size_t at = 0; at < gone.size(); ++at) {
                gone[at] = gone[at] || region[at];
            }
        }
    }
    return Without(gone, 0);
}

Plain_Tags Plain_Edits::Keep_At(std::uint8_t tag, std::size_t place, bool corners) const {
    for (const Voxels& region : Regions(tag, corners)) {
        if (region[place]) {
            return Changed([&](std::size_t at) { return tags[at] == tag && !region[at] ? std::uint8_t{0} : tags[at]; });
        }
    }
    return tags;
}

Plain_Tags Plain_Edits::Give(std::size_t place, std::uint8_t to, bool corners) const {
    for (const Voxels& region : Regions(tags[place], corners)) {
        if (region[place]) {
            return Without(region, to);
        }
    }
    return tags;
}

Plain_Tags Plain_Edits::Holes(std::uint8_t tag, bool in_space) const {
    Voxels open(tags.size());
    std::vector<std::size_t> edge;
    for (std::size_t at = 0; at < tags.size(); ++at) {
        open[at] = Is_Worked(at) && tags[at] != tag;
        const Voxel_Place place = Place(at);
        if (place.x == 0 || place.x == grid.width - 1 || place.y == 0 || place.y == grid.height - 1 ||
            (in_space && (place.z == slices.first || place.z == slices.last))) {
            edge.push_back(at);
        }
    }
    const Voxels outside = Reached(open, edge, false, !in_space);
    return Changed([&](std::size_t at) { return outside[at] ? tags[at] : tag; });
}

double Plain_Edits::Squared_Way(std::size_t one, std::size_t other) const {
    const Voxel_Place a = Place(one);
    const Voxel_Place b = Place(other);
    const double x = (a.x - b.x) * grid.spacing[0];
    const double y = (a.y - b.y) * grid.spacing[1];
    const double z = (a.z - b.z) * grid.spacing[2];
    return x * x + y * y + z * z;
}

bool Plain_Edits::Is_Near(std::size_t at, std::uint8_t tag, bool has_tag, double distance) const {
    for (std::size_t other = 0; other < tags.size(); ++other) {
        if (Is_Worked(other) && (tags[other] == tag) == has_tag &&
            Squared_Way(at, other) <= distance * distance * SAME) {
            return true;
        }
    }
    return false;
}

Plain_Tags Plain_Edits::Smooth(std::uint8_t tag, double radius) const {
    return Changed([&](std::size_t at) {
        int votes = 0;
        for (std::size_t other = 0; other < tags.size(); ++other) {
            if (Is_Worked(other) && Squared_Way(at, other) <= radius * radius * SAME) {
                votes += tags[other] == tag ? 1 : -1;
            }
        }
        const std::uint8_t lost = tags[at] == tag && votes < 0 ? 0 : tags[at];
        return votes > 0 ? tag : lost;
    });
}

Plain_Tags Plain_Edits::Grow(std::uint8_t tag, double distance) const {
    return Changed([&](std::size_t at) { return Is_Near(at, tag, true, distance) ? tag : tags[at]; });
}

Plain_Tags Plain_Edits::Shrink(std::uint8_t tag, double distance) const {
    return Changed([&](std::size_t at) {
        return tags[at] == tag && Is_Near(at, tag, false, distance) ? std::uint8_t{0} : tags[at];
    });
}

double Plain_Edits::Signed_Way(std::size_t in_slice, int slice, std::uint8_t tag) const {
    const std::size_t first = grid.Slice_Size() * static_cast<std::size_t>(slice);
    const bool is_inside = tags[first + in_slice] == tag;
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t at = first; at < first + grid.Slice_Size(); ++at) {
        nearest = (tags[at] == tag) != is_inside ? std::min(nearest, Squared_Way(first + in_slice, at)) : nearest;
    }
    return is_inside ? -std::sqrt(nearest) : std::sqrt(nearest);
}

Plain_Tags Plain_Edits::Between(std::uint8_t tag) const {
    std::vector<int> painted;
    for (int z = slices.first; z <= slices.last; ++z) {
        const auto first = tags.begin() + static_cast<std::ptrdiff_t>(grid.Slice_Size()) * z;
        const auto end = first + static_cast<std::ptrdiff_t>(grid.Slice_Size());
        if (std::find(first, end, tag) != end) {
            painted.push_back(z);
        }
    }
    return Changed([&](std::size_t at) {
        const int z = Place(at).z;
        const auto after = std::ranges::lower_bound(painted, z);
        if (after == painted.begin() || after == painted.end() || *after == z) {
            return tags[at];
        }
        const int before = *(after - 1);
        const double one = Signed_Way(at % grid.Slice_Size(), before, tag);
        const double other = Signed_Way(at % grid.Slice_Size(), *after, tag);
        const double sum = (one * (*after - z) + other * (z - before)) / (*after - before);
        return sum <= 1e-6 * (std::abs(one) + std::abs(other)) ? tag : tags[at];
    });
}

Plain_Tags Plain_Edits::Combine(std::uint8_t tag, Set_Operation operation, const Plain_Tags& others,
                                std::uint8_t other) const {
    return Changed([&](std::size_t at) {
        const bool is_one = tags[at] == tag;
        const bool is_other = others[at] == other;
        const bool joined = operation == Set_Operation::Copy       ? is_other
                            : operation == Set_Operation::Add      ? is_one || is_other
                            : operation == Set_Operation::Subtract ? is_one && !is_other
                                                                   : is_one && is_other;
        const std::uint8_t lost = is_one ? 0 : tags[at];
        return joined ? tag : lost;
    });
}

Plain_Tags Plain_Edits::Outline(int slice, std::span<const Outline_Point> outline, std::uint8_t tag) const {
    return Changed([&](std::size_t at) {
        if (Place(at).z != slice) {
            return tags[at];
        }
        // How often a ray to the right of the pixel's centre crosses the outline.
        const double x = Place(at).x + 0.5;
        const double y = Place(at).y + 0.5;
        bool is_inside = false;
        for (std::size_t corner = 0; corner < outline.size(); ++corner) {
            const Outline_Point& a = outline[corner];
            const Outline_Point& b = outline[(corner + 1) % outline.size()];
            if ((a.y > y) != (b.y > y) && x < a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y)) {
                is_inside = !is_inside;
            }
        }
        return is_inside ? tag : tags[at];
    });
}

}  // namespace workbench::segmentation

// Times operations on labels, and plain loops for the same, on volumes of a file; scripts/compare_labels calls it.
//
//   compare_labels FILE WIDTH HEIGHT SLICES ROUNDS
//
// FILE holds the levels of all voxels as 32-bit integers, then a byte for each: 1 in the mask, else 0. Spacing is 1 mm,
// 1 mm, 2 mm. Every line of the answer: operation, least milliseconds of ours, of the plain loop (-1: there is none), a
// figure of the result.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "workbench/segmentation/cancelling.h"
#include "workbench/segmentation/distance_map.h"
#include "workbench/segmentation/level_bands.h"
#include "workbench/segmentation/tag_shape.h"
#include "workbench/segmentation/voxel_regions.h"

using namespace workbench;
using namespace workbench::segmentation;

namespace {

constexpr std::int32_t BAND_LEAST = 600;
constexpr std::int32_t BAND_MOST = 655;

template <class Operation>
double Least_Milliseconds(int rounds, Operation operation) {
    double least = 1e12;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        operation();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        least = std::min(least, took.count());
    }
    return least;
}

struct Volume {
    Label_Grid grid;
    std::vector<std::int32_t> levels;
    std::vector<std::uint8_t> mask;

    Voxel_Box Box() const { return {{0, 0, 0}, {grid.width, grid.height, grid.slices}}; }
    Edit_Input Input() const {
        Edit_Input input;
        input.grid = grid;
        input.tags = mask;
        input.levels = levels;
        input.slices = {0, grid.slices - 1};
        return input;
    }
    /** Calls `visit` for the up to six neighbours of a voxel. */
    template <class Visit>
    void Each_Neighbour(std::size_t at, Visit visit) const {
        const auto width = static_cast<std::size_t>(grid.width);
        const std::size_t slice = grid.Slice_Size();
        const std::size_t x = at % width;
        const std::size_t in_slice = at % slice;
        if (x > 0) {
            visit(at - 1);
        }
        if (x + 1 < width) {
            visit(at + 1);
        }
        if (in_slice >= width) {
            visit(at - width);
        }
        if (in_slice + width < slice) {
            visit(at + width);
        }
        if (at >= slice) {
            visit(at - slice);
        }
        if (at + slice < grid.Voxel_Nb()) {
            visit(at + slice);
        }
    }
};

Volume Volume_Read(const char* file, std::array<int, 3> extents) {
    Volume volume;
    volume.grid = {extents[0], extents[1], extents[2], {1.0, 1.0, 2.0}};
    volume.levels.resize(volume.grid.Voxel_Nb());
    volume.mask.resize(volume.grid.Voxel_Nb());
    std::ifstream in(file, std::ios::binary);
    in.read(reinterpret_cast<char*>(volume.levels.data()),
            static_cast<std::streamsize>(volume.levels.size() * sizeof(std::int32_t)));
    in.read(reinterpret_cast<char*>(volume.mask.data()), static_cast<std::streamsize>(volume.mask.size()));
    if (!in) {
        std::fprintf(stderr, "compare_labels: %s is too short\n", file);
        std::exit(2);
    }
    return volume;
}

/** Marks what hangs together with `from` and has its value. */
void Flood(const Volume& volume, std::vector<std::uint8_t>& seen, std::vector<std::size_t>& open, std::size_t from) {
    open.assign(1, from);
    seen[from] = 1;
    while (!open.empty()) {
        const std::size_t at = open.back();
        open.pop_back();
        volume.Each_Neighbour(at, [&](std::size_t next) {
            if (seen[next] == 0 && volume.mask[next] == volume.mask[from]) {
                seen[next] = 1;
                open.push_back(next);
            }
        });
    }
}

void Answer(const char* operation, double ours, double plain, double figure) {
    std::printf("%s %.3f %.3f %.9g\n", operation, ours, plain, figure);
}

void Regions_Time(const Volume& volume, int rounds) {
    std::size_t nb = 0;
    const auto row = [&volume](int y, int z, std::span<std::uint8_t> to) {
        std::copy_n(volume.mask.begin() + static_cast<std::ptrdiff_t>(volume.grid.Index(0, y, z)), to.size(),
                    to.begin());
    };
    const double ours = Least_Milliseconds(
        rounds, [&] { nb = Regions_Find(volume.Box(), row, Neighbours::Faces, Step_Progress({})).Regions().size(); });
    std::size_t plain_nb = 0;
    const double plain = Least_Milliseconds(rounds, [&] {
        std::vector<std::uint8_t> seen(volume.mask.size());
        std::vector<std::size_t> open;
        plain_nb = 0;
        for (std::size_t at = 0; at < seen.size(); ++at) {
            if (volume.mask[at] != 0 && seen[at] == 0) {
                Flood(volume, seen, open, at);
                ++plain_nb;
            }
        }
    });
    Answer("label", ours, plain, nb == plain_nb ? static_cast<double>(nb) : -1.0);
}

void Holes_Time(const Volume& volume, int rounds) {
    std::vector<std::uint8_t> tags;
    double ours = 1e12;
    for (int round = 0; round < rounds; ++round) {
        tags = volume.mask;
        ours = std::min(ours, Least_Milliseconds(1, [&] {
                            Edit_Apply(*Holes_Fill(volume.Input(), 1, Hole_Kind::In_Space), true, volume.grid, tags);
                        }));
    }
    const double plain = Least_Milliseconds(rounds, [&] {
        std::vector<std::uint8_t> seen(volume.mask.size());
        std::vector<std::size_t> open;
        const Label_Grid& grid = volume.grid;
        for (std::size_t at = 0; at < seen.size(); ++at) {
            const auto x = static_cast<int>(at % static_cast<std::size_t>(grid.width));
            const auto y =
                static_cast<int>(at / static_cast<std::size_t>(grid.width) % static_cast<std::size_t>(grid.height));
            const auto z = static_cast<int>(at / grid.Slice_Size());
            const bool is_edge =
                x == 0 || y == 0 || z == 0 || x == grid.width - 1 || y == grid.height - 1 || z == grid.slices - 1;
            if (is_edge && volume.mask[at] == 0 && seen[at] == 0) {
                Flood(volume, seen, open, at);
            }
        }
        for (std::size_t at = 0; at < seen.size(); ++at) {
            seen[at] = seen[at] == 0 ? 1 : 0;
        }
    });
    Answer("holes", ours, plain, static_cast<double>(std::ranges::count(tags, 1)));
}

void Reach_Time(const Volume& volume, int rounds, const char* operation, std::uint8_t value, double radius) {
    Voxel_Mask mask(volume.Box());
    mask.on = volume.mask;
    double figure = 0.0;
    const double ours = Least_Milliseconds(rounds, [&] {
        const Voxel_Mask within = Mask_Within(mask, value, radius, {1.0, 1.0, 1.0}, Step_Progress({}));
        figure = static_cast<double>(std::ranges::count(within.on, 1));
    });
    double plain = -1.0;
    if (radius == 1.0) {
        std::vector<std::uint8_t> out(volume.mask.size());
        plain = Least_Milliseconds(rounds, [&] {
            for (std::size_t at = 0; at < out.size(); ++at) {
                std::uint8_t any = volume.mask[at] == value ? 1 : 0;
                volume.Each_Neighbour(at, [&](std::size_t next) { any |= volume.mask[next] == value ? 1 : 0; });
                out[at] = any;
            }
        });
    }
    Answer(operation, ours, plain, figure);
}

void Distances_Time(const Volume& volume, int rounds) {
    Voxel_Mask mask(volume.Box());
    mask.on = volume.mask;
    double sum = 0.0;
    const double ours = Least_Milliseconds(rounds, [&] {
        const Distance_Map map = Distances_Find(mask, 0, volume.grid.spacing, Step_Progress({}));
        sum = 0.0;
        for (std::size_t at = 0; at < map.squared.size(); at += 97) {
            sum += std::sqrt(static_cast<double>(map.squared[at]));
        }
    });
    Answer("distance", ours, -1.0, sum);
}

void Bands_Time(const Volume& volume, int rounds) {
    const std::vector<std::uint8_t> before(volume.mask.size());
    Edit_Input input = volume.Input();
    input.tags = before;
    const std::vector<Tag_Levels_Claim> claims = {{1, {BAND_LEAST, BAND_MOST}}};
    std::vector<std::uint8_t> tags;
    std::vector<std::int32_t> copy(volume.levels.size());
    double ours = 1e12;
    for (int round = 0; round < rounds; ++round) {
        tags = before;
        ours = std::min(
            ours, Least_Milliseconds(1, [&] { Edit_Apply(*Bands_Apply(input, claims), true, volume.grid, tags); }));
    }
    // The plain way here: copying the levels.
    const double plain = Least_Milliseconds(rounds, [&] { std::ranges::copy(volume.levels, copy.begin()); });
    Answer("bands", ours, plain, static_cast<double>(std::ranges::count(tags, 1)) + 0.0 * copy.back());
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 6) {
        std::fprintf(stderr, "compare_labels FILE WIDTH HEIGHT SLICES ROUNDS\n");
        return 2;
    }
    const Volume volume =
        Volume_Read(arguments[1], {std::atoi(arguments[2]), std::atoi(arguments[3]), std::atoi(arguments[4])});
    const int rounds = std::atoi(arguments[5]);
    Regions_Time(volume, rounds);
    Holes_Time(volume, rounds);
    Reach_Time(volume, rounds, "dilation", 1, 1.0);
    Reach_Time(volume, rounds, "erosion", 0, 1.0);
    Reach_Time(volume, rounds, "dilation_3", 1, 3.0);
    Distances_Time(volume, rounds);
    Bands_Time(volume, rounds);
    return 0;
}

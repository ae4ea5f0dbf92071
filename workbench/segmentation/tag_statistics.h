/** What a TAG's voxels measure: size, grey values, regions, extent. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/segmentation/label_edit.h"
#include "workbench/segmentation/voxel_regions.h"

namespace workbench::segmentation {

/** Grey values of voxels: greys of levels, exact sums of whole levels. */
struct Grey_Numbers {
    std::uint64_t voxel_nb = 0;  ///< voxels that have a grey value; without any the rest means nothing
    double mean = 0.0;
    double deviation = 0.0;  ///< standard deviation over all voxels: the sum of squares is divided by their number
    double least = 0.0;
    double greatest = 0.0;
    double median = 0.0;
    std::vector<double> percentiles;  ///< those asked for; between two voxels in proportion
};

struct Tag_Numbers {
    int tag = 0;
    std::uint64_t voxel_nb = 0;
    double milliliters = 0.0;
    Grey_Numbers greys;
    std::uint64_t region_nb = 0;
    int first_slice = 0;                      ///< of those that have the TAG
    int last_slice = 0;                       ///< included
    std::vector<std::uint64_t> slice_voxels;  ///< voxels in each slice of the grid
};

/** How levels become greys: grey = level * slope + intercept. */
struct Grey_Scale {
    double slope = 1.0;  ///< not 0; may be negative
    double intercept = 0.0;
};

struct Statistics_Request {
    Grey_Scale scale;
    std::vector<double> percentiles{5.0, 95.0};   ///< 0 .. 100
    Neighbours neighbours = Neighbours::Corners;  ///< of regions
};

/** The numbers of every TAG that the slices have, ascending, background included. What may change does not matter.
 *  @param input with levels, or none: then no voxel has a grey value @return nothing: cancelled @throw std::bad_alloc
 */
std::optional<std::vector<Tag_Numbers>> Tag_Statistics(const Edit_Input& input, const Statistics_Request& request);

/** Area of a TAG in a slice in square millimetres. */
double Slice_Area(const Tag_Numbers& numbers, int slice, const Label_Grid& grid);

/** What a table of numbers is written with. UTF-8. */
struct Csv_Words {
    std::vector<std::string> names;  ///< of TAGs by number; what is missing has none
    std::string grey_unit;           ///< "HU"; empty: none
    bool is_size_known = true;       ///< false: volumes and areas are told in voxels, which they are then
};
/** One row per TAG under one row of titles with units; comma, dot, line ends "\n", shortest numbers that read back the
 *  same. Slices count from 1. */
std::string Statistics_Csv(std::span<const Tag_Numbers> rows, const Statistics_Request& request,
                           const Csv_Words& words);
/** The area of each TAG (columns) in each slice (rows), mm². */
std::string Areas_Csv(std::span<const Tag_Numbers> rows, const Label_Grid& grid, const Csv_Words& words);

}  // namespace workbench::segmentation

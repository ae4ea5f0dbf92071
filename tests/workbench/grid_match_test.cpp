#include "workbench/model/grid_match.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

using namespace workbench;

namespace {

constexpr Volume_Grid IMAGE = {{5, 4, 3}, {{{2, 0, 0, -10}, {0, 1, 0, 20}, {0, 0, 3, 5}}}};

Volume_Grid Moved(std::size_t axis, double millimetres) {
    Volume_Grid grid = IMAGE;
    grid.affine[axis][3] += millimetres;
    return grid;
}

/** The image's voxels with an axis stored the other way round. */
Volume_Grid Flipped(Volume_Grid grid, std::size_t axis) {
    for (auto& row : grid.affine) {
        row[3] += row[axis] * (grid.size[axis] - 1);
        row[axis] = -row[axis];
    }
    return grid;
}

Volume_Grid Exchanged(const Volume_Grid& grid, const std::array<std::size_t, 3>& from) {
    Volume_Grid turned = grid;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        turned.size[axis] = grid.size[from[axis]];
        for (std::size_t row = 0; row < 3; ++row) {
            turned.affine[row][axis] = grid.affine[row][from[axis]];
        }
    }
    return turned;
}

Volume_Grid Oblique(double angle) {
    Volume_Grid grid = IMAGE;
    grid.affine = {
        {{2 * std::cos(angle), -std::sin(angle), 0, -10}, {2 * std::sin(angle), std::cos(angle), 0, 20}, {0, 0, 3, 5}}};
    return grid;
}

/** A number of its own for every place of the image, in the order of another grid. */
std::vector<std::uint8_t> By_Place(const Volume_Grid& grid) {
    std::vector<std::uint8_t> values;
    for (int z = 0; z < grid.size[2]; ++z) {
        for (int y = 0; y < grid.size[1]; ++y) {
            for (int x = 0; x < grid.size[0]; ++x) {
                const auto& a = grid.affine;
                const auto mm = [&](std::size_t row) {
                    return a[row][0] * x + a[row][1] * y + a[row][2] * z + a[row][3];
                };
                const long place =
                    std::lround((mm(0) + 10) / 2) + 5 * std::lround(mm(1) - 20) + 20 * std::lround((mm(2) - 5) / 3);
                values.push_back(static_cast<std::uint8_t>(place));
            }
        }
    }
    return values;
}

TEST(Grid_Compare, equal_grids_are_the_same_up_to_a_tenth_of_a_voxel) {
    EXPECT_EQ(Grid_Compare(IMAGE, IMAGE).relation, Grid_Relation::Same);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double voxel = IMAGE.affine[axis][axis];
        EXPECT_EQ(Grid_Compare(IMAGE, Moved(axis, 0.09 * voxel)).relation, Grid_Relation::Same) << axis;
        EXPECT_EQ(Grid_Compare(IMAGE, Moved(axis, -0.09 * voxel)).relation, Grid_Relation::Same) << axis;
        EXPECT_EQ(Grid_Compare(IMAGE, Moved(axis, 0.11 * voxel)).relation, Grid_Relation::Other) << axis;
        EXPECT_EQ(Grid_Compare(IMAGE, Moved(axis, -0.11 * voxel)).relation, Grid_Relation::Other) << axis;
    }
}

TEST(Grid_Compare, another_spacing_direction_or_size_is_another_grid) {
    Volume_Grid wider = IMAGE;
    wider.affine[0][0] = 2.2;
    EXPECT_EQ(Grid_Compare(IMAGE, wider).relation, Grid_Relation::Other);
    EXPECT_TRUE(Grid_Compare(IMAGE, wider).is_same_size);
    wider.affine[0][0] = 2.01;  // 0.05 * 0.5 of a voxel at the far end
    EXPECT_EQ(Grid_Compare(IMAGE, wider).relation, Grid_Relation::Same);
    EXPECT_EQ(Grid_Compare(IMAGE, Oblique(0.1)).relation, Grid_Relation::Other);
    EXPECT_EQ(Grid_Compare(Oblique(0.1), Oblique(0.1001)).relation, Grid_Relation::Same);
    Volume_Grid longer = IMAGE;
    longer.size[2] = 4;
    EXPECT_EQ(Grid_Compare(IMAGE, longer).relation, Grid_Relation::Other);
    EXPECT_FALSE(Grid_Compare(IMAGE, longer).is_same_size);
    Volume_Grid thick = {{5, 4, 1}, IMAGE.affine};
    const Volume_Grid thin = thick;
    thick.affine[2][2] = 9.0;
    EXPECT_EQ(Grid_Compare(thin, thick).relation, Grid_Relation::Other) << "a single slice has a thickness, too";
}

TEST(Grid_Compare, every_order_of_the_axes_is_found_and_put_right_exactly) {
    std::vector<std::uint8_t> wanted(IMAGE.Voxel_Nb());
    std::iota(wanted.begin(), wanted.end(), std::uint8_t{0});
    std::array<std::size_t, 3> order = {0, 1, 2};
    do {
        for (unsigned int flips = 0; flips < 8; ++flips) {
            Volume_Grid stored = Exchanged(IMAGE, order);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                stored = ((flips >> axis) & 1U) != 0 ? Flipped(stored, axis) : stored;
            }
            const Grid_Match match = Grid_Compare(IMAGE, stored);
            const bool is_same = flips == 0 && order[0] == 0 && order[1] == 1;
            ASSERT_EQ(match.relation, is_same ? Grid_Relation::Same : Grid_Relation::Turned);
            EXPECT_EQ(Grid_Turn_Text(match).empty(), is_same);
            std::size_t outside = 99;
            EXPECT_EQ(Grid_Carry(IMAGE, stored, match, By_Place(stored), &outside), wanted);
            EXPECT_EQ(outside, 0U);
            const auto image_voxel = Grid_Image_Voxel(IMAGE, match, {0, 0, 0});
            ASSERT_TRUE(image_voxel.has_value());
            EXPECT_EQ((*image_voxel)[0] + 5 * (*image_voxel)[1] + 20 * (*image_voxel)[2], By_Place(stored)[0]);
        }
    } while (std::ranges::next_permutation(order).found);
}

TEST(Grid_Compare, turned_and_moved_is_another_grid) {
    Volume_Grid flipped = Flipped(IMAGE, 0);
    flipped.affine[2][3] += 30;
    EXPECT_EQ(Grid_Compare(IMAGE, flipped).relation, Grid_Relation::Other);
    Volume_Grid in_place = IMAGE;  // the sign alone turns the volume about its first voxel
    in_place.affine[0][0] = -2;
    EXPECT_EQ(Grid_Compare(IMAGE, in_place).relation, Grid_Relation::Other);
}

TEST(Grid_Compare, an_affine_that_cannot_be_turned_round_is_no_place) {
    Volume_Grid flat = IMAGE;
    flat.affine[2] = {0, 0, 0, 0};
    EXPECT_EQ(Grid_Compare(IMAGE, flat).relation, Grid_Relation::Other);
    EXPECT_FALSE(Grid_Compare(IMAGE, flat).is_placed);
    EXPECT_EQ(Grid_Compare(flat, flat).relation, Grid_Relation::Same) << "of equal fields there is no doubt";
    EXPECT_EQ(Grid_Compare(flat, IMAGE).relation, Grid_Relation::Other);
    flat.affine[0][0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Grid_Compare(IMAGE, flat).relation, Grid_Relation::Other);
    EXPECT_EQ(Grid_Compare(flat, IMAGE).relation, Grid_Relation::Other);
}

TEST(Grid_Carry, takes_the_nearest_voxel_and_counts_what_is_not_covered) {
    Volume_Grid finer = {{10, 4, 3}, IMAGE.affine};  // half the width along x, from the same first voxel
    finer.affine[0][0] = 1;
    std::vector<std::uint8_t> labels(finer.Voxel_Nb());
    for (std::size_t at = 0; at < labels.size(); ++at) {
        labels[at] = static_cast<std::uint8_t>(at % 10);
    }
    std::size_t outside = 0;
    const Grid_Match match = Grid_Compare(IMAGE, finer);
    ASSERT_EQ(match.relation, Grid_Relation::Other);
    const std::vector<std::uint8_t> carried = Grid_Carry(IMAGE, finer, match, labels, &outside);
    for (std::size_t at = 0; at < carried.size(); ++at) {
        EXPECT_EQ(carried[at], 2 * (at % 5));
    }
    EXPECT_EQ(outside, 0U);
    const Volume_Grid moved = Moved(2, 3);  // one slice further
    const std::vector<std::uint8_t> places = By_Place(IMAGE);
    const std::vector<std::uint8_t> shifted = Grid_Carry(IMAGE, moved, Grid_Compare(IMAGE, moved), places, &outside);
    EXPECT_EQ(outside, 20U);
    EXPECT_EQ(shifted[0], 0);
    EXPECT_EQ(shifted[20], places[0]);
    EXPECT_EQ(shifted[59], places[39]);
    EXPECT_EQ(Grid_Image_Voxel(IMAGE, Grid_Compare(IMAGE, moved), {4, 3, 0}), (Grid_Voxel{4, 3, 1}));
    EXPECT_EQ(Grid_Image_Voxel(IMAGE, Grid_Compare(IMAGE, moved), {4, 3, 2}), std::nullopt);
}

TEST(Grid_Carry, by_index_puts_voxel_on_voxel_wherever_they_lie) {
    const Volume_Grid moved = Moved(0, 30);
    EXPECT_EQ(Grid_Carry(IMAGE, moved, Grid_By_Index(IMAGE, moved), By_Place(IMAGE)), By_Place(IMAGE));
}

TEST(Volume_Grid_Text, names_size_spacing_place_and_directions) {
    EXPECT_EQ(Volume_Grid_Text(IMAGE),
              "5 x 4 x 3 voxels of 2 x 1 x 3 mm, the first at (-10, 20, 5) mm, axes to R, A, S");
    EXPECT_EQ(Volume_Grid_Text(Flipped(Oblique(0.1), 1)),
              "5 x 4 x 3 voxels of 2 x 1 x 3 mm, the first at (-10.3, 22.99, 5) mm, axes to R, P, S, oblique");
}

TEST(Grid_Turn_Text, says_what_was_exchanged_and_flipped) {
    EXPECT_EQ(Grid_Turn_Text(Grid_Compare(IMAGE, Flipped(IMAGE, 0))), "x flipped");
    EXPECT_EQ(Grid_Turn_Text(Grid_Compare(IMAGE, Flipped(Exchanged(IMAGE, {0, 2, 1}), 0))),
              "y and z exchanged, x flipped");
    EXPECT_EQ(Grid_Turn_Text(Grid_Compare(IMAGE, Exchanged(IMAGE, {1, 2, 0}))), "x, y and z stand for z, x and y");
}

}  // namespace

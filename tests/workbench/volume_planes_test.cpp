#include "workbench/model/volume_planes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

using namespace workbench;

namespace {

constexpr std::array<int, 3> VOXEL_NB = {5, 4, 3};
constexpr std::array<double, 3> SPACING = {1.0, 2.0, 5.0};
constexpr std::array<Plane, PLANE_NB> PLANES = {Plane::Axial, Plane::Coronal, Plane::Sagittal};

/** All 48 ways in which voxel axes can lie along the patient's. */
std::vector<volumes::Affine> Straight_Affines() {
    std::vector<volumes::Affine> affines;
    std::array<std::size_t, 3> patient{0, 1, 2};
    do {
        for (unsigned int signs = 0; signs < 8; ++signs) {
            volumes::Affine affine{};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                affine[patient[axis]][axis] = (signs >> axis & 1U) != 0 ? -SPACING[axis] : SPACING[axis];
            }
            affines.push_back(affine);
        }
    } while (std::ranges::next_permutation(patient).found);
    return affines;
}

/** Millimetres of a voxel in the order of display. */
std::array<double, 3> Place_Of(const Shown_Voxel& voxel, const volumes::Affine& affine, const Display_Order& order) {
    const std::array<int, 3> file = {order.flip_x ? VOXEL_NB[0] - 1 - voxel.x : voxel.x,
                                     order.flip_y ? VOXEL_NB[1] - 1 - voxel.y : voxel.y, voxel.slice};
    std::array<double, 3> place{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            place[row] += affine[row][axis] * file[axis];
        }
        place[row] += affine[row][3];
    }
    return place;
}

std::array<double, 3> Step(const Plane_Geometry& geometry, const Plane_Pixel& by, const volumes::Affine& affine,
                           const Display_Order& order) {
    const std::array<double, 3> from = Place_Of(geometry.To_Voxel({0, 0, 0}), affine, order);
    const std::array<double, 3> to = Place_Of(geometry.To_Voxel(by), affine, order);
    return {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
}

std::vector<std::uint8_t> Random_Tags(std::size_t size, unsigned int seed, int tag_nb) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> tag(0, tag_nb - 1);
    std::vector<std::uint8_t> tags(size);
    std::ranges::generate(tags, [&] { return static_cast<std::uint8_t>(tag(random)); });
    return tags;
}

TEST(Volume_Planes, pictures_lie_as_the_patient_does_in_every_orientation) {
    // Millimetres grow to the right, the front and the head. First: where a step across, down and through leads.
    constexpr std::array<std::array<std::size_t, 3>, PLANE_NB> step_axes = {{{0, 1, 2}, {0, 2, 1}, {1, 2, 0}}};
    for (const volumes::Affine& affine : Straight_Affines()) {
        const Display_Order order = Display_Order_Of(affine);
        const Patient_Axes axes = Patient_Axes_Of(affine, order);
        for (const Plane plane : PLANES) {
            const Plane_Geometry geometry = Plane_Geometry_Of(plane, axes, VOXEL_NB, SPACING);
            const auto& patient = step_axes[static_cast<std::size_t>(plane)];
            const auto across = Step(geometry, {1, 0, 0}, affine, order);
            const auto down = Step(geometry, {0, 1, 0}, affine, order);
            const auto through = Step(geometry, {0, 0, 1}, affine, order);
            EXPECT_LT(across[patient[0]], 0.0);
            EXPECT_LT(down[patient[1]], 0.0);
            EXPECT_GT(through[patient[2]], 0.0);
            EXPECT_DOUBLE_EQ(geometry.pixel_aspect, down[patient[1]] / across[patient[0]]);
            EXPECT_EQ(geometry.Width() * geometry.Height() * geometry.Depth_Nb(), 60);
        }
    }
}

TEST(Volume_Planes, letters_name_the_sides) {
    const volumes::Affine affine = {{{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}}};
    const Patient_Axes axes = Patient_Axes_Of(affine, Display_Order_Of(affine));
    const auto letters = [&axes](Plane plane) {
        const Plane_Geometry of = Plane_Geometry_Of(plane, axes, VOXEL_NB, SPACING);
        return std::string{of.left, of.right, of.top, of.bottom};
    };
    EXPECT_EQ(letters(Plane::Axial), "RLAP");
    EXPECT_EQ(letters(Plane::Coronal), "RLSI");
    EXPECT_EQ(letters(Plane::Sagittal), "APSI");
}

TEST(Volume_Planes, the_slices_own_plane_agrees_with_how_they_are_shown) {
    // Rows and columns of the slices, stored upright: the picture of their plane is the slice itself.
    for (const volumes::Affine& affine : Straight_Affines()) {
        const Display_Order order = Display_Order_Of(affine);
        const Patient_Axes axes = Patient_Axes_Of(affine, order);
        const Plane_Geometry geometry = Plane_Geometry_Of(Plane_Of_Slices(axes), axes, VOXEL_NB, SPACING);
        EXPECT_EQ(geometry.axes[2].voxel_axis, 2U);
        if (geometry.axes[0].voxel_axis == 0) {
            EXPECT_EQ(geometry.To_Voxel({0, 0, 0}).x, 0);
            EXPECT_EQ(geometry.To_Voxel({0, 0, 0}).y, 0);
            EXPECT_EQ((std::string{geometry.left, geometry.right, geometry.top, geometry.bottom}),
                      (std::string{order.left, order.right, order.top, order.bottom}));
        }
    }
}

TEST(Volume_Planes, oblique_volumes_have_three_different_planes) {
    // Two columns lie nearest to the same axis of the patient; together the second fits another.
    const volumes::Affine affine = {{{0.8, -0.6, 0, 0}, {0.6, 0.59, 0.5, 0}, {0.1, 0.7, 0.86, 0}}};
    const Patient_Axes axes = Patient_Axes_Of(affine, Display_Order());
    EXPECT_EQ(axes.patient, (std::array<std::size_t, 3>{0, 1, 2}));
    const volumes::Affine empty{};
    EXPECT_EQ(Patient_Axes_Of(empty, Display_Order()).patient, (std::array<std::size_t, 3>{0, 1, 2}));
}

TEST(Volume_Planes, letters_that_a_user_gives_are_taken_or_refused) {
    const Display_Order turned = Display_Order_Of({{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}});
    const Patient_Axes given = Patient_Axes_Of_Letters("aSl", turned);
    EXPECT_TRUE(given.is_known);
    EXPECT_EQ(given.patient, (std::array<std::size_t, 3>{1, 2, 0}));
    EXPECT_EQ(given.is_rising, (std::array<bool, 3>{false, false, false}));
    EXPECT_EQ(Plane_Of_Slices(given), Plane::Sagittal);
    for (const char* wrong : {"", "RA", "RAXS", "RRS", "RLS", "RAX"}) {
        const Patient_Axes refused = Patient_Axes_Of_Letters(wrong, turned);
        EXPECT_FALSE(refused.is_known) << wrong;
        const Plane_Geometry geometry = Plane_Geometry_Of(Plane::Coronal, refused, VOXEL_NB, SPACING);
        EXPECT_EQ(geometry.left, ' ') << wrong;
        EXPECT_EQ(geometry.To_Voxel({0, 0, 0}).slice, VOXEL_NB[2] - 1) << "the last slice is at the top";
    }
}

TEST(Volume_Planes, places_copies_and_changes_agree_in_every_orientation) {
    const std::vector<std::uint8_t> voxels = Random_Tags(60, 1, 200);
    unsigned int seed = 2;
    for (const volumes::Affine& affine : Straight_Affines()) {
        const Patient_Axes axes = Patient_Axes_Of(affine, Display_Order_Of(affine));
        for (const Plane plane : PLANES) {
            const Plane_Geometry geometry = Plane_Geometry_Of(plane, axes, VOXEL_NB, SPACING);
            const auto width = static_cast<std::size_t>(geometry.Width());
            for (int depth = 0; depth < geometry.Depth_Nb(); ++depth) {
                std::vector<std::uint8_t> picture(geometry.Pixel_Nb());
                Plane_Copy(std::span<const std::uint8_t>(voxels), geometry, depth, {-9, -9, 99, 99},
                           std::span(picture));
                for (int y = 0; y < geometry.Height(); ++y) {
                    for (int x = 0; x < geometry.Width(); ++x) {
                        const Shown_Voxel voxel = geometry.To_Voxel({x, y, depth});
                        EXPECT_EQ(geometry.To_Pixel(voxel), (Plane_Pixel{x, y, depth}));
                        EXPECT_EQ(picture[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)],
                                  voxels[static_cast<std::size_t>((voxel.slice * 4 + voxel.y) * 5 + voxel.x)]);
                    }
                }
                // Few TAGs, so that runs of several pixels come about.
                const std::vector<std::uint8_t> after = Random_Tags(picture.size(), ++seed, 2);
                std::vector<std::uint8_t> before = Random_Tags(picture.size(), ++seed, 2);
                std::vector<std::uint8_t> written(voxels);
                const Pixel_Rect whole = {-3, -3, geometry.Width() + 3, geometry.Height() + 3};
                Plane_Write(before, geometry, depth, whole, written);
                const std::vector<std::uint8_t> start = written;
                const std::vector<Slice_Change> changes = Plane_Changes(geometry, depth, before, after);
                EXPECT_TRUE(std::ranges::is_sorted(changes, std::ranges::less_equal(), &Slice_Change::slice));
                for (const Slice_Change& change : changes) {
                    Slice_Change_Apply(change, true,
                                       std::span(written).subspan(static_cast<std::size_t>(change.slice) * 20, 20));
                }
                std::vector<std::uint8_t> expected(start);
                Plane_Write(after, geometry, depth, whole, expected);
                EXPECT_EQ(written, expected);
                for (const Slice_Change& change : changes) {
                    Slice_Change_Apply(change, false,
                                       std::span(written).subspan(static_cast<std::size_t>(change.slice) * 20, 20));
                }
                EXPECT_EQ(written, start);
            }
        }
    }
}

TEST(Volume_Planes, a_part_is_written_alone_and_names_its_slices) {
    const volumes::Affine affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    const Patient_Axes axes = Patient_Axes_Of(affine, Display_Order_Of(affine));
    const Plane_Geometry geometry = Plane_Geometry_Of(Plane::Coronal, axes, VOXEL_NB, SPACING);
    std::vector<std::uint8_t> voxels(60, 0);
    const std::vector<std::uint8_t> picture(geometry.Pixel_Nb(), 7);
    Plane_Write(picture, geometry, 0, {1, 0, 3, 2}, voxels);
    EXPECT_EQ(std::ranges::count(voxels, 7), 4);
    // The first picture is the patient's back: the last row of each slice. Its top is the last slice.
    EXPECT_EQ(voxels[(2 * 4 + 3) * 5 + 1], 7);
    EXPECT_EQ(voxels[(1 * 4 + 3) * 5 + 2], 7);
    std::vector<std::uint8_t> copied(geometry.Pixel_Nb(), 1);
    Plane_Copy(std::span<const std::uint8_t>(voxels), geometry, 0, {2, 1, 9, 3}, std::span(copied));
    EXPECT_EQ(copied, (std::vector<std::uint8_t>{1, 1, 1, 1, 1, 1, 1, 7, 0, 0, 1, 1, 0, 0, 0}));
    const Touched_Slices touched = Plane_Slices(geometry, 0, {1, 0, 3, 2});
    EXPECT_EQ(touched.first, 1);
    EXPECT_EQ(touched.last, 2);
    const Touched_Slices none = Plane_Slices(geometry, 0, {5, 0, 9, 2});
    EXPECT_LT(none.last, none.first);
}

TEST(Volume_Planes, equal_pictures_make_no_change) {
    const Patient_Axes axes;
    for (const Plane plane : PLANES) {
        const Plane_Geometry geometry = Plane_Geometry_Of(plane, axes, VOXEL_NB, SPACING);
        const std::vector<std::uint8_t> same(geometry.Pixel_Nb(), 3);
        EXPECT_TRUE(Plane_Changes(geometry, 0, same, same).empty());
    }
}

}  // namespace

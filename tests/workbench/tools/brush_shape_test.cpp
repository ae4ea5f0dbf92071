#include "workbench/tools/brush_shape.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace workbench;

namespace {

constexpr std::array<int, 3> VOXEL_NB = {50, 40, 30};

/** As the panel makes them: dx * dx + dy * dy < size * size. */
Brush_Footprint Disc(int size) {
    std::vector<Brush_Footprint::Row> rows;
    for (int y = 1 - size; y < size; ++y) {
        int reach = size - 1;
        while (reach * reach + y * y >= size * size) {
            --reach;
        }
        rows.push_back({y, -reach, reach});
    }
    return Brush_Footprint(std::move(rows));
}

bool Covers(const Brush_Body& body, int x, int y, int depth) {
    for (const Brush_Body::Layer& layer : body.layers) {
        if (layer.depth == depth) {
            return layer.footprint.Covers(x, y);
        }
    }
    return false;
}

TEST(Brush_Shape, flat_and_in_pixels_it_is_the_panels_own_mask) {
    const Brush_Footprint odd({{0, 3, 4}, {2, -7, -7}});
    const Brush_Body body = Brush_Body_Of(odd, {}, Plane_Geometry_Of_Slices(VOXEL_NB, {1, 2, 3}), {1, 2, 3});
    ASSERT_EQ(body.layers.size(), 1U);
    EXPECT_EQ(body.layers[0].footprint.Pixel_Nb(), 3U);
    EXPECT_TRUE(body.layers[0].footprint.Covers(-7, 2));
    EXPECT_EQ(Brush_Radius_Of(odd), 8);
}

TEST(Brush_Shape, the_radius_is_the_one_that_the_disc_was_made_of) {
    for (int size = 1; size < 12; ++size) {
        EXPECT_EQ(Brush_Radius_Of(Disc(size)), size);
    }
    EXPECT_EQ(Brush_Radius_Of({}), 1);
}

/** Voxel by voxel, in three planes: nearer than the radius, measured in the unit. */
TEST(Brush_Shape, a_voxel_belongs_to_it_when_its_middle_is_nearer_than_the_radius) {
    const std::array<double, 3> spacing = {0.7, 1.5, 2.3};
    for (const Plane plane : {Plane::Axial, Plane::Coronal, Plane::Sagittal}) {
        const Plane_Geometry geometry = Plane_Geometry_Of(plane, Patient_Axes(), VOXEL_NB, spacing);
        for (const Brush_Shape& shape : {Brush_Shape{true, false}, {false, true}, {true, true}}) {
            for (int size = 1; size < 8; ++size) {
                const Brush_Body body = Brush_Body_Of(Disc(size), shape, geometry, spacing);
                const Brush_Footprint middle = Brush_Middle_Of(Disc(size), shape, geometry, spacing);
                for (int depth = -12; depth <= 12; ++depth) {
                    for (int y = -12; y <= 12; ++y) {
                        for (int x = -12; x <= 12; ++x) {
                            const std::array<int, 3> at = {x, y, depth};
                            double square = 0.0;
                            for (std::size_t axis = 0; axis < 3; ++axis) {
                                const double step = shape.is_in_mm ? spacing[geometry.axes[axis].voxel_axis] : 1.0;
                                square += at[axis] * step * at[axis] * step;
                            }
                            const bool is_near = (x == 0 && y == 0 && depth == 0) || square < size * size - 1e-9;
                            ASSERT_EQ(Covers(body, x, y, depth), is_near && (shape.is_ball || depth == 0))
                                << size << ": " << x << ", " << y << ", " << depth;
                            if (depth == 0) {
                                ASSERT_EQ(middle.Covers(x, y), is_near);
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(Brush_Shape, over_tiny_voxels_it_is_cut_to_what_stays_quick) {
    const std::array<double, 3> spacing = {0.001, 0.001, 0.002};
    const Plane_Geometry geometry = Plane_Geometry_Of_Slices(VOXEL_NB, spacing);
    const Brush_Body ball = Brush_Body_Of(Disc(9), {true, true}, geometry, spacing);
    EXPECT_LT(ball.layers.back().depth, BALL_REACH_MAX);
    EXPECT_GT(ball.layers.back().depth, BALL_REACH_MAX / 2 - 2) << "voxels are twice as thick as wide";
    EXPECT_EQ(Brush_Middle_Of(Disc(9), {true, true}, geometry, spacing).Box().right, BALL_REACH_MAX);
    EXPECT_EQ(Brush_Middle_Of(Disc(9), {false, true}, geometry, spacing).Box().right, BRUSH_REACH_MAX);
}

}  // namespace

/** What the panel's brush becomes: measured in pixels or millimetres, flat or a ball. */
#pragma once

#include <array>

#include "workbench/model/painting.h"
#include "workbench/model/volume_planes.h"

namespace workbench {

struct Brush_Shape {
    bool is_ball = false;   ///< reaches into the pictures before and behind, too
    bool is_in_mm = false;  ///< the panel's radius counts as millimetres
    bool operator==(const Brush_Shape&) const = default;
};

/** The radius that a panel's mask has: it covers what is nearer than that, in pixels. */
int Brush_Radius_Of(const Brush_Footprint& brush);

/** The body of a brush. A flat one in pixels is the panel's own mask, whatever its shape; the others are made of its
 *  radius: a voxel belongs to it when its middle is nearer than that to the middle of the voxel under the pointer,
 *  which always does.
 *  @param spacing millimetres from voxel to voxel along x, y and slices Contract: no body reaches farther than
 *  BRUSH_REACH_MAX voxels, a ball BALL_REACH_MAX; a larger radius is cut to what does, so that a stroke over very small
 *  voxels stays quick. */
Brush_Body Brush_Body_Of(const Brush_Footprint& brush, const Brush_Shape& shape, const Plane_Geometry& geometry,
                         const std::array<double, 3>& spacing);
inline constexpr int BRUSH_REACH_MAX = 400;
inline constexpr int BALL_REACH_MAX = 60;
/** The part of it in the picture that the brush is held over. */
Brush_Footprint Brush_Middle_Of(const Brush_Footprint& brush, const Brush_Shape& shape, const Plane_Geometry& geometry,
                                const std::array<double, 3>& spacing);

}  // namespace workbench

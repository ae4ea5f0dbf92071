#include "workbench/tools/brush_shape.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace workbench {

namespace {

/** Steps along a picture's axes, and how far a brush reaches. */
struct Measure {
    std::array<double, 3> step{};  // across, down, through
    double radius = 1.0;
    int reach_through = 0;
};

Measure Measure_Of(const Brush_Footprint& brush, const Brush_Shape& shape, const Plane_Geometry& geometry,
                   const std::array<double, 3>& spacing) {
    Measure measure;
    for (std::size_t axis = 0; axis < measure.step.size(); ++axis) {
        measure.step[axis] = shape.is_in_mm ? spacing[geometry.axes[axis].voxel_axis] : 1.0;
    }
    const double least = shape.is_ball ? std::ranges::min(measure.step) : std::min(measure.step[0], measure.step[1]);
    const int most = shape.is_ball ? BALL_REACH_MAX : BRUSH_REACH_MAX;
    measure.radius = std::min<double>(Brush_Radius_Of(brush), most * least);
    measure.reach_through = shape.is_ball ? static_cast<int>(std::ceil(measure.radius / measure.step[2])) : 0;
    return measure;
}

/** How many steps along an axis stay nearer than the square of a distance; less than 0: not even none. */
int Reach(double square, double step) {
    if (square <= 0.0) {
        return -1;
    }
    int reach = static_cast<int>(std::sqrt(square) / step) + 1;
    while (reach >= 0 && reach * step * (reach * step) >= square) {
        --reach;
    }
    return reach;
}

Brush_Footprint Layer_Of(const Measure& measure, int depth) {
    std::vector<Brush_Footprint::Row> rows;
    const double away = depth * measure.step[2];
    const double square = measure.radius * measure.radius - away * away;
    const int down = Reach(square, measure.step[1]);
    for (int y = -down; y <= down; ++y) {
        const int across = Reach(square - y * measure.step[1] * (y * measure.step[1]), measure.step[0]);
        if (across >= 0) {
            rows.push_back({y, -across, across});
        }
    }
    if (rows.empty() && depth == 0) {
        rows.push_back({0, 0, 0});
    }
    return Brush_Footprint(std::move(rows));
}

bool Is_Of_Panel(const Brush_Footprint& brush, const Brush_Shape& shape) {
    return shape == Brush_Shape() || brush.Rows().empty();
}

}  // namespace

int Brush_Radius_Of(const Brush_Footprint& brush) {
    int reach = 0;
    for (const Brush_Footprint::Row& row : brush.Rows()) {
        reach = std::max({reach, row.last, -row.first});
    }
    return reach + 1;
}

Brush_Body Brush_Body_Of(const Brush_Footprint& brush, const Brush_Shape& shape, const Plane_Geometry& geometry,
                         const std::array<double, 3>& spacing) {
    if (Is_Of_Panel(brush, shape)) {
        return brush;
    }
    const Measure measure = Measure_Of(brush, shape, geometry, spacing);
    Brush_Body body;
    for (int depth = -measure.reach_through; depth <= measure.reach_through; ++depth) {
        Brush_Footprint layer = Layer_Of(measure, depth);
        if (!layer.Rows().empty()) {
            body.layers.push_back({depth, std::move(layer)});
        }
    }
    return body;
}

Brush_Footprint Brush_Middle_Of(const Brush_Footprint& brush, const Brush_Shape& shape, const Plane_Geometry& geometry,
                                const std::array<double, 3>& spacing) {
    return Is_Of_Panel(brush, shape) ? brush : Layer_Of(Measure_Of(brush, shape, geometry, spacing), 0);
}

}  // namespace workbench

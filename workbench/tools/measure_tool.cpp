#include "workbench/tools/measure_tool.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace workbench {

namespace {

constexpr double POINT_REACH = 2.5;  // pixels within which a press takes hold of a point

/** A point as the pictures of a plane count it. */
struct Projected_Point {
    Slice_Point at;
    int depth = 0;  ///< the picture that it lies in
};

Projected_Point Projected(const Measured_Point& point, const Plane_Geometry& geometry) {
    std::array<double, 3> at{};
    for (std::size_t axis = 0; axis < at.size(); ++axis) {
        const Plane_Geometry::Axis& along = geometry.axes[axis];
        const double value = point[along.voxel_axis];
        at[axis] = along.is_reversed ? geometry.voxel_nb[along.voxel_axis] - value : value;
    }
    return {{at[0], at[1]}, static_cast<int>(std::floor(at[2]))};
}

/** The place in a picture; no value: it does not lie in it. */
std::optional<Slice_Point> Seen(const Measured_Point& point, const Plane_Cut& cut) {
    const Projected_Point projected = Projected(point, cut.geometry);
    return projected.depth == cut.depth ? std::optional(projected.at) : std::nullopt;
}

/** What a picture shows of a line; no points: it does not reach the picture. */
Shown_Path Path_In(const std::vector<Measured_Point>& points, const Plane_Cut& cut) {
    Shown_Path path;
    int first = cut.depth + 1;
    int last = cut.depth - 1;
    for (const Measured_Point& point : points) {
        const Projected_Point projected = Projected(point, cut.geometry);
        first = std::min(first, projected.depth);
        last = std::max(last, projected.depth);
        path.points.push_back(projected.at);
        if (projected.depth == cut.depth) {
            path.knots.push_back(projected.at);
        }
    }
    if (first > cut.depth || last < cut.depth) {
        return {};
    }
    path.is_dashed = path.knots.size() < path.points.size();
    return path;
}

std::array<double, 3> Way_Mm(const Measured_Point& from, const Measured_Point& to,
                             const std::array<double, 3>& spacing) {
    return {(to[0] - from[0]) * spacing[0], (to[1] - from[1]) * spacing[1], (to[2] - from[2]) * spacing[2]};
}

double Product(const std::array<double, 3>& a, const std::array<double, 3>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

std::string One_Digit(double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

}  // namespace

Measured_Point Measured_Point_Of(const Tool_Spot& spot) {
    const std::array<double, 3> at = {spot.at.x, spot.at.y, spot.cut.depth + 0.5};
    Measured_Point point{};
    for (std::size_t axis = 0; axis < at.size(); ++axis) {
        const Plane_Geometry::Axis& along = spot.cut.geometry.axes[axis];
        point[along.voxel_axis] =
            along.is_reversed ? spot.cut.geometry.voxel_nb[along.voxel_axis] - at[axis] : at[axis];
    }
    return point;
}

double Distance_Mm(const Measured_Point& from, const Measured_Point& to, const std::array<double, 3>& spacing) {
    const std::array<double, 3> way = Way_Mm(from, to, spacing);
    return std::sqrt(Product(way, way));
}

double Angle_Degrees(const Measured_Point& from, const Measured_Point& at, const Measured_Point& to,
                     const std::array<double, 3>& spacing) {
    const std::array<double, 3> one = Way_Mm(at, from, spacing);
    const std::array<double, 3> other = Way_Mm(at, to, spacing);
    const double lengths = std::sqrt(Product(one, one) * Product(other, other));
    if (lengths == 0.0) {
        return 0.0;
    }
    return std::acos(std::clamp(Product(one, other) / lengths, -1.0, 1.0)) * 180.0 / std::numbers::pi;
}

void Measure_Tool::Kind_Set(Measure_Kind wanted) {
    Cancel();
    kind = wanted;
}

std::string Measure_Tool::Hint() const {
    return std::string(kind == Measure_Kind::Distance ? "Two clicks measure a distance"
                                                      : "Three clicks measure an angle") +
           "; drag a point to move it, the right button removes what it hits";
}

Measure_Tool::Measurement* Measure_Tool::Begun() {
    std::vector<Measurement>& all = All();
    return !all.empty() && !all.back().Is_Done() ? &all.back() : nullptr;
}

std::optional<Measure_Tool::Hit> Measure_Tool::Hit_At(const Tool_Spot& spot) {
    std::optional<Hit> hit;
    double nearest = POINT_REACH;
    const std::vector<Measurement>& all = All();
    for (std::size_t measurement = 0; measurement < all.size(); ++measurement) {
        for (std::size_t point = 0; point < all[measurement].points.size(); ++point) {
            const std::optional<Slice_Point> seen = Seen(all[measurement].points[point], spot.cut);
            if (!seen) {
                continue;
            }
            const double distance = std::hypot(seen->x - spot.at.x, seen->y - spot.at.y);
            if (distance <= nearest) {
                hit = Hit{measurement, point};
                nearest = distance;
            }
        }
    }
    return hit;
}

Pixel_Rect Measure_Tool::Press(const Tool_Spot& spot, Tool_Hand hand) {
    if (!host.work().Has_Volume() || !spot.Is_Inside()) {
        return {};
    }
    host.note(Change::View);
    const std::optional<Hit> hit = Hit_At(spot);
    std::vector<Measurement>& all = All();
    if (hand == Tool_Hand::Right) {
        if (hit) {
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(hit->measurement));
        }
        host.tell(hit ? "The measurement is removed" : "There is no measurement to remove here");
        return {};
    }
    Measurement* const begun = Begun();
    if (hit && (begun == nullptr || hit->measurement + 1 != all.size())) {
        dragged = hit;
        return {};
    }
    if (begun == nullptr) {
        all.push_back({kind, {Measured_Point_Of(spot)}});
        pointer.reset();
        host.tell(kind == Measure_Kind::Distance ? "Click where the distance ends"
                                                 : "Click at the angle's corner, then at the other end");
        return {};
    }
    begun->points.push_back(Measured_Point_Of(spot));
    pointer.reset();
    if (begun->Is_Done()) {
        host.tell((begun->kind == Measure_Kind::Distance ? "Distance: " : "Angle: ") + Text_Of(*begun));
    }
    return {};
}

Pixel_Rect Measure_Tool::Move(const Tool_Spot& spot) {
    std::vector<Measurement>& all = All();
    if (!dragged || dragged->measurement >= all.size()) {
        return {};
    }
    Measurement& moved = all[dragged->measurement];
    Tool_Spot inside = spot;
    inside.at.x = std::clamp(spot.at.x, 0.0, static_cast<double>(spot.cut.geometry.Width()));
    inside.at.y = std::clamp(spot.at.y, 0.0, static_cast<double>(spot.cut.geometry.Height()));
    moved.points[dragged->point] = Measured_Point_Of(inside);
    if (moved.Is_Done()) {
        host.tell((moved.kind == Measure_Kind::Distance ? "Distance: " : "Angle: ") + Text_Of(moved));
    }
    return {};
}

void Measure_Tool::Release() {
    dragged.reset();
}

void Measure_Tool::Hover(const Tool_Spot& spot) {
    pointer = Measured_Point_Of(spot);
}

bool Measure_Tool::Cancel() {
    dragged.reset();
    if (Begun() == nullptr) {
        return false;
    }
    All().pop_back();
    host.note(Change::View);
    return true;
}

bool Measure_Tool::Step_Back() {
    Measurement* const begun = Begun();
    if (begun == nullptr) {
        return false;
    }
    begun->points.pop_back();
    if (begun->points.empty()) {
        All().pop_back();
    }
    host.note(Change::View);
    return true;
}

std::string Measure_Tool::Text_Of(const Measurement& measurement) const {
    const volumes::Volume& volume = host.work().Image();
    const std::vector<Measured_Point>& points = measurement.points;
    if (measurement.kind == Measure_Kind::Distance) {
        return One_Digit(Distance_Mm(points[0], points[1], volume.spacing)) +
               (volume.is_size_known ? " mm" : " voxels");
    }
    return One_Digit(Angle_Degrees(points[0], points[1], points[2], volume.spacing)) + "\xC2\xB0";
}

void Measure_Tool::Paths_Add(const Plane_Cut& cut, std::vector<Shown_Path>& paths) const {
    const Session& work = host.work();
    const auto found = of_volume.find(work.Serial());
    if (found == of_volume.end() || !work.Has_Volume()) {
        return;
    }
    for (const Measurement& measurement : found->second) {
        Measurement shown = measurement;
        if (!shown.Is_Done() && pointer) {
            shown.points.push_back(*pointer);
        }
        Shown_Path path = Path_In(shown.points, cut);
        if (!path.points.empty()) {
            path.text = shown.Is_Done() ? Text_Of(shown) : std::string();
            paths.push_back(path);
        }
    }
}

void Measure_Tool::Remove_All() {
    dragged.reset();
    const bool is_any = !All().empty();
    All().clear();
    host.note(Change::View);
    host.tell(is_any ? "All measurements of the volume are removed" : "There are no measurements");
}

std::vector<std::string> Measure_Tool::Texts() const {
    std::vector<std::string> texts;
    const auto found = of_volume.find(host.work().Serial());
    if (found != of_volume.end() && host.work().Has_Volume()) {
        for (const Measurement& measurement : found->second) {
            texts.push_back(measurement.Is_Done() ? Text_Of(measurement) : std::string());
        }
    }
    return texts;
}

}  // namespace workbench

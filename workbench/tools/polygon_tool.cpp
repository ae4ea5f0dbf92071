#include "workbench/tools/polygon_tool.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "workbench/tools/picture_edit.h"

namespace workbench {

namespace {

constexpr double CORNER_REACH = 1.5;  // pixels within which a press takes hold of a corner
constexpr std::size_t CORNERS_LEAST = 3;

/** The first pixel whose middle lies at or behind a place. */
int Pixel_From(double at, int pixel_nb) {
    return static_cast<int>(std::ceil(std::clamp(at, -1.0, pixel_nb + 1.0) - 0.5));
}

}  // namespace

Brush_Footprint Polygon_Pixels(const std::vector<Slice_Point>& points, int width, int height) {
    std::vector<Brush_Footprint::Row> rows;
    std::vector<double> crossings;
    for (int y = 0; y < height; ++y) {
        const double middle = y + 0.5;
        crossings.clear();
        for (std::size_t at = 0; at < points.size(); ++at) {
            const Slice_Point& from = points[at];
            const Slice_Point& to = points[(at + 1) % points.size()];
            if ((from.y <= middle) != (to.y <= middle)) {
                crossings.push_back(from.x + (middle - from.y) * (to.x - from.x) / (to.y - from.y));
            }
        }
        std::ranges::sort(crossings);
        for (std::size_t at = 0; at + 1 < crossings.size(); at += 2) {
            const int first = std::max(Pixel_From(crossings[at], width), 0);
            const int last = std::min(Pixel_From(crossings[at + 1], width) - 1, width - 1);
            if (first <= last) {
                rows.push_back({y, first, last});
            }
        }
    }
    return Brush_Footprint(std::move(rows));
}

std::string Polygon_Tool::Hint() const {
    return kind == Polygon_Kind::Lasso
               ? "Draw around a region with the left button to paint it, with the right one to erase it"
               : "Clicks set corners (left paints, right erases); Enter or a click on the first one closes, Backspace "
                 "takes one back";
}

bool Polygon_Tool::Is_On(const Plane_Cut& cut) const {
    return drawn && drawn->serial == host.work().Serial() && drawn->cut.depth == cut.depth &&
           drawn->cut.geometry.axes == cut.geometry.axes;
}

std::optional<std::size_t> Polygon_Tool::Corner_At(const Slice_Point& at) const {
    std::optional<std::size_t> found;
    double nearest = CORNER_REACH;
    for (std::size_t corner = 0; corner < drawn->points.size(); ++corner) {
        const double distance = std::hypot(drawn->points[corner].x - at.x, drawn->points[corner].y - at.y);
        if (distance <= nearest) {
            found = corner;
            nearest = distance;
        }
    }
    return found;
}

Pixel_Rect Polygon_Tool::Press(const Tool_Spot& spot, Tool_Hand hand) {
    if (!host.work().Has_Volume()) {
        return {};
    }
    host.note(Change::View);  // corners may lie beside the picture: what reaches its edge is easy to draw then
    if (kind == Polygon_Kind::Lasso || !Is_On(spot.cut)) {
        drawn = Drawn_Polygon{spot.cut,  host.work().Serial(), hand == Tool_Hand::Right,
                              {spot.at}, std::nullopt,         std::nullopt};
        return {};
    }
    const std::optional<std::size_t> hit = Corner_At(spot.at);
    if (hit == std::size_t{0} && drawn->points.size() >= CORNERS_LEAST) {
        Close();
    } else if (hit) {
        drawn->dragged = hit;
    } else {
        drawn->points.push_back(spot.at);
    }
    return {};
}

Pixel_Rect Polygon_Tool::Move(const Tool_Spot& spot) {
    if (!Is_On(spot.cut)) {
        return {};
    }
    if (kind == Polygon_Kind::Lasso) {
        const Slice_Point& last = drawn->points.back();
        if (last.x != spot.at.x || last.y != spot.at.y) {
            drawn->points.push_back(spot.at);
        }
    } else if (drawn->dragged) {
        drawn->points[*drawn->dragged] = spot.at;
    }
    return {};
}

void Polygon_Tool::Release() {
    if (!drawn) {
        return;
    }
    drawn->dragged.reset();
    if (kind == Polygon_Kind::Lasso) {
        Close();
    }
}

void Polygon_Tool::Hover(const Tool_Spot& spot) {
    if (drawn) {
        drawn->pointer = Is_On(spot.cut) ? std::optional(spot.at) : std::nullopt;
    }
}

bool Polygon_Tool::Accept() {
    if (!drawn) {
        return false;
    }
    if (drawn->points.size() < CORNERS_LEAST) {
        host.tell("A polygon has three corners at least");
        return true;
    }
    Close();
    return true;
}

void Polygon_Tool::Close() {
    const Drawn_Polygon ended = std::move(*drawn);
    drawn.reset();
    host.note(Change::View);
    Session& work = host.work();
    if (!work.Has_Volume() || work.Serial() != ended.serial) {
        return;
    }
    const int tag = ended.is_erasing ? 0 : host.tag();
    const std::string title =
        std::string(ended.is_erasing ? "Erase " : "Paint ") + (kind == Polygon_Kind::Lasso ? "a lasso" : "a polygon");
    try {
        const Picture_Ground ground(work, ended.cut);
        const segmentation::Edit_Input input = ground.Input(host);
        std::vector<std::uint8_t> after = ground.Tags();
        std::uint64_t voxel_nb = 0;
        const Brush_Footprint inside =
            Polygon_Pixels(ended.points, ended.cut.geometry.Width(), ended.cut.geometry.Height());
        for (const Brush_Footprint::Row& row : inside.Rows()) {
            for (int x = row.first; x <= row.last; ++x) {
                std::uint8_t& there = after[ground.Index(x, row.y)];
                if (there != tag && input.May_Change(there)) {
                    there = static_cast<std::uint8_t>(tag);
                    ++voxel_nb;
                }
            }
        }
        Change_Take(host, title, ground.Change_To(after), voxel_nb);
    } catch (const std::bad_alloc&) {
        host.warn(title + ": there is not enough memory. Nothing has changed.");
    }
}

bool Polygon_Tool::Cancel() {
    if (!drawn) {
        return false;
    }
    drawn.reset();
    host.note(Change::View);
    host.tell("What was drawn is dropped: nothing has changed");
    return true;
}

bool Polygon_Tool::Step_Back() {
    if (!drawn || kind == Polygon_Kind::Lasso) {
        return false;
    }
    drawn->points.pop_back();
    if (drawn->points.empty()) {
        drawn.reset();
    }
    host.note(Change::View);
    return true;
}

void Polygon_Tool::Follow(Changes changes) {
    if (changes.Has_Any({Change::Volume, Change::Opened})) {
        drawn.reset();
    }
}

void Polygon_Tool::Paths_Add(const Plane_Cut& cut, std::vector<Shown_Path>& paths) const {
    if (!Is_On(cut)) {
        return;
    }
    Shown_Path path;
    path.points = drawn->points;
    if (kind == Polygon_Kind::Corners) {
        path.knots = path.points;
    }
    paths.push_back(path);
    if (kind == Polygon_Kind::Corners && drawn->pointer && !drawn->dragged) {
        paths.push_back({.points = {drawn->points.back(), *drawn->pointer}, .knots = {}, .text = {}});
    }
}

}  // namespace workbench

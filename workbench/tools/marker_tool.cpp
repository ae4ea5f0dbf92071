#include "workbench/tools/marker_tool.h"

#include <optional>
#include <utility>

namespace workbench {

namespace {

constexpr int MARKER_REACH = 5;  // pixels within which a press takes hold of a marker

/** The placed marker of a picture that lies nearest to a pixel, within reach. */
std::optional<int> Marker_At(const Marker_Table& markers, const Tool_Spot& spot) {
    std::optional<int> hit;
    int nearest = MARKER_REACH * MARKER_REACH;
    for (int index = 0; index < MARKER_NB; ++index) {
        const Marker marker = markers.Get(index);
        if (!marker.is_placed) {
            continue;
        }
        const Plane_Pixel at = spot.cut.geometry.To_Pixel({marker.x, marker.y, marker.slice});
        const int dx = at.x - spot.X();
        const int dy = at.y - spot.Y();
        if (at.depth == spot.cut.depth && dx * dx + dy * dy <= nearest) {  // of two at one place the one drawn on top
            hit = index;
            nearest = dx * dx + dy * dy;
        }
    }
    return hit;
}

}  // namespace

Pixel_Rect Marker_Tool::Press(const Tool_Spot& spot, Tool_Hand) {
    if (!spot.Is_Inside()) {
        return {};
    }
    const Marker_Table& markers = host.work().Markers();
    dragged = Marker_At(markers, spot).value_or(host.marker());
    before = markers.Get(dragged);
    if (dragged != host.marker()) {
        host.marker_pick(dragged);
    }
    Drag_To(spot.Voxel());
    return {};
}

Pixel_Rect Marker_Tool::Move(const Tool_Spot& spot) {
    if (dragged >= 0) {
        Drag_To(spot.Voxel());
    }
    return {};
}

void Marker_Tool::Drag_To(const Shown_Voxel& voxel) {
    host.work().Marker_Preview(dragged, {true, voxel.x, voxel.y, voxel.slice});
    host.note(Change::Marker_Drag);
}

void Marker_Tool::Release() {
    if (dragged < 0) {
        return;
    }
    // The whole way is one step of the history.
    const int marker = std::exchange(dragged, -1);
    const Marker place = host.work().Markers().Get(marker);
    host.work().Marker_Preview(marker, before);
    host.marker_place(marker, place);
}

}  // namespace workbench

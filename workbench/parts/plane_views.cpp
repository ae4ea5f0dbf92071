#include "workbench/parts/plane_views.h"

#include <algorithm>
#include <span>
#include <utility>

namespace workbench {

namespace {

constexpr int MARKER_REACH = 5;  // pixels within which a press takes hold of a marker

}  // namespace

Plane_Views::Plane_Views(const Session& work, Plane_Host application) : session(work), host(std::move(application)) {}

void Plane_Views::Volume_Look() {
    if (!session.Has_Volume()) {
        serial = 0;
        return;
    }
    const volumes::Volume& volume = session.Image();
    const Patient_Axes axes = volume.affine_source == volumes::Affine_Source::Spacing
                                  ? Patient_Axes_Of_Letters(host.sides(), session.Order())
                                  : Patient_Axes_Of(volume.affine, session.Order());
    slice_plane = Plane_Of_Slices(axes);
    std::size_t view = 0;
    for (const Plane plane : {Plane::Axial, Plane::Coronal, Plane::Sagittal}) {
        if (plane != slice_plane) {
            panes[view].plane = plane;
            panes[view].geometry = Plane_Geometry_Of(plane, axes, {volume.nx, volume.ny, volume.nz}, volume.spacing);
            ++view;
        }
    }
    if (serial != session.Serial()) {
        serial = session.Serial();
        cross_x = volume.nx / 2;
        cross_y = volume.ny / 2;
    }
}

Shown_Voxel Plane_Views::Cross() const {
    return {cross_x, cross_y, host.slice()};
}

void Plane_Views::Cross_Set(const Shown_Voxel& voxel) {
    if (!session.Has_Volume()) {
        return;
    }
    host.stroke_end();  // a stroke belongs to one picture
    cross_x = std::clamp(voxel.x, 0, session.Width() - 1);
    cross_y = std::clamp(voxel.y, 0, session.Height() - 1);
    const int slice = std::clamp(voxel.slice, 0, session.Slice_Nb() - 1);
    if (slice != host.slice()) {
        host.slice_go(slice);
    }
    host.moved();
}

int Plane_Views::Pane::Depth() const {
    return std::clamp(geometry.To_Pixel(owner.Cross()).depth, 0, std::max(geometry.Depth_Nb() - 1, 0));
}

Shown_Voxel Plane_Views::Pane::Voxel_Near(int x, int y) const {
    return Voxel_At(std::clamp(x, 0, geometry.Width() - 1), std::clamp(y, 0, geometry.Height() - 1));
}

void Plane_Views::Pane::Tags_Copy(const Pixel_Rect& part) const {
    if (tags.size() != geometry.Pixel_Nb()) {
        return;  // the picture was not made for want of memory
    }
    Plane_Copy(owner.session.Labels().All(), geometry, Depth(), part, std::span(tags));
}

Image_Content Plane_Views::Pane::Content() const {
    if (!owner.session.Has_Volume() || owner.serial != owner.session.Serial()) {
        return {};
    }
    Image_Content content = owner.host.ground();
    const volumes::Volume& volume = owner.session.Image();
    const int depth = Depth();
    levels.resize(geometry.Pixel_Nb());
    tags.resize(geometry.Pixel_Nb());
    if (copied_serial != owner.serial || copied_axes != geometry.axes || copied_depth != depth) {
        Plane_Copy(std::span(volume.levels).first(volume.Voxel_Nb_3D()), geometry, depth, geometry.Whole(),
                   std::span(levels));
        copied_serial = owner.serial;
        copied_axes = geometry.axes;
        copied_depth = depth;
    }
    Tags_Copy(geometry.Whole());
    content.source.width = geometry.Width();
    content.source.height = geometry.Height();
    content.source.levels = levels;
    content.source.tags = tags;
    content.order.left = geometry.left;
    content.order.right = geometry.right;
    content.order.top = geometry.top;
    content.order.bottom = geometry.bottom;
    content.markers.clear();
    for (const Placed_Marker& marker : owner.host.markers()) {
        if (const Plane_Pixel at = geometry.To_Pixel(marker.voxel); at.depth == depth) {
            content.markers.push_back({at.x, at.y, marker.color, marker.name, marker.is_current});
        }
    }
    const Plane_Pixel cross = geometry.To_Pixel(owner.Cross());
    content.cross = Image_Cross{cross.x, cross.y};
    content.slice = depth;
    content.slice_nb = geometry.Depth_Nb();
    content.pixel_aspect = geometry.pixel_aspect;
    content.pixel_mm = volume.is_size_known ? volume.spacing[geometry.axes[0].voxel_axis] : 0.0;
    const std::string name = Plane_Name(plane);
    content.caption = std::wstring(name.begin(), name.end()) + L" " + std::to_wstring(depth + 1) + L" / " +
                      std::to_wstring(content.slice_nb);
    return content;
}

void Plane_Views::Pane::Slice_Go(int depth) {
    if (!owner.session.Has_Volume()) {
        return;
    }
    Plane_Pixel at = geometry.To_Pixel(owner.Cross());
    at.depth = std::clamp(depth, 0, geometry.Depth_Nb() - 1);
    owner.Cross_Set(geometry.To_Voxel(at));
}

Pixel_Rect Plane_Views::Pane::Stroke_Begin(int x, int y, bool erase) {
    const Pixel_Rect changed = owner.host.stroke_begin({geometry, Depth()}, x, y, erase);
    Tags_Copy(changed);
    return changed;
}

Pixel_Rect Plane_Views::Pane::Stroke_Move(int x, int y) {
    const Pixel_Rect changed = owner.host.stroke_move(x, y);
    Tags_Copy(changed);
    return changed;
}

void Plane_Views::Pane::Pick(int x, int y) {
    if (geometry.Has(x, y)) {
        owner.host.pick(Voxel_At(x, y));
    }
}

void Plane_Views::Pane::Marker_Press(int x, int y) {
    if (!geometry.Has(x, y)) {
        return;
    }
    std::optional<int> hit;
    int nearest = MARKER_REACH * MARKER_REACH;
    for (const Placed_Marker& marker : owner.host.markers()) {
        const Plane_Pixel at = geometry.To_Pixel(marker.voxel);
        const int distance = (at.x - x) * (at.x - x) + (at.y - y) * (at.y - y);
        if (at.depth == Depth() && distance <= nearest) {  // of two at one place the one that is drawn on top
            hit = marker.index;
            nearest = distance;
        }
    }
    owner.host.marker_press(Voxel_At(x, y), hit);
}

void Plane_Views::Pane::Hover(int x, int y) {
    if (geometry.Has(x, y)) {
        owner.host.hover(*this, Voxel_At(x, y));
    } else {
        owner.host.hover_end(*this);
    }
}

}  // namespace workbench

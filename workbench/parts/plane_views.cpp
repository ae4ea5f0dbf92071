#include "workbench/parts/plane_views.h"

#include <algorithm>
#include <span>
#include <utility>

namespace workbench {

namespace {

/** A whole picture, on the caller's own thread: beginning and ending others takes longer than they save. */
template <class Voxels, class Value>
void Picture_Copy(const Voxels& voxels, const Plane_Geometry& geometry, int depth, std::span<Value> picture) {
    Plane_Copy(voxels, geometry, depth, geometry.Whole(), picture);
}

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
    if (!Has_Picture()) {
        return {};
    }
    Image_Content content = owner.host.ground();
    const volumes::Volume& volume = owner.session.Image();
    const int depth = Depth();
    levels.resize(geometry.Pixel_Nb());
    tags.resize(geometry.Pixel_Nb());
    if (copied_serial != owner.serial || copied_axes != geometry.axes || copied_depth != depth) {
        volume.levels.Visit([&](const auto& voxels) { Picture_Copy(voxels, geometry, depth, std::span(levels)); });
        copied_serial = owner.serial;
        copied_axes = geometry.axes;
        copied_depth = depth;
    }
    Picture_Copy(owner.session.Labels().All(), geometry, depth, std::span(tags));
    if (const auto seen = owner.host.tool_preview(Cut(), tags); seen.data() != tags.data()) {
        std::ranges::copy(seen, tags.begin());
    }
    content.source.width = geometry.Width();
    content.source.height = geometry.Height();
    content.source.levels = levels;
    content.source.tags = tags;
    const std::span<const std::uint8_t> others = owner.host.compared();
    compared.resize(others.empty() ? 0 : geometry.Pixel_Nb());
    if (!others.empty()) {
        Picture_Copy(others, geometry, depth, std::span(compared));
    }
    content.source.compared = compared;
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
    content.pixel_width = volume.spacing[geometry.axes[0].voxel_axis];
    content.pixel_mm = volume.is_size_known ? content.pixel_width : 0.0;
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

Pixel_Rect Plane_Views::Pane::Tool_Press(const Slice_Point& at, Tool_Hand hand) {
    const Pixel_Rect changed = owner.host.tool_press(Cut(), at, hand);
    Tags_Copy(changed);
    return changed;
}

Pixel_Rect Plane_Views::Pane::Tool_Move(const Slice_Point& at) {
    const Pixel_Rect changed = owner.host.tool_move(Cut(), at);
    Tags_Copy(changed);
    return changed;
}

Brush_Footprint Plane_Views::Pane::Tool_Outline(const Slice_Point& at) const {
    return Has_Picture() ? owner.host.tool_outline(Cut(), at) : Brush_Footprint();
}

std::vector<Shown_Path> Plane_Views::Pane::Tool_Paths() const {
    return Has_Picture() ? owner.host.tool_paths(Cut()) : std::vector<Shown_Path>();
}

std::optional<Tool_Slider> Plane_Views::Pane::Slider() const {
    return Has_Picture() ? owner.host.tool_slider(Cut()) : std::nullopt;
}

void Plane_Views::Pane::Pick(int x, int y) {
    if (geometry.Has(x, y)) {
        owner.host.pick(Voxel_At(x, y));
    }
}

void Plane_Views::Pane::Hover(int x, int y) {
    if (geometry.Has(x, y)) {
        owner.host.hover(*this, Cut(), {x + 0.5, y + 0.5});
    } else {
        owner.host.hover_end(*this);
    }
}

}  // namespace workbench

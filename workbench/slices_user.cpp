#include "workbench/slices_user.h"

#include <algorithm>
#include <cmath>

#include "workbench/edits/segmentation_control.h"
#include "workbench/model/label_difference.h"
#include "workbench/model/number_text.h"
#include "workbench/model/voxel_text.h"
#include "workbench/parts/tag_control.h"
#include "workbench/parts/view_control.h"
#include "workbench/segmentation_services.h"
#include "workbench/wide_text.h"

namespace workbench {

Tag_Overlay Slices_User::Overlay_Now() const {
    Tag_Overlay overlay;
    overlay.opacity = of.settings.overlay_opacity;
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        overlay.color[static_cast<std::size_t>(tag)] = of.variables.Tag_Color(tag);
    }
    if (of.settings.is_overlay_shown) {
        std::ranges::copy(of.variables.Tag_Enable(), overlay.shown.begin());
    }
    if (const auto growing = of.tools.Preview_Tag()) {
        overlay.shown[*growing] = 1;
    }
    return overlay;
}

std::vector<Range_Overlay> Slices_User::Ranges_Now() const {
    std::vector<Range_Overlay> ranges;
    const bool is_of_all = of.segmentation.Is_Bands_Preview();
    if (!is_of_all && !of.tags.Is_Threshold_Mode() && !of.view.Is_Range_Overlay()) {
        return ranges;
    }
    for (const Tag_Claim& claim : of.segmentation_services.Claims()) {
        const segmentation::Level_Band band = segmentation::Level_Band_Of(claim.band, of.work.session.Image());
        if ((is_of_all || claim.tag == of.variables.Tag_Cur()) && !band.Is_Empty()) {
            ranges.push_back({band.low, band.high, of.variables.Tag_Color(claim.tag)});
        }
    }
    return ranges;
}

Image_Content Slices_User::Content_Of(int slice) const {
    Image_Content content;
    if (!of.work.session.Has_Volume()) {
        return content;
    }
    const volumes::Volume& volume = of.work.session.Image();
    content.source = {of.work.session.Width(),
                      of.work.session.Height(),
                      of.work.session.Levels(slice),
                      volume.color,
                      static_cast<float>(volume.slope),
                      static_cast<float>(volume.intercept),
                      slice == of.work.slice
                          ? of.tools.With_Preview(Spot({}).cut, of.work.session.Labels().Slice(slice))
                          : of.work.session.Labels().Slice(slice),
                      volume.is_inverted};
    content.window = of.work.grey_window;
    content.overlay = Overlay_Now();
    Differences_Add(content, slice);
    content.ranges = Ranges_Now();
    content.order = of.work.session.Order();
    const std::string& orientation = of.work.volumes.View(of.work.volumes.Current()).orientation;
    const bool is_lost = volume.affine_source == volumes::Affine_Source::Spacing;
    if (is_lost && !Letters_Set(orientation, content.order)) {
        // The file does not say how the patient lies.
        content.order.left = content.order.right = content.order.top = content.order.bottom = ' ';
    }
    for (const Placed_Marker& marker : Placed_Markers()) {
        if (marker.voxel.slice == slice) {
            content.markers.push_back({marker.voxel.x, marker.voxel.y, marker.color, marker.name, marker.is_current});
        }
    }
    content.slice = slice;
    content.slice_nb = of.work.session.Slice_Nb();
    content.pixel_aspect = volume.spacing[1] / volume.spacing[0];
    content.pixel_width = volume.spacing[0];
    content.pixel_mm = volume.is_size_known ? content.pixel_width : 0.0;
    content.is_linear = of.settings.is_linear;
    if (of.settings.views.arrangement != View_Arrangement::One) {
        content.cross = of.planes.Cross_In_Slice();
    }
    const double low_end = static_cast<double>(of.work.grey_window.low);
    const double high_end = static_cast<double>(of.work.grey_window.high);
    content.caption =
        L"Slice " + std::to_wstring(slice + 1) + L" / " + std::to_wstring(of.work.session.Slice_Nb()) +
        Wide_Of_Utf8("\nW " + Number_Text(high_end - low_end) + "  L " + Number_Text((high_end + low_end) / 2.0));
    if (is_lost) {
        content.caption += orientation.empty() ? L"\nOrientation not known" : L"\nOrientation as chosen";
    }
    return content;
}

void Slices_User::Differences_Add(Image_Content& content, int slice) const {
    const std::span<const std::uint8_t> compared = of.segmentation.Compared();
    if (compared.empty()) {
        return;
    }
    const std::size_t size = content.source.tags.size();
    content.source.compared = compared.subspan(static_cast<std::size_t>(slice) * size, size);
    content.overlay.is_difference = true;
    content.overlay.shown = {};  // a list of the TAGs would tell of other colours
    for (const auto difference :
         {Label_Difference::Only_Here, Label_Difference::Only_There, Label_Difference::Other_Tag}) {
        content.legend.push_back(
            {DIFFERENCE_COLOR[static_cast<std::size_t>(difference)], Wide_Of_Utf8(Difference_Text(difference))});
    }
}

std::optional<Tool_Slider> Slices_User::Slider() const {
    return of.work.session.Has_Volume() ? of.tools.Slider(Spot({}).cut) : std::nullopt;
}

void Slices_User::Slice_Go(int slice) {
    of.view.Slice_Go(slice);
}

void Slices_User::Window_Drag(float dx, float dy) {
    of.view.Window_Drag(dx, dy);
}

Pixel_Rect Slices_User::Tool_Press(const Slice_Point& at, Tool_Hand hand) {
    return of.work.session.Has_Volume() ? of.tools.Press(Spot(at), hand) : Pixel_Rect{};
}

Pixel_Rect Slices_User::Tool_Move(const Slice_Point& at) {
    return of.work.session.Has_Volume() ? of.tools.Move(Spot(at)) : Pixel_Rect{};
}

Brush_Footprint Slices_User::Tool_Outline(const Slice_Point& at) const {
    return of.work.session.Has_Volume() ? of.tools.Outline(Spot(at)) : Brush_Footprint();
}

std::vector<Shown_Path> Slices_User::Tool_Paths() const {
    return of.work.session.Has_Volume() ? of.tools.Paths(Spot({}).cut) : std::vector<Shown_Path>();
}

void Slices_User::Voxel_Pick(const Shown_Voxel& voxel) {
    of.tags.Tag_Set(of.work.session.Labels().At(voxel.x, voxel.y, voxel.slice), true);
}

void Slices_User::Hover(int x, int y) {
    if (x >= 0 && x < of.work.session.Width() && y >= 0 && y < of.work.session.Height()) {
        Voxel_Hover(*this, {x, y, of.work.slice});
        of.tools.Hover(Spot({x + 0.5, y + 0.5}));
    } else {
        Hover_End();
    }
}

void Slices_User::Voxel_Hover(const Image_User& by, const Shown_Voxel& voxel) {
    hovered = voxel;
    hovered_by = &by;
    of.variables.Mouse_Set(of.objects.Frame(voxel.slice), static_cast<float>(voxel.x), static_cast<float>(voxel.y));
    of.work.hub.Note(Change::Mouse);
}

void Slices_User::View_Left(const Image_User& by) {
    if (hovered_by != &by) {
        return;  // the pointer has come to another view already
    }
    hovered.reset();
    of.variables.Mouse_Set(nullptr, 0.0F, 0.0F);
    of.work.hub.Note(Change::Mouse);
}

void Slices_User::Voxel_Show() {
    const Shown_Voxel at = hovered.value_or(Shown_Voxel{-1, -1, of.work.slice});
    const int tag = hovered.has_value() ? of.work.session.Labels().At(at.x, at.y, at.slice) : 0;
    of.status_line.Voxel_Set(Wide_Of_Utf8(Voxel_Text(of.work.session, at.x, at.y, at.slice, of.labels.Tag_Name(tag))));
}

std::vector<Placed_Marker> Slices_User::Placed_Markers() const {
    std::vector<Placed_Marker> placed;
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        if (const Marker place = of.work.session.Markers().Get(marker); place.is_placed) {
            placed.push_back({marker,
                              {place.x, place.y, place.slice},
                              of.variables.Marker_Color(marker),
                              Wide_Of_Panel(of.variables.Marker_Name(marker).c_str()),
                              marker == of.variables.Marker_Cur()});
        }
    }
    return placed;
}

Plane_Host Slices_User::Plane_Services() {
    Plane_Host host;
    host.slice = [this] { return of.work.slice; };
    host.slice_go = [this](int wanted) { Slice_Go(wanted); };
    host.sides = [this] { return of.work.volumes.View(of.work.volumes.Current()).orientation; };
    host.ground = [this] { return Content(); };
    host.markers = [this] { return Placed_Markers(); };
    host.tool_press = [this](const Plane_Cut& cut, const Slice_Point& at, Tool_Hand hand) {
        return of.tools.Press({cut, at}, hand);
    };
    host.tool_move = [this](const Plane_Cut& cut, const Slice_Point& at) { return of.tools.Move({cut, at}); };
    host.tool_release = [this] { of.tools.Release(); };
    host.tool_outline = [this](const Plane_Cut& cut, const Slice_Point& at) { return of.tools.Outline({cut, at}); };
    host.tool_preview = [this](const Plane_Cut& cut, std::span<const std::uint8_t> shown) {
        return of.tools.With_Preview(cut, shown);
    };
    host.tool_paths = [this](const Plane_Cut& cut) { return of.tools.Paths(cut); };
    host.compared = [this] { return of.segmentation.Compared(); };
    host.tool_slider = [this](const Plane_Cut& cut) { return of.tools.Slider(cut); };
    host.tool_slide = [this](double share) { Slide(share); };
    host.tool_end = [this](bool is_taken) { Slider_End(is_taken); };
    host.stroke_end = [this] { of.tools.Stroke_End(); };
    host.pick = [this](const Shown_Voxel& voxel) { Voxel_Pick(voxel); };
    host.hover = [this](const Image_User& by, const Plane_Cut& cut, const Slice_Point& at) {
        const Tool_Spot spot = {cut, at};
        Voxel_Hover(by, spot.Voxel());
        of.tools.Hover(spot);
    };
    host.hover_end = [this](const Image_User& by) { View_Left(by); };
    host.window_drag = [this](float dx, float dy) { Window_Drag(dx, dy); };
    host.moved = [this] { of.work.hub.Note(Change::View); };
    return host;
}

}  // namespace workbench

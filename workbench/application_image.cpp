// The image: slices, painting, markers, window and level, what is under the mouse.
#include <algorithm>
#include <cmath>

#include "workbench/application.h"
#include "workbench/model/number_text.h"
#include "workbench/model/voxel_text.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::size_t WINDOW_MENU_MOST = 15;
constexpr std::uint16_t MODALITY_CT = ('C' << 8) | 'T';

}  // namespace

Tag_Overlay Application::Overlay_Now() const {
    Tag_Overlay overlay;
    overlay.opacity = settings.Now().overlay_opacity;
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        overlay.color[static_cast<std::size_t>(tag)] = variables.Tag_Color(tag);
    }
    if (is_overlay_shown) {
        std::ranges::copy(variables.Tag_Enable(), overlay.shown.begin());
    }
    if (const auto growing = tools.Preview_Tag()) {
        overlay.shown[*growing] = 1;
    }
    return overlay;
}

std::vector<Range_Overlay> Application::Ranges_Now() const {
    std::vector<Range_Overlay> ranges;
    const bool is_of_all = segmentation_control.Is_Bands_Preview();
    if (!is_of_all && !is_threshold_mode && !is_range_shown) {
        return ranges;
    }
    for (const Tag_Claim& claim : segmentation_services.Claims()) {
        const segmentation::Level_Band band = segmentation::Level_Band_Of(claim.band, session.Image());
        if ((is_of_all || claim.tag == variables.Tag_Cur()) && !band.Is_Empty()) {
            ranges.push_back({band.low, band.high, variables.Tag_Color(claim.tag)});
        }
    }
    return ranges;
}

Segmentation_Wiring Application::Segmentation_Wires() {
    return {session,
            variables,
            look,
            [this] { return window.Handle(); },
            [this] { return slice; },
            [this]() -> std::optional<segmentation::Voxel_Place> {
                if (image.Slices().Is_Cursor()) {
                    return segmentation::Voxel_Place{image.Slices().Cursor_X(), image.Slices().Cursor_Y(), slice};
                }
                return hovered ? std::optional(segmentation::Voxel_Place{hovered->x, hovered->y, hovered->slice})
                               : std::nullopt;
            },
            [this](float told) { return Grey_Of_Panel(told); },
            [this] {
                return volumes.Nb() > 0 && volumes.Facts(volumes.Current()).modality == MODALITY_CT ? std::string("HU")
                                                                                                    : std::string();
            },
            [this](const std::wstring& what,
                   const std::function<void(const segmentation::Edit_Progress& progress)>& action) {
                dialogs.Run(Utf8_Of_Wide(what), [&](const volumes::Load_Progress& progress) { action(progress); });
            },
            [this] { tools.Stroke_End(); },
            [this](int changed) {
                if (changed != slice) {
                    Slice_Show(changed);
                }
                hub.Note(Change::Pixels);
                report.Line("segmented");
            },
            [this] { image.Refresh(); },
            [this](const std::wstring& text) { Status(text); },
            [this](const std::string& text) { Warn(text); }};
}

Image_Content Application::Content() const {
    return Slice_Content(slice);
}

Image_Content Application::Slice_Content(int of) const {
    Image_Content content;
    if (!session.Has_Volume()) {
        return content;
    }
    const volumes::Volume& volume = session.Image();
    content.source = {
        session.Width(),
        session.Height(),
        session.Levels(of),
        volume.color,
        static_cast<float>(volume.slope),
        static_cast<float>(volume.intercept),
        of == slice ? tools.With_Preview(Spot({}).cut, session.Labels().Slice(of)) : session.Labels().Slice(of),
        volume.is_inverted};
    content.window = grey_window;
    content.overlay = Overlay_Now();
    content.ranges = Ranges_Now();
    content.order = session.Order();
    const std::string& orientation = volumes.View(volumes.Current()).orientation;
    const bool is_lost = volume.affine_source == volumes::Affine_Source::Spacing;
    if (is_lost && !Letters_Set(orientation, content.order)) {
        // The file does not say how the patient lies.
        content.order.left = content.order.right = content.order.top = content.order.bottom = ' ';
    }
    for (const Placed_Marker& marker : Placed_Markers()) {
        if (marker.voxel.slice == of) {
            content.markers.push_back({marker.voxel.x, marker.voxel.y, marker.color, marker.name, marker.is_current});
        }
    }
    content.slice = of;
    content.slice_nb = session.Slice_Nb();
    content.pixel_aspect = volume.spacing[1] / volume.spacing[0];
    content.pixel_mm = volume.is_size_known ? volume.spacing[0] : 0.0;
    if (image.Is_Planes()) {
        content.cross = planes.Cross_In_Slice();
    }
    const double low_end = static_cast<double>(grey_window.low);
    const double high_end = static_cast<double>(grey_window.high);
    content.caption =
        L"Slice " + std::to_wstring(of + 1) + L" / " + std::to_wstring(session.Slice_Nb()) +
        Wide_Of_Utf8("\nW " + Number_Text(high_end - low_end) + "  L " + Number_Text((high_end + low_end) / 2.0));
    if (is_lost) {
        content.caption += orientation.empty() ? L"\nOrientation not known" : L"\nOrientation as chosen";
    }
    return content;
}

void Application::Slice_Show(int wanted) {
    if (!session.Has_Volume()) {
        return;
    }
    tools.Stroke_End();
    slice = std::clamp(wanted, 0, session.Slice_Nb() - 1);
    objects.Show(slice);
    hub.Note(Change::Position);
    report.Line("slice " + std::to_string(slice));
}

void Application::Slice_Go(int wanted) {
    if (session.Has_Volume() && std::clamp(wanted, 0, session.Slice_Nb() - 1) != slice) {
        Slice_Show(wanted);
    }
}

void Application::Window_Reset() {
    grey_window = Grey_Window();
    grey_window.low = static_cast<float>(statistics.window_low);
    grey_window.high = static_cast<float>(statistics.window_high);
    if (session.Has_Volume()) {
        grey_window = First_Window(session.Image()).value_or(grey_window);
    }
    hub.Note(Change::View);
}

std::vector<volumes::Display_Window> Application::Windows() const {
    if (!session.Has_Volume()) {
        return {};
    }
    std::vector<volumes::Display_Window> windows =
        Display_Windows_Of(session.Image(), volumes.Facts(volumes.Current()).modality == MODALITY_CT);
    windows.resize(std::min(windows.size(), WINDOW_MENU_MOST));
    return windows;
}

std::vector<Numbered_Entry> Application::Window_Entries() const {
    std::vector<Numbered_Entry> entries;
    int number = 0;
    for (const volumes::Display_Window& window_of : Windows()) {
        ++number;
        const std::string letter = number <= 9 ? "&" + std::to_string(number) + "  " : "";
        entries.push_back(
            {letter + Menu_Text(Display_Window_Text(window_of, number)), Grey_Window_Of(window_of) == grey_window});
    }
    return entries;
}

void Application::Window_Choose(int index) {
    const std::vector<volumes::Display_Window> windows = Windows();
    if (index < 0 || static_cast<std::size_t>(index) >= windows.size()) {
        return;
    }
    const volumes::Display_Window& chosen = windows[static_cast<std::size_t>(index)];
    grey_window = Grey_Window_Of(chosen);
    hub.Note(Change::View);
    Status(Wide_Of_Utf8(Display_Window_Text(chosen, index + 1)));
}

void Application::Window_Drag(float dx, float dy) {
    grey_window = grey_window.Dragged(dx, dy, static_cast<float>(statistics.max - statistics.min));
    hub.Note(Change::View);
}

void Application::Pick(int x, int y) {
    Voxel_Pick({x, y, slice});
}

void Application::Voxel_Pick(const Shown_Voxel& voxel) {
    Tag_Set(session.Labels().At(voxel.x, voxel.y, voxel.slice), true);
}

void Application::Hover(int x, int y) {
    if (x >= 0 && x < session.Width() && y >= 0 && y < session.Height()) {
        Voxel_Hover(*this, {x, y, slice});
        tools.Hover(Spot({x + 0.5, y + 0.5}));
    } else {
        Hover_End();
    }
}

void Application::Voxel_Hover(const Image_User& by, const Shown_Voxel& voxel) {
    hovered = voxel;
    hovered_by = &by;
    variables.Mouse_Set(objects.Frame(voxel.slice), static_cast<float>(voxel.x), static_cast<float>(voxel.y));
    hub.Note(Change::Mouse);
}

void Application::Hover_End() {
    View_Left(*this);
}

void Application::View_Left(const Image_User& by) {
    if (hovered_by != &by) {
        return;  // the pointer has come to another view already
    }
    hovered.reset();
    variables.Mouse_Set(nullptr, 0.0F, 0.0F);
    hub.Note(Change::Mouse);
}

void Application::Voxel_Show() {
    const Shown_Voxel at = hovered.value_or(Shown_Voxel{-1, -1, slice});
    const int tag = hovered.has_value() ? session.Labels().At(at.x, at.y, at.slice) : 0;
    status_line.Voxel_Set(Wide_Of_Utf8(
        Voxel_Text(session, at.x, at.y, at.slice, Utf8_Of_Wide(Wide_Of_Panel(variables.Tag_Name(tag).c_str())))));
}

std::vector<Placed_Marker> Application::Placed_Markers() const {
    std::vector<Placed_Marker> placed;
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        if (const Marker place = session.Markers().Get(marker); place.is_placed) {
            placed.push_back({marker,
                              {place.x, place.y, place.slice},
                              variables.Marker_Color(marker),
                              Wide_Of_Panel(variables.Marker_Name(marker).c_str()),
                              marker == variables.Marker_Cur()});
        }
    }
    return placed;
}

Plane_Host Application::Plane_Services() {
    Plane_Host host;
    host.slice = [this] { return slice; };
    host.slice_go = [this](int wanted) { Slice_Go(wanted); };
    host.sides = [this] { return volumes.View(volumes.Current()).orientation; };
    host.ground = [this] { return Content(); };
    host.markers = [this] { return Placed_Markers(); };
    host.tool_press = [this](const Plane_Cut& cut, const Slice_Point& at, Tool_Hand hand) {
        return tools.Press({cut, at}, hand);
    };
    host.tool_move = [this](const Plane_Cut& cut, const Slice_Point& at) { return tools.Move({cut, at}); };
    host.tool_release = [this] { tools.Release(); };
    host.tool_outline = [this](const Plane_Cut& cut, const Slice_Point& at) { return tools.Outline({cut, at}); };
    host.tool_preview = [this](const Plane_Cut& cut, std::span<const std::uint8_t> tags) {
        return tools.With_Preview(cut, tags);
    };
    host.tool_paths = [this](const Plane_Cut& cut) { return tools.Paths(cut); };
    host.stroke_end = [this] { tools.Stroke_End(); };
    host.pick = [this](const Shown_Voxel& voxel) { Voxel_Pick(voxel); };
    host.hover = [this](const Image_User& by, const Plane_Cut& cut, const Slice_Point& at) {
        const Tool_Spot spot = {cut, at};
        Voxel_Hover(by, spot.Voxel());
        tools.Hover(spot);
    };
    host.hover_end = [this](const Image_User& by) { View_Left(by); };
    host.window_drag = [this](float dx, float dy) { Window_Drag(dx, dy); };
    host.moved = [this] { hub.Note(Change::View); };
    return host;
}

void Application::Cross_Move(int x, int y) {
    planes.Cross_Set({x, y, slice});
}

void Application::Cross_To_Cursor() {
    if (Has_Cursor()) {
        planes.Cross_Set({image.Slices().Cursor_X(), image.Slices().Cursor_Y(), slice});
    }
}

void Application::Overlay_Opacity_Ask() {
    const auto answer = Prompt(window.Handle(), L"Opacity of TAG colours", L"Per cent over the image (0 to 100):",
                               std::to_wstring(settings.Now().overlay_opacity));
    if (!answer) {
        return;
    }
    wchar_t* rest = nullptr;
    const long percent = std::wcstol(answer->c_str(), &rest, 10);
    if (rest == answer->c_str() || *rest != 0 || percent < 0 || percent > 100) {
        Warn("\"" + Utf8_Of_Wide(*answer) + "\" is no number from 0 to 100.");
        return;
    }
    settings.Now().overlay_opacity = static_cast<int>(percent);
    hub.Note(Change::View);
}

void Application::Planes_Show(bool shown) {
    image.Planes_Show(shown);
    report.Line(std::string("planes ") + (shown ? "shown" : "hidden"));
}

}  // namespace workbench
